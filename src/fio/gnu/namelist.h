// NAMELIST: a group of named variables, written as text and read by name.
//
// The compiled program tells the variables one by one before it opens the statement. A variable of
// a derived type is followed by its components, each with the whole path for a name: `v`, `v%b`,
// `v%b%x`. A `+` in place of a `%` leads to the part that an extended type has from its parent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fio/gnu/item.h"

namespace tarn::fio {

struct Statement;

inline constexpr int namelist_max_rank = 15;

struct NamelistDimension {
    std::int64_t stride = 0;  // in elements
    std::int64_t lower = 1;
    std::int64_t upper = 0;

    std::int64_t extent() const { return upper >= lower ? upper - lower + 1 : 0; }
};

struct NamelistItem {
    static constexpr std::uint32_t no_parent = UINT32_MAX;

    std::string_view path;  // lower case, as compiled
    std::string_view name;  // what stands behind the last % or +
    char* address = nullptr;
    std::size_t size = 0;      // bytes of an element
    std::size_t length = 0;    // characters of a CHARACTER
    std::ptrdiff_t place = 0;  // of a component: from the start of what it is part of
    ItemType type = ItemType::integer;
    bool derived = false;    // a derived type: `type` means nothing
    bool inherited = false;  // the part that an extended type has from its parent
    int kind = 0;
    int rank = 0;
    std::uint32_t dimension = 0;  // the first of them, in the group
    std::uint32_t parent = no_parent;
    std::uint32_t end = 0;  // the item behind the last component
    // The type's own procedure for formatted transfers and the type's table; null: none.
    void* procedure = nullptr;
    void* type_table = nullptr;
};

// What the compiled program says of a variable; its bounds follow.
struct NamelistVariable {
    void* address = nullptr;
    const char* path = nullptr;  // terminated
    ItemType type = ItemType::integer;
    bool derived = false;
    int kind = 0;
    std::size_t size = 0;
    std::size_t length = 0;
    int rank = 0;
    void* procedure = nullptr;
    void* type_table = nullptr;
};

struct NamelistGroup {
    std::string_view name;
    std::vector<NamelistItem> items;
    std::vector<NamelistDimension> dimensions;
    NamelistGroup* below = nullptr;  // in the thread's stock

    void clear();
    void add(const NamelistVariable& variable);
    // Of the variable added last; one that it doesn't have is ignored.
    void set_dimension(int index, const NamelistDimension& dimension);

    const NamelistDimension* dimensions_of(const NamelistItem& item) const {
        return dimensions.data() + item.dimension;
    }
};

// An empty group from the thread's stock; given back when its statement has ended.
NamelistGroup* take_namelist_group();
void give_back(NamelistGroup* group);

// The bodies of the statements: everything between the statement's first record and its last.
void write_namelist(Statement& statement);
void read_namelist(Statement& statement);

// Variables that go through a procedure of their type. The hooks transfer one element and leave
// faults in the statement; while they are null, such a variable is a fault by itself.
struct NamelistProcedures {
    void (*write)(Statement& statement, const NamelistItem& item, char* element) = nullptr;
    void (*read)(Statement& statement, const NamelistItem& item, char* element) = nullptr;
};
NamelistProcedures& namelist_procedures();

}  // namespace tarn::fio
