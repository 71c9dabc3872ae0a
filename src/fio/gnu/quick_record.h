// The usual unformatted record: all of it lies in the unit's buffer, a sequential one with markers
// of four bytes, a direct one at its place, of a stream what the statement takes or gives.
//
// A few items go in or out by copies, and the statement leaves nothing behind that could fail. It
// does without a statement record, whose making and ending take several times as long as that.
// Whatever comes up that this road can't do, the statement goes on by the common one: nothing of
// the unit has changed before the end, but that what waited for another place has been written, so
// that one begins anew, and stands where this one stood.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fio/gnu/statement.h"
#include "fio/gnu/unformatted.h"

namespace tarn::fio {

struct QuickRecord {
    Unit* unit;
    char* begin;  // behind the marker in front
    char* cursor;
    char* limit;  // input: the record's end; output: of the room, which leaves some for a marker
    std::int64_t number;  // REC=, 0 where there is none
    bool reading;
    bool framed;  // by markers
    bool turned;  // the file has the other byte order
};

// The unit with this number, which is held then, if an unformatted statement that has no specifier
// but REC=, where `direct`, simply goes on there; one of the two below begins it. Null: it has to
// be begun in full.
Unit* hold_for_records(std::int32_t number, bool reading, bool direct);
// False, and nothing has happened: the record isn't of the usual kind. `number`: REC=, or 0.
bool begin_quick_record(QuickRecord& record, Unit& unit, bool reading, std::int64_t number);
Statement* begin_records(Unit& unit, Caller& caller, bool reading, std::int64_t number);
// False, and nothing has happened: `leave_quick_record` has to be called, and that statement's end.
bool end_quick_record(QuickRecord& record);
// The statement that goes on with the record.
Statement* leave_quick_record(const QuickRecord& record, Caller& caller);

// An item of some bytes, of which `unit` are a number of their own; false, and nothing has
// happened, where the record doesn't have them.
bool pass_turned(QuickRecord& record, char* item, std::size_t bytes, std::size_t unit);
inline bool pass_quickly(QuickRecord& record, char* item, std::size_t bytes, std::size_t unit) {
    if (record.turned) return pass_turned(record, item, bytes, unit);
    if (static_cast<std::size_t>(record.limit - record.cursor) < bytes) return false;
    copy_item(record.reading ? item : record.cursor, record.reading ? record.cursor : item, bytes);
    record.cursor += bytes;
    return true;
}

// `count` items of `bytes` bytes each, `stride` bytes apart.
bool pass_row_quickly(QuickRecord& record, char* items, std::size_t bytes, std::size_t unit,
                      std::ptrdiff_t stride, std::size_t count);

}  // namespace tarn::fio
