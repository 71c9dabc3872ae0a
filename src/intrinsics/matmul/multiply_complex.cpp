#include "intrinsics/matmul/multiply_code.h"

namespace tarn::matmul {
TARN_MULTIPLY(Complex<float>)
TARN_MULTIPLY(Complex<double>)
TARN_MULTIPLY(Complex<arrays::Real10>)
TARN_MULTIPLY(Complex<arrays::Real16>)
}  // namespace tarn::matmul
