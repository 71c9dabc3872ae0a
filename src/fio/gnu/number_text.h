// Numbers as they stand in a record: the scanners that fields and list-directed values share.
//
// The common shape of a number is taken in one pass, eight characters at a time, without a copy
// where its digits lie together. Whatever doesn't have that shape goes the long way, character by
// character, in the caller.
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

inline constexpr std::uint64_t small_powers_of_ten[] = {1,      10,      100,      1000,     10000,
                                                        100000, 1000000, 10000000, 100000000};

// The value of a run of digits, put behind the digits that `value` holds; the run's end. More
// digits than 19 in all don't fit: the value is of no use then. What lies between `floor` and `at`
// may be looked at.
inline const char* take_digits(const char* at, const char* end, const char* floor,
                               std::uint64_t& value) {
    for (;;) {
        const std::ptrdiff_t left = end - at;
        std::uint64_t word = 0;
        if (left >= 8) {
            word = load_eight(at);
        } else if (left == 0) {
            return at;
        } else if (end - floor >= 8) {
            word = load_eight(end - 8) >> (64 - 8 * left);
        } else {
            for (; at < end && is_decimal_digit(*at); ++at) {
                value = value * 10 + static_cast<std::uint64_t>(*at - '0');
            }
            return at;
        }
        const int count = leading_digits_of_eight(word);
        if (count == 0) return at;
        value = value * small_powers_of_ten[count] + value_of_eight(word << (64 - 8 * count));
        at += count;
        if (count < 8) return at;
    }
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

// A REAL of the common shape: sign, digits with at most one decimal mark among them, exponent.
struct PlainReal {
    bool negative = false;
    bool has_mark = false;
    bool has_exponent = false;
    std::uint64_t significand = 0;  // the digits, if there are no more than 19
    const char* whole = nullptr;    // the digits before the mark
    const char* whole_end = nullptr;
    const char* fraction = nullptr;  // those behind it
    const char* fraction_end = nullptr;
    std::int64_t written = 0;   // the exponent that was written
    const char* end = nullptr;  // where the number ends; null: it hasn't the common shape
};

inline const char* take_exponent(const char* at, const char* end, PlainReal& real) {
    if (is_exponent_letter(*at)) ++at;
    bool negative = false;
    if (at < end && (*at == '+' || *at == '-')) negative = *at++ == '-';
    const char* const digits = at;
    std::int64_t written = 0;
    for (; at < end && is_decimal_digit(*at); ++at) {
        if (written < far_exponent) written = written * 10 + (*at - '0');
    }
    if (at == digits) return nullptr;
    real.has_exponent = true;
    real.written = negative ? -written : written;
    return at;
}

// `mark`: '.' or ','. A point is a decimal mark in any case. What lies between `floor` and `at` may
// be looked at.
inline void scan_plain_real(const char* at, const char* end, const char* floor, char mark,
                            PlainReal& real) {
    if (at < end && (*at == '-' || *at == '+')) real.negative = *at++ == '-';
    real.whole = at;
    at = take_digits(at, end, floor, real.significand);
    real.whole_end = real.fraction = real.fraction_end = at;
    if (at < end && (*at == '.' || *at == mark)) {
        real.has_mark = true;
        real.fraction = at + 1;
        at = take_digits(at + 1, end, floor, real.significand);
        real.fraction_end = at;
    }
    if (real.whole == real.whole_end && real.fraction == real.fraction_end) return;
    if (at < end && (is_exponent_letter(*at) || *at == '+' || *at == '-')) {
        at = take_exponent(at, end, real);
    }
    real.end = at;
}

// Stores the value of a scanned number, moved by 10^shift. False, and nothing stored, when it has
// more digits than the common shape.
bool store_plain_real(const PlainReal& real, std::int64_t shift, Rounding round, int kind,
                      void* item);

}  // namespace tarn::fio
