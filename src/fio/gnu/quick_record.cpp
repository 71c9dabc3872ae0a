#include "fio/gnu/quick_record.h"

#include <algorithm>

#include "fio/gnu/records.h"
#include "fio/gnu/thread_state.h"
#include "fio/gnu/unformatted.h"
#include "fio/gnu/unformatted_marker.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr std::size_t usual_marker = 4;
// As much room as the common road asks for, so that it finds the record where this one began it.
constexpr std::size_t least_room = 512;

bool has_usual_records(const Unit& unit) {
    const GnuConnection& connection = unit.gnu;
    return !connection.native_records && connection.endian != Endian::swap &&
           !unit.status.fixed_record_length && gnu_options().record_marker != 8;
}

bool find_room(QuickRecord& record) {
    const Unit& unit = *record.unit;
    const File& file = unit.file;
    if (!file.dirty || file.write_index != file.data_count || leaves_at_once(unit) ||
        file.capacity - file.write_index < least_room) {
        return false;
    }
    std::size_t room = file.capacity - file.write_index - 2 * usual_marker;
    const std::int64_t longest = gnu_options().max_subrecord_length;
    if (longest > 0) room = std::min<std::uint64_t>(room, static_cast<std::uint64_t>(longest));
    record.begin = record.cursor = file.buffer + file.write_index + usual_marker;
    record.limit = record.begin + room;
    return true;
}

bool find_record(QuickRecord& record) {
    const File& file = record.unit->file;
    if (file.dirty) return false;
    const std::size_t there = file.data_count - file.read_index;
    if (there < 2 * usual_marker) return false;
    char* const front = file.buffer + file.read_index;
    const std::int64_t length = load_marker(front, usual_marker, false);
    if (length < 0 || length > static_cast<std::int64_t>(there - 2 * usual_marker)) return false;
    record.begin = record.cursor = front + usual_marker;
    record.limit = record.begin + length;
    return true;
}

void end_output(QuickRecord& record, std::int64_t length) {
    File& file = record.unit->file;
    store_marker(record.begin - usual_marker, usual_marker, false, length);
    store_marker(record.cursor, usual_marker, false, length);
    const std::int64_t whole = length + 2 * static_cast<std::int64_t>(usual_marker);
    file.write_index += static_cast<std::size_t>(whole);
    file.data_count = file.write_index;
    file.logical_position += whole;
}

void end_input(const QuickRecord& record) {
    File& file = record.unit->file;
    const std::int64_t whole =
        record.limit - record.begin + 2 * static_cast<std::int64_t>(usual_marker);
    file.read_index += static_cast<std::size_t>(whole);
    file.logical_position += whole;
}

}  // namespace

Unit* hold_for_records(std::int32_t number, bool reading) {
    Unit* unit = acquire_unit(number);
    if (unit == nullptr) return nullptr;
    if (goes_on(*unit, reading) && !unit->status.formatted && !unit->status.transparent) {
        return unit;
    }
    release_unit(unit);
    return nullptr;
}

bool begin_quick_record(QuickRecord& record, Unit& unit, bool reading) {
    record.unit = &unit;
    record.reading = reading;
    return has_usual_records(unit) && (reading ? find_record(record) : find_room(record));
}

Statement* begin_records(Unit& unit, Caller& caller, bool reading) {
    Statement* statement = take_statement();
    Statement& s = *statement;
    s.caller = &caller;
    caller.has_unit = true;
    s.unit = &unit;
    s.reading = reading;
    s.unformatted = true;
    s.raw = UnformattedState{};
    begin_unformatted(s);
    return statement;
}

bool end_quick_record(QuickRecord& record) {
    Unit& unit = *record.unit;
    if (record.reading) {
        end_input(record);
    } else {
        const std::int64_t length = record.cursor - record.begin;
        const std::size_t whole = static_cast<std::size_t>(length) + 2 * usual_marker;
        // Writing the buffer out may fail.
        if (unit.file.write_index + whole > unit.file.capacity / 2) return false;
        end_output(record, length);
    }
    ++unit.current_record;
    release_unit(&unit);
    return true;
}

Statement* leave_quick_record(const QuickRecord& record, Caller& caller) {
    Statement* statement = begin_records(*record.unit, caller, record.reading);
    statement->cursor += record.cursor - record.begin;
    return statement;
}

bool pass_row_quickly(QuickRecord& record, char* items, std::size_t bytes, std::ptrdiff_t stride,
                      std::size_t count) {
    const auto left = static_cast<std::size_t>(record.limit - record.cursor);
    std::size_t all = 0;
    if (__builtin_mul_overflow(bytes, count, &all) || all > left) return false;
    if (count == 1 || stride == static_cast<std::ptrdiff_t>(bytes)) {
        return pass_quickly(record, items, all);
    }
    char* at = record.cursor;
    for (; count > 0; --count, items += stride, at += bytes) {
        if (record.reading) {
            copy_item(items, at, bytes);
        } else {
            copy_item(at, items, bytes);
        }
    }
    record.cursor = at;
    return true;
}

}  // namespace tarn::fio
