// Unformatted records on their way in. No length of a file is believed: each is checked against its
// twin at the record's other end, and no more is taken from a record than the file has given.
#include <algorithm>
#include <cstring>
#include <limits>

#include "fio/file/native_frame.h"
#include "fio/native/connect.h"
#include "fio/native/record.h"
#include "fio/native/unformatted.h"

namespace tarn::fio::native {
namespace {

// An ignored message leaves a record without data.
bool report_corrupt(IO_type& io) {
    empty_buffer(io);
    io.record_bytes = 0;
    io.multi_block = false;
    return IO_error(corrupt_message);
}

// Reads `count` bytes; false: fewer, and `go_on` tells whether the statement goes on regardless.
bool read_whole(IO_type& io, char* bytes, std::int64_t count, bool& go_on) {
    int err = 0;
    const auto wanted = static_cast<std::size_t>(count);
    const std::size_t got = sys_fileRead(*io.unit, bytes, wanted, err);
    if (got == wanted && err == 0) return true;
    go_on = err != 0 ? report_file_error(err, "RdSeqUnf") : report_corrupt(io);
    return false;
}

bool seek(Unit& unit, std::int64_t target, bool& go_on) {
    std::int64_t position = 0;
    int err = 0;
    sys_fileSeek(unit, target, position, err);
    if (err == 0 && position == target) return true;
    go_on = err != 0 ? report_file_error(err, "RdSeqUnf") : report_corrupt(current());
    return false;
}

// The length of the record from its first bytes. A record that isn't there is the end of the file.
bool read_front(IO_type& io, std::size_t& frame, bool& go_on) {
    char front[very_long_frame];
    int err = 0;
    if (sys_fileRead(*io.unit, front, 1, err) != 1) {
        go_on = err != 0 ? report_file_error(err, "RdSeqUnf") : IO_end_of_file();
        return false;
    }
    frame = native_frame_size(static_cast<unsigned char>(front[0]));
    if (frame == 0) {
        go_on = report_corrupt(io);
        return false;
    }
    if (!read_whole(io, front + 1, static_cast<std::int64_t>(frame) - 1, go_on)) return false;
    io.record_bytes = load_native_front(front, frame);
    if (io.record_bytes >= 0) return true;
    go_on = report_corrupt(io);
    return false;
}

// A record that fits the buffer, with what stands behind it: one read.
bool read_single(IO_type& io, std::size_t frame, bool& go_on) {
    const std::int64_t length = io.record_bytes;
    const auto behind = static_cast<std::int64_t>(frame);
    if (!read_whole(io, io.record_start, length + behind, go_on)) return false;
    if (load_native_back(io.record_start + length, frame) == length) return true;
    go_on = report_corrupt(io);
    return false;
}

// Where nothing can be sought, the whole record has to pass: the buffer grows with what arrives.
bool read_unseekable(IO_type& io, std::size_t frame, bool& go_on) {
    const std::int64_t length = io.record_bytes;
    std::int64_t end = 0;
    if (__builtin_add_overflow(length, static_cast<std::int64_t>(frame), &end)) {
        go_on = report_corrupt(io);
        return false;
    }
    for (std::int64_t done = 0; done < end;) {
        const std::int64_t wanted = std::min(end - done, io.buffer_size);
        widen_buffer(io, done + wanted);
        if (!read_whole(io, io.record_start + done, wanted, go_on)) return false;
        done += wanted;
    }
    io.multi_block = false;
    if (load_native_back(io.record_start + length, frame) == length) return true;
    go_on = report_corrupt(io);
    return false;
}

// Brings the next load of a record in parts to the buffer; the file then stands behind the record.
bool load_block(IO_type& io, std::int64_t data_end, bool& go_on) {
    const std::int64_t load = std::min(io.buffer_size, data_end - io.next_block_position);
    if (!seek(*io.unit, io.next_block_position, go_on)) return false;
    if (!read_whole(io, io.buffer_start, load, go_on)) return false;
    io.next_block_position += load;
    io.record_cursor = io.record_start;
    io.record_end = io.record_start + load - 1;
    return true;
}

bool read_in_parts(IO_type& io, std::size_t frame, bool& go_on) {
    Unit& unit = *io.unit;
    std::int64_t position = 0;
    int err = 0;
    sys_getFilePos(unit, position, err);
    if (err != 0) {
        go_on = report_file_error(err, "RdSeqUnf");
        return false;
    }
    io.multi_block = true;
    io.very_long = frame == very_long_frame;
    io.next_block_position = position;
    std::int64_t data_end = 0;
    if (__builtin_add_overflow(position, io.record_bytes, &data_end) ||
        __builtin_add_overflow(data_end, static_cast<std::int64_t>(frame),
                               &io.record_end_position)) {
        go_on = report_corrupt(io);
        return false;
    }
    // First what is behind the record: a length that is wrong is found out before data are taken.
    char back[very_long_frame];
    if (!seek(unit, data_end, go_on)) return false;
    if (!read_whole(io, back, static_cast<std::int64_t>(frame), go_on)) return false;
    if (load_native_back(back, frame) != io.record_bytes) {
        go_on = report_corrupt(io);
        return false;
    }
    if (!load_block(io, data_end, go_on)) return false;
    return seek(unit, io.record_end_position, go_on);
}

bool read_from_driver(IO_type& io, ActionCode operation) {
    std::int32_t length = 0;
    const auto capacity = static_cast<std::int32_t>(
        std::min<std::int64_t>(io.buffer_size, std::numeric_limits<std::int32_t>::max()));
    if (!call_driver(*io.unit, operation, io.record_start, capacity, length)) return false;
    io.record_bytes = length;
    io.record_end = io.record_start + length - 1;
    return true;
}

// The rest of an item behind what the buffer had: another load, or the bytes straight into the item
// when they are more than that.
bool take_more(IO_type& io, char* bytes, std::int64_t count, bool& go_on) {
    Unit& unit = *io.unit;
    const bool direct = is_direct(io.action);
    const auto frame = static_cast<std::int64_t>(direct         ? 0
                                                 : io.very_long ? very_long_frame
                                                                : long_frame);
    if (count >= io.buffer_size) {
        if (!direct && !seek(unit, io.next_block_position, go_on)) return false;
        if (!read_whole(io, bytes, count, go_on)) return false;
        io.next_block_position += count;
        io.record_end = io.record_cursor - 1;
    } else if (direct) {
        const std::int64_t left = io.record_bytes - io.statement_bytes + count;
        const std::int64_t load = std::min(io.buffer_size, left);
        if (!read_whole(io, io.buffer_start, load, go_on)) return false;
        io.record_cursor = io.record_start;
        io.record_end = io.record_start + load - 1;
    } else if (!load_block(io, io.record_end_position - frame, go_on)) {
        return false;
    }
    return direct || seek(unit, io.record_end_position, go_on);
}

bool take_transparent(IO_type& io, char* bytes, std::int64_t count) {
    Unit& unit = *io.unit;
    int err = 0;
    const auto wanted = static_cast<std::size_t>(count);
    const std::size_t got = sys_fileRead(unit, bytes, wanted, err);
    unit.file.stream_read_position = unit.file.logical_position + 1;
    if (err != 0) return report_file_error(err, "RdSeqUnf");
    return got == wanted || IO_end_of_file();
}

}  // namespace

bool RSU2__() {
    IO_type& io = current();
    Unit& unit = *io.unit;
    if (is_driver(unit)) return read_from_driver(io, ActionCode::read_unformatted);
    if (unit.status.transparent) return true;
    bool go_on = true;
    std::size_t frame = 0;
    if (!read_front(io, frame, go_on)) return go_on;
    bool whole = false;
    if (frame != very_long_frame && io.record_bytes <= io.buffer_size) {
        whole = read_single(io, frame, go_on);
    } else if (unit.file.seekable) {
        whole = read_in_parts(io, frame, go_on);
    } else {
        whole = read_unseekable(io, frame, go_on);
    }
    if (!whole) return go_on;
    if (!io.multi_block) io.record_end = io.record_start + io.record_bytes - 1;
    ++unit.current_record;
    return true;
}

bool RDU2__() {
    IO_type& io = current();
    Unit& unit = *io.unit;
    if (is_driver(unit)) return read_from_driver(io, ActionCode::read_direct_unformatted);
    io.record_bytes = unit.recl;
    const std::int64_t load = std::min(io.record_bytes, io.buffer_size);
    int err = 0;
    const auto got = static_cast<std::int64_t>(
        sys_fileRead(unit, io.record_start, static_cast<std::size_t>(load), err));
    if (err != 0) return report_file_error(err, "RdDirUnf");
    if (got < load) return report_corrupt(io);  // the file has become shorter since
    io.record_end = io.record_start + load - 1;
    unit.current_record = io.record_no;
    return true;
}

bool take_bytes(IO_type& io, char* bytes, std::int64_t count) {
    if (io.unit->status.transparent) return take_transparent(io, bytes, count);
    if (count > io.record_bytes - io.statement_bytes) {
        const bool direct = is_direct(io.action);
        if (!IO_error(direct ? too_long_for_direct_message : too_short_message)) return false;
        count = io.record_bytes - io.statement_bytes;
    }
    io.statement_bytes += count;
    while (count > 0) {
        const std::int64_t ready = std::min(count, io.record_end - io.record_cursor + 1);
        std::memcpy(bytes, io.record_cursor, static_cast<std::size_t>(ready));
        io.record_cursor += ready;
        bytes += ready;
        count -= ready;
        if (count == 0) break;
        bool go_on = true;
        const bool past_buffer = count >= io.buffer_size;
        if (!take_more(io, bytes, count, go_on)) return go_on;
        if (past_buffer) break;
    }
    return true;
}

}  // namespace tarn::fio::native
