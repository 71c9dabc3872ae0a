// Walking over an array of gfortran's, of any rank and stride.
#pragma once

#include <cstdint>

#include "pairing/gcc/data_block.h"

namespace tarn::gcc {

// Calls `use(address, count, step)` for the elements in array element order: `count` of them,
// `step` bytes apart. Dimensions that follow each other without a gap are one run.
template <class Use>
void for_each_run(const ArrayDescriptor& array, std::size_t element_size, Use use) {
    const auto unit = static_cast<std::int64_t>(element_size);
    const int rank = array.rank;
    if (rank == 0) {
        use(array.base, std::int64_t{1}, unit);
        return;
    }
    for (int i = 0; i < rank; ++i)
        if (array.dimension[i].extent() == 0) return;
    std::int64_t count = array.dimension[0].extent();
    const std::int64_t stride = array.dimension[0].stride;
    int inner = 1;
    while (inner < rank && array.dimension[inner].stride == count * stride)
        count *= array.dimension[inner++].extent();

    std::int64_t index[15] = {};
    char* at = array.base;
    for (;;) {
        use(at, count, stride * unit);
        int i = inner;
        for (; i < rank; ++i) {
            const Dimension& dimension = array.dimension[i];
            at += dimension.stride * unit;
            if (++index[i] < dimension.extent()) break;
            at -= dimension.stride * unit * dimension.extent();
            index[i] = 0;
        }
        if (i == rank) return;
    }
}

// One element of an array of rank 1, from 0.
template <class Value>
Value& element(const ArrayDescriptor& array, std::int64_t index) {
    return *reinterpret_cast<Value*>(array.base + index * array.dimension[0].stride *
                                                      static_cast<std::int64_t>(sizeof(Value)));
}

}  // namespace tarn::gcc
