// gfortran's PACK, UNPACK, SPREAD, RESHAPE, CSHIFT and EOSHIFT, and the copies that it makes of
// arguments which must lie together.
//
// An element is so many bytes. The entries for characters are told how many; their second argument,
// the length that the result has, says the same once more.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frame/link_name.h"
#include "intrinsics/arrays/runs.h"
#include "intrinsics/arrays/transform.h"
#include "pairing/gcc/array_descriptor.h"

namespace tarn::gcc {
namespace {

using namespace tarn::arrays;

Index element_of(const ArrayDescriptor& array) {
    return static_cast<Index>(array.element_length);
}

template <class Character>
Index text_bytes(std::size_t length) {
    return static_cast<Index>(length * sizeof(Character));
}

// A scalar as an array of the extents of `shape`, of which `rank` dimensions count.
View everywhere(const void* scalar, Index element, const View& shape, int rank) {
    View view;
    view.rank = rank;
    view.base = static_cast<std::byte*>(const_cast<void*>(scalar));
    view.element = element;
    for (int d = 0; d < rank; ++d) view.dims[d] = {shape.dims[d].extent, 0};
    return view;
}
View everywhere(const void* scalar, Index element, const View& shape) {
    return everywhere(scalar, element, shape, shape.rank);
}

View vector_shape(Index extent) {
    View shape;
    shape.rank = 1;
    shape.dims[0].extent = extent;
    return shape;
}

// ---- PACK ----

constexpr int result_is_small = 397;

void pack_with_vector(ArrayDescriptor& to, const View& array, const Mask& mask,
                      const ArrayDescriptor& vector_given, Index wanted) {
    const Index element = array.element;
    const View vector = view_of(vector_given, element);
    if (wanted > vector.count())
        array_failure(result_is_small, "The VECTOR of PACK has %td elements; MASK chooses %td",
                      vector.count(), wanted);
    const View result = result_for(to, vector_shape(vector.count()), element, "PACK");
    const arrays::Dimension along = result.dims[0];
    const Index stored = pack(result.base, along.stride, along.extent, array, mask);
    if (stored > along.extent)
        array_failure(result_is_small, "The result of PACK has only %td elements", along.extent);
    copy_run(result.base + stored * along.stride, along.stride,
             vector.base + stored * vector.dims[0].stride, vector.dims[0].stride,
             std::min(along.extent, vector.count()) - stored, element);
}

// `count()` says how many elements the mask chooses.
template <class Count>
void pack_into(ArrayDescriptor& to, const View& array, const Mask& mask,
               const ArrayDescriptor* vector, Count&& count) {
    if (vector != nullptr) return pack_with_vector(to, array, mask, *vector, count());
    // Where there is a result to be filled, that shows how many there are.
    const bool given = to.base != nullptr && to.rank == 1 && !checks_bounds();
    const View result = given ? view_of(to, array.element)
                              : result_for(to, vector_shape(count()), array.element, "PACK");
    const arrays::Dimension along = result.dims[0];
    if (pack(result.base, along.stride, along.extent, array, mask) > along.extent)
        array_failure(result_is_small, "The result of PACK has only %td elements", along.extent);
}

void pack_by_array(ArrayDescriptor& to, const ArrayDescriptor& from, Index element,
                   const ArrayDescriptor& mask_given, const ArrayDescriptor* vector) {
    const View array = view_of(from, element);
    Mask mask;
    mask.view = view_of(mask_given, element_of(mask_given));
    check_shape(mask.view, array, "MASK", "PACK");
    pack_into(to, array, mask, vector, [&] { return count_true(mask); });
}

void pack_by_scalar(ArrayDescriptor& to, const ArrayDescriptor& from, Index element,
                    const Logical* chosen, const ArrayDescriptor* vector) {
    const View array = view_of(from, element);
    const Logical flag = *chosen != 0 ? 1 : 0;
    Mask mask;
    mask.view = everywhere(&flag, sizeof flag, array);
    pack_into(to, array, mask, vector, [&] { return flag != 0 ? array.count() : 0; });
}

// ---- UNPACK ----

void unpack_into(ArrayDescriptor& to, const ArrayDescriptor& vector_given, Index element,
                 const ArrayDescriptor& mask_given, const void* field_scalar,
                 const ArrayDescriptor* field_array) {
    constexpr int vector_is_short = 403;
    Mask mask;
    mask.view = view_of(mask_given, element_of(mask_given));
    const View vector = view_of(vector_given, element);
    const View result = result_for(to, mask.view, element, "UNPACK");
    View field = everywhere(field_scalar, element, result);
    if (field_array != nullptr) {
        field = view_of(*field_array, element);
        check_shape(field, result, "FIELD", "UNPACK");
    }
    if (!unpack(result, vector.base, vector.dims[0].stride, vector.count(), mask, field))
        array_failure(vector_is_short, "The VECTOR of UNPACK has only %td elements",
                      vector.count());
}

// ---- SPREAD ----

void spread_into(ArrayDescriptor& to, const View& source, Index dim_given, Index copies) {
    const int rank = source.rank + 1;
    if (rank > max_rank) array_failure(wrong_rank, "The result of SPREAD would have rank %d", rank);
    const int dim = dim_of(dim_given, rank, "SPREAD");
    View shape;
    shape.rank = rank;
    for (int d = 0; d < source.rank; ++d) shape.dims[d < dim ? d : d + 1] = source.dims[d];
    shape.dims[dim].extent = std::max<Index>(copies, 0);
    spread(result_for(to, shape, source.element, "SPREAD"), source, dim);
}

void spread_scalar_into(ArrayDescriptor& to, const void* scalar, Index element, Index dim,
                        Index copies) {
    spread_into(to, everywhere(scalar, element, View{}), dim, copies);
}

// ---- RESHAPE ----

// How many elements an array in one piece has; -1: it isn't such a one.
Index count_in_one_piece(const ArrayDescriptor& array) {
    Index count = 1;
    for (int d = 0; d < array.rank; ++d) {
        const Index extent = array.dimension[d].extent();
        if (array.dimension[d].stride != count && extent != 1) return -1;
        count *= extent;
    }
    return count;
}

// A source in one piece that goes into a result in one piece, with neither PAD nor ORDER.
bool reshape_by_copy(ArrayDescriptor& to, const ArrayDescriptor& from, Index element,
                     const ArrayDescriptor& shape) {
    const Index rank = shape.dimension[0].extent();
    if (rank < 1 || rank > max_rank || checks_bounds()) return false;
    const bool make = to.base == nullptr;
    if (!make && to.rank != rank) return false;
    const auto* extents = reinterpret_cast<const Index*>(shape.base);
    Index wanted = 1;
    for (Index d = 0; d < rank; ++d, extents += shape.dimension[0].stride) {
        const Index extent = std::max<Index>(*extents, 0);
        if (make) {
            to.dimension[d] = {wanted, 0, extent - 1};
        } else if (to.dimension[d].extent() != extent) {
            return false;
        }
        if (__builtin_mul_overflow(wanted, extent, &wanted)) return false;
    }
    if (!make && count_in_one_piece(to) != wanted) return false;
    Index bytes = 0;
    if (wanted == 0 || count_in_one_piece(from) < wanted ||
        __builtin_mul_overflow(wanted, element, &bytes))
        return false;
    if (make) {
        to.base = static_cast<char*>(std::malloc(static_cast<std::size_t>(bytes)));
        if (to.base == nullptr) return false;
        to.rank = static_cast<std::int8_t>(rank);
        to.offset = 0;
    }
    std::memcpy(to.base, from.base, static_cast<std::size_t>(bytes));
    return true;
}

void reshape_into(ArrayDescriptor& to, const ArrayDescriptor& from, Index element,
                  const ArrayDescriptor& shape_given, const ArrayDescriptor* pad_given,
                  const ArrayDescriptor* order_given) {
    constexpr int no_permutation = 395;
    if (pad_given == nullptr && order_given == nullptr &&
        reshape_by_copy(to, from, element, shape_given))
        return;
    const View source = view_of(from, element);
    // SHAPE= and ORDER= come as 8-byte integers.
    const View extents = view_of(shape_given, sizeof(Index));
    const Index rank = extents.count();
    if (rank < 1 || rank > max_rank)
        array_failure(wrong_rank, "The SHAPE of RESHAPE has %td elements", rank);
    View shape;
    shape.rank = static_cast<int>(rank);
    int order[max_rank];
    for (int d = 0; d < shape.rank; ++d) {
        const Index extent =
            load_integer(extents.base + d * extents.dims[0].stride, extents.element);
        shape.dims[d].extent = std::max<Index>(extent, 0);
        order[d] = d;
    }
    if (order_given != nullptr) {
        const View given = view_of(*order_given, sizeof(Index));
        unsigned met = 0;
        for (int d = 0; d < shape.rank && d < given.count(); ++d) {
            const Index value = load_integer(given.base + d * given.dims[0].stride, given.element);
            if (value < 1 || value > rank || (met >> value & 1) != 0)
                array_failure(no_permutation, "The ORDER of RESHAPE has the value %td", value);
            met |= 1u << value;
            order[d] = static_cast<int>(value - 1);
        }
    }
    View pad;
    if (pad_given != nullptr) pad = view_of(*pad_given, element);
    const bool padded = pad_given != nullptr && pad.count() > 0;
    if (!padded && source.count() < shape.count())
        array_failure(wrong_shape, "The SOURCE of RESHAPE has %td elements; the result has %td",
                      source.count(), shape.count());
    const View result = result_for(to, shape, element, "RESHAPE");
    // The compiler trusts SHAPE to be what stands around the call, and gives storage by that.
    require_shape(result, shape, "result", "RESHAPE");
    reshape(result, order, source, padded ? &pad : nullptr);
}

// ---- CSHIFT and EOSHIFT ----

template <class Integer>
int dim_or_first(const Integer* dim, const View& array, const char* name) {
    return dim_of(dim != nullptr ? static_cast<Index>(*dim) : 1, array.rank, name);
}

// What moves in for elements that go: a scalar, an array, or else `blank` repeated.
struct Boundary {
    const void* scalar = nullptr;
    const ArrayDescriptor* array = nullptr;
};

template <class Integer>
void cshift(ArrayDescriptor& to, const ArrayDescriptor& from, Index element, const Integer* shift,
            const ArrayDescriptor* shifts, const Integer* dim_given) {
    const View array = view_of(from, element);
    const int dim = dim_or_first(dim_given, array, "CSHIFT");
    const View result = result_for(to, array, element, "CSHIFT");
    if (shifts == nullptr) {
        circular_shift(result, array, dim, reinterpret_cast<const std::byte*>(shift),
                       sizeof(Integer));
        return;
    }
    const View given = view_of(*shifts, sizeof(Integer));
    if (checks_bounds()) check_shape(given, without(array, dim), "SHIFT", "CSHIFT");
    circular_shifts(result, array, dim, given);
}

// A run of one blank, of any length, as the element that moves in.
class BlankElement {
  public:
    BlankElement() = default;
    ~BlankElement() { std::free(made_); }
    BlankElement(const BlankElement&) = delete;
    BlankElement& operator=(const BlankElement&) = delete;

    const std::byte* of(Index element, std::uint32_t character, Index character_size) {
        static constexpr std::byte zeros[64] = {};
        if (character == 0 && element <= static_cast<Index>(sizeof zeros)) return zeros;
        std::byte* bytes = few_;
        if (element > static_cast<Index>(sizeof few_))
            bytes = made_ = static_cast<std::byte*>(std::malloc(static_cast<std::size_t>(element)));
        constexpr int out_of_storage = 408;
        if (bytes == nullptr)
            array_failure(out_of_storage, "There is no storage for a blank of %td bytes", element);
        for (Index at = 0; at + character_size <= element; at += character_size)
            std::memcpy(bytes + at, &character, static_cast<std::size_t>(character_size));
        return bytes;
    }

  private:
    std::byte few_[256];
    std::byte* made_ = nullptr;
};

template <class Integer>
void eoshift(ArrayDescriptor& to, const ArrayDescriptor& from, Index element, const Integer* shift,
             const ArrayDescriptor* shifts, Boundary given, const Integer* dim_given,
             std::uint32_t blank, Index blank_size) {
    const View array = view_of(from, element);
    const int dim = dim_or_first(dim_given, array, "EOSHIFT");
    const View result = result_for(to, array, element, "EOSHIFT");
    BlankElement blanks;
    View boundary;
    if (given.array != nullptr) {
        boundary = view_of(*given.array, element);
        if (checks_bounds()) check_shape(boundary, without(array, dim), "BOUNDARY", "EOSHIFT");
    } else {
        const void* const one =
            given.scalar != nullptr ? given.scalar : blanks.of(element, blank, blank_size);
        boundary = everywhere(one, element, array, array.rank - 1);
    }
    if (shifts == nullptr) {
        end_off_shift(result, array, dim,
                      load_integer(reinterpret_cast<const std::byte*>(shift), sizeof(Integer)),
                      boundary);
        return;
    }
    const View distances = view_of(*shifts, sizeof(Integer));
    if (checks_bounds()) check_shape(distances, without(array, dim), "SHIFT", "EOSHIFT");
    end_off_shifts(result, array, dim, distances, boundary);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;
using namespace tarn::arrays;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

TARN_EXPORT void _gfortran_pack(ArrayDescriptor* to, const ArrayDescriptor* from,
                                const ArrayDescriptor* mask, const ArrayDescriptor* vector) {
    pack_by_array(*to, *from, element_of(*from), *mask, vector);
}
TARN_EXPORT void _gfortran_pack_s(ArrayDescriptor* to, const ArrayDescriptor* from,
                                  const Logical* mask, const ArrayDescriptor* vector) {
    pack_by_scalar(*to, *from, element_of(*from), mask, vector);
}
TARN_EXPORT void _gfortran_unpack0(ArrayDescriptor* to, const ArrayDescriptor* vector,
                                   const ArrayDescriptor* mask, const void* field) {
    unpack_into(*to, *vector, element_of(*vector), *mask, field, nullptr);
}
TARN_EXPORT void _gfortran_unpack1(ArrayDescriptor* to, const ArrayDescriptor* vector,
                                   const ArrayDescriptor* mask, const ArrayDescriptor* field) {
    unpack_into(*to, *vector, element_of(*vector), *mask, nullptr, field);
}
TARN_EXPORT void _gfortran_spread(ArrayDescriptor* to, const ArrayDescriptor* source,
                                  const Index* dim, const Index* copies) {
    spread_into(*to, view_of(*source, element_of(*source)), *dim, *copies);
}
TARN_EXPORT void _gfortran_spread_scalar(ArrayDescriptor* to, const void* source, const Index* dim,
                                         const Index* copies) {
    spread_scalar_into(*to, source, element_of(*to), *dim, *copies);
}

#define TARN_TEXT_TRANSFORMS(suffix, C)                                                            \
    TARN_EXPORT void _gfortran_pack_##suffix(                                                      \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from,                             \
        const ArrayDescriptor* mask, const ArrayDescriptor* vector, std::size_t length,            \
        std::size_t) {                                                                             \
        pack_by_array(*to, *from, text_bytes<C>(length), *mask, vector);                           \
    }                                                                                              \
    TARN_EXPORT void _gfortran_pack_s_##suffix(                                                    \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from, const Logical* mask,        \
        const ArrayDescriptor* vector, std::size_t length, std::size_t) {                          \
        pack_by_scalar(*to, *from, text_bytes<C>(length), mask, vector);                           \
    }                                                                                              \
    TARN_EXPORT void _gfortran_unpack0_##suffix(                                                   \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* vector,                           \
        const ArrayDescriptor* mask, const void* field, std::size_t length, std::size_t) {         \
        unpack_into(*to, *vector, text_bytes<C>(length), *mask, field, nullptr);                   \
    }                                                                                              \
    TARN_EXPORT void _gfortran_unpack1_##suffix(                                                   \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* vector,                           \
        const ArrayDescriptor* mask, const ArrayDescriptor* field, std::size_t length,             \
        std::size_t) {                                                                             \
        unpack_into(*to, *vector, text_bytes<C>(length), *mask, nullptr, field);                   \
    }                                                                                              \
    TARN_EXPORT void _gfortran_spread_##suffix(ArrayDescriptor* to, std::size_t,                   \
                                               const ArrayDescriptor* source, const Index* dim,    \
                                               const Index* copies, std::size_t length) {          \
        spread_into(*to, view_of(*source, text_bytes<C>(length)), *dim, *copies);                  \
    }                                                                                              \
    TARN_EXPORT void _gfortran_spread_##suffix##_scalar(ArrayDescriptor* to, std::size_t,          \
                                                        const void* source, const Index* dim,      \
                                                        const Index* copies, std::size_t length) { \
        spread_scalar_into(*to, source, text_bytes<C>(length), *dim, *copies);                     \
    }                                                                                              \
    TARN_EXPORT void _gfortran_reshape_##suffix(                                                   \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* source,                           \
        const ArrayDescriptor* shape, const ArrayDescriptor* pad, const ArrayDescriptor* order,    \
        std::size_t length, std::size_t) {                                                         \
        reshape_into(*to, *source, text_bytes<C>(length), *shape, pad, order);                     \
    }
TARN_TEXT_TRANSFORMS(char, char)
TARN_TEXT_TRANSFORMS(char4, char32_t)

#define TARN_RESHAPE(name, size)                                                                \
    TARN_EXPORT void _gfortran_##name(ArrayDescriptor* to, const ArrayDescriptor* source,       \
                                      const ArrayDescriptor* shape, const ArrayDescriptor* pad, \
                                      const ArrayDescriptor* order) {                           \
        reshape_into(*to, *source, size, *shape, pad, order);                                   \
    }
TARN_RESHAPE(reshape, element_of(*source))
TARN_RESHAPE(reshape_4, 4)
TARN_RESHAPE(reshape_8, 8)
TARN_RESHAPE(reshape_16, 16)
TARN_RESHAPE(reshape_r4, 4)
TARN_RESHAPE(reshape_r8, 8)
TARN_RESHAPE(reshape_r10, 16)
TARN_RESHAPE(reshape_r16, 16)
TARN_RESHAPE(reshape_c4, 8)
TARN_RESHAPE(reshape_c8, 16)
TARN_RESHAPE(reshape_c10, 32)
TARN_RESHAPE(reshape_c16, 32)

// Shifts of one distance, by the kind of SHIFT= and DIM=; `extra` are the arguments by which the
// entries for characters differ.
#define TARN_SHIFTS_BY_ONE(kind, Integer)                                                         \
    TARN_EXPORT void _gfortran_cshift0_##kind(ArrayDescriptor* to, const ArrayDescriptor* from,   \
                                              const Integer* shift, const Integer* dim) {         \
        cshift<Integer>(*to, *from, element_of(*from), shift, nullptr, dim);                      \
    }                                                                                             \
    TARN_EXPORT void _gfortran_eoshift0_##kind(ArrayDescriptor* to, const ArrayDescriptor* from,  \
                                               const Integer* shift, const void* boundary,        \
                                               const Integer* dim) {                              \
        eoshift<Integer>(*to, *from, element_of(*from), shift, nullptr, {boundary, nullptr}, dim, \
                         0, 1);                                                                   \
    }                                                                                             \
    TARN_EXPORT void _gfortran_eoshift2_##kind(                                                   \
        ArrayDescriptor* to, const ArrayDescriptor* from, const Integer* shift,                   \
        const ArrayDescriptor* boundary, const Integer* dim) {                                    \
        eoshift<Integer>(*to, *from, element_of(*from), shift, nullptr, {nullptr, boundary}, dim, \
                         0, 1);                                                                   \
    }                                                                                             \
    TARN_TEXT_SHIFTS_BY_ONE(kind, Integer, char, char)                                            \
    TARN_TEXT_SHIFTS_BY_ONE(kind, Integer, char4, char32_t)

#define TARN_TEXT_SHIFTS_BY_ONE(kind, Integer, suffix, C)                                        \
    TARN_EXPORT void _gfortran_cshift0_##kind##_##suffix(                                        \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from, const Integer* shift,     \
        const Integer* dim, std::size_t length) {                                                \
        cshift<Integer>(*to, *from, text_bytes<C>(length), shift, nullptr, dim);                 \
    }                                                                                            \
    TARN_EXPORT void _gfortran_eoshift0_##kind##_##suffix(                                       \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from, const Integer* shift,     \
        const void* boundary, const Integer* dim, std::size_t length, std::size_t) {             \
        eoshift<Integer>(*to, *from, text_bytes<C>(length), shift, nullptr, {boundary, nullptr}, \
                         dim, ' ', sizeof(C));                                                   \
    }                                                                                            \
    TARN_EXPORT void _gfortran_eoshift2_##kind##_##suffix(                                       \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from, const Integer* shift,     \
        const ArrayDescriptor* boundary, const Integer* dim, std::size_t length, std::size_t) {  \
        eoshift<Integer>(*to, *from, text_bytes<C>(length), shift, nullptr, {nullptr, boundary}, \
                         dim, ' ', sizeof(C));                                                   \
    }

TARN_SHIFTS_BY_ONE(1, std::int8_t)
TARN_SHIFTS_BY_ONE(2, std::int16_t)
TARN_SHIFTS_BY_ONE(4, std::int32_t)
TARN_SHIFTS_BY_ONE(8, std::int64_t)
TARN_SHIFTS_BY_ONE(16, __int128)

// Shifts of a distance for each vector.
#define TARN_SHIFTS_BY_MANY(kind, Integer)                                                         \
    TARN_EXPORT void _gfortran_cshift1_##kind(ArrayDescriptor* to, const ArrayDescriptor* from,    \
                                              const ArrayDescriptor* shifts, const Integer* dim) { \
        cshift<Integer>(*to, *from, element_of(*from), nullptr, shifts, dim);                      \
    }                                                                                              \
    TARN_EXPORT void _gfortran_eoshift1_##kind(ArrayDescriptor* to, const ArrayDescriptor* from,   \
                                               const ArrayDescriptor* shifts,                      \
                                               const void* boundary, const Integer* dim) {         \
        eoshift<Integer>(*to, *from, element_of(*from), nullptr, shifts, {boundary, nullptr}, dim, \
                         0, 1);                                                                    \
    }                                                                                              \
    TARN_EXPORT void _gfortran_eoshift3_##kind(                                                    \
        ArrayDescriptor* to, const ArrayDescriptor* from, const ArrayDescriptor* shifts,           \
        const ArrayDescriptor* boundary, const Integer* dim) {                                     \
        eoshift<Integer>(*to, *from, element_of(*from), nullptr, shifts, {nullptr, boundary}, dim, \
                         0, 1);                                                                    \
    }                                                                                              \
    TARN_TEXT_SHIFTS_BY_MANY(kind, Integer, char, char)                                            \
    TARN_TEXT_SHIFTS_BY_MANY(kind, Integer, char4, char32_t)

#define TARN_TEXT_SHIFTS_BY_MANY(kind, Integer, suffix, C)                                        \
    TARN_EXPORT void _gfortran_cshift1_##kind##_##suffix(                                         \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from,                            \
        const ArrayDescriptor* shifts, const Integer* dim, std::size_t length) {                  \
        cshift<Integer>(*to, *from, text_bytes<C>(length), nullptr, shifts, dim);                 \
    }                                                                                             \
    TARN_EXPORT void _gfortran_eoshift1_##kind##_##suffix(                                        \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from,                            \
        const ArrayDescriptor* shifts, const void* boundary, const Integer* dim,                  \
        std::size_t length, std::size_t) {                                                        \
        eoshift<Integer>(*to, *from, text_bytes<C>(length), nullptr, shifts, {boundary, nullptr}, \
                         dim, ' ', sizeof(C));                                                    \
    }                                                                                             \
    TARN_EXPORT void _gfortran_eoshift3_##kind##_##suffix(                                        \
        ArrayDescriptor* to, std::size_t, const ArrayDescriptor* from,                            \
        const ArrayDescriptor* shifts, const ArrayDescriptor* boundary, const Integer* dim,       \
        std::size_t length, std::size_t) {                                                        \
        eoshift<Integer>(*to, *from, text_bytes<C>(length), nullptr, shifts, {nullptr, boundary}, \
                         dim, ' ', sizeof(C));                                                    \
    }

TARN_SHIFTS_BY_MANY(4, std::int32_t)
TARN_SHIFTS_BY_MANY(8, std::int64_t)
TARN_SHIFTS_BY_MANY(16, __int128)

// An argument that must lie together: itself if it does, otherwise a copy, which compiled code
// frees. Afterwards the copy's elements go back.
TARN_EXPORT void* _gfortran_internal_pack(const ArrayDescriptor* from) {
    // An absent argument, whose extents are anything.
    if (from->base == nullptr) return nullptr;
    const View array = view_of(*from, element_of(*from));
    Index step = array.element;
    bool together = true;
    bool empty = false;
    for (int d = 0; d < array.rank; ++d) {
        together &= array.dims[d].stride == step || array.dims[d].extent == 1;
        empty |= array.dims[d].extent == 0;
        step *= array.dims[d].extent;
    }
    if (together || empty) return from->base;
    constexpr int out_of_storage = 408;
    View made = array;
    make_contiguous(made);
    made.base = static_cast<std::byte*>(std::malloc(static_cast<std::size_t>(step)));
    if (made.base == nullptr)
        array_failure(out_of_storage, "There is no storage for the copy of an argument");
    copy(made, array);
    return made.base;
}

TARN_EXPORT void _gfortran_internal_unpack(ArrayDescriptor* to, const void* from) {
    if (from == nullptr || from == to->base) return;
    const View array = view_of(*to, element_of(*to));
    View made = array;
    make_contiguous(made);
    made.base = static_cast<std::byte*>(const_cast<void*>(from));
    copy(array, made);
}
}
// NOLINTEND(bugprone-macro-parentheses)
