// MAXVAL, MINVAL, MAXLOC and MINLOC.
//
// A NaN never wins against a number. Among equal elements the first wins, or with BACK= the last;
// of zeros of both signs too, the one that is met first is the value. The quick loops look for the
// best value only, in any order; what that leaves open (a best value that no element may have
// beaten, zeros, where the element stands) is settled by a look at the run again.
//
// The routines are compiled once, for the types in extremes_of_....cpp.
#pragma once

#include "intrinsics/arrays/along.h"
#include "intrinsics/arrays/elements.h"

namespace tarn::arrays {

// Where the search for the largest starts, or the smallest.
template <class T, bool largest>
constexpr T worst_value() {
    if constexpr (is_integer<T>) {
        return largest ? smallest_finite<T>() : largest_finite<T>();
    } else {
        return largest ? -infinity<T>() : infinity<T>();
    }
}
// What a run without elements yields.
template <class T, bool largest>
constexpr T value_of_nothing() {
    return largest ? smallest_finite<T>() : largest_finite<T>();
}

// MAXVAL and MINVAL. `finite`: the search starts at the worst finite value, which is also what
// stands if nothing beats it.
template <class T, bool largest, bool finite>
struct Extreme final : Reduction {
    void rows(const Rows& rows) const override;
    void begin(Block& block, Index n) const override;
    void step(Block& block, const std::byte* x, const Flag* flags, Index n, Index k) const override;
    void end(Block& block, Index n, Run run, Index step, Index mask_step, std::byte* to,
             Index to_step) const override;
};

// MAXLOC and MINLOC along a dimension; results are integers of result_size bytes.
template <class T, bool largest>
struct ExtremePlace final : Reduction {
    bool back;
    Index result_size;
    T start;

    ExtremePlace(bool with_back, Index size, T worst = worst_value<T, largest>())
        : back(with_back), result_size(size), start(worst) {}

    void rows(const Rows& rows) const override;
    void begin(Block& block, Index n) const override;
    void step(Block& block, const std::byte* x, const Flag* flags, Index n, Index k) const override;
    void end(Block& block, Index n, Run run, Index step, Index mask_step, std::byte* to,
             Index to_step) const override;
};

// Where the best of a whole array stands in array element order, from 0; -1 if no element counts.
template <class T, bool largest>
Index place_of_extreme(const View& array, const Mask* mask, T start, bool back);

}  // namespace tarn::arrays
