// The statement's set-up, and the walk through its format in step with the items.
#include "fio/native/transfer.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "fio/native/connect.h"
#include "fio/native/format.h"
#include "fio/native/format_parser.h"
#include "fio/native/format_stream.h"
#include "fio/native/record.h"

namespace tarn::fio::native {
namespace {

// So many steps may pass without a data item, a text or a record: groups within groups of nothing
// but moves could otherwise keep a statement busy for years.
constexpr std::int64_t idle_steps = std::int64_t{1} << 24;

// ---- Formats at hand ----

// The format of a statement, one for each level of nesting. A run-time format that comes again is
// not parsed again.
struct PreparedFormat {
    Format format;
    std::string source;
    bool strict = false;
    bool parsed = false;  // from `source`
    PreparedFormat* deeper = nullptr;
};

PreparedFormat& prepared_format() {
    static constinit PreparedFormat* first = nullptr;
    PreparedFormat** place = &first;
    for (std::int32_t depth = std::max(state().io_depth, 0);; --depth) {
        if (*place == nullptr) *place = new PreparedFormat;
        if (depth == 0) return **place;
        place = &(*place)->deeper;
    }
}

std::string_view format_text(const IO_type& io) {
    if (io.format_text == nullptr) return {};
    if (io.format_text_length < 0) return io.format_text;
    return {io.format_text, static_cast<std::size_t>(io.format_text_length)};
}

bool prepare_format(IO_type& io) {
    PreparedFormat& prepared = prepared_format();
    if (io.run_time_format) {
        const std::string_view text = format_text(io);
        const bool strict = state().ansi_mode;
        if (!prepared.parsed || prepared.strict != strict || prepared.source != text) {
            prepared.parsed = false;
            if (!parse_format(text, strict, IO_error, prepared.format)) return false;
            prepared.source = text;
            prepared.strict = strict;
            prepared.parsed = true;
        }
        io.run_time_format = false;
    } else {
        prepared.parsed = false;
        const std::int32_t message = decode_format(io.format_ptr, io.format_end, prepared.format);
        if (message != 0) {
            if (!IO_error(message)) return false;
            // What can't be run is left out: the statement has no format to speak of.
            prepared.format.clear();
            prepared.format.steps.resize(1);
        }
    }
    io.edit.format = &prepared.format;
    io.edit.step = 0;
    return true;
}

// ---- Set-up ----

bool has_format(const IO_type& io) {
    return io.format_ptr != nullptr || io.run_time_format;
}

bool check_advance(IO_type& io, std::string_view advance) {
    if (!has_format(io) && !IO_error(214)) return false;
    const std::int32_t word = IO_find_list_entry(advance, "YES NO ");
    if (word == -1 && !IO_error(213)) return false;
    io.non_advancing = word == 2;
    return true;
}

bool check_compiled_format(IO_type& io) {
    if (io.run_time_format) {
        // From here on a null format_ptr means list-directed.
        static constexpr std::uint16_t text_stands_for_it = 0;
        io.format_ptr = &text_stands_for_it;
        return true;
    }
    if (io.format_ptr == nullptr) return true;
    std::uint16_t first = 0;
    const bool empty = io.format_end != nullptr && io.format_end <= io.format_ptr;
    if (!empty) std::memcpy(&first, io.format_ptr, sizeof first);
    return first == stream_start || IO_error(83);
}

// POS= puts a stream WRITE into the middle of what is there: that isn't the place to cut.
bool is_placed(const IO_type& io) {
    return is_stream(io) && io.record_no > 0;
}

// The first transfer after the unit's connection or a REWIND.
bool begin_direction(IO_type& io) {
    Unit& unit = *io.unit;
    IOStatus& status = unit.status;
    if (is_read(io.action)) {
        if (!status.may_read && !IO_error(208)) return false;
        if (!is_file_kind(unit.kind)) return true;
        status.writing = status.after_rewind = status.after_backspace = false;
        status.reading = status.read_mode = true;
        return true;
    }
    if (!status.may_write && !IO_error(139)) return false;
    if (is_file_kind(unit.kind) && !status.positioned_by_append && !is_placed(io)) {
        std::int64_t position = 0;
        int err = 0;
        sys_getFilePos(unit, position, err);
        if (err == 0 && position == 0) sys_truncateFile(unit, true, err);
        if (err != 0) return IO_system_error(err, "WrSeqFrm");
    }
    status.reading = status.writing = true;
    return true;
}

bool check_direction(IO_type& io) {
    IOStatus& status = io.unit->status;
    if (!status.reading && !status.writing) return begin_direction(io);
    const bool reading = is_read(io.action);
    if (reading ? status.reading : status.writing) return true;
    // A unit that was opened for one direction has its flag from the start.
    const bool allowed = reading ? status.may_read : status.may_write;
    if (!allowed && !IO_error(reading ? 208 : 139)) return false;
    status.reading = status.writing = true;
    return true;
}

// A sequential WRITE ends the file behind itself.
bool cut_file(IO_type& io) {
    Unit& unit = *io.unit;
    IOStatus& status = unit.status;
    if (is_read(io.action)) {
        unit.unfinished_line = 0;
        return true;
    }
    if (!is_file_kind(unit.kind) || is_placed(io)) return true;
    if (!status.read_mode && !status.after_backspace && !status.after_rewind) return true;
    unit.unfinished_line = 0;
    status.read_mode = status.after_backspace = status.after_rewind = false;
    int err = 0;
    sys_truncateFile(unit, false, err);
    return err == 0 || IO_system_error(err, "WrSeqFrm");
}

bool check_external(IO_type& io) {
    const IOStatus& status = io.unit->status;
    if (!status.formatted && !IO_error(90)) return false;
    if (is_direct(io.action)) {
        if (!status.direct && !IO_error(90)) return false;
        if (io.record_no < 1 && !IO_error(95)) return false;
    } else {
        if (status.direct && !IO_error(90)) return false;
        if (io.record_no > 0 && !status.stream && !IO_error(90)) return false;
        if (!take_direction(io)) return false;
    }
    io.blank_null = status.blank_null;
    return true;
}

// ---- The walk ----

// Applies a move to the right: only now is anything put where it led across.
bool move_right(IO_type& io, std::int64_t distance) {
    if (is_read(io.action) && is_stream(io)) {
        const std::int64_t rest = data_end(io) - io.record_cursor;
        io.record_cursor += std::clamp<std::int64_t>(rest, 0, distance);
        return true;
    }
    if (is_read(io.action) && io.internal_file && distance > room_to_record_end(io)) {
        Fix_buffer_end_pointer(distance);
    }
    if (!reserve_field(io, distance)) return false;
    io.record_cursor += distance;
    return true;
}

bool apply_pending_skip(IO_type& io) {
    const std::int64_t distance = io.edit.pending_skip;
    io.edit.pending_skip = 0;
    return distance == 0 || move_right(io, distance);
}

// Column `column` of the record, counted from 0 at its start.
bool move_to(IO_type& io, std::int64_t column) {
    const std::int64_t here = io.record_cursor - io.record_start;
    const std::int64_t distance = std::max<std::int64_t>(column, 0) - here;
    if (distance > 0 && !io.non_advancing) {
        io.edit.pending_skip = distance;
        return true;
    }
    io.edit.pending_skip = 0;
    if (distance > 0) return move_right(io, distance);
    io.high_water = std::max(io.record_cursor, io.high_water);
    io.record_cursor += distance;
    return true;
}

bool move(IO_type& io, const FormatStep& step) {
    const std::int64_t here = io.record_cursor - io.record_start + io.edit.pending_skip;
    const std::int64_t n = step.repeat;
    switch (step.op) {
        case op_T:
            return move_to(io, n - 1 - io.edit.columns_before);
        case op_TL:
            return move_to(io, here - n);
        default:
            return move_to(io, here + n);
    }
}

bool put_literal(IO_type& io, std::string_view text) {
    if (!apply_pending_skip(io)) return false;
    if (!reserve_field(io, static_cast<std::int64_t>(text.size()))) return false;
    std::memcpy(io.record_cursor, text.data(), text.size());
    return true;
}

bool run_literal(IO_type& io, const FormatStep& step) {
    if (is_read(io.action)) return IO_error(71);
    if (!put_literal(io, io.edit.format->text_of(step))) return false;
    io.record_cursor += step.length;
    io.high_water = std::max(io.record_cursor, io.high_water);
    return true;
}

// The picture goes into the record, where the item routine works on it.
bool run_business(IO_type& io, const FormatStep& step) {
    EngineState& edit = io.edit;
    if (is_read(io.action)) {
        if (!IO_error(136)) return false;
    } else if (io.items_pending && !put_literal(io, edit.format->text_of(step))) {
        return false;
    }
    edit.field_width = static_cast<std::int32_t>(step.length);
    edit.repeat_left = 0;
    edit.saw_repeatable = true;
    return true;
}

void take_data_descriptor(EngineState& edit, const FormatStep& step) {
    edit.saw_repeatable = true;
    edit.repeat_left = std::max(step.repeat, 1) - 1;
    edit.field_width = step.w;
    edit.d = edit.m = edit.e = absent;
    switch (step.op) {
        case op_Z:
            edit.edit_code = edit_Z;
            [[fallthrough]];
        case op_I:
        case op_B:
        case op_O:
            edit.m = step.d;
            break;
        default:
            edit.d = step.d;
            edit.e = step.e;
            break;
    }
}

bool open_group(EngineState& edit, const FormatStep& step) {
    if (step.level > max_levels) return IO_error(109);
    edit.repeat_counters[step.level - 1] = step.repeat;
    return true;
}

void close_group(EngineState& edit, const FormatStep& step) {
    if (step.level > max_levels) return;
    std::int32_t& counter = edit.repeat_counters[step.level - 1];
    if (counter > 0) --counter;
    if (counter >= 1) edit.step = step.link + 1;
}

enum class Walk : std::uint8_t { on, data, stop, fail };

Walk go_on(bool done) {
    return done ? Walk::on : Walk::fail;
}

Walk end_format(IO_type& io, const FormatStep& step) {
    EngineState& edit = io.edit;
    if (!io.items_pending) return Walk::stop;
    if (step.op == op_stop) return IO_error(83) ? Walk::stop : Walk::fail;
    if (!edit.saw_repeatable) return IO_error(59) ? Walk::stop : Walk::fail;
    // The part that comes again must have a descriptor for the items that wait.
    edit.saw_repeatable = false;
    edit.step = step.link;
    return go_on(IO_process_format_reversion());
}

Walk run_step(IO_type& io, const FormatStep& step) {
    EngineState& edit = io.edit;
    switch (step.op) {
        case op_BN:
        case op_BZ:
            io.blank_null = step.op == op_BN;
            return Walk::on;
        case op_hollerith:
        case op_quoted:
            return go_on(run_literal(io, step));
        case op_business:
            return run_business(io, step) ? Walk::data : Walk::fail;
        case op_slash:
            return go_on(process_slashes(step.repeat));
        case op_colon:
            return io.items_pending ? Walk::on : Walk::stop;
        case op_P:
            edit.scale_factor = step.repeat;
            return Walk::on;
        case op_SS:
        case op_SP:
        case op_S:
            edit.sign_mode = step.op == op_SS ? -1 : step.op == op_SP ? 1 : 0;
            return Walk::on;
        case op_T:
        case op_TL:
        case op_TR:
        case op_X:
            return go_on(move(io, step));
        case op_end:
        case op_stop:
            return end_format(io, step);
        case op_open:
            return go_on(open_group(edit, step));
        case op_close:
            close_group(edit, step);
            return Walk::on;
        case op_dollar:
            if (is_read(io.action)) return go_on(IO_error(142));
            if (io.internal_file) return Walk::on;
            if (io.unit->kind == UnitKind::driver || io.unit->kind == UnitKind::console) {
                io.no_line_end = true;
            }
            return Walk::on;
        default:
            take_data_descriptor(edit, step);
            return Walk::data;
    }
}

Walk walk(IO_type& io) {
    EngineState& edit = io.edit;
    std::int64_t idle = 0;
    for (;;) {
        const FormatStep& step = edit.format->steps[edit.step++];
        edit.edit_code = step.op;
        const Walk result = run_step(io, step);
        if (result != Walk::on) return result;
        const bool busy = step.op == op_slash || step.op == op_end || step.length > 0;
        if (busy) {
            idle = 0;
        } else if (++idle > idle_steps) {
            if (!IO_error(72)) return Walk::fail;
            idle = 0;
        }
    }
}

bool read_transparent_field(IO_type& io, std::int64_t width) {
    if (width > io.buffer_size) {
        if (!IO_error(67)) return false;
        IO_allocate_buffer(io, width);
    }
    int err = 0;
    const std::size_t count =
        sys_fileRead(*io.unit, io.record_start, static_cast<std::size_t>(width), err);
    if (err != 0) return IO_system_error(err, "IO_process_format");
    if (static_cast<std::int64_t>(count) < width) return IO_end_of_file();
    io.record_cursor = io.record_start;
    io.record_last = io.record_start + width - 1;
    return true;
}

}  // namespace

bool take_direction(IO_type& io) {
    return check_direction(io) && cut_file(io);
}

bool RSF1__(const char* advance, bool given, std::ptrdiff_t length) {
    IO_type& io = current();
    if (given) {
        const std::size_t size = length > 0 ? static_cast<std::size_t>(length) : 0;
        if (!check_advance(io, std::string_view(advance, size))) return false;
    }
    const bool non_advancing_words = io.eor_label != nullptr || io.size.address != nullptr;
    if (!io.non_advancing && non_advancing_words && !IO_error(81)) return false;
    if (io.unit == nullptr) {
        // There is nothing that the statement could go on with.
        if (IO_error(94)) return IO_not_available("The unit is not connected");
        return false;
    }
    const bool transparent = !io.internal_file && io.unit->status.transparent;
    if (!has_format(io) && transparent && !IO_error(90)) return false;
    if (!check_compiled_format(io)) return false;
    if (io.internal_file) {
        if (is_direct(io.action) && !IO_error(101)) return false;
        io.blank_null = true;
    } else if (!check_external(io)) {
        return false;
    }
    io.edit = EngineState{};
    io.end_of_input = false;
    io.items_pending = true;
    if (is_direct(io.action) && io.format_ptr == nullptr && !IO_error(100)) return false;
    if (!IO_initialise_formatted_io()) return false;
    Set_Format_Position(0);
    return true;
}

bool IO_process_format() {
    IO_type& io = current();
    EngineState& edit = io.edit;
    edit.pending_skip = 0;
    if (edit.repeat_left >= 1) {
        --edit.repeat_left;
    } else {
        if (edit.format == nullptr && !prepare_format(io)) return false;
        const Walk result = walk(io);
        if (result == Walk::fail) return false;
        if (result == Walk::stop) {
            // The same step again, should another item come all the same.
            --edit.step;
            io.high_water = std::max(io.record_cursor, io.high_water);
            return true;
        }
    }
    if (!io.items_pending) {
        io.high_water = std::max(io.record_cursor, io.high_water);
        return true;
    }
    Set_Format_Position(1);
    return place_field(io, edit.field_width);
}

bool place_field(IO_type& io, std::int64_t width) {
    if (!apply_pending_skip(io)) return false;
    const bool reading = is_read(io.action);
    const bool transparent = !io.internal_file && io.unit->status.transparent;
    if (reading && transparent) {
        if (!io.unit->status.stream && width > 0) return read_transparent_field(io, width);
        return true;
    }
    if (reading && io.internal_file && width > room_to_record_end(io)) {
        Fix_buffer_end_pointer(width);
    }
    if (!require_room(io, width)) return false;
    // A field of a direct record is taken as far as the record goes.
    const bool fills = !(reading && is_direct(io.action));
    if (fills && !reserve_field(io, width)) return false;
    io.high_water = std::max(io.record_cursor, io.high_water);
    return true;
}

}  // namespace tarn::fio::native
