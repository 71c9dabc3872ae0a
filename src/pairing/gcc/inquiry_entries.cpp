// What gfortran asks of pointers, arrays and types when a program runs.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "frame/link_name.h"
#include "pairing/gcc/array_descriptor.h"
#include "pairing/gcc/type_record.h"

namespace tarn::gcc {
namespace {

// The true length of elements is the span where the type is polymorphic.
bool same_elements(const ArrayDescriptor& x, const ArrayDescriptor& y) {
    return x.unit() == y.unit() && x.type == y.type && x.rank == y.rank;
}

// Whether a pointer shows exactly the elements of a target; of arrays that are empty, none does.
bool is_associated(const ArrayDescriptor& pointer, const ArrayDescriptor& target) {
    if (pointer.base == nullptr || pointer.base != target.base) return false;
    if (!same_elements(pointer, target)) return false;
    for (int d = 0; d < pointer.rank; ++d) {
        const Dimension& mine = pointer.dimension[d];
        const Dimension& other = target.dimension[d];
        const std::int64_t extent = mine.extent();
        if (extent == 0 || extent != other.extent()) return false;
        if (extent > 1 && mine.stride != other.stride) return false;
    }
    return true;
}

bool is_contiguous(const ArrayDescriptor& array) {
    std::int64_t step = 1;
    for (int d = 0; d < array.rank; ++d) {
        if (array.dimension[d].stride != step) return false;
        step *= array.dimension[d].extent();
    }
    return true;
}

// An unlimited polymorphic object without a type is extended by all others.
bool extends(const TypeRecord* type, const TypeRecord* ancestor) {
    if (ancestor == nullptr) return true;
    while (type != nullptr) {
        if (type == ancestor || type->hash == ancestor->hash) return true;
        type = type->parent;
    }
    return false;
}

template <class Integer>
void shape(ArrayDescriptor& result, const ArrayDescriptor& array) {
    const Index rank = static_cast<unsigned char>(array.rank);
    if (result.base == nullptr) allocate_result(result, 1, &rank, sizeof(Integer), "SHAPE");
    for (Index d = 0; d < rank; ++d)
        *reinterpret_cast<Integer*>(result.base + d * result.dimension[0].stride *
                                                      static_cast<Index>(sizeof(Integer))) =
            static_cast<Integer>(array.dimension[d].extent());
}

void move_allocation(ArrayDescriptor& from, ArrayDescriptor& to) {
    std::free(to.base);
    const auto bytes = offsetof(ArrayDescriptor, dimension) +
                       static_cast<std::size_t>(from.rank) * sizeof(Dimension);
    std::memcpy(&to, &from, bytes);
    from.base = nullptr;
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT int _gfortran_associated(const ArrayDescriptor* pointer,
                                     const ArrayDescriptor* target) {
    return is_associated(*pointer, *target) ? 1 : 0;
}
TARN_EXPORT Logical _gfortran_is_contiguous0(const ArrayDescriptor* array) {
    return is_contiguous(*array) ? 1 : 0;
}
TARN_EXPORT Logical _gfortran_is_extension_of(const TypeRecord* type, const TypeRecord* ancestor) {
    return extends(type, ancestor) ? 1 : 0;
}

TARN_EXPORT void _gfortran_shape_1(ArrayDescriptor* result, const ArrayDescriptor* array) {
    shape<std::int8_t>(*result, *array);
}
TARN_EXPORT void _gfortran_shape_2(ArrayDescriptor* result, const ArrayDescriptor* array) {
    shape<std::int16_t>(*result, *array);
}
TARN_EXPORT void _gfortran_shape_4(ArrayDescriptor* result, const ArrayDescriptor* array) {
    shape<std::int32_t>(*result, *array);
}
TARN_EXPORT void _gfortran_shape_8(ArrayDescriptor* result, const ArrayDescriptor* array) {
    shape<std::int64_t>(*result, *array);
}
TARN_EXPORT void _gfortran_shape_16(ArrayDescriptor* result, const ArrayDescriptor* array) {
    shape<__int128>(*result, *array);
}

TARN_EXPORT void _gfortran_move_alloc(ArrayDescriptor* from, ArrayDescriptor* to) {
    move_allocation(*from, *to);
}
TARN_EXPORT void _gfortran_move_alloc_c(ArrayDescriptor* from, std::size_t, ArrayDescriptor* to,
                                        std::size_t) {
    move_allocation(*from, *to);
}
}
