// The sizes that elements mostly have, as constants.
#pragma once

#include <cstdint>
#include <cstring>

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

// Calls work.operator()<size>() for the sizes that elements mostly have; false for another.
template <class Work>
[[gnu::always_inline]] inline bool with_size(Index element, Work&& work) {
    switch (element) {
        case 1:
            work.template operator()<1>();
            return true;
        case 2:
            work.template operator()<2>();
            return true;
        case 4:
            work.template operator()<4>();
            return true;
        case 8:
            work.template operator()<8>();
            return true;
        case 16:
            work.template operator()<16>();
            return true;
        default:
            return false;
    }
}

template <Index size>
[[gnu::always_inline]] inline void move_element(std::byte* to, const std::byte* from) {
    __builtin_memcpy(to, from, size);
}

// memcpy, and no call for a few bytes: pieces of one size from either end, which may overlap.
template <class Piece>
[[gnu::always_inline]] inline void copy_both_ends(std::byte* to, const std::byte* from, Index n) {
    Piece first;
    Piece last;
    const Index rest = n - static_cast<Index>(sizeof(Piece));
    __builtin_memcpy(&first, from, sizeof first);
    __builtin_memcpy(&last, from + rest, sizeof last);
    __builtin_memcpy(to, &first, sizeof first);
    __builtin_memcpy(to + rest, &last, sizeof last);
}
[[gnu::always_inline]] inline void copy_bytes(std::byte* to, const std::byte* from, Index n) {
    using Sixteen [[gnu::vector_size(16)]] = char;
    struct Pair {
        Sixteen halves[2];
    };
    struct Four {
        Pair pairs[2];
    };
    if (n > 128) {
        std::memcpy(to, from, static_cast<std::size_t>(n));
    } else if (n >= 64) {
        copy_both_ends<Four>(to, from, n);
    } else if (n >= 32) {
        copy_both_ends<Pair>(to, from, n);
    } else if (n >= 16) {
        copy_both_ends<Sixteen>(to, from, n);
    } else if (n >= 8) {
        copy_both_ends<std::uint64_t>(to, from, n);
    } else if (n >= 4) {
        copy_both_ends<std::uint32_t>(to, from, n);
    } else if (n >= 2) {
        copy_both_ends<std::uint16_t>(to, from, n);
    } else if (n == 1) {
        *to = *from;
    }
}

// The size of an element: a constant, or 0 and then a number that is told.
//
// The loops over elements that lie apart are routines of their own, which have the registers for
// themselves, and without vectors, which would have to be put together from single elements.
template <Index known>
struct ElementSize {
    Index told = known;

    [[gnu::always_inline]] Index bytes() const { return known != 0 ? known : told; }
    [[gnu::always_inline]] void move(std::byte* to, const std::byte* from) const {
        if constexpr (known != 0) {
            __builtin_memcpy(to, from, known);
        } else {
            copy_bytes(to, from, told);
        }
    }
    // n elements, a fixed number of bytes apart.
    [[gnu::always_inline]] void copy(std::byte* to, Index to_stride, const std::byte* from,
                                     Index stride, Index n) const {
        if (to_stride == bytes() && stride == bytes()) return copy_bytes(to, from, n * bytes());
        copy_apart(to, to_stride, from, stride, n);
    }
    [[gnu::noinline, gnu::optimize("no-tree-vectorize")]] void copy_apart(
        std::byte* to, Index to_stride, const std::byte* from, Index stride, Index n) const {
        for (Index i = 0; i < n; ++i, to += to_stride, from += stride) move(to, from);
    }
    [[gnu::always_inline]] void fill(std::byte* to, Index stride, const std::byte* value,
                                     Index n) const {
        if (stride != bytes()) return fill_apart(to, stride, value, n);
        for (Index i = 0; i < n; ++i) move(to + i * bytes(), value);
    }
    [[gnu::noinline, gnu::optimize("no-tree-vectorize")]] void fill_apart(std::byte* to,
                                                                          Index stride,
                                                                          const std::byte* value,
                                                                          Index n) const {
        for (Index i = 0; i < n; ++i, to += stride) move(to, value);
    }
};

// Calls work(size) with a constant size for what elements mostly have: the loops of `work` are
// compiled for each.
template <class Work>
[[gnu::always_inline]] inline void with_element_size(Index element, Work&& work) {
    const bool known = with_size(element, [&]<Index size>() { work(ElementSize<size>{}); });
    if (!known) work(ElementSize<0>{element});
}

}  // namespace tarn::arrays
