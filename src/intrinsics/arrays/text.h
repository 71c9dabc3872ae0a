// Reductions and locations of CHARACTER arrays, whose characters have 1 or 4 bytes.
#pragma once

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

// How two texts stand to one another: below 0, 0 or above. Lengths in characters; the shorter one
// counts as padded with blanks.
template <class Character>
int compare_texts(const Character* a, Index a_length, const Character* b, Index b_length);

// MAXLOC and MINLOC of a whole array: the place in array element order, from 0; -1: none counts.
template <class Character>
Index place_of_extreme_text(const View& array, const Mask* mask, bool largest, bool back);

// The same along a dimension, each place + 1 into `result`.
template <class Character>
void place_extreme_texts(const View& array, const Mask* mask, int dim, bool largest, bool back,
                         const View& result);

// MAXVAL and MINVAL: the text itself, or one of the lowest or highest characters when there is
// none.
template <class Character>
void extreme_text(const View& array, const Mask* mask, bool largest, std::byte* result);
template <class Character>
void extreme_texts(const View& array, const Mask* mask, int dim, bool largest, const View& result);

// FINDLOC.
template <class Character>
Index place_of_text(const View& array, const Mask* mask, const Character* value, Index length,
                    bool back);
template <class Character>
void place_texts(const View& array, const Mask* mask, int dim, const Character* value, Index length,
                 bool back, const View& result);

}  // namespace tarn::arrays
