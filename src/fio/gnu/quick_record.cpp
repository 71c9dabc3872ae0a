#include "fio/gnu/quick_record.h"

#include <algorithm>
#include <cstring>

#include "fio/file/record_buffer.h"
#include "fio/gnu/byte_order.h"
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

bool has_usual_markers(const Unit& unit) {
    return !unit.status.fixed_record_length && gnu_options().record_marker != 8;
}

// Behind the records that wait in the buffer, for one between markers of `marker` bytes.
bool find_room(QuickRecord& record, std::size_t marker) {
    const Unit& unit = *record.unit;
    const File& file = unit.file;
    if (!file.dirty || file.write_index != file.data_count || leaves_at_once(unit) ||
        file.capacity - file.write_index < least_room) {
        return false;
    }
    std::size_t room = file.capacity - file.write_index - 2 * marker;
    const std::int64_t longest = gnu_options().max_subrecord_length;
    if (longest > 0) room = std::min<std::uint64_t>(room, static_cast<std::uint64_t>(longest));
    record.begin = record.cursor = file.buffer + file.write_index + marker;
    record.limit = record.begin + room;
    return true;
}

bool find_framed(QuickRecord& record) {
    const File& file = record.unit->file;
    if (file.dirty) return false;
    const std::size_t there = file.data_count - file.read_index;
    if (there < 2 * usual_marker) return false;
    char* const front = file.buffer + file.read_index;
    const std::int64_t length = load_marker(front, usual_marker, record.turned);
    if (length < 0 || length > static_cast<std::int64_t>(there - 2 * usual_marker)) return false;
    record.begin = record.cursor = front + usual_marker;
    record.limit = record.begin + length;
    return true;
}

bool find_bytes(QuickRecord& record) {
    const File& file = record.unit->file;
    if (file.dirty || file.read_index == file.data_count) return false;
    record.begin = record.cursor = file.buffer + file.read_index;
    record.limit = file.buffer + file.data_count;
    return true;
}

// Where the record with this number starts; -1: the common road has something to say.
std::int64_t place_of(const QuickRecord& record) {
    const Unit& unit = *record.unit;
    const std::int64_t most = static_cast<std::int64_t>(unit.file.capacity / 2);
    if (record.number <= 0 || unit.recl > most || record.number > INT64_MAX / unit.recl) return -1;
    return (record.number - 1) * unit.recl;
}

bool find_numbered(QuickRecord& record) {
    const File& file = record.unit->file;
    const std::int64_t place = place_of(record);
    const std::int64_t offset = place - file.buffer_position;
    if (place < 0 || file.dirty || offset < 0 ||
        offset > static_cast<std::int64_t>(file.data_count) - record.unit->recl) {
        return false;
    }
    record.begin = record.cursor = file.buffer + offset;
    record.limit = record.begin + record.unit->recl;
    return true;
}

// What waits for another place is written out on the way.
bool find_numbered_room(QuickRecord& record) {
    Unit& unit = *record.unit;
    File& file = unit.file;
    const std::int64_t place = place_of(record);
    if (place < 0 || !file.seekable || leaves_at_once(unit)) return false;
    int err = 0;
    move_to(file, place, err);
    if (err != 0) return false;
    const std::size_t need = std::max(least_room, static_cast<std::size_t>(unit.recl));
    const OutputRoom room = begin_record(file, need, err);
    if (err != 0 || room.begin == nullptr) return false;
    record.begin = record.cursor = room.begin;
    record.limit = room.begin + unit.recl;
    return true;
}

void end_output(QuickRecord& record, std::size_t whole) {
    Unit& unit = *record.unit;
    File& file = unit.file;
    if (record.framed) {
        const std::int64_t length = record.cursor - record.begin;
        store_marker(record.begin - usual_marker, usual_marker, record.turned, length);
        store_marker(record.cursor, usual_marker, record.turned, length);
        ++unit.current_record;
    } else if (record.number > 0) {
        std::memset(record.cursor, 0, static_cast<std::size_t>(record.limit - record.cursor));
        tell_record(unit, record.number);
    }
    file.write_index += whole;
    file.data_count = file.write_index;
    file.logical_position += static_cast<std::int64_t>(whole);
    file.dirty = file.dirty || whole > 0;
}

void end_input(const QuickRecord& record) {
    Unit& unit = *record.unit;
    File& file = unit.file;
    const char* const end = record.framed ? record.limit + usual_marker : record.cursor;
    file.read_index = static_cast<std::size_t>(end - file.buffer);
    file.logical_position = file.buffer_position + (end - file.buffer);
    if (record.framed) {
        ++unit.current_record;
    } else if (record.number > 0) {
        unit.gnu.record_number = record.number;
    }
}

// A direct statement goes on wherever it is told to.
bool goes_on_direct(const Unit& unit, bool reading) {
    const IOStatus& status = unit.status;
    return status.connected && status.direct && (reading ? status.may_read : status.may_write) &&
           unit.statements == 1 && unit.gnu.last_was_write != reading;
}

}  // namespace

Unit* hold_for_records(std::int32_t number, bool reading, bool direct) {
    Unit* unit = acquire_unit(number);
    if (unit == nullptr) return nullptr;
    const IOStatus& status = unit->status;
    if ((direct ? goes_on_direct(*unit, reading) : goes_on(*unit, reading)) && !status.formatted &&
        (!status.transparent || status.stream)) {
        return unit;
    }
    release_unit(unit);
    return nullptr;
}

bool begin_quick_record(QuickRecord& record, Unit& unit, bool reading, std::int64_t number) {
    record.unit = &unit;
    record.number = number;
    record.reading = reading;
    record.framed = !unit.status.direct && !unit.status.stream;
    record.turned = unit.gnu.endian == Endian::swap;
    if (unit.gnu.native_records) return false;
    if (record.framed) {
        return has_usual_markers(unit) &&
               (reading ? find_framed(record) : find_room(record, usual_marker));
    }
    if (unit.status.direct) return reading ? find_numbered(record) : find_numbered_room(record);
    return reading ? find_bytes(record) : find_room(record, 0);
}

Statement* begin_records(Unit& unit, Caller& caller, bool reading, std::int64_t number) {
    caller.has_unit = true;
    return begin_unformatted_on(unit, caller, reading, number);
}

bool end_quick_record(QuickRecord& record) {
    Unit& unit = *record.unit;
    if (record.reading) {
        end_input(record);
    } else {
        const char* const end = record.number > 0 ? record.limit : record.cursor;
        const std::size_t markers = record.framed ? 2 * usual_marker : 0;
        const std::size_t whole = static_cast<std::size_t>(end - record.begin) + markers;
        // Writing the buffer out may fail.
        if (unit.file.write_index + whole > unit.file.capacity / 2) return false;
        end_output(record, whole);
    }
    release_unit(&unit);
    return true;
}

Statement* leave_quick_record(const QuickRecord& record, Caller& caller) {
    Statement* statement = begin_records(*record.unit, caller, record.reading, record.number);
    Statement& s = *statement;
    const std::ptrdiff_t passed = record.cursor - record.begin;
    if (record.reading && !record.framed) {
        const File& file = record.unit->file;
        s.begin = s.cursor = file.buffer + file.read_index;
        s.limit = s.begin + passed;
    }
    s.cursor += passed;
    return statement;
}

bool pass_turned(QuickRecord& record, char* item, std::size_t bytes, std::size_t unit) {
    if (static_cast<std::size_t>(record.limit - record.cursor) < bytes) return false;
    if (bytes == 0) return true;
    const char* const from = record.reading ? record.cursor : item;
    copy_turned(record.reading ? item : record.cursor, from, unit, bytes / unit);
    record.cursor += bytes;
    return true;
}

bool pass_row_quickly(QuickRecord& record, char* items, std::size_t bytes, std::size_t unit,
                      std::ptrdiff_t stride, std::size_t count) {
    const auto left = static_cast<std::size_t>(record.limit - record.cursor);
    std::size_t all = 0;
    if (__builtin_mul_overflow(bytes, count, &all) || all > left) return false;
    if (count == 1 || stride == static_cast<std::ptrdiff_t>(bytes)) {
        if (record.turned) return pass_turned(record, items, all, unit);
        char* const at = record.cursor;
        std::memcpy(record.reading ? items : at, record.reading ? at : items, all);
        record.cursor += all;
        return true;
    }
    for (; count > 0; --count, items += stride) pass_quickly(record, items, bytes, unit);
    return true;
}

}  // namespace tarn::fio
