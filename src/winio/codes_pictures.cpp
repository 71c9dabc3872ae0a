// Pictures, icons, bars, sliders and other small controls.
#include <algorithm>
#include <cstring>

#include "platform/base/constants.h"
#include "platform/gdi/gdi.h"
#include "platform/user/user.h"
#include "winio/buttons.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/placeholders.h"
#include "winio/report.h"
#include "winio/resources.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t icon_size = 32;

// ---- Icons -------------------------------------------------------------------------------------
std::int32_t icon_of_letter(char letter) {
    switch (letter) {
        case '!':
        case 'W':
        case 'w':
            return platform::IDI_EXCLAMATION;
        case '?':
        case 'Q':
        case 'q':
            return platform::IDI_QUESTION;
        case '*':
        case 'I':
        case 'i':
            return platform::IDI_ASTERISK;
        case '#':
        case 'X':
        case 'x':
            return platform::IDI_HAND;
        case '$':
            return platform::IDI_WINLOGO;
        default:
            return 0;
    }
}

}  // namespace

void handle_si(code_call& call) {
    window_control* control = new_window_control(control_type::system_icon);
    const std::int32_t which = icon_of_letter(*call.format);
    if (which == 0) {
        quillpan_error("?Invalid icon for the %%SI format");
    } else {
        ++call.format;
    }
    control->system_icon = which != 0 ? which : platform::IDI_APPLICATION;
    const std::int32_t size = call.n > 0 ? std::min(call.n, 1024) : icon_size;
    size_in_pixels(*control, size, size);
    finish_control(call, control, "should be a call-back function for the %%SI format");
}

// ---- Pictures from outside
namespace {

platform::SIZE picture_size(const window_control& control) {
    if (records().check_mode) return {icon_size, icon_size};
    if (control.type != control_type::icon) return size_bitmap(control.text);
    const std::int32_t size = GetIconSize(control.text);
    return size != 0 ? platform::SIZE{size, size} : platform::SIZE{icon_size, icon_size};
}

window_control* named_picture(code_call& call, control_type type, const char* what) {
    window_control* control = new_window_control(type);
    control->text = get_standard_string(call, what);
    const platform::SIZE size = picture_size(*control);
    size_in_pixels(*control, size.cx, size.cy);
    return control;
}

}  // namespace

void handle_ic(code_call& call) {
    window_control* control = named_picture(call, control_type::icon, "%IC");
    finish_control(call, control, "should be a call-back function for the %%IC format");
}

void handle_im(code_call& call) {
    window_control* control = named_picture(call, control_type::bitmap, "%IM");
    finish_control(call, control, "should be a call-back function for the %%IM format");
}

void handle_fi(code_call& call) {
    window_control* control = named_picture(call, control_type::picture, "%FI");
    finish_control(call, control, "should be a call-back function for the %%FI format");
}

void handle_gi(code_call& call) {
    window_control* control = named_picture(call, control_type::animation, "%GI");
    control->flags.placeholder = true;
    read_resource_id(call, *control);
    finish_control(call, control, "should be a call-back function for the %%GI format");
}

void handle_bm(code_call& call) {
    window_control* control = new_window_control(control_type::bitmap);
    size_in_pixels(*control, icon_size, icon_size);
    if (call.grave) {
        call.grave = false;
        const word handle = user_thing(call.arguments, true);
        control->data = handle;
        platform::SIZE size;
        const auto bitmap = static_cast<platform::HBITMAP>(handle);
        if (!records().check_mode && platform::GetBitmapSize(bitmap, size)) {
            size_in_pixels(*control, size.cx, size.cy);
        }
        constexpr std::string_view native = "[static]";
        if (strncasecmp(call.format, native.data(), native.size()) == 0) {
            call.format += native.size();
            control->flags.native = true;
        }
    } else {
        control->text = get_standard_string(call, "%BM");
        if (!records().check_mode) {
            const platform::SIZE size = size_bitmap(control->text);
            size_in_pixels(*control, size.cx, size.cy);
        }
    }
    if (control->flags.native && call.caret) {
        // Left over, so that it is reported: such a picture sends nothing.
        read_grey_variable(call, *control);
        place_control(control);
        return;
    }
    finish_control(call, control, "should be a call-back function for the %%BM format");
}

// ---- Bars and sliders
void handle_br(code_call& call) {
    const bool dialog = in_dialog_resource();
    window_control* control = new_placeholder(control_type::bar);
    read_resource_id(call, *control);
    control->variable = user_float_pointer(call.arguments);
    const control_options found = collect_other_options(call);
    const COLORREF colour = user_colour(call);
    control->block = reinterpret_cast<void*>(static_cast<word>(colour));
    const bool drawn = found.direction != 0 || found.percentage;
    if ((found.native && !drawn) || dialog) control->type = control_type::native_bar;
    const std::int32_t length = std::max(call.n, 1);
    size_in_characters(*control, found.vertical ? 2 : length, found.vertical ? length : 1);
    if (found.panel_given && control->type == control_type::native_bar) {
        // It lies in the status bar, not among the controls.
        control->data2 = found.panel;
        control->width = control->height = 0;
    }
    finish_control(call, control, "should be a call-back function for the %%BR format");
}

void handle_sl(code_call& call) {
    constexpr std::int32_t standard_length = 5;
    window_control* control = new_placeholder(control_type::slider);
    const bool dialog = in_dialog_resource();
    const control_options found = collect_other_options(call);
    const bool native = (found.native || dialog) && !found.alternative;
    if (native) control->type = control_type::native_slider;
    read_resource_id(call, *control);
    if (native) {
        control->variable = user_int_pointer(call.arguments);
        control->low = user_integer(call.arguments);
        control->high = user_integer(call.arguments);
    } else {
        control->variable = user_float_pointer(call.arguments);
        control->low = user_float(call.arguments, "Invalid number passed to %sl format");
        control->high = user_float(call.arguments, "Invalid number passed to %sl format");
    }
    const std::int32_t length = call.n > 0 ? call.n : standard_length;
    size_in_characters(*control, found.vertical ? 2 : length, found.vertical ? length : 2);
    finish_control(call, control, "should be a call-back function for the %%SL format");
}

// ---- Small controls
void handle_ld(code_call& call) {
    window_control* control = new_placeholder(control_type::led);
    collect_other_options(call);
    read_resource_id(call, *control);
    control->variable = user_int_pointer(call.arguments);
    size_in_characters(*control, 2, 1);
    finish_control(call, control, "should be a call-back function for the %%LD format");
}

void handle_cl(code_call& call) {
    window_control* control = new_placeholder(control_type::palette);
    const control_options found = collect_other_options(call);
    read_resource_id(call, *control);
    control->variable = user_int_pointer(call.arguments);
    constexpr std::int32_t colours_in_row = 8;
    size_in_characters(*control, colours_in_row * 2, found.colour_rows + (found.iconic ? 1 : 0));
    finish_control(call, control, "should be a call-back function for the %%CL format");
}

void handle_gb(code_call& call) {
    window_control* control = new_window_control(control_type::group_box);
    control->text = get_standard_string(call, "%GB");
    const std::int32_t width = user_integer(call.arguments);
    const std::int32_t height = user_integer(call.arguments);
    size_in_pixels(*control, width, height);
    finish_control(call, control, "should be a call-back function for the %%GB format");
}

void handle_uw(code_call& call) {
    window_control* control = new_placeholder(control_type::foreign);
    control->text = get_standard_string(call, "%UW");
    const std::int32_t width = user_integer(call.arguments);
    const std::int32_t height = user_integer(call.arguments);
    control->style = static_cast<std::uint32_t>(user_integer(call.arguments));
    control->ex_style = static_cast<std::uint32_t>(user_integer(call.arguments));
    const handle_variable variable = user_handle_variable(call.arguments);
    control->hwnd_var = variable.narrow;
    control->hwnd_var_wide = variable.wide;
    size_in_pixels(*control, width, height);
    finish_control(call, control, "should be a call-back function for the %%UW format");
}

namespace {

// These take their place and size from a dialog resource only.
void dialog_only(code_call& call, control_type type, const char* name, const char* message) {
    window_control* control = new_placeholder(type);
    if (!in_dialog_resource()) quillpan_error("?%%%s can only be used with %%DI.", name);
    control->resource_id = user_integer(call.arguments);
    control->variable = user_int_pointer(call.arguments);
    size_in_characters(*control, 12, type == control_type::month ? 8 : 1);
    finish_control(call, control, message);
}

}  // namespace

void handle_dt(code_call& call) {
    dialog_only(call, control_type::date_time, "DT",
                "should be a call-back function for the %%DT format");
}
void handle_mc(code_call& call) {
    dialog_only(call, control_type::month, "MC",
                "should be a call-back function for the %%MC format");
}

// ---- What the next button looks like
namespace {

void next_button_colour(code_call& call, COLORREF*& colour, bool& by_variable) {
    const bool variable = call.grave;
    call.grave = false;
    COLORREF* cell = nullptr;
    if (variable) {
        cell = reinterpret_cast<COLORREF*>(user_int_pointer(call.arguments));
    } else {
        const COLORREF given = user_colour(call);
        if (records().passive) return;
        cell = new_record<COLORREF>();
        discard_with_window(cell, nullptr);
        *cell = given;
    }
    if (records().passive) return;
    colour = cell;
    by_variable = variable;
}

}  // namespace

void handle_bc(code_call& call) {
    next_button_colour(call, pending().face_colour, pending().face_by_variable);
}
void handle_bu(code_call& call) {
    next_button_colour(call, pending().button_text_colour, pending().text_by_variable);
}
void handle_bi(code_call& call) {
    const char* icon = get_standard_string(call, "%BI");
    if (!records().passive) pending().button_icon = window_text_copy(icon, std::strlen(icon));
}

}  // namespace tarn::winio
