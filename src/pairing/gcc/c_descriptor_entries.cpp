// The routines of ISO_Fortran_binding.h.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "pairing/gcc/array_descriptor.h"
#include "pairing/gcc/c_descriptor.h"

namespace tarn::gcc {
namespace {

[[gnu::format(printf, 2, 3)]] CStatus refuse(CStatus status, const char* format, ...) {
    if (!checks_bounds()) return status;
    frame::ensure_up();
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    failure::warn(text);
    return status;
}

// Of numbers that may be anything: those of a dimension without elements, or of an array without
// storage.
std::ptrdiff_t wrapped_product(std::ptrdiff_t x, std::ptrdiff_t y) {
    std::ptrdiff_t product = 0;
    (void)__builtin_mul_overflow(x, y, &product);
    return product;
}

// ---- Types ----

bool is_kind_of(int family, int kind) {
    switch (family) {
        case c_type::integer:
        case c_type::logical:
            return kind == 1 || kind == 2 || kind == 4 || kind == 8 || kind == 16;
        case c_type::real:
        case c_type::complex:
            return kind == 4 || kind == 8 || kind == 10 || kind == 16;
        case c_type::character:
            return kind == 1 || kind == 4;
        default:
            return false;
    }
}

// The length of an element where its type tells it; 0 where it must be given, -1 for no type.
std::ptrdiff_t length_of(std::int16_t type) {
    switch (type) {
        case c_type::other:
        case c_type::structure:
            return 0;
        case c_type::address:
        case c_type::procedure:
            return sizeof(void*);
        default:
            break;
    }
    const int family = type & 0xFF;
    const int kind = type >> 8;
    if (!is_kind_of(family, kind)) return -1;
    if (family == c_type::character) return 0;
    const int bytes = kind == 10 ? 16 : kind;
    return family == c_type::complex ? 2 * bytes : bytes;
}

// ---- Establishing, storage ----

CStatus establish(CDescriptor* descriptor, void* base, int attribute, std::int16_t type,
                  std::size_t length, int rank, const std::ptrdiff_t* extents) {
    if (descriptor == nullptr)
        return refuse(c_invalid_descriptor, "CFI_establish: there is no descriptor");
    if (rank < 0 || rank > c_max_rank)
        return refuse(c_invalid_rank, "CFI_establish: the rank is %d; it should be from 0 to %d",
                      rank, c_max_rank);
    if (attribute < c_attribute::pointer || attribute > c_attribute::other)
        return refuse(c_invalid_attribute, "CFI_establish: there is no attribute %d", attribute);
    if (base != nullptr && attribute == c_attribute::allocatable)
        return refuse(c_invalid_attribute,
                      "CFI_establish: an allocatable object starts without storage");
    const std::ptrdiff_t known = length_of(type);
    if (known < 0) return refuse(c_invalid_type, "CFI_establish: there is no type %d", type);
    if (known == 0 && length == 0)
        return refuse(c_invalid_length, "CFI_establish: the length of an element is 0");
    if (base != nullptr && rank > 0 && extents == nullptr)
        return refuse(c_invalid_extent, "CFI_establish: the extents are missing");
    for (int d = 0; base != nullptr && d < rank; ++d)
        if (extents[d] < 0)
            return refuse(c_invalid_extent, "CFI_establish: extent %d is %td", d, extents[d]);

    descriptor->base = base;
    descriptor->element_length = known > 0 ? static_cast<std::size_t>(known) : length;
    descriptor->version = c_descriptor_version;
    descriptor->rank = static_cast<std::int8_t>(rank);
    descriptor->attribute = static_cast<std::int8_t>(attribute);
    descriptor->type = type;
    if (extents == nullptr) return c_success;
    auto step = static_cast<std::ptrdiff_t>(descriptor->element_length);
    for (int d = 0; d < rank; ++d) {
        descriptor->dimension[d] = {0, extents[d], step};
        step = wrapped_product(step, extents[d]);
    }
    return c_success;
}

CStatus allocate(CDescriptor* descriptor, const std::ptrdiff_t* lower, const std::ptrdiff_t* upper,
                 std::size_t length) {
    if (descriptor == nullptr)
        return refuse(c_invalid_descriptor, "CFI_allocate: there is no descriptor");
    if (descriptor->attribute == c_attribute::other)
        return refuse(c_invalid_attribute,
                      "CFI_allocate: the object is neither a pointer nor allocatable");
    if (descriptor->rank < 0 || descriptor->rank > c_max_rank)
        return refuse(c_invalid_rank, "CFI_allocate: the rank is %d", descriptor->rank);
    if (descriptor->base != nullptr)
        return refuse(c_base_is_not_null, "CFI_allocate: the object has storage already");
    if (descriptor->rank > 0 && (lower == nullptr || upper == nullptr))
        return refuse(c_invalid_extent, "CFI_allocate: bounds are missing");
    const std::size_t element = descriptor->is_character() ? length : descriptor->element_length;
    auto bytes = static_cast<std::ptrdiff_t>(element);
    CDimension dimensions[c_max_rank];
    bool fits = bytes >= 0;
    for (int d = 0; d < descriptor->rank; ++d) {
        std::ptrdiff_t extent = 0;
        if (upper[d] >= lower[d])
            fits &= !__builtin_sub_overflow(upper[d], lower[d], &extent) &&
                    !__builtin_add_overflow(extent, 1, &extent);
        dimensions[d] = {lower[d], extent, bytes};
        fits &= !__builtin_mul_overflow(bytes, extent, &bytes);
    }
    void* const storage =
        fits ? std::malloc(bytes > 0 ? static_cast<std::size_t>(bytes) : 1) : nullptr;
    if (storage == nullptr)
        return refuse(c_no_storage, "CFI_allocate: there is not enough storage");
    for (int d = 0; d < descriptor->rank; ++d) descriptor->dimension[d] = dimensions[d];
    descriptor->element_length = element;
    descriptor->base = storage;
    return c_success;
}

CStatus deallocate(CDescriptor* descriptor) {
    if (descriptor == nullptr)
        return refuse(c_invalid_descriptor, "CFI_deallocate: there is no descriptor");
    if (descriptor->attribute == c_attribute::other)
        return refuse(c_invalid_attribute,
                      "CFI_deallocate: the object is neither a pointer nor allocatable");
    if (descriptor->base == nullptr)
        return refuse(c_base_is_null, "CFI_deallocate: the object has no storage");
    std::free(descriptor->base);
    descriptor->base = nullptr;
    return c_success;
}

// ---- Looking ----

void* address_of(const CDescriptor* descriptor, const std::ptrdiff_t* subscripts) {
    if (descriptor == nullptr || descriptor->base == nullptr) {
        refuse(c_base_is_null, "CFI_address: there is no object");
        return nullptr;
    }
    char* at = static_cast<char*>(descriptor->base);
    for (int d = 0; d < descriptor->rank; ++d) {
        const CDimension& dimension = descriptor->dimension[d];
        const std::ptrdiff_t index = subscripts[d] - dimension.lower_bound;
        const bool open = d == descriptor->rank - 1 && dimension.extent == -1;
        // The address alone does no harm: programs take the one behind the last element.
        if (checks_bounds() && (index < 0 || (!open && index >= dimension.extent))) {
            refuse(c_out_of_bounds,
                   "CFI_address: subscript %d is %td; it should be from %td to %td", d,
                   subscripts[d], dimension.lower_bound,
                   dimension.lower_bound + dimension.extent - 1);
            return nullptr;
        }
        at += index * dimension.step;
    }
    return at;
}

bool is_contiguous(const CDescriptor* descriptor) {
    if (descriptor == nullptr || descriptor->base == nullptr) {
        refuse(c_base_is_null, "CFI_is_contiguous: there is no object");
        return false;
    }
    if (descriptor->has_assumed_size()) return true;
    auto step = static_cast<std::ptrdiff_t>(descriptor->element_length);
    for (int d = 0; d < descriptor->rank; ++d) {
        if (descriptor->dimension[d].step != step) return false;
        step = wrapped_product(step, descriptor->dimension[d].extent);
    }
    return true;
}

// ---- Parts of arrays ----

// What a result must be that is to show a part of `source`.
CStatus check_part(const char* routine, const CDescriptor* result, const CDescriptor* source) {
    if (source == nullptr) return refuse(c_invalid_descriptor, "%s: there is no source", routine);
    if (result == nullptr) return refuse(c_invalid_descriptor, "%s: there is no result", routine);
    if (result->attribute == c_attribute::allocatable)
        return refuse(c_invalid_attribute, "%s: the result is allocatable", routine);
    if (source->base == nullptr)
        return refuse(c_base_is_null, "%s: the source has no storage", routine);
    if (source->rank < 0 || source->rank > c_max_rank)
        return refuse(c_invalid_rank, "%s: the source's rank is %d", routine, source->rank);
    return c_success;
}

// Whether there is an element `index`. Where nobody knows the extent, it must be one that has an
// address.
bool reaches(const CDimension& dimension, bool open, std::ptrdiff_t index) {
    if (index < dimension.lower_bound) return false;
    std::ptrdiff_t place = 0;
    if (__builtin_sub_overflow(index, dimension.lower_bound, &place)) return false;
    if (!open) return place < dimension.extent;
    constexpr std::ptrdiff_t farthest = PTRDIFF_MAX / 2;
    return place < farthest && !__builtin_mul_overflow(place, dimension.step, &place) &&
           place < farthest && place > -farthest;
}

// The elements from `lower` to `upper` along one dimension; a stride of 0 chooses one of them.
CStatus choose(int d, const CDimension& dimension, bool open, std::ptrdiff_t lower,
               std::ptrdiff_t upper, std::ptrdiff_t stride, CDimension& chosen) {
    if (stride == 0 && lower != upper)
        return refuse(c_out_of_bounds,
                      "CFI_section: stride %d is 0, but the bounds %td and %td differ", d, lower,
                      upper);
    const std::ptrdiff_t one = stride == 0 ? 1 : stride;
    const bool none = one > 0 ? upper < lower : upper > lower;
    for (const std::ptrdiff_t bound : {lower, upper}) {
        if (none || reaches(dimension, open, bound)) continue;
        return refuse(c_out_of_bounds,
                      "CFI_section: bound %td of dimension %d is not from %td to %td", bound, d,
                      dimension.lower_bound, dimension.lower_bound + dimension.extent - 1);
    }
    const std::ptrdiff_t extent = none ? 0 : (upper - lower) / one + 1;
    chosen = {0, extent, wrapped_product(dimension.step, one)};
    return c_success;
}

CStatus section(CDescriptor* result, const CDescriptor* source, const std::ptrdiff_t* lower,
                const std::ptrdiff_t* upper, const std::ptrdiff_t* strides) {
    const CStatus usable = check_part("CFI_section", result, source);
    if (usable != c_success) return usable;
    if (source->rank == 0) return refuse(c_invalid_rank, "CFI_section: the source is no array");
    if (result->element_length != source->element_length)
        return refuse(c_invalid_length,
                      "CFI_section: elements have %zu bytes, and %zu in the result",
                      source->element_length, result->element_length);
    if (result->type != source->type)
        return refuse(c_invalid_type, "CFI_section: the type is %d, and %d in the result",
                      source->type, result->type);
    if (source->has_assumed_size() && upper == nullptr)
        return refuse(c_invalid_descriptor,
                      "CFI_section: an array of assumed size has no upper bound of its own");
    CDimension chosen[c_max_rank];
    int rank = 0;
    char* at = static_cast<char*>(source->base);
    for (int d = 0; d < source->rank; ++d) {
        const CDimension& dimension = source->dimension[d];
        const bool open = d == source->rank - 1 && dimension.extent == -1;
        const std::ptrdiff_t first = lower != nullptr ? lower[d] : dimension.lower_bound;
        const std::ptrdiff_t last =
            upper != nullptr ? upper[d] : dimension.lower_bound + dimension.extent - 1;
        const std::ptrdiff_t stride = strides != nullptr ? strides[d] : 1;
        const CStatus status = choose(d, dimension, open, first, last, stride, chosen[rank]);
        if (status != c_success) return status;
        if (chosen[rank].extent > 0) at += (first - dimension.lower_bound) * dimension.step;
        if (stride != 0) ++rank;
    }
    if (rank != result->rank)
        return refuse(c_invalid_rank, "CFI_section: the section has rank %d, and the result %d",
                      rank, result->rank);
    result->base = at;
    for (int d = 0; d < rank; ++d) result->dimension[d] = chosen[d];
    return c_success;
}

CStatus select_part(CDescriptor* result, const CDescriptor* source, std::size_t displacement,
                    std::size_t length) {
    const CStatus usable = check_part("CFI_select_part", result, source);
    if (usable != c_success) return usable;
    if (result->rank != source->rank)
        return refuse(c_invalid_rank, "CFI_select_part: the source has rank %d, and the result %d",
                      source->rank, result->rank);
    if (source->has_assumed_size())
        return refuse(c_invalid_descriptor, "CFI_select_part: the source has assumed size");
    if (!result->is_character()) length = result->element_length;
    if (displacement >= source->element_length || length > source->element_length - displacement)
        return refuse(c_out_of_bounds,
                      "CFI_select_part: %zu bytes from %zu on are not within an element of %zu",
                      length, displacement, source->element_length);
    result->element_length = length;
    result->base = static_cast<char*>(source->base) + displacement;
    for (int d = 0; d < source->rank; ++d) result->dimension[d] = source->dimension[d];
    return c_success;
}

CStatus set_pointer(CDescriptor* result, const CDescriptor* source, const std::ptrdiff_t* lower) {
    if (result == nullptr)
        return refuse(c_invalid_descriptor, "CFI_setpointer: there is no result");
    if (result->attribute != c_attribute::pointer)
        return refuse(c_invalid_attribute, "CFI_setpointer: the result is no pointer");
    if (source == nullptr) {
        result->base = nullptr;
        return c_success;
    }
    if (source->base == nullptr && source->attribute == c_attribute::allocatable)
        return refuse(c_base_is_null, "CFI_setpointer: the source is not allocated");
    if (result->rank != source->rank)
        return refuse(c_invalid_rank, "CFI_setpointer: the source has rank %d, and the result %d",
                      source->rank, result->rank);
    if (result->element_length != source->element_length)
        return refuse(c_invalid_length,
                      "CFI_setpointer: elements have %zu bytes, and %zu in the result",
                      source->element_length, result->element_length);
    if (result->type != source->type)
        return refuse(c_invalid_type, "CFI_setpointer: the type is %d, and %d in the result",
                      source->type, result->type);
    if (source->has_assumed_size())
        return refuse(c_invalid_extent, "CFI_setpointer: the source has assumed size");
    result->base = source->base;
    if (source->base == nullptr) return c_success;
    for (int d = 0; d < source->rank; ++d) {
        result->dimension[d] = source->dimension[d];
        if (lower != nullptr) result->dimension[d].lower_bound = lower[d];
    }
    return c_success;
}

// ---- To and from gfortran's own descriptors, for objects of earlier releases of it ----

constexpr std::int8_t gnu_derived = 5;
constexpr std::int8_t gnu_character = 6;
constexpr std::int8_t gnu_address = 7;
constexpr std::int8_t gnu_assumed = 10;

// A REAL of 16 bytes counts as the x87's.
std::int16_t c_type_of(std::int8_t type, std::size_t length) {
    const auto with_kind = [](int family, std::size_t kind) {
        return static_cast<std::int16_t>(static_cast<std::size_t>(family) | kind << 8);
    };
    switch (type) {
        case c_type::integer:
        case c_type::logical:
            return with_kind(type, length);
        case c_type::real:
            return with_kind(type, length == 16 ? 10 : length);
        case c_type::complex:
            return with_kind(type, length == 32 ? 10 : length / 2);
        case gnu_character:
            return with_kind(c_type::character, length);
        case gnu_derived:
            return c_type::structure;
        case gnu_address:
        case gnu_assumed:
            return c_type::address;
        default:
            return c_type::other;
    }
}

std::int8_t gnu_type_of(std::int16_t type) {
    switch (type & 0xFF) {
        case c_type::character:
            return gnu_character;
        case c_type::structure:
            return gnu_derived;
        case c_type::address:
            return gnu_assumed;
        default:
            return static_cast<std::int8_t>(type & 0xFF);
    }
}

void to_c(CDescriptor*& to, const ArrayDescriptor& from) {
    if (to == nullptr) {
        to = static_cast<CDescriptor*>(std::malloc(
            sizeof(CDescriptor) + static_cast<std::size_t>(from.rank) * sizeof(CDimension)));
        if (to == nullptr) array_failure(408, "There is no storage for a descriptor");
    }
    to->base = from.base;
    to->element_length = from.element_length;
    to->version = c_descriptor_version;
    to->rank = from.rank;
    to->attribute = static_cast<std::int8_t>(from.attribute);
    to->type = c_type_of(from.type, from.element_length);
    if (from.base == nullptr) return;
    for (int d = 0; d < from.rank; ++d) {
        const Dimension& dimension = from.dimension[d];
        const bool open = dimension.upper_bound == -1 && from.attribute == c_attribute::other &&
                          d == from.rank - 1;
        to->dimension[d] = {
            from.attribute == c_attribute::other ? 0 : dimension.lower_bound,
            open ? -1 : dimension.extent(),
            dimension.stride * from.unit(),
        };
    }
}

void from_c(ArrayDescriptor& to, const CDescriptor& from) {
    to.base = static_cast<char*>(from.base);
    to.element_length = from.element_length;
    to.version = 0;
    to.rank = from.rank;
    to.type = gnu_type_of(from.type);
    to.attribute = static_cast<unsigned char>(from.attribute);
    to.offset = 0;
    to.span = static_cast<std::int64_t>(from.element_length);
    if (from.base == nullptr) return;
    if (from.rank > 0 && from.element_length > 0 &&
        from.dimension[0].step % static_cast<std::ptrdiff_t>(from.element_length) != 0)
        to.span = from.dimension[0].step;
    for (int d = 0; d < from.rank; ++d) {
        const CDimension& dimension = from.dimension[d];
        // What C has is numbered from 1 where it isn't a pointer or allocatable.
        const std::int64_t lower = from.attribute == c_attribute::other ? 1 : dimension.lower_bound;
        const std::int64_t stride = to.span != 0 ? dimension.step / to.span : 0;
        to.dimension[d] = {stride, lower, lower + dimension.extent - 1};
        to.offset -= stride * lower;
    }
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT void* CFI_address(const CDescriptor* descriptor, const std::ptrdiff_t* subscripts) {
    return address_of(descriptor, subscripts);
}
TARN_EXPORT int CFI_allocate(CDescriptor* descriptor, const std::ptrdiff_t* lower,
                             const std::ptrdiff_t* upper, std::size_t length) {
    return allocate(descriptor, lower, upper, length);
}
TARN_EXPORT int CFI_deallocate(CDescriptor* descriptor) {
    return deallocate(descriptor);
}
TARN_EXPORT int CFI_establish(CDescriptor* descriptor, void* base, std::int8_t attribute,
                              std::int16_t type, std::size_t length, std::int8_t rank,
                              const std::ptrdiff_t* extents) {
    return establish(descriptor, base, attribute, type, length, rank, extents);
}
TARN_EXPORT int CFI_is_contiguous(const CDescriptor* descriptor) {
    return is_contiguous(descriptor) ? 1 : 0;
}
TARN_EXPORT int CFI_section(CDescriptor* result, const CDescriptor* source,
                            const std::ptrdiff_t* lower, const std::ptrdiff_t* upper,
                            const std::ptrdiff_t* strides) {
    return section(result, source, lower, upper, strides);
}
TARN_EXPORT int CFI_select_part(CDescriptor* result, const CDescriptor* source,
                                std::size_t displacement, std::size_t length) {
    return select_part(result, source, displacement, length);
}
TARN_EXPORT int CFI_setpointer(CDescriptor* result, CDescriptor* source,
                               const std::ptrdiff_t* lower) {
    return set_pointer(result, source, lower);
}

TARN_EXPORT void _gfortran_gfc_desc_to_cfi_desc(CDescriptor** to, const ArrayDescriptor* from) {
    to_c(*to, *from);
}
TARN_EXPORT void _gfortran_cfi_desc_to_gfc_desc(ArrayDescriptor* to, CDescriptor** from) {
    from_c(*to, **from);
}
}
