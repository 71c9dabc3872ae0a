// Infinity and NaN as words.
#pragma once

#include "fio/gnu/number_text.h"

namespace tarn::fio {

enum class RealWord : unsigned char { infinity, nan };

constexpr bool is_word_character(char c) {
    return is_decimal_digit(c) || (lower_case(c) >= 'a' && lower_case(c) <= 'z');
}

// What may stand in the parentheses of NAN(...).
enum class NanText : unsigned char {
    words,             // letters and digits
    words_and_blanks,  // a field under BZ
    no_separators,     // list-directed: whatever doesn't end a value
};

// INF, INFINITY, NAN, NAN(...) in either case; the end of the word, or null if none stands there.
const char* scan_real_word(const char* at, const char* end, NanText inside, RealWord& word);

void store_real_word(RealWord word, bool negative, void* item, int kind);

}  // namespace tarn::fio
