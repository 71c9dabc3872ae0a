// COUNT, ANY, ALL and PARITY along a dimension.
#pragma once

#include "intrinsics/arrays/along.h"

namespace tarn::arrays {

enum class LogicalReduction { count, any, all, parity };

// Of rows of mask elements; results are integers or logicals of result_size bytes.
class LogicalRows final : public Reduction {
  public:
    LogicalRows(LogicalReduction what, Truth truth, Index result_size)
        : what_(what), truth_(truth), result_size_(result_size) {}

    void rows(const Rows& rows) const override;
    // They have blocks of their own.
    bool side_by_side() const override { return false; }

  private:
    LogicalReduction what_;
    Truth truth_;
    Index result_size_;
};

// `result` has the array's dimensions without `dim`; its elements are integers or logicals of
// result.element bytes.
void reduce_logical(LogicalReduction what, const Mask& array, int dim, const View& result);

}  // namespace tarn::arrays
