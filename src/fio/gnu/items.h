// Moving items through a format, one element after another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "fio/gnu/options.h"
#include "fio/gnu/statement.h"
#include "fio/integer_item.h"

namespace tarn::fio {

// The roads of items that aren't COMPLEX, by kind of statement. None does anything in a statement
// that has failed, and a READ that has met its record's end without advancing leaves its items as
// they are.
//
// One item through the next data edit descriptor of a WRITE.
void write_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);
void write_list_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);
// One item through the next data edit descriptor of a READ.
void read_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);

void write_formatted(Statement& statement, ItemType type, char* items, int kind, std::size_t size,
                     std::ptrdiff_t stride, std::size_t count);
void write_list(Statement& statement, ItemType type, char* items, int kind, std::size_t size,
                std::ptrdiff_t stride, std::size_t count);
void read_formatted(Statement& statement, ItemType type, char* items, int kind, std::size_t size,
                    std::ptrdiff_t stride, std::size_t count);

// Whether the item's edit descriptor has no width, in a program that may leave it out.
inline bool lacks_width(const Statement& s, const FormatNode& node, ItemType type) {
    if (!s.modes.dec_extensions || node.w != absent || node.edit == Edit::A ||
        node.edit == Edit::L || node.edit == Edit::DT) {
        return false;
    }
    return type == ItemType::integer || type == ItemType::real || is_bits_edit(node.edit);
}

// Bits of a REAL are Fortran 2008, those of a CHARACTER in no standard.
inline bool are_bits_refused(ItemType type) {
    if (type == ItemType::integer) return false;
    const std::int32_t needed = type == ItemType::real ? std_f2008 : std_gnu;
    return (gnu_options().allow_std & needed) == 0;
}

// What stands before an item of list-directed output.
void put_list_separator(Statement& statement, bool character);

// A CHARACTER value at the cursor: `length` characters of 1 or 4 bytes, in the record's encoding.
void put_characters(Statement& statement, const char* text, int kind, std::size_t length);
void put_blanks(Statement& statement, std::size_t count);
void put_byte(Statement& statement, char byte);
void put_text(Statement& statement, std::string_view text);
// A CHARACTER value between delimiters, with each delimiter inside it doubled.
void put_delimited(Statement& statement, const char* text, int kind, std::size_t length,
                   char delimiter);

// An edit descriptor met an item of another type.
void fail_mismatch(Statement& statement, const FormatNode& node, ItemType type);

// Bytes of one REAL in memory: kind 10 takes 16.
constexpr std::size_t real_size(int kind) {
    return kind == 10 ? 16 : static_cast<std::size_t>(kind);
}

}  // namespace tarn::fio
