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

// The value of eight digits: neighbours are joined to pairs, fours and the whole.
constexpr std::uint32_t value_of_eight(std::uint64_t word) {
    word -= 0x3030303030303030U;
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

// The value of a run of at most 18 digits.
inline std::uint64_t short_value(const char* at, const char* end) {
    std::uint64_t value = 0;
    for (; end - at >= 8; at += 8) value = value * 100000000U + value_of_eight(load_eight(at));
    for (; at < end; ++at) value = value * 10 + static_cast<std::uint64_t>(*at - '0');
    return value;
}

// Stands for every exponent of ten digits and more.
inline constexpr std::int64_t far_exponent = 1000000000;

// A REAL of the common shape: sign, digits with at most one decimal mark among them, exponent.
struct PlainReal {
    DecimalNumber number;      // without the exponent where none was written
    std::int64_t written = 0;  // the exponent that was written
    bool has_mark = false;
    bool has_exponent = false;
    const char* end = nullptr;  // where the number ends; null: it hasn't the common shape
    char digits[48];            // room for digits that lie on both sides of the mark
};

// `mark`: '.' or ','. A point is a decimal mark in any case.
inline void scan_plain_real(const char* at, const char* end, char mark, PlainReal& real) {
    real.end = nullptr;
    if (at < end && (*at == '-' || *at == '+')) real.number.negative = *at++ == '-';
    const char* const whole = at;
    const char* const whole_end = digits_end(at, end);
    const char* fraction = whole_end;
    const char* fraction_end = whole_end;
    at = whole_end;
    if (at < end && (*at == '.' || *at == mark)) {
        real.has_mark = true;
        fraction = at + 1;
        fraction_end = digits_end(fraction, end);
        at = fraction_end;
    }
    if (whole == whole_end && fraction == fraction_end) return;
    const auto whole_count = static_cast<std::size_t>(whole_end - whole);
    const auto fraction_count = static_cast<std::size_t>(fraction_end - fraction);
    real.number.exponent = -static_cast<std::int64_t>(fraction_count);
    if (fraction_count == 0) {
        real.number.digits = whole;
        real.number.count = whole_count;
    } else if (whole_count == 0 || (whole_count == 1 && *whole == '0')) {
        real.number.digits = fraction;
        real.number.count = fraction_count;
    } else {
        if (whole_count + fraction_count > sizeof real.digits) return;
        std::memcpy(real.digits, whole, whole_count);
        std::memcpy(real.digits + whole_count, fraction, fraction_count);
        real.number.digits = real.digits;
        real.number.count = whole_count + fraction_count;
    }
    if (at < end && (is_exponent_letter(*at) || *at == '+' || *at == '-')) {
        if (is_exponent_letter(*at)) ++at;
        bool negative = false;
        if (at < end && (*at == '+' || *at == '-')) negative = *at++ == '-';
        const char* const exponent_end = digits_end(at, end);
        if (exponent_end == at) return;
        real.has_exponent = true;
        while (exponent_end - at > 9 && *at == '0') ++at;
        const std::int64_t written = exponent_end - at > 9
                                         ? far_exponent
                                         : static_cast<std::int64_t>(short_value(at, exponent_end));
        real.written = negative ? -written : written;
        at = exponent_end;
    }
    real.end = at;
}

}  // namespace tarn::fio
