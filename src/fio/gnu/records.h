// The records of a gnu statement: where they begin and end, on files and in memory.
#pragma once

#include <cstddef>

#include "fio/gnu/statement.h"
#include "fio/unit.h"

namespace tarn::fio {

// Output. The first record of a statement; then one after another.
void begin_output(Statement& statement);
void next_output_record(Statement& statement);
void end_output(Statement& statement);

// The slow road of `room`: applies a pending move, grows the buffer, meets the record's end.
char* make_room(Statement& statement, std::size_t count);
void fill_wide(Statement& statement, const char* end);

// Room for `count` characters at the cursor; null when the record can't hold them (the statement
// has failed then).
inline char* room(Statement& statement, std::size_t count) {
    if (statement.limit - statement.cursor >= static_cast<std::ptrdiff_t>(count)) {
        return statement.cursor;
    }
    return make_room(statement, count);
}

// What takes no room at all is written all the same where a move has led: the blanks before it
// count.
inline void write_nothing(Statement& statement) {
    if (statement.pending > 0) make_room(statement, 0);
}

// Says that the characters up to `end` of the last room have been written.
inline void filled(Statement& statement, char* end) {
    if (statement.wide) {
        fill_wide(statement, end);
        return;
    }
    statement.cursor = end;
    if (end > statement.high) statement.high = end;
}

// Where the record's characters end for a field and for a move. The trailing blanks of a scalar
// internal file count only under BZ: A8 reading 'abc' into five characters gives 'abc', not the
// right-hand part of the field.
inline const char* input_end(const Statement& s) {
    return s.internal && s.modes.blank == Blank::null ? s.text_end : s.limit;
}

// Moves, in characters from the record's start.
void move_right(Statement& statement, std::int64_t count);
void move_left(Statement& statement, std::int64_t count);
void move_to_column(Statement& statement, std::int64_t column);

// Input.
void begin_input(Statement& statement);
void end_input(Statement& statement);
// The record goes by, and the next one is fetched only when it is needed.
void leave_record(Statement& statement);
// Whether a record is at hand, after the next one has been fetched if need be.
inline bool has_input_record(Statement& statement) {
    return statement.record_at_hand || (statement.record_dropped && next_input_record(statement));
}

// The characters that a field of `width` can take. A carriage return inside the record ends it for
// the field that meets it, as a line feed would; a record of which less is read goes to its line
// feed.
void find_carriage_return(Statement& statement);
void end_record_at_carriage_return(Statement& statement);
inline void meet_carriage_return(Statement& statement, std::size_t width) {
    if (statement.carriage_return_unknown) find_carriage_return(statement);
    if (statement.carriage_return != nullptr &&
        statement.carriage_return - statement.cursor < static_cast<std::ptrdiff_t>(width)) {
        end_record_at_carriage_return(statement);
    }
}

// Ends the record that a non-advancing WRITE left open on a unit. err: an errno value.
void finish_open_record(Unit& unit, int& err);

// Whether a sequential statement in this direction simply goes on where the unit stands: nothing
// has to be put in order or refused first.
inline bool goes_on(const Unit& unit, bool reading) {
    const IOStatus& status = unit.status;
    const GnuConnection& connection = unit.gnu;
    return status.connected && !status.direct && (reading ? status.may_read : status.may_write) &&
           unit.statements == 1 && connection.end != EndState::after &&
           connection.last_was_write != reading && !connection.record_open;
}

// Whether a record of the unit is seen by others as soon as it is complete.
inline bool leaves_at_once(const Unit& unit) {
    return unit.gnu.unbuffered || unit.file.terminal || unit.file.shared;
}
// Room behind what the record at hand holds, for what isn't part of it and RECL= doesn't count.
// False: there is no memory for it.
bool make_room_behind(Statement& statement, std::size_t size);
// A direct record has been written.
void tell_record(Unit& unit, std::int64_t number);
// A sequential WRITE makes its record the last one of the file.
void cut_behind(Statement& statement);

// At least `capacity` bytes in the statement's scratch room.
char* scratch_room(Statement& statement, std::size_t capacity);

}  // namespace tarn::fio
