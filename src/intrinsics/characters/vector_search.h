// Searching long character values many characters at a time.
//
// The searches are written once, for any width of vector (vector_search_code.h). The base form is
// compiled into strings.cpp, where it is also used in line for short values; this table holds the
// forms for wider registers. Characters are std::uint8_t (kind 1) or std::uint32_t (kind 4).
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::intrinsics {

// What a search gives that found nothing.
inline constexpr std::size_t none = ~std::size_t{0};

enum class Stop { at_member, at_stranger };  // at a character that is in the set, or one that isn't
enum class From { start, end };

template <class Char>
struct VectorSearch {
    // The first (last) place with a character other than `c`.
    std::size_t (*other_than)(const Char* text, std::size_t length, Char c, From from);
    // The first place at which two texts of one length differ.
    std::size_t (*difference)(const Char* one, const Char* two, std::size_t length);
    // The first (last) character that is, or isn't, one of `set`, which isn't empty.
    std::size_t (*of_set)(const Char* text, std::size_t length, const Char* set, std::size_t count,
                          Stop stop, From from);
    // The first (last) place of `part`: 0 < part_length <= length.
    std::size_t (*part)(const Char* text, std::size_t length, const Char* part,
                        std::size_t part_length, From from);
};

// Where AVX2 is there. The text has at least `avx2_minimum` bytes.
inline constexpr std::size_t avx2_minimum = 128;
extern const VectorSearch<std::uint8_t> avx2_search_1;
extern const VectorSearch<std::uint32_t> avx2_search_4;

// The same as `part` in time proportional to the lengths, whatever the texts are.
template <class Char>
std::size_t find_part_linear(const Char* text, std::size_t length, const Char* part,
                             std::size_t part_length, From from);

}  // namespace tarn::intrinsics
