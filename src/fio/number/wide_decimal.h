// The exact road from binary to decimal, for any kind, any number of digits and every direction.
#pragma once

#include "fio/number/decimal.h"

namespace tarn::fio {

// What is left behind the last digit, against the half of it.
enum class Tail : std::uint8_t { zero, below_half, half, above_half };

// Whether the magnitude goes up to the next digit.
inline bool rounds_up(Tail tail, bool odd, bool negative, Rounding round) {
    switch (round) {
        case Rounding::compatible:
            return tail >= Tail::half;
        case Rounding::up:
            return tail != Tail::zero && !negative;
        case Rounding::down:
            return tail != Tail::zero && negative;
        case Rounding::zero:
            return false;
        default:
            return tail == Tail::above_half || (tail == Tail::half && odd);
    }
}

// A lower bound of `point` (0.d1d2... x 10^point) that is right or one too small.
inline std::int32_t least_point(const BinaryReal& value) {
    const auto high = static_cast<std::uint64_t>(value.significand >> 64);
    const auto low = static_cast<std::uint64_t>(value.significand);
    const int bits = high != 0 ? 128 - __builtin_clzll(high) : 64 - __builtin_clzll(low);
    // log10(2) x 2^48, cut; no power of two among those that occur is so near to a power of ten
    // that the cut matters.
    constexpr auto log10_of_2 =
        static_cast<std::int64_t>(0.301029995663981195213738894724L * (std::int64_t{1} << 48));
    const std::int64_t exponent = bits - 1 + value.exponent;
    return static_cast<std::int32_t>(exponent * log10_of_2 >> 48) + 1;
}

DecimalDigits wide_significant_digits(const BinaryReal& value, std::size_t count, Rounding round,
                                      char* buffer);
DecimalDigits wide_fraction_digits(const BinaryReal& value, std::int32_t places, Rounding round,
                                   char* buffer);
// `point` of the value, before any rounding.
std::int32_t wide_point(const BinaryReal& value);

}  // namespace tarn::fio
