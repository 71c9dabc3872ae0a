// A running gnu statement: READ or WRITE, formatted or list-directed, external or internal.
//
// One record per statement, from a small stock of the thread, so that statements nest (a function
// in an I/O list may do I/O of its own) and threads don't meet. The record at hand lies at
// `begin`; on output `cursor` is where the next character goes and `high` the furthest byte
// written, on input `limit` is the end of the record's characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fio/format/program.h"
#include "fio/gnu/fault.h"
#include "fio/gnu/item.h"
#include "fio/modes.h"

namespace tarn::fio {

struct Unit;
struct CachedFormat;
struct NamelistGroup;

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
        std::int64_t extent;
        std::int64_t stride;  // in bytes
        std::int64_t index;
    } dimension[15];         // the first `rank` of them are filled
    char* record = nullptr;  // the record at hand
};

// The state of the list-directed reader between two items.
struct ListState {
    std::int32_t repeat = 0;      // repetitions of the last value that are still to be given
    bool first = true;            // no value has been read yet
    bool input_complete = false;  // a slash ended the input
    bool comma_seen = false;      // the separator before the next value has passed
    bool at_line_end = false;     // a line end has passed since the last value
    bool record_passed = false;   // the record at hand has gone by with its line end
    bool null_value = false;      // the value to repeat is null
    ItemType saved_type = ItemType::integer;
    int saved_kind = 0;
    std::size_t saved_length = 0;
    alignas(16) unsigned char saved_value[32];
};

// The unformatted record under way. A record of a sequential file stands between two markers that
// hold its length, in several parts when it is long; a direct record and a stream are one part
// without markers.
struct UnformattedState {
    bool open = false;       // a part is at hand
    bool native = false;     // the records have the frames of the native layout
    bool swapped = false;    // the file has the other byte order
    bool continued = false;  // input: another part follows
    bool preceded = false;   // output: another part precedes
    bool held = false;       // output: a part stays in the buffer until its length is known
    bool whole = false;      // input: the buffer has all of the record and its last marker
    bool ended = false;      // input: the file ended inside the last record of a direct file
    std::size_t marker = 0;  // bytes of a marker; 0: none
    std::size_t lead = 0;    // output: bytes of a marker right before `begin`
    std::int64_t marker_position = 0;  // output: of the part's first marker in the file
    std::int64_t record_position = 0;  // output: of the record's first byte in the file
    std::int64_t part_done = 0;        // output: bytes of the part before `begin`; input: of the
                                       // whole record, in the native layout
    std::int64_t guess = 0;            // output: what the part's first marker says in the file
    std::int64_t part_left = 0;        // bytes of the part from `begin` on
    std::int64_t record_left = 0;      // the same of the record, as RECL= allows
};

struct Statement;

// What a statement does with an item that isn't COMPLEX. `size` as of `transfer_items`.
using ItemRoad = void (*)(Statement& statement, ItemType type, void* item, int kind,
                          std::size_t size);
void transfer_any_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);

// What every statement finds as it stands here. The largest members come first: without gaps it is
// put back in few stores.
struct StatementState {
    ItemRoad transfer_item = transfer_any_item;
    Caller* caller = nullptr;
    Unit* unit = nullptr;  // null for an internal file

    // The record at hand. On output of 4-byte characters the pointers step by four.
    char* begin = nullptr;
    char* tab_limit = nullptr;  // input: column 1 of T; where a non-advancing statement began
    char* cursor = nullptr;
    char* high = nullptr;             // output: the furthest byte written
    char* limit = nullptr;            // input: end of the record; output: end of the room at hand,
                                      // or `begin` to send every item through `make_room`
    char* room_end = nullptr;         // end of the bytes that may be written or looked at
    std::int64_t pending = 0;         // output: a move to the right that nothing has followed yet
    char* record_end = nullptr;       // output: where a record of fixed length ends; null: no end
    std::int64_t column_base = 0;     // output: what non-advancing statements wrote before
    std::size_t record_consumed = 0;  // input: bytes of it with the line end
    char* carriage_return = nullptr;  // input: one inside the record; null: none
    char* text_end = nullptr;         // input: where the trailing blanks of a scalar begin
    std::int64_t record_limit = 0;    // characters that a record may hold (RECL=)
    std::int64_t record_number = 0;   // of a direct file

    // The format.
    CachedFormat* cached = nullptr;
    const FormatProgram* format = nullptr;
    const FormatNode* next = nullptr;       // node to run
    const FormatNode* data_edit = nullptr;  // in force

    NamelistGroup* namelist = nullptr;
    // A statement whose item has a procedure of its own, and the child statements of that.
    Statement* parent = nullptr;        // of a child
    Statement* parent_below = nullptr;  // of those that run a procedure in this thread

    std::int64_t* size = nullptr;  // SIZE=
    std::int64_t size_count = 0;   // characters read, for SIZE=
    std::int64_t* iolength = nullptr;
    std::int64_t length_count = 0;  // bytes measured for IOLENGTH=

    std::int32_t repeat_left = 0;  // of the data edit descriptor in force
    std::uint32_t items = 0;       // transferred so far, for messages
    std::int32_t child_unit = 0;   // the number by which the procedures name the record

    bool reading = false;
    bool list_directed = false;
    bool unformatted = false;
    bool non_advancing = false;
    bool direct = false;
    bool stream = false;
    bool utf8 = false;
    bool internal = false;
    bool wide = false;               // an internal file of 4-byte characters
    bool measuring = false;          // INQUIRE(IOLENGTH=): items are only counted
    bool behind_scalar = false;      // the one record of a scalar internal file has been left
    bool behind_end = false;         // a stream is read behind its end: told at the statement's end
    bool failed = false;             // the items that follow are ignored
    bool record_at_hand = false;     // input: a record has been found
    bool record_dropped = false;     // input: a child has met its end, the next isn't fetched yet
    bool record_terminated = false;  // input: it has a line end
    bool end_of_record = false;      // input: a field ran into the record's end
    bool carriage_return_unknown = false;  // input: it hasn't been looked for in the record
    bool data_used = false;                // a data edit descriptor has met an item since reversion
    bool no_line_end = false;              // $ asked for it
    bool list_begun = false;               // list-directed output: an item has been written
    bool list_after_character = false;
    bool child_running = false;
    bool owns_child_unit = false;
    EditModes modes;
};

struct Statement : StatementState {
    // Each is set up by the statements that use it.
    std::int32_t counters[max_format_depth + 1];  // of open groups of the format, by level
    ListState list;                               // list-directed input
    UnformattedState raw;
    InternalFile file;

    // What the record keeps from one statement to the next.
    char* scratch = nullptr;  // fields that don't lie as bytes in the record
    std::size_t scratch_capacity = 0;
    char* saved_text = nullptr;  // a character value that list-directed input repeats
    std::size_t saved_capacity = 0;
    Statement* below = nullptr;  // in the thread's stock
};

inline bool is_internal_scalar(const Statement& statement) {
    return statement.internal && statement.file.rank == 0;
}

// Input: brings the next record to hand, from the unit or the internal file; false when there is
// none (the end of the file has been reported and the statement has failed).
bool next_input_record(Statement& statement);
// The same, but none is no fault: false, and nothing was reported.
bool try_next_input_record(Statement& statement);

// The specifiers of few statements; without an address: not given.
struct ModeSpecifiers {
    std::string_view advance;
    std::string_view asynchronous;
    std::string_view blank;
    std::string_view decimal;
    std::string_view delim;
    std::string_view pad;
    std::string_view round;
    std::string_view sign;
};

// What the compiled program asks of a data transfer statement.
struct TransferSpecifiers {
    bool reading = false;
    bool list_directed = false;
    bool has_rec = false;
    bool has_pos = false;
    bool has_end = false;
    bool has_eor = false;
    bool dec_extensions = false;   // compiled with -fdec
    const char* format = nullptr;  // null: none
    std::size_t format_length = 0;
    NamelistGroup* namelist = nullptr;  // null: none
    std::int64_t rec = 0;
    std::int64_t pos = 0;
    std::int64_t* size = nullptr;
    std::int32_t* id = nullptr;
    const ModeSpecifiers* modes = nullptr;   // null: none of them is given
    const InternalFile* internal = nullptr;  // null: an external unit
};

// Opens a READ or WRITE that may have specifiers that catch its faults (ERR=, IOSTAT=, IOMSG=, END=
// of a READ) and no others but the unit and the format. Null, and nothing has happened, when the
// unit isn't one that simply goes on: `begin_transfer` does it then.
Statement* begin_usual_transfer(Caller& caller, bool reading, const char* format,
                                std::size_t format_length);
// Opens a READ or WRITE. The statement is valid in any case; a fault is in its caller's outcome.
Statement* begin_transfer(Caller& caller, const TransferSpecifiers& specifiers);
// A statement that has failed before it began: its items are ignored.
Statement* refuse_transfer(Caller& caller);
// Opens INQUIRE(IOLENGTH=).
Statement* begin_iolength(Caller& caller, std::int64_t* result);
// `count` items `stride` bytes apart. `size`: bytes of an item; of a CHARACTER its length in
// characters.
void transfer_items(Statement& statement, ItemType type, void* items, int kind, std::size_t size,
                    std::ptrdiff_t stride, std::size_t count);
// Ends the statement: the rest of the format, the record, the unit. The record is gone then.
void end_transfer(Statement* statement);

// The list-directed reader: gives one item its value. A null value leaves the item as it is.
void read_list_item(Statement& statement, ItemType type, void* item, int kind, std::size_t size);
// Goes to the value of an item that a procedure reads; false: there is none for it. A separator
// right before it is the procedure's, as in gfortran, unless the statement begins there.
bool find_list_value(Statement& statement);
// What a list-directed READ leaves to be done at its end: the rest of the record goes by.
void finish_list_read(Statement& statement);

// A fault in a statement: reports it and turns the statement's items off.
void fail(Statement& statement, Fault fault, std::string_view detail = {});
void fail_system(Statement& statement, int errno_value);
void fail_end_of_file(Statement& statement);
void fail_end_of_record(Statement& statement);
void fail_format(Statement& statement, const FormatError& error, std::string_view text);

}  // namespace tarn::fio
