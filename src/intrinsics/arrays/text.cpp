#include "intrinsics/arrays/text.h"

#include <cstring>

#include "intrinsics/arrays/extremes.h"

namespace tarn::arrays {
namespace {

template <class Character>
int compare_same_length(const Character* a, const Character* b, Index n) {
    if constexpr (sizeof(Character) == 1) {
        return std::memcmp(a, b, static_cast<std::size_t>(n));
    } else {
        for (Index i = 0; i < n; ++i)
            if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
        return 0;
    }
}

// Places of the best text in runs that follow one another.
template <class Character>
struct TextSearch {
    bool largest;
    bool back;
    Index length;
    Index seen = 0;
    Index place = -1;
    const std::byte* best = nullptr;

    void look(const Run& run) {
        for (Index i = 0; i < run.n; ++i) {
            if (!run.counts(i)) continue;
            const std::byte* const at = run.at + i * run.stride;
            if (best != nullptr) {
                const int order =
                    compare_same_length(reinterpret_cast<const Character*>(at),
                                        reinterpret_cast<const Character*>(best), length);
                const bool better = largest ? order > 0 : order < 0;
                if (!better && !(back && order == 0)) continue;
            }
            best = at;
            place = seen + i;
        }
        seen += run.n;
    }
};

template <class Character>
TextSearch<Character> search_for(const View& array, bool largest, bool back) {
    return {largest, back, array.element / static_cast<Index>(sizeof(Character))};
}

template <class Character>
void store_extreme(const TextSearch<Character>& search, std::byte* to) {
    const auto bytes = static_cast<std::size_t>(search.length) * sizeof(Character);
    if (search.best != nullptr) {
        std::memcpy(to, search.best, bytes);
    } else {
        std::memset(to, search.largest ? 0 : 0xFF, bytes);
    }
}

// The runs of texts are taken one by one.
template <class Derived>
struct OneByOne : Reduction {
    bool side_by_side() const final { return false; }
    void rows(const Rows& rows) const final {
        for_each_row(rows, [&](const Run& run, std::byte* to) {
            static_cast<const Derived*>(this)->one(run, to);
        });
    }
};

template <class Character>
struct ExtremeTextPlace final : OneByOne<ExtremeTextPlace<Character>> {
    bool largest;
    bool back;
    Index result_size;
    ExtremeTextPlace(bool l, bool b, Index size) : largest(l), back(b), result_size(size) {}

    void one(const Run& run, std::byte* to) const {
        TextSearch<Character> search{largest, back,
                                     run.element / static_cast<Index>(sizeof(Character))};
        search.look(run);
        store_integer(to, result_size, 1 + search.place);
    }
};

template <class Character>
struct ExtremeText final : OneByOne<ExtremeText<Character>> {
    bool largest;
    explicit ExtremeText(bool l) : largest(l) {}

    void one(const Run& run, std::byte* to) const {
        TextSearch<Character> search{largest, false,
                                     run.element / static_cast<Index>(sizeof(Character))};
        search.look(run);
        store_extreme(search, to);
    }
};

template <class Character>
struct TextMatch {
    const Character* value;
    Index length;

    bool matches(const Run& run, Index i) const {
        return run.counts(i) &&
               compare_texts(reinterpret_cast<const Character*>(run.at + i * run.stride),
                             run.element / static_cast<Index>(sizeof(Character)), value,
                             length) == 0;
    }
    // From the end with `back`; -1: none.
    Index place(const Run& run, bool back) const {
        for (Index i = 0; i < run.n; ++i) {
            const Index k = back ? run.n - 1 - i : i;
            if (matches(run, k)) return k;
        }
        return -1;
    }
};

template <class Character>
struct TextPlace final : OneByOne<TextPlace<Character>> {
    TextMatch<Character> match;
    bool back;
    Index result_size;
    TextPlace(TextMatch<Character> m, bool b, Index size) : match(m), back(b), result_size(size) {}

    void one(const Run& run, std::byte* to) const {
        store_integer(to, result_size, 1 + match.place(run, back));
    }
};

}  // namespace

template <class Character>
int compare_texts(const Character* a, Index a_length, const Character* b, Index b_length) {
    const Index shared = std::min(a_length, b_length);
    const int order = compare_same_length(a, b, shared);
    if (order != 0 || a_length == b_length) return order;
    const bool a_is_longer = a_length > b_length;
    const Character* const rest = a_is_longer ? a : b;
    for (Index i = shared; i < std::max(a_length, b_length); ++i) {
        if (rest[i] == ' ') continue;
        return (rest[i] > ' ') == a_is_longer ? 1 : -1;
    }
    return 0;
}

template <class Character>
Index place_of_extreme_text(const View& array, const Mask* mask, bool largest, bool back) {
    auto search = search_for<Character>(array, largest, back);
    for_runs(array, mask, [&](const Run& run) { search.look(run); });
    return search.place;
}

template <class Character>
void place_extreme_texts(const View& array, const Mask* mask, int dim, bool largest, bool back,
                         const View& result) {
    reduce_along(ExtremeTextPlace<Character>(largest, back, result.element), array, mask, dim,
                 result);
}

template <class Character>
void extreme_text(const View& array, const Mask* mask, bool largest, std::byte* result) {
    auto search = search_for<Character>(array, largest, false);
    for_runs(array, mask, [&](const Run& run) { search.look(run); });
    store_extreme(search, result);
}

template <class Character>
void extreme_texts(const View& array, const Mask* mask, int dim, bool largest, const View& result) {
    reduce_along(ExtremeText<Character>(largest), array, mask, dim, result);
}

template <class Character>
Index place_of_text(const View& array, const Mask* mask, const Character* value, Index length,
                    bool back) {
    const TextMatch<Character> match{value, length};
    Index seen = 0;
    Index found = -1;
    for_runs(array, mask, [&](const Run& run) {
        const Index at = match.place(run, back);
        if (at >= 0) found = seen + at;
        seen += run.n;
        return at < 0 || back;
    });
    return found;
}

template <class Character>
void place_texts(const View& array, const Mask* mask, int dim, const Character* value, Index length,
                 bool back, const View& result) {
    const TextMatch<Character> match{value, length};
    reduce_along(TextPlace<Character>(match, back, result.element), array, mask, dim, result);
}

#define TARN_TEXTS_OF(Character)                                                              \
    template int compare_texts(const Character*, Index, const Character*, Index);             \
    template Index place_of_extreme_text<Character>(const View&, const Mask*, bool, bool);    \
    template void place_extreme_texts<Character>(const View&, const Mask*, int, bool, bool,   \
                                                 const View&);                                \
    template void extreme_text<Character>(const View&, const Mask*, bool, std::byte*);        \
    template void extreme_texts<Character>(const View&, const Mask*, int, bool, const View&); \
    template Index place_of_text(const View&, const Mask*, const Character*, Index, bool);    \
    template void place_texts(const View&, const Mask*, int, const Character*, Index, bool,   \
                              const View&);
TARN_TEXTS_OF(std::uint8_t)
TARN_TEXTS_OF(std::uint32_t)

}  // namespace tarn::arrays
