#include "intrinsics/arrays/transform.h"

#include <algorithm>
#include <cstring>
#include <emmintrin.h>
#include <numeric>
#include <type_traits>

#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/runs.h"
#include "intrinsics/arrays/sizes.h"

namespace tarn::arrays {
namespace {

constexpr Index mask_chunk = 1024;

// ---- Copies that turn an array round ----

constexpr Index tile = 32;

// A square of elements, in registers: rows that lie in one piece in `from` become columns of those
// that do in `to`.
template <Index size>
void turn_square(std::byte* to, Index to_step, const std::byte* from, Index from_step) {
    if constexpr (size == 4) {
        __m128 row[4];
        for (Index i = 0; i < 4; ++i)
            row[i] = _mm_loadu_ps(reinterpret_cast<const float*>(from + i * from_step));
        _MM_TRANSPOSE4_PS(row[0], row[1], row[2], row[3]);
        for (Index i = 0; i < 4; ++i)
            _mm_storeu_ps(reinterpret_cast<float*>(to + i * to_step), row[i]);
    } else {
        const __m128d first = _mm_loadu_pd(reinterpret_cast<const double*>(from));
        const __m128d second = _mm_loadu_pd(reinterpret_cast<const double*>(from + from_step));
        _mm_storeu_pd(reinterpret_cast<double*>(to), _mm_unpacklo_pd(first, second));
        _mm_storeu_pd(reinterpret_cast<double*>(to + to_step), _mm_unpackhi_pd(first, second));
    }
}

// The squares of a tile that is whole, whose rows lie in one piece; false where it isn't such a
// one.
template <Index size>
bool turn_tile(std::byte* to, const std::byte* from, const Index (&inner)[2], Index inner_count,
               const Index (&outer)[2], Index outer_count) {
    constexpr Index side = 16 / size;
    if (outer[0] != size || inner[1] != size) return false;
    if (inner_count % side != 0 || outer_count % side != 0) return false;
    for (Index i = 0; i < inner_count; i += side)
        for (Index o = 0; o < outer_count; o += side)
            turn_square<size>(to + i * inner[0] + o * size, inner[0],
                              from + i * size + o * outer[1], outer[1]);
    return true;
}

template <Index size>
void copy_tile(std::byte* to, const std::byte* from, const Index (&inner)[2], Index inner_count,
               const Index (&outer)[2], Index outer_count) {
    if constexpr (size == 4 || size == 8) {
        if (turn_tile<size>(to, from, inner, inner_count, outer, outer_count)) return;
    }
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
            const bool done =
                with_size(element, [&]<Index size>() { copy_tile<size>(t, f, b, bn, a, an); });
            if (done) continue;
            for (Index i = 0; i < bn; ++i)
                copy_run(t + i * b[0], a[0], f + i * b[1], a[1], an, element);
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

void copy_runs(const Loops<2>& loops, std::byte* to, std::byte* from, Index element) {
    constexpr Index few = 32;
    const Index step[2] = {loops.stride[0][0], loops.stride[0][1]};
    if (loops.extent[0] > few) {
        walk(loops, {to, from}, [&](const std::array<std::byte*, 2>& at, Index n) {
            copy_run(at[0], step[0], at[1], step[1], n, element);
        });
        return;
    }
    with_element_size(element, [&](auto size) {
        walk(loops, {to, from}, [&](const std::array<std::byte*, 2>& at, Index n) {
            size.copy(at[0], step[0], at[1], step[1], n);
        });
    });
}

void copy_loops(Loops<2>& loops, std::byte* to, const std::byte* source, Index element) {
    loops.nearest_first(0);
    auto* const from = const_cast<std::byte*>(source);
    const int other = shortest(loops, 1);
    if (other == 0 || loops.rank == 1) return copy_runs(loops, to, from, element);
    // Loop `other` runs together with loop 0; the rest goes round them.
    const Index count = loops.extent[other];
    const Index step[2] = {loops.stride[other][0], loops.stride[other][1]};
    for (int d = other; d + 1 < loops.rank; ++d) {
        loops.extent[d] = loops.extent[d + 1];
        for (int i = 0; i < 2; ++i) loops.stride[d][i] = loops.stride[d + 1][i];
    }
    --loops.rank;
    walk(loops, {to, from}, [&](const std::array<std::byte*, 2>& at, Index n) {
        copy_turned(at[0], at[1], loops.stride[0], n, step, count, element);
    });
}

}  // namespace

void copy(const View& to, const View& from) {
    Loops<2> loops = loops_over(to, from);
    copy_loops(loops, to.base, from.base, to.element);
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

namespace {

// So few elements aren't worth the way to anything quicker than one after the other.
constexpr Index few_elements = 256;

// The same holds for short runs and for elements that lie apart in an odd way.
bool are_few(const Mask& mask, const View& array) {
    constexpr Index short_run = 32;
    const Dimension& first = array.dims[0];
    if (mask.truth != Truth::low_byte) return false;
    if (mask.view.count() <= few_elements) return true;
    if (first.stride != array.element && first.stride != 2 * array.element) return true;
    return array.rank > 1 && first.extent <= short_run &&
           !(is_contiguous(array) && is_contiguous(mask.view));
}

// One run of elements, of which those are stored whose flag is set, while there is room: each is
// stored and only kept if its flag says so. Everything that changes is the routine's own, as bytes
// that are stored might be anything else.
struct Packing {
    std::byte* to;
    Index to_stride;
    Index room;
    bool fits = true;

    template <class Size>
    [[gnu::noinline]] void take(Size size, const std::byte* from, Index step, const std::byte* flag,
                                Index flag_step, Index n) {
        std::byte* target = to;
        const Index stride = to_stride;
        const std::byte* const end = target + room * stride;
        Index i = 0;
        const auto fill = [&](Index next) {
            for (; i < n && target != end; ++i) {
                size.move(target, from);
                target += -static_cast<Index>(*flag != std::byte{0}) & next;
                from += step;
                flag += flag_step;
            }
        };
        const std::byte* const start = target;
        if (stride == size.bytes()) {
            fill(size.bytes());
        } else {
            fill(stride);
        }
        for (; i < n; ++i, flag += flag_step) fits &= *flag == std::byte{0};
        room -= (target - start) / stride;
        to = target;
    }
};

[[gnu::noinline]] Index pack_few(std::byte* to, Index to_stride, Index room, const View& array,
                                 const View& mask) {
    const Loops<2> loops = loops_over(array, mask);
    Packing packing{to, to_stride, room};
    with_element_size(array.element, [&](auto size) {
        walk(loops, {array.base, mask.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
            packing.take(size, at[0], loops.stride[0][0], at[1], loops.stride[0][1], n);
        });
    });
    return packing.fits ? room - packing.room : room + 1;
}

}  // namespace

Index pack(std::byte* to, Index to_stride, Index room, const View& array, const Mask& mask) {
    // Elements of no length don't show how many have been stored.
    if (to_stride != 0 && are_few(mask, array))
        return pack_few(to, to_stride, room, array, mask.view);
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

    // Where gathering would cost more than it gains, the two are read as they lie.
    const Index mask_step = loops.stride[0][1];
    const bool apart = straight && mask.truth == Truth::low_byte &&
                       (step != element || mask_step != mask.view.element);

    walk(loops, {array.base, mask.view.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        if (apart && n <= room - kept) {
            const Index some = compact_apart(to + kept * element, at[0], step, at[1], mask_step,
                                             mask.view.element, n, element);
            if (some >= 0) {
                kept += some;
                return true;
            }
        }
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

// The same for UNPACK: false where the vector ends too early. A choice of addresses, not of roads,
// as masks are mostly unforeseeable.
struct Unpacking {
    const std::byte* vector;
    Index stride;
    Index left;

    template <class Size>
    [[gnu::noinline]] bool give(Size size, std::byte* to, Index to_step, const std::byte* flag,
                                Index flag_step, const std::byte* field, Index field_step,
                                Index n) {
        const std::byte* next = vector;
        const Index step = stride;
        Index there = left;
        const auto all = [&](auto check) {
            for (Index i = 0; i < n; ++i) {
                const Index taken = -static_cast<Index>(*flag != std::byte{0});
                if constexpr (check) {
                    there += taken;
                    if (there < 0) return false;
                }
                size.move(to, field + ((next - field) & taken));
                next += step & taken;
                to += to_step;
                flag += flag_step;
                field += field_step;
            }
            return true;
        };
        // A vector that lasts longer than the run needs no look at its end.
        const bool lasts = there >= n && step != 0;
        if (lasts) {
            all(std::false_type{});
            there -= (next - vector) / step;
        } else if (!all(std::true_type{})) {
            return false;
        }
        vector = next;
        left = there;
        return true;
    }
};

[[gnu::noinline]] bool unpack_few(const View& to, const std::byte* vector, Index stride, Index n,
                                  const View& mask, const View& field) {
    const Loops<3> loops = loops_over(to, mask, field);
    const Index* const step = loops.stride[0];
    Unpacking unpacking{vector, stride, n};
    bool enough = true;
    with_element_size(to.element, [&](auto size) {
        walk(loops, {to.base, mask.base, field.base},
             [&](const std::array<std::byte*, 3>& at, Index count) {
                 enough =
                     unpacking.give(size, at[0], step[0], at[1], step[1], at[2], step[2], count);
                 return enough;
             });
    });
    return enough;
}

}  // namespace

bool unpack(const View& to, const std::byte* vector, Index stride, Index n, const Mask& mask,
            const View& field) {
    if (are_few(mask, to) || are_few(mask, mask.view))
        return unpack_few(to, vector, stride, n, mask.view, field);
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
                 expand(at[0] + first * step[0], step[0], vector, stride, left,
                        at[2] + first * step[2], step[2], flags, m, element);
                 left -= taken;
             }
             return true;
         });
    return enough;
}

void spread(const View& to, const View& source, int dim) {
    const Dimension copies = to.dims[dim];
    if (copies.extent <= 0) return;
    Loops<2> loops;
    for (int d = 0, s = 0; d < to.rank; ++d) {
        if (d == dim) continue;
        loops.add(to.dims[d].extent, {to.dims[d].stride, source.dims[s].stride});
        ++s;
    }
    loops.finish();
    const Index element = to.element;
    const Index to_step = loops.stride[0][0];
    const Index step = loops.stride[0][1];
    // Copies that lie side by side are made element by element, others run by run. A run is taken
    // in pieces that stay in the nearest cache while they are copied.
    const bool side_by_side = std::abs(copies.stride) < std::abs(to_step) || loops.extent[0] == 1;
    const Index piece = std::max<Index>(1, 16384 / std::max<Index>(element, 1));
    if (loops.extent[0] * copies.extent <= few_elements / 4) {
        with_element_size(element, [&](auto size) {
            walk(loops, {to.base, source.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
                if (copies.stride == element || n == 1) {
                    for (Index i = 0; i < n; ++i)
                        size.fill(at[0] + i * to_step, copies.stride, at[1] + i * step,
                                  copies.extent);
                    return;
                }
                for (Index c = 0; c < copies.extent; ++c)
                    size.copy(at[0] + c * copies.stride, to_step, at[1], step, n);
            });
        });
        return;
    }
    walk(loops, {to.base, source.base}, [&](const std::array<std::byte*, 2>& at, Index n) {
        if (side_by_side) {
            repeat_run(at[0], to_step, copies.stride, copies.extent, at[1], step, n, element);
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

namespace {

// The elements of `source` and then those of `pad`, again and again, into an array in one piece.
void fill_in_order(const View& to, Index wanted, const View& source, const View* pad) {
    View start = source;
    start.base = to.base;
    make_contiguous(start);
    copy(start, source);
    const Index given = source.count();
    const Index rest = (wanted - given) * to.element;
    if (rest == 0) return;
    std::byte* const at = to.base + given * to.element;
    Index filled = std::min(rest, pad->count() * to.element);
    copy_bytes(at, pad->base, filled);
    while (filled < rest) {
        const Index more = std::min(filled, rest - filled);
        copy_bytes(at + filled, at, more);
        filled += more;
    }
}

}  // namespace

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
    const bool all_fits = source.count() <= wanted;
    if (all_fits && is_contiguous(turned) && (pad == nullptr || is_contiguous(*pad))) {
        fill_in_order(turned, wanted, source, pad);
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
