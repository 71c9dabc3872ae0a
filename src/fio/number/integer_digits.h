// Decimal digits of integers, two at a time from a table.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace tarn::fio {

inline constexpr std::array<char, 200> digit_pairs = [] {
    std::array<char, 200> table{};
    for (int i = 0; i < 100; ++i) {
        table[2 * i] = static_cast<char>('0' + i / 10);
        table[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return table;
}();

inline void put_pair(char* out, std::uint32_t value) {
    std::memcpy(out, &digit_pairs[2 * value], 2);
}

inline constexpr std::array<std::uint64_t, 20> powers_of_ten = [] {
    std::array<std::uint64_t, 20> table{};
    table[0] = 1;
    for (std::size_t i = 1; i < table.size(); ++i) table[i] = table[i - 1] * 10;
    return table;
}();

// The number of decimal digits; 1 for 0.
inline int decimal_length(std::uint64_t value) {
    // 1233 / 4096 is log10(2) as far as 64 bits need it.
    const int bits = 64 - __builtin_clzll(value | 1);
    const int guess = bits * 1233 >> 12;
    return guess + (value >= powers_of_ten[guess] ? 1 : 0) + (value == 0 ? 1 : 0);
}

// Eight digits of a value below 10^8 as numbers from 0 to 9, the first digit in the lowest byte:
// four pairs of digits, then the digits of each pair, side by side in one word.
inline std::uint64_t eight_digits(std::uint32_t value) {
    const std::uint64_t high = value / 10000;
    const std::uint64_t low = value % 10000;
    const std::uint64_t fours = high | low << 32;
    // x / 100 for x < 10000 in two lanes.
    const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000'007F'0000'007F;
    const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16;
    // x / 10 for x < 100 in four lanes.
    const std::uint64_t tens = (twos * 103 >> 10) & 0x000F'000F'000F'000F;
    return tens | (twos - 10 * tens) << 8;
}

inline void put_eight(char* out, std::uint32_t value) {
    const std::uint64_t text = eight_digits(value) | 0x3030'3030'3030'3030;
    std::memcpy(out, &text, 8);
}

// Exactly `count` digits (1 to 19) of a value below 10^count.
inline void put_digits(char* out, std::uint64_t value, int count) {
    char* end = out + count;
    while (end - out >= 8) {
        end -= 8;
        put_eight(end, static_cast<std::uint32_t>(value % 100'000'000));
        value /= 100'000'000;
    }
    auto rest = static_cast<std::uint32_t>(value);
    while (end - out >= 2) {
        end -= 2;
        put_pair(end, rest % 100);
        rest /= 100;
    }
    if (end != out) *out = static_cast<char>('0' + rest);
}

}  // namespace tarn::fio
