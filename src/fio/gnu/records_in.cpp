#include <cstring>

#include "fio/file/record_buffer.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/records.h"
#include "fio/gnu/utf8.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

void set_record(Statement& s, char* begin, std::size_t length, char* room_end) {
    s.begin = s.cursor = s.tab_limit = begin;
    s.limit = begin + length;
    s.room_end = room_end;
    s.record_at_hand = true;
    s.record_dropped = false;
    s.end_of_record = false;
}

void find_text_end(Statement& s) {
    s.text_end = s.limit;
    if (s.file.rank > 0) return;
    while (s.text_end > s.begin && s.text_end[-1] == ' ') --s.text_end;
}

bool internal_record(Statement& s) {
    char* record = s.file.record;
    if (record == nullptr) return false;
    s.record_terminated = true;
    if (!s.wide) {
        set_record(s, record, s.file.length, record + s.file.length);
        find_text_end(s);
        return true;
    }
    // The reader takes UTF-8.
    char* text = scratch_room(s, s.file.length * longest_utf8);
    if (text == nullptr) return false;
    std::size_t length = 0;
    for (std::size_t i = 0; i < s.file.length; ++i) {
        length += put_utf8(get_wide(record + 4 * i), text + length);
    }
    set_record(s, text, length, text + length);
    find_text_end(s);
    return true;
}

bool direct_record(Statement& s) {
    Unit& unit = *s.unit;
    int err = 0;
    char* begin = nullptr;
    move_to(unit.file, (s.record_number - 1) * direct_stride(unit), err);
    const std::size_t length =
        peek_bytes(unit.file, static_cast<std::size_t>(unit.recl), begin, err);
    if (err != 0) {
        fail_system(s, err);
        return false;
    }
    // The first record must be there (REC= was checked); one behind the file's end is empty.
    set_record(s, begin, length, begin + length);
    s.record_consumed = length;
    s.record_terminated = true;
    unit.gnu.record_number = s.record_number;
    return true;
}

// False: there is none, or the file can't be read, which has been reported.
[[gnu::noinline]] bool find_record_on_file(Statement& s, InputRecord& record) {
    int err = 0;
    const bool found = find_record(s.unit->file, record, err);
    if (err != 0) fail_system(s, err);
    return found && err == 0;
}

bool external_record(Statement& s) {
    const File& file = s.unit->file;
    InputRecord record;
    if (!find_buffered_record(file, record) && !find_record_on_file(s, record)) return false;
    set_record(s, record.begin, record.length, file.buffer + file.capacity);
    s.carriage_return_unknown = true;
    s.record_consumed = record.consumed;
    s.record_terminated = record.terminated;
    return true;
}

bool fetch_record(Statement& s) {
    s.record_at_hand = false;
    if (s.internal) return internal_record(s);
    if (s.direct) return direct_record(s);
    return external_record(s);
}

// The record has gone by.
void drop_record(Statement& s) {
    if (!s.record_at_hand) return;
    s.record_at_hand = false;
    if (s.internal) return;
    Unit& unit = *s.unit;
    consume(unit.file, s.record_consumed);
    unit.gnu.record_open = false;
    ++unit.current_record;
}

}  // namespace

namespace {

// No record is left. A non-advancing statement hears of it with its first item, one on a stream
// when it has filled its items from an empty record, a NAMELIST when it looks for its group, any
// other at once.
void begin_behind_end(Statement& s) {
    if (s.failed || s.non_advancing || s.namelist != nullptr) return;
    if (!s.stream || s.list_directed) return fail_end_of_file(s);
    char* empty = scratch_room(s, 1);
    if (empty == nullptr) return;
    set_record(s, empty, 0, empty);
    s.record_consumed = 0;
    s.record_terminated = false;
    s.behind_end = true;
}

}  // namespace

void begin_input(Statement& s) {
    if (!fetch_record(s)) return begin_behind_end(s);
    if (s.unit == nullptr) return;
    GnuConnection& connection = s.unit->gnu;
    connection.last_was_write = false;
    if (!connection.record_open) return;
    const auto length = static_cast<std::size_t>(s.limit - s.begin);
    s.cursor = s.begin + (connection.open_column < length ? connection.open_column : length);
    s.tab_limit = s.cursor;
}

void find_carriage_return(Statement& s) {
    s.carriage_return_unknown = false;
    const auto length = static_cast<std::size_t>(s.limit - s.begin);
    s.carriage_return = static_cast<char*>(std::memchr(s.begin, '\r', length));
}

void end_record_at_carriage_return(Statement& s) {
    if (s.carriage_return >= s.cursor) {
        s.limit = s.carriage_return;
        s.record_consumed = static_cast<std::size_t>(s.carriage_return - s.begin) + 1;
        s.record_terminated = true;
    }
    s.carriage_return = nullptr;
}

void leave_record(Statement& s) {
    drop_record(s);
    s.record_dropped = true;
}

bool try_next_input_record(Statement& s) {
    if (s.failed) return false;
    drop_record(s);
    if (s.internal) {
        next_internal_record(s.file);
    } else if (s.direct) {
        ++s.record_number;
    }
    return fetch_record(s);
}

bool next_input_record(Statement& s) {
    if (try_next_input_record(s)) return true;
    if (!s.failed) fail_end_of_file(s);
    return false;
}

void end_input(Statement& s) {
    if (!s.record_at_hand) return;
    const bool stays = (s.non_advancing || s.no_line_end) && !s.failed && !s.end_of_record;
    if (!stays || s.internal || s.direct) {
        drop_record(s);
        return;
    }
    s.unit->gnu.record_open = true;
    s.unit->gnu.open_column = static_cast<std::size_t>(s.cursor - s.begin);
}

}  // namespace tarn::fio
