// Codes of what the boxes share, of text windows, embedded windows, and lines of help and status.
#include <algorithm>
#include <cstring>

#include "platform/base/constants.h"
#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/placeholders.h"
#include "winio/report.h"

namespace tarn::winio {

// ---- Limits, steps, prompts
void handle_il(code_call& call) {
    window_builder& limits = builder();
    if (call.grave) {
        call.grave = false;
        limits.int_low = -0x7FFFFFFF - 1;
        limits.int_high = 0x7FFFFFFF;
        pending().int_limits_bound = false;
        return;
    }
    const std::int32_t low = user_integer(call.arguments);
    const std::int32_t high = user_integer(call.arguments);
    pending().int_limits_bound = call.tilde;
    call.tilde = false;
    if (low >= high) {
        quillpan_error("?Negative or zero range implied by %%IL format.");
        return;
    }
    limits.int_low = low;
    limits.int_high = high;
}

void handle_fl(code_call& call) {
    window_builder& limits = builder();
    if (call.grave) {
        call.grave = false;
        limits.float_low = -1.0E308;
        limits.float_high = 1.0E308;
        pending().float_limits_bound = false;
        return;
    }
    const double low = user_float(call.arguments, "Invalid number passed to %fl format");
    const double high = user_float(call.arguments, "Invalid number passed to %fl format");
    pending().float_limits_bound = call.tilde;
    call.tilde = false;
    if (!(low < high)) {
        quillpan_error("?Negative or zero range implied by %%FL format.");
        return;
    }
    limits.float_low = low;
    limits.float_high = high;
}

void handle_dd(code_call& call) {
    current_window()->spin_step = user_integer(call.arguments);
}
void handle_df(code_call& call) {
    current_window()->spin_step = user_float(call.arguments, "Invalid number passed to %df format");
}

void handle_co(code_call& call) {
    if (call.grave) {
        call.grave = false;
        if (!records().passive) collect_co_reset(*current_window());
        return;
    }
    collect_co_options(call);
}

void handle_pr(code_call& call) {
    char* prompt = user_string(call.arguments);
    const std::int32_t colour = user_integer(call.arguments);
    if (records().passive) return;
    window_control* box = current_window()->last_control;
    if (box && box->type == control_type::spin && box->spin) box = box->spin;
    const bool fits =
        box && (box->type == control_type::integer_box || box->type == control_type::float_box ||
                box->type == control_type::string_box);
    if (!fits) {
        quillpan_error("?%%PR can only come after %%RD, %%RF or %%RS.");
        return;
    }
    box->prompt = prompt ? window_text_copy(prompt, std::strlen(prompt)) : nullptr;
    box->prompt_colour = static_cast<COLORREF>(colour);
    if (colour == 0) {
        quillpan_error("?%%PR colour must not be zero.");
        box->prompt_colour = 1;
    }
}

// ---- Text windows ------------------------------------------------------------------------------
void handle_cw(code_call& call) {
    window_control* control = new_window_control(control_type::text_window);
    collect_cw_options(call, control);
    read_resource_id(call, *control);
    std::int32_t columns = call.n, rows = call.m;
    if ((columns < 1 || rows < 2) && !in_dialog_resource()) {
        quillpan_error("?Width and height (>1) parameters must be specified for %%CW");
    }
    columns = std::max(columns, 1);
    rows = std::max(rows, 2);
    if (building().fortran_call) {
        control->data2 = user_integer(call.arguments);
    } else {
        control->data = reinterpret_cast<word>(user_struct_star_star_pointer(call.arguments));
    }
    if (call.grave) {
        call.grave = false;
        const handle_variable variable = user_handle_variable(call.arguments);
        control->hwnd_var = variable.narrow;
        control->hwnd_var_wide = variable.wide;
    }
    size_in_characters(*control, columns, rows);
    control->width += pixels_to_units_x(textwin::embedded_margin_x);
    control->height += pixels_to_units_y(2 * textwin::embedded_margin_y);
    finish_control(call, control, "should be a call-back function for the %%CW format");
}

// ---- Embedded windows --------------------------------------------------------------------------
namespace {

fancy_window* child_of_variable(const std::int32_t* variable) {
    fancy_window* child = variable ? window_from_control_variable(variable) : nullptr;
    return child == current_window() ? nullptr : child;
}

}  // namespace

void handle_ch(code_call& call) {
    window_control* control = new_window_control(control_type::child_window);
    std::int32_t* variable = user_int_pointer(call.arguments);
    collect_ch_options(call, records().passive ? nullptr : control);
    control->variable = variable;
    fancy_window* child = child_of_variable(variable);
    if (child) {
        size_in_pixels(*control, child->right - child->left + 1, child->bottom - child->top + 1);
        child->frame_window = current_window();
    } else {
        if (!records().passive && !records().check_mode) {
            quillpan_error("?The argument of %%CH is not the control variable of a child window.");
        }
        size_in_characters(*control, 1, 1);
        control->flags.placeholder = true;
    }
    fancy_window& window = *current_window();
    if (window.scrolled_child == control && child) {
        window.v_range = child->bottom - child->top + 1;
        window.h_range = child->right - child->left + 1;
        window.v_page =
            std::min(window.v_range, platform::GetSystemMetrics(platform::SM_CYSCREEN) / 2);
        window.h_page =
            std::min(window.h_range, platform::GetSystemMetrics(platform::SM_CXSCREEN) / 2);
    }
    finish_control(call, control, "should be a call-back function for the %%CH format");
}

void handle_fr(code_call& call) {
    window_control* control = new_window_control(control_type::mdi_frame);
    read_resource_id(call, *control);
    std::int32_t width = 1, height = 1;
    if (!in_dialog_resource()) {
        width = user_integer(call.arguments);
        height = user_integer(call.arguments);
    }
    if (call.grave) {
        call.grave = false;
        const handle_variable variable = user_handle_variable(call.arguments);
        control->hwnd_var = variable.narrow;
        control->hwnd_var_wide = variable.wide;
    }
    size_in_pixels(*control, width, height);
    fancy_window& window = *current_window();
    if (!records().passive) {
        if (window.mdi_frame) quillpan_error("Only one %%FR permitted per window");
        window.mdi_frame = control;
    }
    finish_control(call, control, "should be a call-back function for the %%FR format");
}

void handle_gp(code_call& call) {
    window_control* control = new_window_control(control_type::marker);
    control->variable = user_int_pointer(call.arguments);
    control->block = user_int_pointer(call.arguments);
    control->flags.parent_relative = call.grave;
    call.grave = false;
    place_control(control);
}

// ---- Help and status ---------------------------------------------------------------------------
void handle_he(code_call& call) {
    window_control* control = new_window_control(control_type::help_line);
    collect_he_options(call, control);
    control->text = window_text_copy("", 0);
    size_in_characters(*control, std::max(call.n, 1), std::max(call.m, 1));
    if (!records().passive) current_window()->help_control = control;
    place_control(control);
}

void handle_sb(code_call& call) {
    constexpr std::int32_t most_parts = 256;
    window_control* control = new_window_control(control_type::status_bar);
    control->flags.placeholder = true;
    collect_other_options(call);
    std::int32_t parts = std::max(call.n, 1);
    if (parts > most_parts) {
        quillpan_error("?Too many %%SB parts");
        parts = most_parts;
    }
    if (parts > 1) control->variable = user_int_pointer(call.arguments);
    control->data2 = parts;
    const bool shows_help = call.grave;
    call.grave = false;
    if (records().passive) {
        std::free(control);
        return;
    }
    fancy_window& window = *current_window();
    window.flags.status_bar = true;
    if (shows_help) window.help_control = control;
    // It lies along the bottom of the window and takes no room among the controls.
    control->height = pixels_to_units_y(platform::GetSystemMetrics(platform::SM_CYMENU));
}

}  // namespace tarn::winio
