// Codes that give text: formatted values, strings, and the static string control.
#include <cstdio>
#include <cstring>

#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/text_layer.h"

namespace tarn::winio {
namespace {

// Wider than a line's text can be.
constexpr std::int32_t widest_field = 999;

// printf's specification from the code's flags and numbers.
std::string specification(code_call& call, const char* conversion) {
    std::string text = "%";
    if (call.minus) text.push_back('-');
    if (call.plus) text.push_back('+');
    if (call.zero) text.push_back('0');
    if (call.n > 0) text += std::to_string(std::min(call.n, widest_field));
    if (call.m >= 0) text.append(1, '.').append(std::to_string(std::min(call.m, widest_field)));
    call.minus = call.plus = call.zero = false;
    return text + conversion;
}

template <class Value>
std::string formatted(const std::string& format, Value value) {
    char text[2 * widest_field + 400];  // the longest number, and a field on either side
    std::snprintf(text, sizeof text, format.c_str(), value);
    return text;
}

// Into the line's text. `%` and line ends in it: the first stands for itself, the second ends it.
void add_text(const std::string& text) {
    if (!records().passive) handle_text(text.data(), text.data() + text.size(), true, false);
}

void place_own_text(const std::string& text) {
    if (!records().passive) handle_text(text.data(), text.data() + text.size(), false, false);
}

std::string formatted_float(code_call& call, const char* conversion, const char* message) {
    const std::string format = specification(call, conversion);
    return formatted(format, user_float(call.arguments, message));
}

}  // namespace

void handle_wd(code_call& call) {
    const std::string format = specification(call, "d");
    add_text(formatted(format, user_integer(call.arguments)));
}

void handle_wx(code_call& call) {
    const std::string format = specification(call, call.grave ? "X" : "x");
    call.grave = false;
    add_text(formatted(format, static_cast<unsigned>(user_integer(call.arguments))));
}

void handle_wc(code_call& call) {
    call.m = -1;
    const std::string format = specification(call, "c");
    add_text(formatted(format, user_integer(call.arguments) & 0xFF));
}

void handle_wf(code_call& call) {
    add_text(formatted_float(call, "f", "Invalid number passed to %wf format"));
}

void handle_we(code_call& call) {
    place_own_text(formatted_float(call, "e", "Invalid number passed to %we format"));
}

void handle_wg(code_call& call) {
    place_own_text(formatted_float(call, "g", "Invalid number passed to %wg format"));
}

void handle_pd(code_call&) {
    add_text(utf8_now() || current_window()->flags.utf8 ? "\xC2\xA3" : "\xA3");
}

// ---- Strings -----------------------------------------------------------------------------------
namespace {

// A string that shows for as long as the window lives follows the program's variable.
char* followed_string(code_call& call) {
    char* text = user_string(call.arguments);
    const builder_state& state = building();
    if (state.fortran_call && text) {
        save_fortran_string_binding(text, state.last_string_variable, state.last_length);
    }
    return text ? text : window_text_copy("", 0);
}

std::int32_t scaled(std::int32_t units) {
    return static_cast<std::int32_t>(units * current_window()->text_scale);
}

// Its first line stands on the line's base, as text beside it does.
void stand_on_line(window_control* control) {
    control->base_line = scaled(8) - font_descent(control->font) / 2 + control->y;
    if (current_window()->flags.mixed_font) align_text_base(control);
}

// What a border and the text's distance from it take up, in pixels.
constexpr std::int32_t border_room = 6;

void string_control(code_call& call) {
    flush_text(false, 0);  // what stands before it on the line
    window_control* control = new_window_control(control_type::text);
    collect_ws_options(call, control);
    read_resource_id(call, *control);
    control->text = followed_string(call);
    std::int32_t depth = 0;
    get_text_dimensions(control->font, control->text, control->width, depth);
    if (call.n > 0) control->width = scaled(call.n * 4);
    if ((control->style & platform::WS_BORDER) != 0)
        control->width += pixels_to_units_x(border_room);
    control->height = std::max(depth, scaled(8));
    control->flags.grave = call.grave;
    call.grave = false;
    read_grey_variable(call, *control);
    read_callback(call, *control, "should be a call-back function for the %%WS format");
    if (records().passive) {
        std::free(control);
        return;
    }
    deepen_line(control->height);
    locate(control, 0);
    stand_on_line(control);
}

}  // namespace

void handle_ws(code_call& call) {
    const bool options = *call.format == '[' && !call.question;
    if (call.grave || options) {
        string_control(call);
        return;
    }
    const char* text = user_string(call.arguments);
    std::string shown = text ? text : "";
    if (call.m >= 0) shown.resize(std::min(shown.size(), static_cast<std::size_t>(call.m)));
    if (call.n > 0) {
        const auto width = static_cast<std::size_t>(std::min(call.n, widest_field));
        if (shown.size() < width) {
            shown.insert(call.minus ? shown.size() : 0, width - shown.size(), ' ');
        }
    }
    call.minus = call.plus = call.zero = false;
    add_text(shown);
}

void handle_st(code_call& call) {
    window_control* control = new_window_control(control_type::static_string);
    read_resource_id(call, *control);
    std::int32_t columns = call.n;
    if (columns < 1) {
        if (current_window()->dialog_resource <= 0) {
            quillpan_error("?Size must be specified for string format");
        }
        columns = 1;
    }
    control->text = followed_string(call);
    control->variable = control->text;
    control->width = scaled(columns * 4);
    control->height = scaled(std::max(call.m, 1) * 8);
    control->flags.grave = call.grave;
    call.grave = false;
    read_grey_variable(call, *control);
    read_callback(call, *control, "should be a call-back function for the %%ST format");
    if (records().passive) {
        std::free(control);
        return;
    }
    deepen_line(control->height);
    locate(control, 0);
}

}  // namespace tarn::winio
