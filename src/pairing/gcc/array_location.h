// What the entries of MAXLOC, MINLOC and FINDLOC share.
#pragma once

#include "pairing/gcc/array_descriptor.h"

namespace tarn::gcc {

// BACK= of MAXLOC and MINLOC by value. The compiler passes the address of a KIND= before it, so
// that what stands in its place is BACK= only if it is 0 or 1; no address ends in such a word.
struct Back {
    bool set;
    bool behind_kind;
};
inline Back back_of(std::intptr_t given, std::intptr_t next) {
    const auto low = static_cast<Logical>(given);
    if (low == 0 || low == 1) return {low != 0, false};
    return {static_cast<Logical>(next) != 0, true};
}

// The result of a whole array's location: a vector of as many positions as there are dimensions.
inline View positions_for(ArrayDescriptor& to, int rank, Index size, const char* name) {
    View shape;
    shape.rank = 1;
    shape.dims[0].extent = rank;
    return result_for(to, shape, size, name);
}

// The subscripts of the element at `place` in array element order; zeros for -1.
inline void store_subscripts(const View& array, Index place, const View& to) {
    std::byte* at = to.base;
    const Index step = to.dims[0].stride;
    if (place < 0) {
        for (int d = 0; d < array.rank; ++d, at += step) arrays::store_integer(at, to.element, 0);
        return;
    }
    // What is left for the last dimension is its subscript.
    for (int d = 0; d < array.rank - 1; ++d, at += step) {
        const Index rest = place / array.dims[d].extent;
        arrays::store_integer(at, to.element, place - rest * array.dims[d].extent + 1);
        place = rest;
    }
    arrays::store_integer(at, to.element, place + 1);
}

}  // namespace tarn::gcc
