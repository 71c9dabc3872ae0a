// The quick road from binary to decimal: values with up to 64 bits of significand, 18 digits,
// rounding to nearest.
//
// One product of the significand with a power of ten of 128 bits gives the digits asked for as an
// integer and the fraction behind it, as in U. Adams, "Ryu revisited: printf floating point
// conversion" (OOPSLA 2019) and D. Lemire, "Number parsing at a gigabyte per second" (Software:
// Practice and Experience, 2021); what the product cannot decide goes the exact road.
#pragma once

#include <array>
#include <cstdint>

#include "fio/number/integer_digits.h"
#include "fio/number/power_table.h"

namespace tarn::fio {

inline constexpr int most_quick_digits = 18;

// significand x 2^exponent with the significand's highest bit set.
struct NormalReal {
    std::uint64_t significand = 0;
    int exponent = 0;
};

inline NormalReal normalized(std::uint64_t significand, int exponent) {
    const int up = __builtin_clzll(significand);
    return {significand << up, exponent - up};
}

// A scaled value: whole + fraction, where the fraction's first bits stand at the top of
// `fraction` and `more` says whether anything follows them.
struct ScaledReal {
    std::uint64_t whole = 0;
    std::uint64_t fraction = 0;
    bool more = false;
};

// value x 10^k, below 2^63. False when the table's bits don't decide it; k lies in the table.
inline bool scale(const NormalReal& value, int k, ScaledReal& scaled) {
    const Power& power = power_of_ten_128(k);
    const auto low = static_cast<unsigned __int128>(value.significand) * power.low;
    const auto product = static_cast<unsigned __int128>(value.significand) * power.high +
                         static_cast<std::uint64_t>(low >> 64);
    auto top = static_cast<std::uint64_t>(product >> 64);
    const auto middle = static_cast<std::uint64_t>(product);
    // A unit of `top` is 2^-down of the scaled value.
    const int down = -(value.exponent + power_exponent(k) + 1);
    if (k < first_exact_power || k > last_exact_power) {
        if (middle >= ~std::uint64_t{1}) return false;
        scaled.more = true;
    } else {
        scaled.more = middle != 0 || (k >= 0 && static_cast<std::uint64_t>(low) != 0);
    }
    if (down < 64) {
        if (down < 1) return false;
        scaled.whole = top >> down;
        scaled.fraction = top << (64 - down);
        return true;
    }
    scaled.whole = 0;
    if (down > 127) {
        top = 0;
        scaled.more = true;
    }
    scaled.fraction = top >> ((down - 64) & 63);
    if (down > 64 && top << ((128 - down) & 63) != 0) scaled.more = true;
    return true;
}

// Rounded to nearest, halves to even.
inline std::uint64_t rounded(const ScaledReal& scaled) {
    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    const bool odd_or_more = (scaled.whole & 1) != 0 || scaled.more;
    const bool up = scaled.fraction > half || (scaled.fraction == half && odd_or_more);
    return scaled.whole + (up ? 1 : 0);
}

// The place of the decimal point, value = 0.d1d2... x 10^point, before any rounding. The value
// lies within the table.
inline int quick_point(const NormalReal& value) {
    const int exponent = value.exponent + 63;
    // 10^point is above 2^exponent, by at most four binary places; log10(2) = 78913 / 2^18 as far
    // as the table reaches.
    const int point = ((exponent * 78913) >> 18) + 1;
    const Power& power = power_of_ten_128(point);
    // The power is at or below the significand only if its bits below the highest word are zero.
    const bool reaches =
        value.significand > power.high || (value.significand == power.high && power.low == 0);
    return point + (power_exponent(point) == exponent && reaches ? 1 : 0);
}

// `count` significant digits (1 to most_quick_digits) as one number.
struct QuickDigits {
    std::uint64_t digits = 0;
    int point = 0;
};

inline bool quick_significant(const NormalReal& value, int count, QuickDigits& result) {
    const int point = quick_point(value);
    ScaledReal scaled;
    if (!scale(value, count - point, scaled)) return false;
    result.digits = rounded(scaled);
    result.point = point;
    if (result.digits == powers_of_ten[static_cast<std::size_t>(count)]) {
        result.digits = powers_of_ten[static_cast<std::size_t>(count - 1)];
        ++result.point;
    }
    return true;
}

// value x 10^places rounded to an integer, if that has no more than most_quick_digits digits.
inline bool quick_fraction(const NormalReal& value, int places, std::uint64_t& digits) {
    if (places < least_power || places > greatest_power) return false;
    ScaledReal scaled;
    if (!scale(value, places, scaled)) return false;
    digits = rounded(scaled);
    return digits < powers_of_ten[most_quick_digits];
}

}  // namespace tarn::fio
