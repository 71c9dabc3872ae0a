// Powers of ten as 128-bit significands: what the quick roads between binary and decimal multiply
// by.
#pragma once

#include <array>
#include <cstdint>

namespace tarn::fio {

// 10^k = (high x 2^64 + low) x 2^(power_exponent(k) - 127), with the highest bit of `high` set.
// Exact for k from 0 to 55, since 5^55 has 128 bits. For k from -27 to -1 rounded up, so that a
// product with a word tells whether the division by the power leaves a remainder: the fraction of
// a word by 5^27 is zero or above 2^-63, and the error of the product stays below 2^-64. Cut
// elsewhere.
struct Power {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
};

inline constexpr int least_power = -362;
inline constexpr int greatest_power = 386;
inline constexpr int first_exact_power = -27;
inline constexpr int last_exact_power = 55;

extern const std::array<Power, greatest_power - least_power + 1> power_table;

inline const Power& power_of_ten_128(int k) {
    return power_table[static_cast<std::size_t>(k - least_power)];
}

// floor(log2(10^k)); right wherever the table reaches.
inline int power_exponent(int k) {
    return (k * 217706) >> 16;
}

}  // namespace tarn::fio
