#include "intrinsics/matmul/multiply_code.h"

namespace tarn::matmul {
TARN_MULTIPLY(float)
TARN_MULTIPLY(double)
TARN_MULTIPLY(arrays::Real10)
TARN_MULTIPLY(arrays::Real16)
}  // namespace tarn::matmul
