// List-directed input: separators, null values, repeat counts, and the simple types.
//
// What a program reads here is what it reads with gfortran, faulty input included, apart from
// these, where gfortran's reader goes wrong:
// - The record in which a fault is found goes by, always. There, some faults leave its rest to the
//   next READ, and others take the record after it as well.
// - A logical word without points (`true`) ends at a slash or comma like any value, and may be the
//   last thing in a file without a line end.
// - A repeated REAL(10) or COMPLEX(10) value serves all items of its repeat count.
// - On UTF-8 units numbers, default characters and repeat counts are read as on others.
// - A number without a digit (`.`) is a fault that leaves the item as it was; so does a COMPLEX
//   whose second part is at fault.
#include <cstring>

#include "fio/gnu/edit_in.h"
#include "fio/gnu/items.h"
#include "fio/gnu/list_scan.h"
#include "fio/gnu/number_text.h"
#include "fio/gnu/store.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_repeat_count{62, iostat_read_value};
constexpr Fault out_of_range{53, iostat_read_value};
constexpr Fault wrong_type{51, iostat_read_value};

constexpr std::int32_t greatest_repeat = 200000000;

// The line end at the cursor goes by.
void pass_line_end(Statement& s) {
    s.list.at_line_end = true;
    if (s.cursor < s.limit) {
        ++s.cursor;  // a line end inside a record of an internal file
    } else {
        s.list.record_passed = true;
    }
}

bool at_line_end(const Statement& s) {
    return s.cursor == s.limit || *s.cursor == '\n';
}

// The way to a value behind a line end: empty lines go by, and one comma if none has passed since
// the last value.
bool find_value(Statement& s) {
    bool comma_passed = s.list.comma_seen;
    while (skip_to_text(s)) {
        s.list.at_line_end = false;
        if (*s.cursor == '/') {
            ++s.cursor;
            s.list.input_complete = true;
            if (at_end_of_file(s)) fail_end_of_file(s);
            return !s.failed;
        }
        if (*s.cursor != ',' || comma_passed) return true;
        ++s.cursor;
        skip_list_blanks(s);
        if (!at_line_end(s)) return true;
        comma_passed = false;
    }
    return false;
}

// The statement's first value. True: it is there; false: it is null, or there is none.
bool find_first_value(Statement& s) {
    s.list.first = false;
    skip_list_blanks(s);
    if (at_end_of_file(s)) {
        fail_end_of_file(s);
        return false;
    }
    if (!at_list_separator(s)) return true;
    const bool empty_line = at_line_end(s);
    pass_separator(s);
    return empty_line && find_value(s);
}

bool find_next_value(Statement& s) {
    ListState& list = s.list;
    if (list.input_complete) return false;
    if (!list.at_line_end) {
        skip_list_blanks(s);
        if (!at_line_end(s)) return true;
    }
    return find_value(s);
}

void read_integer(Statement& s, char* item, int kind) {
    const char* const begin = s.cursor;
    const char* const end = token_end(begin, s.limit, '\0');
    const std::string_view token(begin, static_cast<std::size_t>(end - begin));
    if (token == "-" || token == "+") {
        s.cursor += 1;
        return fail_incomplete(s, bad_list_value, token);
    }
    const FieldResult result = get_integer(begin, token.size(), item, kind, {});
    if (result.fault.number != 0) {
        return fail_value(
            s, result.fault.iostat == iostat_read_overflow ? out_of_range : bad_list_value, token);
    }
    s.cursor += token.size();
    pass_separator(s);
    if (s.list.repeat > 1)
        save_value(s, ItemType::integer, kind, item, static_cast<std::size_t>(kind));
}

void read_logical(Statement& s, char* item, int kind) {
    const char* const begin = s.cursor;
    const char* const end = token_end(begin, s.limit, '\0');
    const auto length = static_cast<std::size_t>(end - begin);
    if (get_logical(begin, length, item, kind).fault.number != 0) {
        return fail_value(s, bad_list_value, {begin, length});
    }
    s.cursor += length;
    pass_separator(s);
    if (s.list.repeat > 1)
        save_value(s, ItemType::logical, kind, item, static_cast<std::size_t>(kind));
}

// A repeated value meets the next item.
void give_saved(Statement& s, ItemType type, char* item, int kind, std::size_t size) {
    ListState& list = s.list;
    if (list.null_value) {
        --list.repeat;
        return;
    }
    const bool text = type == ItemType::character;
    if (list.saved_type != type || (!text && list.saved_kind != kind)) {
        return fail_value(s, wrong_type, {});
    }
    --list.repeat;
    if (text) return give_saved_text(s, item, kind, size);
    std::memcpy(item, list.saved_value, list.saved_length);
}

void read_value(Statement& s, ItemType type, char* item, int kind, std::size_t size) {
    switch (type) {
        case ItemType::integer:
            return read_integer(s, item, kind);
        case ItemType::logical:
            return read_logical(s, item, kind);
        case ItemType::real:
            return read_list_real(s, item, kind);
        case ItemType::complex:
            return read_list_complex(s, item, kind);
        case ItemType::character:
            return read_list_text(s, item, kind, size);
    }
}

}  // namespace

bool skip_to_text(Statement& s) {
    for (;;) {
        if (s.list.record_passed) {
            if (!next_input_record(s)) return false;
            s.list.record_passed = false;
        }
        skip_list_blanks(s);
        if (!at_line_end(s)) return true;
        pass_line_end(s);
    }
}

void pass_separator(Statement& s) {
    ListState& list = s.list;
    list.comma_seen = false;
    skip_list_blanks(s);
    if (at_line_end(s)) return pass_line_end(s);
    switch (*s.cursor) {
        case ',':
            if (s.modes.decimal == DecimalMark::comma) return;
            [[fallthrough]];
        case ';':
            list.comma_seen = true;
            ++s.cursor;
            skip_list_blanks(s);
            // The comma was the record's last: what follows stands in the next one.
            if (at_line_end(s)) pass_line_end(s);
            return;
        case '/':
            list.input_complete = true;
            ++s.cursor;
            return;
        default:
            return;
    }
}

void fail_value(Statement& s, Fault fault, std::string_view text) {
    char detail[120] = "item ";
    char number[24];
    char* const number_end = number + sizeof number;
    char* digit = number_end;
    for (std::uint32_t item = s.items; digit == number_end || item != 0; item /= 10) {
        *--digit = static_cast<char>('0' + item % 10);
    }
    std::size_t length = 5;
    const auto append = [&](std::string_view part) {
        std::memcpy(detail + length, part.data(), part.size());
        length += part.size();
    };
    append({digit, static_cast<std::size_t>(number_end - digit)});
    append(" of list input");
    if (!text.empty()) {
        append(": \"");
        append(text.substr(0, 60));
        append("\"");
    }
    fail(s, fault, {detail, length});
}

void fail_incomplete(Statement& s, Fault fault, std::string_view text) {
    if (at_end_of_file(s)) return fail_end_of_file(s);
    fail_value(s, fault, text);
}

Repeat take_repeat(Statement& s) {
    if (!is_decimal_digit(*s.cursor)) return Repeat::none;
    const char* const end = digits_end(s.cursor, s.limit);
    if (end == s.limit || *end != '*') return Repeat::none;
    const std::string_view token(s.cursor, static_cast<std::size_t>(end + 1 - s.cursor));
    std::int32_t count = 0;
    for (const char* at = s.cursor; at < end; ++at) {
        count = count * 10 + (*at - '0');
        if (count > greatest_repeat) break;
    }
    if (count == 0 || count > greatest_repeat) {
        fail_value(s, bad_repeat_count, token);
        return Repeat::failed;
    }
    s.list.repeat = count;
    s.cursor += token.size();
    if (!at_list_separator(s)) return Repeat::value;
    if (at_end_of_file(s)) {
        fail_end_of_file(s);
        return Repeat::failed;
    }
    s.list.null_value = true;
    pass_separator(s);
    return Repeat::null;
}

void save_value(Statement& s, ItemType type, int kind, const void* value, std::size_t size) {
    s.list.saved_type = type;
    s.list.saved_kind = kind;
    s.list.saved_length = size;
    std::memcpy(s.list.saved_value, value, size);
}

bool find_list_value(Statement& s) {
    ListState& list = s.list;
    if (list.repeat > 0) {
        if (!list.null_value) fail_value(s, wrong_type, {});
        --list.repeat;
        return false;
    }
    if (!list.first) return find_next_value(s);
    if (!find_first_value(s)) return false;
    if (!at_list_separator(s)) return true;
    pass_separator(s);
    return false;
}

void read_list_item(Statement& s, ItemType type, void* item, int kind, std::size_t size) {
    if (s.failed) return;
    ++s.items;
    ListState& list = s.list;
    char* const target = static_cast<char*>(item);
    if (list.repeat > 0) return give_saved(s, type, target, kind, size);
    if (list.first ? !find_first_value(s) : !find_next_value(s)) return;
    list.repeat = 1;
    list.null_value = false;
    // A decimal comma begins a number where a REAL is wanted.
    const bool number = type == ItemType::real && s.modes.decimal == DecimalMark::comma;
    if (at_list_separator(s) && !(number && s.cursor < s.limit && *s.cursor == ',')) {
        pass_separator(s);
        list.repeat = 0;
        return;
    }
    switch (take_repeat(s)) {
        case Repeat::failed:
            return;
        case Repeat::null:
            break;
        default:
            read_value(s, type, target, kind, size);
            break;
    }
    --list.repeat;
}

void finish_list_read(Statement& s) {
    // What is left of the last record goes by with it. A file that ends where more was promised has
    // come to its end here.
    if (s.failed || s.internal || s.list.at_line_end) return;
    if (s.record_at_hand && at_end_of_file(s)) fail_end_of_file(s);
}

}  // namespace tarn::fio
