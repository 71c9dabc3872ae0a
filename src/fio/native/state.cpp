#include "fio/native/state.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "fio/gnu/connection.h"
#include "fio/gnu/unformatted.h"
#include "fio/native/connect.h"
#include "frame/state.h"

namespace tarn::fio::native {
namespace {

// Records of ended nested statements wait here, so that nesting allocates only once.
IO_type* idle_records = nullptr;

[[noreturn]] void out_of_memory(const char* what) {
    std::fprintf(stderr, "Not enough memory to allocate %s\n", what);
    std::_Exit(1);
}

IO_type* new_record() {
    auto* record = new (std::nothrow) IO_type;
    if (record == nullptr) out_of_memory("new I/O");
    return record;
}

// A record with a buffer of its own and everything else as new.
IO_type* take_record() {
    if (idle_records == nullptr) {
        IO_type* record = new_record();
        IO_allocate_dynamic_buffers(*record);
        return record;
    }
    IO_type* record = idle_records;
    idle_records = record->previous;
    char* const buffer = record->buffer;
    const std::int64_t size = record->buffer_size;
    *record = IO_type{};
    record->buffer = buffer;
    record->buffer_size = size;
    record->buffer_start = buffer + buffer_margin;
    record->dynamic_buffer = true;
    // __SetMaximumIOBufferSize may have raised the size since.
    if (size < state().io_buffer_size) IO_allocate_buffer(*record, state().io_buffer_size);
    return record;
}

void give_record_back(IO_type* record) {
    if (!record->dynamic_buffer) {
        // The buffer was declared free of this record: somebody else keeps it.
        delete record;
        return;
    }
    record->previous = idle_records;
    idle_records = record;
}

void push(IO_type* record) {
    State& s = state();
    record->previous = s.current_io;
    record->outer_ansi_mode = s.ansi_mode;
    record->outer_format_position = s.format_position;
    record->begun = true;
    record->busy = true;
    s.current_io = record;
    ++s.io_depth;
}

void make_console(Unit& unit, bool reading) {
    unit.kind = UnitKind::console;
    unit.status.blank_null = true;
    unit.status.formatted = true;
    unit.status.may_read = true;
    unit.status.may_write = true;
    unit.status.reading = reading;
    unit.status.writing = !reading;
}

// The units that are there without an OPEN. 5 and 6 stand on the same descriptors as the gnu
// dialect's; 1 and 2 are the native dialect's own.
void make_first_units() {
    nowhere_unit();
    bring_up_units();
    for (const std::int32_t number : {1, 2, 5, 6}) {
        Unit* unit = UnitList_getUnit(number);
        if (unit != nullptr && !unit->gnu.preconnected && is_connected(*unit)) continue;
        if (unit == nullptr) {
            unit = Unit_create(number, false);
            unit->native_console = true;
            UnitList_insert(unit);
        }
        make_console(*unit, number == 1 || number == 5);
    }
}

}  // namespace

State& state() {
    static constinit State the_state;
    return the_state;
}

Unit* nowhere_unit() {
    Unit* unit = UnitList_getUnit(-1);
    if (unit == nullptr) {
        unit = Unit_create(-1, false);
        UnitList_insert(unit);
    }
    return unit;
}

void static_IO_initialise() {
    State& s = state();
    if (s.initialised) return;
    s.initialised = true;
    frame::ensure_up();
    s.temp_io = new_record();
    newIO();
    s.current_io->busy = false;
    s.io_depth = 0;
    make_first_units();
}

void IO_initialise() {
    if (!state().initialised) static_IO_initialise();
}

void IO_reset(IO_type& io) {
    io.spec_block = SpecBlock{};
}

void newIO() {
    push(take_record());
}

void let_unit_go(IO_type& io) {
    // A statement that was left on the way.
    if (io.gnu_record != nullptr) end_unformatted_on(io.gnu_record);
    io.gnu_record = nullptr;
    release_unit(io.held_unit);
    io.held_unit = nullptr;
}

void deleteIO() {
    State& s = state();
    IO_type* record = s.current_io;
    let_unit_go(*record);
    if (record->previous == nullptr) return;
    s.current_io = record->previous;
    s.in_io = s.current_io->busy;
    s.ansi_mode = record->outer_ansi_mode;
    s.format_position = record->outer_format_position;
    --s.io_depth;
    give_record_back(record);
}

void useTempIO() {
    State& s = state();
    if (s.current_io == s.temp_io) return;
    s.saved_io = s.current_io;
    *s.temp_io = *s.saved_io;
    s.temp_io->held_unit = nullptr;
    s.temp_io->gnu_record = nullptr;
    s.temp_io->dynamic_buffer = false;  // borrowed from the statement that is interrupted
    s.temp_io->outer_ansi_mode = s.ansi_mode;
    s.temp_io->outer_format_position = s.format_position;
    s.current_io = s.temp_io;
}

void restoreSavedIO() {
    State& s = state();
    s.use_temp_io = false;
    let_unit_go(*s.current_io);
    if (s.saved_io == nullptr) {
        s.current_io->busy = false;
        return;
    }
    s.ansi_mode = s.temp_io->outer_ansi_mode;
    s.format_position = s.temp_io->outer_format_position;
    s.current_io = s.saved_io;
    s.saved_io = nullptr;
}

CallOut::CallOut() {
    State& s = state();
    temp_io_ = s.temp_io;
    saved_io_ = s.saved_io;
    current_io_ = s.current_io;
    in_io_ = s.in_io;
    use_temp_io_ = s.use_temp_io;
    s.temp_io = new_record();
    s.saved_io = nullptr;
    s.use_temp_io = false;
    push(take_record());
    s.current_io->busy = false;
    s.in_io = false;
}

CallOut::~CallOut() {
    State& s = state();
    while (s.current_io != current_io_ && s.current_io->previous != nullptr) deleteIO();
    delete s.temp_io;
    s.temp_io = temp_io_;
    s.saved_io = saved_io_;
    s.current_io = current_io_;
    s.in_io = in_io_;
    s.use_temp_io = use_temp_io_;
}

void IO_allocate_buffer(IO_type& io, std::int64_t size) {
    const std::size_t bytes = static_cast<std::size_t>(size) + 2 * buffer_margin;
    char* const old = io.buffer;
    auto* const fresh = static_cast<char*>(std::calloc(bytes, 1));
    if (fresh == nullptr) out_of_memory("I/O buffer");
    if (old != nullptr) {
        const std::int64_t kept = io.buffer_size < size ? io.buffer_size : size;
        std::memcpy(fresh, old, static_cast<std::size_t>(kept) + buffer_margin);
        for (char** place : {&io.record_cursor, &io.record_start, &io.record_end, &io.record_last,
                             &io.high_water, &io.output_start, &io.edit.saved_string})
            if (*place != nullptr) *place = fresh + (*place - old);
        if (io.dynamic_buffer) std::free(old);
    }
    io.dynamic_buffer = true;
    io.buffer = fresh;
    io.buffer_size = size;
    io.buffer_start = fresh + buffer_margin;
    if (io.record_cursor == nullptr) io.record_cursor = io.buffer_start;
}

void IO_allocate_dynamic_buffers(IO_type& io) {
    IO_allocate_buffer(io, state().io_buffer_size);
}

void set_maximum_buffer_size(std::int64_t size) {
    constexpr std::int64_t default_size = 32767;
    if (size > default_size) state().io_buffer_size = size;
}

std::int64_t unit_record_length(Unit& unit) {
    const std::int64_t room = current().buffer_size;
    if (unit.recl <= 0) unit.recl = room;
    const bool chosen = unit.status.fixed_record_length || unit.status.direct;
    return unit.recl > room && !chosen ? room : unit.recl;
}

}  // namespace tarn::fio::native
