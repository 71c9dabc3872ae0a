// The record of a formatted statement in the I/O buffer: how it begins, how it is read and
// written, and the room that fields find in it.
#pragma once

#include <cstdint>
#include <string_view>

#include "fio/native/io_type.h"

namespace tarn::fio::native {

// Chooses the record length and starts the first record.
[[nodiscard]] bool IO_initialise_formatted_io();
// Starts one record.
[[nodiscard]] bool do_formatted_io_initialisation();
// What a slash of the format does: ends so many records, or lines of a unit that has no records.
[[nodiscard]] bool process_slashes(std::int32_t count);
// The part of it for reading a transparent unit: passes so many line ends.
[[nodiscard]] bool process_trailing_slash(std::int32_t count);

// Lengthens the record with blanks so that `count` characters at the cursor lie in it. Where they
// can't, a message tells; with that message ignored the record is made longer than it may be.
[[nodiscard]] bool IO_spacefill_buffer(std::int64_t count);
// Only that the characters may lie in the record.
[[nodiscard]] bool require_room(IO_type& io, std::int64_t count);
// Stretches the end of an internal record for a field of a read; true when it did.
bool Fix_buffer_end_pointer(std::int64_t width);

// Prepare a stream unit for a transfer at POS=, or where it stands. One routine: the second name
// is for unformatted statements.
[[nodiscard]] bool adjust_stream_position1(bool write);
[[nodiscard]] bool adjust_stream_position(bool write);

// ---- For the item routines ----

inline std::int64_t room_to_record_end(const IO_type& io) {
    return io.record_end - io.record_cursor + 1;
}
inline std::int64_t room_to_record_last(const IO_type& io) {
    return io.record_last - io.record_cursor + 1;
}
inline bool is_stream(const IO_type& io) {
    return !io.internal_file && io.unit != nullptr && io.unit->status.stream;
}

// Where the data of the record end for an input field. A stream record holds its line end, which
// no field takes.
const char* data_end(const IO_type& io);

// Makes sure that an output field of `width` characters at the cursor lies in the record.
[[nodiscard]] inline bool reserve_field(IO_type& io, std::int64_t width) {
    return width <= room_to_record_last(io) || IO_spacefill_buffer(width);
}
// The same for a list-directed field, which goes on a new line when this one is too full.
[[nodiscard]] bool reserve_list_field(IO_type& io, std::int64_t width);
// Puts text into a list-directed line.
[[nodiscard]] bool put_text(IO_type& io, std::string_view text);
// Writes out what the record holds as a part of a line, and goes on with an empty record.
[[nodiscard]] bool write_part_of_line(IO_type& io);

}  // namespace tarn::fio::native
