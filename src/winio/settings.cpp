// %ss: what the user entered is kept under the program's key and is there again the next time. The
// variable of %ss says whether: nothing is read or written while it is 0.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/kernel/config.h"
#include "winio/data_entry.h"
#include "winio/procedures.h"
#include "winio/winproc.h"

namespace tarn::winio {

namespace {

bool is_text_box(const window_control* control) {
    return control->type == control_type::string_box || control->type == control_type::buffer_box;
}

bool is_kept(const window_control* control) {
    if (!control->save_key || !*control->save_key || !control->variable) return false;
    if (control->settings && *control->settings == 0) return false;
    if (control->flags.read_form || control->flags.password) return false;
    switch (control->type) {
        case control_type::integer_box:
        case control_type::float_box:
        case control_type::radio:
        case control_type::list_box:
        case control_type::combo_box:
            return true;
        default:
            return is_text_box(control) && control->high >= 1.0;
    }
}

std::string section_of(const window_control* control) {
    std::string key = std::string("Settings\\") + control->save_key;
    for (char& c : key)
        if (static_cast<unsigned char>(c) < ' ' || c == ']') c = '_';
    return key;
}

// The text before the control, and its code name, since several may follow one text.
std::string name_of(const window_control* control) {
    const std::string text = control->save_name ? control->save_name : "";
    return text + "." + control->name;
}

// One line of a file whose values lose the blanks around them.
std::string written(const std::string& text) {
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool edge = i == 0 || i + 1 == text.size();
        if (text[i] == '\\')
            line += "\\\\";
        else if (text[i] == '\n')
            line += "\\n";
        else if (text[i] == '\r')
            line += "\\r";
        else if (edge && (text[i] == ' ' || text[i] == '\t'))
            line += text[i] == ' ' ? "\\s" : "\\t";
        else
            line += text[i];
    }
    return line;
}

std::string read_back(const std::string& line) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\' || i + 1 == line.size()) {
            text += line[i];
            continue;
        }
        const char c = line[++i];
        text += c == 'n' ? '\n' : c == 'r' ? '\r' : c == 's' ? ' ' : c == 't' ? '\t' : c;
    }
    return text;
}

std::string text_of(const window_control* control) {
    const auto* variable = static_cast<const char*>(control->variable);
    if (!control->flags.fortran_string)
        return {variable, strnlen(variable, static_cast<std::size_t>(control->high))};
    std::string text(static_cast<std::size_t>(control->string_length) + 1, '\0');
    copy_from_fstring(text.data(), variable, control->string_length);
    text.resize(std::strlen(text.c_str()));
    return text;
}

std::string value_of(const window_control* control) {
    if (is_text_box(control)) return written(text_of(control));
    char number[40];
    if (control->type == control_type::float_box)
        std::snprintf(number, sizeof number, "%.17g", *static_cast<double*>(control->variable));
    else
        std::snprintf(number, sizeof number, "%d", *static_cast<std::int32_t*>(control->variable));
    return number;
}

void take_text(const window_control* control, const std::string& text) {
    auto* variable = static_cast<char*>(control->variable);
    if (control->flags.fortran_string)
        return copy_to_fstring(variable, control->string_length, text.c_str());
    const auto room = static_cast<std::size_t>(control->high) - 1;
    const std::size_t length = std::min(text.size(), room);
    std::memcpy(variable, text.data(), length);
    variable[length] = 0;
}

// What the file says is checked as what a user enters: a number within the limits, nothing else.
void take_value(const window_control* control, const std::string& line) {
    if (is_text_box(control)) return take_text(control, read_back(line));
    if (control->type == control_type::float_box) {
        bool out_of_range = false;
        const char* rest = nullptr;
        const double value = scan_float(line.c_str(), out_of_range, rest);
        const bool sound = !out_of_range && rest && *rest == 0 && !line.empty();
        if (sound && value >= control->low && value <= control->high)
            *static_cast<double*>(control->variable) = value;
        return;
    }
    const scanned_integer scanned = scan_integer(line.c_str(), 10);
    if (line.empty() || scanned.out_of_range || *scanned.rest != 0) return;
    const auto value = static_cast<double>(scanned.value);
    const bool limited = control->type == control_type::integer_box;
    if (limited ? value < control->low || value > control->high : scanned.value < 0) return;
    *static_cast<std::int32_t*>(control->variable) = static_cast<std::int32_t>(scanned.value);
}

}  // namespace

void restore_settings(const fancy_window* window) {
    for (const window_control* control = window->first_control; control; control = control->next) {
        if (!is_kept(control)) continue;
        if (auto line = platform::config_value(section_of(control), name_of(control)))
            take_value(control, *line);
    }
}

void save_settings(const fancy_window* window) {
    std::vector<platform::ConfigValue> values;
    for (const window_control* control = window->first_control; control; control = control->next)
        if (is_kept(control))
            values.push_back({section_of(control), name_of(control), value_of(control)});
    if (!values.empty()) platform::store_config_values(values);
}

}  // namespace tarn::winio
