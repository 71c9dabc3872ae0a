// The words that the specifiers of a gnu statement take.
#pragma once

#include <cstddef>
#include <string_view>

#include "fio/modes.h"

namespace tarn::fio {

template <class Value>
struct Word {
    std::string_view text;  // in capitals
    Value value;
};

inline constexpr Word<bool> yes_no_words[] = {{"YES", true}, {"NO", false}};
inline constexpr Word<bool> pad_words[] = {{"YES", true}, {"NO", false}};
inline constexpr Word<Blank> blank_words[] = {{"NULL", Blank::null}, {"ZERO", Blank::zero}};
inline constexpr Word<DecimalMark> decimal_words[] = {{"POINT", DecimalMark::point},
                                                      {"COMMA", DecimalMark::comma}};
inline constexpr Word<Delim> delim_words[] = {
    {"NONE", Delim::none}, {"APOSTROPHE", Delim::apostrophe}, {"QUOTE", Delim::quote}};
inline constexpr Word<SignMode> sign_words[] = {{"PLUS", SignMode::plus},
                                                {"SUPPRESS", SignMode::suppress},
                                                {"PROCESSOR_DEFINED", SignMode::processor}};
inline constexpr Word<Rounding> round_words[] = {
    {"UP", Rounding::up},
    {"DOWN", Rounding::down},
    {"ZERO", Rounding::zero},
    {"NEAREST", Rounding::nearest},
    {"COMPATIBLE", Rounding::compatible},
    {"PROCESSOR_DEFINED", Rounding::processor},
};

// Capital and small letters are the same, trailing blanks don't count.
constexpr bool same_word(std::string_view text, std::string_view word) {
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    if (text.size() != word.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i] >= 'a' && text[i] <= 'z' ? static_cast<char>(text[i] - 32) : text[i];
        if (c != word[i]) return false;
    }
    return true;
}

// Finds the value of a specifier's word; false when it is none of them. A specifier that wasn't
// given (no address) leaves the value as it is.
template <class Value, std::size_t count>
bool keyword(std::string_view text, const Word<Value> (&words)[count], Value& value) {
    if (text.data() == nullptr) return true;
    for (const Word<Value>& word : words) {
        if (!same_word(text, word.text)) continue;
        value = word.value;
        return true;
    }
    return false;
}

}  // namespace tarn::fio
