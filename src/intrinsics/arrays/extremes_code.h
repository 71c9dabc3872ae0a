// The bodies of extremes.h, for the files that compile them.
#pragma once

#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/extremes.h"
#include "intrinsics/arrays/match.h"
#include "intrinsics/arrays/rows.h"

namespace tarn::arrays {

template <bool largest, class T>
[[gnu::always_inline]] inline bool beats(T a, T b) {
    return largest ? a > b : a < b;
}

// What a mask hides isn't compared, since a NaN there would raise an exception: the start, which
// beats nothing, stands in for it. (With the best so far in its place the compiler would make a
// branch of it, or compare after all.)
template <class T>
[[gnu::always_inline]] inline T counted(Flag flag, T x, T start) {
    return flag != 0 ? x : start;
}

// The best of n elements that lie together, and of `best`; n isn't less than `lanes`.
template <class T, bool largest>
struct BestOf {
    static constexpr bool has_vectors = true;
    using Vector [[gnu::vector_size(32)]] = T;
    static constexpr Index lanes = 32 / sizeof(T);

    [[gnu::always_inline]] static inline void join(Vector& best, Vector next) {
        if constexpr (largest) {
            best = next > best ? next : best;
        } else {
            best = next < best ? next : best;
        }
    }
    [[gnu::always_inline]] static inline void join(Vector& best, const T* x) {
        Vector next;
        __builtin_memcpy(&next, x, sizeof next);
        join(best, next);
    }
    [[gnu::always_inline]] static inline T run(T start, const T* x, Index n) {
        T all[lanes];
        for (T& lane : all) lane = start;
        Vector best[4];
        for (Vector& vector : best) __builtin_memcpy(&vector, all, sizeof vector);
        Index i = 0;
        for (; i + 4 * lanes <= n; i += 4 * lanes)
            for (Index v = 0; v < 4; ++v) join(best[v], x + i + v * lanes);
        for (; i + lanes <= n; i += lanes) join(best[0], x + i);
        join(best[0], x + n - lanes);  // some of them twice, which changes nothing
        join(best[0], best[1]);
        join(best[2], best[3]);
        join(best[0], best[2]);
        __builtin_memcpy(all, best, sizeof all);
#pragma GCC unroll 5
        for (Index half = lanes / 2; half > 0; half /= 2)
            for (Index l = 0; l < half; ++l)
                all[l] = beats<largest>(all[l + half], all[l]) ? all[l + half] : all[l];
        return all[0];
    }
};

// The same at any stride in bytes; few comparisons wait for the one before.
template <class T, bool largest>
T best_apart(T best, const std::byte* at, Index stride, Index n) {
    const auto better = [](T x, T y) { return beats<largest>(x, y) ? x : y; };
    const auto element = [&](Index i) { return *reinterpret_cast<const T*>(at + i * stride); };
    T a = best;
    T b = best;
    T c = best;
    T d = best;
    for (; n >= 4; n -= 4) {
        a = better(element(0), a);
        b = better(element(1), b);
        c = better(element(2), c);
        d = better(element(3), d);
        at += 4 * stride;
    }
    if (n > 0) a = better(element(0), a);
    if (n > 1) b = better(element(1), b);
    if (n > 2) c = better(element(2), c);
    return better(better(d, c), better(b, a));
}

template <class T, bool largest>
T best_of(T best, const std::byte* at, Index stride, Index n) {
    if constexpr (vectors_help<T>) {
        if (stride == static_cast<Index>(sizeof(T)) && n >= few_in_row)
            return dispatch<BestOf<T, largest>>(best, reinterpret_cast<const T*>(at), n);
    }
    return best_apart<T, largest>(best, at, stride, n);
}

// The best of the elements that count, and of `best`.
template <class T, bool largest>
T best_counted(T best, const Run& run) {
    if (run.n <= few_counted) {
        const T start = best;
        for_each_element<T>(run, [&](T x, bool counts) {
            const T value = counted(static_cast<Flag>(counts), x, start);
            best = beats<largest>(value, best) ? value : best;
        });
        return best;
    }
    for_counted<T>(run, [&](const T* x, Index n) {
        best = best_of<T, largest>(best, reinterpret_cast<const std::byte*>(x), sizeof(T), n);
    });
    return best;
}
template <class T, bool largest>
T best_of(T best, const Run& run) {
    if (run.mask == nullptr) return best_of<T, largest>(best, run.at, run.stride, run.n);
    return best_counted<T, largest>(best, run);
}

template <class T, bool largest>
struct BestAcross {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline void run(T* best, const T* x, const Flag* flags, Index n,
                                                  T start) {
        if (flags == nullptr) {
            for (Index i = 0; i < n; ++i) best[i] = beats<largest>(x[i], best[i]) ? x[i] : best[i];
            return;
        }
        for (Index i = 0; i < n; ++i) {
            const T value = counted(flags[i], x[i], start);
            best[i] = beats<largest>(value, best[i]) ? value : best[i];
        }
    }
};

template <class T>
T element_at(const Run& run, Index i) {
    T value;
    __builtin_memcpy(&value, run.at + i * run.stride, sizeof value);
    return value;
}

// ---- MAXVAL and MINVAL ----

template <class T, bool largest, bool finite>
struct Values {
    static constexpr T start = finite ? value_of_nothing<T, largest>() : worst_value<T, largest>();

    T best[block_width];

    // The value of a run whose best is `best`.
    [[gnu::noinline]] static T settle(T best, const Run& run) {
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
};

// A row of few elements. Of zeros the one that is met first stays.
template <class T, bool largest, bool finite>
struct ExtremeRule {
    using V = Values<T, largest, finite>;
    using Element = T;
    using State = T;
    static constexpr bool hides = true;
    static T hidden() { return V::start; }
    static State start() { return V::start; }
    [[gnu::always_inline]] static void take(State& best, T x, Index) {
        best = beats<largest>(x, best) ? x : best;
    }
    template <class MakeRun>
    static void store(const State& best, MakeRun&& run, std::byte* to) {
        *reinterpret_cast<T*>(to) = best;
        if constexpr (!is_integer<T>)
            if (best == V::start) *reinterpret_cast<T*>(to) = V::settle(best, run());
    }
};

template <class T, bool largest, bool finite>
void Extreme<T, largest, finite>::rows(const Rows& rows) const {
    using V = Values<T, largest, finite>;
    if (are_for_fours(rows)) return take_by_four(ExtremeRule<T, largest, finite>(), rows);
    for_each_row(rows, [](const Run& run, std::byte* to) {
        *reinterpret_cast<T*>(to) = V::settle(best_of<T, largest>(V::start, run), run);
    });
}
template <class T, bool largest, bool finite>
void Extreme<T, largest, finite>::begin(Block& block, Index n) const {
    using V = Values<T, largest, finite>;
    std::fill_n(block.as<V>().best, n, V::start);
}
template <class T, bool largest, bool finite>
void Extreme<T, largest, finite>::step(Block& block, const std::byte* x, const Flag* flags, Index n,
                                       Index) const {
    dispatch<BestAcross<T, largest>>(block.as<Values<T, largest, finite>>().best + 0,
                                     reinterpret_cast<const T*>(x), flags, n,
                                     Values<T, largest, finite>::start);
}
template <class T, bool largest, bool finite>
void Extreme<T, largest, finite>::end(Block& block, Index n, Run run, Index step, Index mask_step,
                                      std::byte* to, Index to_step) const {
    using V = Values<T, largest, finite>;
    for (Index i = 0; i < n; ++i) {
        *reinterpret_cast<T*>(to + i * to_step) = V::settle(block.as<V>().best[i], run);
        run.move(step, mask_step);
    }
}

// ---- MAXLOC and MINLOC ----

template <class T, class Place, bool largest>
struct BestPlaces {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline void run(T* best, Place* place, const T* x,
                                                  const Flag* flags, Index n, Index k, bool back,
                                                  T start) {
        const auto here = static_cast<Place>(k);
        const auto take = [&](bool better, T value, Index i) {
            best[i] = better ? value : best[i];
            place[i] = better ? here : place[i];
        };
        if (flags == nullptr && !back) {
            for (Index i = 0; i < n; ++i) take(beats<largest>(x[i], best[i]), x[i], i);
        } else if (flags == nullptr) {
            for (Index i = 0; i < n; ++i)
                take(beats<largest>(x[i], best[i]) | (x[i] == best[i]), x[i], i);
        } else if (!back) {
            for (Index i = 0; i < n; ++i) {
                const T value = counted(flags[i], x[i], start);
                take(beats<largest>(value, best[i]), value, i);
            }
        } else {
            // (Places don't count as long as the best is the start.)
            for (Index i = 0; i < n; ++i) {
                const T value = counted(flags[i], x[i], start);
                take(beats<largest>(value, best[i]) | (value == best[i]), value, i);
            }
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

// The quick search over pieces of an array that follow one another.
template <class T, bool largest>
class PlaceSearch {
  public:
    PlaceSearch(T start, bool back) : start_(start), back_(back), best_(start) {}

    void search(const Run& run) {
        constexpr Index piece =
            std::max<Index>(chunk_elements, 16384 / static_cast<Index>(sizeof(T)));
        const Index longest = run.mask == nullptr ? piece : chunk_elements;
        for (Index first = 0; first < run.n; first += longest) {
            const Index n = std::min(longest, run.n - first);
            const std::byte* const at = run.at + first * run.stride;
            const T best = run.mask == nullptr
                               ? best_of<T, largest>(start_, at, run.stride, n)
                               : best_counted<T, largest>(start_, run.from(first, n));
            if (beats<largest>(best, best_) || (back_ && best == best_ && best != start_)) {
                best_ = best;
                piece_ = run;
                piece_.at = at;
                piece_.n = n;
                if (run.mask != nullptr) piece_.mask += first * run.mask_stride;
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

template <class T, bool largest>
struct Places {
    using Place = std::conditional_t<sizeof(T) <= 4, std::int32_t, std::int64_t>;

    T best[block_width];
    Place place[block_width];
};

template <class T, bool largest>
[[gnu::noinline]] Index look_closely(const Run& run, T start, bool back) {
    BestPlace<T, largest> careful{start, back};
    careful.look(run, 0);
    return careful.found();
}

// A row of few elements, where the first of equal ones counts.
template <class T, bool largest>
struct ExtremePlaceRule {
    using Element = T;
    struct State {
        T best;
        Index place;
    };
    T worst;
    Index result_size;

    static constexpr bool hides = true;
    T hidden() const { return worst; }
    State start() const { return {worst, -1}; }
    [[gnu::always_inline]] void take(State& state, T x, Index k) const {
        const bool better = beats<largest>(x, state.best);
        state.best = better ? x : state.best;
        state.place = better ? k : state.place;
    }
    template <class MakeRun>
    void store(const State& state, MakeRun&& run, std::byte* to) const {
        const Index place =
            state.place >= 0 ? state.place : look_closely<T, largest>(run(), worst, false);
        store_integer(to, result_size, 1 + place);
    }
};

template <class T, bool largest>
void ExtremePlace<T, largest>::rows(const Rows& rows) const {
    if (!back && are_for_fours(rows))
        return take_by_four(ExtremePlaceRule<T, largest>{start, result_size}, rows);
    for_each_row(rows, [&](const Run& run, std::byte* to) {
        PlaceSearch<T, largest> quick(start, back);
        quick.search(run);
        store_integer(
            to, result_size,
            1 + (quick.decided() ? quick.found() : look_closely<T, largest>(run, start, back)));
    });
}
template <class T, bool largest>
void ExtremePlace<T, largest>::begin(Block& block, Index n) const {
    std::fill_n(block.as<Places<T, largest>>().best, n, start);
    std::fill_n(block.as<Places<T, largest>>().place, n, -1);
}
template <class T, bool largest>
void ExtremePlace<T, largest>::step(Block& block, const std::byte* x, const Flag* flags, Index n,
                                    Index k) const {
    auto& state = block.as<Places<T, largest>>();
    dispatch<BestPlaces<T, typename Places<T, largest>::Place, largest>>(
        state.best + 0, state.place + 0, reinterpret_cast<const T*>(x), flags, n, k, back, start);
}
template <class T, bool largest>
void ExtremePlace<T, largest>::end(Block& block, Index n, Run run, Index step, Index mask_step,
                                   std::byte* to, Index to_step) const {
    const auto& state = block.as<Places<T, largest>>();
    for (Index i = 0; i < n; ++i) {
        const Index place = state.best[i] != start ? Index{state.place[i]}
                                                   : look_closely<T, largest>(run, start, back);
        store_integer(to + i * to_step, result_size, 1 + place);
        run.move(step, mask_step);
    }
}

// The search in one short run without gaps: `found` is the place, if there is one for sure.
template <class T, bool largest>
bool find_in_few(const View& array, T start, bool back, Index& found) {
    const auto* const x = reinterpret_cast<const T*>(array.base);
    const Index n = array.count();
    const T best = best_of<T, largest>(start, array.base, sizeof(T), n);
    if (best == start) return false;
    found = back ? n - 1 : 0;
    while (x[found] != best) found += back ? -1 : 1;
    return true;
}

// The quick search where all elements count: `found` is the place, if there is one for sure.
template <class T, bool largest>
bool find_extreme(const View& array, T start, bool back, Index& found) {
    const Loops<1> loops = loops_over(array);
    const Index stride = loops.stride[0][0];
    constexpr Index piece = std::max<Index>(chunk_elements, 16384 / static_cast<Index>(sizeof(T)));
    T best = start;
    const std::byte* best_at = nullptr;
    Index best_first = 0;
    Index best_n = 0;
    Index seen = 0;
    walk(loops, {array.base}, [&](const std::array<std::byte*, 1>& at, Index n) {
        for (Index first = 0; first < n; first += piece) {
            const Index m = std::min(piece, n - first);
            const std::byte* const from = at[0] + first * stride;
            const T value = best_of<T, largest>(start, from, stride, m);
            if (!beats<largest>(value, best) && !(back && value == best && value != start))
                continue;
            best = value;
            best_at = from;
            best_first = seen + first;
            best_n = m;
        }
        seen += n;
    });
    if (best == start) return false;
    const auto is_best = [&](Index i) {
        return *reinterpret_cast<const T*>(best_at + i * stride) == best;
    };
    Index i = 0;
    if (back) {
        i = best_n - 1;
        while (!is_best(i)) --i;
    } else if (stride == static_cast<Index>(sizeof(T)) && best_n > few_counted) {
        i = dispatch<FirstMatch<Equal<T>>>(Equal<T>{best}, reinterpret_cast<const T*>(best_at),
                                           static_cast<const Flag*>(nullptr), best_n);
    } else {
        while (!is_best(i)) ++i;
    }
    found = best_first + i;
    return true;
}

// What has been found so far, one element after the other. Few elements are better than all before
// them, so that this is a branch that is seldom taken.
template <class T, bool largest>
struct BestSoFar {
    T best;
    Index seen = 0;
    Index place = -1;

    template <bool masked>
    [[gnu::noinline]] void look(const std::byte* x, Index stride, const std::byte* flag,
                                Index flag_stride, Index n) {
        T found = best;
        for (Index i = 0; i < n; ++i, x += stride, flag += flag_stride) {
            // A hidden NaN would raise an exception if it were compared.
            if (masked && *flag == std::byte{0}) continue;
            const T value = *reinterpret_cast<const T*>(x);
            if (beats<largest>(value, found)) [[unlikely]] {
                found = value;
                place = seen + i;
            }
        }
        best = found;
        seen += n;
    }
};

template <class T, bool largest, bool masked>
Index find_among_few(const View& array, const View& mask, T start) {
    BestSoFar<T, largest> search{start};
    const Loops<2> loops = loops_over(array, mask);
    walk(loops, {array.base, mask.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        search.template look<masked>(at[0], loops.stride[0][0], at[1], loops.stride[0][1], n);
    });
    return search.place;
}

// The quick ways for few elements and short runs; -1: it takes another.
template <class T, bool largest>
Index extreme_among_few(const View& array, const Mask* mask, T start) {
    constexpr Index near = 256;
    if (!are_few(array) && (mask == nullptr || array.count() > near)) return -1;
    if (mask == nullptr)
        return array.count() <= near && !is_contiguous(array)
                   ? find_among_few<T, largest, false>(array, array, start)
                   : -1;
    if (mask->truth != Truth::low_byte) return -1;
    return find_among_few<T, largest, true>(array, mask->view, start);
}

template <class T, bool largest>
Index place_of_extreme(const View& array, const Mask* mask, T start, bool back) {
    if (!back) {
        const Index place = extreme_among_few<T, largest>(array, mask, start);
        if (place >= 0) return place;
    }
    if (mask == nullptr) {
        Index found = 0;
        if (array.rank > 0 && array.count() <= 4 * few_in_row && is_contiguous(array) &&
            find_in_few<T, largest>(array, start, back, found))
            return found;
        if (find_extreme<T, largest>(array, start, back, found)) return found;
    } else {
        PlaceSearch<T, largest> quick(start, back);
        for_runs(array, mask, [&](const Run& run) { quick.search(run); });
        if (quick.decided()) return quick.found();
    }
    BestPlace<T, largest> careful{start, back};
    Index first = 0;
    for_runs(array, mask, [&](const Run& run) {
        careful.look(run, first);
        first += run.n;
    });
    return careful.found();
}

#define TARN_COMPILE_EXTREME(T, largest)                                                      \
    template struct Extreme<T, largest, false>;                                               \
    template struct Extreme<T, largest, true>;                                                \
    template struct ExtremePlace<T, largest>;                                                 \
    template Index place_of_extreme<T, largest>(const View& array, const Mask* mask, T start, \
                                                bool back);
#define TARN_COMPILE_EXTREMES(T)  \
    TARN_COMPILE_EXTREME(T, true) \
    TARN_COMPILE_EXTREME(T, false)

}  // namespace tarn::arrays
