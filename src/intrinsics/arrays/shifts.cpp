// CSHIFT and EOSHIFT.
#include <algorithm>
#include <cstdlib>

#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/runs.h"
#include "intrinsics/arrays/sizes.h"
#include "intrinsics/arrays/transform.h"

namespace tarn::arrays {
namespace {

Index into_range(Index shift, Index n) {
    if (shift >= 0 && shift < n) return shift;
    if (shift < 0 && shift >= -n) return shift + n;
    const Index rest = shift % n;
    return rest < 0 ? rest + n : rest;
}

// The shift at an address, cut to what an extent can be.
[[gnu::always_inline]] inline Index shift_at(const std::byte* from, Index size) {
    return size == 4 ? *reinterpret_cast<const std::int32_t*>(from) : load_integer(from, size);
}

// The shift at an address, from 0 to n - 1.
[[gnu::always_inline]] inline Index circular_distance(const std::byte* shift, Index size, Index n) {
    if (size != sizeof(__int128)) return into_range(shift_at(shift, size), n);
    // Cut to what an extent can be it would be another one.
    __int128 whole;
    __builtin_memcpy(&whole, shift, sizeof whole);
    return into_range(static_cast<Index>(whole % n), n);
}

// ---- Arrays in one piece: a shift moves blocks ----

struct Blocks {
    Index unit = 0;   // bytes of all that one place along the dimension holds
    Index count = 1;  // how many times the dimension is gone along

    Blocks(const View& view, int dim) : unit(view.element) {
        for (int d = 0; d < dim; ++d) unit *= view.dims[d].extent;
        for (int d = dim + 1; d < view.rank; ++d) count *= view.dims[d].extent;
    }
};

void turn_blocks(const View& to, const View& from, int dim, Index shift) {
    const Blocks blocks(to, dim);
    const Index tail = shift * blocks.unit;
    const Index head = (to.dims[dim].extent - shift) * blocks.unit;
    std::byte* t = to.base;
    const std::byte* f = from.base;
    for (Index i = 0; i < blocks.count; ++i) {
        copy_bytes(t, f + tail, head);
        copy_bytes(t + head, f, tail);
        t += head + tail;
        f += head + tail;
    }
}

// The same where one element moves in.
void push_blocks(const View& to, const View& from, int dim, Index shift,
                 const std::byte* boundary) {
    const Blocks blocks(to, dim);
    const Index n = to.dims[dim].extent;
    const Index lost = std::min(n, std::abs(shift)) * blocks.unit;
    const Index kept = n * blocks.unit - lost;
    const bool up = shift > 0;
    std::byte* t = to.base;
    const std::byte* f = from.base + (up ? lost : 0);
    with_element_size(to.element, [&](auto size) {
        const Index free = lost / std::max<Index>(size.bytes(), 1);
        for (Index i = 0; i < blocks.count; ++i) {
            copy_bytes(t + (up ? 0 : lost), f, kept);
            size.fill(t + (up ? kept : 0), size.bytes(), boundary, free);
            t += kept + lost;
            f += kept + lost;
        }
    });
}

// ---- Vectors ----

// Many vectors side by side, of which each has a shift of its own, are taken in tiles that the
// cache holds: a part of each vector, then the next part.
constexpr Index tile_vectors = 64;
constexpr Index tile_length = 64;
// What the nearest cache holds, with room to spare.
constexpr Index near_bytes = 16384;

// Elements k to k + m - 1 of a vector that begins with element `shift` of its source.
template <class Size>
[[gnu::always_inline]] inline void turn_part(Size size, std::byte* to, Index to_stride,
                                             const std::byte* from, Index stride, Index n,
                                             Index shift, Index k, Index m) {
    const Index place = shift + k < n ? shift + k : shift + k - n;
    const Index before_end = std::min(m, n - place);
    size.copy(to + k * to_stride, to_stride, from + place * stride, stride, before_end);
    size.copy(to + (k + before_end) * to_stride, to_stride, from, stride, m - before_end);
}

// Where each vector lies in one piece, of `bytes` bytes: the steps of the loop are those of the
// target, the source and the shifts.
void turn_pieces(const std::array<std::byte*, 3>& at, const Index* step, Index count, Index bytes,
                 Index element, Index shift_size) {
    std::byte* to = at[0];
    const std::byte* from = at[1];
    const std::byte* shift = at[2];
    const Index to_step = step[0];
    const Index from_step = step[1];
    const Index shift_step = step[2];
    const Index n = bytes / element;
    for (Index i = 0; i < count; ++i) {
        const Index head = circular_distance(shift, shift_size, n) * element;
        copy_bytes(to, from + head, bytes - head);
        copy_bytes(to + (bytes - head), from, head);
        to += to_step;
        from += from_step;
        shift += shift_step;
    }
}

// Where elements lie apart. No vectors: they would have to be put together from single elements.
template <class Size>
[[gnu::noinline, gnu::optimize("no-tree-vectorize")]] void turn_vectors(
    Size size, const std::array<std::byte*, 3>& at, const Index* step, Index count, Index to_stride,
    Index stride, Index n, Index shift_size) {
    for (Index i = 0; i < count; ++i) {
        std::byte* to = at[0] + i * step[0];
        const std::byte* const first = at[1] + i * step[1];
        const Index shift = circular_distance(at[2] + i * step[2], shift_size, n);
        const std::byte* from = first + shift * stride;
        for (Index k = shift; k < n; ++k, to += to_stride, from += stride) size.move(to, from);
        from = first;
        for (Index k = 0; k < shift; ++k, to += to_stride, from += stride) size.move(to, from);
    }
}

// The same where what lies outside of the source is the boundary; -n <= shift <= n.
template <class Size>
[[gnu::always_inline]] inline void push_part(Size size, std::byte* to, Index to_stride,
                                             const std::byte* from, Index stride, Index n,
                                             Index shift, const std::byte* boundary, Index k,
                                             Index m) {
    const Index first = std::clamp<Index>(-shift, k, k + m);
    const Index last = std::clamp<Index>(n - shift, first, k + m);
    size.fill(to + k * to_stride, to_stride, boundary, first - k);
    size.copy(to + first * to_stride, to_stride, from + (first + shift) * stride, stride,
              last - first);
    size.fill(to + last * to_stride, to_stride, boundary, k + m - last);
}

// How vectors are gone through: each in one part where they lie one behind the other, or all are
// near.
struct Parts {
    Index n;
    bool whole;

    Parts(const View& to, int dim, Index step)
        : n(to.dims[dim].extent),
          whole(std::abs(step) >= std::abs(to.dims[dim].stride) ||
                to.count() * to.element <= near_bytes) {}

    // Calls work(vector, k, m) for the parts of so many vectors.
    template <class Work>
    [[gnu::always_inline]] void each(Index vectors, Work&& work) const {
        if (whole) {
            for (Index i = 0; i < vectors; ++i) work(i, 0, n);
            return;
        }
        for (Index first = 0; first < vectors; first += tile_vectors)
            for (Index k = 0; k < n; k += tile_length)
                for (Index i = first; i < std::min(vectors, first + tile_vectors); ++i)
                    work(i, k, std::min(tile_length, n - k));
    }
};

// `extent` places along `dim`, from one place of `from` to another of `to`.
void copy_part(const View& to, Index to_first, const View& from, Index from_first, int dim,
               Index extent) {
    if (extent <= 0) return;
    View target = to;
    View source = from;
    target.dims[dim].extent = extent;
    target.base += to_first * to.dims[dim].stride;
    source.base += from_first * from.dims[dim].stride;
    copy(target, source);
}

bool lies_along(const View& view, int dim) {
    return view.dims[dim].stride == view.element;
}

}  // namespace

void circular_shift(const View& to, const View& from, int dim, const std::byte* shift, Index size) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    const Index s = circular_distance(shift, size, n);
    if (is_contiguous(to) && is_contiguous(from)) return turn_blocks(to, from, dim, s);
    if (!lies_along(to, dim)) {
        copy_part(to, 0, from, s, dim, n - s);
        copy_part(to, n - s, from, 0, dim, s);
        return;
    }
    // Both parts of a vector while it is near.
    Loops<2> loops;
    for (int d = 0; d < to.rank; ++d)
        if (d != dim) loops.add(to.dims[d].extent, {to.dims[d].stride, from.dims[d].stride});
    loops.finish();
    const Index* const step = loops.stride[0];
    const Index stride = from.dims[dim].stride;
    with_element_size(to.element, [&](auto size) {
        walk(loops, {to.base, from.base}, [&](const std::array<std::byte*, 2>& at, Index count) {
            for (Index i = 0; i < count; ++i)
                turn_part(size, at[0] + i * step[0], size.bytes(), at[1] + i * step[1], stride, n,
                          s, 0, n);
        });
    });
}

void circular_shifts(const View& to, const View& from, int dim, const View& shifts) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    Loops<3> loops;
    for (int d = 0, r = 0; d < to.rank; ++d) {
        if (d == dim) continue;
        loops.add(to.dims[d].extent,
                  {to.dims[d].stride, from.dims[d].stride, shifts.dims[r++].stride});
    }
    loops.finish();
    const Index* const step = loops.stride[0];
    const Index to_stride = to.dims[dim].stride;
    const Index stride = from.dims[dim].stride;
    const Parts parts(to, dim, step[0]);
    if (to_stride == to.element && stride == to.element && to.element > 0) {
        walk(loops, {to.base, from.base, shifts.base},
             [&](const std::array<std::byte*, 3>& at, Index count) {
                 turn_pieces(at, step, count, n * to.element, to.element, shifts.element);
             });
        return;
    }
    with_element_size(to.element, [&](auto size) {
        walk(loops, {to.base, from.base, shifts.base},
             [&](const std::array<std::byte*, 3>& at, Index count) {
                 if (parts.whole)
                     return turn_vectors(size, at, step, count, to_stride, stride, n,
                                         shifts.element);
                 parts.each(count, [&](Index i, Index k, Index m) {
                     const Index s = circular_distance(at[2] + i * step[2], shifts.element, n);
                     turn_part(size, at[0] + i * step[0], to_stride, at[1] + i * step[1], stride, n,
                               s, k, m);
                 });
             });
    });
}

void end_off_shift(const View& to, const View& from, int dim, Index shift, const View& boundary) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    bool one = true;
    for (int d = 0; d < boundary.rank; ++d) one &= boundary.dims[d].stride == 0;
    const Index s = std::clamp(shift, -n, n);
    if (one && is_contiguous(to) && is_contiguous(from))
        return push_blocks(to, from, dim, s, boundary.base);
    const Index m = std::abs(s);
    const bool up = s > 0;
    copy_part(to, up ? 0 : m, from, up ? m : 0, dim, n - m);
    // The boundary, spread over the m places that came free.
    View free = to;
    free.base += (up ? n - m : 0) * to.dims[dim].stride;
    free.dims[dim].extent = m;
    spread(free, boundary, dim);
}

void end_off_shifts(const View& to, const View& from, int dim, const View& shifts,
                    const View& boundary) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    Loops<4> loops;
    for (int d = 0, r = 0; d < to.rank; ++d) {
        if (d == dim) continue;
        loops.add(to.dims[d].extent, {to.dims[d].stride, from.dims[d].stride, shifts.dims[r].stride,
                                      boundary.dims[r].stride});
        ++r;
    }
    loops.finish();
    const Index* const step = loops.stride[0];
    const Index to_stride = to.dims[dim].stride;
    const Index stride = from.dims[dim].stride;
    const Parts parts(to, dim, step[0]);
    with_element_size(to.element, [&](auto size) {
        walk(loops, {to.base, from.base, shifts.base, boundary.base},
             [&](const std::array<std::byte*, 4>& at, Index count) {
                 parts.each(count, [&](Index i, Index k, Index m) {
                     const Index s =
                         std::clamp(shift_at(at[2] + i * step[2], shifts.element), -n, n);
                     push_part(size, at[0] + i * step[0], to_stride, at[1] + i * step[1], stride, n,
                               s, at[3] + i * step[3], k, m);
                 });
             });
    });
}

}  // namespace tarn::arrays
