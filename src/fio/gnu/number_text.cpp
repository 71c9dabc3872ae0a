#include "fio/gnu/number_text.h"

namespace tarn::fio {

bool store_plain_real(const PlainReal& real, std::int64_t shift, Rounding round, int kind,
                      void* item) {
    const auto whole_count = static_cast<std::size_t>(real.whole_end - real.whole);
    const auto fraction_count = static_cast<std::size_t>(real.fraction_end - real.fraction);
    const std::int64_t exponent = shift - static_cast<std::int64_t>(fraction_count);
    if (whole_count + fraction_count <= 19 &&
        word_to_binary(real.significand, exponent, real.negative, round, kind, item)) {
        return true;
    }
    // The digits stand together, or are brought together.
    char digits[48];
    DecimalNumber number;
    number.negative = real.negative;
    number.exponent = exponent;
    if (fraction_count == 0) {
        number.digits = real.whole;
        number.count = whole_count;
    } else if (whole_count == 0 || (whole_count == 1 && *real.whole == '0')) {
        number.digits = real.fraction;
        number.count = fraction_count;
    } else {
        if (whole_count + fraction_count > sizeof digits) return false;
        std::memcpy(digits, real.whole, whole_count);
        std::memcpy(digits + whole_count, real.fraction, fraction_count);
        number.digits = digits;
        number.count = whole_count + fraction_count;
    }
    to_binary(number, round, kind, item);
    return true;
}

}  // namespace tarn::fio
