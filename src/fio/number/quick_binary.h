// The quick road from decimal to binary: up to 19 digits, REAL(4) and REAL(8), every direction of
// rounding. One product of the digits with a power of ten of 128 bits, as in D. Lemire, "Number
// parsing at a gigabyte per second" (Software: Practice and Experience, 2021).
#pragma once

#include <cstdint>
#include <cstring>

#include "fio/number/power_table.h"

namespace tarn::fio {

inline constexpr int most_quick_input_digits = 19;

// The first 64 bits of digits x 10^k, x 2^exponent, the highest bit or the one below it set; `more`
// tells whether bits follow.
struct ScaledDecimal {
    std::uint64_t significand = 0;
    int exponent = 0;
    bool more = false;
};

// False when the table's bits don't decide it. `digits` isn't 0; k lies in the table.
inline bool scale_decimal(std::uint64_t digits, int k, ScaledDecimal& scaled) {
    const int up = __builtin_clzll(digits);
    digits <<= up;
    const Power& power = power_of_ten_128(k);
    const auto low = static_cast<unsigned __int128>(digits) * power.low;
    const auto product =
        static_cast<unsigned __int128>(digits) * power.high + static_cast<std::uint64_t>(low >> 64);
    const auto middle = static_cast<std::uint64_t>(product);
    scaled.significand = static_cast<std::uint64_t>(product >> 64);
    scaled.exponent = power_exponent(k) + 1 - up;
    if (k < first_exact_power || k > last_exact_power) {
        if (middle >= ~std::uint64_t{1}) return false;
        scaled.more = true;
    } else {
        scaled.more = middle != 0 || (k >= 0 && static_cast<std::uint64_t>(low) != 0);
    }
    return true;
}

// The number of eight digits, all at once: pairs, fours, eight.
inline std::uint64_t number_of_eight(const char* digits) {
    std::uint64_t text;
    std::memcpy(&text, digits, 8);
    text &= 0x0F0F'0F0F'0F0F'0F0F;
    text = (text * 10 + (text >> 8)) & 0x00FF'00FF'00FF'00FF;
    text = (text * 100 + (text >> 16)) & 0x0000'FFFF'0000'FFFF;
    return (text * 10000 + (text >> 32)) & 0xFFFF'FFFF;
}

// The number of up to 19 digits.
inline std::uint64_t number_of_digits(const char* digits, std::size_t count) {
    std::uint64_t value = 0;
    for (; count >= 8; count -= 8, digits += 8)
        value = value * 100'000'000 + number_of_eight(digits);
    for (; count != 0; --count, ++digits) {
        value = value * 10 + static_cast<std::uint64_t>(*digits - '0');
    }
    return value;
}

}  // namespace tarn::fio
