#include "intrinsics/arrays/extremes_code.h"

namespace tarn::arrays {
TARN_COMPILE_EXTREMES(float)
TARN_COMPILE_EXTREMES(double)
TARN_COMPILE_EXTREMES(Real10)
TARN_COMPILE_EXTREMES(Real16)
}  // namespace tarn::arrays
