// The engine's one entry that isn't a step of a statement; include/tarn/edit.h tells what it does.
#include <cmath>
#include <cstring>

#include "fio/number/decimal.h"
#include "frame/link_name.h"

extern "C" TARN_EXPORT void CVDL_h(long double value, std::int16_t* sign, char* digits,
                                   std::int32_t* exponent, std::int32_t count) LINK_NAME("CVDL#");
extern "C" void CVDL_h(long double value, std::int16_t* sign, char* digits, std::int32_t* exponent,
                       std::int32_t count) {
    if (!std::isfinite(value)) value = 0;
    char room[tarn::fio::max_native_digits];
    const tarn::fio::NativeDigits made = tarn::fio::native_digits(value, count, room);
    std::memcpy(digits, made.digits, made.count);
    *sign = value < 0 ? -1 : 1;
    *exponent = made.point;
}
