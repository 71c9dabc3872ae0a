// A running gnu statement: READ or WRITE, formatted or list-directed, external or internal.
//
// One record per statement, from a small stock of the thread, so that statements nest (a function
// in an I/O list may do I/O of its own) and threads don't meet. The record at hand lies at
// `begin`; on output `cursor` is where the next character goes and `high` the furthest byte
// written, on input `limit` is the end of the record's characters.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/format/program.h"
#include "fio/gnu/fault.h"
#include "fio/gnu/item.h"
#include "fio/modes.h"

namespace tarn::fio {

struct Unit;

// An internal file: `count` records of `length` characters of `char_kind` bytes each, `stride`
// bytes apart in the innermost dimension and then as the array lies.
struct InternalFile {
    char* base = nullptr;
    std::size_t length = 0;  // characters in a record
    std::int64_t count = 1;  // records
    std::int64_t next = 0;   // index of the record after the one at hand
    int char_kind = 1;       // 1 or 4
    int rank = 0;            // 0: scalar
    struct Dimension {
        std::int64_t extent = 0;
        std::int64_t stride = 0;  // in bytes
        std::int64_t index = 0;
    } dimension[15];
};

// The state of the list-directed reader between two items.
struct ListState {
    std::int32_t repeat = 0;      // repetitions of the last value that are still to be given
    bool first = true;            // no value has been read yet
    bool input_complete = false;  // a slash ended the input
    bool comma_seen = false;      // the separator before the next value has passed
    bool null_value = false;      // the value to repeat is null
    ItemType saved_type = ItemType::integer;
    int saved_kind = 0;
    std::size_t saved_length = 0;
    char* saved_text = nullptr;  // a character value to repeat; grows as needed
    std::size_t saved_capacity = 0;
    alignas(16) unsigned char saved_value[32] = {};
};

struct Statement {
    Caller* caller = nullptr;
    Unit* unit = nullptr;  // null for an internal file
    bool reading = false;
    bool list_directed = false;
    bool non_advancing = false;
    bool direct = false;
    bool stream = false;
    bool utf8 = false;
    bool internal = false;
    bool failed = false;  // the items that follow are ignored
    bool size_wanted = false;
    EditModes modes;

    // The record at hand.
    char* begin = nullptr;
    char* cursor = nullptr;
    char* high = nullptr;             // output: the furthest byte written
    char* limit = nullptr;            // output: end of the room; input: end of the record
    std::int64_t pending_skip = 0;    // a move to the right that nothing has filled yet
    bool record_at_hand = false;      // input: a record has been found
    bool record_terminated = false;   // input: it has a line end
    std::size_t record_consumed = 0;  // input: bytes of it with the line end
    bool at_end_of_record = false;    // input: the record's characters have run out
    std::int64_t record_limit = 0;    // characters that a record may hold (RECL=); 0: no limit

    // The format.
    const FormatProgram* format = nullptr;
    std::uint32_t node = 0;        // next node to run
    std::int32_t repeat_left = 0;  // of the data edit descriptor in force
    const FormatNode* data_edit = nullptr;
    std::int32_t counters[max_format_depth + 1] = {};
    bool data_used = false;    // a data edit descriptor has met an item since the start
    bool no_line_end = false;  // $ asked for it

    InternalFile file;
    ListState list;
    bool list_first_item = true;  // output
    bool list_last_was_character = false;
    std::size_t size_count = 0;  // characters read, for SIZE=

    Statement* below = nullptr;  // in the thread's stock
};

// Input: brings the next record to hand, from the unit or the internal file; false when there is
// none (the end of the file has been reported and the statement has failed).
bool next_input_record(Statement& statement);

// The list-directed reader: gives one item its value. A null value leaves the item as it is.
// `size` is the length of a CHARACTER item in characters.
void read_list_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);
// What a list-directed READ leaves to be done at its end: the rest of the record goes by.
void finish_list_read(Statement& statement);

// A fault in a statement: reports it and turns the statement's items off.
void fail(Statement& statement, Fault fault, const char* detail = "");

}  // namespace tarn::fio
