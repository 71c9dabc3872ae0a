// Variable to field: what a box shows when its window comes up and whenever the program says that
// a variable has changed. Prompts stand in fields that have nothing to show.
#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/controls/controls.h"
#include "winio/callbacks.h"
#include "winio/data_entry.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t end_of_text = 0x7FFFFFFF;

word bits_of(double value) {
    word bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// The value as the limits and the policy let it be seen; what is to be stored back comes in
// `value`.
struct limited {
    double shown;
    bool out_of_range;
};

limited limit_value(const window_control* control, double value) {
    double shown = value;
    if (shown > control->high) shown = control->high;
    if (shown < control->low) shown = control->low;
    bool out = !(value >= control->low && value <= control->high);
    if (value != value) shown = value;
    bool stands = control->flags.read_form || callbacks().control_update ||
                  (control->update_policy & policy_stet_on_update) != 0;
    return {stands ? value : shown, out};
}

// initially_blank: nothing shows until the user or the program gives another value.
bool stays_blank(window_control* control, double value, bool first) {
    if (!control->flags.initially_blank) return false;
    if (first) control->blank_for = bits_of(value);
    return !control->flags.has_data && control->blank_for == bits_of(value);
}

void report_range(window_control* control, bool out_of_range, bool first) {
    if ((control->update_policy & policy_alert_on_update) == 0) return;
    if (out_of_range && !first)
        CreateAlert(control, true);
    else if (!out_of_range)
        DestroyAlert(control);
}

// True: the value may differ from what the field shows already.
bool new_to_field(window_control* control, double value) {
    word bits = bits_of(value);
    if (control->flags.shown_valid && control->shown == bits) return false;
    control->shown = bits;
    control->flags.shown_valid = true;
    return true;
}

void show_number(window_control* control, double value, bool first) {
    if (stays_blank(control, value, first)) {
        set_box_text(control, "");
        control->flags.shown_valid = false;
        return;
    }
    if (!new_to_field(control, value)) return;
    set_box_text(control, box_text(control, value).c_str());
    if (control->flags.prompt_shown) {
        swap_prompt_colours(control);
        control->flags.prompt_shown = false;
        control->flags.prompt_hidden = true;
    }
}

bool stores_back(const window_control* control, const limited& value, bool first) {
    if (!value.out_of_range || callbacks().control_update) return false;
    return first || (control->update_policy & policy_limit_on_update) != 0;
}

}  // namespace

std::string box_text(const window_control* control, double value) {
    if (control->type == control_type::integer_box)
        return integer_text(static_cast<std::int32_t>(value), radix_of(control));
    const char* format = format_of(control);
    if (format && sound_float_format(format)) return formatted_float(format, value);
    return float_text(value, control->digits);
}

void set_box_text(window_control* control, const char* text) {
    if (!control->hwnd) return;
    bool before = control->flags.being_set;
    control->flags.being_set = true;
    SendSetTextMessageAW(control->hwnd, WM_SETTEXT, 0, text);
    control->flags.being_set = before;
}

std::string get_box_text(const window_control* control, std::size_t size) {
    std::string text(size + 1, 0);
    LRESULT length = SendGetTextMessageAW(control->hwnd, WM_GETTEXT, size + 1, text.data());
    text.resize(std::min(length < 0 ? 0 : static_cast<std::size_t>(length), size));
    // A text with a zero in it ends there for everybody who reads it.
    text.resize(std::strlen(text.c_str()));
    return text;
}

void show_box_again(window_control* control) {
    if (control->hwnd) InvalidateRect(control->hwnd, nullptr, true);
}

void show_integer(window_control* control, bool first) {
    auto* variable = static_cast<std::int32_t*>(control->variable);
    if (!variable || !control->hwnd) return;
    if (first) undef_int_check(variable, "%rd", 1);
    limited value = limit_value(control, *variable);
    report_range(control, value.out_of_range, first);
    show_number(control, value.shown, first);
    if (stores_back(control, value, first)) *variable = static_cast<std::int32_t>(value.shown);
}

void show_float(window_control* control, bool first) {
    auto* variable = static_cast<double*>(control->variable);
    if (!variable || !control->hwnd) return;
    if (first) {
        undef_double_check(variable, "%rf", 0.0);
        if (!control->flags.read_form && !format_of(control))
            SendMessageA(control->hwnd, EM_LIMITTEXT, static_cast<WPARAM>(control->digits), 0);
    }
    limited value = limit_value(control, *variable);
    report_range(control, value.out_of_range, first);
    show_number(control, value.shown, first);
    if (stores_back(control, value, first)) *variable = value.shown;
}

void show_string(window_control* control, bool) {
    const auto* variable = static_cast<const char*>(control->variable);
    if (!variable || !control->hwnd || control->high < 1.0) return;
    std::string text;
    if (control->flags.fortran_string) {
        text.resize(static_cast<std::size_t>(control->string_length));
        copy_from_fstring(text.data(), variable, control->string_length);
        text.resize(std::strlen(text.c_str()));
    } else {
        text.assign(variable, strnlen(variable, static_cast<std::size_t>(control->high)));
    }
    if (!is_blank_text(text.c_str()) && control->flags.prompt_shown) {
        swap_prompt_colours(control);
        control->flags.prompt_shown = false;
        control->flags.prompt_hidden = true;
    } else if (control->flags.prompt_shown) {
        return;
    }
    if (text != get_box_text(control, text.size() + 1)) set_box_text(control, text.c_str());
}

// ---- Prompts

namespace {

bool holds_text(const window_control* control) {
    return control->type == control_type::string_box || control->type == control_type::buffer_box;
}

// `text` is the prompt with a piece taken out: the user has deleted, not typed.
bool is_shortened_prompt(std::string_view text, std::string_view prompt) {
    if (text.size() >= prompt.size()) return false;
    std::size_t same = 0;
    while (same < text.size() && text[same] == prompt[same]) ++same;
    return prompt.ends_with(text.substr(same));
}

// What was typed may stand on either side of the prompt. In a number everything from the first
// character that is no part of it goes.
void cut_prompt(const window_control* control, std::string& text, std::size_t number_end) {
    std::size_t at = text.find(control->prompt);
    if (at != std::string::npos)
        text.erase(at, std::strlen(control->prompt));
    else if (is_shortened_prompt(text, control->prompt))
        text.clear();
    else if (!holds_text(control) && number_end < text.size())
        text.resize(number_end);
}

}  // namespace

void swap_prompt_colours(window_control* control) {
    std::swap(control->text_colour, control->prompt_colour);
    show_box_again(control);
}

void show_prompts(fancy_window* window) {
    bool ready = window->flags.ready;
    window->flags.ready = false;
    for (window_control* control = window->first_control; control; control = control->next) {
        if (control->prompt_colour == 0 || !control->prompt || !control->hwnd) continue;
        if (control->flags.prompt_shown || control->flags.read_form) continue;
        // Behind a text that is there already the prompt waits; a number gives way to it.
        control->flags.prompt_hidden =
            holds_text(control) && !is_blank_text(get_box_text(control, 100).c_str());
        control->flags.prompt_shown = !control->flags.prompt_hidden;
        if (!control->flags.prompt_shown) continue;
        swap_prompt_colours(control);
        set_box_text(control, control->prompt);
    }
    window->flags.ready = ready;
}

bool take_prompt_away(window_control* control, std::string& text, std::size_t number_end) {
    if (!control->flags.prompt_shown || is_blank_text(text.c_str())) return false;
    control->flags.prompt_shown = false;
    control->flags.prompt_hidden = true;
    swap_prompt_colours(control);
    if (control->prompt) cut_prompt(control, text, number_end);
    set_box_text(control, text.c_str());
    SendMessageA(control->hwnd, EM_SETSEL, end_of_text, end_of_text);
    return true;
}

void restore_prompt(window_control* control) {
    if (!control->flags.prompt_hidden || !control->prompt) return;
    swap_prompt_colours(control);
    set_box_text(control, control->prompt);
    SendMessageA(control->hwnd, EM_SETSEL, 0, 0);
    control->flags.prompt_hidden = false;
    control->flags.prompt_shown = true;
    // The value stays behind the prompt until it changes.
    if (control->type == control_type::integer_box)
        new_to_field(control, *static_cast<std::int32_t*>(control->variable));
    else if (control->type == control_type::float_box)
        new_to_field(control, *static_cast<double*>(control->variable));
}

}  // namespace tarn::winio
