#include "intrinsics/matmul/multiply_code.h"

namespace tarn::matmul {
TARN_MULTIPLY(std::uint8_t)
TARN_MULTIPLY(std::uint16_t)
TARN_MULTIPLY(std::uint32_t)
TARN_MULTIPLY(std::uint64_t)
TARN_MULTIPLY(unsigned __int128)
}  // namespace tarn::matmul
