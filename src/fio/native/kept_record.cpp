// The record that a non-advancing READ leaves in its unit for the next statement, and the counts
// and results that a READ gives besides its items.
#include <cstdlib>
#include <cstring>

#include "fio/native/state.h"

namespace tarn::fio::native {
namespace {

constexpr std::size_t spare_bytes = 128;

bool has_room(Unit& unit, std::size_t bytes) {
    if (unit.saved_size >= bytes) return true;
    auto* const block = static_cast<char*>(std::realloc(unit.saved_record, bytes + spare_bytes));
    if (block == nullptr) return false;
    unit.saved_record = block;
    unit.saved_size = bytes + spare_bytes;
    return true;
}

}  // namespace

void IO_save_buffer() {
    const IO_type& io = current();
    if (io.unit == nullptr || io.internal_file || !io.non_advancing) return;
    if (io.input_length <= 0) {
        IO_discard_buffer();
        return;
    }
    Unit& unit = *io.unit;
    const auto offset = [&io](const char* place) {
        return static_cast<std::size_t>(place > io.record_start ? place - io.record_start : 0);
    };
    const auto length = static_cast<std::size_t>(io.input_length);
    if (!has_room(unit, length)) {
        IO_discard_buffer();
        return;
    }
    std::memcpy(unit.saved_record, io.record_start, length);
    unit.saved_length = length;
    unit.saved_cursor = offset(io.record_cursor);
    unit.saved_last = offset(io.record_last);
    unit.saved_high_water = offset(io.high_water);
}

void IO_restore_buffer() {
    IO_type& io = current();
    if (io.unit == nullptr || io.internal_file || io.unit->saved_length == 0) return;
    Unit& unit = *io.unit;
    // What a READ left behind is over when a WRITE comes: output begins a record of its own.
    if (!is_write(io.action)) {
        const std::size_t length = unit.saved_length;
        if (static_cast<std::int64_t>(length) > io.buffer_size)
            IO_allocate_buffer(io, static_cast<std::int64_t>(length));
        char* const start = io.buffer_start;
        std::memcpy(start, unit.saved_record, length);
        io.record_start = start;
        io.record_cursor = start + unit.saved_cursor;
        io.record_last = start + length - 1;
        io.high_water = start + unit.saved_high_water;
        io.input_length = static_cast<std::int64_t>(length);
    }
    IO_discard_buffer();
}

void IO_discard_buffer() {
    Unit* const unit = current().unit;
    if (unit != nullptr) unit->saved_length = 0;
}

// A WRITE puts its part of a record on the file at once, so that nothing of it is ever kept; what
// a READ left behind goes.
bool IO_write_flush() {
    IO_discard_buffer();
    return true;
}

void IO_update_size_count(std::int64_t characters) {
    IO_type& io = current();
    if (!is_read(io.action)) return;
    const std::int64_t there = io.record_start + io.input_length - io.record_cursor;
    if (characters > there) characters = there;
    if (characters > 0) io.size_count += characters;
}

void IO_set_size() {
    IO_type& io = current();
    if (io.size.address == nullptr) return;
    store_integer(io.size, io.size_count);
    io.size.address = nullptr;
}

void Set_Format_Position(std::int32_t value) {
    std::int32_t& position = state().format_position;
    if (value < 1)
        position = value;
    else if (position >= 0)
        ++position;
}

}  // namespace tarn::fio::native
