// Character items.
#include "fio/native/field.h"
#include "fio/native/list_input.h"

namespace tarn::fio::native {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// A character item must not lie in the internal file that it is moved to or from.
bool check_overlap(const IO_type& io, const char* item, std::ptrdiff_t length) {
    if (!io.internal_file || length == 0) return true;
    const auto begin = reinterpret_cast<std::uintptr_t>(io.internal_start);
    const auto end = reinterpret_cast<std::uintptr_t>(io.internal_end);
    const auto first = reinterpret_cast<std::uintptr_t>(item);
    const bool apart = first >= end || first + static_cast<std::uintptr_t>(length) <= begin;
    return apart || IO_error(86);
}

bool check_edit_code(const EngineState& edit, bool& character) {
    character = edit.edit_code == op_A || edit.edit_code == op_G;
    return character || Data_Mismatch_Error(edit.edit_code, "CHARACTER");
}

// ---- Formatted output ----

// Only where lines have no fixed place for their ends can a text be longer than a record.
bool may_go_in_parts(const IO_type& io) {
    if (io.internal_file || is_direct(io.action)) return false;
    return !io.unit->status.fixed_record_length && io.unit->kind != UnitKind::printer &&
           io.unit->kind != UnitKind::driver;
}

bool put_in_parts(IO_type& io, std::string_view text) {
    while (!text.empty()) {
        const std::int64_t room = room_to_record_end(io);
        const std::string_view part =
            text.substr(0, static_cast<std::size_t>(std::max<std::int64_t>(room, 0)));
        text.remove_prefix(part.size());
        if (!put_text(io, part)) return false;
        if (!text.empty() && !write_part_of_line(io)) return false;
    }
    return true;
}

bool write_edited(IO_type& io, std::string_view text) {
    const auto length = static_cast<std::int64_t>(text.size());
    const std::int64_t width = io.edit.field_width > 0 ? io.edit.field_width : length;
    if (is_stream(io) && text == "\n") {
        io.unit->file.stream_write_position += 2;
        return put_text(io, "\r\n");
    }
    if (io.edit.field_width == 0 && length > io.record_length && may_go_in_parts(io)) {
        return put_in_parts(io, text);
    }
    if (!reserve_field(io, width)) return false;
    const std::int64_t blanks = std::max<std::int64_t>(width - length, 0);
    std::memset(io.record_cursor, ' ', static_cast<std::size_t>(blanks));
    std::memcpy(io.record_cursor + blanks, text.data(), static_cast<std::size_t>(width - blanks));
    pass_output(io, width);
    return true;
}

// ---- Formatted input ----

// A width of its own: the item takes what the record still has and is padded.
bool take_rest(IO_type& io, std::int64_t length) {
    if (is_direct(io.action)) return require_room(io, length);
    if (!io.internal_file && io.unit->status.transparent && !io.unit->status.stream) {
        return place_field(io, length);
    }
    if (length <= room_to_record_last(io) || is_stream(io)) return true;
    if (length <= room_to_record_end(io)) return IO_spacefill_buffer(length);
    // More than the record could ever hold: pad what is there without lengthening it.
    return IO_spacefill_buffer(std::max<std::int64_t>(room_to_record_end(io), 0));
}

bool read_edited(IO_type& io, char* item, std::ptrdiff_t length) {
    std::int64_t width = io.edit.field_width;
    if (width == 0) {
        width = length;
        if (!take_rest(io, width)) return false;
    }
    InputField field = input_field(io, width);
    const std::int64_t taken = field.end - field.begin;
    const std::int64_t skipped = std::min(std::max<std::int64_t>(width - length, 0), taken);
    const std::int64_t count = std::min<std::int64_t>(taken - skipped, length);
    if (is_stream(io) && taken < width && io.unit->status.pad_no && !IO_error(68)) return false;
    std::memcpy(item, field.begin + skipped, static_cast<std::size_t>(count));
    std::memset(item + count, ' ', static_cast<std::size_t>(length - count));
    field.next = field.end;
    return pass_input(io, field, width, false);
}

// ---- List-directed output ----

bool write_list(IO_type& io, std::string_view text) {
    while (!text.empty()) {
        const auto room =
            static_cast<std::size_t>(std::max<std::int64_t>(room_to_record_end(io), 0));
        const std::string_view part = text.substr(0, room);
        text.remove_prefix(part.size());
        if (!put_text(io, part)) return false;
        if (text.empty()) break;
        if (!IO_process_format_reversion()) return false;
        // A record with room for no text at all would go round for ever.
        if (room_to_record_end(io) < 1 && !require_room(io, 1)) return false;
    }
    return true;
}

bool put_delimited(IO_type& io, std::string_view text) {
    if (static_cast<std::int64_t>(text.size()) > room_to_record_end(io)) {
        if (!IO_process_format_reversion()) return false;
    }
    return put_text(io, text);
}

bool write_delimited(IO_type& io, std::string_view text, char delimiter) {
    const std::int64_t needed = static_cast<std::int64_t>(text.size()) + 4;
    if (needed > room_to_record_end(io) && !IO_process_format_reversion()) return false;
    const char start[] = {' ', delimiter};
    const char doubled[] = {delimiter, delimiter};
    if (!put_text(io, {start, 2})) return false;
    for (const char& c : text) {
        const std::string_view shown =
            c == delimiter ? std::string_view(doubled, 2) : std::string_view(&c, 1);
        if (!put_delimited(io, shown)) return false;
    }
    const char end[] = {delimiter, ' '};
    return put_delimited(io, {end, 2});
}

char delimiter_of(const IO_type& io) {
    if (io.internal_file) return '\0';
    const IOStatus& status = io.unit->status;
    return status.delim_apostrophe ? '\'' : status.delim_quote ? '"' : '\0';
}

// ---- List-directed input ----

// The characters of a string as they come, into an item that takes as many as it holds.
class StringItem {
  public:
    StringItem(char* item, std::ptrdiff_t length) : next_(item), left_(length) {}
    void put(char c) {
        if (left_ <= 0) return;
        *next_++ = c;
        --left_;
    }
    void pad() {
        if (left_ > 0) std::memset(next_, ' ', static_cast<std::size_t>(left_));
    }

  private:
    char* next_;
    std::ptrdiff_t left_;
};

bool at_record_end(const IO_type& io) {
    return io.record_cursor > io.record_last;
}

bool read_quoted(IO_type& io, StringItem& out) {
    const char delimiter = *io.record_cursor++;
    for (;;) {
        while (at_record_end(io)) {
            if (io.edit.repeat_left > 0 && !IO_error(85)) return false;
            if (!next_list_record(io)) return false;
        }
        const char c = *io.record_cursor++;
        if (c == delimiter) {
            if (at_record_end(io) || *io.record_cursor != delimiter) return true;
            ++io.record_cursor;
        }
        out.put(c);
    }
}

bool ends_string(char c) {
    return is_blank(c) || c == ',' || c == '/';
}

void read_unquoted(IO_type& io, StringItem& out) {
    while (!at_record_end(io) && !ends_string(*io.record_cursor)) out.put(*io.record_cursor++);
}

// What stands behind a string: its separator, and blanks.
void pass_separator(IO_type& io, bool quoted) {
    EngineState& edit = io.edit;
    if (!quoted && !at_record_end(io) && *io.record_cursor == ',') {
        ++io.record_cursor;
        edit.separator_pending = false;
    }
    while (!at_record_end(io) && is_blank(*io.record_cursor)) ++io.record_cursor;
    if (edit.separator_pending && !at_record_end(io) && *io.record_cursor == '/') {
        edit.slash_seen = true;
    }
}

bool read_list(IO_type& io, char* item, std::ptrdiff_t length) {
    EngineState& edit = io.edit;
    edit.character_item = true;
    const bool found = IO_process_list_directed_input();
    edit.character_item = false;
    if (!found) return false;
    if (edit.value_kind == ValueKind::null) return true;
    if (edit.value_kind != ValueKind::string) return IO_error(52);
    StringItem out(item, length);
    const bool quoted = *io.record_cursor == '\'' || *io.record_cursor == '"';
    if (!quoted) {
        read_unquoted(io, out);
    } else if (!read_quoted(io, out)) {
        return false;
    }
    out.pad();
    pass_separator(io, quoted);
    return true;
}

}  // namespace

bool CH__WSF(const char* item, std::int64_t count, std::ptrdiff_t length) {
    IO_type& io = current();
    length = std::max<std::ptrdiff_t>(length, 0);
    for (; count > 0; --count, item += length) {
        const std::string_view text(item, static_cast<std::size_t>(length));
        if (io.format_ptr == nullptr) {
            const char delimiter = delimiter_of(io);
            if (!check_overlap(io, item, length)) return false;
            if (delimiter != '\0' ? !write_delimited(io, text, delimiter) : !write_list(io, text)) {
                return false;
            }
            continue;
        }
        bool character = false;
        if (!check_overlap(io, item, length) || !IO_process_format()) return false;
        if (!check_edit_code(io.edit, character)) return false;
        if (character && !write_edited(io, text)) return false;
    }
    return true;
}

bool CH__RSF(char* item, std::int64_t count, std::ptrdiff_t length) {
    IO_type& io = current();
    length = std::max<std::ptrdiff_t>(length, 0);
    for (; count > 0; --count, item += length) {
        if (io.format_ptr == nullptr) {
            if (!check_overlap(io, item, length) || !read_list(io, item, length)) return false;
            continue;
        }
        bool character = false;
        if (!check_overlap(io, item, length) || !IO_process_format()) return false;
        if (!check_edit_code(io.edit, character)) return false;
        if (character && !read_edited(io, item, length)) return false;
    }
    return true;
}

}  // namespace tarn::fio::native
