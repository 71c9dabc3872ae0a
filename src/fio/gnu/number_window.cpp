#include "fio/gnu/number_window.h"

namespace tarn::fio {

void store_any_plain_real(const PlainReal& real, std::int64_t exponent, Rounding round, int kind,
                          void* item) {
    char digits[NumberWindow::most_digits];
    const int count = decimal_length(real.significand);
    put_digits(digits, real.significand, count);
    DecimalNumber number;
    number.negative = real.negative;
    number.digits = digits;
    number.count = static_cast<std::size_t>(count);
    number.exponent = exponent;
    to_binary(number, round, kind, item);
}

}  // namespace tarn::fio
