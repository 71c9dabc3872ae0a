// Assignment, concatenation and comparison of characters as compiled code asks for them in the
// native dialect. The forms differ in what they check and in what they do when source and
// destination overlap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::intrinsics {

// A character value; a length below 0 counts as 0.
struct Characters {
    char* address;
    std::intptr_t length;
};

// What happens when the source overlaps the destination: it is copied as if all of it were read
// before anything is written; it is copied forwards byte by byte, so that it may smear; or it's a
// failure.
enum class Overlap { safe, plain, failure };
enum class Undefined { allowed, failure };  // bytes that nothing has been assigned to

inline constexpr char undefined_byte = '\x80';

void copy_characters(const char* source, char* destination, std::intptr_t source_length,
                     std::intptr_t destination_length, Overlap overlap, Undefined undefined);

void concatenate(Characters destination, const Characters* pieces, std::intptr_t count,
                 Overlap overlap, Undefined undefined);

// Below, at or above 0. Where the first is the longer one, its bytes from 0x80 up count as below
// the blanks that the second is padded with.
int order_of(const char* one, std::intptr_t one_length, const char* two, std::intptr_t two_length);

}  // namespace tarn::intrinsics
