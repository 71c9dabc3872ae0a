#include <algorithm>
#include <cstring>
#include <utility>

#include "fio/gnu/edit_in_quick.h"
#include "fio/gnu/format_run.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/items.h"
#include "fio/gnu/records.h"
#include "fio/gnu/utf8.h"

namespace tarn::fio {
namespace {

struct Field {
    const char* text = nullptr;  // null: the statement has failed
    std::size_t width = 0;       // characters at hand, fewer than asked for at the record's end
};

// A field that asks for more than the record holds: PAD= and non-advancing input decide.
bool meet_record_end(Statement& s, std::size_t at_hand) {
    if (s.internal) return true;
    if (!s.record_terminated) {
        // The file ends inside its last record.
        if (at_hand == 0 && (s.non_advancing || !s.modes.pad)) {
            fail_end_of_file(s);
            return false;
        }
    }
    if (s.record_terminated || s.non_advancing) s.end_of_record = true;
    if (!s.modes.pad) {
        fail_end_of_record(s);
        return false;
    }
    return true;
}

std::size_t characters_left(const Statement& s) {
    const char* end = input_end(s);
    return s.cursor < end ? static_cast<std::size_t>(end - s.cursor) : 0;
}

// The next `width` characters. On a file, and in memory by the rules of old, a comma ends a numeric
// field early and is passed.
Field take_number(Statement& s, std::size_t width) {
    meet_carriage_return(s, width);
    const std::size_t left = characters_left(s);
    Field field{s.cursor, std::min(width, left)};
    const bool by_width = s.internal && !gnu_options().formats.legacy;
    const std::size_t end = by_width ? field.width : field_end(field.text, field.width, s.modes);
    if (end < field.width) {
        field.width = end;
        s.cursor += end + 1;
    } else {
        if (width > left && !meet_record_end(s, left)) return {};
        s.cursor += field.width;
    }
    s.size_count += static_cast<std::int64_t>(field.width);
    return field;
}

Field take_text(Statement& s, std::size_t width) {
    meet_carriage_return(s, width);
    const std::size_t left = characters_left(s);
    const Field field{s.cursor, std::min(width, left)};
    if (width > left && !meet_record_end(s, left)) return {};
    s.cursor += field.width;
    s.size_count += static_cast<std::int64_t>(field.width);
    return field;
}

constexpr Fault bad_encoding{52, iostat_read_value};

void report_field(Statement& s, const Field& field, const FieldResult& result) {
    if (result.fault.number == 0) return;
    std::string_view text(field.text, std::min<std::size_t>(field.width, 60));
    const std::string_view before = "field \"";
    char detail[80];
    std::memcpy(detail, before.data(), before.size());
    std::memcpy(detail + before.size(), text.data(), text.size());
    detail[before.size() + text.size()] = '"';
    fail(s, result.fault, {detail, before.size() + text.size() + 1});
}

FieldResult get_number(const Field& field, const FormatNode& node, Edit edit, char* item, int kind,
                       const EditModes& modes) {
    const auto size = static_cast<std::size_t>(kind);
    switch (edit) {
        case Edit::I:
            return get_integer(field.text, field.width, item, kind, modes);
        case Edit::B:
            return get_bits(field.text, field.width, 2, item, size, modes);
        case Edit::O:
            return get_bits(field.text, field.width, 8, item, size, modes);
        case Edit::Z:
            return get_bits(field.text, field.width, 16, item, size, modes);
        case Edit::L:
            return get_logical(field.text, field.width, item, kind);
        default:
            return get_real(field.text, field.width, node.d < 0 ? 0 : node.d, item, kind, modes);
    }
}

// A byte of zero ends the field of an integer, as gfortran has it: programs read zeros from records
// of a direct file that nobody has written.
bool ends_at_zero(Field& field, Edit edit) {
    if (edit != Edit::I && edit != Edit::B && edit != Edit::O && edit != Edit::Z) return false;
    const std::size_t width = strnlen(field.text, field.width);
    return std::exchange(field.width, width) != width;
}

[[gnu::noinline]] void read_number(Statement& s, const FormatNode& node, Edit edit, char* item,
                                   int kind) {
    Field field = take_number(s, node.w < 0 ? 1 : static_cast<std::size_t>(node.w));
    if (field.text == nullptr) return;
    FieldResult result = get_number(field, node, edit, item, kind, s.modes);
    if (result.fault.number != 0 && ends_at_zero(field, edit))
        result = get_number(field, node, edit, item, kind, s.modes);
    // The blanks behind a stream's end are no value of the file's, such as a LOGICAL would need.
    if (s.behind_end && result.fault.number != 0) return fail_end_of_file(s);
    report_field(s, field, result);
}

// The quick roads of INTEGER and REAL are for a field that the record has all characters of. Where
// it holds a number and blanks, neither a comma nor a carriage return has ended it.
bool is_quick_field(const Statement& s, const FormatNode& node) {
    return node.w > 0 && node.w <= NumberWindow::widest && input_end(s) - s.cursor >= node.w;
}

void pass_quick_field(Statement& s, const FormatNode& node) {
    s.cursor += node.w;
    s.size_count += node.w;
}

[[gnu::noinline]] void read_integer(Statement& s, const FormatNode& node, char* item, int kind) {
    if (is_quick_field(s, node) &&
        quick_get_integer(s.cursor, node.w, s.room_end, item, kind, s.modes)) {
        return pass_quick_field(s, node);
    }
    read_number(s, node, Edit::I, item, kind);
}

[[gnu::noinline]] void read_real(Statement& s, const FormatNode& node, char* item, int kind) {
    if (is_quick_field(s, node) && quick_get_real(s.cursor, node.w, s.room_end,
                                                  node.d < 0 ? 0 : node.d, item, kind, s.modes)) {
        return pass_quick_field(s, node);
    }
    read_number(s, node, Edit::F, item, kind);
}

void store_character(char* item, int kind, std::size_t index, char32_t code) {
    if (kind == 4) {
        put_wide(item + 4 * index, code);
    } else {
        item[index] = code > 255 ? '?' : static_cast<char>(code);
    }
}

// A on a record of UTF-8. On a file, as gfortran's programs know it, the field has as many
// characters as the longer of its width and the value, and the value takes the first of them; in
// memory the value takes the rightmost, as it should.
void read_utf8_characters(Statement& s, std::size_t width, char* item, int kind,
                          std::size_t length) {
    const std::size_t wanted = s.internal ? width : std::max(width, length);
    std::size_t skip = s.internal && width > length ? width - length : 0;
    std::size_t read = 0;
    std::size_t stored = 0;
    const char* end = input_end(s);
    for (; read < wanted && s.cursor < end; ++read) {
        std::size_t size = 0;
        const char32_t code = get_utf8(s.cursor, end, !s.internal, size);
        if (code == U'?' && *s.cursor != '?') return fail(s, bad_encoding);
        s.cursor += size;
        if (skip > 0) {
            --skip;
        } else if (stored < length) {
            store_character(item, kind, stored++, code);
        }
    }
    s.size_count += static_cast<std::int64_t>(read);
    if (read < width && !meet_record_end(s, read)) return;
    while (stored < length) store_character(item, kind, stored++, U' ');
}

[[gnu::noinline]] void read_characters(Statement& s, const FormatNode& node, char* item, int kind,
                                       std::size_t length) {
    const std::size_t width = node.w < 0 ? length : static_cast<std::size_t>(node.w);
    if (s.utf8) return read_utf8_characters(s, width, item, kind, length);
    Field field = take_text(s, width);
    if (field.text == nullptr) return;
    if (field.width > length) {
        field.text += field.width - length;
        field.width = length;
    }
    if (kind == 1) {
        std::memcpy(item, field.text, field.width);
        std::memset(item + field.width, ' ', length - field.width);
        return;
    }
    for (std::size_t i = 0; i < length; ++i) {
        const char32_t code = i < field.width ? static_cast<unsigned char>(field.text[i]) : U' ';
        store_character(item, kind, i, code);
    }
}

[[gnu::noinline]] void read_with_natural_width(Statement& s, const FormatNode& node, ItemType type,
                                               char* item, int kind, std::size_t size);

void read_through(Statement& s, const FormatNode& node, ItemType type, char* item, int kind,
                  std::size_t size) {
    if (!has_input_record(s)) return s.failed ? void() : fail_end_of_file(s);
    if (lacks_width(s, node, type)) [[unlikely]] {
        return read_with_natural_width(s, node, type, item, kind, size);
    }
    ++s.items;
    switch (node.edit) {
        case Edit::I:
            if (type != ItemType::integer) return fail_mismatch(s, node, type);
            return read_integer(s, node, item, kind);
        case Edit::A:
            if (type == ItemType::character) return read_characters(s, node, item, kind, size);
            return read_characters(s, node, item, 1, size);
        case Edit::B:
        case Edit::O:
        case Edit::Z:
            if (are_bits_refused(type)) return fail_mismatch(s, node, type);
            return read_number(s, node, node.edit, item, kind);
        case Edit::L:
            return read_number(s, node, node.edit, item, kind);
        case Edit::G:
            if (type == ItemType::integer) return read_integer(s, node, item, kind);
            if (type == ItemType::logical) return read_number(s, node, Edit::L, item, kind);
            if (type == ItemType::character) return read_characters(s, node, item, kind, size);
            return read_real(s, node, item, kind);
        case Edit::DT:
            return fail_mismatch(s, node, type);
        default:
            if (type != ItemType::real) return fail_mismatch(s, node, type);
            return read_real(s, node, item, kind);
    }
}

void read_with_natural_width(Statement& s, const FormatNode& node, ItemType type, char* item,
                             int kind, std::size_t size) {
    FormatNode full = node;
    fill_natural_width(full, type == ItemType::integer, kind);
    read_through(s, full, type, item, kind, size);
}

// An item before which control edit descriptors stand.
[[gnu::noinline]] void read_behind_controls(Statement& s, ItemType type, char* item, int kind,
                                            std::size_t size) {
    const FormatNode* node = run_format(s, true);
    if (node != nullptr) read_through(s, *node, type, item, kind, size);
}

}  // namespace

void read_item(Statement& s, ItemType type, void* at, int kind, std::size_t size) {
    if (s.failed || (s.end_of_record && s.non_advancing)) return;
    auto* const item = static_cast<char*>(at);
    const FormatNode* node = data_edit_at_hand(s);
    if (node == nullptr) return read_behind_controls(s, type, item, kind, size);
    read_through(s, *node, type, item, kind, size);
}

void read_formatted(Statement& s, ItemType type, char* items, int kind, std::size_t size,
                    std::ptrdiff_t stride, std::size_t count) {
    const bool complex = type == ItemType::complex;
    const std::size_t part = complex ? real_size(kind) : size;
    const ItemType element = complex ? ItemType::real : type;
    for (; count > 0 && !s.failed; --count, items += stride) {
        read_item(s, element, items, kind, part);
        if (complex) read_item(s, element, items + part, kind, part);
    }
}

}  // namespace tarn::fio
