// What a program is told of a namelist that can't be read: where, what, and what it may have meant.
#include <algorithm>
#include <array>
#include <string>

#include "fio/gnu/fault.h"
#include "fio/gnu/namelist_reader.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return result;
}

// How many letters have to be put in, taken out or changed.
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::array<std::size_t, NamelistReader::longest_word + 1> row{};
    a = a.substr(0, NamelistReader::longest_word);
    for (std::size_t i = 0; i <= a.size(); ++i) row[i] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
        std::size_t diagonal = row[0];
        row[0] = j;
        for (std::size_t i = 1; i <= a.size(); ++i) {
            const std::size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({row[i] + 1, row[i - 1] + 1, changed});
        }
    }
    return row[a.size()];
}

// The name of a component, or of a variable, that is nearest to `name`; empty: none is near.
std::string_view nearest_name(const NamelistGroup& group, std::string_view name,
                              std::uint32_t parent) {
    const bool top = parent == NamelistReader::no_item;
    const auto last =
        top ? static_cast<std::uint32_t>(group.items.size()) : group.items[parent].end;
    std::size_t least = name.size() / 3 + 2;  // farther away is no help
    std::string_view nearest;
    for (std::uint32_t i = top ? 0 : parent + 1; i < last;) {
        const NamelistItem& item = group.items[i];
        const std::size_t distance = edit_distance(name, item.name);
        if (distance < least) {
            least = distance;
            nearest = item.name;
        }
        // The components of what comes from the parent type count as the type's own.
        i = item.inherited ? i + 1 : item.end;
    }
    return nearest;
}

}  // namespace

std::int64_t namelist_line(const Statement& s) {
    return s.unit != nullptr ? s.unit->current_record + 1 : s.file.next;
}

void note_other_group(NamelistReader& r, std::string_view name) {
    constexpr int most = 100;  // a file of many groups is searched quickly
    if (name.empty() || name.size() >= NamelistReader::longest_word || r.groups_passed++ > most) {
        return;
    }
    std::string folded(name);
    for (char& c : folded) c = lower_case(c);
    const std::size_t distance = edit_distance(folded, r.group.name);
    if (distance > r.group.name.size() / 3 + 1) return;
    if (!r.nearest_group.empty() && distance >= r.nearest_distance) return;
    r.nearest_group = folded;
    r.nearest_distance = distance;
}

std::string joined(std::initializer_list<std::string_view> pieces) {
    std::string text;
    for (const std::string_view piece : pieces) text.append(piece);
    return text;
}

bool fail_namelist(NamelistReader& r, Fault fault, const char* at, std::string_view what) {
    std::string detail = "group ";
    detail.append(upper(r.group.name));
    const bool inside = r.s.record_at_hand && at >= r.s.begin && at <= r.s.limit;
    if (inside) {
        detail.append(", line ").append(std::to_string(namelist_line(r.s)));
        detail.append(", column ").append(std::to_string(at - r.s.begin + 1));
    }
    detail.append(": ").append(what);
    fail(r.s, fault, detail);
    return false;
}

bool fail_unknown_name(NamelistReader& r, const char* at, std::string_view name,
                       std::uint32_t parent) {
    const bool top = parent == NamelistReader::no_item;
    std::string what = "\"";
    what.append(name.substr(0, NamelistReader::longest_word)).append("\" is no ");
    if (top) {
        what.append("variable of the group");
    } else {
        what.append("component of ").append(upper(r.group.items[parent].path));
    }
    const std::string_view nearest = nearest_name(r.group, name, parent);
    if (!nearest.empty()) what.append("; the nearest is \"").append(nearest).append("\"");
    return fail_namelist(r, namelist_unknown_name, at, what);
}

bool fail_namelist_end(NamelistReader& r) {
    r.s.failed = true;
    std::string detail = "group ";
    detail.append(upper(r.group.name));
    if (!r.group_found) {
        detail.append(" is not in what is left of the file");
        if (!r.nearest_group.empty()) {
            detail.append("; the nearest is ").append(upper(r.nearest_group));
        }
        raise_fault(*r.s.caller, {57, iostat_end}, detail);
        return false;
    }
    detail.append(", which begins in line ").append(std::to_string(r.group_line));
    detail.append(", has no / at its end");
    raise_fault(*r.s.caller, {201, iostat_end}, detail);
    return false;
}

}  // namespace tarn::fio
