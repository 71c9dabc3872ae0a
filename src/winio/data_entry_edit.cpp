// Field to variable: what an edit in a box does, and the keys that a box doesn't take.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/controls/controls.h"
#include "winio/callbacks.h"
#include "winio/data_entry.h"
#include "winio/menus.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t end_of_text = 0x7FFFFFFF;
constexpr std::size_t number_size = 100;
constexpr double longest_buffer = 1.0E7;

struct box_event {
    window_control* control;
    fancy_window* window;
    HWND hwnd;  // the window's
    std::int32_t notification;
    bool from_library;  // of the spin: control ID 0
};

void caret_to_end(const window_control* control) {
    SendMessageA(control->hwnd, EM_SETSEL, end_of_text, end_of_text);
}

struct selection {
    std::int32_t start = 0, end = 0;
};

// Through addresses: the result has 16 bits for each end, and a buffer may be longer.
selection get_selection(const window_control* control) {
    UINT start = 0, end = 0;
    SendMessageA(control->hwnd, EM_GETSEL, reinterpret_cast<WPARAM>(&start),
                 reinterpret_cast<LPARAM>(&end));
    return {static_cast<std::int32_t>(start), static_cast<std::int32_t>(end)};
}

// A selection that stands already is left alone: being set again would part what was typed into
// pieces that are undone one by one.
void set_selection(const window_control* control, selection what) {
    if (!control->hwnd) return;
    const selection now = get_selection(control);
    if (now.start != what.start || now.end != what.end)
        SendMessageA(control->hwnd, EM_SETSEL, static_cast<WPARAM>(what.start), what.end);
}

bool call_wanted(const box_event& event, bool changed) {
    const window_control* control = event.control;
    if (!control->callback) return false;
    // PASTE as the box's own call-back would paste for ever.
    if (control->flags.in_callback && callbacks().clipboard_refresh) return false;
    return changed && (control->flags.spin_used || control->flags.focus_loss_check ||
                       GetFocus() == control->hwnd);
}

// "DATA_ALTERATION". False: the window has gone, or goes.
bool call_altered(const box_event& event, std::int32_t& result) {
    window_watch watch(event.window);
    event.control->flags.spin_used = false;
    get_action_coordinates(event.control);
    callbacks().context.latest_variable = reinterpret_cast<word>(event.control->variable);
    const bool outer = event.control->flags.in_callback;
    event.control->flags.in_callback = true;
    result = call_function(event.control, "DATA_ALTERATION", true);
    if (callbacks().window_gone || watch.gone()) return false;
    event.control->flags.in_callback = outer;
    if (result != 0) return true;
    window_close(event.window);
    return false;
}

// What follows a value that stands: the call-back, and everything else that shows the variable.
// `altered` says whether the call-back has changed the variable again.
template <typename Value>
void value_stored(const box_event& event, Value* variable, Value before) {
    bool changed = *variable != before;
    std::int32_t result = 2;
    if (call_wanted(event, changed)) {
        window_watch watch(event.window);
        Value stored = *variable;
        if (!call_altered(event, result)) return;
        if (watch.gone()) return;
        window_control* held = callbacks().no_update_control;
        if (*variable == stored) callbacks().no_update_control = event.control;
        if (result == 1)
            initialise_controls(event.hwnd, false);
        else if (changed)
            careful_window_update(event.control, variable);
        callbacks().no_update_control = held;
        if (watch.gone()) return;
        if (*variable != stored && result != 1) show_box_again(event.control);
    } else if (changed) {
        careful_window_update(event.control, variable);
    }
}

// An entry that can't be: the last good value, clamped, is shown again, or the mark appears.
void refuse_entry(const box_event& event, double value) {
    window_control* control = event.control;
    if (control->flags.bound_limits && event.window->flags.ready) {
        CreateAlert(control, false);
        return;
    }
    window_watch watch(event.window);
    if (control->prompt_colour == 0) MessageBeep(0);
    set_box_text(control, box_text(control, value).c_str());
    caret_to_end(control);
    if (control->flags.focus_loss_check && !watch.gone()) SetFocus(control->hwnd);
}

template <typename Value>
void clamp_variable(const window_control* control, Value* variable) {
    if (static_cast<double>(*variable) > control->high)
        *variable = static_cast<Value>(control->high);
    if (static_cast<double>(*variable) < control->low) *variable = static_cast<Value>(control->low);
}

double value_of_nothing(const window_control* control) {
    return std::min(std::max(0.0, control->low), control->high);
}

bool in_range(const window_control* control, double value) {
    return value >= control->low && value <= control->high;
}

void integer_edited(const box_event& event) {
    window_control* control = event.control;
    auto* variable = static_cast<std::int32_t*>(control->variable);
    if (!variable) return;
    window_watch watch(event.window);
    std::int32_t before = *variable;
    std::string text = get_box_text(control, number_size);
    control->flags.shown_valid = false;
    bool blank = is_blank_text(text.c_str());
    if (!blank) control->flags.has_data = true;
    auto value = static_cast<double>(static_cast<std::int32_t>(value_of_nothing(control)));
    bool sound = true;
    if (!blank) {
        scanned_integer scanned = scan_integer(text.c_str(), radix_of(control));
        if (take_prompt_away(control, text, static_cast<std::size_t>(scanned.rest - text.c_str())))
            scanned = scan_integer(text.c_str(), radix_of(control));
        if (text == "-" || text == "+") {
            // Nothing to read yet.
        } else if (is_blank_text(text.c_str())) {
            blank = true;
        } else {
            value = static_cast<double>(scanned.value);
            sound = !scanned.out_of_range && is_blank_text(scanned.rest) &&
                    scanned.rest != text.c_str() && in_range(control, value);
        }
    }
    if (!sound) {
        clamp_variable(control, variable);
        refuse_entry(event, *variable);
        if (watch.gone()) return;
        if (control->alert) return;
    } else {
        DestroyAlert(control);
        *variable = static_cast<std::int32_t>(value);
    }
    value_stored(event, variable, before);
    if (!watch.gone() && blank) restore_prompt(control);
}

bool typing(const box_event& event) {
    return event.notification == EN_UPDATE && !event.control->flags.focus_loss_check;
}

// `1e` and `1e-` are on their way to a number.
bool begins_exponent(const char* rest) {
    if (*rest != 'e' && *rest != 'E') return false;
    ++rest;
    if (*rest == '+' || *rest == '-') ++rest;
    return *rest == 0;
}

bool begins_float(std::string_view text) {
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
    return text.empty() || text == ".";
}

// A text with a second point ends behind the first.
bool cut_second_point(window_control* control, std::string& text) {
    std::size_t first = text.find('.');
    if (first == std::string::npos || text.find('.', first + 1) == std::string::npos) return false;
    text.resize(first + 1);
    set_box_text(control, text.c_str());
    caret_to_end(control);
    return true;
}

void reformat(window_control* control, double value) {
    if (!format_of(control)) return;
    selection kept = get_selection(control);
    set_box_text(control, box_text(control, value).c_str());
    set_selection(control, kept);
}

void float_edited(const box_event& event) {
    window_control* control = event.control;
    auto* variable = static_cast<double*>(control->variable);
    if (!variable) return;
    window_watch watch(event.window);
    double before = *variable;
    std::string text = get_box_text(control, number_size);
    control->flags.shown_valid = false;
    bool blank = is_blank_text(text.c_str());
    if (!blank) control->flags.has_data = true;
    double value = value_of_nothing(control);
    bool sound = true;
    if (!blank) {
        bool out_of_range = false;
        const char* rest = nullptr;
        if (!control->flags.prompt_shown) cut_second_point(control, text);
        double scanned = scan_float(text.c_str(), out_of_range, rest);
        if (take_prompt_away(control, text, static_cast<std::size_t>(rest - text.c_str())))
            scanned = scan_float(text.c_str(), out_of_range, rest);
        if (begins_float(text)) {
            // Nothing to read yet.
        } else if (is_blank_text(text.c_str())) {
            blank = true;
        } else {
            value = scanned;
            bool whole = is_blank_text(rest) || (typing(event) && begins_exponent(rest));
            sound = !out_of_range && whole && rest != text.c_str() && in_range(control, value);
        }
    }
    if (!sound) {
        clamp_variable(control, variable);
        refuse_entry(event, *variable);
        if (watch.gone()) return;
        if (control->alert) return;
    } else {
        DestroyAlert(control);
        *variable = value;
        if (!blank) reformat(control, value);
    }
    value_stored(event, variable, before);
    if (!watch.gone() && blank) restore_prompt(control);
}

// A key typed into the middle of a full fraction pushes the last digit out, and isn't lost.
void full_field(const box_event& event) {
    window_control* control = event.control;
    WPARAM key = procedures().last_key;
    if (!event.window->flags.ready || key == 0) return;
    std::string text = get_box_text(control, number_size);
    if (text.find('.') == std::string::npos || text.find_first_of("eE") != std::string::npos)
        return;
    selection caret = get_selection(control);
    if (caret.end >= static_cast<std::int32_t>(text.size()) || text.empty()) return;
    procedures().last_key = 0;
    // The last character, whole: half of one would come back from the field as another.
    const auto inside = [&text] {
        return (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80;
    };
    if (utf8_now())
        while (text.size() > 1 && inside()) text.pop_back();
    text.pop_back();
    set_box_text(control, text.c_str());
    set_selection(control, caret);
    SendMessageA(control->hwnd, WM_CHAR, key, 0);
}

// ---- Strings

void run_string_callback(const box_event& event, bool changed) {
    if (!call_wanted(event, changed)) return;
    if (event.from_library && (!event.control->grey || *event.control->grey != 0)) return;
    window_watch watch(event.window);
    selection kept = get_selection(event.control);
    std::int32_t result = 2;
    if (!call_altered(event, result)) return;
    if (result == 1) initialise_controls(event.hwnd, false);
    if (!watch.gone()) set_selection(event.control, kept);
}

// A buffer that is too long to be copied belongs to the program alone.
void uncopied_edited(const box_event& event) {
    window_watch watch(event.window);
    window_control* control = event.control;
    if (!call_wanted(event, true)) return;
    selection kept = get_selection(control);
    std::int32_t result = 2;
    if (!call_altered(event, result)) return;
    if (result == 1) {
        double length = control->high;
        control->high = 0.0;
        initialise_controls(event.hwnd, false);
        if (watch.gone()) return;
        control->high = length;
    }
    set_selection(control, kept);
}

std::string variable_text(const window_control* control) {
    const auto* variable = static_cast<const char*>(control->variable);
    auto length = static_cast<std::size_t>(control->high);
    std::string text(length, 0);
    if (control->flags.fortran_string)
        copy_from_fstring(text.data(), variable, control->string_length);
    else
        text.assign(variable, strnlen(variable, length));
    text.resize(std::strlen(text.c_str()));
    return text;
}

void store_text(const window_control* control, const std::string& text) {
    auto* variable = static_cast<char*>(control->variable);
    if (control->flags.fortran_string) {
        copy_to_fstring(variable, control->string_length, text.c_str());
        return;
    }
    std::size_t room = static_cast<std::size_t>(control->high) - 1;
    std::size_t length = std::min(text.size(), room);
    std::memcpy(variable, text.data(), length);
    variable[length] = 0;
}

void string_edited(const box_event& event) {
    window_control* control = event.control;
    if (control->high < 1.0 || control->high > longest_buffer) {
        uncopied_edited(event);
        return;
    }
    if (!control->variable) return;
    window_watch watch(event.window);
    std::string before = variable_text(control);
    std::string text = get_box_text(control, static_cast<std::size_t>(control->high));
    if (!is_blank_text(text.c_str())) control->flags.has_data = true;
    if (take_prompt_away(control, text, 0) && watch.gone()) return;
    store_text(control, text);
    std::string after = variable_text(control);
    bool changed = after != before;
    run_string_callback(event, changed);
    if (watch.gone()) return;
    if (changed || variable_text(control) != after)
        careful_window_update(control, control->variable);
    if (watch.gone()) return;
    if (variable_text(control) != after) {
        show_string(control, false);  // the call-back had its own idea
    } else if (is_blank_text(text.c_str())) {
        restore_prompt(control);
    }
}

bool reacts(const box_event& event) {
    if (event.control->flags.focus_loss_check) return true;
    return event.notification == EN_UPDATE;
}

// ---- Keys

bool digit_of_radix(std::int32_t key, std::int32_t radix) {
    if (key >= '0' && key <= '9') return key - '0' < radix;
    std::int32_t letter = key >= 'a' && key <= 'z' ? key - 0x20 : key;
    if (letter >= 'A' && letter <= 'Z') return letter - 'A' + 10 < radix;
    return true;
}

// False: the box doesn't take the key.
bool filter_key(const window_control* control, WPARAM& key) {
    if (control->type == control_type::float_box && key == ',') key = '.';
    std::int32_t radix = radix_of(control);
    return radix == 10 || digit_of_radix(static_cast<std::int32_t>(key), radix);
}

LRESULT SubMainEditProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    WNDPROC original = procedures().edit_procedure;
    window_control* control = control_from_window(hwnd, false);
    if (!control) return CallWindowProcA(original, hwnd, message, wparam, lparam);
    if (message == WM_CHAR) {
        if (!filter_key(control, wparam)) return 0;
        procedures().last_key = wparam >= ' ' ? wparam : 0;
    } else if ((message == WM_RBUTTONDOWN || message == WM_CONTEXTMENU) && control->popup_menu) {
        POINT at;
        GetCursorPos(at);
        if (display_popup_menu1(control->window, hwnd, MAKELPARAM(at.x, at.y), true)) return 0;
    }
    return CallWindowProcA(original, hwnd, message, wparam, lparam);
}

}  // namespace

void subclass_edit(window_control* control) {
    LPARAM before =
        SetWindowLong(control->hwnd, GWL_WNDPROC, reinterpret_cast<LPARAM>(&SubMainEditProc));
    if (!procedures().edit_procedure)
        procedures().edit_procedure = reinterpret_cast<WNDPROC>(before);
}

void data_entry_event(window_control* control, std::int32_t notification, bool from_library) {
    fancy_window* window = control->window;
    if (control->flags.being_set || control->flags.read_form || !window->flags.ready) return;
    box_event event{control, window, window->hwnd, notification, from_library};
    bool text =
        control->type == control_type::string_box || control->type == control_type::buffer_box;
    if (notification == EN_MAXTEXT) {
        if (control->type == control_type::float_box) full_field(event);
        return;
    }
    if (!reacts(event)) return;
    if (text)
        string_edited(event);
    else if (control->type == control_type::integer_box)
        integer_edited(event);
    else
        float_edited(event);
}

}  // namespace tarn::winio
