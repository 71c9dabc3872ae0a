// The table of a NAMELIST group as compiled code hands it over: packed bytes without padding,
// numbers little-endian at any address.
//
//     group      0  signed 32    number of items
//                4  unsigned 8   L: length of the group's name + 1
//                5  L-1 bytes    the name, upper case; `A!B` is known by both names
//              4+L               the first item
//     item       0  unsigned 8   distance from this byte to the next item
//                1  unsigned 8   M: length of the name + 1
//                2  M-1 bytes    the name, upper case
//              1+M               the item's entry
//     entry      0  unsigned 8   type
//                1  pointer      address of the variable; of a structure, signed 16: the number of
//                                its components, and at 3, signed 16: the distance from the item's
//                                first byte to the next item, in place of the item's own
//                9  unsigned 32  length in bytes: of a CHARACTER, of a structure
//               13  signed 8     rank
//               14  rank x (signed 32, signed 32)  lower and upper bounds, first dimension first
//     component  0  unsigned 8   type
//                1  pointer      address in the structure's first element; of a structure, signed
//                                16: the number of its components
//                9, 13           as in an entry
//               14  signed 16    distance from the component's first byte to the next component of
//                                the same structure
//               16  rank x (signed 32, signed 32)
//
// The components of a structure begin right behind its bounds. An address takes 8 bytes; everything
// else has the width that it has on any machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::fio::native {

enum class NamelistType : std::uint8_t {
    integer2 = 1,
    integer4 = 2,
    real4 = 3,
    real8 = 4,
    complex8 = 5,
    complex16 = 6,
    logical2 = 7,
    logical4 = 8,
    character = 9,
    integer1 = 10,
    logical1 = 11,
    structure = 14,
    integer8 = 19,
    real10 = 21,
    complex20 = 22,
};

// Bytes from one element of an array to the next; CHARACTER and structures have their own length.
std::int64_t namelist_type_size(NamelistType type);

inline constexpr int namelist_table_rank = 15;

struct NamelistEntry {
    NamelistType type{};
    char* address = nullptr;
    int components = 0;         // of a structure
    std::int32_t distance = 0;  // to the next item or component; 0: the item tells
    std::int64_t length = 0;
    int rank = 0;
    std::int64_t lower[namelist_table_rank] = {};
    std::int64_t upper[namelist_table_rank] = {};
    const char* behind = nullptr;  // the first component, if there are any

    std::int64_t extent(int dimension) const {
        return upper[dimension] >= lower[dimension] ? upper[dimension] - lower[dimension] + 1 : 0;
    }
    std::int64_t element_size() const;
    std::int64_t element_count() const;
};

// An entry and a component at their first byte.
NamelistEntry read_namelist_entry(const char* at);
NamelistEntry read_namelist_component(const char* at);

struct NamelistItem {
    const char* at = nullptr;
    std::string_view name;
    NamelistEntry entry;
    const char* next = nullptr;
};
NamelistItem read_namelist_item(const char* at);

struct NamelistTable {
    std::int32_t count = 0;
    std::string_view name;
    const char* first = nullptr;
};
NamelistTable read_namelist_table(const void* at);

// Makes a table. An item or component may fail to fit: names of up to 253 bytes, 32-bit bounds and
// 15-bit distances are all that a table holds.
class NamelistTableBuilder {
  public:
    explicit NamelistTableBuilder(std::string_view group);

    // `bounds`: the lower and the upper one of each dimension. Of a structure `address` counts for
    // nothing, and what is added up to `end_structure` is its components.
    void add(std::string_view name, NamelistType type, void* address, std::int64_t length, int rank,
             const std::int64_t* bounds);
    void end_structure();

    bool fits() const { return fits_; }
    // Valid until the builder changes or goes.
    const void* table() const { return bytes_.data(); }

  private:
    struct Open {
        std::size_t start;     // of the item or component
        std::size_t count_at;  // where the number of components stands
        std::size_t distance_at;
        int components = 0;
    };

    template <typename T>
    void put(T value);
    template <typename T>
    void store(std::size_t at, std::int64_t value);
    void close_item(std::size_t start);

    static constexpr int deepest = 32;
    std::string bytes_;
    Open open_[deepest];
    int depth_ = 0;
    bool fits_ = true;
};

}  // namespace tarn::fio::native
