#include "fio/gnu/number_window.h"

namespace tarn::fio {

void store_any_decimal(std::uint64_t significand, std::int64_t exponent, bool negative,
                       Rounding round, int kind, void* item) {
    char digits[20];
    const int count = decimal_length(significand);
    put_digits(digits, significand, count);
    DecimalNumber number;
    number.negative = negative;
    number.digits = digits;
    number.count = static_cast<std::size_t>(count);
    number.exponent = exponent;
    to_binary(number, round, kind, item);
}

}  // namespace tarn::fio
