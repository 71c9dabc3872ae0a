// The search for elements that match a value.
#pragma once

#include "intrinsics/arrays/elements.h"
#include "intrinsics/arrays/runs.h"

namespace tarn::arrays {

// How elements are compared with the value that is looked for.
template <class T>
struct Equal {
    using Element = T;
    T value;
    [[gnu::always_inline]] bool operator()(T x) const { return x == value; }
};
// LOGICAL values, which are true when they aren't zero.
template <class T>
struct SameTruth {
    using Element = T;
    T value;
    [[gnu::always_inline]] bool operator()(T x) const { return (x != 0) == (value != 0); }
};

// The first of n elements that matches and counts; -1: none.
template <class Match>
struct FirstMatch {
    using T = typename Match::Element;
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline Index run(Match match, const T* x, const Flag* flags,
                                                   Index n) {
        constexpr Index group = 64;
        Index i = 0;
        for (; i + group <= n; i += group) {
            if (!any_match<group>(match, x + i)) continue;
            const Index at = by_few(match, x, flags, i, i + group);
            if (at >= 0) return at;
        }
        return by_few(match, x, flags, i, n);
    }
    template <Index count>
    [[gnu::always_inline]] static inline bool any_match(Match match, const T* x) {
        unsigned any = 0;
        for (Index l = 0; l < count; ++l) any |= static_cast<unsigned>(match(x[l]));
        return any != 0;
    }
    [[gnu::always_inline]] static inline Index by_few(Match match, const T* x, const Flag* flags,
                                                      Index first, Index last) {
        constexpr Index few = 8;
        for (; first + few <= last; first += few) {
            if (!any_match<few>(match, x + first)) continue;
            const Index at = plainly(match, x, flags, first, first + few);
            if (at >= 0) return at;
        }
        return plainly(match, x, flags, first, last);
    }
    [[gnu::always_inline]] static inline Index plainly(Match match, const T* x, const Flag* flags,
                                                       Index first, Index last) {
        for (Index i = first; i < last; ++i)
            if (match(x[i]) && (flags == nullptr || flags[i] != 0)) return i;
        return -1;
    }
};

}  // namespace tarn::arrays
