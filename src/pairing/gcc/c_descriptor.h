// The array descriptors that C sees of Fortran's arrays (ISO_Fortran_binding.h), and what may be
// done with them. Every argument is checked, whether the program asked for checks or not; one that
// did is told in words, too.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::gcc {

inline constexpr int c_descriptor_version = 1;
inline constexpr int c_max_rank = 15;

namespace c_attribute {
enum : std::int8_t { pointer, allocatable, other };
}

// The low byte of a type; the kind stands in the next one.
namespace c_type {
enum : std::int16_t {
    other = -1,
    integer = 1,
    logical = 2,
    real = 3,
    complex = 4,
    character = 5,
    structure = 6,
    address = 7,
    procedure = 8,
};
}

enum CStatus : int {
    c_success = 0,
    c_base_is_null = 2,
    c_base_is_not_null = 3,
    c_invalid_length = 4,
    c_invalid_rank = 5,
    c_invalid_type = 6,
    c_invalid_attribute = 7,
    c_invalid_extent = 8,
    c_invalid_stride = 9,
    c_invalid_descriptor = 10,
    c_no_storage = 11,
    c_out_of_bounds = 12,
};

struct CDimension {
    std::ptrdiff_t lower_bound;
    std::ptrdiff_t extent;  // -1: the last one of an assumed-size array
    std::ptrdiff_t step;    // bytes from one element to the next
};

struct CDescriptor {
    void* base;
    std::size_t element_length;
    std::int32_t version;
    std::int8_t rank;
    std::int8_t attribute;
    std::int16_t type;
    CDimension dimension[];

    bool has_assumed_size() const { return rank > 0 && dimension[rank - 1].extent == -1; }
    bool is_character() const { return (type & 0xFF) == c_type::character && type >= 0; }
};
static_assert(offsetof(CDescriptor, dimension) == 24);

}  // namespace tarn::gcc
