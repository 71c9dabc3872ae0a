// The values behind an equals sign: as many as there are, up to the next name or the group's end.
#include <algorithm>
#include <array>
#include <cstring>

#include "fio/gnu/edit_in.h"
#include "fio/gnu/items.h"
#include "fio/gnu/list_scan.h"
#include "fio/gnu/long_real.h"
#include "fio/gnu/namelist_reader.h"
#include "fio/gnu/number_window.h"
#include "fio/gnu/real_words.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_repeat_count{62, iostat_read_value};
constexpr Fault value_overflow{53, iostat_read_value};
constexpr Fault open_missing{93, iostat_read_value};
constexpr Fault close_missing{91, iostat_read_value};

constexpr std::int32_t greatest_repeat = 200000000;

// What stands where a value may stand.
enum class Next : unsigned char { value, word, null, nothing, failed };

constexpr std::array<bool, 256> make_value_ends() {
    std::array<bool, 256> ends{};
    for (const char c : {' ', '\t', '\r', '\n', ',', ';', '/', '!', '&', '$'}) {
        ends[static_cast<unsigned char>(c)] = true;
    }
    return ends;
}
constexpr std::array<bool, 256> value_ends = make_value_ends();

constexpr bool ends_text(char c) {
    return value_ends[static_cast<unsigned char>(c)];
}

// Where the value that begins at `at` ends. `mark`: a decimal comma, which is part of a number.
const char* value_end(const char* at, const char* end, char mark) {
    while (at < end && (!ends_text(*at) || *at == mark)) ++at;
    return at;
}

std::string_view text_at(const Statement& s, char mark = '\0') {
    const char* const end = value_end(s.cursor, s.limit, mark);
    return {s.cursor, static_cast<std::size_t>(end - s.cursor)};
}

void pass(Statement& s, std::size_t count) {
    s.cursor += count;
}

const char* type_words(const NamelistItem& item) {
    switch (item.type) {
        case ItemType::integer:
            return "no INTEGER";
        case ItemType::logical:
            return "no LOGICAL";
        case ItemType::real:
            return "no REAL";
        case ItemType::complex:
            return "no COMPLEX";
        case ItemType::character:
            return "no CHARACTER value: it needs quotes";
    }
    return "";
}

bool fail_value(NamelistReader& r, const NamelistItem& item, const char* at, std::string_view text,
                Fault fault = namelist_bad_value) {
    constexpr std::size_t shown = 60;
    std::string what = "\"";
    what.append(text.substr(0, shown)).append("\" for ").append(item.path);
    what.append(fault.number == value_overflow.number ? " is out of range" : " is ");
    if (fault.number != value_overflow.number) what.append(type_words(item));
    return fail_namelist(r, fault, at, what);
}

// The separator behind a value. One in the next record is another value's.
void pass_separator(NamelistReader& r) {
    Statement& s = r.s;
    char* at = s.cursor;
    while (at < s.limit && is_list_blank(*at)) ++at;
    if (at < s.limit && r.ends_value(*at)) ++at;
    s.cursor = at;
}

// A number of up to 32 characters and the common shape, or else whatever is one.
bool real_of(const NamelistReader& r, std::string_view text, char* item, int kind) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const EditModes& modes = r.s.modes;
    if (text.empty()) return false;
    if (text.size() <= NumberWindow::widest) {
        const bool in_record = begin >= r.s.begin && begin < r.s.limit;
        const NumberWindow window(begin, static_cast<int>(text.size()),
                                  in_record ? r.s.room_end : end);
        PlainReal real;
        if (scan_plain_real(window, 0, r.comma ? ',' : '.', real) &&
            real.end == static_cast<int>(text.size())) {
            store_decimal(real.significand, std::int64_t{real.exponent} - real.decimals,
                          real.negative, input_rounding(modes), kind, item);
            return true;
        }
    }
    const bool negative = *begin == '-';
    RealWord word = RealWord::nan;
    const char* const name = negative || *begin == '+' ? begin + 1 : begin;
    if (scan_real_word(name, end, NanText::no_separators, word) == end) {
        store_real_word(word, negative, item, kind);
        return true;
    }
    EditModes without_blanks = modes;
    without_blanks.blank = Blank::null;
    LongRealScanner scanner(begin, end, without_blanks);
    if (!scanner.scan() || scanner.word() != nullptr || !scanner.has_digit()) return false;
    DecimalNumber number = scanner.number();
    number.exponent += scanner.written();
    to_binary(number, input_rounding(modes), kind, item);
    return true;
}

// A value that is one piece of text. `at`: where it stands, for the message.
bool store_text(NamelistReader& r, const NamelistItem& item, std::string_view text, const char* at,
                char* target) {
    Fault fault{0, 0};
    switch (item.type) {
        case ItemType::integer:
            if (text.empty() || text == "-" || text == "+") return fail_value(r, item, at, text);
            fault = get_integer(text.data(), text.size(), target, item.kind, {}).fault;
            break;
        case ItemType::logical:
            if (text.empty()) return fail_value(r, item, at, text);
            fault = get_logical(text.data(), text.size(), target, item.kind).fault;
            break;
        default:
            if (!real_of(r, text, target, item.kind)) fault = namelist_bad_value;
            break;
    }
    if (fault.number == 0) return true;
    const bool overflow = fault.iostat == iostat_read_overflow;
    return fail_value(r, item, at, text, overflow ? value_overflow : namelist_bad_value);
}

bool read_complex_part(NamelistReader& r, const NamelistItem& item, char* part) {
    Statement& s = r.s;
    if (!find_text(r)) return false;
    std::string_view text = text_at(s, r.comma ? ',' : '\0');
    const std::size_t bracket = text.find(')');
    RealWord word = RealWord::nan;
    const char* const word_end = scan_real_word(s.cursor, s.limit, NanText::no_separators, word);
    if (word_end != nullptr && word_end > text.data()) {
        text = {s.cursor, static_cast<std::size_t>(word_end - s.cursor)};
    } else if (bracket != std::string_view::npos) {
        text = text.substr(0, bracket);
    }
    if (!real_of(r, text, part, item.kind)) {
        return fail_value(r, item, s.cursor, text.empty() ? std::string_view(s.cursor, 1) : text);
    }
    pass(s, text.size());
    return true;
}

bool read_complex_mark(NamelistReader& r, const NamelistItem& item, char mark, Fault fault) {
    Statement& s = r.s;
    if (!find_text(r)) return false;
    if (*s.cursor == mark) {
        ++s.cursor;
        return true;
    }
    const std::string_view text = text_at(s);
    return fail_value(r, item, s.cursor, text.empty() ? std::string_view(s.cursor, 1) : text,
                      fault);
}

bool read_complex(NamelistReader& r, const NamelistItem& item, char* target) {
    const std::size_t part = real_size(item.kind);
    alignas(16) char value[32] = {};
    const bool read =
        read_complex_mark(r, item, '(', open_missing) && read_complex_part(r, item, value) &&
        read_complex_mark(r, item, r.comma ? ';' : ',', namelist_bad_value) &&
        read_complex_part(r, item, value + part) && read_complex_mark(r, item, ')', close_missing);
    if (!read) return false;
    // The bytes that fill up a REAL(10) stay as they are.
    const std::size_t bytes = item.kind == 10 ? 10 : part;
    std::memcpy(target, value, bytes);
    std::memcpy(target + part, value + part, bytes);
    return true;
}

// Whether text of a value is over at the cursor.
bool at_value_end(const Statement& s) {
    return s.cursor == s.limit || ends_text(*s.cursor);
}

bool read_characters(NamelistReader& r, const NamelistItem& item, char* target, std::size_t length,
                     bool unquoted) {
    Statement& s = r.s;
    const bool quoted = *s.cursor == '\'' || *s.cursor == '"';
    if (!quoted && !unquoted) return fail_value(r, item, s.cursor, text_at(s));
    if (!(quoted ? keep_quoted_text(s) : keep_bare_text(s, text_at(s)))) return false;
    give_saved_text(s, target, item.kind, length);
    if (!s.record_at_hand || at_value_end(s)) return true;
    return fail_namelist(r, namelist_bad_value, s.cursor,
                         joined({"no separator behind the value of ", item.path}));
}

// Keeps a word before its record goes by.
void keep_word(NamelistReader& r, std::string_view text) {
    r.word_length = std::min(text.size(), NamelistReader::longest_word);
    std::memcpy(r.word, text.data(), r.word_length);
}

bool is_value_word(const NamelistItem& item, std::string_view text) {
    if (text.empty()) return false;
    if (item.type == ItemType::logical) {
        const char first = lower_case(text[0]);
        return first == 't' || first == 'f';
    }
    RealWord word = RealWord::nan;
    return item.type == ItemType::real &&
           scan_real_word(text.data(), text.data() + text.size(), NanText::no_separators, word) ==
               text.data() + text.size();
}

// Whether a letter at the cursor begins the next name or a value. `unquoted`: a CHARACTER value
// may do without quotes here.
Next look_at_word(NamelistReader& r, const NamelistItem& item, bool unquoted) {
    const Statement& s = r.s;
    const char* at = s.cursor;
    while (at < s.limit && is_name_character(*at)) ++at;
    const std::string_view text = text_at(s);
    const bool value = is_value_word(item, text);
    // NAN(...) is a value.
    const bool subscripts =
        at < s.limit && (*at == '(' || *at == '%') && !(value && item.type == ItemType::real);
    while (at < s.limit && is_list_blank(*at)) ++at;
    const bool over = at == s.limit || *at == '!' || *at == '\n';
    if (!over && (*at == '=' || subscripts)) return Next::nothing;
    if (value) return over ? Next::word : Next::value;
    if (unquoted && item.type == ItemType::character) return Next::value;
    if (over) return Next::nothing;
    fail_value(r, item, s.cursor, text);
    return Next::failed;
}

// A word is the last thing in its record: what comes behind it tells whether it is a name.
Next settle_word(NamelistReader& r, const NamelistItem& item, char* target) {
    Statement& s = r.s;
    const std::string_view text = text_at(s);
    keep_word(r, text);
    pass(s, text.size());
    if (try_find_text(r) && *s.cursor == '=') {
        r.name_waits = true;
        return Next::nothing;
    }
    return store_text(r, item, r.waiting_name(), s.cursor, target) ? Next::value : Next::failed;
}

Next find_value(NamelistReader& r, const NamelistItem& item) {
    Statement& s = r.s;
    if (!find_text(r)) return Next::failed;
    const char c = *s.cursor;
    if (r.ends_value(c)) {
        ++s.cursor;
        return Next::null;
    }
    if (c == '/' || c == '&' || c == '$' || c == '?' || c == '=') return Next::nothing;
    return begins_name(c) ? look_at_word(r, item, false) : Next::value;
}

// A count that repeats the next value, `3*`.
Next take_repeat(NamelistReader& r, const NamelistItem& item) {
    Statement& s = r.s;
    const char* const end = digits_end(s.cursor, s.limit);
    if (end == s.cursor || end == s.limit || *end != '*') return Next::value;
    const std::string_view text(s.cursor, static_cast<std::size_t>(end + 1 - s.cursor));
    std::int32_t count = 0;
    for (const char* at = s.cursor; at < end && count <= greatest_repeat; ++at) {
        count = count * 10 + (*at - '0');
    }
    if (count == 0 || count > greatest_repeat) {
        fail_namelist(r, bad_repeat_count, s.cursor, joined({"\"", text.substr(0, 60), "\""}));
        return Next::failed;
    }
    s.list.repeat = count;
    pass(s, text.size());
    if (at_value_end(s)) {
        pass_separator(r);
        return Next::null;
    }
    return begins_name(*s.cursor) ? look_at_word(r, item, true) : Next::value;
}

// A repeated value meets the next element.
bool give_again(NamelistReader& r, const NamelistItem& item, char* target, std::size_t length) {
    ListState& list = r.s.list;
    --list.repeat;
    if (list.null_value) return true;
    const bool text = item.type == ItemType::character;
    if (list.saved_type != item.type || (!text && list.saved_kind != item.kind)) {
        return fail_namelist(
            r, namelist_too_many, r.s.cursor,
            joined({"a repeated value goes on into ", item.path, ", which is of another type"}));
    }
    if (text) {
        give_saved_text(r.s, target, item.kind, length);
    } else {
        std::memcpy(target, list.saved_value, list.saved_length);
    }
    return true;
}

void keep_for_repeat(ListState& list, const NamelistItem& item, const char* value) {
    list.saved_type = item.type;
    if (item.type == ItemType::character) return;
    list.saved_kind = item.kind;
    list.saved_length = item.size;
    std::memcpy(list.saved_value, value, item.size);
}

// The value that stands at the cursor.
bool read_value(NamelistReader& r, const NamelistItem& item, char* target, std::size_t length,
                bool unquoted) {
    Statement& s = r.s;
    if (item.type == ItemType::character) {
        return read_characters(r, item, target, length, unquoted);
    }
    if (item.type == ItemType::complex) return read_complex(r, item, target);
    const bool number = item.type == ItemType::real;
    const std::string_view text = text_at(s, number && r.comma ? ',' : '\0');
    if (!store_text(r, item, text, s.cursor, target)) return false;
    pass(s, text.size());
    return true;
}

// One element; false: there is no value for it, or a fault.
bool read_element(NamelistReader& r, const NamelistItem& item, char* target, std::size_t length) {
    Statement& s = r.s;
    ListState& list = s.list;
    if (list.repeat > 0) return give_again(r, item, target, length);
    Next next = find_value(r, item);
    if (next == Next::null) return true;
    list.repeat = 1;
    // CHARACTER may do without quotes behind a repeat count, and where it begins with a digit.
    const bool digit = next == Next::value && is_decimal_digit(*s.cursor);
    if (digit) next = take_repeat(r, item);
    list.null_value = next == Next::null;
    if (next == Next::word) {
        next = settle_word(r, item, target);
        if (next == Next::value) keep_for_repeat(list, item, target);
    } else if (next == Next::value) {
        if (!read_value(r, item, target, length, digit)) return false;
        if (list.repeat > 1) keep_for_repeat(list, item, target);
        if (s.record_at_hand) pass_separator(r);
    }
    if (next == Next::nothing || next == Next::failed) {
        list.repeat = 0;
        return false;
    }
    --list.repeat;
    return true;
}

bool read_item(NamelistReader& r, std::uint32_t index, char* first);

// Whether the values of a variable end here: at the group's end, or where the next name stands.
bool at_values_end(const NamelistReader& r) {
    const Statement& s = r.s;
    const char* at = s.cursor;
    if (*at == '/' || *at == '&' || *at == '$') return true;
    if (!begins_name(*at)) return false;
    while (at < s.limit && is_name_character(*at)) ++at;
    if (at < s.limit && (*at == '(' || *at == '%')) return true;
    while (at < s.limit && is_list_blank(*at)) ++at;
    return at < s.limit && *at == '=';
}

// An element whose type has a procedure: what its value looks like, that alone knows.
bool read_by_procedure(NamelistReader& r, const NamelistItem& item, char* element) {
    const auto read = namelist_procedures().read;
    if (read == nullptr) {
        return fail_namelist(r, namelist_no_procedure, r.s.cursor,
                             joined({"NAMELIST with a procedure of the type of ", item.path}));
    }
    if (!find_text(r) || at_values_end(r)) return false;
    read(r.s, item, element);
    return !r.s.failed;
}

// One element of an item of any type.
bool read_any(NamelistReader& r, std::uint32_t index, char* element, std::size_t length) {
    const NamelistItem& item = r.group.items[index];
    if (item.procedure != nullptr) return read_by_procedure(r, item, element);
    if (!item.derived) return read_element(r, item, element, length);
    for (std::uint32_t i = index + 1; i < item.end; i = r.group.items[i].end) {
        if (!read_item(r, i, element + r.group.items[i].place)) return false;
    }
    return true;
}

// All elements of a component.
bool read_item(NamelistReader& r, std::uint32_t index, char* first) {
    const NamelistItem& item = r.group.items[index];
    ArrayWalk walk;
    walk.element = first;
    const NamelistDimension* dimension = r.group.dimensions_of(item);
    for (int i = 0; i < item.rank; ++i, ++dimension) {
        walk.add(dimension->extent(), dimension->stride * static_cast<std::int64_t>(item.size));
    }
    if (walk.count() == 0) return true;
    do {
        if (!read_any(r, index, walk.element, item.length)) return false;
    } while (walk.next());
    return true;
}

}  // namespace

bool read_namelist_values(NamelistReader& r, NamelistSelection& selection) {
    ListState& list = r.s.list;
    list.repeat = 0;
    ArrayWalk& walk = selection.walk;
    if (walk.count() == 0) return true;
    bool more = true;
    while (more && read_any(r, selection.item, walk.element, selection.length)) more = walk.next();
    if (r.s.failed) return false;
    if (list.repeat == 0) return true;
    return fail_namelist(
        r, namelist_too_many, r.s.cursor,
        joined({"the repeat count of ", r.group.items[selection.item].path, " is too large"}));
}

}  // namespace tarn::fio
