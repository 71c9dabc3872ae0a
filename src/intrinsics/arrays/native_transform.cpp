// RESHAPE, PACK, UNPACK, SPREAD, CSHIFT, EOSHIFT and TRANSPOSE as compiled code calls them.
#include <algorithm>
#include <array>
#include <cstring>

#include "intrinsics/arrays/loops.h"
#include "intrinsics/arrays/native_routines.h"
#include "intrinsics/arrays/runs.h"
#include "intrinsics/arrays/transform.h"

namespace tarn::arrays {
namespace {

constinit NativeState the_state;

// A vector of integers of 1, 2 or 4 bytes.
struct Integers {
    const std::byte* at;
    Index size;

    Index operator[](Index i) const { return load_integer(at + i * size, size); }
};

// The array that the words from `first` tell: rank, address, extents.
View array_at(const NativeCall& call, int first, Index element) {
    return native_view(call.address<std::byte>(first + 1), element, call.integer(first),
                       call.address<std::int32_t>(first + 2));
}

// The scalar at an address, as an array of the extents of `shape`.
View everywhere(const void* scalar, Index element, const View& shape) {
    View view = shape;
    view.base = static_cast<std::byte*>(const_cast<void*>(scalar));
    view.element = element;
    for (int d = 0; d < view.rank; ++d) view.dims[d].stride = 0;
    return view;
}

// ---- RESHAPE: rank, SOURCE, extents, element size; rank of SHAPE, SHAPE, extents, integer size;
// rank of PAD, PAD, extents; rank of ORDER, ORDER, extents, integer size; result ----

struct Order {
    int of[max_native_rank];
};

// The permutation that ORDER tells; without it the natural one.
Order read_order(const NativeCall& call, int rank) {
    constexpr int no_permutation = 395;
    constexpr int order_must_be_vector = 401;
    constexpr int order_has_wrong_size = 394;
    Order order;
    for (int d = 0; d < max_native_rank; ++d) order.of[d] = d;
    if (!call.has(12)) return order;
    if (call.integer(11) != 1) native_fail(order_must_be_vector);
    if (*call.address<std::int32_t>(13) != rank) native_fail(order_has_wrong_size);
    if (rank < 1 || rank > max_native_rank) native_fail(fail_rank);
    const Integers values{call.address<std::byte>(12), call.integer(14)};
    unsigned met = 0;
    for (int d = 0; d < rank; ++d) {
        const Index value = values[d];
        if (value < 1 || value > rank) native_fail(no_permutation);
        order.of[d] = static_cast<int>(value - 1);
        met ^= 1u << (value - 1);
    }
    if (met != (1u << rank) - 1) native_fail(no_permutation);
    return order;
}

void reshape_routine(NativeCall& call) {
    constexpr int shape_must_be_vector = 400;
    constexpr int scalar_pad = 402;
    const Index element = call.integer(3);
    const View source = array_at(call, 0, element);
    if (call.integer(4) != 1) native_fail(shape_must_be_vector);
    const Index rank = *call.address<std::int32_t>(6);
    View pad;
    const bool has_pad = call.has(9);
    if (has_pad) {
        if (call.integer(8) == 0) native_fail(scalar_pad);
        pad = array_at(call, 8, element);
    }
    const Order order = read_order(call, static_cast<int>(rank));
    if (rank < 1 || rank > max_native_rank) native_fail(fail_rank);
    const Integers extents{call.address<std::byte>(5), call.integer(7)};
    View shape;
    shape.rank = static_cast<int>(rank);
    for (int d = 0; d < shape.rank; ++d) shape.dims[d].extent = std::max<Index>(extents[d], 0);
    View result;
    if (!open_result(call, call.result(15), shape, element, result)) return;
    const bool padded = has_pad && pad.count() > 0;
    if (!padded && source.count() < result.count()) native_fail(fail_shape);
    reshape(result, order.of, source, padded ? &pad : nullptr);
}

// ---- PACK: rank, ARRAY, extents, element size; rank of MASK, MASK, extents, mask element size;
// VECTOR, its size; result ----

void pack_routine(NativeCall& call) {
    constexpr int vector_has_other_size = 396;
    constexpr int result_is_small = 397;
    constexpr int vector_is_small = 398;
    constexpr int result_has_other_size = 399;
    const Index element = call.integer(3);
    const View array = array_at(call, 0, element);
    Mask mask;
    mask.truth = Truth::byte_is_one;
    const bool scalar = call.integer(4) == 0;
    if (scalar) {
        mask.view = everywhere(call.address<std::byte>(5), call.integer(7), array);
    } else {
        mask.view = array_at(call, 4, call.integer(7));
        if (!same_extents(mask.view, array)) native_fail(fail_shape);
    }
    const bool has_vector = call.has(8);
    const Index vector_size = has_vector ? std::max<Index>(call.integer(9), 0) : 0;
    const auto* const vector = call.address<std::byte>(8);

    ResultDescriptor& descriptor = call.result(10);
    check_base(descriptor);
    Index room = has_vector ? vector_size : array.count();
    if (descriptor.base == 0) {
        const Index bytes = has_vector ? room * element : bytes_of(array, element);
        std::byte* const storage = make_storage(call, bytes);
        if (storage == nullptr) return;
        descriptor.base = reinterpret_cast<Word>(storage);
    } else {
        room = std::max<Word>(descriptor.extent[0], 0);
        if (has_vector && room != vector_size) native_fail(vector_has_other_size);
    }
    if (scalar && is_true(mask.view.base, mask.view.element, mask.truth)) {
        if (!has_vector && room != array.count()) native_fail(result_has_other_size);
        if (has_vector && vector_size < array.count()) native_fail(vector_is_small);
    }
    auto* const to = reinterpret_cast<std::byte*>(descriptor.base);
    const Index stored = pack(to, element, room, array, mask);
    if (stored > room) native_fail(result_is_small);
    if (has_vector)
        copy_run(to + stored * element, element, vector + stored * element, element,
                 vector_size - stored, element);
    descriptor.extent[0] = has_vector ? vector_size : stored;
    native_state().packed_size = descriptor.extent[0];
}

// ---- UNPACK: rank, VECTOR, its size, element size; MASK, extents, mask element size; rank of
// FIELD, FIELD, extents; result ----

void unpack_routine(NativeCall& call) {
    constexpr int vector_is_short = 403;
    const Index element = call.integer(3);
    Mask mask;
    mask.truth = Truth::byte_is_one;
    mask.view = native_view(call.address<std::byte>(4), call.integer(6), call.integer(0),
                            call.address<std::int32_t>(5));
    View result;
    if (!open_result(call, call.result(10), mask.view, element, result)) return;
    const bool scalar = call.integer(7) == 0;
    const View field = scalar ? everywhere(call.address<std::byte>(8), element, result)
                              : array_at(call, 7, element);
    if (!same_extents(field, result)) native_fail(fail_shape);
    if (!unpack(result, call.address<std::byte>(1), element, call.integer(2), mask, field))
        native_fail(vector_is_short);
}

// ---- SPREAD: rank of SOURCE, SOURCE, extents, NCOPIES, DIM, result ----

void spread_routine(NativeCall& call) {
    ResultDescriptor& descriptor = call.result(5);
    const View source = array_at(call, 0, descriptor.element);
    const Index copies = call.integer(3);
    const int rank = source.rank + 1;
    if (copies <= 0) {
        check_base(descriptor);
        descriptor.base = 0;
        descriptor.element = 0;
        std::fill_n(descriptor.extent, std::min(rank, max_native_rank), 0);
        return;
    }
    const Index dim = call.integer(4);
    if (dim < 1 || dim > rank) native_fail(fail_dim);
    if (rank > max_native_rank) native_fail(fail_rank);
    View shape;
    shape.rank = rank;
    for (int d = 0; d < rank; ++d) {
        if (d < dim - 1) shape.dims[d] = source.dims[d];
        if (d > dim - 1) shape.dims[d] = source.dims[d - 1];
    }
    shape.dims[dim - 1].extent = copies;
    View result;
    if (!open_result(call, descriptor, shape, descriptor.element, result)) return;
    spread(result, source, static_cast<int>(dim) - 1);
}

// ---- CSHIFT and EOSHIFT ----

int dim_or_first(const NativeCall& call, int word, int rank) {
    const Index dim = call.has(word) ? call.integer(word) : 1;
    if (dim < 1 || dim > rank) native_fail(fail_dim);
    return static_cast<int>(dim) - 1;
}

// An argument with the shape of `shape`, or a scalar; the words from `first` tell rank, address
// and extents.
View beside(const NativeCall& call, int first, Index element, const View& shape) {
    if (call.integer(first) == 0)
        return everywhere(call.address<std::byte>(first + 1), element, shape);
    const View view = native_view(call.address<std::byte>(first + 1), element, shape.rank,
                                  call.address<std::int32_t>(first + 2));
    if (!same_extents(view, shape)) native_fail(fail_shape);
    return view;
}

// rank, ARRAY, extents, element size; rank of SHIFT, SHIFT, extents, integer size; DIM; result
void cshift_routine(NativeCall& call) {
    const Index element = call.integer(3);
    const View array = array_at(call, 0, element);
    const int dim = dim_or_first(call, 8, array.rank);
    const View outer = without(array, dim);
    const Index shift_rank = call.integer(4);
    if (shift_rank != 0 && shift_rank != outer.rank) native_fail(fail_shape);
    const View shifts = beside(call, 4, call.integer(7), outer);
    View result;
    if (!open_result(call, call.result(9), array, element, result)) return;
    if (shift_rank == 0) {
        circular_shift(result, array, dim, shifts.base, shifts.element);
    } else {
        circular_shifts(result, array, dim, shifts);
    }
}

// EOSHIFT of elements that may be longer than the stack, vector by vector: their bytes are a
// dimension of their own, so that one byte fills.
void shift_bytes(const View& result, const View& array, int dim, const View& shifts,
                 const std::byte* fill) {
    const auto loops = loops_over(without(result, dim), without(array, dim), shifts);
    const auto vector = [&](std::byte* base, const View& whole) {
        View bytes;
        bytes.base = base;
        bytes.element = 1;
        bytes.rank = 2;
        bytes.dims[0] = {whole.element, 1};
        bytes.dims[1] = whole.dims[dim];
        return bytes;
    };
    walk(loops, {result.base, array.base, shifts.base},
         [&](std::array<std::byte*, 3> at, Index count) {
             for (Index i = 0; i < count; ++i) {
                 const View to = vector(at[0], result);
                 end_off_shift(to, vector(at[1], array), 1, load_integer(at[2], shifts.element),
                               everywhere(fill, 1, without(to, 1)));
                 for (std::size_t a = 0; a < at.size(); ++a) at[a] += loops.stride[0][a];
             }
         });
}

// rank, ARRAY, extents, element size; rank of SHIFT, SHIFT, extents, integer size; rank of
// BOUNDARY, BOUNDARY, extents; DIM; character flag; result
void eoshift_routine(NativeCall& call) {
    const Index element = call.integer(3);
    const View array = array_at(call, 0, element);
    const int dim = dim_or_first(call, 11, array.rank);
    const View outer = without(array, dim);
    const View shifts = beside(call, 4, call.integer(7), outer);
    const bool has_boundary = call.has(9);
    const View given = has_boundary ? beside(call, 8, element, outer) : outer;
    View result;
    if (!open_result(call, call.result(13), array, element, result)) return;
    const auto move = [&](const View& boundary) {
        if (call.integer(4) == 0) {
            end_off_shift(result, array, dim, load_integer(shifts.base, shifts.element), boundary);
        } else {
            end_off_shifts(result, array, dim, shifts, boundary);
        }
    };
    if (has_boundary) {
        move(given);
        return;
    }
    // Nothing of an element is known but its size: the fill is as long as one.
    const bool characters = call.has(12) && call.integer(12) != 0;
    constexpr Index usual = 4096;
    std::byte fill[usual];
    std::memset(fill, characters ? ' ' : 0, static_cast<std::size_t>(std::min(element, usual)));
    if (element > usual) return shift_bytes(result, array, dim, shifts, fill);
    move(everywhere(fill, element, outer));
}

// ---- TRANSPOSE: MATRIX, its two extents, element size, result ----

void transpose_routine(NativeCall& call) {
    const Index element = call.integer(2);
    const View matrix =
        native_view(call.address<std::byte>(0), element, 2, call.address<std::int32_t>(1));
    View turned = matrix;
    std::swap(turned.dims[0], turned.dims[1]);
    View result;
    if (!open_result(call, call.result(3), turned, element, result)) return;
    copy(result, turned);
}

}  // namespace

NativeState& native_state() {
    return the_state;
}

}  // namespace tarn::arrays

// What native_entries.cpp gives names to.
extern "C" {
using Transforms = std::array<tarn::arrays::NativeRoutine, 7>;
[[gnu::visibility("hidden")]] extern const Transforms tarn_native_transform;
[[gnu::used]] const Transforms tarn_native_transform = {
    tarn::arrays::reshape_routine,  tarn::arrays::pack_routine,   tarn::arrays::unpack_routine,
    tarn::arrays::spread_routine,   tarn::arrays::cshift_routine, tarn::arrays::eoshift_routine,
    tarn::arrays::transpose_routine};
}
