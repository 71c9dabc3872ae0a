#include "fio/native/record.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "fio/native/connect.h"
#include "fio/native/hooks.h"

namespace tarn::fio::native {
namespace {

constexpr std::int64_t list_line_length = 120;
constexpr std::int64_t transparent_length = 64;
constexpr std::int64_t fill_chunk = 64;
constexpr std::string_view line_end = "\r\n";

constexpr int error_device_full = 28;

bool is_transparent(const IO_type& io) {
    return !io.internal_file && io.unit->status.transparent;
}

// ---- The record length ----

std::int64_t choose_record_length(IO_type& io) {
    if (io.internal_file) return io.internal_record_length;
    Unit& unit = *io.unit;
    // A stream record ends at its line end, wherever that stands; the 64 characters are the
    // portions of a unit that has no lines.
    if (unit.status.transparent && !unit.status.stream) return transparent_length;
    const std::int64_t recl = unit_record_length(unit);
    if (io.format_ptr != nullptr || is_read(io.action)) return recl;
    // A line of a file with a fixed record length can't be longer than its records.
    return unit.status.fixed_record_length ? std::min(recl, list_line_length) : list_line_length;
}

// With a message about missing room ignored, the room is made.
void make_room(IO_type& io, std::int64_t count) {
    const std::int64_t need = io.record_cursor - io.record_start + count;
    if (need > io.buffer_size) IO_allocate_buffer(io, need);
    io.record_end = io.record_start + need - 1;
}

void fill_to(IO_type& io, std::int64_t count) {
    io.record_last = std::max(io.record_last, io.record_cursor - 1);
    const std::int64_t room = io.record_end - io.record_last;
    const std::int64_t added = std::min(std::max(count, fill_chunk), room);
    if (added <= 0) return;
    std::memset(io.record_last + 1, ' ', static_cast<std::size_t>(added));
    io.record_last += added;
}

bool report_short_record(const IO_type& io) {
    if (io.internal_file) return IO_error(67);
    if (is_direct(io.action)) return IO_error(68);
    return IO_error(io.unit->recl >= io.buffer_size ? 69 : 67);
}

// ---- Stream units ----

bool seek_stream(Unit& unit, std::int64_t target, bool write) {
    std::int64_t position = 0;
    int err = 0;
    sys_fileSeek(unit, target, position, err);
    if (err != 0) return false;
    if (position == target) return true;
    if (!write) return false;
    // Behind the end of the file: the hole that the record leaves reads as zero bytes.
    file_seek(unit.file, target, err);
    return err == 0;
}

// ---- Reading ----

void take_input(IO_type& io, std::ptrdiff_t length) {
    io.input_length = length;
    io.record_last = io.record_start + length - 1;
}

// A stream record, line end included: no more is taken from the file, so that it stands behind
// the record whatever the statement goes on to do.
bool read_stream_record(IO_type& io) {
    Unit& unit = *io.unit;
    constexpr std::size_t portion = 512;
    const auto capacity = static_cast<std::size_t>(io.record_length);
    std::size_t length = 0;
    int err = 0;
    std::int64_t position = 0;
    sys_getFilePos(unit, position, err);
    io.record_file_position = position;
    bool ended = false;
    while (err == 0 && !ended && length < capacity) {
        char* const place = io.record_start + length;
        const std::size_t wanted = std::min(portion, capacity - length);
        const std::size_t count = sys_fileRead(unit, place, wanted, err);
        if (err != 0 || count == 0) break;
        const auto* feed = static_cast<const char*>(std::memchr(place, '\n', count));
        ended = feed != nullptr;
        length += ended ? static_cast<std::size_t>(feed - place) + 1 : count;
    }
    if (ended && err == 0) {
        sys_fileSeek(unit, position + static_cast<std::int64_t>(length), position, err);
    }
    if (err != 0) return IO_system_error(err, "RdSeqFrm");
    if (length == 0) {
        io.end_of_input = true;
        unit.status.end_of_file = true;
        return true;
    }
    take_input(io, static_cast<std::ptrdiff_t>(length));
    ++unit.current_record;
    return true;
}

bool read_file_record(IO_type& io) {
    Unit& unit = *io.unit;
    const std::int64_t capacity = std::min(unit_record_length(unit), io.buffer_size);
    int err = 0;
    const std::ptrdiff_t length =
        sys_fileReadText(unit, io.record_start, static_cast<std::size_t>(capacity), err);
    if (err != 0) return IO_system_error(err, "RdSeqFrm");
    if (length < 0) {
        io.end_of_input = true;
        unit.status.end_of_file = true;
        return true;
    }
    take_input(io, length);
    // A direct record's number is known from its positioning.
    if (!is_direct(io.action)) ++unit.current_record;
    return true;
}

bool read_internal_record(IO_type& io) {
    if (io.internal_records_left <= 0) {
        io.end_of_input = true;
        return true;
    }
    const auto length = static_cast<std::size_t>(io.internal_record_length);
    std::memcpy(io.record_start, io.internal_cursor, length);
    --io.internal_records_left;
    io.internal_cursor += length;
    io.input_length = io.internal_record_length;
    return true;
}

bool read_console_record(IO_type& io) {
    Unit& unit = *io.unit;
    const std::int64_t capacity = std::min(unit_record_length(unit), io.buffer_size);
    const std::ptrdiff_t length =
        sys_consoleRead(io.record_start, static_cast<std::size_t>(capacity));
    if (length < 0) {
        io.end_of_input = true;
        if (unit.kind != UnitKind::console) unit.status.end_of_file = true;
        return true;
    }
    take_input(io, length);
    return true;
}

bool read_driver_record(IO_type& io) {
    std::int32_t length = 0;
    const auto capacity = static_cast<std::int32_t>(
        std::min<std::int64_t>(io.record_length, std::numeric_limits<std::int32_t>::max()));
    if (!call_driver(*io.unit, ActionCode::read_formatted, io.record_start, capacity, length)) {
        return false;
    }
    take_input(io, std::clamp(length, 0, capacity));
    return true;
}

// ---- Writing ----

// How a record leaves: as its statement says, or as a whole line, or as a part of a line.
enum class Ending : std::uint8_t { statement, line, part };

struct Output {
    const char* text;
    std::size_t length;
    bool ends_line;
};

void cut_trailing_blanks(Output& out) {
    while (out.length > 0 && out.text[out.length - 1] == ' ') --out.length;
}

bool report_write_error(int err) {
    if (err == error_device_full || err == error_disk_full) return IO_error(117);
    // Number 6 stands for every failure of a record write.
    return IO_system_error(6, "WrSeqFrm");
}

void write_bytes(Unit& unit, const Output& out, int& err) {
    if (out.ends_line) {
        sys_fileWriteText(unit, out.text, out.length, err);
    } else {
        sys_fileWrite(unit, out.text, out.length, err);
    }
}

bool write_window_record(IO_type& io, Output out) {
    const Hooks& window = hooks();
    Unit& unit = *io.unit;
    char* const start = io.record_start;
    if (out.ends_line) {
        cut_trailing_blanks(out);
        std::memcpy(start + out.length, line_end.data(), line_end.size());
        out.length += line_end.size();
    }
    if (unit.window_target == 0) {
        if (window.window_write == nullptr)
            return IO_not_available("Text windows are not available");
        if (window.window_flush != nullptr) window.window_flush();
        window.window_write(unit.driver, start, out.length);
        return true;
    }
    if (window.edit_box_insert == nullptr) return IO_not_available("Edit boxes are not available");
    start[out.length] = '\0';
    window.edit_box_insert(unit.driver, start);
    return true;
}

int write_console_record(const Output& out) {
    if (hooks().window_flush != nullptr) hooks().window_flush();
    std::string_view text(out.text, out.length);
    if (!out.ends_line) return sys_consoleWrite(text);
    return sys_consoleWriteLine(text == " " ? std::string_view() : text);
}

bool write_unit_record(IO_type& io, Output out) {
    Unit& unit = *io.unit;
    int err = 0;
    switch (unit.kind) {
        case UnitKind::text:
        case UnitKind::full:
            write_bytes(unit, out, err);
            break;
        case UnitKind::printer:
            write_printer_record(unit, out.text, out.length, err);
            break;
        case UnitKind::driver: {
            if (unit.number == -1) return true;
            const auto length = static_cast<std::int32_t>(out.length);
            std::int32_t told = length;
            return call_driver(unit, ActionCode::write_formatted, io.record_start, length, told);
        }
        case UnitKind::window:
            return write_window_record(io, out);
        case UnitKind::console:
            err = write_console_record(out);
            break;
        default:
            break;
    }
    return err == 0 || report_write_error(err);
}

bool write_internal_record(IO_type& io) {
    if (io.internal_records_left <= 0) return IO_error(89);
    --io.internal_records_left;
    const auto length = static_cast<std::size_t>(io.internal_record_length);
    std::memcpy(io.internal_cursor, io.record_start, length);
    io.internal_cursor += length;
    return true;
}

// A record of fixed length leaves whole: what the statement didn't reach is blank.
std::int64_t complete_fixed_record(IO_type& io, std::int64_t length) {
    length = std::min(length, io.buffer_size);
    const std::int64_t filled = io.record_last - io.record_start + 1;
    if (length > filled) {
        std::memset(io.record_start + filled, ' ', static_cast<std::size_t>(length - filled));
        io.record_last = io.record_start + length - 1;
    }
    io.high_water = std::max(io.high_water, io.record_start + length);
    return length;
}

bool write_record(IO_type& io, Ending ending) {
    if (io.internal_file) return write_internal_record(io);
    Unit& unit = *io.unit;
    const bool direct = is_direct(io.action);
    const bool ends_line =
        direct ? !is_gnu_file(unit)
               : ending == Ending::line ||
                     (ending == Ending::statement && !io.non_advancing && !io.no_line_end);
    if (!direct && ending != Ending::part) ++unit.current_record;
    std::int64_t length = io.high_water - io.record_start;
    if (direct) {
        length = complete_fixed_record(io, unit.recl);
    } else if (unit.status.fixed_record_length) {
        if (ends_line) length = complete_fixed_record(io, unit.recl - io.edit.columns_before);
    } else if (unit.status.after_backspace && !IO_error(137)) {
        return false;
    }
    Output out{io.record_start, static_cast<std::size_t>(std::max<std::int64_t>(length, 0)),
               ends_line};
    if (unit.status.transparent && ends_line) {
        // Here the line end is data: a stream's own, or what a slash asked for.
        out.ends_line = false;
        if (unit.status.stream || ending == Ending::line) {
            std::memcpy(io.record_start + out.length, line_end.data(), line_end.size());
            out.length += line_end.size();
        }
    }
    if (unit.kind == UnitKind::text && !io.non_advancing && ending != Ending::part) {
        cut_trailing_blanks(out);
    }
    io.output_start = io.record_start;
    // A line on a screen may have been ended by the reader's own key: columns count anew there.
    const bool counts = !ends_line && !io.no_line_end && is_file_kind(unit.kind);
    io.edit.columns_before = counts ? io.edit.columns_before + length : 0;
    unit.unfinished_line = io.edit.columns_before;
    if (!write_unit_record(io, out)) return false;
    if (unit.status.stream) unit.file.stream_write_position = unit.file.logical_position + 1;
    return true;
}

void empty_record(IO_type& io) {
    io.record_start = io.record_cursor = io.high_water = io.buffer_start;
    io.record_end = io.record_start + io.record_length - 1;
    io.record_last = io.record_start - 1;
    io.input_length = 0;
    io.edit.pending_skip = 0;
}

}  // namespace

// ---- Starting a record ----

bool IO_initialise_formatted_io() {
    IO_type& io = current();
    io.record_length = choose_record_length(io);
    if (io.record_length > io.buffer_size) {
        if (!IO_error(69)) return false;
        IO_allocate_buffer(io, io.record_length);
    }
    return do_formatted_io_initialisation();
}

bool do_formatted_io_initialisation() {
    IO_type& io = current();
    io.edit.repeat_left = 0;
    empty_record(io);
    const bool direct = is_direct(io.action);
    if (direct && is_file_kind(io.unit->kind) && !IO_direct_access_position()) return false;
    if (!is_read(io.action)) {
        const bool whole = direct || io.internal_file || io.unit->status.fixed_record_length;
        const std::int64_t fill = whole ? io.record_length : std::min(io.record_length, fill_chunk);
        std::memset(io.record_start, ' ', static_cast<std::size_t>(fill));
        io.record_last = io.record_start + fill - 1;
        if (io.format_ptr == nullptr && io.namelist_table == nullptr) {
            ++io.record_cursor;
            ++io.high_water;
        }
        if (is_stream(io) && !adjust_stream_position1(true)) return false;
        if (io.internal_file) return true;
        IO_restore_buffer();
        io.edit.columns_before = direct ? 0 : io.unit->unfinished_line;
        if (io.unit->status.fixed_record_length) {
            io.record_end -= std::min(io.edit.columns_before, io.record_length);
        }
        return true;
    }
    io.record_last = io.record_end;
    if (is_stream(io)) {
        if (!adjust_stream_position1(false) || !RSF3__()) return false;
    } else if (is_transparent(io)) {
        io.record_last = io.record_start - 1;
        return true;
    } else if (!io.internal_file && io.unit->saved_length > 0) {
        IO_restore_buffer();
    } else if (!RSF3__()) {
        return false;
    }
    return !io.end_of_input || IO_end_of_file();
}

// ---- Records in and out ----

bool RSF3__() {
    IO_type& io = current();
    if (io.internal_file) return read_internal_record(io);
    switch (io.unit->kind) {
        case UnitKind::text:
        case UnitKind::full:
            return io.unit->status.stream ? read_stream_record(io) : read_file_record(io);
        case UnitKind::driver:
            return read_driver_record(io);
        case UnitKind::printer:
            if (!IO_error(190)) return false;
            io.end_of_input = true;
            return true;
        default:
            return read_console_record(io);
    }
}

bool WSF3__() {
    return write_record(current(), Ending::statement);
}

namespace {

bool next_record(IO_type& io, Ending ending) {
    if (is_direct(io.action)) ++io.record_no;
    if (!is_read(io.action)) {
        const bool formatted = io.format_ptr != nullptr;
        io.high_water = formatted ? std::max(io.record_cursor, io.high_water) : io.record_cursor;
        io.no_line_end = false;
        if (!write_record(io, ending)) return false;
    }
    return do_formatted_io_initialisation();
}

}  // namespace

bool IO_process_format_reversion() {
    IO_type& io = current();
    // A transparent unit has no lines, unless the statement writes them itself.
    const bool lines = !is_transparent(io) || io.unit->status.stream || io.non_advancing;
    return next_record(io, lines ? Ending::line : Ending::statement);
}

bool process_slashes(std::int32_t count) {
    IO_type& io = current();
    if (is_read(io.action) && is_transparent(io) && !io.unit->status.stream) {
        return process_trailing_slash(count);
    }
    for (; count > 0; --count) {
        if (!next_record(io, Ending::line)) return false;
    }
    return true;
}

bool process_trailing_slash(std::int32_t count) {
    IO_type& io = current();
    for (; count > 0; --count) {
        char c = '\0';
        while (c != '\n') {
            int err = 0;
            if (sys_fileRead(*io.unit, &c, 1, err) == 1) continue;
            return err != 0 ? IO_system_error(err, "IO_process_format") : IO_end_of_file();
        }
    }
    return true;
}

bool write_part_of_line(IO_type& io) {
    io.high_water = std::max(io.record_cursor, io.high_water);
    if (!write_record(io, Ending::part)) return false;
    empty_record(io);
    return true;
}

// ---- Room ----

bool IO_spacefill_buffer(std::int64_t count) {
    IO_type& io = current();
    io.spaced_record = true;
    if (is_read(io.action)) {
        const bool pads = !(io.unit->status.formatted && io.unit->status.pad_no);
        if (!pads) return io.non_advancing ? IO_end_of_record() : IO_error(215);
        // The item at hand gets its blanks before the statement ends.
        if (io.non_advancing) io.edit.end_of_record = true;
    }
    if (!require_room(io, count)) return false;
    fill_to(io, count);
    return true;
}

bool require_room(IO_type& io, std::int64_t count) {
    if (count <= room_to_record_end(io)) return true;
    if (!report_short_record(io)) return false;
    make_room(io, count);
    return true;
}

bool Fix_buffer_end_pointer(std::int64_t width) {
    IO_type& io = current();
    if (io.record_end != io.record_last) return false;
    if (io.record_cursor - io.record_start + width > io.buffer_size) return false;
    io.record_end = io.record_cursor + width - 1;
    return true;
}

const char* data_end(const IO_type& io) {
    const char* end = io.record_last + 1;
    if (!is_stream(io) || end <= io.record_start || end[-1] != '\n') return end;
    --end;
    return end > io.record_start && end[-1] == '\r' ? end - 1 : end;
}

bool reserve_list_field(IO_type& io, std::int64_t width) {
    if (width > room_to_record_end(io) && !IO_process_format_reversion()) return false;
    return reserve_field(io, width);
}

bool put_text(IO_type& io, std::string_view text) {
    const auto count = static_cast<std::int64_t>(text.size());
    if (!reserve_field(io, count)) return false;
    std::memcpy(io.record_cursor, text.data(), text.size());
    io.record_cursor += count;
    return true;
}

// ---- Stream units ----

bool adjust_stream_position1(bool write) {
    IO_type& io = current();
    Unit& unit = *io.unit;
    if (unit.status.read_mode == write) {
        if (!write) sys_flushWriteBuffer(unit);
        unit.status.read_mode = !write;
    }
    if (io.record_no <= 0) return true;
    if (!seek_stream(unit, io.record_no - 1, write) && !IO_error(450)) return false;
    (write ? unit.file.stream_write_position : unit.file.stream_read_position) = io.record_no;
    io.record_no = 0;
    return true;
}

bool adjust_stream_position(bool write) {
    return adjust_stream_position1(write);
}

}  // namespace tarn::fio::native
