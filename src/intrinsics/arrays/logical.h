// COUNT, ANY, ALL and PARITY along a dimension.
#pragma once

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

enum class LogicalReduction { count, any, all, parity };

// `result` has the array's dimensions without `dim`; its elements are integers or logicals of
// result.element bytes.
void reduce_logical(LogicalReduction what, const Mask& array, int dim, const View& result);

}  // namespace tarn::arrays
