#include "intrinsics/arrays/transform.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/runs.h"

namespace tarn::arrays {
namespace {

constexpr Index mask_chunk = 1024;

// ---- Copies that turn an array round ----

constexpr Index tile = 32;

template <Index size>
void copy_tile(std::byte* to, const std::byte* from, const Index (&inner)[2], Index inner_count,
               const Index (&outer)[2], Index outer_count) {
    for (Index i = 0; i < inner_count; ++i) {
        std::byte* const t = to + i * inner[0];
        const std::byte* const f = from + i * inner[1];
        for (Index o = 0; o < outer_count; ++o)
            __builtin_memcpy(t + o * outer[0], f + o * outer[1], size);
    }
}

// Two loops of which one is the short step of `to` and the other of `from`, in tiles that the cache
// holds on both sides.
void copy_turned(std::byte* to, const std::byte* from, const Index (&a)[2], Index a_count,
                 const Index (&b)[2], Index b_count, Index element) {
    for (Index bo = 0; bo < b_count; bo += tile) {
        const Index bn = std::min(tile, b_count - bo);
        for (Index ao = 0; ao < a_count; ao += tile) {
            const Index an = std::min(tile, a_count - ao);
            std::byte* const t = to + ao * a[0] + bo * b[0];
            const std::byte* const f = from + ao * a[1] + bo * b[1];
            switch (element) {
                case 1:
                    copy_tile<1>(t, f, b, bn, a, an);
                    break;
                case 2:
                    copy_tile<2>(t, f, b, bn, a, an);
                    break;
                case 4:
                    copy_tile<4>(t, f, b, bn, a, an);
                    break;
                case 8:
                    copy_tile<8>(t, f, b, bn, a, an);
                    break;
                case 16:
                    copy_tile<16>(t, f, b, bn, a, an);
                    break;
                default:
                    for (Index i = 0; i < bn; ++i)
                        copy_run(t + i * b[0], a[0], f + i * b[1], a[1], an, element);
            }
        }
    }
}

// The loop whose step is the shortest in array `which`.
template <int N>
int shortest(const Loops<N>& loops, int which) {
    int best = 0;
    for (int d = 1; d < loops.rank; ++d)
        if (std::abs(loops.stride[d][which]) < std::abs(loops.stride[best][which])) best = d;
    return best;
}

// ---- Reading an array as a sequence ----

// The elements of an array in array element order, again from the start when `repeat` is set.
class Sequence {
  public:
    Sequence(const View& view, bool repeat)
        : loops_(loops_over(view)), view_(view), repeat_(repeat) {
        start();
    }
    bool done() const { return done_; }

    // As many elements as lie in one run, at most n: their number, address and step.
    Index next(Index n, const std::byte*& at, Index& stride) {
        const Index count = std::min(n, loops_.extent[0] - place_);
        stride = loops_.stride[0][0];
        at = at_ + place_ * stride;
        place_ += count;
        if (place_ == loops_.extent[0]) step();
        return count;
    }

  private:
    void start() {
        at_ = view_.base;
        place_ = 0;
        std::fill_n(turn_, loops_.rank, 0);
        done_ = loops_.empty;
    }
    void step() {
        place_ = 0;
        for (int d = 1; d < loops_.rank; ++d) {
            at_ += loops_.stride[d][0];
            if (++turn_[d] < loops_.extent[d]) return;
            at_ -= loops_.stride[d][0] * loops_.extent[d];
            turn_[d] = 0;
        }
        if (repeat_) {
            start();
        } else {
            done_ = true;
        }
    }

    Loops<1> loops_;
    View view_;
    bool repeat_;
    bool done_ = false;
    const std::byte* at_ = nullptr;
    Index place_ = 0;
    Index turn_[max_rank + 1] = {};
};

bool is_contiguous(const View& view) {
    Index step = view.element;
    for (int d = 0; d < view.rank; ++d) {
        if (view.dims[d].extent != 1 && view.dims[d].stride != step) return false;
        step *= view.dims[d].extent;
    }
    return true;
}

// One vector turned by `shift`, which is from 0 to n - 1.
void turn_vector(std::byte* to, Index to_stride, const std::byte* from, Index stride, Index n,
                 Index shift, Index element) {
    copy_run(to, to_stride, from + shift * stride, stride, n - shift, element);
    copy_run(to + (n - shift) * to_stride, to_stride, from, stride, shift, element);
}

void push_vector(std::byte* to, Index to_stride, const std::byte* from, Index stride, Index n,
                 Index shift, const std::byte* boundary, Index element) {
    if (shift > 0) {
        const Index kept = n - std::min(shift, n);
        copy_run(to, to_stride, from + (n - kept) * stride, stride, kept, element);
        fill_run(to + kept * to_stride, to_stride, boundary, n - kept, element);
    } else {
        const Index kept = shift < -n ? 0 : n + shift;
        fill_run(to, to_stride, boundary, n - kept, element);
        copy_run(to + (n - kept) * to_stride, to_stride, from, stride, kept, element);
    }
}

Index into_range(Index shift, Index n) {
    const Index rest = shift % n;
    return rest < 0 ? rest + n : rest;
}

}  // namespace

void copy(const View& to, const View& from) {
    Loops<2> loops = loops_over(to, from);
    loops.nearest_first(0);
    const Index element = to.element;
    const int other = shortest(loops, 1);
    if (other == 0 || loops.rank == 1) {
        walk(loops, {to.base, from.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
            copy_run(at[0], loops.stride[0][0], at[1], loops.stride[0][1], n, element);
        });
        return;
    }
    // Loop `other` runs together with loop 0; the rest goes round them.
    const Index count = loops.extent[other];
    const Index step[2] = {loops.stride[other][0], loops.stride[other][1]};
    for (int d = other; d + 1 < loops.rank; ++d) {
        loops.extent[d] = loops.extent[d + 1];
        for (int i = 0; i < 2; ++i) loops.stride[d][i] = loops.stride[d + 1][i];
    }
    --loops.rank;
    walk(loops, {to.base, from.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        copy_turned(at[0], at[1], loops.stride[0], n, step, count, element);
    });
}

void fill(const View& to, const std::byte* value) {
    Loops<1> loops = loops_over(to);
    loops.nearest_first(0);
    walk(loops, {to.base}, [&](const std::array<std::byte*, 1>& at, Index n) {
        fill_run(at[0], loops.stride[0][0], value, n, to.element);
    });
}

Index count_true(const Mask& mask) {
    Loops<1> loops = loops_over(mask.view);
    loops.nearest_first(0);
    Index total = 0;
    walk(loops, {mask.view.base}, [&](const std::array<std::byte*, 1>& at, Index n) {
        total += count_true(at[0], loops.stride[0][0], n, mask.view.element, mask.truth);
    });
    return total;
}

Index pack(std::byte* to, Index to_stride, Index room, const View& array, const Mask& mask) {
    const Loops<2> loops = loops_over(array, mask.view);
    const Index element = array.element;
    const Index step = loops.stride[0][0];
    const bool straight = to_stride == element;
    Index kept = 0;
    // Elements come together here where they don't lie so, from and to.
    constexpr Index buffer_bytes = 16384;
    alignas(64) std::byte gathered[buffer_bytes];
    alignas(64) std::byte chosen[buffer_bytes];
    const Index fit = element > 0 ? buffer_bytes / element : mask_chunk;
    const bool small = fit >= 16;
    const Index chunk = small ? std::min(mask_chunk, fit) : mask_chunk;
    Flag flags[mask_chunk];

    walk(loops, {array.base, mask.view.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        for (Index first = 0; first < n; first += chunk) {
            const Index m = std::min(chunk, n - first);
            load_flags(flags, at[1] + first * loops.stride[0][1], loops.stride[0][1], m,
                       mask.view.element, mask.truth);
            const Index wanted = sum_of(flags, m);
            if (wanted == 0) continue;
            if (kept + wanted > room) {
                kept = room + 1;
                return false;
            }
            const std::byte* from = at[0] + first * step;
            std::byte* const target = to + kept * to_stride;
            if (wanted == m) {
                copy_run(target, to_stride, from, step, m, element);
            } else if (!small) {
                std::byte* next = target;
                for (Index i = 0; i < m; ++i) {
                    if (flags[i] == 0) continue;
                    std::memcpy(next, from + i * step, static_cast<std::size_t>(element));
                    next += to_stride;
                }
            } else {
                if (step != element) {
                    copy_run(gathered, element, from, step, m, element);
                    from = gathered;
                }
                if (straight) {
                    compact(target, room - kept, from, flags, m, element);
                } else {
                    compact(chosen, chunk, from, flags, m, element);
                    copy_run(target, to_stride, chosen, element, wanted, element);
                }
            }
            kept += wanted;
        }
        return true;
    });
    return kept;
}

namespace {

template <Index size>
const std::byte* unpack_run(std::byte* to, Index to_stride, const std::byte* vector, Index stride,
                            const std::byte* field, Index field_stride, const Flag* flags,
                            Index n) {
    for (Index i = 0; i < n; ++i) {
        // A choice of addresses, not of roads: masks are mostly unforeseeable.
        const std::byte* const from = flags[i] != 0 ? vector : field;
        __builtin_memcpy(to, from, size);
        vector += flags[i] != 0 ? stride : 0;
        field += field_stride;
        to += to_stride;
    }
    return vector;
}

}  // namespace

bool unpack(const View& to, const std::byte* vector, Index stride, Index n, const Mask& mask,
            const View& field) {
    const Loops<3> loops = loops_over(to, mask.view, field);
    const Index element = to.element;
    const Index* const step = loops.stride[0];
    Flag flags[mask_chunk];
    Index left = n;
    bool enough = true;
    walk(loops, {to.base, mask.view.base, field.base},
         [&](const std::array<std::byte*, 3>& at, Index count) {
             for (Index first = 0; first < count; first += mask_chunk) {
                 const Index m = std::min(mask_chunk, count - first);
                 load_flags(flags, at[1] + first * step[1], step[1], m, mask.view.element,
                            mask.truth);
                 const Index taken = sum_of(flags, m);
                 if (taken > left) {
                     enough = false;
                     return false;
                 }
                 left -= taken;
                 std::byte* target = at[0] + first * step[0];
                 const std::byte* other = at[2] + first * step[2];
                 switch (element) {
                     case 1:
                         vector = unpack_run<1>(target, step[0], vector, stride, other, step[2],
                                                flags, m);
                         break;
                     case 2:
                         vector = unpack_run<2>(target, step[0], vector, stride, other, step[2],
                                                flags, m);
                         break;
                     case 4:
                         vector = unpack_run<4>(target, step[0], vector, stride, other, step[2],
                                                flags, m);
                         break;
                     case 8:
                         vector = unpack_run<8>(target, step[0], vector, stride, other, step[2],
                                                flags, m);
                         break;
                     case 16:
                         vector = unpack_run<16>(target, step[0], vector, stride, other, step[2],
                                                 flags, m);
                         break;
                     default:
                         for (Index i = 0; i < m; ++i) {
                             std::memcpy(target, flags[i] != 0 ? vector : other,
                                         static_cast<std::size_t>(element));
                             if (flags[i] != 0) vector += stride;
                             other += step[2];
                             target += step[0];
                         }
                 }
             }
             return true;
         });
    return enough;
}

void spread(const View& to, const View& source, int dim) {
    const Dimension copies = to.dims[dim];
    const View one = without(to, dim);
    if (copies.extent <= 0) return;
    Loops<2> loops = loops_over(one, source);
    const Index element = to.element;
    const Index to_step = loops.stride[0][0];
    const Index step = loops.stride[0][1];
    // Copies that lie side by side are made element by element, others run by run. A run is taken
    // in pieces that stay in the nearest cache while they are copied.
    const bool side_by_side = std::abs(copies.stride) < std::abs(to_step) || loops.extent[0] == 1;
    const Index piece = std::max<Index>(1, 16384 / std::max<Index>(element, 1));
    walk(loops, {one.base, source.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        if (side_by_side) {
            for (Index i = 0; i < n; ++i)
                fill_run(at[0] + i * to_step, copies.stride, at[1] + i * step, copies.extent,
                         element);
            return;
        }
        for (Index first = 0; first < n; first += piece) {
            const Index m = std::min(piece, n - first);
            for (Index c = 0; c < copies.extent; ++c)
                copy_run(at[0] + first * to_step + c * copies.stride, to_step, at[1] + first * step,
                         step, m, element);
        }
    });
}

void reshape(const View& to, const int* order, const View& source, const View* pad) {
    View turned = to;
    for (int d = 0; d < to.rank; ++d) turned.dims[d] = to.dims[order[d]];
    const Index wanted = turned.count();
    if (wanted == 0) return;
    if (source.count() >= wanted && is_contiguous(source)) {
        View same = turned;
        same.base = source.base;
        make_contiguous(same);
        copy(turned, same);
        return;
    }
    const Loops<1> loops = loops_over(turned);
    Sequence first(source, false);
    Sequence rest(pad != nullptr ? *pad : source, true);
    walk(loops, {turned.base}, [&](const std::array<std::byte*, 1>& at, Index n) {
        Index filled = 0;
        while (filled < n) {
            Sequence& from = first.done() ? rest : first;
            const std::byte* piece = nullptr;
            Index stride = 0;
            const Index m = from.next(n - filled, piece, stride);
            copy_run(at[0] + filled * loops.stride[0][0], loops.stride[0][0], piece, stride, m,
                     to.element);
            filled += m;
        }
    });
}

void circular_shift(const View& to, const View& from, int dim, Index shift) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    const Index s = into_range(shift, n);
    copy(part(to, dim, 0, n - s), part(from, dim, s, n - s));
    copy(part(to, dim, n - s, s), part(from, dim, 0, s));
}

void circular_shifts(const View& to, const View& from, int dim, const View& shifts) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    const View outer_to = without(to, dim);
    const View outer_from = without(from, dim);
    const Loops<3> loops = loops_over(outer_to, outer_from, shifts);
    const Index* const step = loops.stride[0];
    walk(loops, {to.base, from.base, shifts.base},
         [&](const std::array<std::byte*, 3>& at, Index count) {
             for (Index i = 0; i < count; ++i) {
                 const Index s = into_range(load_integer(at[2] + i * step[2], shifts.element), n);
                 turn_vector(at[0] + i * step[0], to.dims[dim].stride, at[1] + i * step[1],
                             from.dims[dim].stride, n, s, to.element);
             }
         });
}

void end_off_shift(const View& to, const View& from, int dim, Index shift, const View& boundary) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    const Index m = shift > 0 ? std::min(shift, n) : (shift < -n ? n : -shift);
    const Index kept = n - m;
    const bool up = shift > 0;
    copy(part(to, dim, up ? 0 : m, kept), part(from, dim, up ? m : 0, kept));
    // The boundary, spread over the m places that came free.
    spread(part(to, dim, up ? kept : 0, m), boundary, dim);
}

void end_off_shifts(const View& to, const View& from, int dim, const View& shifts,
                    const View& boundary) {
    const Index n = from.dims[dim].extent;
    if (n <= 0) return;
    const Loops<4> loops = loops_over(without(to, dim), without(from, dim), shifts, boundary);
    const Index* const step = loops.stride[0];
    walk(loops, {to.base, from.base, shifts.base, boundary.base},
         [&](const std::array<std::byte*, 4>& at, Index count) {
             for (Index i = 0; i < count; ++i)
                 push_vector(at[0] + i * step[0], to.dims[dim].stride, at[1] + i * step[1],
                             from.dims[dim].stride, n,
                             load_integer(at[2] + i * step[2], shifts.element), at[3] + i * step[3],
                             to.element);
         });
}

Index load_integer(const std::byte* from, Index size) {
    switch (size) {
        case 1:
            return *reinterpret_cast<const std::int8_t*>(from);
        case 2:
            return *reinterpret_cast<const std::int16_t*>(from);
        case 4:
            return *reinterpret_cast<const std::int32_t*>(from);
        case 16: {
            const auto value = *reinterpret_cast<const __int128*>(from);
            return static_cast<Index>(std::clamp<__int128>(value, INT64_MIN, INT64_MAX));
        }
        default:
            return *reinterpret_cast<const std::int64_t*>(from);
    }
}

}  // namespace tarn::arrays
