#include "fio/native/field.h"

#include "fio/native/format.h"

namespace tarn::fio::native {

bool pass_input(IO_type& io, const InputField& field, std::int64_t width, bool comma) {
    const std::int64_t taken = field.next - field.begin;
    IO_update_size_count(comma ? taken - 1 : std::max<std::int64_t>(field.end - field.begin, 0));
    const bool line_end = is_stream(io) && field.end - field.begin < width;
    // What stands at a stream's line end stays there.
    const std::int64_t moved = comma ? taken : line_end ? field.end - field.begin : width;
    io.record_cursor =
        std::min(io.record_cursor + moved, std::max(io.record_end, io.record_last) + 1);
    if (!io.edit.end_of_record) return true;
    io.edit.end_of_record = false;
    return IO_end_of_record();
}

bool IO_write_numeric_into_char(IO_type& io, const void* item, std::int64_t size) {
    if (state().ansi_mode && !IO_error(145)) return false;
    const std::int64_t width = io.edit.field_width > 0 ? io.edit.field_width : size;
    if (!reserve_field(io, width)) return false;
    const std::int64_t blanks = std::max<std::int64_t>(width - size, 0);
    std::memset(io.record_cursor, ' ', static_cast<std::size_t>(blanks));
    std::memcpy(io.record_cursor + blanks, item, static_cast<std::size_t>(width - blanks));
    pass_output(io, width);
    return true;
}

bool IO_read_char_into_numeric(IO_type& io, void* item, std::int64_t size) {
    if (state().ansi_mode && !IO_error(145)) return false;
    std::int64_t width = io.edit.field_width;
    const bool list_directed = io.format_ptr == nullptr;
    if (width == 0 && !list_directed) {
        width = size;
        if (!place_field(io, width)) return false;
    }
    InputField field = input_field(io, width);
    const std::int64_t skipped = std::max<std::int64_t>(width - size, 0);
    const std::int64_t count = std::max<std::int64_t>(field.end - field.begin - skipped, 0);
    std::memset(item, ' ', static_cast<std::size_t>(size));
    if (count > 0) std::memcpy(item, field.begin + skipped, static_cast<std::size_t>(count));
    field.next = field.end;
    if (!pass_input(io, field, width, false)) return false;
    if (list_directed) ++io.record_cursor;  // the closing quote
    return true;
}

}  // namespace tarn::fio::native
