// Complex items: two reals each, in brackets when list-directed.
#include "fio/native/field.h"
#include "fio/native/list_input.h"
#include "fio/native/real_edit.h"

namespace tarn::fio::native {
namespace {

bool next_line_unless_room(IO_type& io, std::int64_t columns) {
    return columns < room_to_record_end(io) || IO_process_format_reversion();
}

bool write_list(IO_type& io, const char* item) {
    const std::int64_t columns = io.item_size == 4 ? 19 : 30;
    const std::ptrdiff_t stride = stride_of(io);
    if (!next_line_unless_room(io, columns) || !put_text(io, " (")) return false;
    io.edit.complex_part = true;
    if (!R_WSF_main(item, 1) || !put_text(io, ",")) return false;
    if (!next_line_unless_room(io, columns - 1)) return false;
    if (!R_WSF_main(item + stride, 1)) return false;
    io.edit.complex_part = false;
    // A blank stands behind it, unless the line is full.
    return put_text(io, room_to_record_end(io) > 1 ? ") " : ")");
}

bool repeat_value(IO_type& io, char* item) {
    EngineState& edit = io.edit;
    --edit.repeat_left;
    if (edit.last_kind == ValueKind::null) return true;
    if (edit.last_kind != ValueKind::complex) return IO_error(93);
    store_real(item, io.item_size, edit.saved_complex[0]);
    store_real(item + stride_of(io), io.item_size, edit.saved_complex[1]);
    return true;
}

bool read_list(IO_type& io, char* item) {
    EngineState& edit = io.edit;
    if (edit.repeat_left > 0) return repeat_value(io, item);
    const std::ptrdiff_t stride = stride_of(io);
    edit.complex_part = true;
    edit.complex_state = 0;
    if (!R_RSF_main(item, 1)) return false;
    if (edit.value_kind != ValueKind::null && !R_RSF_main(item + stride, 1)) return false;
    edit.complex_part = false;
    if (edit.value_kind == ValueKind::null) return true;
    edit.last_kind = ValueKind::complex;
    for (int part = 0; part < 2; ++part) {
        edit.saved_complex[part] = load_real(item + part * stride, io.item_size).value;
    }
    return true;
}

}  // namespace

bool C_WSF_main(const void* item, std::int64_t count) {
    IO_type& io = current();
    const std::ptrdiff_t stride = stride_of(io);
    const auto* element = static_cast<const char*>(item);
    for (; count > 0; --count, element += 2 * stride) {
        if (io.format_ptr != nullptr ? !R_WSF_main(element, 2) : !write_list(io, element)) {
            return false;
        }
    }
    return true;
}

bool C_RSF_main(void* item, std::int64_t count) {
    IO_type& io = current();
    const std::ptrdiff_t stride = stride_of(io);
    auto* element = static_cast<char*>(item);
    for (; count > 0; --count, element += 2 * stride) {
        if (io.format_ptr != nullptr ? !R_RSF_main(element, 2) : !read_list(io, element)) {
            return false;
        }
    }
    return true;
}

}  // namespace tarn::fio::native
