// Where the records of a direct file stand, formatted and unformatted.
#include <algorithm>
#include <cstring>

#include "fio/native/connect.h"

namespace tarn::fio::native {
namespace {

constexpr unsigned char unformatted_fill = 0x80;

bool report(int err) {
    return IO_system_error(err, "IO_direct_access_position");
}

// Fills the file up to and with the record, for one that lies further behind the end than the
// next. The fill goes out by the buffer, which a formatted record fits.
bool lengthen(IO_type& io, std::int64_t record_size, std::int64_t records) {
    Unit& unit = *io.unit;
    std::int64_t position = 0;
    std::int64_t left = 0;
    int err = 0;
    if (__builtin_mul_overflow(record_size, records, &left)) return IO_error(95) && false;
    sys_fileSeekToEOF(unit, position, err);
    if (err != 0) return report(err);
    const bool formatted = is_direct_formatted(io.action);
    const std::int64_t load = formatted ? record_size : std::min(left, io.buffer_size);
    const auto size = static_cast<std::size_t>(load);
    std::memset(io.buffer_start, formatted ? ' ' : unformatted_fill, size);
    if (formatted) std::memcpy(io.buffer_start + size - 2, "\r\n", 2);
    while (left > 0) {
        const std::int64_t piece = std::min(left, load);
        sys_fileWrite(unit, io.buffer_start, static_cast<std::size_t>(piece), err);
        if (err != 0) return report(err);
        left -= piece;
    }
    std::memset(io.buffer_start, 0, size);
    unit.highest_record = io.record_no;
    return true;
}

}  // namespace

bool IO_direct_access_position() {
    IO_type& io = current();
    Unit& unit = *io.unit;
    const bool formatted = is_direct_formatted(io.action);
    const std::int64_t record_size = direct_stride(unit);
    const std::int64_t gap = io.record_no - unit.highest_record;
    if (gap > 0 && is_read(io.action) && !IO_error(95)) return false;
    // A file that a gnu statement connected gets a hole instead.
    const bool fills = is_write(io.action) && !is_gnu_file(unit);
    if (gap > 1 && fills && !lengthen(io, record_size, gap)) return false;
    std::int64_t target = 0;
    int err = 0;
    if (__builtin_mul_overflow(io.record_no - 1, record_size, &target)) return IO_error(95);
    file_seek(unit.file, target, err);
    if (err != 0) return report(err);
    unit.current_record = io.record_no;
    // An unformatted record counts when it has been written: its list may yet be too long for it.
    if (formatted) unit.highest_record = std::max(unit.highest_record, io.record_no);
    return true;
}

}  // namespace tarn::fio::native
