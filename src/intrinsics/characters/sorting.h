// Sorting by index, and searching what is sorted.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::intrinsics {

// Gives the numbers (from 1) of the values in ascending order; equal ones come in no order that
// could be relied on, but always in the same. The values stay where they are.
template <class Value>
void sort_index(std::int32_t* index, const Value* values, std::int32_t count);
// The same for character values of one length, by the numbers of their bytes.
void sort_characters(std::int32_t* index, const char* values, std::int32_t count,
                     std::size_t length);

// The number (from 1) of an element of an ascending array that equals the key; 0 if there is none.
std::int32_t find_sorted(const char* key, std::intptr_t key_length, const char* array,
                         std::int32_t count, std::intptr_t length);

}  // namespace tarn::intrinsics
