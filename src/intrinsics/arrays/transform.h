// Routines that move elements without knowing their type.
#pragma once

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

// Copies an array of the same shape, in whichever order is the quickest.
void copy(const View& to, const View& from);
// Puts one element everywhere.
void fill(const View& to, const std::byte* value);

Index count_true(const Mask& mask);

// PACK: the elements of `array` whose mask is true, into a vector of `room` elements that lie
// to_stride apart. Stops before the element that would be one too many: the result is then
// room + 1, otherwise the count.
Index pack(std::byte* to, Index to_stride, Index room, const View& array, const Mask& mask);

// UNPACK: where the mask is true the next of the vector's n elements, elsewhere the element of
// `field`, which has the shape of the mask (strides of 0 make a scalar an array). False: the vector
// was too short.
bool unpack(const View& to, const std::byte* vector, Index stride, Index n, const Mask& mask,
            const View& field);

// SPREAD: `to` has the shape of `source` with one more dimension at `dim`.
void spread(const View& to, const View& source, int dim);

// RESHAPE: fills `to` in the order of its loops, dimension order[0] fastest, from `source` in array
// element order, then from `pad` again and again. With no pad (null or empty) the source has
// enough.
void reshape(const View& to, const int* order, const View& source, const View* pad);

// CSHIFT by one shift for all, an integer of so many bytes.
void circular_shift(const View& to, const View& from, int dim, const std::byte* shift, Index size);
// By a shift for each vector along `dim`: integers of shifts.element bytes in an array that has the
// shape without `dim`.
void circular_shifts(const View& to, const View& from, int dim, const View& shifts);

// EOSHIFT. `boundary` has the shape without `dim`; strides of 0 make a scalar an array.
void end_off_shift(const View& to, const View& from, int dim, Index shift, const View& boundary);
void end_off_shifts(const View& to, const View& from, int dim, const View& shifts,
                    const View& boundary);

// The integer of 1, 2, 4, 8 or 16 bytes at an address, cut to what an extent can be.
Index load_integer(const std::byte* from, Index size);

}  // namespace tarn::arrays
