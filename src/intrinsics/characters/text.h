// The library's own routines on texts. A text that is changed keeps its length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tarn::intrinsics {

using Text = std::span<char>;
using ConstText = std::span<const char>;

std::size_t trimmed_length(ConstText text);

void to_upper_case(Text text);
void to_lower_case(Text text);
void move_left(Text text);   // over its leading blanks
void move_right(Text text);  // over its trailing blanks
// Adds behind the last non-blank what there is room for; nothing if there is none.
void append(Text text, ConstText addition);
// The source without its trailing blanks, in the middle of the first `width` columns.
void centre(Text result, ConstText source, int width);
// From 1; 0 if there is none.
std::int32_t first_nonblank(ConstText text);

// ADJUSTL and ADJUSTR into a result of any length; an empty text leaves the result as it is.
void adjust_left(Text result, ConstText text);
void adjust_right(Text result, ConstText text);

// A number in digits or in English words; asterisks where it doesn't fit.
void write_digits(Text result, std::int32_t value);
void write_words(Text result, std::int32_t value);
std::string words_of(std::int32_t value);

}  // namespace tarn::intrinsics
