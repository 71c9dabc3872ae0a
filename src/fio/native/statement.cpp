#include "fio/native/statement.h"

#include <cstring>
#include <mutex>

#include "failure/failure.h"
#include "fio/native/connect.h"
#include "fio/native/hooks.h"
#include "fio/native/namelist.h"

namespace tarn::fio::native {
namespace {

constexpr std::int64_t largest_count = 32767;
constexpr int nested_io_message = 410;

constexpr std::uint32_t status_mode_bit = 1U << 29;
constexpr std::uint32_t last_specifier_bit = 1U << 31;

// A record as a new statement finds it: only the buffer and its place among the others stay.
void prepare(IO_type& io, ActionCode action, bool per_item) {
    let_unit_go(io);  // of a statement that was never ended
    IO_type fresh;
    fresh.previous = io.previous;
    fresh.outer_ansi_mode = io.outer_ansi_mode;
    fresh.outer_format_position = io.outer_format_position;
    fresh.begun = io.begun;
    fresh.buffer = io.buffer;
    fresh.buffer_size = io.buffer_size;
    fresh.buffer_start = io.buffer_start;
    fresh.dynamic_buffer = io.dynamic_buffer;
    fresh.record_cursor = io.buffer_start;
    fresh.action = action;
    fresh.busy = true;
    fresh.close_removes_unit = action == ActionCode::close;
    fresh.per_item = per_item;
    io = fresh;
    state().ansi_mode = false;
}

// The record for a statement of this kind, with what it interrupts pushed down.
void open_record(ActionCode action, bool per_item) {
    State& s = state();
    IO_initialise();
    if (is_control(action)) {
        s.use_temp_io = true;
        useTempIO();
    } else {
        s.prev_in_io = s.in_io || s.current_io->busy;
        if (s.prev_in_io) {
            if (!s.reentrant_io) failure::fail(nested_io_message);
            newIO();
        }
        s.in_io = true;
    }
    prepare(*s.current_io, action, per_item);
}

// A closed or finished record gives way to the statement that it interrupted.
void release_record() {
    IO_type& io = current();
    io.busy = false;
    io.statement_aborted = false;
    state().in_io = false;
    deleteIO();
}

bool run_control(ActionCode action) {
    switch (action) {
        case ActionCode::endfile:
            return IO_endfile();
        case ActionCode::rewind:
            return IO_rewind();
        case ActionCode::backspace:
            return IO_backspace();
        case ActionCode::open:
            return IO_open();
        case ActionCode::inquire:
            return IO_inquire();
        default:
            return IO_close();
    }
}

// The statement is over when its body returns.
bool run_namelist(bool (*body)()) {
    if (!body()) return false;
    release_record();
    return true;
}

bool run_transfer(IO_type& io) {
    const TextWord& advance = io.spec_block.advance;
    switch (io.action) {
        case ActionCode::read_unformatted:
        case ActionCode::write_unformatted:
            return RSU1__();
        case ActionCode::read_direct_unformatted:
        case ActionCode::write_direct_unformatted:
            return RDU1__();
        case ActionCode::read_namelist:
            return run_namelist(RNML__);
        case ActionCode::write_namelist:
            return run_namelist(WNML__);
        default:
            return RSF1__(advance.address, advance.given, advance.length);
    }
}

// A nested statement must not touch the unit of one that it interrupts.
bool check_nesting(const IO_type& io) {
    if (!io.spec_block.unit_given || io.unit_number < 0) return true;
    for (const IO_type* below = io.previous; below != nullptr; below = below->previous)
        if (below->busy && below->unit_number == io.unit_number) return IO_error(433);
    return true;
}

// Where the line end of a formatted stream record stands behind the cursor; -1: nowhere.
std::ptrdiff_t find_line_end(const IO_type& io, std::string_view line_end) {
    const char* const begin = io.record_cursor;
    const char* const end = io.record_last + 1;
    if (begin > end) return -1;
    const std::string_view rest(begin, static_cast<std::size_t>(end - begin));
    const std::size_t place = rest.find(line_end);
    return place == std::string_view::npos ? -1 : static_cast<std::ptrdiff_t>(place);
}

// A stream READ takes the rest of its record with the line end, and the file goes there.
bool finish_stream_read(IO_type& io) {
    File& file = io.unit->file;
    const std::string_view line_end = io.unit->dialect->line_end;
    const std::ptrdiff_t rest = find_line_end(io, line_end);
    if (rest >= 0)
        io.record_cursor += rest + static_cast<std::ptrdiff_t>(line_end.size());
    else if (!IO_error(449))
        return false;
    const std::int64_t target = io.record_file_position + (io.record_cursor - io.record_start);
    std::int64_t position = 0;
    int err = 0;
    sys_fileSeek(*io.unit, target, position, err);
    if (err != 0) return IO_system_error(err, "RdSeqFrm");
    file.stream_read_position = position + 1;
    return true;
}

// Finds the statement's unit and keeps it, and every other thread away from it, to the end.
void hold(IO_type& io) {
    io.held_unit = acquire_unit(io.unit_number);
    if (io.held_unit != nullptr && is_connected(*io.held_unit)) io.unit = io.held_unit;
}

bool is_stream(const IO_type& io) {
    return !io.internal_file && io.unit != nullptr && io.unit->status.stream;
}

// Runs what is left of a statement and releases its record. A label is left by on the way.
template <typename Rest>
Road end_statement(Rest rest) {
    const bool runs = !items_are_ignored();
    const bool failed = runs && !rest();
    const IO_type& io = current();
    const Road road = io.statement_aborted ? static_cast<Road>(io.taken_road) : Road::none;
    if (failed) leave_statement();
    release_record();
    return road;
}

}  // namespace

bool doIO() {
    State& s = state();
    IO_type& io = *s.current_io;
    if (!check_nesting(io)) return false;
    if (io.internal_file || !io.spec_block.unit_given) {
        io.unit_number = -1;
        io.unit = nowhere_unit();
        io.held_unit = acquire_unit(-1);
    }
    if (io.count_given && (io.internal_count < 1 || io.internal_count > largest_count)) {
        if (!IO_error(150)) return false;
        io.internal_record_length = 0;
    }
    if (io.spec_block.advance.given && static_cast<int>(io.action) >= 3 && !IO_error(214))
        return false;
    if (io.spec_block.unit_given && !io.internal_file && io.unit_number < 0 &&
        io.action != ActionCode::inquire && !IO_error(60))
        return false;
    if (io.unit_number >= 0 && !io.internal_file) hold(io);
    io.target_unit = io.unit;
    if (!is_control(io.action)) {
        Set_Format_Position(-1);
        if (io.unit != nullptr && !io.internal_file && !take_over_from_gnu(*io.unit)) return false;
        return run_transfer(io);
    }
    if (!run_control(io.action)) return false;
    restoreSavedIO();
    return true;
}

void beginIO(ActionCode action) {
    open_record(action, true);
}

void IOSTART__(ActionCode action, const std::int16_t* count, va_list words,
               const void* return_address) {
    open_record(action, false);
    IO_type& io = current();
    io.begun = true;
    io.return_address = return_address;

    const int pair_words = *count > 0 ? *count / 2 * 2 : 0;
    va_list lengths;
    va_copy(lengths, words);
    for (int i = 0; i < pair_words; ++i) (void)va_arg(lengths, void*);
    for (int i = 0; i < pair_words; i += 2) {
        const auto* const descriptor = va_arg(words, const std::uint16_t*);
        void* const value = va_arg(words, void*);
        if (descriptor == nullptr) break;
        const auto code = static_cast<IOCode>(*descriptor & 0x3F);
        const auto type = static_cast<TypeCode>(*descriptor >> 8 & 0x3F);
        std::ptrdiff_t length = -1;
        if (type == TypeCode::character) length = va_arg(lengths, std::ptrdiff_t);
        setOption(code, type, value, length);
    }
    va_end(lengths);
    conclude(doIO());
}

void parseEntryCode(std::uint32_t code, void* value, std::ptrdiff_t length, ActionCode action) {
    State& s = state();
    const std::lock_guard<std::recursive_mutex> guard(s.critical_section);
    IO_initialise();
    if (s.current_io->begun) {
        beginIO(action);
        s.current_io->begun = false;
    }
    if ((code & status_mode_bit) != 0) s.status_mode = true;
    setOption(static_cast<IOCode>(code & 0xFF), static_cast<TypeCode>(code >> 8 & 0xF), value,
              length);
    if ((code & last_specifier_bit) == 0) return;
    s.current_io->begun = true;
    conclude(doIO());
}

bool items_are_ignored() {
    const IO_type* const io = state().current_io;
    return io == nullptr || io->statement_aborted || !io->busy;
}

bool WSF2__() {
    IO_type& io = current();
    io.items_pending = false;
    io.no_line_end = false;
    state().in_io = false;
    const bool reading = is_read(io.action);
    if (io.format_ptr != nullptr) {
        if (!IO_process_format()) return false;
    } else {
        if (reading && (is_stream(io) || io.non_advancing) && !IO_error(90)) return false;
        io.high_water = io.record_cursor;
    }
    if (reading) {
        if (is_stream(io) && !finish_stream_read(io)) return false;
        IO_set_size();
        if (io.non_advancing) IO_save_buffer();
    } else if (!WSF3__()) {
        return false;
    }
    if (io.unit != nullptr && !io.internal_file) hand_over_to_gnu(*io.unit);
    return true;
}

Road end_formatted_statement() {
    if (state().current_io == nullptr) return Road::none;
    return end_statement(WSF2__);
}

Road end_unformatted_read() {
    if (state().current_io == nullptr) return Road::none;
    return end_statement(END_RU__);
}

Road end_unformatted_write(bool direct) {
    if (state().current_io == nullptr) return Road::none;
    return end_statement(direct ? WDU2__ : WSU2__);
}

void transfer_unformatted(void* item, std::int64_t count, std::int32_t size,
                          std::ptrdiff_t length) {
    if (items_are_ignored() || count <= 0) return;
    conclude(XSUX__(item, count, size, length));
}

}  // namespace tarn::fio::native
