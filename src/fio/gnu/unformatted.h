// Transfers without a format: the bytes of the items as they lie in memory, in the file's byte
// order.
//
// A sequential record has its length in front of it and behind it, so that it can be stepped over
// both ways. One longer than the largest part is a chain of parts, each between its own markers: a
// negative marker in front says that another part follows, a negative one behind that another one
// precedes. A direct record is RECL= bytes, a stream just bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fio/gnu/statement.h"

namespace tarn::fio {

// The three steps of a statement.
void begin_unformatted(Statement& statement);
void transfer_unformatted(Statement& statement, ItemType type, char* items, int kind,
                          std::size_t size, std::ptrdiff_t stride, std::size_t count);
void end_unformatted(Statement& statement);

// The first and the last of them for a caller that holds the unit itself and has found that the
// statement may run on it. `place`: REC= or POS=, 0 where it isn't given.
Statement* begin_unformatted_on(Unit& unit, Caller& caller, bool reading, std::int64_t place);
void end_unformatted_on(Statement* statement);

// Below: the record of the statement as bytes.

void begin_raw_output(Statement& statement);
void end_raw_output(Statement& statement);
void put_raw_slowly(Statement& statement, const char* bytes, std::size_t count);

void begin_raw_input(Statement& statement);
void end_raw_input(Statement& statement);
std::size_t take_raw_slowly(Statement& statement, char* bytes, std::size_t count);

// A copy that costs a load and a store for the usual sizes of an item.
inline void copy_item(char* to, const char* from, std::size_t count) {
    switch (count) {
        case 4:
            std::memcpy(to, from, 4);
            break;
        case 8:
            std::memcpy(to, from, 8);
            break;
        default:
            std::memcpy(to, from, count);
    }
}

// Puts bytes into the record.
inline void put_raw(Statement& s, const char* bytes, std::size_t count) {
    if (static_cast<std::size_t>(s.limit - s.cursor) < count) {
        return put_raw_slowly(s, bytes, count);
    }
    copy_item(s.cursor, bytes, count);
    s.cursor += count;
}

// Items as they lie in memory, one at a time: the roads of most statements.
inline std::size_t raw_size(ItemType type, int kind, std::size_t size) {
    return type == ItemType::character ? size * static_cast<std::size_t>(kind) : size;
}
// Of those, what is turned around as one in a file of the other byte order.
inline std::size_t turned_size(ItemType type, int kind, std::size_t size) {
    if (type == ItemType::character) return static_cast<std::size_t>(kind);
    return type == ItemType::complex ? size / 2 : size;
}
void put_raw_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);
void take_raw_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);

// Takes bytes of the record; fewer than asked for when the statement meets its end there.
inline std::size_t take_raw(Statement& s, char* bytes, std::size_t count) {
    if (static_cast<std::size_t>(s.limit - s.cursor) < count) {
        return take_raw_slowly(s, bytes, count);
    }
    copy_item(bytes, s.cursor, count);
    s.cursor += count;
    return count;
}

}  // namespace tarn::fio
