// SUM, PRODUCT, IALL, IANY, IPARITY: each element joins an accumulator of its own type, in array
// element order, so that REAL results come out the same however the array lies.
#pragma once

#include "intrinsics/arrays/along.h"
#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/elements.h"
#include "intrinsics/arrays/rows.h"

namespace tarn::arrays {

struct Add {
    static constexpr int start = 0;
    template <class T>
    static T join(T a, T b) {
        return a + b;
    }
};
struct Multiply {
    static constexpr int start = 1;
    template <class T>
    static T join(T a, T b) {
        return a * b;
    }
};
struct And {
    static constexpr int start = -1;
    template <class T>
    static T join(T a, T b) {
        return a & b;
    }
};
struct Or {
    static constexpr int start = 0;
    template <class T>
    static T join(T a, T b) {
        return a | b;
    }
};
struct Xor {
    static constexpr int start = 0;
    template <class T>
    static T join(T a, T b) {
        return a ^ b;
    }
};

template <class Step, class T>
constexpr T start_of() {
    if constexpr (is_complex<T>) {
        return T{Step::start, 0};
    } else {
        return static_cast<T>(Step::start);
    }
}

template <class Step, class T>
struct FoldRun {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline T run(T accumulated, const T* x, Index n) {
        for (Index i = 0; i < n; ++i) accumulated = Step::join(accumulated, x[i]);
        return accumulated;
    }
};

// How a row of few elements, or of such that lie apart, is folded.
template <class Step, class T>
struct FoldRule {
    using Element = T;
    using State = T;
    // What isn't counted joins as something that changes nothing, if there is such a number.
    static constexpr bool hides = !is_complex<T>;
    static T hidden() { return start_of<Step, T>(); }
    static State start() { return start_of<Step, T>(); }
    [[gnu::always_inline]] static void take(State& state, T x, Index) {
        state = Step::join(state, x);
    }
    template <class MakeRun>
    static void store(const State& state, MakeRun&&, std::byte* to) {
        *reinterpret_cast<T*>(to) = state;
    }
};

template <class Step, class T>
struct FoldAcross {
    static constexpr bool has_vectors = vectors_help<T>;
    [[gnu::always_inline]] static inline void run(T* accumulated, const T* x, const Flag* flags,
                                                  Index n) {
        if (flags == nullptr) {
            for (Index i = 0; i < n; ++i) accumulated[i] = Step::join(accumulated[i], x[i]);
            return;
        }
        if constexpr (is_complex<T>) {
            for (Index i = 0; i < n; ++i)
                if (flags[i] != 0) accumulated[i] = Step::join(accumulated[i], x[i]);
        } else {
            // What isn't counted joins as something that changes nothing: no branch, and no
            // floating-point exception for an element that the mask hides.
            constexpr T neutral = start_of<Step, T>();
            for (Index i = 0; i < n; ++i)
                accumulated[i] = Step::join(accumulated[i], flags[i] != 0 ? x[i] : neutral);
        }
    }
};

template <class Step, class Type>
struct Fold final : Reduction {
    using Element = Wrapping<Type>;
    struct State {
        Element accumulated[block_width];
    };

    void rows(const Rows& rows) const override {
        // Integers are added in any order, several of a row at once.
        const bool together = rows.first.stride == sizeof(Element) && is_integer<Type>;
        const bool fours = rows.first.mask == nullptr && !together;
        if (fours || are_for_fours(rows)) return take_by_four(FoldRule<Step, Element>(), rows);
        for_each_row(rows, [](const Run& run, std::byte* to) {
            *reinterpret_cast<Element*>(to) = whole(run);
        });
    }
    static Element whole(const Run& run) {
        Element result = start_of<Step, Element>();
        for_counted<Element>(run, [&](const Element* x, Index n) {
            result = dispatch<FoldRun<Step, Element>>(result, x, n);
        });
        return result;
    }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().accumulated, n, start_of<Step, Element>());
    }
    void step(Block& block, const std::byte* x, const Flag* flags, Index n, Index) const override {
        dispatch<FoldAcross<Step, Element>>(block.as<State>().accumulated + 0,
                                            reinterpret_cast<const Element*>(x), flags, n);
    }
    void end(Block& block, Index n, Run, Index, Index, std::byte* to,
             Index to_step) const override {
        copy_run(to, to_step, block.bytes, sizeof(Element), n, sizeof(Element));
    }
};

// NORM2, scaled so that no square overflows or vanishes.
template <class T>
struct Norm final : Reduction {
    struct State {
        T scale[block_width];
        T sum[block_width];
    };

    static void join(T& scale, T& sum, T x);
    static T root(T value);

    struct Rule {
        using Element = T;
        struct State {
            T scale;
            T sum;
        };
        static constexpr bool hides = true;
        static T hidden() { return 0; }
        static State start() { return {0, 1}; }
        [[gnu::always_inline]] static void take(State& state, T x, Index) {
            join(state.scale, state.sum, x);
        }
        template <class MakeRun>
        static void store(const State& state, MakeRun&&, std::byte* to) {
            *reinterpret_cast<T*>(to) = state.scale * root(state.sum);
        }
    };
    void rows(const Rows& rows) const override { take_by_four(Rule(), rows); }
    void begin(Block& block, Index n) const override {
        std::fill_n(block.as<State>().scale, n, T(0));
        std::fill_n(block.as<State>().sum, n, T(1));
    }
    void step(Block& block, const std::byte* x, const Flag*, Index n, Index) const override {
        State& state = block.as<State>();
        for (Index i = 0; i < n; ++i)
            join(state.scale[i], state.sum[i], reinterpret_cast<const T*>(x)[i]);
    }
    void end(Block& block, Index n, Run, Index, Index, std::byte* to,
             Index to_step) const override {
        const State& state = block.as<State>();
        for (Index i = 0; i < n; ++i)
            *reinterpret_cast<T*>(to + i * to_step) = state.scale[i] * root(state.sum[i]);
    }
};

template <class T>
void Norm<T>::join(T& scale, T& sum, T x) {
    if (x == 0) return;
    const T size = x < 0 ? -x : x;
    if (scale < size) {
        const T ratio = scale / size;
        sum = sum * ratio * ratio + 1;
        scale = size;
    } else {
        const T ratio = size / scale;
        sum += ratio * ratio;
    }
}

template <class T>
T Norm<T>::root(T value) {
    if constexpr (sizeof(T) <= sizeof(double)) {
        return static_cast<T>(__builtin_sqrt(static_cast<double>(value)));
    } else {
        const Real10 near = __builtin_sqrtl(static_cast<Real10>(value));
        if constexpr (!std::is_same_v<T, Real16>) {
            return near;
        } else {
            if (!(near > 0) || near > std::numeric_limits<Real10>::max()) return near;
            // One step of Newton's nearly doubles the digits; a second one makes up for the
            // rounding of the square, taken exactly from two halves.
            const T guess = near + (value - T(near) * near) / (2 * T(near));
            const T high = static_cast<double>(guess);
            const T low = guess - high;
            const T rest = ((value - high * high) - 2 * high * low) - low * low;
            return guess + rest / (2 * guess);
        }
    }
}

}  // namespace tarn::arrays
