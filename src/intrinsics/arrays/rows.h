// Rows of so few elements that vectors don't pay: four rows are taken at a time, element by
// element, so that their steps don't wait for one another.
//
// A rule has the Element it reads, a State for each row, and says how the state starts, how it
// takes element k and what it stores in the end. What it seldom needs for that is the run, which is
// made when it asks. `hidden` is an element that changes nothing, which stands for those that a
// mask hides: masks are mostly unforeseeable, so that this is a choice of addresses, not of roads.
#pragma once

#include "intrinsics/arrays/along.h"

namespace tarn::arrays {

// So few elements that lie together are taken in this way.
inline constexpr Index few_in_row = 32;

template <class Rule, bool masked>
class RowsByFour {
    using Element = typename Rule::Element;
    using State = typename Rule::State;

  public:
    RowsByFour(Rule rule, const Rows& rows)
        : rule_(rule), rows_(rows), at_(rows.first.at), mask_(rows.first.mask), to_(rows.to) {}

    void run() {
        Index left = rows_.n;
        for (; left >= 4; left -= 4) take_four();
        for (; left > 0; --left) take_one();
    }

  private:
    [[gnu::always_inline]] void take(State& state, const std::byte* x, const std::byte* mask,
                                     Index k) const {
        Element element;
        if constexpr (!masked) {
            __builtin_memcpy(&element, x, sizeof element);
        } else if constexpr (Rule::hides && sizeof(Element) <= 8) {
            const auto hidden = reinterpret_cast<std::uintptr_t>(&hidden_);
            const auto counts = -static_cast<std::uintptr_t>(*mask != std::byte{0});
            const auto from = hidden + ((reinterpret_cast<std::uintptr_t>(x) - hidden) & counts);
            __builtin_memcpy(&element, reinterpret_cast<const std::byte*>(from), sizeof element);
        } else {
            if (*mask == std::byte{0}) return;
            __builtin_memcpy(&element, x, sizeof element);
        }
        rule_.take(state, element, k);
    }
    [[gnu::always_inline]] void store(const State& state) {
        const auto run = [&] {
            Run row = rows_.first;
            row.at = at_;
            row.mask = mask_;
            return row;
        };
        rule_.store(state, run, to_);
        at_ += rows_.step;
        if constexpr (masked) mask_ += rows_.mask_step;
        to_ += rows_.to_step;
    }
    [[gnu::always_inline]] void take_four() {
        State a = rule_.start();
        State b = a;
        State c = a;
        State d = a;
        const std::byte* x = at_;
        const std::byte* mask = mask_;
        const Index step = rows_.step;
        const Index mask_step = masked ? rows_.mask_step : 0;
        const Index n = rows_.first.n;
        for (Index k = 0; k < n; ++k) {
            take(a, x, mask, k);
            take(b, x + step, mask + mask_step, k);
            take(c, x + 2 * step, mask + 2 * mask_step, k);
            take(d, x + 3 * step, mask + 3 * mask_step, k);
            x += rows_.first.stride;
            if constexpr (masked) mask += rows_.first.mask_stride;
        }
        store(a);
        store(b);
        store(c);
        store(d);
    }
    [[gnu::always_inline]] void take_one() {
        State state = rule_.start();
        const std::byte* x = at_;
        const std::byte* mask = mask_;
        for (Index k = 0; k < rows_.first.n; ++k) {
            take(state, x, mask, k);
            x += rows_.first.stride;
            if constexpr (masked) mask += rows_.first.mask_stride;
        }
        store(state);
    }

    const Rule rule_;
    const Element hidden_ = rule_.hidden();
    const Rows& rows_;
    const std::byte* at_;
    const std::byte* mask_;
    std::byte* to_;
};

template <class Rule>
void take_by_four(Rule rule, const Rows& rows) {
    if (rows.first.mask != nullptr) {
        RowsByFour<Rule, true>(rule, rows).run();
    } else {
        RowsByFour<Rule, false>(rule, rows).run();
    }
}

// Whether rows go that way: vectors do better where many elements lie together.
inline bool are_for_fours(const Rows& rows) {
    const Run& run = rows.first;
    const bool few = run.n <= few_in_row || (rows.n >= 4 && run.stride != run.element);
    return few && (run.mask == nullptr || run.truth == Truth::low_byte);
}

// Whether a whole array is best looked at one element after the other: it has few, or short runs,
// or they lie apart.
inline bool are_few(const View& array) {
    if (array.rank == 0) return false;
    const Dimension& first = array.dims[0];
    if (first.stride != array.element || array.count() <= 2 * few_in_row) return true;
    return array.rank > 1 && first.extent <= few_in_row && !is_contiguous(array);
}

}  // namespace tarn::arrays
