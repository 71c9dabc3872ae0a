#include "intrinsics/arrays/extremes_code.h"

namespace tarn::arrays {
TARN_COMPILE_EXTREMES(std::int8_t)
TARN_COMPILE_EXTREMES(std::int16_t)
TARN_COMPILE_EXTREMES(std::int32_t)
TARN_COMPILE_EXTREMES(std::int64_t)
TARN_COMPILE_EXTREMES(Integer16)
}  // namespace tarn::arrays
