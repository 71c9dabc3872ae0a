// Reductions along one dimension: one walk for all of them.
//
// A result element is made from a run of the array. Runs that lie close (the dimension has the
// shortest step) are taken one after the other. Otherwise neighbouring runs are taken together, a
// block of them side by side, so that memory is read in the order in which it lies; what each
// result element meets, and in which order, is the same.
#pragma once

#include <algorithm>

#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/runs.h"

namespace tarn::arrays {

// One run, with its part of the mask if there is one.
struct Run {
    const std::byte* at;
    Index stride;
    Index n;
    Index element;
    const std::byte* mask = nullptr;
    Index mask_stride = 0;
    Index mask_size = 0;
    Truth truth = Truth::low_byte;

    Run() = default;
    Run(const std::byte* first, Index step, Index count, Index size)
        : at(first), stride(step), n(count), element(size) {}
    // Word by word, as a dimension is.
    Run(const Run& other)
        : at(other.at),
          stride(other.stride),
          n(other.n),
          element(other.element),
          mask(other.mask),
          mask_stride(other.mask_stride),
          mask_size(other.mask_size),
          truth(other.truth) {}
    Run& operator=(const Run& other) {
        at = other.at;
        stride = other.stride;
        n = other.n;
        element = other.element;
        mask = other.mask;
        mask_stride = other.mask_stride;
        mask_size = other.mask_size;
        truth = other.truth;
        return *this;
    }

    Run from(Index first, Index count) const {
        Run part = *this;
        part.at += first * stride;
        if (mask != nullptr) part.mask += first * mask_stride;
        part.n = count;
        return part;
    }
    void move(Index step, Index mask_step) {
        at += step;
        if (mask != nullptr) mask += mask_step;
    }
    bool counts(Index i) const {
        if (mask == nullptr) return true;
        const std::byte* const element = mask + i * mask_stride;
        return truth == Truth::low_byte ? *element != std::byte{0}
                                        : is_true(element, mask_size, truth);
    }
};

inline constexpr Index chunk_elements = 512;
// So few elements under a mask are looked at one by one.
inline constexpr Index few_counted = 32;

// Calls work(element, counts) for each element of a run.
template <class T, class Work>
[[gnu::always_inline]] inline void for_each_element(const Run& run, Work&& work) {
    const std::byte* at = run.at;
    const auto next = [&] {
        T element;
        __builtin_memcpy(&element, at, sizeof element);
        at += run.stride;
        return element;
    };
    if (run.mask == nullptr) {
        for (Index i = 0; i < run.n; ++i) work(next(), true);
    } else if (run.truth == Truth::low_byte) {
        const std::byte* mask = run.mask;
        for (Index i = 0; i < run.n; ++i, mask += run.mask_stride)
            work(next(), *mask != std::byte{0});
    } else {
        for (Index i = 0; i < run.n; ++i) work(next(), run.counts(i));
    }
}

// The elements of a run, copied together if they don't lie so, and the flags of its mask.
template <class T>
struct Chunk {
    alignas(64) T values[chunk_elements];
    Flag flags[chunk_elements];

    // The elements of `run`, at most chunk_elements unless they lie together already.
    const T* load(const Run& run) {
        if (run.stride == static_cast<Index>(sizeof(T))) return reinterpret_cast<const T*>(run.at);
        copy_run(reinterpret_cast<std::byte*>(values), sizeof(T), run.at, run.stride, run.n,
                 sizeof(T));
        return values;
    }
    const Flag* load_mask(const Run& run) {
        load_flags(flags, run.mask, run.mask_stride, run.n, run.mask_size, run.truth);
        return flags;
    }
};

// Calls work(elements, count) for the elements of a run that count, chunk by chunk.
template <class T, class Work>
void for_counted(const Run& run, Work&& work) {
    if (run.mask == nullptr && run.stride == static_cast<Index>(sizeof(T))) {
        work(reinterpret_cast<const T*>(run.at), run.n);
        return;
    }
    Chunk<T> chunk;
    for (Index first = 0; first < run.n; first += chunk_elements) {
        const Run part = run.from(first, std::min(chunk_elements, run.n - first));
        const T* x = chunk.load(part);
        Index n = part.n;
        if (run.mask != nullptr) {
            const Flag* const flags = chunk.load_mask(part);
            alignas(64) T kept[chunk_elements];
            n = compact(reinterpret_cast<std::byte*>(kept), chunk_elements,
                        reinterpret_cast<const std::byte*>(x), flags, n, sizeof(T));
            work(static_cast<const T*>(kept), n);
        } else {
            work(x, n);
        }
    }
}

inline constexpr Index block_width = chunk_elements;

// The state of block_width results side by side; each reduction lays it out as it likes.
struct Block {
    static constexpr Index widest_state = 32;
    alignas(64) std::byte bytes[block_width * widest_state];

    template <class State>
    State& as() {
        static_assert(sizeof(State) <= sizeof bytes);
        return *reinterpret_cast<State*>(bytes);
    }
};

// Runs in step, of which each makes a result.
struct Rows {
    Run first;
    Index step;  // from one run to the next
    Index mask_step;
    std::byte* to;
    Index to_step;
    Index n;
};

// Calls work(run, to) for each row.
template <class Work>
[[gnu::always_inline]] inline void for_each_row(const Rows& rows, Work&& work) {
    Run run = rows.first;
    std::byte* to = rows.to;
    for (Index left = rows.n; left > 0; --left) {
        work(run, to);
        run.move(rows.step, rows.mask_step);
        to += rows.to_step;
    }
}

// What a reduction does with runs. It has no state of its own but its parameters.
class Reduction {
  public:
    // Rows that are taken one after the other, or a few together.
    virtual void rows(const Rows& rows) const = 0;

    // Results side by side: a start, a step for element k of each run, an end. `flags` may be null.
    // `run` is the first result's, the others lie `step` and `mask_step` apart.
    virtual bool side_by_side() const { return true; }
    virtual void begin(Block& /*block*/, Index /*n*/) const {}
    virtual void step(Block& /*block*/, const std::byte* /*x*/, const Flag* /*flags*/, Index /*n*/,
                      Index /*k*/) const {}
    virtual void end(Block& /*block*/, Index /*n*/, Run /*run*/, Index /*step*/,
                     Index /*mask_step*/, std::byte* /*to*/, Index /*to_step*/) const {}

  protected:
    ~Reduction() = default;
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

// All rows, in the way that suits them.
void reduce_rows(const Reduction& reduction, const Rows& rows);

// The same of rows that start where the loops lead: the strides of a loop are those of the array,
// the result and the mask. Of `rows` the first run and where its result goes are known.
void reduce_loops(const Reduction& reduction, Rows& rows, Loops<3>& loops);

// `result` has the array's dimensions without `dim`; `mask` may be null.
void reduce_along(const Reduction& reduction, const View& array, const Mask* mask, int dim,
                  const View& result);

}  // namespace tarn::arrays
