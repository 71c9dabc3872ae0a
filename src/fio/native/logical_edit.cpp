// Logical items.
#include "fio/native/field.h"
#include "fio/native/list_input.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t list_width = 3;

bool is_true(const char* item, std::int32_t size) {
    return std::any_of(item, item + size, [](char byte) { return byte != 0; });
}

bool write_field(IO_type& io, bool value, std::int64_t width) {
    if (!reserve_field(io, width)) return false;
    std::memset(io.record_cursor, ' ', static_cast<std::size_t>(width - 1));
    io.record_cursor[width - 1] = value ? 'T' : 'F';
    pass_output(io, width);
    return true;
}

bool write_edited(IO_type& io, const char* item, std::int32_t size) {
    const EngineState& edit = io.edit;
    switch (edit.edit_code) {
        case op_L:
        case op_G:
            return write_field(io, is_true(item, size), std::max(edit.field_width, 1));
        case op_A:
            return IO_write_numeric_into_char(io, item, size);
        default:
            return Data_Mismatch_Error(edit.edit_code, "LOGICAL");
    }
}

void store(char* item, std::int32_t size, bool value) {
    std::memset(item, 0, static_cast<std::size_t>(size));
    item[0] = value ? 1 : 0;
}

enum class Found : std::uint8_t { nothing, yes, no, comma, wrong };

// The first letter decides; one point may lead.
Found find_value(InputField& field) {
    bool point = false;
    while (!field.at_end()) {
        const char c = field.take();
        switch (fold(c)) {
            case ' ':
                if (point) return Found::wrong;
                break;
            case 'T':
                return Found::yes;
            case 'F':
                return Found::no;
            case '.':
                if (point) return Found::wrong;
                point = true;
                break;
            default:
                return ends_field(c) ? Found::comma : Found::wrong;
        }
    }
    return point ? Found::wrong : Found::nothing;
}

bool read_field(IO_type& io, char* item, std::int32_t size) {
    const std::int64_t width = io.edit.field_width;
    InputField field = input_field(io, width);
    const Found found = find_value(field);
    const bool bad = found == Found::wrong || found == Found::nothing;
    if (bad && !IO_error(found == Found::wrong ? 52 : 70)) {
        io.record_cursor += field.next - field.begin;
        return false;
    }
    bool comma = found == Found::comma;
    while (!comma && !field.at_end()) comma = ends_field(field.take());
    store(item, size, found == Found::yes);
    return pass_input(io, field, width, comma);
}

bool read_edited(IO_type& io, char* item, std::int32_t size) {
    const EngineState& edit = io.edit;
    switch (edit.edit_code) {
        case op_L:
        case op_G:
            return read_field(io, item, size);
        case op_A:
            return IO_read_char_into_numeric(io, item, size);
        default:
            return Data_Mismatch_Error(edit.edit_code, "LOGICAL");
    }
}

bool write_list(IO_type& io, const char* item, std::int32_t size) {
    return reserve_list_field(io, list_width) && write_field(io, is_true(item, size), list_width);
}

bool read_list(IO_type& io, char* item, std::int32_t size) {
    if (!IO_process_list_directed_input()) return false;
    switch (io.edit.value_kind) {
        case ValueKind::null:
            return true;
        case ValueKind::field:
            return read_field(io, item, size);
        default:
            return IO_error(52);
    }
}

}  // namespace

bool L_WSF_main(const void* item, std::int64_t count) {
    IO_type& io = current();
    return transfer_elements(io, static_cast<const char*>(item), count, write_list, write_edited);
}

bool L_RSF_main(void* item, std::int64_t count) {
    IO_type& io = current();
    return transfer_elements(io, static_cast<char*>(item), count, read_list, read_edited);
}

}  // namespace tarn::fio::native
