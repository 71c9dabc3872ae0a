// The parameter block of gfortran's data transfer statements and its array descriptor, as the
// compiled program lays them out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/gnu/fault.h"
#include "fio/gnu/quick_record.h"
#include "fio/gnu/statement.h"

namespace tarn::gcc {

// Flags of every block. The two lowest bits carry the outcome back.
inline constexpr std::uint32_t outcome_mask = 3;
inline constexpr std::uint32_t has_err = 1U << 2;
inline constexpr std::uint32_t has_end = 1U << 3;
inline constexpr std::uint32_t has_eor = 1U << 4;
inline constexpr std::uint32_t has_iostat = 1U << 5;
inline constexpr std::uint32_t has_iomsg = 1U << 6;

// Flags of a data transfer.
inline constexpr std::uint32_t list_directed = 1U << 7;
inline constexpr std::uint32_t namelist_read = 1U << 8;
inline constexpr std::uint32_t has_rec = 1U << 9;
inline constexpr std::uint32_t has_size = 1U << 10;
inline constexpr std::uint32_t has_iolength = 1U << 11;
inline constexpr std::uint32_t has_format = 1U << 12;
inline constexpr std::uint32_t has_advance = 1U << 13;
inline constexpr std::uint32_t has_internal_unit = 1U << 14;
inline constexpr std::uint32_t has_namelist = 1U << 15;
inline constexpr std::uint32_t has_id = 1U << 16;
inline constexpr std::uint32_t has_pos = 1U << 17;
inline constexpr std::uint32_t has_asynchronous = 1U << 18;
inline constexpr std::uint32_t has_blank = 1U << 19;
inline constexpr std::uint32_t has_decimal = 1U << 20;
inline constexpr std::uint32_t has_delim = 1U << 21;
inline constexpr std::uint32_t has_pad = 1U << 22;
inline constexpr std::uint32_t has_round = 1U << 23;
inline constexpr std::uint32_t has_sign = 1U << 24;
inline constexpr std::uint32_t has_dec_extensions = 1U << 27;
// The library's own, which compiled code leaves out: the block knows the variables of its group.
inline constexpr std::uint32_t has_variables = 1U << 31;
inline constexpr std::uint32_t has_some_mode = has_advance | has_asynchronous | has_blank |
                                               has_decimal | has_delim | has_pad | has_round |
                                               has_sign;

// What makes a data transfer more than a unit and a format, with what is to happen when it fails.
inline constexpr std::uint32_t unusual_in_read =
    ~(has_err | has_end | has_iostat | has_iomsg | list_directed | has_format);
inline constexpr std::uint32_t unusual_in_write = unusual_in_read | has_end;

struct Dimension {
    std::int64_t stride;  // in elements
    std::int64_t lower_bound;
    std::int64_t upper_bound;

    std::int64_t extent() const {
        return upper_bound >= lower_bound ? upper_bound - lower_bound + 1 : 0;
    }
};

struct ArrayDescriptor {
    char* base;
    std::int64_t offset;
    std::size_t element_length;
    std::int32_t version;
    std::int8_t rank;
    std::int8_t type;
    std::int16_t attribute;
    std::int64_t span;  // bytes from one element to the next for a stride of 1; often never set
    Dimension dimension[15];

    // The same where the compiler sets it: pointers, and what is handed to C.
    std::int64_t unit() const { return span != 0 ? span : element_step(); }
    // The same of arrays in a statement: what isn't an array of whole elements comes one by one.
    std::int64_t element_step() const { return static_cast<std::int64_t>(element_length); }
};
static_assert(offsetof(ArrayDescriptor, dimension) == 40);

// What gfortran passes by value of a variable's type, as it stands in a descriptor, too.
struct TypeWords {
    std::size_t element_length;
    std::int32_t version;
    std::int8_t rank;
    std::int8_t type;
    std::int16_t attribute;
};
static_assert(sizeof(TypeWords) == 16);

// Who does what is asked of a block.
enum class Owner : std::uint64_t { none, gnu, quick, native };

// The library's own part of a block.
struct PrivatePart {
    Owner owner;
    void* statement;               // `gnu`, `native`
    fio::QuickRecord record;       // `quick`
    fio::NamelistGroup* namelist;  // under `has_variables`
    fio::Caller caller;
};
static_assert(sizeof(PrivatePart) <= 256);

struct DataBlock {
    std::uint32_t flags;
    std::int32_t unit;
    const char* source_file;
    std::int32_t line;
    std::size_t iomsg_length;
    char* iomsg;
    std::int32_t* iostat;
    std::int64_t rec;
    std::int64_t* size;
    std::int64_t* iolength;
    ArrayDescriptor* internal_descriptor;
    const char* format;
    std::size_t format_length;
    std::size_t advance_length;
    const char* advance;
    char* internal_unit;
    std::size_t internal_unit_length;
    std::size_t namelist_name_length;
    const char* namelist_name;
    std::int32_t* id;
    std::int64_t pos;
    const char* asynchronous;
    std::size_t asynchronous_length;
    std::size_t blank_length;
    const char* blank;
    const char* decimal;
    std::size_t decimal_length;
    std::size_t delim_length;
    const char* delim;
    const char* pad;
    std::size_t pad_length;
    std::size_t round_length;
    const char* round;
    const char* sign;
    std::size_t sign_length;
    alignas(8) char own[256];

    PrivatePart& part() { return *reinterpret_cast<PrivatePart*>(own); }
};
static_assert(offsetof(DataBlock, iostat) == 40);
static_assert(offsetof(DataBlock, format) == 80);
static_assert(offsetof(DataBlock, namelist_name) == 136);
static_assert(offsetof(DataBlock, sign_length) == 264);
static_assert(offsetof(DataBlock, own) == 272);
static_assert(sizeof(DataBlock) == 528);

}  // namespace tarn::gcc
