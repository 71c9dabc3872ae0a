#include "fio/native/list_input.h"

#include <limits>

#include "fio/native/field.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t bad_character = 52;
constexpr std::int32_t bad_repeat = 62;

enum ComplexState : std::int32_t { outside = 0, behind_bracket = 1, behind_comma = 2 };

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}
bool is_quote(char c) {
    return c == '\'' || c == '"';
}
bool is_separator(char c) {
    return is_blank(c) || c == ',' || c == '/';
}

char* record_limit(const IO_type& io) {
    return io.record_last + 1;
}
char* pass_blanks(const IO_type& io, char* place) {
    while (place < record_limit(io) && is_blank(*place)) ++place;
    return place;
}
char* find_separator(const IO_type& io, char* place) {
    while (place < record_limit(io) && !is_separator(*place)) ++place;
    return place;
}

bool take_null(EngineState& edit) {
    edit.value_kind = edit.last_kind = ValueKind::null;
    return true;
}

// A value that was reported, with the message ignored, is none.
bool complain(IO_type& io, std::int32_t message) {
    if (!IO_error(message)) return false;
    io.edit.complex_state = outside;
    if (io.record_cursor < record_limit(io)) ++io.record_cursor;
    return take_null(io.edit);
}

// The field from the cursor up to `end`. It is remembered for a repeat count.
bool take_field(IO_type& io, const char* end, ValueKind kind) {
    EngineState& edit = io.edit;
    const std::ptrdiff_t width = end - io.record_cursor;
    edit.separator_pending = true;
    if (width == 0 && kind != ValueKind::string) {
        if (kind == ValueKind::constant || edit.complex_part) {
            return complain(io, bad_character);
        }
        return take_null(edit);
    }
    edit.field_width = static_cast<std::int32_t>(width);
    edit.value_kind = edit.last_kind = kind;
    edit.saved_offset = io.record_cursor - edit.saved_string;
    edit.saved_width = edit.field_width;
    edit.saved_edit = edit.edit_code;
    return true;
}

// The last value again: its field still stands in the record.
bool repeat_last_value(IO_type& io) {
    EngineState& edit = io.edit;
    --edit.repeat_left;
    edit.value_kind = edit.last_kind;
    if (edit.last_kind == ValueKind::null) return true;
    if (edit.last_kind == ValueKind::complex) return complain(io, bad_character);
    io.record_cursor = edit.saved_string;
    if (edit.character_item) {
        edit.value_kind = ValueKind::string;
        return true;
    }
    io.record_cursor += edit.saved_offset;
    edit.field_width = edit.saved_width;
    edit.edit_code = edit.saved_edit;
    return true;
}

// Moves the cursor to the next value, over separators and records. `done`: there is none.
bool find_value(IO_type& io, bool& done) {
    EngineState& edit = io.edit;
    done = false;
    for (;;) {
        io.record_cursor = pass_blanks(io, io.record_cursor);
        if (io.record_cursor >= record_limit(io)) {
            if (!next_list_record(io)) return false;
            continue;
        }
        if (!edit.separator_pending) return true;
        const char c = *io.record_cursor;
        if (c == '/' && edit.complex_state == outside) {
            edit.slash_seen = true;
            done = true;
            return take_null(edit);
        }
        if (c != ',') return true;
        edit.separator_pending = false;
        if (edit.complex_state != outside) edit.complex_state = behind_comma;
        ++io.record_cursor;
    }
}

// The asterisk of a repeat count in front of a value, or null.
char* find_asterisk(const IO_type& io) {
    char* place = io.record_cursor;
    char* const end = find_separator(io, place);
    while (place < end && *place != '*' && !is_quote(*place)) ++place;
    return place < end && *place == '*' ? place : nullptr;
}

bool take_repeat_count(IO_type& io) {
    EngineState& edit = io.edit;
    char* const asterisk = find_asterisk(io);
    if (asterisk == nullptr) return true;
    std::int64_t count = 0;
    bool digits = asterisk > io.record_cursor;
    for (const char* place = io.record_cursor; place < asterisk; ++place) {
        digits = digits && is_digit(*place);
        constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
        if (digits) count = std::min<std::int64_t>(count * 10 + (*place - '0'), most);
    }
    // An unquoted string may hold an asterisk.
    if (!digits && edit.character_item) return true;
    if (!digits || count == 0) return IO_error(bad_repeat);
    io.record_cursor = asterisk + 1;
    if (!edit.character_item && find_asterisk(io) != nullptr && !IO_error(bad_character)) {
        return false;
    }
    edit.repeat_left = static_cast<std::int32_t>(count - 1);
    return true;
}

// A quoted string for an item that isn't CHARACTER: stripped in place.
bool take_quoted(IO_type& io) {
    if (state().ansi_mode && !IO_error(bad_character)) return false;
    char* const limit = record_limit(io);
    const char quote = *io.record_cursor;
    char* const begin = io.record_cursor + 1;
    char* out = begin;
    char* place = begin;
    for (;; ++place) {
        if (place >= limit) return complain(io, bad_character);
        if (*place == quote) {
            if (place + 1 >= limit || place[1] != quote) break;
            ++place;
        }
        *out++ = *place;
    }
    std::memset(out, ' ', static_cast<std::size_t>(place + 1 - out));
    io.record_cursor = begin;
    return take_field(io, out, ValueKind::string);
}

std::int32_t edit_code_of(char letter) {
    switch (fold(letter)) {
        case 'O':
            return op_O;
        case 'H':
        case 'Z':
            return edit_Z;
        case 'B':
            return op_B;
        default:
            return 0;
    }
}

// A letter and a quoted constant: Z'FF'.
bool take_constant(IO_type& io) {
    char* const begin = io.record_cursor + 2;
    const char quote = io.record_cursor[1];
    io.edit.edit_code = edit_code_of(*io.record_cursor);
    if (io.edit.edit_code == 0) return complain(io, bad_character);
    auto* const end = static_cast<char*>(
        std::memchr(begin, quote, static_cast<std::size_t>(record_limit(io) - begin)));
    if (end == nullptr) return complain(io, bad_character);
    *end = ' ';
    io.record_cursor = begin;
    return take_field(io, end, ValueKind::constant);
}

bool take_plain(IO_type& io) {
    EngineState& edit = io.edit;
    const char first = *io.record_cursor;
    if (!state().ansi_mode && (first == ':' || first == '!')) {
        edit.edit_code = first == ':' ? op_O : edit_Z;
        ++io.record_cursor;
        return take_field(io, find_separator(io, io.record_cursor), ValueKind::constant);
    }
    const bool letter = fold(first) >= 'A' && fold(first) <= 'Z';
    if (!state().ansi_mode && letter && io.record_cursor + 1 < record_limit(io) &&
        is_quote(io.record_cursor[1])) {
        return take_constant(io);
    }
    char* const end = find_separator(io, io.record_cursor);
    if (end < record_limit(io) && *end == '/') edit.slash_seen = true;
    return take_field(io, end, ValueKind::field);
}

// The real part stands between the bracket and a comma or a blank.
bool take_real_part(IO_type& io) {
    EngineState& edit = io.edit;
    if (*io.record_cursor != '(') return complain(io, 93);
    edit.complex_state = behind_bracket;
    io.record_cursor = pass_blanks(io, io.record_cursor + 1);
    char* const limit = record_limit(io);
    char* end = io.record_cursor;
    while (end < limit && !is_separator(*end)) {
        if (*end == '(' || *end == ')') return complain(io, bad_character);
        ++end;
    }
    if (end == io.record_cursor) return complain(io, bad_character);
    if (end < limit && *end == '/') return complain(io, bad_character);
    if (end < limit && *end == ',') edit.complex_state = behind_comma;
    return take_field(io, end, ValueKind::field);
}

// The imaginary part runs up to the closing bracket.
bool take_imaginary_part(IO_type& io) {
    EngineState& edit = io.edit;
    if (edit.complex_state != behind_comma) return complain(io, bad_character);
    char* const limit = record_limit(io);
    char* place = io.record_cursor;
    while (place < limit && *place != ')') {
        if (*place == '(' || *place == ',' || *place == '/') return complain(io, bad_character);
        ++place;
    }
    if (place >= limit) return complain(io, 91);
    *place = ' ';
    edit.complex_state = outside;
    char* end = place;
    while (end > io.record_cursor && is_blank(end[-1])) --end;
    return take_field(io, end, ValueKind::field);
}

bool take_value(IO_type& io) {
    EngineState& edit = io.edit;
    edit.edit_code = 0;
    edit.separator_pending = false;
    edit.saved_string = io.record_cursor;
    if (edit.complex_state != outside) return take_imaginary_part(io);
    if (!edit.no_repeat && !take_repeat_count(io)) return false;
    edit.saved_string = io.record_cursor;
    const char c = io.record_cursor < record_limit(io) ? *io.record_cursor : ' ';
    if (is_separator(c)) {
        if (c == '/') edit.slash_seen = true;
        edit.separator_pending = true;
        return take_null(edit);
    }
    if (edit.character_item) return take_field(io, io.record_cursor, ValueKind::string);
    if (edit.complex_part) return take_real_part(io);
    return is_quote(c) ? take_quoted(io) : take_plain(io);
}

}  // namespace

bool next_list_record(IO_type& io) {
    const std::int32_t repeat_left = io.edit.repeat_left;
    if (!IO_process_format_reversion()) return false;
    io.edit.repeat_left = repeat_left;
    return true;
}

bool IO_process_list_directed_input() {
    IO_type& io = current();
    EngineState& edit = io.edit;
    if (edit.repeat_left > 0 && !edit.complex_part) return repeat_last_value(io);
    if (edit.slash_seen) return take_null(edit);
    bool done = false;
    if (!find_value(io, done)) return false;
    return done || take_value(io);
}

bool settle_list_value(IO_type& io, void* item, bool& done) {
    const EngineState& edit = io.edit;
    done = true;
    switch (edit.value_kind) {
        case ValueKind::null:
            return true;
        case ValueKind::string:
            return IO_read_char_into_numeric(io, item, io.item_size);
        case ValueKind::complex:
            return IO_error(bad_character);
        default:
            done = false;
            return true;
    }
}

}  // namespace tarn::fio::native
