// The fields that programs read most: up to 32 characters that hold an INTEGER or a REAL of the
// common shape, and blanks. Each routine stores the item and says true, or does nothing and says
// false: the general ones of edit_in.h have to do it then. What stands behind the field up to
// `readable_end` may be read.
#pragma once

#include "fio/gnu/edit_in.h"
#include "fio/gnu/number_window.h"
#include "fio/gnu/store.h"

namespace tarn::fio {

inline bool quick_get_integer(const char* field, int width, const char* readable_end, void* item,
                              int kind, const EditModes& modes) {
    const NumberWindow window(field, width, readable_end);
    // Blanks, a sign, digits, and at most blanks behind them that count for nothing.
    int place = window.blanks_from(0);
    if (place == width) return false;
    const bool negative = window.at(place) == '-';
    if (negative || window.at(place) == '+') ++place;
    const int count = window.digits_from(place);
    if (count == 0 || count > NumberWindow::most_digits) return false;
    const int end = place + count;
    if (end != width && (modes.blank == Blank::zero || !window.is_blank_from(end))) return false;
    const std::uint64_t value = window.number(place, count);
    if (kind > 8) {
        store_integer(item, kind, negative ? -UInt128{value} : UInt128{value});
        return true;
    }
    const std::uint64_t greatest = ~std::uint64_t{0} >> (65 - 8 * kind);
    if (value > greatest + (negative ? 1 : 0)) return false;
    store_word(item, kind, negative ? -value : value);
    return true;
}

// A value of any kind lies well inside; what lies beyond was meant as something else.
inline constexpr std::int64_t greatest_exponent = 9999;

// The exponent that counts beside the digits' own place; false: it is out of range.
inline bool exponent_of_field(std::int64_t written, bool has_mark, bool has_exponent,
                              std::int32_t d, const EditModes& modes, std::int64_t& shift) {
    shift = has_exponent ? written : -std::int64_t{modes.scale};
    if (!has_mark) shift -= d;
    return shift <= greatest_exponent && shift >= -greatest_exponent;
}

inline bool quick_get_real(const char* field, int width, const char* readable_end, std::int32_t d,
                           void* item, int kind, const EditModes& modes) {
    const NumberWindow window(field, width, readable_end);
    const int begin = window.blanks_from(0);
    if (begin == width) return false;
    PlainReal real;
    const char mark = modes.decimal == DecimalMark::comma ? ',' : '.';
    if (!scan_plain_real(window, begin, mark, real)) return false;
    if (real.end != width && (modes.blank == Blank::zero || !window.is_blank_from(real.end))) {
        return false;
    }
    std::int64_t shift = 0;
    if (!exponent_of_field(real.exponent, real.has_mark, real.has_exponent, d, modes, shift)) {
        return false;
    }
    store_decimal(real.significand, shift - real.decimals, real.negative, input_rounding(modes),
                  kind, item);
    return true;
}

}  // namespace tarn::fio
