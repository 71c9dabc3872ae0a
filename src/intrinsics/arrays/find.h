// FINDLOC: where an element that equals a value stands.
#pragma once

#include "intrinsics/arrays/along.h"
#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/match.h"
#include "intrinsics/arrays/rows.h"

namespace tarn::arrays {

template <class Match>
struct MatchAcross {
    using T = typename Match::Element;
    static constexpr bool has_vectors = vectors_help<T>;
    template <class Place>
    [[gnu::always_inline]] static inline void run(Match match, Place* place, const T* x,
                                                  const Flag* flags, Index n, Index k) {
        const auto here = static_cast<Place>(k);
        if (flags == nullptr) {
            for (Index i = 0; i < n; ++i)
                place[i] = (match(x[i]) & (place[i] < 0)) ? here : place[i];
            return;
        }
        for (Index i = 0; i < n; ++i)
            place[i] = (match(x[i]) & (place[i] < 0) & (flags[i] != 0)) ? here : place[i];
    }
};

// The first of n elements at any stride that matches; -1: none.
template <class Match>
Index first_match_apart(Match match, const std::byte* at, Index stride, Index n) {
    using T = typename Match::Element;
    const auto matches = [&](Index i) {
        return match(*reinterpret_cast<const T*>(at + i * stride));
    };
    Index i = 0;
    constexpr Index some = 4;  // one branch for so many takes less than one for each
    for (; i + some <= n; i += some)
        if (matches(i) | matches(i + 1) | matches(i + 2) | matches(i + 3)) break;
    for (; i < n; ++i)
        if (matches(i)) return i;
    return -1;
}

template <class Match>
Index first_match(Match match, const Run& run) {
    using T = typename Match::Element;
    if (run.mask == nullptr) {
        if (run.stride != static_cast<Index>(sizeof(T)))
            return first_match_apart(match, run.at, run.stride, run.n);
        return dispatch<FirstMatch<Match>>(match, reinterpret_cast<const T*>(run.at),
                                           static_cast<const Flag*>(nullptr), run.n);
    }
    // Growing pieces: a match near the start doesn't wait for flags of what is far behind it.
    Chunk<T> chunk;
    Index length = 32;
    for (Index first = 0; first < run.n; first += length) {
        if (first > 0) length = std::min(2 * length, chunk_elements);
        const Run part = run.from(first, std::min(length, run.n - first));
        const Index at =
            dispatch<FirstMatch<Match>>(match, chunk.load(part), chunk.load_mask(part), part.n);
        if (at >= 0) return first + at;
    }
    return -1;
}

// The same for each of some rows of few elements: calls store(place, to).
template <bool masked, class Match, class Store>
[[gnu::always_inline]] inline void first_of_few(Match match, const Rows& rows, Store&& store) {
    using T = typename Match::Element;
    const Index n = rows.first.n;
    const Index stride = rows.first.stride;
    const Index mask_stride = masked ? rows.first.mask_stride : 0;
    const std::byte* at = rows.first.at;
    const std::byte* mask = rows.first.mask;
    std::byte* to = rows.to;
    for (Index left = rows.n; left > 0; --left) {
        const auto found = [&](Index i) {
            return match(*reinterpret_cast<const T*>(at + i * stride)) &&
                   (!masked || mask[i * mask_stride] != std::byte{0});
        };
        Index i = 0;
        while (i < n && !found(i)) ++i;
        store(i < n ? i : -1, to);
        at += rows.step;
        if constexpr (masked) mask += rows.mask_step;
        to += rows.to_step;
    }
}

// FINDLOC along a dimension. With BACK= the run is looked at from its end.
template <class Match>
struct MatchPlace final : Reduction {
    using Element = typename Match::Element;
    struct State {
        std::int32_t place[block_width];
    };
    Match match;
    bool back;
    Index result_size;

    MatchPlace(Match wanted, bool with_back, Index size)
        : match(wanted), back(with_back), result_size(size) {}

    void rows(const Rows& given) const override {
        Rows rows = given;
        Run& run = rows.first;
        if (back && run.n > 0) {
            run.move((run.n - 1) * run.stride, (run.n - 1) * run.mask_stride);
            run.stride = -run.stride;
            run.mask_stride = -run.mask_stride;
        }
        const auto store = [&](Index place, std::byte* to) {
            const Index found = back && place >= 0 ? run.n - 1 - place : place;
            store_integer(to, result_size, 1 + found);
        };
        if (are_for_fours(rows)) {
            if (run.mask != nullptr) return first_of_few<true>(match, rows, store);
            return first_of_few<false>(match, rows, store);
        }
        for_each_row(rows,
                     [&](const Run& row, std::byte* to) { store(first_match(match, row), to); });
    }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().place, n, -1);
    }
    void step(Block& block, const std::byte* at, const Flag* flags, Index n,
              Index k) const override {
        std::int32_t* const place = block.as<State>().place;
        const auto* const x = reinterpret_cast<const Element*>(at);
        if (!back) {
            dispatch<MatchAcross<Match>>(match, place, x, flags, n, k);
            return;
        }
        // The last match is the one that stands at the end.
        for (Index i = 0; i < n; ++i)
            if (match(x[i]) && (flags == nullptr || flags[i] != 0))
                place[i] = static_cast<std::int32_t>(k);
    }
    void end(Block& block, Index n, Run, Index, Index, std::byte* to,
             Index to_step) const override {
        for (Index i = 0; i < n; ++i)
            store_integer(to + i * to_step, result_size, 1 + Index{block.as<State>().place[i]});
    }
};

template <bool masked, class Match>
[[gnu::noinline]] Index first_in_run(Match match, const std::byte* x, Index stride,
                                     const std::byte* flag, Index flag_stride, Index n) {
    using T = typename Match::Element;
    if (!masked) return first_match_apart(match, x, stride, n);
    for (Index i = 0; i < n; ++i, x += stride, flag += flag_stride)
        if (match(*reinterpret_cast<const T*>(x)) && *flag != std::byte{0}) return i;
    return -1;
}

// The first match among few elements.
template <bool masked, class Match>
Index place_among_few(Match match, const View& array, const View& mask) {
    const Loops<2> loops = loops_over(array, mask);
    Index seen = 0;
    Index found = -1;
    walk(loops, {array.base, mask.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        const Index* const step = loops.stride[0];
        const Index place = first_in_run<masked>(match, at[0], step[0], at[1], step[1], n);
        if (place >= 0) found = seen + place;
        seen += n;
        return place < 0;
    });
    return found;
}

// Where the first match of a whole array stands in array element order (the last with BACK=), from
// 0; -1: nowhere.
template <class Match>
Index place_of_match(Match match, View array, const Mask* mask, bool back) {
    if (!back && are_few(array) && (mask == nullptr || mask->truth == Truth::low_byte))
        return mask == nullptr ? place_among_few<false>(match, array, array)
                               : place_among_few<true>(match, array, mask->view);
    Mask turned;
    if (back) {
        array = reversed(array);
        if (mask != nullptr) {
            turned = reversed(*mask);
            mask = &turned;
        }
    }
    Index first = 0;
    Index found = -1;
    for_runs(array, mask, [&](const Run& run) {
        const Index at = first_match(match, run);
        if (at >= 0) found = first + at;
        first += run.n;
        return at < 0;
    });
    return found >= 0 && back ? array.count() - 1 - found : found;
}

}  // namespace tarn::arrays
