#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "fio/file/record_buffer.h"
#include "fio/gnu/carriage_control.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/options.h"
#include "fio/gnu/records.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

// Enough for most records, so that room is asked for once.
constexpr std::size_t usual_record = 512;

std::ptrdiff_t cell_size(const Statement& s) {
    return s.wide ? 4 : 1;
}

void set_room(Statement& s, char* begin, char* room_end) {
    s.begin = s.cursor = s.high = begin;
    s.room_end = room_end;
    s.limit = s.wide ? begin : room_end;
    s.pending = 0;
}

// RECL= of the connection caps the room of an external record.
void cap_room(Statement& s) {
    const std::int64_t left = s.record_limit - s.column_base;
    if (s.room_end - s.begin > left) s.room_end = s.begin + (left > 0 ? left : 0);
    s.limit = s.pending == 0 ? s.room_end : s.begin;
}

void blank(Statement& s, char* from, char* to) {
    if (s.wide) {
        for (; from < to; from += 4) put_wide(from, U' ');
    } else if (to > from) {
        std::memset(from, ' ', static_cast<std::size_t>(to - from));
    }
}

void begin_internal(Statement& s) {
    char* record = s.file.record;
    if (record == nullptr) {
        // Behind the last record: nothing fits.
        set_room(s, nullptr, nullptr);
        s.record_end = nullptr;
        return;
    }
    s.record_end = record + static_cast<std::ptrdiff_t>(s.file.length) * cell_size(s);
    set_room(s, record, s.record_end);
}

void begin_direct(Statement& s) {
    Unit& unit = *s.unit;
    int err = 0;
    const std::int64_t stride = direct_stride(unit);
    move_to(unit.file, (s.record_number - 1) * stride, err);
    const OutputRoom at = begin_record(unit.file, static_cast<std::size_t>(stride), err);
    if (err != 0) fail_system(s, err);
    if (at.begin == nullptr) return;
    s.record_end = at.begin + unit.recl;
    set_room(s, at.begin, s.record_end);
}

// What an earlier non-advancing statement wrote to the right of where it stopped.
void restore_tail(Statement& s) {
    Unit& unit = *s.unit;
    if (unit.saved_length == 0) return;
    char* at = room(s, unit.saved_length);
    if (at == nullptr) return;
    std::memcpy(at, unit.saved_record, unit.saved_length);
    s.high = at + unit.saved_length;
    unit.saved_length = 0;
}

void begin_external(Statement& s) {
    Unit& unit = *s.unit;
    int err = 0;
    const OutputRoom at = begin_record(unit.file, usual_record, err);
    if (err != 0) fail_system(s, err);
    if (at.begin == nullptr) return;
    set_room(s, at.begin, at.limit);
    s.column_base = unit.gnu.record_open ? static_cast<std::int64_t>(unit.gnu.open_column) : 0;
    cap_room(s);
    if (unit.gnu.record_open) restore_tail(s);
    unit.gnu.record_open = false;
}

void keep_tail(Statement& s) {
    Unit& unit = *s.unit;
    const auto length = static_cast<std::size_t>(s.high - s.cursor);
    unit.saved_length = 0;
    if (length == 0) return;
    if (unit.saved_size < length) {
        void* grown = std::realloc(unit.saved_record, length);
        if (grown == nullptr) return fail_system(s, ENOMEM);
        unit.saved_record = static_cast<char*>(grown);
        unit.saved_size = length;
    }
    std::memcpy(unit.saved_record, s.cursor, length);
    unit.saved_length = length;
}

// Whether the record at hand begins here, and its first character moves the paper.
bool begins_on_paper(const Statement& s) {
    return s.unit->gnu.carriage == CarriageControl::fortran && s.column_base == 0;
}

// What the record holds up to the cursor is on its way, without an end of the line.
void finish_without_line_end(Statement& s) {
    int err = 0;
    s.high = s.cursor;
    s.pending = 0;
    if (s.high > s.begin && begins_on_paper(s) && !control_carriage(s)) return;
    end_record(s.unit->file, static_cast<std::size_t>(s.high - s.begin), leaves_at_once(*s.unit),
               err);
    if (err != 0) fail_system(s, err);
}

void leave_record_open(Statement& s) {
    GnuConnection& connection = s.unit->gnu;
    if (s.pending > 0) make_room(s, 0);
    keep_tail(s);
    connection.record_open = true;
    connection.no_line_end = s.no_line_end;
    connection.open_column =
        static_cast<std::size_t>(s.column_base) + static_cast<std::size_t>(s.cursor - s.begin);
    finish_without_line_end(s);
}

std::string_view line_end_of(const Unit& unit) {
    switch (unit.gnu.carriage) {
        case CarriageControl::fortran:
            return unit.gnu.returns_carriage ? "\r" : "";
        case CarriageControl::none:
            return "";
        default:
            return unit.dialect->line_end;
    }
}

void finish_external(Statement& s) {
    Unit& unit = *s.unit;
    File& file = unit.file;
    if (begins_on_paper(s) && !control_carriage(s)) return;
    const std::string_view line_end = line_end_of(unit);
    if (!make_room_behind(s, line_end.size())) return;
    if (line_end.size() == 1) {
        *s.high = line_end[0];
    } else {
        std::memcpy(s.high, line_end.data(), line_end.size());
    }
    int err = 0;
    end_record(file, static_cast<std::size_t>(s.high - s.begin) + line_end.size(),
               leaves_at_once(unit), err);
    unit.gnu.record_open = false;
    ++unit.current_record;
    s.column_base = s.pending = 0;
    // A formatted stream ends behind the record that was written last.
    if (s.stream && file.size > file.logical_position) {
        cut_here(file, err);
        file.position_state = place_append;
    }
    if (err != 0) fail_system(s, err);
}

void finish_direct(Statement& s) {
    Unit& unit = *s.unit;
    if (s.begin == nullptr) return;
    blank(s, s.high, s.record_end);
    const auto stride = static_cast<std::size_t>(direct_stride(unit));
    const std::size_t behind = stride - static_cast<std::size_t>(unit.recl);
    std::memcpy(s.record_end, unit.dialect->line_end.data(), behind);
    int err = 0;
    end_record(unit.file, stride, leaves_at_once(unit), err);
    tell_record(unit, s.record_number);
    if (err != 0) fail_system(s, err);
}

void finish_internal(Statement& s) {
    if (s.file.record != nullptr) blank(s, s.high, s.record_end);
}

// A scalar internal file has one record. What follows a slash or reversion goes on in it, behind
// one blank, and the statement hears of the end when it ends; another fault on the way counts.
void go_on_behind_blank(Statement& s) {
    char* at = room(s, 1);
    if (at == nullptr) return;
    *at = ' ';
    filled(s, at + 1);
}

}  // namespace

bool make_room_behind(Statement& s, std::size_t size) {
    const File& file = s.unit->file;
    if (static_cast<std::size_t>(file.buffer + file.capacity - s.high) >= size) return true;
    int err = 0;
    const auto length = static_cast<std::size_t>(s.high - s.begin);
    const OutputRoom at = grow_record(s.unit->file, length, size, err);
    if (err != 0) fail_system(s, err);
    if (at.begin == nullptr) return false;
    s.begin = at.begin;
    s.high = at.begin + length;
    return true;
}

void cut_behind(Statement& s) {
    Unit& unit = *s.unit;
    if (unit.gnu.last_was_write) return;
    unit.gnu.last_was_write = true;
    if (s.direct || s.stream) return;
    int err = 0;
    cut_here(unit.file, err);
    unit.gnu.end = EndState::at;
    if (err != 0) fail_system(s, err);
}

void begin_output(Statement& s) {
    if (s.internal) return begin_internal(s);
    if (s.direct) return begin_direct(s);
    begin_external(s);
}

void next_output_record(Statement& s) {
    if (s.failed) return;
    if (is_internal_scalar(s) && !s.wide) {
        go_on_behind_blank(s);
        s.behind_scalar = true;
    } else if (s.internal && s.parent != nullptr && !s.wide) {
        // As gfortran has it: a child knows its internal file as one record.
        go_on_behind_blank(s);
    } else if (s.internal) {
        finish_internal(s);
        next_internal_record(s.file);
        begin_internal(s);
    } else if (s.direct) {
        finish_direct(s);
        ++s.record_number;
        begin_direct(s);
    } else {
        if (s.no_line_end) {
            // Behind `$` the next record follows in the same line, right behind the cursor.
            finish_without_line_end(s);
        } else {
            finish_external(s);
        }
        begin_external(s);
    }
}

void end_output(Statement& s) {
    if (s.internal) {
        const bool left_last = s.file.record == nullptr && s.file.count > 0 && !s.wide;
        // After a fault too: an item may have touched bytes behind its field.
        finish_internal(s);
        if (!s.failed && (left_last || s.behind_scalar)) fail_end_of_file(s);
        return;
    }
    if (s.begin == nullptr) return;
    if (s.direct) return finish_direct(s);
    if (s.non_advancing || s.no_line_end) {
        leave_record_open(s);
    } else {
        finish_external(s);
    }
    cut_behind(s);
}

char* make_room(Statement& s, std::size_t count) {
    if (s.failed) return nullptr;
    if (s.begin == nullptr) {
        fail_end_of_file(s);
        return nullptr;
    }
    const std::ptrdiff_t cell = cell_size(s);
    const std::ptrdiff_t at = (s.cursor - s.begin) + s.pending * cell;
    const std::ptrdiff_t end = at + static_cast<std::ptrdiff_t>(count) * cell;
    if (s.record_end != nullptr ? end > s.record_end - s.begin
                                : end + s.column_base > s.record_limit) {
        if (s.behind_scalar) {
            fail_end_of_file(s);
        } else {
            fail_end_of_record(s);
        }
        return nullptr;
    }
    if (end > s.room_end - s.begin) {
        const auto used = static_cast<std::size_t>(s.high - s.begin);
        int err = 0;
        const OutputRoom grown =
            grow_record(s.unit->file, used, static_cast<std::size_t>(end) - used, err);
        if (err != 0) fail_system(s, err);
        if (grown.begin == nullptr || s.failed) return nullptr;
        s.begin = grown.begin;
        s.high = grown.begin + used;
        s.room_end = grown.limit;
    }
    s.cursor = s.begin + at;
    s.pending = 0;
    blank(s, s.high, s.cursor);
    if (s.cursor > s.high) s.high = s.cursor;
    if (s.wide) return scratch_room(s, count);
    if (s.record_end != nullptr) {
        s.limit = s.record_end;
    } else {
        cap_room(s);
    }
    return s.cursor;
}

void fill_wide(Statement& s, const char* end) {
    for (const char* from = s.scratch; from < end; ++from, s.cursor += 4) {
        put_wide(s.cursor, static_cast<unsigned char>(*from));
    }
    if (s.cursor > s.high) s.high = s.cursor;
}

void tell_record(Unit& unit, std::int64_t number) {
    unit.gnu.record_number = number;
    unit.highest_record = std::max(unit.highest_record, number);
}

void finish_open_record(Unit& unit, int& err) {
    if (!unit.gnu.record_open || !unit.gnu.last_was_write) return;
    unit.gnu.record_open = false;
    // A prompt at the end of the program stays as it is, and so does what `$` ended last; any other
    // unit ends with a whole record.
    const GnuOptions& options = gnu_options();
    const bool standard = unit.number == options.stdout_unit || unit.number == options.stderr_unit;
    const bool stays = standard || unit.gnu.no_line_end;
    const std::string_view line_end = stays ? std::string_view() : line_end_of(unit);
    const std::size_t length = unit.saved_length + line_end.size();
    const OutputRoom at = begin_record(unit.file, length, err);
    if (at.begin == nullptr) return;
    if (unit.saved_length > 0) std::memcpy(at.begin, unit.saved_record, unit.saved_length);
    std::memcpy(at.begin + unit.saved_length, line_end.data(), line_end.size());
    unit.saved_length = 0;
    end_record(unit.file, length, leaves_at_once(unit), err);
}

char* scratch_room(Statement& s, std::size_t capacity) {
    if (s.scratch_capacity < capacity) {
        const std::size_t wanted = capacity < 256 ? 256 : capacity;
        void* grown = std::realloc(s.scratch, wanted);
        if (grown == nullptr) {
            fail_system(s, ENOMEM);
            return nullptr;
        }
        s.scratch = static_cast<char*>(grown);
        s.scratch_capacity = wanted;
    }
    return s.scratch;
}

// A move to the right waits until something is put there: trailing moves write nothing. The room
// is closed so that the next item passes `make_room`.
void move_right(Statement& s, std::int64_t count) {
    if (count <= 0) return;
    s.pending += count;
    s.limit = s.begin;
}

void move_left(Statement& s, std::int64_t count) {
    const std::int64_t column = (s.cursor - s.begin) / cell_size(s) + s.pending - count;
    s.cursor = s.begin;
    s.pending = 0;
    if (!s.wide) s.limit = s.room_end;
    move_right(s, column);
}

void move_to_column(Statement& s, std::int64_t column) {
    const std::int64_t here = (s.cursor - s.begin) / cell_size(s) + s.pending;
    if (column >= here) return move_right(s, column - here);
    move_left(s, here - column);
}

}  // namespace tarn::fio
