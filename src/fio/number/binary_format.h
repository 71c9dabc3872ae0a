// Putting a REAL together from a rounded significand.
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/number/decimal.h"
#include "fio/number/natural.h"

namespace tarn::fio {

// What a kind of REAL can hold.
struct BinaryFormat {
    int precision;          // bits of the significand, the leading one included
    int least_exponent;     // of the last bit of a subnormal
    int greatest_exponent;  // of the last bit of the greatest value
    // A text whose first digit stands for 10^greatest_decimal or more overflows; one whose first
    // digit stands below 10^least_decimal is less than half of the least value.
    int greatest_decimal;
    int least_decimal;
};

inline constexpr BinaryFormat real4_format{24, -149, 104, 39, -46};
inline constexpr BinaryFormat real8_format{53, -1074, 971, 309, -324};
inline constexpr BinaryFormat real10_format{64, -16445, 16320, 4933, -4951};
inline constexpr BinaryFormat real16_format{113, -16494, 16271, 4933, -4966};

constexpr const BinaryFormat& binary_format(int kind) {
    switch (kind) {
        case 4:
            return real4_format;
        case 8:
            return real8_format;
        case 10:
            return real10_format;
        default:
            return real16_format;
    }
}

// Stores (-1)^negative x significand x 2^exponent; the significand has at most the precision's
// bits, and fewer only at the least exponent.
void store_real(int kind, bool negative, Wide significand, int exponent, void* target);
void store_infinity(int kind, bool negative, void* target);

// Stores significand x 2^exponent, not zero, with `more` if a part below it was cut off, rounded
// to the kind.
ConvertResult round_and_store(int kind, bool negative, Wide significand, std::int64_t exponent,
                              bool more, Rounding round, void* target);

// What lies beyond the kind's range in either direction.
ConvertResult store_overflow(int kind, bool negative, Rounding round, void* target);
ConvertResult store_underflow(int kind, bool negative, Rounding round, void* target);

// The exact road from decimal to binary, for any kind and any number of digits. The number isn't
// zero and its first digit isn't '0'.
ConvertResult wide_to_binary(const DecimalNumber& number, Rounding round, int kind, void* target);

}  // namespace tarn::fio
