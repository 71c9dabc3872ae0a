// Work on one run of elements: n of them, a fixed number of bytes apart.
#pragma once

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

// Flags are bytes of 0 and 1.
using Flag = std::uint8_t;

void copy_run(std::byte* to, Index to_stride, const std::byte* from, Index from_stride, Index n,
              Index element);
// n copies of one element.
void fill_run(std::byte* to, Index to_stride, const std::byte* value, Index n, Index element);

// n elements, each so many times; copies of one lie copy_stride apart.
void repeat_run(std::byte* to, Index to_stride, Index copy_stride, Index copies,
                const std::byte* from, Index from_stride, Index n, Index element);

// The truth of n mask elements of `size` bytes.
void load_flags(Flag* flags, const std::byte* mask, Index stride, Index n, Index size, Truth truth);
bool is_true(const std::byte* mask, Index size, Truth truth);

// How many of n mask elements are true.
Index count_true(const std::byte* mask, Index stride, Index n, Index size, Truth truth);

// The same for rows of n, `step` bytes from one to the next.
void count_rows(Index* counts, const std::byte* mask, Index step, Index rows, Index stride, Index n,
                Index size, Truth truth);

Index sum_of(const Flag* flags, Index n);

// Copies the elements whose flag is set, one behind the other, and says how many there are. Writes
// nothing beyond `room` elements, which must hold all that are copied.
Index compact(std::byte* to, Index room, const std::byte* from, const Flag* flags, Index n,
              Index element);

// The same of elements and mask elements that lie apart, by the low bytes of the mask; there is
// room for all n. -1: elements of such a size are none of its business.
Index compact_apart(std::byte* to, const std::byte* from, Index stride, const std::byte* mask,
                    Index mask_stride, Index mask_size, Index n, Index element);

// UNPACK's inner loop: where a flag is set the next element of the vector, elsewhere the field's.
// `vector` moves past what was taken; `left` elements are there to be read.
void expand(std::byte* to, Index to_stride, const std::byte*& vector, Index stride, Index left,
            const std::byte* field, Index field_stride, const Flag* flags, Index n, Index element);

}  // namespace tarn::arrays
