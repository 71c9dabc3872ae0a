// Unformatted records on their way out. A record that the buffer holds leaves in one write. A
// longer one grows in the file behind a place for its header, which is written when the length is
// known; where nothing can be written twice the buffer grows instead.
#include <algorithm>
#include <cstring>
#include <limits>

#include "fio/file/native_frame.h"
#include "fio/native/connect.h"
#include "fio/native/record.h"
#include "fio/native/unformatted.h"

namespace tarn::fio::native {
namespace {

// Bytes that may be put before and behind the buffer's data.
static_assert(buffer_margin >= static_cast<std::ptrdiff_t>(long_frame));

bool is_framed(const IO_type& io) {
    return !is_direct(io.action) && !io.unit->status.transparent && !is_driver(*io.unit);
}

// Pipes can't be gone back in, a shared file belongs to others too, a driver wants whole records.
bool is_kept_whole(const IO_type& io) {
    const Unit& unit = *io.unit;
    if (is_driver(unit)) return true;
    return is_framed(io) && (!unit.file.seekable || unit.file.shared || unit.file.append);
}

bool report_write(const IO_type& io, int err) {
    return report_file_error(err, is_direct(io.action) ? "WrDirUnf" : "WrSeqUnf");
}

// A record that can't be completed is taken out of the file again.
void drop_started_record(IO_type& io) {
    // A direct record that was there keeps what was written over it; a new one goes.
    const bool new_direct =
        is_direct(io.action) && io.record_no > io.unit->highest_record && !is_driver(*io.unit);
    if (!io.multi_block && !new_direct) return;
    io.multi_block = false;
    std::int64_t position = 0;
    int err = 0;
    const std::int64_t start =
        new_direct ? (io.record_no - 1) * io.unit->recl : io.next_block_position;
    sys_fileSeek(*io.unit, start, position, err);
    if (err == 0) sys_truncateFile(*io.unit, false, err);
}

bool write_out(IO_type& io, const char* bytes, std::int64_t count) {
    int err = 0;
    sys_fileWrite(*io.unit, bytes, static_cast<std::size_t>(count), err);
    if (err == 0) return true;
    drop_started_record(io);
    return report_write(io, err) && false;
}

// Makes room in a full buffer.
bool flush_block(IO_type& io) {
    if (is_kept_whole(io)) {
        widen_buffer(io, io.buffer_size + 1);
        return true;
    }
    if (is_framed(io) && !io.multi_block) {
        constexpr char placeholder[long_frame] = {};
        std::int64_t position = 0;
        int err = 0;
        sys_getFilePos(*io.unit, position, err);
        if (err != 0) return report_write(io, err) && false;
        if (!write_out(io, placeholder, long_frame)) return false;
        io.next_block_position = position;  // where the record starts
        io.multi_block = true;
    }
    const std::int64_t count = buffered_bytes(io);
    if (!write_out(io, io.record_start, count)) return false;
    io.record_bytes += count;
    io.record_cursor = io.record_start;
    return true;
}

bool check_length(IO_type& io, std::int64_t& count) {
    const bool direct = is_direct(io.action);
    const std::int64_t longest = direct          ? io.unit->recl
                                 : is_framed(io) ? longest_long_record
                                                 : std::numeric_limits<std::int64_t>::max();
    if (count <= longest - io.statement_bytes) return true;
    if (IO_error(direct ? too_long_for_direct_message : too_big_message)) {
        count = longest - io.statement_bytes;
        return true;
    }
    drop_started_record(io);
    return false;
}

bool write_to_driver(IO_type& io, ActionCode operation) {
    const std::int64_t count = buffered_bytes(io);
    if (count > std::numeric_limits<std::int32_t>::max()) return IO_error(too_big_message);
    auto length = static_cast<std::int32_t>(count);
    return call_driver(*io.unit, operation, io.record_start, length, length);
}

// The bytes at hand with the frame before and behind them.
bool write_framed(IO_type& io, std::size_t frame, std::int64_t length) {
    const auto size = static_cast<std::int64_t>(frame);
    char* const front = io.record_start - (io.multi_block ? 0 : size);
    if (!io.multi_block) store_native_front(front, frame, length);
    store_native_back(io.record_cursor, frame, length);
    return write_out(io, front, io.record_cursor + size - front);
}

// The header of a record in parts, over its placeholder.
bool write_header(IO_type& io, std::int64_t length) {
    Unit& unit = *io.unit;
    char header[long_frame];
    store_native_front(header, long_frame, length);
    std::int64_t end = 0;
    std::int64_t position = 0;
    int err = 0;
    sys_getFilePos(unit, end, err);
    if (err == 0) sys_fileSeek(unit, io.next_block_position, position, err);
    if (err != 0) return report_write(io, err) && false;
    if (!write_out(io, header, long_frame)) return false;
    sys_fileSeek(unit, end, position, err);
    return err == 0 || (report_write(io, err) && false);
}

bool write_record(IO_type& io) {
    Unit& unit = *io.unit;
    const std::int64_t length = io.record_bytes + buffered_bytes(io);
    // Records of several processes go to the end of the file as it is then.
    if (unit.file.shared && unit.file.seekable)
        file_set_append(unit.file, unit.file.logical_position >= unit.file.size);
    if (!io.multi_block) return write_framed(io, native_frame_for(length), length);
    return write_header(io, length) && write_framed(io, long_frame, length);
}

// What the list left of a direct record is zero.
bool complete_direct(IO_type& io) {
    std::int64_t left = io.unit->recl - io.statement_bytes;
    do {
        const std::int64_t room = io.buffer_start + io.buffer_size - io.record_cursor;
        const std::int64_t zeros = std::min(left, room);
        std::memset(io.record_cursor, 0, static_cast<std::size_t>(zeros));
        io.record_cursor += zeros;
        left -= zeros;
        if (!write_out(io, io.record_start, buffered_bytes(io))) return false;
        io.record_cursor = io.record_start;
    } while (left > 0);
    return true;
}

}  // namespace

bool put_bytes(IO_type& io, const char* bytes, std::int64_t count) {
    if (!check_length(io, count)) return false;
    io.statement_bytes += count;
    while (count > 0) {
        const std::int64_t room = io.buffer_start + io.buffer_size - io.record_cursor;
        if (room == 0) {
            if (!flush_block(io)) return false;
            continue;
        }
        // More than the buffer holds, with nothing before it there, needn't pass through it.
        if (room == io.buffer_size && count > room && (io.multi_block || !is_framed(io)) &&
            !is_kept_whole(io)) {
            if (!write_out(io, bytes, count)) return false;
            io.record_bytes += count;
            break;
        }
        const std::int64_t piece = std::min(room, count);
        std::memcpy(io.record_cursor, bytes, static_cast<std::size_t>(piece));
        io.record_cursor += piece;
        bytes += piece;
        count -= piece;
    }
    return true;
}

bool WSU2__() {
    IO_type& io = current();
    if (io.gnu_record != nullptr) return end_gnu_record(io);
    Unit& unit = *io.unit;
    if (is_driver(unit)) {
        if (!write_to_driver(io, ActionCode::write_unformatted)) return false;
    } else if (unit.status.transparent) {
        if (is_stream(io) && io.record_no > 0 && !adjust_stream_position(true)) return false;
        if (!write_out(io, io.record_start, buffered_bytes(io))) return false;
        unit.file.stream_write_position = unit.file.logical_position + 1;
    } else if (!write_record(io)) {
        return false;
    }
    ++unit.current_record;
    hand_over_to_gnu(unit);
    return true;
}

bool WDU2__() {
    IO_type& io = current();
    if (io.gnu_record != nullptr) return end_gnu_record(io);
    Unit& unit = *io.unit;
    if (is_driver(unit)) {
        if (!write_to_driver(io, ActionCode::write_direct_unformatted)) return false;
    } else if (!complete_direct(io)) {
        return false;
    }
    unit.current_record = io.record_no;
    unit.highest_record = std::max(unit.highest_record, io.record_no);
    hand_over_to_gnu(unit);
    return true;
}

}  // namespace tarn::fio::native
