// Where the records of a direct file stand, formatted and unformatted.
#include <algorithm>
#include <cstring>

#include "fio/native/io_type.h"

namespace tarn::fio::native {
namespace {

constexpr unsigned char unformatted_fill = 0x80;
constexpr std::int64_t line_end_length = 2;

bool report(int err) {
    return IO_system_error(err, "IO_direct_access_position");
}

// Fills the file up to and with the record, for one that lies further behind the end than the
// next.
bool lengthen(IO_type& io, std::int64_t record_size, std::int64_t records) {
    Unit& unit = *io.unit;
    std::int64_t position = 0;
    int err = 0;
    sys_fileSeekToEOF(unit, position, err);
    if (err != 0) return report(err);
    if (record_size > io.buffer_size + line_end_length) IO_allocate_buffer(io, record_size);
    const bool formatted = is_direct_formatted(io.action);
    const auto size = static_cast<std::size_t>(record_size);
    std::memset(io.buffer_start, formatted ? ' ' : unformatted_fill, size);
    if (formatted) std::memcpy(io.buffer_start + size - 2, "\r\n", 2);
    for (; records > 0; --records) {
        sys_fileWrite(unit, io.buffer_start, size, err);
        if (err != 0) return report(err);
    }
    std::memset(io.buffer_start, 0, size);
    return true;
}

}  // namespace

bool IO_direct_access_position() {
    IO_type& io = current();
    Unit& unit = *io.unit;
    const bool formatted = is_direct_formatted(io.action);
    const std::int64_t record_size = unit.recl + (formatted ? line_end_length : 0);
    const std::int64_t gap = io.record_no - unit.highest_record;
    if (gap > 0 && is_read(io.action) && !IO_error(95)) return false;
    if (gap > 1 && is_write(io.action) && !lengthen(io, record_size, gap)) return false;
    std::int64_t target = 0;
    std::int64_t position = 0;
    int err = 0;
    if (__builtin_mul_overflow(io.record_no - 1, record_size, &target)) return IO_error(95);
    sys_fileSeek(unit, target, position, err);
    if (err != 0) return report(err);
    if (!formatted) io.record_end += record_size;
    unit.current_record = io.record_no;
    unit.highest_record = std::max(unit.highest_record, io.record_no);
    return true;
}

}  // namespace tarn::fio::native
