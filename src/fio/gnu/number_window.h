// The common shape of a number in a record, found in up to 32 characters that are all looked at at
// once: one bit for each says whether it is a digit, another whether it is a blank, and the runs of
// bits are the parts of the number. Whatever hasn't that shape goes the long way, character by
// character.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>

#include "fio/gnu/number_text.h"
#include "fio/number/integer_digits.h"

namespace tarn::fio {

class NumberWindow {
  public:
    static constexpr int widest = 32;
    static constexpr int most_digits = 19;  // that always fit a word

    // The `width` characters at `at`. Those behind them up to `readable_end` may be read, too; a
    // field that has too few of them is copied.
    NumberWindow(const char* at, int width, const char* readable_end) : text_(at), width_(width) {
        if (readable_end - at < room) {
            std::memset(copy_, 0, room);
            std::memcpy(copy_, at, static_cast<std::size_t>(width));
            text_ = copy_;
        }
        const std::uint32_t inside = ~std::uint32_t{0} >> (widest - width);
        digits_ = inside & both_halves(digits_of, text_, width);
        blanks_ = inside & both_halves(blanks_of, text_, width);
    }
    NumberWindow(const NumberWindow&) = delete;
    NumberWindow& operator=(const NumberWindow&) = delete;

    int width() const { return width_; }
    char at(int place) const { return text_[place]; }
    bool is_inside(int place) const { return place < width_; }
    // How many digits or blanks follow each other from a place on.
    int digits_from(int place) const { return run_from(digits_, place); }
    int blanks_from(int place) const { return run_from(blanks_, place); }
    bool is_blank_from(int place) const { return place + blanks_from(place) == width_; }

    // The number that `count` digits (up to 19) make.
    std::uint64_t number(int place, int count) const {
        const char* digits = text_ + place;
        if (count <= 8) return count == 0 ? 0 : last_digits(digits, count);
        std::uint64_t value = value_of_eight(load_eight(digits));
        if (count > 16) {
            digits += 8;
            count -= 8;
            value = value * 100'000'000 + value_of_eight(load_eight(digits));
        }
        count -= 8;
        return value * powers_of_ten[static_cast<std::size_t>(count)] +
               last_digits(digits + 8, count);
    }

  private:
    // `number` reads eight characters from any place on.
    static constexpr int room = widest + 8;

    // 1 to 8 digits, put behind zeros.
    static std::uint64_t last_digits(const char* digits, int count) {
        return value_of_eight(load_eight(digits) << (64 - 8 * count));
    }

    static std::uint32_t bits(const __m128i& found) {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(found));
    }
    static std::uint32_t digits_of(const __m128i& text) {
        const __m128i above_zero = _mm_sub_epi8(text, _mm_set1_epi8('0'));
        return bits(_mm_cmpeq_epi8(_mm_min_epu8(above_zero, _mm_set1_epi8(9)), above_zero));
    }
    static std::uint32_t blanks_of(const __m128i& text) {
        return bits(_mm_cmpeq_epi8(text, _mm_set1_epi8(' ')));
    }
    // The marks of 16 characters, or of 32.
    template <class Marks>
    static std::uint32_t both_halves(Marks marks, const char* text, int width) {
        const auto* const halves = reinterpret_cast<const __m128i*>(text);
        const std::uint32_t first = marks(_mm_loadu_si128(halves));
        return width <= 16 ? first : first | marks(_mm_loadu_si128(halves + 1)) << 16;
    }
    static int run_from(std::uint32_t marks, int place) {
        return std::countr_one(std::uint64_t{marks} >> place);
    }

    const char* text_;
    int width_;
    std::uint32_t digits_;
    std::uint32_t blanks_;
    char copy_[room];
};

// A REAL of the common shape: sign, digits with at most one decimal mark among them, exponent. Its
// value is significand x 10^(exponent - decimals).
struct PlainReal {
    std::uint64_t significand = 0;
    int decimals = 0;  // digits behind the mark
    int exponent = 0;  // as it was written
    bool negative = false;
    bool has_mark = false;
    bool has_exponent = false;
    int end = 0;  // the place behind the number
};

// The REAL that begins at a place of the window, which isn't the window's end. `mark`: '.' or ','.
// A point is a decimal mark in any case. False: it hasn't the common shape.
inline bool scan_plain_real(const NumberWindow& window, int place, char mark, PlainReal& real) {
    if (window.at(place) == '-' || window.at(place) == '+') {
        real.negative = window.at(place++) == '-';
    }
    const int whole = window.digits_from(place);
    real.significand = window.number(place, whole <= NumberWindow::most_digits ? whole : 0);
    place += whole;
    if (window.is_inside(place) && (window.at(place) == '.' || window.at(place) == mark)) {
        ++place;
        real.has_mark = true;
        real.decimals = window.digits_from(place);
        if (whole + real.decimals > NumberWindow::most_digits) return false;
        real.significand =
            real.significand * powers_of_ten[static_cast<std::size_t>(real.decimals)] +
            window.number(place, real.decimals);
        place += real.decimals;
    }
    const int digits = whole + real.decimals;
    if (digits == 0 || digits > NumberWindow::most_digits) return false;
    if (window.is_inside(place)) {
        const bool has_letter = is_exponent_letter(window.at(place));
        const int sign_at = place + (has_letter ? 1 : 0);
        const bool has_sign =
            window.is_inside(sign_at) && (window.at(sign_at) == '-' || window.at(sign_at) == '+');
        if (has_letter || has_sign) {
            place = sign_at + (has_sign ? 1 : 0);
            const int count = window.digits_from(place);
            constexpr int most = 4;  // digits of an exponent that means something
            if (count == 0 || count > most) return false;
            real.has_exponent = true;
            real.exponent = static_cast<int>(window.number(place, count));
            if (has_sign && window.at(sign_at) == '-') real.exponent = -real.exponent;
            place += count;
        }
    }
    real.end = place;
    return true;
}

// Stores (-1)^negative x significand x 10^exponent: `store_any_decimal` where a product of words
// doesn't decide.
void store_any_decimal(std::uint64_t significand, std::int64_t exponent, bool negative,
                       Rounding round, int kind, void* item);
inline void store_decimal(std::uint64_t significand, std::int64_t exponent, bool negative,
                          Rounding round, int kind, void* item) {
    if (!word_to_binary(significand, exponent, negative, round, kind, item)) {
        store_any_decimal(significand, exponent, negative, round, kind, item);
    }
}

}  // namespace tarn::fio
