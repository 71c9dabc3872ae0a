// NAMELIST input: the search for the group, and what its variables are given.
#include <array>
#include <cstring>

#include "fio/gnu/items.h"
#include "fio/gnu/list_scan.h"
#include "fio/gnu/namelist_reader.h"
#include "fio/gnu/options.h"
#include "fio/gnu/position.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

bool begins_with_word(const Statement& s, const char* at, std::string_view word) {
    if (static_cast<std::size_t>(s.limit - at) < word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (lower_case(at[i]) != word[i]) return false;
    }
    return true;
}

bool is_standard_input(const Statement& s) {
    return s.unit != nullptr && s.unit->number == gnu_options().stdin_unit;
}

// ---- Questions of somebody who types a group ----

Statement* begin_answer(Caller& caller, TransferSpecifiers& specifiers) {
    caller.unit = gnu_options().stdout_unit;
    caller.has_unit = caller.catches_error = caller.catches_end = caller.catches_eor = true;
    return begin_transfer(caller, specifiers);
}

void end_answer(Statement* statement) {
    end_transfer(statement);
    Caller caller;
    caller.unit = gnu_options().stdout_unit;
    caller.catches_error = true;
    flush_unit(caller);
}

// `?`: the names.
void show_names(const NamelistGroup& group) {
    Caller caller;
    TransferSpecifiers specifiers;
    constexpr std::string_view format = "(A)";
    specifiers.format = format.data();
    specifiers.format_length = format.size();
    Statement* const statement = begin_answer(caller, specifiers);
    const auto line = [&](std::string text) {
        transfer_items(*statement, ItemType::character, text.data(), 1, text.size(), 0, 1);
    };
    line(joined({"&", group.name}));
    for (const NamelistItem& item : group.items) {
        if (!item.derived || item.procedure != nullptr) line(joined({" ", item.path}));
    }
    line("&end");
    end_answer(statement);
}

// `=?`: the names and values, as a WRITE shows them.
void show_values(NamelistGroup& group) {
    Caller caller;
    TransferSpecifiers specifiers;
    specifiers.namelist = &group;
    end_answer(begin_answer(caller, specifiers));
}

// A question mark at the cursor.
void answer(NamelistReader& r, bool values) {
    ++r.s.cursor;
    if (!is_standard_input(r.s)) return;
    if (values) {
        show_values(r.group);
    } else {
        show_names(r.group);
    }
}

// ---- The search for the group ----

constexpr std::array<bool, 256> make_search_stops() {
    std::array<bool, 256> stops{};
    for (const char c : {'&', '$', '!', '?'}) stops[static_cast<unsigned char>(c)] = true;
    return stops;
}
constexpr std::array<bool, 256> search_stops = make_search_stops();

char* find_search_stop(char* at, const char* end) {
    while (at < end && !search_stops[static_cast<unsigned char>(*at)]) ++at;
    return at;
}

// Behind a `&`: whether the group's name stands there, with something that ends it.
bool take_group_name(NamelistReader& r) {
    Statement& s = r.s;
    const std::string_view name = r.group.name;
    if (begins_with_word(s, s.cursor, name)) {
        const char* const end = s.cursor + name.size();
        if (end == s.limit || is_list_separator(*end) || *end == '!') {
            s.cursor += name.size();
            return true;
        }
    }
    const char* end = s.cursor;
    while (end < s.limit && is_name_character(*end)) ++end;
    const std::string_view other(s.cursor, static_cast<std::size_t>(end - s.cursor));
    if (!begins_with_word(s, s.cursor, "end")) note_other_group(r, other);
    return false;
}

bool find_group(NamelistReader& r) {
    Statement& s = r.s;
    for (;;) {
        s.cursor = find_search_stop(s.cursor, s.limit);
        if (s.cursor == s.limit) {
            if (try_next_input_record(s)) continue;
            return !s.failed && fail_namelist_end(r);
        }
        switch (*s.cursor) {
            case '!': {
                const auto left = static_cast<std::size_t>(s.limit - s.cursor);
                auto* const end = static_cast<char*>(std::memchr(s.cursor, '\n', left));
                s.cursor = end != nullptr ? end : s.limit;
                break;
            }
            case '?':
                answer(r, s.cursor > s.begin && s.cursor[-1] == '=');
                break;
            default:
                ++s.cursor;
                if (take_group_name(r)) return true;
        }
    }
}

// ---- The group ----

// The next variable or the end; false: there is none in the text that is left.
bool find_object(NamelistReader& r) {
    while (find_text(r)) {
        const char c = *r.s.cursor;
        if (c != ',' && c != ';') return true;
        ++r.s.cursor;
    }
    return false;
}

bool fail_object(NamelistReader& r) {
    const Statement& s = r.s;
    const char* const end = token_end(s.cursor, s.limit, '\0');
    std::string what = "\"";
    what.append(s.cursor, static_cast<std::size_t>(end - s.cursor < 60 ? end - s.cursor : 60));
    if (r.item != NamelistReader::no_item && *s.cursor != '%') {
        what.append("\" behind the values of ").append(r.group.items[r.item].path);
        return fail_namelist(r, namelist_too_many, s.cursor, what);
    }
    return fail_namelist(r, namelist_syntax, s.cursor, what.append("\" is no name"));
}

bool read_object(NamelistReader& r) {
    Statement& s = r.s;
    if (!r.name_waits && !begins_name(*s.cursor)) return fail_object(r);
    NamelistSelection selection;
    if (!read_designator(r, selection) || !find_text(r)) return false;
    if (*s.cursor == '/') return true;
    if (*s.cursor != '=') {
        std::string what = "an equals sign must follow ";
        what.append(r.group.items[selection.item].path);
        return fail_namelist(r, namelist_syntax, s.cursor, what);
    }
    ++s.cursor;
    return read_namelist_values(r, selection);
}

// `=?` or `?`; false: a fault.
bool read_question(NamelistReader& r) {
    Statement& s = r.s;
    const bool values = *s.cursor == '=';
    if (values) ++s.cursor;
    if (s.cursor == s.limit || *s.cursor != '?') {
        return fail_namelist(r, namelist_syntax, s.cursor - 1, "an equals sign without a name");
    }
    answer(r, values);
    return true;
}

void read_group(NamelistReader& r) {
    Statement& s = r.s;
    for (;;) {
        if (!r.name_waits) {
            if (!find_object(r)) return;
            const char c = *s.cursor;
            if (c == '/') return;
            if (c == '&' || c == '$') {
                if (begins_with_word(s, s.cursor + 1, "end")) return;
                fail_namelist(r, namelist_syntax, s.cursor,
                              "the group has no / or &END in front of this");
                return;
            }
            if (c == '?' || c == '=') {
                if (!read_question(r)) return;
                continue;
            }
        }
        if (!read_object(r)) return;
    }
}

}  // namespace

bool try_find_text(NamelistReader& r) {
    Statement& s = r.s;
    for (;;) {
        char* at = s.cursor;
        while (at < s.limit && is_namelist_blank(*at)) ++at;
        if (at < s.limit && *at != '!') {
            s.cursor = at;
            return true;
        }
        if (at < s.limit) {
            const auto left = static_cast<std::size_t>(s.limit - at);
            at = static_cast<char*>(std::memchr(at, '\n', left));
            s.cursor = at != nullptr ? at : s.limit;
            if (at != nullptr) continue;
        }
        if (!try_next_input_record(s)) {
            s.cursor = s.limit;
            return false;
        }
    }
}

bool find_text(NamelistReader& r) {
    if (try_find_text(r)) return true;
    return !r.s.failed && fail_namelist_end(r);
}

void skip_line_blanks(Statement& s) {
    char* at = s.cursor;
    while (at < s.limit && is_list_blank(*at)) ++at;
    s.cursor = at;
}

void read_namelist(Statement& s) {
    NamelistReader reader(s, *s.namelist);
    if (!find_group(reader)) return;
    reader.group_found = true;
    reader.group_line = namelist_line(s);
    read_group(reader);
}

}  // namespace tarn::fio
