#include "intrinsics/arrays/logical.h"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/rows.h"
#include "intrinsics/arrays/runs.h"

namespace tarn::arrays {
namespace {

// Mask elements in a row.
struct Row {
    const std::byte* at;
    Index stride;
    Index n;
    Index size;
    Truth truth;

    Row from(Index first) const { return {at + first * stride, stride, n - first, size, truth}; }
};

bool has(LogicalReduction what, LogicalReduction one, LogicalReduction other) {
    return what == one || what == other;
}

// Results as integers of result.element bytes.
template <class Value>
void store_results(std::byte* to, Index step, Index size, Index n, Value&& value) {
    const auto store = [&]<class Integer>(Integer) {
        for (Index i = 0; i < n; ++i)
            *reinterpret_cast<Integer*>(to + i * step) = static_cast<Integer>(value(i));
    };
    if (size == 4) return store(std::int32_t{});
    if (size == 8) return store(std::int64_t{});
    for (Index i = 0; i < n; ++i)
        store_integer(to + i * step, size, static_cast<std::int64_t>(value(i)));
}

// ---- One row after the other ----

// In pieces that grow: most answers are found at the start.
[[gnu::noinline]] bool is_everywhere_from(Index first, bool wanted, const Row& row) {
    Index length = 32;
    for (; first < row.n; first += length, length = std::min<Index>(2 * length, 4096)) {
        const Index m = std::min(length, row.n - first);
        const Index true_ones =
            count_true(row.at + first * row.stride, row.stride, m, row.size, row.truth);
        if (true_ones != (wanted ? m : 0)) return false;
    }
    return true;
}

// Whether all of a row have the truth `wanted`.
[[gnu::always_inline]] inline bool is_everywhere(bool wanted, const Row& row) {
    Index first = 0;
    if (row.truth == Truth::low_byte) {
        constexpr Index few = 16;
        for (; first < std::min(few, row.n); ++first)
            if ((row.at[first * row.stride] != std::byte{0}) != wanted) return false;
    }
    return first == row.n || is_everywhere_from(first, wanted, row);
}

// How a row of few elements is counted, by their low bytes.
struct CountRule {
    using Element = std::uint8_t;
    using State = Index;
    static constexpr bool hides = true;
    Index bits;
    Index result_size;

    static Element hidden() { return 0; }
    static State start() { return 0; }
    [[gnu::always_inline]] static void take(State& count, Element x, Index) {
        count += static_cast<Index>(x != 0);
    }
    template <class MakeRun>
    void store(State count, MakeRun&&, std::byte* to) const {
        store_integer(to, result_size, count & bits);
    }
};

// Whether eight elements of four bytes, side by side, have the truth `wanted` by their low bytes.
template <bool wanted>
bool eight_are(const std::byte* at) {
    constexpr std::uint64_t low = 0x000000FF000000FF;
    constexpr std::uint64_t carry =
        0x0000010000000100;  // of a low byte that isn't zero, plus `low`
    std::uint64_t met = wanted ? carry : 0;
    for (int i = 0; i < 4; ++i, at += sizeof met) {
        std::uint64_t pair;
        __builtin_memcpy(&pair, at, sizeof pair);
        met = wanted ? met & ((pair & low) + low) : met | (pair & low);
    }
    return met == (wanted ? carry : 0);
}

// ALL (`wanted`) or ANY of rows of few elements, by their low bytes. Most answers are found at the
// start of a row.
template <bool wanted, class Integer>
void settle_few(const Row& row, Index step, Index n, std::byte* to, Index to_step) {
    const std::byte* at = row.at;
    const Index stride = row.stride;
    const Index length = row.n;
    const bool side_by_side = stride == 4 && row.size == 4;
    for (; n > 0; --n, at += step, to += to_step) {
        const auto agrees = [&](Index i) { return (at[i * stride] != std::byte{0}) == wanted; };
        constexpr Index start = 4;
        Index i = 0;
        while (i < std::min(start, length) && agrees(i)) ++i;
        if (i == start && side_by_side)
            while (i + 8 <= length && eight_are<wanted>(at + i * stride)) i += 8;
        while (i < length && agrees(i)) ++i;
        *reinterpret_cast<Integer*>(to) = static_cast<Integer>((i == length) == wanted);
    }
}

// The results of n rows, `step` bytes from one to the next.
void reduce_rows(LogicalReduction what, Row row, Index step, Index n, std::byte* to, Index to_step,
                 Index to_size) {
    if (what == LogicalReduction::any || what == LogicalReduction::all) {
        const bool wanted = what == LogicalReduction::all;
        constexpr Index few = 64;
        if (row.truth == Truth::low_byte && row.n <= few && to_size == sizeof(std::int32_t))
            return wanted ? settle_few<true, std::int32_t>(row, step, n, to, to_step)
                          : settle_few<false, std::int32_t>(row, step, n, to, to_step);
        store_results(to, to_step, to_size, n, [&](Index) {
            const bool everywhere = is_everywhere(wanted, row);
            row.at += step;
            return everywhere == wanted;
        });
        return;
    }
    const Index bits = what == LogicalReduction::parity ? 1 : ~Index{0};
    if (row.truth == Truth::low_byte && (row.n <= few_in_row || row.stride != row.size)) {
        const Rows rows{Run(row.at, row.stride, row.n, row.size), step, 0, to, to_step, n};
        return take_by_four(CountRule{bits, to_size}, rows);
    }
    while (n > 0) {
        constexpr Index together = 64;
        Index counts[together];
        const Index some = std::min(together, n);
        count_rows(counts, row.at, step, some, row.stride, row.n, row.size, row.truth);
        store_results(to, to_step, to_size, some, [&](Index i) { return counts[i] & bits; });
        row.at += some * step;
        to += some * to_step;
        n -= some;
    }
}

// ---- Rows side by side ----

template <class Word>
Word word_at(const std::byte* words, Index i) {
    Word word;
    __builtin_memcpy(&word, words + i * static_cast<Index>(sizeof word), sizeof word);
    return word;
}

template <class Word>
struct CountAcross {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(std::uint32_t* count, const std::byte* words,
                                                  Index n, Word low, bool exactly_one) {
        if (exactly_one) {
            for (Index i = 0; i < n; ++i) count[i] += (word_at<Word>(words, i) & low) == 1;
        } else {
            for (Index i = 0; i < n; ++i) count[i] += (word_at<Word>(words, i) & low) != 0;
        }
    }
};

// Rows whose answer isn't known yet, as all ones or zeros. A word that equals `open_word`, or with
// `unless` one that doesn't, leaves its row open. Says whether any row is.
template <class Word, bool unless>
struct CloseAcross {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline bool run(Word* open, const std::byte* words, Index n,
                                                  Word low, Word open_word) {
        Word any = 0;
        for (Index i = 0; i < n; ++i) {
            const bool equal = (word_at<Word>(words, i) & low) == open_word;
            const Word left = equal != unless ? open[i] : Word{0};
            open[i] = left;
            any |= left;
        }
        return any != 0;
    }
};

// n rows, `step` bytes from one to the next, less than from one element of a row to the next. Their
// elements have the size of Word, or half of it with as much in between, or are gathered.
template <class Word>
class SideBySide {
  public:
    SideBySide(const Row& first, Index step, Index n) : first_(first), step_(step), n_(n) {
        constexpr auto word = static_cast<Index>(sizeof(Word));
        dense_ = step == first.size && first.size == word;
        // Elements of which every second counts are the lower halves of words.
        halves_ = step == 2 * first.size && step == word;
        exactly_one_ = (dense_ || halves_) && first.truth == Truth::byte_is_one;
        if (dense_ || halves_) {
            const auto half = static_cast<Word>((Word{1} << (4 * word)) - 1);
            const Word whole = halves_ ? half : static_cast<Word>(~Word{0});
            low_ = first.truth == Truth::whole ? whole : Word{0xFF};
        }
    }

    void count(std::byte* to, Index to_step, Index to_size, bool parity) {
        std::uint32_t count[block_width];
        std::fill_n(count, n_, 0);
        for (Index k = 0; k < first_.n; ++k)
            dispatch<CountAcross<Word>>(count + 0, words(k), n_, low_, exactly_one_);
        const std::uint32_t bits = parity ? 1 : ~std::uint32_t{0};
        store_results(to, to_step, to_size, n_, [&](Index i) { return count[i] & bits; });
    }

    // ALL (`wanted`) or ANY.
    void settle(bool wanted, std::byte* to, Index to_step, Index to_size) {
        Word open[block_width];
        std::fill_n(open, n_, static_cast<Word>(~Word{0}));
        const bool unless = wanted != exactly_one_;
        const Word open_word = exactly_one_ ? 1 : 0;
        for (Index k = 0; k < first_.n; ++k) {
            const bool any =
                unless
                    ? dispatch<CloseAcross<Word, true>>(open + 0, words(k), n_, low_, open_word)
                    : dispatch<CloseAcross<Word, false>>(open + 0, words(k), n_, low_, open_word);
            if (!any) break;
            constexpr Index steps_between_looks = 8;
            if (k % steps_between_looks == steps_between_looks - 1 &&
                finish_few(open, k + 1, wanted))
                break;
        }
        store_results(to, to_step, to_size, n_, [&](Index i) { return (open[i] != 0) == wanted; });
    }

  private:
    const std::byte* words(Index k) {
        const std::byte* const at = first_.at + k * first_.stride;
        // Behind the last half there may be nothing to read, but in between rows there is.
        if (dense_ || (halves_ && k > 0 && k < first_.n - 1)) return at;
        load_flags(flags_, at, step_, n_, first_.size, first_.truth);
        if constexpr (sizeof(Word) == 1) return reinterpret_cast<const std::byte*>(flags_);
        for (Index i = 0; i < n_; ++i) gathered_[i] = flags_[i];
        return reinterpret_cast<const std::byte*>(gathered_);
    }
    // The last few rows that are open, each by itself from element k on.
    bool finish_few(Word* open, Index k, bool wanted) const {
        constexpr Index few = 16;
        Index rows[few];
        Index count = 0;
        for (Index i = 0; i < n_; ++i) {
            if (open[i] == 0) continue;
            if (count == few || few * 8 > n_) return false;
            rows[count++] = i;
        }
        for (Index r = 0; r < count; ++r) {
            Row row = first_.from(k);
            row.at += rows[r] * step_;
            if (!is_everywhere(wanted, row)) open[rows[r]] = 0;
        }
        return true;
    }

    Row first_;
    Index step_;
    Index n_;
    bool dense_;
    bool halves_;
    bool exactly_one_;
    Word low_ = static_cast<Word>(~Word{0});  // gathered elements are flags
    Flag flags_[block_width];
    Word gathered_[block_width];
};

template <class Word>
void reduce_block(LogicalReduction what, const Row& first, Index step, Index n, std::byte* to,
                  Index to_step, Index to_size) {
    SideBySide<Word> rows(first, step, n);
    if (has(what, LogicalReduction::all, LogicalReduction::any)) {
        rows.settle(what == LogicalReduction::all, to, to_step, to_size);
    } else {
        rows.count(to, to_step, to_size, what == LogicalReduction::parity);
    }
}

}  // namespace

void LogicalRows::rows(const Rows& rows) const {
    const Run& run = rows.first;
    const Row row{run.at, run.stride, run.n, run.element, truth_};
    const Index step = rows.step;
    // With few elements side by side costs more than it gains.
    const bool words = step == row.size || step == 2 * row.size;
    const bool across = rows.n * run.n > (words ? 256 : 8192) && rows.n >= 64 &&
                        std::abs(step) < std::abs(run.stride) && run.n > 1 && run.n < INT32_MAX;
    if (!across) return reduce_rows(what_, row, step, rows.n, rows.to, rows.to_step, result_size_);
    auto* const block = !words      ? reduce_block<Flag>
                        : step == 2 ? reduce_block<std::uint16_t>
                        : step == 4 ? reduce_block<std::uint32_t>
                        : step == 8 ? reduce_block<std::uint64_t>
                                    : reduce_block<Flag>;
    for (Index first = 0; first < rows.n; first += block_width) {
        Row next = row;
        next.at += first * step;
        block(what_, next, step, std::min(block_width, rows.n - first),
              rows.to + first * rows.to_step, rows.to_step, result_size_);
    }
}

void reduce_logical(LogicalReduction what, const Mask& array, int dim, const View& result) {
    reduce_along(LogicalRows(what, array.truth, result.element), array.view, nullptr, dim, result);
}

}  // namespace tarn::arrays
