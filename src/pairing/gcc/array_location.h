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
inline View positions_for(ArrayDescriptor& to, const View& array, Index size, const char* name) {
    View shape;
    shape.rank = 1;
    shape.dims[0].extent = array.rank;
    return result_for(to, shape, size, name);
}

// The subscripts of the element at `place` in array element order; zeros for -1.
inline void store_subscripts(const View& array, Index place, const View& to) {
    for (int d = 0; d < array.rank; ++d) {
        const Index extent = array.dims[d].extent;
        arrays::store_integer(to.base + d * to.dims[0].stride, to.element,
                              place < 0 ? 0 : place % extent + 1);
        if (place >= 0) place /= extent;
    }
}

}  // namespace tarn::gcc
