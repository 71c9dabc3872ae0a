// Integers in English words.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio::native {

inline constexpr std::size_t words_room = 120;

// "ONE MILLION TWO HUNDRED AND THIRTY FOUR", in capitals, one blank between the words. The result
// is the length, or words_room + 1 when the words don't fit.
std::size_t english_words(std::int64_t value, char (&words)[words_room]);

}  // namespace tarn::fio::native
