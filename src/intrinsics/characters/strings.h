// Fortran's operations on character values, for both dialects and both kinds of characters:
// std::uint8_t (kind 1) and std::uint32_t (kind 4). A value is an address and a length in
// characters, without a terminator; short ones count as padded with blanks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "intrinsics/characters/vector_search.h"

namespace tarn::intrinsics {

template <class Char>
inline constexpr Char blank = static_cast<Char>(' ');

// The length up to the last character that is no blank.
template <class Char>
std::size_t trimmed_behind_blank(const Char* text, std::size_t length);
template <class Char>
std::size_t trimmed_length(const Char* text, std::size_t length) {
    if (length == 0 || text[length - 1] != blank<Char>) return length;
    return trimmed_behind_blank(text, length);
}

// The place of the first (last) character other than `c`, or `none`.
template <class Char>
std::size_t other_than(const Char* text, std::size_t length, Char c, From from);

// Below, at or above 0, by the order of the characters' numbers.
template <class Char>
int compare(const Char* one, std::size_t one_length, const Char* two, std::size_t two_length);

// The following give positions that count from 1, and 0 for "none".

// INDEX. An empty part is found at 1, with From::end behind the last character.
template <class Char>
std::size_t index_of(const Char* text, std::size_t length, const Char* part,
                     std::size_t part_length, From from);
// SCAN and VERIFY. Nothing is in an empty set.
template <class Char>
std::size_t position_of_set(const Char* text, std::size_t length, const Char* set,
                            std::size_t count, Stop stop, From from);

template <class Char>
void fill_blanks(Char* text, std::size_t length);
// Assignment of values that don't overlap, or overlap completely.
template <class Char>
void assign(Char* destination, std::size_t room, const Char* source, std::size_t length);

// The blanks at one end go to the other.
template <class Char>
void adjust_left(Char* result, const Char* text, std::size_t length);
template <class Char>
void adjust_right(Char* result, const Char* text, std::size_t length);

}  // namespace tarn::intrinsics
