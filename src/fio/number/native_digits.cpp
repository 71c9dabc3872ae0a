#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "fio/number/decimal.h"

namespace tarn::fio {

namespace {

constexpr std::int64_t most_true_digits = 20;

// The digits from 2.2250738585072013830...E-308 on would show a number that reads back as a
// smaller one on a machine that cuts; its usual text ends in 4 there.
void keep_smallest_normal(NativeDigits& result) {
    constexpr char leading[] = "2225073858507201";
    constexpr std::size_t length = sizeof leading - 1;
    if (result.point == -307 && result.count > length &&
        std::memcmp(result.digits, leading, length) == 0) {
        result.digits[length] = '4';
    }
}

}  // namespace

NativeDigits native_digits(long double value, std::int32_t count, char* buffer) {
    const BinaryReal real = take_apart(value);
    NativeDigits result{buffer, 0, 0, real.negative};
    const auto most = static_cast<std::int64_t>(max_native_digits);
    if (real.significand == 0) {
        result.count = static_cast<std::size_t>(std::min(std::abs(std::int64_t{count}), most));
        std::memset(buffer, '0', result.count);
        return result;
    }
    // The twenty digits are cut, not rounded, where more are asked for.
    std::int64_t wanted = count;
    DecimalDigits made;
    if (count <= 0) {
        wanted = std::int64_t{decimal_exponent(real)} + 1 - count;
        if (wanted <= most_true_digits) {
            made = fraction_digits(real, -count, Rounding::compatible, buffer);
            wanted = std::int64_t{made.point} - count;
        }
    }
    if (count > 0 || wanted > most_true_digits) {
        const bool cut = wanted > most_true_digits;
        made =
            significant_digits(real, static_cast<std::size_t>(std::min(wanted, most_true_digits)),
                               cut ? Rounding::zero : Rounding::compatible, buffer);
    }
    result.point = made.point;
    result.count = static_cast<std::size_t>(std::clamp(wanted, std::int64_t{0}, most));
    if (made.count < result.count) {
        std::memset(buffer + made.count, '0', result.count - made.count);
    }
    keep_smallest_normal(result);
    return result;
}

}  // namespace tarn::fio
