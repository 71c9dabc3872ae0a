// NAMELIST input: the search for the group, its variables, and what they are given.
//
// Two things go beyond the rules of old, which would otherwise lose what WNML__ has written or what
// everybody writes: the digits of a REAL in front of its point may be any number, and a comma may
// stand between the values of a structure.
#include <algorithm>
#include <cstring>

#include "fio/native/connect.h"
#include "fio/native/field.h"
#include "fio/native/namelist.h"
#include "fio/native/namelist_body.h"
#include "fio/native/namelist_table.h"
#include "fio/native/namelist_value.h"
#include "fio/native/record.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t end_in_group = 201;
constexpr std::int32_t syntax_error = 202;
constexpr std::int32_t too_many_values = 203;
constexpr std::int32_t bad_identifier = 204;
constexpr std::int32_t wrong_subscripts = 205;
constexpr std::int32_t out_of_range = 206;
constexpr std::int32_t bad_character = 52;
constexpr std::int32_t bad_repeat = 62;

constexpr std::size_t longest_name = 180;

// The subscripts of one dimension, and the way from one to the next in bytes.
struct Triple {
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t stride = 0;
};

// The selected part of a variable. A CHARACTER's substring stands apart.
struct Selection {
    Triple triples[namelist_table_rank];
    bool single = false;  // one element: the values go on behind it up to the array's end
    std::int64_t substring_first = 1;
    std::int64_t substring_last = 0;
};

bool is_letter(char c) {
    return fold(c) >= 'A' && fold(c) <= 'Z';
}
bool is_name_character(char c) {
    return is_letter(c) || is_digit(c) || c == '_';
}

void initialise_subscripts(const NamelistEntry& entry, Selection& selection) {
    std::int64_t stride = entry.element_size();
    for (int i = 0; i < entry.rank; ++i) {
        selection.triples[i] = {entry.lower[i], entry.upper[i], stride};
        stride *= entry.extent(i);
    }
    selection.substring_first = 1;
    selection.substring_last = entry.length;
}

// From the array's first element to the first that is selected, in bytes.
std::int64_t calculate_array_offset(const NamelistEntry& entry, const Selection& selection) {
    std::int64_t offset = 0;
    for (int i = 0; i < entry.rank; ++i) {
        const Triple& triple = selection.triples[i];
        offset += (triple.first - entry.lower[i]) * triple.stride;
    }
    return offset;
}

// The selected elements in array order.
class Elements {
  public:
    Elements(const NamelistEntry& entry, const Selection& selection)
        : selection_(selection),
          rank_(entry.rank),
          offset_(calculate_array_offset(entry, selection)) {
        if (selection.single) {
            const std::int64_t size = std::max<std::int64_t>(entry.element_size(), 1);
            left_ = entry.element_count() - offset_ / size;
            step_ = size;
            return;
        }
        for (int i = 0; i < rank_; ++i) {
            const Triple& triple = selection.triples[i];
            index_[i] = triple.first;
            left_ *= triple.last >= triple.first ? triple.last - triple.first + 1 : 0;
        }
    }
    std::int64_t left() const { return left_; }
    std::int64_t offset() const { return offset_; }
    void next() {
        --left_;
        offset_ += step_;
        for (int i = 0; i < rank_ && step_ == 0; ++i) {
            const Triple& triple = selection_.triples[i];
            offset_ += triple.stride;
            if (++index_[i] <= triple.last) return;
            offset_ -= (triple.last - triple.first + 1) * triple.stride;
            index_[i] = triple.first;
        }
    }

  private:
    const Selection& selection_;
    int rank_;
    std::int64_t offset_;
    std::int64_t left_ = 1;
    std::int64_t step_ = 0;  // to the next element in memory; 0: by the triples
    std::int64_t index_[namelist_table_rank] = {};
};

// ---- Subscripts ----

bool read_subscript(std::int64_t& value) {
    std::int32_t read = 0;
    if (!get_integer(read)) return false;
    value = read;
    return true;
}

// `first:last`, one number, or a colon with either missing; a missing one stays as it is.
bool read_triple(NamelistInput& in, Triple& triple, bool need_colon, bool& section) {
    section = false;
    if (!in.skip_space()) return false;
    if (!in.stands(':')) {
        if (!read_subscript(triple.first)) return false;
        if (!need_colon) triple.last = triple.first;
        if (!in.skip_space()) return false;
    }
    if (!in.stands(':')) return !need_colon || IO_error(syntax_error);
    section = true;
    in.pass();
    if (!in.skip_space()) return false;
    if (!in.stands(',') && !in.stands(')') && !read_subscript(triple.last)) return false;
    return in.skip_space();
}

bool check_range(std::int64_t first, std::int64_t last, std::int64_t lower, std::int64_t upper) {
    return (first <= last && lower <= first && last <= upper) || IO_error(out_of_range);
}

// A message about a range that the program has asked to ignore must not lead outside.
void keep_inside(Triple& triple, std::int64_t lower, std::int64_t upper) {
    triple.first = std::clamp(triple.first, lower, std::max(lower, upper));
    triple.last = std::clamp(triple.last, triple.first, std::max(triple.first, upper));
}

bool read_substring(NamelistInput& in, const NamelistEntry& entry, Selection& selection) {
    in.pass();
    Triple substring{1, entry.length, 0};
    bool section = false;
    if (!read_triple(in, substring, true, section)) return false;
    if (!in.stands(')')) return IO_error(syntax_error);
    in.pass();
    if (!check_range(substring.first, substring.last, 1, entry.length)) return false;
    keep_inside(substring, 1, entry.length);
    selection.substring_first = substring.first;
    selection.substring_last = std::min(substring.last, entry.length);
    return true;
}

bool read_namelist_array_indices(NamelistInput& in, const NamelistEntry& entry,
                                 Selection& selection) {
    selection.single = entry.rank > 0;
    for (int i = 0; i < entry.rank; ++i) {
        in.pass();
        Triple& triple = selection.triples[i];
        bool section = false;
        if (!read_triple(in, triple, false, section)) return false;
        selection.single = selection.single && !section;
        if (!check_range(triple.first, triple.last, entry.lower[i], entry.upper[i])) return false;
        keep_inside(triple, entry.lower[i], entry.upper[i]);
        if (in.exhausted() && !IO_error(syntax_error)) return false;
        const bool last = i + 1 == entry.rank;
        if (in.stands(last ? ')' : ',')) continue;
        const bool miscounted = in.stands(last ? ',' : ')');
        if (!IO_error(miscounted ? wrong_subscripts : bad_character)) return false;
        break;
    }
    if (entry.rank > 0 && in.stands(')')) in.pass();
    const bool substring = entry.type == NamelistType::character && in.stands('(');
    return !substring || read_substring(in, entry, selection);
}

// ---- Arrays ----

// Whether the next name begins at the cursor, and not a value.
bool name_follows(const NamelistInput& in) {
    const char* at = in.cursor();
    const char* const end = in.end();
    int brackets = 0;
    for (; at < end; ++at) {
        if (*at == '(') ++brackets;
        if (*at == ')' && brackets > 0) --brackets;
        if (brackets > 0) continue;
        if (*at == ' ' || *at == '/' || *at == ',' || *at == '=') break;
    }
    while (at < end && *at == ' ') ++at;
    return at < end && *at == '=';
}

// A repeat count at the cursor; 0: there is none.
bool take_repeat(NamelistInput& in, std::int32_t& repeat) {
    repeat = 0;
    const char* at = in.cursor();
    const char* const end = in.end();
    while (at < end && is_digit(*at)) ++at;
    if (at == in.cursor()) return true;
    while (at < end && *at == ' ') ++at;
    if (at == end || *at != '*') return true;
    if (!get_integer(repeat)) return false;
    in.move_to(at + 1);
    if (repeat <= 0) {
        repeat = 1;
        if (!IO_error(bad_repeat)) return false;
    }
    return in.skip_space();
}

bool read_element(NamelistInput& in, const NamelistEntry& entry, const Selection& selection,
                  char* element) {
    return read_namelist_value(in, entry.type, element, entry.length, selection.substring_first,
                               selection.substring_last);
}

// Gives a value that has been read to further elements, or passes over them.
bool repeat_value(const NamelistEntry& entry, const Selection& selection, char* base,
                  Elements& elements, std::int32_t count, bool null) {
    std::int64_t bytes = entry.element_size();
    std::int64_t skipped = 0;
    if (entry.type == NamelistType::character) {
        skipped = selection.substring_first - 1;
        bytes = selection.substring_last - skipped;
    }
    const char* const from = base + elements.offset() + skipped;
    for (; count > 1; --count) {
        elements.next();
        if (elements.left() == 0) return IO_error(too_many_values);
        if (null || bytes <= 0) continue;
        std::memcpy(base + elements.offset() + skipped, from, static_cast<std::size_t>(bytes));
    }
    return true;
}

bool pass_comma(NamelistInput& in) {
    if (!in.stands(',')) return true;
    in.pass();
    return in.skip_space();
}

bool read_namelist_array(NamelistInput& in, const NamelistEntry& entry, const Selection& selection,
                         std::ptrdiff_t base_offset) {
    char* const base = entry.address + base_offset;
    for (Elements elements(entry, selection); elements.left() > 0; elements.next()) {
        if (!in.skip_space()) return false;
        if (in.exhausted()) return IO_error(syntax_error);
        if (in.stands(',')) {
            in.pass();
            continue;
        }
        if (in.stands('/')) return true;
        const bool quoted = in.stands('\'') || in.stands('"');
        if (!quoted && name_follows(in)) return true;
        std::int32_t repeat = 0;
        if (!take_repeat(in, repeat)) return false;
        const bool null = repeat > 0 && in.stands(',');
        if (!null && in.stands('/')) return true;
        char* const element = base + elements.offset();
        if (!null && !read_element(in, entry, selection, element)) return false;
        if (!repeat_value(entry, selection, base, elements, repeat, null)) return false;
        if (elements.left() == 0) return true;
        if (!in.skip_space() || !pass_comma(in)) return false;
    }
    return true;
}

// ---- Structures ----

bool read_assignment_sign(NamelistInput& in) {
    if (!in.skip_space()) return false;
    if (!in.stands('=')) return IO_error(bad_character);
    in.pass();
    if (!in.skip_space()) return false;
    return !in.exhausted() || IO_error(end_in_group);
}

bool read_struct_components(NamelistInput& in, const char* cursor, int count, std::ptrdiff_t base) {
    for (; count > 0; --count) {
        const NamelistEntry entry = read_namelist_component(cursor);
        Selection selection;
        initialise_subscripts(entry, selection);
        in.in_structure = entry.type != NamelistType::structure;
        if (entry.type == NamelistType::structure) {
            for (Elements elements(entry, selection); elements.left() > 0; elements.next()) {
                const std::ptrdiff_t element = base + elements.offset();
                if (!read_struct_components(in, entry.behind, entry.components, element)) {
                    return false;
                }
                if (in.at_group_end()) return true;
            }
        } else if (entry.rank > 0) {
            if (!read_namelist_array(in, entry, selection, base)) return false;
        } else {
            if (in.at_group_end() || name_follows(in)) return true;
            if (!read_namelist_value(in, entry.type, entry.address + base, entry.length, 1,
                                     entry.length)) {
                return false;
            }
            if (!in.skip_space() || !pass_comma(in)) return false;
        }
        cursor += entry.distance;
    }
    return true;
}

bool read_structure(NamelistInput& in, const NamelistEntry& entry) {
    Selection selection;
    initialise_subscripts(entry, selection);
    if (entry.rank > 0 && in.stands('(') && !read_namelist_array_indices(in, entry, selection)) {
        return false;
    }
    if (!read_assignment_sign(in)) return false;
    for (Elements elements(entry, selection); elements.left() > 0; elements.next()) {
        if (in.at_group_end()) break;
        if (!read_struct_components(in, entry.behind, entry.components, elements.offset())) {
            return false;
        }
    }
    in.in_structure = false;
    return true;
}

// ---- The group ----

// Whether the text begins with the name, with a blank or the record's end behind it.
bool check_name(std::string_view name, std::string_view text) {
    name = name.substr(0, longest_name);
    if (name.empty() || text.size() < name.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (fold(text[i]) != fold(name[i])) return false;
    }
    return text.size() == name.size() || text[name.size()] == ' ';
}

// `A!B` is known by both names. The length of the one that stands there; 0: neither.
std::size_t check_namelist_id(std::string_view group, std::string_view text) {
    const std::size_t mark = group.find('!');
    const std::string_view first = group.substr(0, mark);
    if (check_name(first, text)) return first.size();
    if (mark == std::string_view::npos) return 0;
    const std::string_view second = group.substr(mark + 1);
    return check_name(second, text) ? second.size() : 0;
}

bool find_group(NamelistInput& in, std::string_view group) {
    for (;;) {
        const auto left = static_cast<std::size_t>(in.end() - in.cursor());
        const char* const mark =
            left == 0 ? nullptr : static_cast<const char*>(std::memchr(in.cursor(), '&', left));
        const char* const comment =
            left == 0 ? nullptr : static_cast<const char*>(std::memchr(in.cursor(), '!', left));
        const bool in_comment = comment != nullptr && comment == in.first_text();
        if (mark == nullptr || in_comment) {
            bool ended = false;
            if (!in.next_record(ended)) return false;
            if (ended) return IO_end_of_file();
            continue;
        }
        in.move_to(mark + 1);
        const std::size_t length = check_namelist_id(
            group, {in.cursor(), static_cast<std::size_t>(in.end() - in.cursor())});
        if (length == 0) continue;
        in.move_to(in.cursor() + length);
        return true;
    }
}

// An identifier in upper case.
std::string_view read_namelist_id(NamelistInput& in, char (&room)[longest_name]) {
    std::size_t length = 0;
    while (!in.exhausted() && is_name_character(*in.cursor())) {
        if (length < longest_name) room[length++] = fold(*in.cursor());
        in.pass();
    }
    return {room, length};
}

bool find_namelist_id(const NamelistTable& table, std::string_view name, NamelistItem& found) {
    const char* at = table.first;
    for (std::int32_t left = table.count; left > 0; --left) {
        found = read_namelist_item(at);
        if (found.name == name) return true;
        at = found.next;
    }
    return false;
}

bool read_item(NamelistInput& in, const NamelistEntry& entry) {
    if (entry.type == NamelistType::structure) return read_structure(in, entry);
    Selection selection;
    initialise_subscripts(entry, selection);
    const bool takes = entry.type == NamelistType::character || entry.rank > 0;
    if (takes && in.stands('(') && !read_namelist_array_indices(in, entry, selection)) return false;
    if (!read_assignment_sign(in)) return false;
    if (entry.rank > 0) return read_namelist_array(in, entry, selection, 0);
    return read_element(in, entry, selection, entry.address);
}

bool read_group(NamelistInput& in, const NamelistTable& table) {
    if (!in.skip_space()) return false;
    while (!in.exhausted() && !in.stands('/')) {
        if (!pass_comma(in)) return false;
        if (in.exhausted() || in.stands('/')) break;
        char room[longest_name];
        const std::string_view name = read_namelist_id(in, room);
        if (name.empty()) return IO_error(syntax_error);
        NamelistItem item;
        if (!find_namelist_id(table, name, item)) return IO_error(bad_identifier);
        if (!read_item(in, item.entry) || !in.skip_space()) return false;
    }
    if (!in.stands('/')) return IO_error(end_in_group);
    in.pass();
    return true;
}

}  // namespace

bool RNML__() {
    IO_type& io = current();
    if (!begin_namelist(51)) return false;
    const NamelistTable table = read_namelist_table(io.namelist_table);
    NamelistInput in(io);
    if (!find_group(in, table.name) || !read_group(in, table)) return false;
    hand_over_to_gnu(*io.unit);
    return true;
}

}  // namespace tarn::fio::native
