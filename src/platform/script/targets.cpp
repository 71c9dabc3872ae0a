#include "platform/script/targets.h"

#include <algorithm>
#include <cstdlib>
#include <strings.h>

#include "platform/script/script.h"
#include "platform/user/user.h"

namespace tarn::platform {

HWND (*find_named_control)(HWND top_level, std::string_view name) = nullptr;
std::string (*control_code_name)(HWND control) = nullptr;
std::string (*control_label)(HWND control) = nullptr;

namespace {

bool is_role(const ScriptControl& control, std::string_view role) {
    return control.facts.role == role;
}

// What holds others and has no use of its own.
bool is_container(const ControlFacts& facts) {
    std::string_view role = facts.role;
    return role == "pane" || role == "window";
}

bool can_be_used(const ScriptControl& control) {
    return !is_role(control, "label") && !is_role(control, "image") &&
           !is_role(control, "separator") && !is_role(control, "group");
}

void collect(HWND parent, std::int32_t depth, std::vector<ScriptControl>& all) {
    for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        std::size_t at = all.size();
        all.push_back({child, control_facts(child), 0, depth});
        // The parts of a combo box are no controls of their own.
        if (is_container(all[at].facts)) collect(child, depth + 1, all);
        bool empty = all.size() == at + 1;
        if (can_be_used(all[at]) && (empty || !is_container(all[at].facts))) all[at].number = 1;
    }
}

// How far `field` is from being what `label` names: directly right of it or below; -1 when it
// isn't.
std::int32_t distance(const RECT& label, const RECT& field) {
    constexpr std::int32_t farthest_right = 400, farthest_below = 60, slack = 4;
    std::int32_t overlap_y = std::min(label.bottom, field.bottom) - std::max(label.top, field.top);
    std::int32_t right = field.left - label.right;
    if (overlap_y > 0 && right >= -slack && right <= farthest_right) return std::max(right, 0);
    std::int32_t overlap_x = std::min(label.right, field.right) - std::max(label.left, field.left);
    std::int32_t below = field.top - label.bottom;
    if (overlap_x > 0 && below >= -slack && below <= farthest_below)
        return farthest_right + std::max(below, 0);
    return -1;
}

const ScriptControl* field_of(const std::vector<ScriptControl>& all, const ScriptControl& label) {
    RECT place, other;
    GetWindowRect(label.hwnd, place);
    const ScriptControl* best = nullptr;
    std::int32_t nearest = INT32_MAX;
    for (const ScriptControl& each : all) {
        if (each.number == 0 || !each.facts.visible || !GetWindowRect(each.hwnd, other)) continue;
        // Buttons have a text of their own.
        if (each.facts.name.empty() || is_role(each, "text field") || is_role(each, "list") ||
            is_role(each, "combo box") || is_role(each, "password field")) {
            std::int32_t away = distance(place, other);
            if (away >= 0 && away < nearest) {
                nearest = away;
                best = &each;
            }
        }
    }
    return best;
}

const ScriptControl* by_handle(const std::vector<ScriptControl>& all, HWND hwnd) {
    for (const ScriptControl& each : all) {
        if (hwnd && each.hwnd == hwnd) return &each;
    }
    return nullptr;
}

const ScriptControl* by_name(HWND top, const std::vector<ScriptControl>& all,
                             std::string_view name) {
    std::string wanted = plain_label(name);
    const ScriptControl* hidden = nullptr;
    const ScriptControl* label = nullptr;
    for (const ScriptControl& each : all) {
        if (plain_label(each.facts.name) != wanted) continue;
        if (is_role(each, "label")) {
            if (!label) label = &each;
        } else if (each.facts.visible) {
            return &each;
        } else if (!hidden) {
            hidden = &each;
        }
    }
    if (label) {
        if (const ScriptControl* field = field_of(all, *label)) return field;
    }
    for (const ScriptControl& each : all) {
        if (control_label && plain_label(control_label(each.hwnd)) == wanted && !wanted.empty())
            return &each;
    }
    if (find_named_control) {
        if (const ScriptControl* named = by_handle(all, find_named_control(top, name)))
            return named;
    }
    for (const ScriptControl& each : all) {
        std::string code = code_name_of(each.hwnd);
        if (!code.empty() && strcasecmp(code.c_str(), std::string(name).c_str()) == 0) return &each;
    }
    return hidden ? hidden : label;
}

std::string list_of_controls(const std::vector<ScriptControl>& all) {
    std::string list;
    std::size_t more = 0;
    constexpr std::size_t enough = 1500;
    for (const ScriptControl& each : all) {
        std::string name = name_of(all, each);
        if (!each.facts.visible || (each.number == 0 && name.empty())) continue;
        if (list.size() > enough) {
            ++more;
            continue;
        }
        if (!list.empty()) list += ", ";
        list += each.facts.role;
        if (!name.empty()) list += " " + quoted(name);
        if (each.number != 0) list += " #" + std::to_string(each.number);
    }
    if (more != 0) list += " and " + std::to_string(more) + " more";
    return list.empty() ? "it has no controls" : "it has " + list;
}

}  // namespace

std::vector<ScriptControl> controls_of(HWND top) {
    std::vector<ScriptControl> all;
    collect(top, 1, all);
    std::int32_t number = 0;
    for (ScriptControl& each : all) {
        if (each.number != 0) each.number = ++number;
    }
    return all;
}

std::string plain_label(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) ++i;  // && is one that is shown
        plain.push_back(text[i]);
    }
    while (!plain.empty() && (plain.back() == ' ' || plain.back() == ':')) plain.pop_back();
    return plain;
}

std::string code_name_of(HWND control) {
    return control_code_name ? control_code_name(control) : std::string();
}

std::string name_of(const std::vector<ScriptControl>& all, const ScriptControl& control) {
    if (!control.facts.name.empty() || is_role(control, "label")) return control.facts.name;
    for (const ScriptControl& each : all) {
        if (is_role(each, "label") && each.facts.visible && field_of(all, each) == &control)
            return plain_label(each.facts.name);
    }
    std::string label = control_label ? control_label(control.hwnd) : std::string();
    return label.empty() ? code_name_of(control.hwnd) : plain_label(label);
}

const ScriptControl* find_control(HWND top, const std::vector<ScriptControl>& all,
                                  const Target& target, std::string& why_not) {
    const ScriptControl* found = nullptr;
    if (target.kind == Target::Kind::number) {
        for (const ScriptControl& each : all) {
            if (each.number == target.number) found = &each;
        }
        why_not = "there is no control #" + std::to_string(target.number);
    } else {
        found = by_name(top, all, target.name);
        why_not = "no control is called " + quoted(target.name);
    }
    if (found) return found;
    why_not += " in the window " + quoted(window_text(top)) + "; " + list_of_controls(all);
    return nullptr;
}

bool title_matches(std::string_view title, std::string_view pattern) {
    // Greedy with one step back to the last star: enough for stars alone.
    std::size_t at = 0, star = std::string_view::npos, resume = 0, i = 0;
    while (at < title.size()) {
        if (i < pattern.size() && pattern[i] == '*') {
            star = i++;
            resume = at;
        } else if (i < pattern.size() && pattern[i] == title[at]) {
            ++i;
            ++at;
        } else if (star != std::string_view::npos) {
            i = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    while (i < pattern.size() && pattern[i] == '*') ++i;
    return i == pattern.size();
}

bool is_main_window(HWND top) {
    auto style = static_cast<std::uint32_t>(GetWindowLong(top, GWL_STYLE));
    auto extended = static_cast<std::uint32_t>(GetWindowLong(top, GWL_EXSTYLE));
    if ((style & WS_CAPTION) == WS_CAPTION) return true;
    return (extended & (WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW)) == 0;
}

HWND find_window(std::string_view title) {
    HWND found{};
    for (HWND top = first_window(); top; top = next_top_level(top)) {
        if (IsWindowVisible(top) && is_main_window(top) && title_matches(window_text(top), title))
            found = top;
    }
    return found;
}

HWND current_window() {
    HWND active = GetActiveWindow();
    if (active && IsWindowVisible(active) && IsWindowEnabled(active)) return active;
    HWND newest{};
    for (HWND top = first_window(); top; top = next_top_level(top)) {
        if (!IsWindowVisible(top) || !is_main_window(top)) continue;
        if (IsWindowEnabled(top) || !newest) newest = top;
    }
    return newest;
}

std::vector<HWND> popups_over(HWND top) {
    std::vector<HWND> all;
    for (HWND each = first_window(); each; each = next_top_level(each)) {
        if (each == top || !IsWindowVisible(each) || is_main_window(each)) continue;
        HWND owner = GetParent(each);
        while (owner && owner != top) owner = GetParent(owner);
        if (owner || (!GetParent(each) && top == GetActiveWindow())) all.push_back(each);
    }
    return all;
}

std::string list_of_windows() {
    std::string list;
    for (HWND top = first_window(); top; top = next_top_level(top)) {
        if (!IsWindowVisible(top) || !is_main_window(top)) continue;
        if (!list.empty()) list += ", ";
        list += quoted(window_text(top));
    }
    return list.empty() ? "no window is open" : "open are " + list;
}

POINT surface_origin(HWND top) {
    RECT rect;
    return window_surface_rect(top, rect) ? POINT{rect.left, rect.top} : POINT{};
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') result.push_back('\\');
        if (c == '\n' || c == '\t') {
            result.push_back('\\');
            c = c == '\n' ? 'n' : 't';
        }
        if (c != '\r') result.push_back(c);
    }
    return result + "\"";
}

}  // namespace tarn::platform
