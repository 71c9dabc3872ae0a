// Unformatted statements: how they begin, how their items go, how they end.
#include "fio/native/unformatted.h"

#include <algorithm>

#include "fio/native/connect.h"
#include "fio/native/record.h"

namespace tarn::fio::native {
namespace {

bool is_record_file(const Unit& unit) {
    return unit.kind == UnitKind::text || unit.kind == UnitKind::full;
}

// ---- Sequential statements ----

bool check_sequential(const Unit& unit) {
    const IOStatus& status = unit.status;
    if ((status.formatted || status.direct) && !IO_error(90)) return false;
    if (unit.kind == UnitKind::printer && !IO_error(190)) return false;
    if (status.end_of_file && !status.stream && !IO_error(104)) return false;
    if (is_record_file(unit) || unit.kind == UnitKind::console || is_driver(unit)) return true;
    return IO_error(90);
}

// Where other processes append too, what stands behind the end as it was known is theirs.
bool may_be_cut(const File& file) {
    return !(file.shared && file.logical_position >= file.size);
}

// A sequential WRITE makes its record the last one: what a READ, a REWIND or a BACKSPACE left
// behind the position goes.
bool place_write(IO_type& io) {
    Unit& unit = *io.unit;
    IOStatus& status = unit.status;
    if (!is_file_kind(unit.kind)) return true;
    std::int64_t position = 0;
    int err = 0;
    if (!status.reading && !status.writing && status.positioned_by_append) {
        sys_fileSeekToEOF(unit, position, err);
        status.positioned_by_append = false;
    }
    const bool cuts = !status.writing || status.after_backspace || status.after_rewind;
    if (err == 0 && cuts && !status.stream) {
        sys_getFilePos(unit, position, err);
        if (err == 0 && may_be_cut(unit.file)) sys_truncateFile(unit, false, err);
    }
    return err == 0 || report_file_error(err, "WrSeqUnf");
}

void set_direction(IO_type& io) {
    IOStatus& status = io.unit->status;
    status.reading = is_read(io.action);
    status.writing = !status.reading;
    status.after_backspace = status.after_rewind = false;
}

bool begin_sequential(IO_type& io) {
    Unit& unit = *io.unit;
    const bool reading = is_read(io.action);
    const bool allowed = reading ? unit.status.may_read : unit.status.may_write;
    if (!allowed && !IO_error(reading ? 208 : 139)) return false;
    if (is_gnu_file(unit)) return begin_gnu_record(io);
    if (reading ? !RSU2__() : !place_write(io)) return false;
    unit.status.end_of_file = false;
    set_direction(io);
    return true;
}

// ---- Direct statements ----

bool check_direct(const IO_type& io) {
    if (io.record_no < 1 && !IO_error(95)) return false;
    const Unit& unit = *io.unit;
    if (unit.status.formatted && !IO_error(90)) return false;
    if (!unit.status.direct && !IO_error(90)) return false;
    return is_record_file(unit) || is_driver(unit) || IO_error(129);
}

bool begin_direct(IO_type& io) {
    Unit& unit = *io.unit;
    if (is_gnu_file(unit)) return begin_gnu_record(io);
    const bool reading = is_read(io.action);
    unit.status.reading = reading;
    unit.status.writing = !reading;
    if (is_file_kind(unit.kind) && !IO_direct_access_position()) return false;
    if (reading) return RDU2__();
    io.record_end = io.record_start + std::min(io.buffer_size, unit.recl) - 1;
    return true;
}

// ---- Items ----

// Bytes of an item list; -1: more than there can be.
std::int64_t bytes_of(std::int64_t count, std::int64_t size, std::ptrdiff_t length) {
    std::int64_t bytes = 0;
    if (__builtin_mul_overflow(count, size < 0 ? -size : size, &bytes)) return -1;
    if (size == 1 && __builtin_mul_overflow(bytes, length, &bytes)) return -1;
    return bytes;
}

// POS= without items.
bool take_position(IO_type& io) {
    if (!is_stream(io) || io.record_no <= 0) return true;
    return adjust_stream_position(!is_read(io.action));
}

}  // namespace

void empty_buffer(IO_type& io) {
    io.record_start = io.record_cursor = io.buffer_start;
    io.record_end = io.record_start - 1;
}

void widen_buffer(IO_type& io, std::int64_t size) {
    if (size <= io.buffer_size) return;
    const bool doubles = io.buffer_size <= INT64_MAX / 2;
    IO_allocate_buffer(io, std::max(size, doubles ? 2 * io.buffer_size : size));
}

bool RSU1__() {
    IO_type& io = current();
    if (io.unit == nullptr) return IO_error(94) && IO_not_available("The unit is not connected");
    empty_buffer(io);
    io.statement_bytes = io.record_bytes = 0;
    io.multi_block = io.very_long = false;
    return check_sequential(*io.unit) && begin_sequential(io);
}

bool RDU1__() {
    IO_type& io = current();
    if (io.unit == nullptr) return IO_error(94) && IO_not_available("The unit is not connected");
    empty_buffer(io);
    io.statement_bytes = io.record_bytes = 0;
    io.multi_block = io.very_long = false;
    return check_direct(io) && begin_direct(io);
}

bool XSUX__(void* item, std::int64_t count, std::int32_t size, std::ptrdiff_t length) {
    IO_type& io = current();
    const std::int64_t bytes = bytes_of(count, size, length);
    if (bytes < 0) return IO_error(too_big_message) && false;
    auto* const at = static_cast<char*>(item);
    if (io.gnu_record != nullptr) {
        const std::int32_t unit = size < 0 ? -size : size;
        return unit == 0 || move_gnu_bytes(io, at, unit, bytes / unit);
    }
    if (!take_position(io)) return false;
    return is_read(io.action) ? take_bytes(io, at, bytes) : put_bytes(io, at, bytes);
}

bool END_RU__() {
    IO_type& io = current();
    if (io.gnu_record != nullptr) return end_gnu_record(io);
    if (!take_position(io)) return false;
    hand_over_to_gnu(*io.unit);
    return true;
}

}  // namespace tarn::fio::native
