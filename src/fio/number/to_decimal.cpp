#include <algorithm>

#include "fio/number/decimal.h"
#include "fio/number/wide_decimal.h"

namespace tarn::fio {

DecimalDigits significant_digits(const BinaryReal& value, std::size_t count, Rounding round,
                                 char* buffer) {
    return wide_significant_digits(value, count, round, buffer);
}

DecimalDigits fraction_digits(const BinaryReal& value, std::int32_t places, Rounding round,
                              char* buffer) {
    return wide_fraction_digits(value, places, round, buffer);
}

std::int32_t decimal_exponent(const BinaryReal& value) {
    return wide_point(value) - 1;
}

std::size_t fraction_digits_bound(const BinaryReal& value, std::int32_t places) {
    const std::int64_t count = std::int64_t{least_point(value)} + 1 + places;
    const auto most = static_cast<std::int64_t>(max_significant_digits);
    return static_cast<std::size_t>(std::clamp(count, std::int64_t{1}, most));
}

}  // namespace tarn::fio
