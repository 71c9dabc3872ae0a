#include <algorithm>

#include "fio/number/decimal.h"
#include "fio/number/quick_decimal.h"
#include "fio/number/wide_decimal.h"

namespace tarn::fio {

namespace {

// The value for the quick road; false if it lies outside the table.
bool quick_value(const BinaryReal& value, NormalReal& normal) {
    if (value.significand >> 64 != 0) return false;
    normal = normalized(static_cast<std::uint64_t>(value.significand), value.exponent);
    return normal.exponent >= -1200 && normal.exponent <= 1100;
}

Tail tail_of(const ScaledReal& scaled) {
    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    if (scaled.fraction > half) return Tail::above_half;
    if (scaled.fraction == half) return scaled.more ? Tail::above_half : Tail::half;
    return scaled.fraction != 0 || scaled.more ? Tail::below_half : Tail::zero;
}

std::uint64_t rounded(const ScaledReal& scaled, bool negative, Rounding round) {
    return scaled.whole +
           (rounds_up(tail_of(scaled), (scaled.whole & 1) != 0, negative, round) ? 1 : 0);
}

}  // namespace

DecimalDigits significant_digits(const BinaryReal& value, std::size_t count, Rounding round,
                                 char* buffer) {
    NormalReal normal;
    if (count <= most_quick_digits && quick_value(value, normal)) {
        const int point = quick_point(normal);
        ScaledReal scaled;
        if (scale(normal, static_cast<int>(count) - point, scaled)) {
            const std::uint64_t digits = rounded(scaled, value.negative, round);
            if (digits == powers_of_ten[count]) {
                buffer[0] = '1';
                return {buffer, 1, point + 1};
            }
            put_digits(buffer, digits, static_cast<int>(count));
            return {buffer, count, point};
        }
    }
    return wide_significant_digits(value, count, round, buffer);
}

DecimalDigits fraction_digits(const BinaryReal& value, std::int32_t places, Rounding round,
                              char* buffer) {
    NormalReal normal;
    ScaledReal scaled;
    if (places >= least_power && places <= greatest_power && quick_value(value, normal) &&
        scale(normal, places, scaled)) {
        const std::uint64_t digits = rounded(scaled, value.negative, round);
        if (digits == 0) return {buffer, 0, -places};
        if (digits < powers_of_ten[most_quick_digits]) {
            const int count = decimal_length(digits);
            // No more digits than the value had before a carry: the caller's room is for those.
            if (digits == powers_of_ten[static_cast<std::size_t>(count - 1)]) {
                buffer[0] = '1';
                return {buffer, 1, count - places};
            }
            put_digits(buffer, digits, count);
            return {buffer, static_cast<std::size_t>(count), count - places};
        }
    }
    return wide_fraction_digits(value, places, round, buffer);
}

std::int32_t decimal_exponent(const BinaryReal& value) {
    NormalReal normal;
    if (quick_value(value, normal)) return quick_point(normal) - 1;
    return wide_point(value) - 1;
}

std::size_t fraction_digits_bound(const BinaryReal& value, std::int32_t places) {
    const std::int64_t count = std::int64_t{least_point(value)} + 1 + places;
    const auto most = static_cast<std::int64_t>(max_significant_digits);
    return static_cast<std::size_t>(std::clamp(count, std::int64_t{1}, most));
}

}  // namespace tarn::fio
