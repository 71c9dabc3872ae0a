// MAXVAL, MINVAL, MAXLOC and MINLOC.
//
// A NaN never wins against a number. Among equal elements the first wins, or with BACK= the last;
// of zeros of both signs too, the one that is met first is the value. The quick loops look for the
// best value only, in any order; what that leaves open (a best value that no element may have
// beaten, zeros, where the element stands) is settled by a look at the run again.
#pragma once

#include "intrinsics/arrays/along.h"
#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/elements.h"
#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/match.h"

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

template <bool largest, class T>
[[gnu::always_inline]] inline bool beats(T a, T b) {
    return largest ? a > b : a < b;
}

// The best of n elements and `best`; several at a time, whose results come together at the end.
template <class T, bool largest>
struct BestOf {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline T run(T best, const T* x, Index n) {
        constexpr Index lanes = sizeof(T) >= 10 ? 1 : 128 / sizeof(T);
        if (lanes == 1 || n < lanes) {
            for (Index i = 0; i < n; ++i) best = beats<largest>(x[i], best) ? x[i] : best;
            return best;
        }
        T lane[lanes];
        for (Index l = 0; l < lanes; ++l) lane[l] = best;
        const auto join = [&](const T* from) {
            for (Index l = 0; l < lanes; ++l)
                lane[l] = beats<largest>(from[l], lane[l]) ? from[l] : lane[l];
        };
        for (Index i = 0; i + lanes <= n; i += lanes) join(x + i);
        join(x + n - lanes);  // some of them twice, which changes nothing
        for (Index half = lanes / 2; half > 0; half /= 2)
            for (Index l = 0; l < half; ++l)
                lane[l] = beats<largest>(lane[l + half], lane[l]) ? lane[l + half] : lane[l];
        return lane[0];
    }
};

template <class T, bool largest>
struct BestAcross {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline void run(T* best, const T* x, const Flag* flags, Index n) {
        if (flags == nullptr) {
            for (Index i = 0; i < n; ++i) best[i] = beats<largest>(x[i], best[i]) ? x[i] : best[i];
            return;
        }
        for (Index i = 0; i < n; ++i)
            best[i] = flags[i] != 0 && beats<largest>(x[i], best[i]) ? x[i] : best[i];
    }
};

template <class T>
T element_at(const Run& run, Index i) {
    T value;
    __builtin_memcpy(&value, run.at + i * run.stride, sizeof value);
    return value;
}

// MAXVAL and MINVAL. `Finite`: the search starts at the worst finite value, which is also what
// stands if nothing beats it.
template <class T, bool largest, bool finite>
struct Extreme final : Reduction {
    struct State {
        T best[block_width];
    };
    static constexpr T start = finite ? value_of_nothing<T, largest>() : worst_value<T, largest>();

    // The value of a run whose best is `best`.
    static T settle(T best, const Run& run) {
        if constexpr (is_integer<T>) {
            return best;
        } else {
            if (best == 0) return first_zero(run);
            if (finite || best != start) return best;
            bool counted = false;
            for (Index i = 0; i < run.n; ++i) {
                if (!run.counts(i)) continue;
                counted = true;
                if (element_at<T>(run, i) == start) return start;
            }
            return counted ? static_cast<T>(__builtin_nan("")) : value_of_nothing<T, largest>();
        }
    }
    static T first_zero(const Run& run) {
        for (Index i = 0; i < run.n; ++i) {
            const T value = element_at<T>(run, i);
            if (value == 0 && run.counts(i)) return value;
        }
        return 0;
    }

    static T whole(const Run& run) {
        T best = start;
        for_counted<T>(
            run, [&](const T* x, Index n) { best = dispatch<BestOf<T, largest>>(best, x, n); });
        return settle(best, run);
    }
    void one(const Run& run, std::byte* to) const override {
        *reinterpret_cast<T*>(to) = whole(run);
    }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().best, n, start);
    }
    void step(Block& block, const std::byte* x, const Flag* flags, Index n, Index) const override {
        dispatch<BestAcross<T, largest>>(block.as<State>().best + 0, reinterpret_cast<const T*>(x),
                                         flags, n);
    }
    void end(Block& block, Index n, Run run, Index step, Index mask_step, std::byte* to,
             Index to_step) const override {
        for (Index i = 0; i < n; ++i) {
            *reinterpret_cast<T*>(to + i * to_step) = settle(block.as<State>().best[i], run);
            run.move(step, mask_step);
        }
    }
};

template <class T, class Place, bool largest>
struct BestPlaces {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline void run(T* best, Place* place, const T* x,
                                                  const Flag* flags, Index n, Index k, bool back) {
        const auto here = static_cast<Place>(k);
        const auto take = [&](bool better, Index i) {
            best[i] = better ? x[i] : best[i];
            place[i] = better ? here : place[i];
        };
        if (flags == nullptr && !back) {
            for (Index i = 0; i < n; ++i) take(beats<largest>(x[i], best[i]), i);
        } else if (flags == nullptr) {
            for (Index i = 0; i < n; ++i)
                take(beats<largest>(x[i], best[i]) | (x[i] == best[i]), i);
        } else if (!back) {
            for (Index i = 0; i < n; ++i) take((flags[i] != 0) & beats<largest>(x[i], best[i]), i);
        } else {
            for (Index i = 0; i < n; ++i)
                take((flags[i] != 0) & (beats<largest>(x[i], best[i]) | (x[i] == best[i])), i);
        }
    }
};

// Where the best of a run stands, from 0; -1 if no element counts. If none beats `start` the first
// that equals it stands for the best (the last with BACK=), and failing that the first that counts.
template <class T, bool largest>
struct BestPlace {
    T start;
    bool back;

    T best = start;
    Index place = -1;
    Index first_counted = -1;
    bool equalled = false;

    // One element after the other, for what the quick search leaves open.
    void look(const Run& run, Index first) {
        for (Index i = 0; i < run.n; ++i) {
            if (!run.counts(i)) continue;
            if (first_counted < 0) first_counted = first + i;
            const T value = element_at<T>(run, i);
            if (beats<largest>(value, best) || (value == best && (back || !equalled))) {
                best = value;
                place = first + i;
                equalled = true;
            }
        }
    }
    Index found() const { return place >= 0 ? place : first_counted; }
};

// The quick search over pieces of an array that follow one another; `Again` walks them once more.
template <class T, bool largest>
class PlaceSearch {
  public:
    PlaceSearch(T start, bool back) : start_(start), back_(back), best_(start) {}

    void search(const Run& run) {
        constexpr Index piece =
            std::max<Index>(chunk_elements, 16384 / static_cast<Index>(sizeof(T)));
        const bool together = run.mask == nullptr && run.stride == static_cast<Index>(sizeof(T));
        const Index longest = together ? piece : chunk_elements;
        for (Index first = 0; first < run.n; first += longest) {
            const Run part = run.from(first, std::min(longest, run.n - first));
            T best = start_;
            for_counted<T>(part, [&](const T* x, Index n) {
                best = dispatch<BestOf<T, largest>>(best, x, n);
            });
            if (beats<largest>(best, best_) || (back_ && best == best_ && best != start_)) {
                best_ = best;
                piece_ = part;
                piece_first_ = seen_ + first;
            }
        }
        seen_ += run.n;
    }
    // False: nothing beat the start, so that every element must be looked at.
    bool decided() const { return best_ != start_; }
    Index found() const {
        if (!back_ && piece_.mask == nullptr && piece_.stride == static_cast<Index>(sizeof(T)))
            return piece_first_ + dispatch<FirstMatch<Equal<T>>>(
                                      Equal<T>{best_}, reinterpret_cast<const T*>(piece_.at),
                                      static_cast<const Flag*>(nullptr), piece_.n);
        for (Index i = 0; i < piece_.n; ++i) {
            const Index k = back_ ? piece_.n - 1 - i : i;
            if (element_at<T>(piece_, k) == best_ && piece_.counts(k)) return piece_first_ + k;
        }
        return -1;
    }

  private:
    T start_;
    bool back_;
    T best_;
    Run piece_ = {};
    Index piece_first_ = 0;
    Index seen_ = 0;
};

// MAXLOC and MINLOC along a dimension; results are integers of result_size bytes.
template <class T, bool largest>
struct ExtremePlace final : Reduction {
    using Place = std::conditional_t<sizeof(T) <= 4, std::int32_t, std::int64_t>;
    struct State {
        T best[block_width];
        Place place[block_width];
    };
    bool back;
    Index result_size;
    T start;

    ExtremePlace(bool with_back, Index size, T worst = worst_value<T, largest>())
        : back(with_back), result_size(size), start(worst) {}

    Index look_closely(const Run& run) const {
        BestPlace<T, largest> careful{start, back};
        careful.look(run, 0);
        return careful.found();
    }
    void one(const Run& run, std::byte* to) const override {
        PlaceSearch<T, largest> quick(start, back);
        quick.search(run);
        store_integer(to, result_size, 1 + (quick.decided() ? quick.found() : look_closely(run)));
    }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().best, n, start);
        std::fill_n(block.as<State>().place, n, Place(-1));
    }
    void step(Block& block, const std::byte* x, const Flag* flags, Index n,
              Index k) const override {
        State& state = block.as<State>();
        dispatch<BestPlaces<T, Place, largest>>(state.best + 0, state.place + 0,
                                                reinterpret_cast<const T*>(x), flags, n, k, back);
    }
    void end(Block& block, Index n, Run run, Index step, Index mask_step, std::byte* to,
             Index to_step) const override {
        const State& state = block.as<State>();
        for (Index i = 0; i < n; ++i) {
            const Index place = state.best[i] != start ? state.place[i] : look_closely(run);
            store_integer(to + i * to_step, result_size, 1 + place);
            run.move(step, mask_step);
        }
    }
};

// Calls work(run) for the pieces of an array in array element order.
template <class Work>
void for_runs(const View& array, const Mask* mask, Work&& work) {
    const View& second = mask != nullptr ? mask->view : array;
    const Loops<2> loops = loops_over(array, second);
    walk(loops, std::array<std::byte*, 2>{array.base, second.base},
         [&](const std::array<std::byte*, 2>& at, Index n) {
             Run run{at[0], loops.stride[0][0], n, array.element};
             if (mask != nullptr) {
                 run.mask = at[1];
                 run.mask_stride = loops.stride[0][1];
                 run.mask_size = mask->view.element;
                 run.truth = mask->truth;
             }
             return work(run);
         });
}

// Where the best of a whole array stands in array element order, from 0; -1 if no element counts.
template <class T, bool largest>
Index place_of_extreme(const View& array, const Mask* mask, T start, bool back) {
    PlaceSearch<T, largest> quick(start, back);
    for_runs(array, mask, [&](const Run& run) { quick.search(run); });
    if (quick.decided()) return quick.found();
    BestPlace<T, largest> careful{start, back};
    Index first = 0;
    for_runs(array, mask, [&](const Run& run) {
        careful.look(run, first);
        first += run.n;
    });
    return careful.found();
}

}  // namespace tarn::arrays
