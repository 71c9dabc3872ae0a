// %bt, %bb, %tt and %bn: from the code to the placed control.
#include "winio/buttons.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/options.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t button_inset = 4;
constexpr std::uint8_t face_default = 1, face_keeps_colours = 0x10;
constexpr std::uint32_t option_default = 1, option_split = 2, option_coloured = 4;

enum class button_code : std::uint8_t { text, icon, tool };

std::int32_t truncated(double value) {
    return static_cast<std::int32_t>(value);
}

button_face* new_face(window_control* control) {
    auto* face = static_cast<button_face*>(std::calloc(1, sizeof(button_face)));
    if (!face) heap_exhausted();
    discard_with_window(face, nullptr);
    control->block = face;
    return face;
}

const button_face* face_of(const window_control* control) {
    return static_cast<const button_face*>(control->block);
}

void read_label(code_call& call, window_control* control) {
    if (current_window()->dialog_resource > 0) {
        control->resource_id = user_integer(call.arguments);
        control->text = window_text_copy("", 0);
        return;
    }
    control->text = get_standard_string(call, "button");
}

void take_design_id(window_control* control) {
    if (pending().design_id == 0) return;
    control->resource_id = pending().design_id;
    pending().design_id = 0;
}

// `icon/label`, or the icon of %bi.
std::int32_t read_icon(window_control* control, button_face* face) {
    std::int32_t size = 0;
    char* slash = control->text ? std::strchr(control->text, '/') : nullptr;
    if (slash) {
        face->icon =
            window_text_copy(control->text, static_cast<std::size_t>(slash - control->text));
        char* label = slash + 1;
        if (*label == '/') {
            face->flags |= face_keeps_colours;
            ++label;
        }
        control->text = label;
        size = GetIconSize(face->icon);
        if (size == 0) quillpan_error("Failed to get size of %%BB icon.");
    } else {
        face->icon = pending().button_icon;
        pending().button_icon = nullptr;
        size = face->icon ? GetIconSize(face->icon) : 0;
        if (size == 0) {
            quillpan_error("?Failed to get size of %%BB icon.");
            face->icon = window_text_copy("errorIcon", 9);
            size = 16;
        }
    }
    if (control->text && std::strchr(control->text, '\n'))
        quillpan_error("%%BB only accepts a single line of text.");
    return size;
}

void take_colours(window_control* control, button_face* face) {
    pending_values& wanted = pending();
    face->face_colour = wanted.face_colour;
    face->text_colour = wanted.button_text_colour;
    if (wanted.face_by_variable || wanted.text_by_variable) control->flags.colour_button = true;
    wanted.face_colour = wanted.button_text_colour = nullptr;
    wanted.face_by_variable = wanted.text_by_variable = false;
}

bool anything_pending() {
    return pending().face_colour || pending().button_text_colour || pending().button_icon;
}

void read_grey(code_call& call, window_control* control, const char* message, const char* code) {
    if (!call.tilde) return;
    call.tilde = false;
    control->grey = user_int_pointer(call.arguments);
    // The mark of a survivable error must stand in the format.
    if (!control->grey && message[0] == '?')
        quillpan_error("?%s", message + 1);
    else if (!control->grey)
        quillpan_error("%s", message);
    else
        undef_int_check(control->grey, code, 0);
}

std::uint8_t find_mnemonic(const char* label) {
    if (!label) return 0;
    return static_cast<std::uint8_t>(seek_accelerators(label, current_window(), true, false));
}

void key_for(window_control* control, std::int32_t letter) {
    if (letter == 0) return;
    new_accelerator(msg_button_accelerator, letter | key_alt, reinterpret_cast<word>(control), 0);
}

std::int32_t count_lines(const char* label) {
    return 1 + static_cast<std::int32_t>(std::count(label, label + std::strlen(label), '\n'));
}

bool take_default(code_call& call, window_control* control) {
    if (!call.grave) return false;
    call.grave = false;
    fancy_window* window = current_window();
    if (window->flags.default_button_seen)
        quillpan_error("?More than one default button specified");
    window->flags.default_button_seen = true;
    control->flags.default_button = true;
    return true;
}

// The font of a given point size, and how much taller than the window's it is.
double take_point_size(window_control* control, std::int32_t points) {
    double ratio = 1.0;
    control->font = get_font_for_point_size(current_window()->font_spec, points, ratio);
    return ratio;
}

void size_text_button(code_call& call, window_control* control, button_code code,
                      std::int32_t icon_size) {
    fancy_window* window = current_window();
    double ratio = call.m >= 1 ? take_point_size(control, call.m) : 0.0;
    std::int32_t width = 0, height = 0;
    get_text_dimensions(control->font, control->text, width, height);
    if (call.n >= 1) width = call.n * 4;
    control->width = truncated((width + 12) * window->text_scale);
    if (code == button_code::icon)
        height += icon_size > 0 ? 0 : 5;
    else
        height += 8;
    control->height = truncated(height * (call.m >= 1 ? ratio : window->text_scale));
    if (code == button_code::icon && !*control->text) control->width = 5;
    if (icon_size > 0) {
        control->width += pixels_to_units_x(icon_size);
        control->height = std::max(control->height, pixels_to_units_y(icon_size)) + 5;
    }
}

void size_tool_button(window_control* control) {
    std::int32_t width = string_width(control, control->text);
    control->width = (width + 47) / 48 * 48;
    control->height = 12;
}

void make_button(code_call& call, button_code code) {
    fancy_window* window = current_window();
    window_control* control = new_window_control(control_type::button);
    if (window->button_font) control->font = window->button_font;
    button_face* face = new_face(control);
    read_label(call, control);
    if (!control->text) control->text = window_text_copy("", 0);
    std::int32_t icon_size = 0;
    if (code == button_code::icon) {
        control->flags.icon_button = true;
        icon_size = read_icon(control, face);
    }
    control->flags.toolbar_button = code == button_code::tool;
    face->accelerator = find_mnemonic(control->text);
    bool drawn = code == button_code::icon;
    if (code != button_code::icon && (anything_pending() || std::strchr(control->text, '\n'))) {
        control->type = control_type::fancy_button;
        drawn = true;
        face->icon = pending().button_icon;
        pending().button_icon = nullptr;
        if (face->icon) icon_size = GetIconSize(face->icon);
    }
    if (drawn && code != button_code::tool) key_for(control, face->accelerator);
    take_colours(control, face);
    face->lines = count_lines(control->text);
    take_design_id(control);
    read_grey(call, control, "Missing argument for button grey control.",
              code == button_code::icon ? "%bb" : "%bt");
    if (code == button_code::tool)
        size_tool_button(control);
    else
        size_text_button(call, control, code, icon_size);
    control->inset = button_inset;
    face->value = take_button_value();
    if (take_default(call, control)) face->flags |= face_default;
    deepen_line(control->height);
    read_callback(call, *control,
                  code == button_code::tool ? "should be a textual tool-bar call-back function"
                                            : "should be a button call-back function");
    locate(control, 0);
}

// ---- %bn

void take_option_font(window_control* control, Xbutton* button) {
    fancy_window* window = current_window();
    if (button->font)
        control->font = button->font;
    else if (window->button_font)
        control->font = window->button_font;
    if (button->font_size > 0.0) {
        LOGFONT description = window->font_spec;
        description.lfHeight = truncated(description.lfHeight * button->font_size);
        description.lfWidth = 0;
        control->font = get_font(description);
    }
    button->font = control->font;
}

void check_option_mix(window_control* control, Xbutton* button) {
    bool coloured = button->colour != no_colour || button->text_colour != no_colour;
    if (coloured && button->note)
        quillpan_error("?%%bn button notes are not available with colour");
    if (coloured && button->icon) quillpan_error("?%%bn button icon is not available with colour");
    if ((button->flags & option_split) != 0 && button->note) {
        quillpan_error("?%%bn can't have both split style and notes");
        button->flags &= ~option_split;
    }
    if (!coloured) return;
    button->note = button->icon = nullptr;
    button->flags |= option_coloured;
    control->flags.colour_button = true;
}

// A note wraps, but none of its words does; it stands behind the arrow.
std::int32_t note_width(const char* note) {
    constexpr std::int32_t arrow_units = 12;
    std::int32_t longest = 0;
    std::string_view left = note;
    while (!left.empty()) {
        std::size_t end = std::min(left.find_first_of(" \n"), left.size());
        std::int32_t width = 0, height = 0;
        get_text_dimensions(current_window()->font, std::string(left.substr(0, end)).c_str(), width,
                            height);
        longest = std::max(longest, width);
        left.remove_prefix(std::min(end + 1, left.size()));
    }
    return longest + arrow_units;
}

void size_option_button(code_call& call, window_control* control, Xbutton* button) {
    double scale = button->font_size > 0.0 ? button->font_size : current_window()->text_scale;
    std::int32_t width = 0, height = 0;
    get_text_dimensions(current_window()->font, button->caption, width, height);
    bool wanted = call.n >= 1;
    if (wanted)
        width = call.n * 4;
    else if ((button->flags & option_split) != 0)
        width += 8;
    if (button->note) {
        if (button->vfill <= 0.0) button->vfill = 1.4;
        if (!wanted) width = std::max(width * 2, note_width(button->note));
    }
    control->width = truncated((width + 12) * scale);
    control->height = truncated((height + 6) * scale);
    control->inset = button_inset;
    if (button->icon) {
        std::int32_t size = GetIconSize(button->icon);
        if (size == 0) {
            quillpan_error("?Failed to get size of %%bt icon.");
            button->icon = nullptr;
        } else {
            control->width += pixels_to_units_x(size);
            control->height = std::max(control->height, pixels_to_units_y(size) + 4);
        }
    }
    control->height = truncated(control->height * (button->vfill + 1.0));
}

void skip_bracket(code_call& call) {
    if (*call.format == ']') ++call.format;
}

}  // namespace

Xbutton* new_button_block() {
    auto* button = static_cast<Xbutton*>(std::calloc(1, sizeof(Xbutton)));
    if (!button) heap_exhausted();
    button->colour = button->text_colour = button->floodfill_colour = no_colour;
    button->return_value = -1;
    return button;
}

std::int32_t take_button_value() {
    std::int32_t value = builder().pending_id;
    builder().pending_id = -1;
    return value != -1 ? value : builder().next_button_value++;
}

void handle_bt(code_call& call) {
    make_button(call, button_code::text);
}

void handle_bb(code_call& call) {
    make_button(call, button_code::icon);
}

void handle_tt(code_call& call) {
    make_button(call, button_code::tool);
}

void handle_bn(code_call& call) {
    if (building().preload_open && building().preloaded_block &&
        building().preloaded_type == control_type::option_button) {
        collect_button_options(call, *static_cast<Xbutton*>(building().preloaded_block), true);
        skip_bracket(call);
        return;
    }
    window_control* control = new_window_control(control_type::option_button);
    auto* button = static_cast<Xbutton*>(get_preloaded_block(control_type::option_button));
    if (!button) button = new_button_block();
    discard_with_window(button, nullptr);
    control->block = button;
    if (current_window()->dialog_resource > 0) control->resource_id = user_integer(call.arguments);
    collect_button_options(call, *button, false);
    take_option_font(control, button);
    if (!button->caption) button->caption = window_text_copy("", 0);
    control->text = button->caption;
    check_option_mix(control, button);
    std::int32_t letter = find_mnemonic(button->caption);
    key_for(control, letter);
    take_design_id(control);
    read_grey(call, control, "?Missing argument for button grey control.", "%bn");
    size_option_button(call, control, button);
    bool returns = button->return_value >= 0;
    if (!returns) button->return_value = take_button_value();
    if (take_default(call, control)) button->flags |= option_default;
    deepen_line(control->height);
    if (call.caret && returns)
        quillpan_error("?The return value option is not used when a callback is provided.");
    read_callback(call, *control, "should be a button call-back function");
    locate(control, 0);
}

// ---- What the other files ask of a button

bool drawn_button(const window_control* control) {
    if (control->type == control_type::fancy_button) return true;
    if (control->type == control_type::button) return control->flags.icon_button;
    if (control->type != control_type::option_button || !control->block) return false;
    return (static_cast<const Xbutton*>(control->block)->flags & option_coloured) != 0;
}

const char* button_label(const window_control* control) {
    return control->text ? control->text : "";
}

bool is_default_button(const window_control* control) {
    switch (control->type) {
        case control_type::button:
        case control_type::fancy_button:
        case control_type::option_button:
            return control->flags.default_button;
        default:
            return false;
    }
}

std::int32_t button_value(const window_control* control) {
    if (!control->block) return 0;
    if (control->type == control_type::option_button)
        return static_cast<const Xbutton*>(control->block)->return_value;
    return face_of(control)->value;
}

}  // namespace tarn::winio
