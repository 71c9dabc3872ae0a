// Letters beyond ASCII: cases for the fields that fold them, and the order of sorted lists. Covers
// the alphabets with simple case pairs (Latin, Greek, Cyrillic, Armenian); other text is left as
// it is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::platform {

char32_t upper_case(char32_t code);
char32_t lower_case(char32_t code);
std::string in_upper_case(std::string_view utf8);
std::string in_lower_case(std::string_view utf8);

// Below 0, 0, above 0: the order of two texts without regard to case.
int compare_folded(std::string_view a, std::string_view b);
bool starts_folded(std::string_view text, std::string_view prefix);

// Where the character at `at` ends, and where the one before it begins: marks that combine belong
// to their letter, and CR LF is one.
std::size_t character_end(std::string_view text, std::size_t at);
std::size_t character_begin(std::string_view text, std::size_t at);
// A letter, a digit or an underscore: what a double click selects together.
bool is_word_character(char32_t code);

}  // namespace tarn::platform
