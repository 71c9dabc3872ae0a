// Numbers as they stand in a record: the scanners that fields and list-directed values share.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fio/number/decimal.h"

namespace tarn::fio {

constexpr bool is_decimal_digit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}

constexpr char lower_case(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The letters that begin an exponent.
constexpr bool is_exponent_letter(char c) {
    const char letter = lower_case(c);
    return letter == 'e' || letter == 'd' || letter == 'q';
}

inline std::uint64_t load_eight(const char* at) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, 8);
    return word;
}

// How many of eight characters, from the first on, are digits.
constexpr int leading_digits_of_eight(std::uint64_t word) {
    const std::uint64_t above = word + 0x4646464646464646U;  // bit 7 set above '9'
    const std::uint64_t below = word - 0x3030303030303030U;  // bit 7 set below '0'
    const std::uint64_t others = (above | below | word) & 0x8080808080808080U;
    return others == 0 ? 8 : std::countr_zero(others) / 8;
}

// The value of eight digits: neighbours are joined to pairs, fours and the whole. Bytes of zero
// count as digits 0.
constexpr std::uint32_t value_of_eight(std::uint64_t word) {
    word &= 0x0F0F0F0F0F0F0F0FU;
    word = word * 10 + (word >> 8);
    constexpr std::uint64_t mask = 0x000000FF000000FFU;
    constexpr std::uint64_t upper = 0x000F424000000064U;  // 100 + (1000000 << 32)
    constexpr std::uint64_t lower = 0x0000271000000001U;  // 1 + (10000 << 32)
    return static_cast<std::uint32_t>(((word & mask) * upper + ((word >> 16) & mask) * lower) >>
                                      32);
}

// The end of a run of digits.
inline const char* digits_end(const char* at, const char* end) {
    while (end - at >= 8) {
        const int count = leading_digits_of_eight(load_eight(at));
        at += count;
        if (count < 8) return at;
    }
    while (at < end && is_decimal_digit(*at)) ++at;
    return at;
}

inline const char* skip_blanks(const char* at, const char* end) {
    constexpr std::uint64_t blanks = 0x2020202020202020U;
    while (end - at >= 8) {
        const std::uint64_t others = load_eight(at) ^ blanks;
        if (others != 0) return at + std::countr_zero(others) / 8;
        at += 8;
    }
    while (at < end && *at == ' ') ++at;
    return at;
}

// Stands for every exponent of ten digits and more.
inline constexpr std::int64_t far_exponent = 1000000000;

// How a value that was read is rounded: under ROUND='COMPATIBLE' gfortran's programs see the
// nearest value, with halves to even, as without ROUND=.
inline Rounding input_rounding(const EditModes& modes) {
    return modes.round == Rounding::compatible ? Rounding::nearest : modes.round;
}

}  // namespace tarn::fio
