// What stands in front of the equals sign: a variable with subscripts, components and a substring.
#include <algorithm>
#include <limits>

#include "fio/gnu/namelist_reader.h"

namespace tarn::fio {
namespace {

// The subscripts of one dimension.
struct Triplet {
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t step = 1;
    bool has_first = false;
    bool has_last = false;
    bool is_section = false;
    const char* at = nullptr;  // where it stands
};

std::string_view path_of(const NamelistReader& r, std::uint32_t item) {
    return r.group.items[item].path;
}

bool same_name(std::string_view written, std::string_view name) {
    if (written.size() != name.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (lower_case(written[i]) != name[i]) return false;
    }
    return true;
}

// The item of this name among those from `first` up to `last`, leaving out what is inside of them.
std::uint32_t find_item(const NamelistGroup& group, std::uint32_t first, std::uint32_t last,
                        std::string_view name) {
    for (std::uint32_t i = first; i < last; i = group.items[i].end) {
        if (same_name(name, group.items[i].name)) return i;
    }
    return NamelistReader::no_item;
}

// Variables mostly come in the order of the group: the one behind the last one is tried first.
std::uint32_t find_variable(const NamelistReader& r, std::string_view name) {
    const NamelistGroup& group = r.group;
    const auto count = static_cast<std::uint32_t>(group.items.size());
    if (r.item < count) {
        const std::uint32_t next = group.items[r.item].end;
        if (next < count && same_name(name, group.items[next].name)) return next;
    }
    return find_item(group, 0, count, name);
}

// Of the components that an extended type has from its parent, both ways to them are known.
std::uint32_t find_component(const NamelistGroup& group, std::uint32_t parent,
                             std::string_view name) {
    const std::uint32_t end = group.items[parent].end;
    const std::uint32_t found = find_item(group, parent + 1, end, name);
    if (found != NamelistReader::no_item || parent + 1 >= end) return found;
    return group.items[parent + 1].inherited ? find_component(group, parent + 1, name) : found;
}

std::string_view take_name(Statement& s) {
    const char* const begin = s.cursor;
    const char* at = begin;
    if (at < s.limit && begins_name(*at)) {
        while (at < s.limit && is_name_character(*at)) ++at;
    }
    s.cursor += at - begin;
    return {begin, static_cast<std::size_t>(at - begin)};
}

bool stands(const Statement& s, char c) {
    return s.cursor < s.limit && *s.cursor == c;
}

// An integer at the cursor, if there is one; far outside every range it is only far.
bool take_integer(Statement& s, std::int64_t& value) {
    constexpr std::int64_t far = std::numeric_limits<std::int64_t>::max() / 16;
    const char* at = s.cursor;
    const bool negative = at < s.limit && *at == '-';
    if (at < s.limit && (*at == '-' || *at == '+')) ++at;
    if (at == s.limit || !is_decimal_digit(*at)) return false;
    std::int64_t magnitude = 0;
    for (; at < s.limit && is_decimal_digit(*at); ++at) {
        magnitude = std::min(magnitude * 10 + (*at - '0'), far);
    }
    value = negative ? -magnitude : magnitude;
    s.cursor += at - s.cursor;
    return true;
}

// `first:last:step`, each of which may be missing, or one number. The cursor is left at what ends
// it.
bool read_triplet(NamelistReader& r, std::uint32_t item, Triplet& triplet) {
    Statement& s = r.s;
    if (!find_text(r)) return false;
    triplet.at = s.cursor;
    triplet.has_first = take_integer(s, triplet.first);
    if (!find_text(r)) return false;
    if (!stands(s, ':')) {
        if (triplet.has_first) {
            triplet.last = triplet.first;
            return true;
        }
        const bool empty = *s.cursor == ',' || *s.cursor == ')';
        return fail_namelist(
            r, namelist_bad_value, s.cursor,
            joined({empty ? "a subscript is missing: " : "a bad subscript: ", path_of(r, item)}));
    }
    triplet.is_section = true;
    ++s.cursor;
    if (!find_text(r)) return false;
    triplet.has_last = take_integer(s, triplet.last);
    if (!find_text(r)) return false;
    if (!stands(s, ':')) return true;
    ++s.cursor;
    if (!find_text(r)) return false;
    if (take_integer(s, triplet.step)) return find_text(r);
    return fail_namelist(r, namelist_bad_value, s.cursor,
                         joined({"a bad subscript: ", path_of(r, item)}));
}

bool fail_range(NamelistReader& r, const Triplet& triplet, std::string what, std::int64_t lower,
                std::int64_t upper) {
    what.append(" must lie in ").append(std::to_string(lower)).append(":");
    what.append(std::to_string(upper));
    return fail_namelist(r, namelist_out_of_range, triplet.at, what);
}

// Whether the triplet selects something, within the bounds only.
bool check_triplet(NamelistReader& r, Triplet& triplet, const std::string& what, std::int64_t lower,
                   std::int64_t upper) {
    if (triplet.is_section) {
        if (!triplet.has_first) triplet.first = lower;
        if (!triplet.has_last) triplet.last = upper;
    }
    if (triplet.first < lower || triplet.first > upper || triplet.last < lower ||
        triplet.last > upper) {
        return fail_range(r, triplet, what, lower, upper);
    }
    const bool forward = triplet.step > 0 && triplet.first <= triplet.last;
    const bool backward = triplet.step < 0 && triplet.first >= triplet.last;
    if (forward || backward) return true;
    return fail_namelist(r, namelist_out_of_range, triplet.at, joined({what, " selects nothing"}));
}

// The subscripts of an array from the bracket at the cursor on.
bool read_subscripts(NamelistReader& r, std::uint32_t index, Triplet* triplets) {
    Statement& s = r.s;
    const NamelistItem& item = r.group.items[index];
    const NamelistDimension* dimension = r.group.dimensions_of(item);
    for (int i = 0; i < item.rank; ++i) {
        ++s.cursor;
        if (!read_triplet(r, index, triplets[i])) return false;
        std::string what = "subscript ";
        what.append(std::to_string(i + 1)).append(" of ").append(item.path);
        if (!check_triplet(r, triplets[i], what, dimension[i].lower, dimension[i].upper)) {
            return false;
        }
        const bool last = i + 1 == item.rank;
        if (stands(s, last ? ')' : ',')) continue;
        if (!stands(s, last ? ',' : ')')) {
            return fail_namelist(r, namelist_bad_value, s.cursor,
                                 joined({"a bad subscript: ", path_of(r, index)}));
        }
        what = item.path;
        what.append(" has ").append(std::to_string(item.rank));
        return fail_namelist(r, namelist_subscript_count, s.cursor,
                             what.append(item.rank == 1 ? " dimension" : " dimensions"));
    }
    ++s.cursor;
    return true;
}

bool read_substring(NamelistReader& r, NamelistSelection& selection) {
    Statement& s = r.s;
    const NamelistItem& item = r.group.items[selection.item];
    ++s.cursor;
    Triplet triplet;
    if (!read_triplet(r, selection.item, triplet)) return false;
    if (!triplet.is_section) {
        return fail_namelist(r, namelist_syntax, triplet.at,
                             joined({"a substring needs a colon: ", path_of(r, selection.item)}));
    }
    const std::string what = joined({"the substring of ", path_of(r, selection.item)});
    const auto length = static_cast<std::int64_t>(item.length);
    if (!check_triplet(r, triplet, what, 1, length)) return false;
    if (triplet.step != 1 || !stands(s, ')')) {
        return fail_namelist(r, namelist_syntax, s.cursor,
                             joined({"a bad substring: ", path_of(r, selection.item)}));
    }
    ++s.cursor;
    selection.walk.element += (triplet.first - 1) * item.kind;
    selection.length = static_cast<std::size_t>(triplet.last - triplet.first + 1);
    return true;
}

// What the subscripts of one part of the name add to the selection.
bool apply_subscripts(NamelistReader& r, const NamelistItem& item, const Triplet* triplets,
                      NamelistSelection& selection) {
    ArrayWalk& walk = selection.walk;
    const bool was_array = walk.rank > 0;
    const NamelistDimension* dimension = r.group.dimensions_of(item);
    for (int i = 0; i < item.rank; ++i, ++dimension) {
        const std::int64_t stride = dimension->stride * static_cast<std::int64_t>(item.size);
        if (triplets == nullptr) {
            if (walk.rank < namelist_max_rank) walk.add(dimension->extent(), stride);
            continue;
        }
        const Triplet& triplet = triplets[i];
        walk.element += (triplet.first - dimension->lower) * stride;
        if (!triplet.is_section || walk.rank == namelist_max_rank) continue;
        walk.add((triplet.last - triplet.first) / triplet.step + 1, stride * triplet.step);
    }
    if (!was_array || walk.rank == 0) return true;
    const bool adds = triplets == nullptr
                          ? item.rank > 0
                          : std::any_of(triplets, triplets + item.rank,
                                        [](const Triplet& triplet) { return triplet.is_section; });
    if (!adds) return true;
    return fail_namelist(r, namelist_subscript_count, r.s.cursor,
                         joined({"two parts of the name are arrays: ", item.path}));
}

// A single element of an array begins a list that may go on to the end of each dimension.
void stretch(const NamelistGroup& group, const NamelistItem& item, const Triplet* triplets,
             ArrayWalk& walk) {
    const NamelistDimension* dimension = group.dimensions_of(item);
    for (int i = 0; i < item.rank; ++i, ++dimension) {
        walk.add(dimension->upper - triplets[i].first + 1,
                 dimension->stride * static_cast<std::int64_t>(item.size));
    }
}

// The component named at the cursor, behind the percent sign.
bool step_into(NamelistReader& r, NamelistSelection& selection) {
    Statement& s = r.s;
    ++s.cursor;
    skip_line_blanks(s);
    const char* const at = s.cursor;
    const NamelistGroup& group = r.group;
    const std::uint32_t outer = selection.item;
    if (!group.items[outer].derived) {
        return fail_namelist(r, namelist_unknown_name, at,
                             joined({path_of(r, outer), " has no components"}));
    }
    const std::string_view name = take_name(s);
    if (name.empty()) {
        return fail_namelist(r, namelist_syntax, at,
                             joined({"a component's name is missing: ", path_of(r, outer)}));
    }
    const std::uint32_t found = find_component(group, outer, name);
    if (found == NamelistReader::no_item) return fail_unknown_name(r, at, name, outer);
    for (std::uint32_t i = found; i != outer; i = group.items[i].parent) {
        selection.walk.element += group.items[i].place;
    }
    selection.item = found;
    return true;
}

// An array, and the brackets at the cursor.
[[gnu::noinline]] bool read_subscripted(NamelistReader& r, NamelistSelection& selection) {
    Statement& s = r.s;
    const NamelistItem& item = r.group.items[selection.item];
    Triplet triplets[namelist_max_rank];
    if (!read_subscripts(r, selection.item, triplets)) return false;
    const bool was_array = selection.walk.rank > 0;
    if (!apply_subscripts(r, item, triplets, selection)) return false;
    skip_line_blanks(s);
    const bool single = !was_array && selection.walk.rank == 0;
    if (single && !stands(s, '%')) stretch(r.group, item, triplets, selection.walk);
    return true;
}

bool read_bracket(NamelistReader& r, NamelistSelection& selection) {
    const NamelistItem& item = r.group.items[selection.item];
    if (item.derived || item.type != ItemType::character) {
        return fail_namelist(
            r, namelist_subscript_count, r.s.cursor,
            joined({item.path, item.rank > 0 ? " has subscripts already" : " is no array"}));
    }
    if (!read_substring(r, selection)) return false;
    skip_line_blanks(r.s);
    return true;
}

// One part of the name, whose item is the selection's, with what stands in brackets behind it.
bool read_part(NamelistReader& r, NamelistSelection& selection) {
    Statement& s = r.s;
    const NamelistItem& item = r.group.items[selection.item];
    skip_line_blanks(s);
    if (item.rank > 0 && stands(s, '(')) {
        if (!read_subscripted(r, selection)) return false;
    } else if (item.rank > 0 && !apply_subscripts(r, item, nullptr, selection)) {
        return false;
    }
    return !stands(s, '(') || read_bracket(r, selection);
}

}  // namespace

bool read_designator(NamelistReader& r, NamelistSelection& selection) {
    Statement& s = r.s;
    const char* const at = s.cursor;
    const std::string_view name = r.name_waits ? r.waiting_name() : take_name(s);
    r.name_waits = false;
    const std::uint32_t found = find_variable(r, name);
    if (found == NamelistReader::no_item) {
        return fail_unknown_name(r, at, name, NamelistReader::no_item);
    }
    r.item = found;
    selection.item = found;
    const char* const address = r.group.items[found].address;
    if (address == nullptr) {
        return fail_namelist(r, namelist_not_allocated, at,
                             joined({path_of(r, found), " is not allocated"}));
    }
    selection.walk.element = r.group.items[found].address;
    for (;;) {
        selection.length = r.group.items[selection.item].length;
        if (!read_part(r, selection)) return false;
        if (!stands(s, '%')) return true;
        if (!step_into(r, selection)) return false;
    }
}

}  // namespace tarn::fio
