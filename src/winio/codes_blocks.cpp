// Controls of several parts: parameter blocks, property sheets, blocks of image buttons, toolbars.
#include <algorithm>
#include <cstring>

#include "platform/base/constants.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/placeholders.h"
#include "winio/report.h"

namespace tarn::winio {

// ---- Parameter blocks
// ----------------------------------------------------------------------------
void handle_pb(code_call& call) {
    window_control* control = new_placeholder(control_type::parameter_block);
    collect_other_options(call);
    read_resource_id(call, *control);
    if ((call.n < 1 || call.m < 1) && !in_dialog_resource()) {
        quillpan_error("Missing size information on %%n.mPB format");
    }
    size_in_characters(*control, std::max(call.n, 1), std::max(call.m, 1));
    call.grave = false;
    read_grey_variable(call, *control);
    read_callback(call, *control, "should be a call-back function for the %%PB format");
    if (!records().passive) builder().param_block = control;
    place_control(control);
}

namespace {

// One item of the block: its name; then what it is tied to; then, with `?`, its help.
void begin_item(code_call& call, const char* name) {
    get_standard_string(call, name);
    if (!builder().param_block && !records().passive) {
        quillpan_error("?%s can only come after %%PB.", name);
    }
}

void end_item(code_call& call) {
    if (!call.question) return;
    call.question = false;
    get_standard_string(call, "help");
}

}  // namespace

void handle_dp(code_call& call) {
    begin_item(call, "%DP");
    user_int_pointer(call.arguments);
    end_item(call);
}

void handle_fp(code_call& call) {
    begin_item(call, "%FP");
    user_float_pointer(call.arguments);
    end_item(call);
}

void handle_tp(code_call& call) {
    begin_item(call, "%TP");
    user_char_pointer(call.arguments);
    if (!building().fortran_call) user_integer(call.arguments);
    end_item(call);
}

void handle_ep(code_call& call) {
    begin_item(call, "%EP");
    read_string_list(call);
    user_int_pointer(call.arguments);
    end_item(call);
}

void handle_up(code_call& call) {
    begin_item(call, "%UP");
    get_callback_function(call.arguments, "should be a call-back function for the %%UP format");
    end_item(call);
}

// ---- Property sheets
// -----------------------------------------------------------------------------
void handle_ps(code_call& call) {
    window_control* control = new_placeholder(control_type::sheet);
    const control_options found = collect_other_options(call);
    if (found.native) control->type = control_type::native_sheet;
    read_resource_id(call, *control);
    const std::int32_t pages = std::max(call.n, 1);
    const bool from_array = call.tilde;
    call.tilde = false;
    const std::int32_t* array = from_array ? user_int_pointer(call.arguments) : nullptr;
    // The pages' windows are finished already: the largest gives the size.
    std::int32_t width = 1, height = 1;
    for (std::int32_t page = 0; page < pages; ++page) {
        if (!from_array && call.arguments.exhausted()) break;
        const std::int32_t* variable =
            from_array ? (array ? array + page : nullptr) : user_int_pointer(call.arguments);
        const fancy_window* sheet = variable ? window_from_control_variable(variable) : nullptr;
        if (!sheet || sheet == current_window()) continue;
        width = std::max(width, sheet->right - sheet->left + 1);
        height = std::max(height, sheet->bottom - sheet->top + 1);
    }
    if (call.grave) control->variable = user_int_pointer(call.arguments);
    call.grave = false;
    size_in_pixels(*control, width, height);
    control->height += 13;  // the tabs
    finish_control(call, control, "should be a call-back function for the %%PS format");
}

// ---- Blocks of image buttons
// ---------------------------------------------------------------------
namespace {

constexpr std::int32_t most_cells = 4096;
constexpr std::int32_t cell_pixels = 24;

}  // namespace

void handle_ib(code_call& call) {
    window_control* control = new_placeholder(control_type::button_block);
    collect_other_options(call);
    read_resource_id(call, *control);
    const std::int32_t columns = std::clamp(call.n, 1, most_cells);
    const std::int32_t rows = std::clamp(call.m, 1, most_cells / columns);
    for (std::int32_t cell = 0; cell < columns * rows; ++cell) {
        if (call.arguments.exhausted() && cell > 0) break;
        user_string(call.arguments);
        user_int_pointer(call.arguments);
        get_callback_function(call.arguments, "should be an individual %%IB call-back function");
    }
    size_in_pixels(*control, columns * cell_pixels, rows * cell_pixels);
    if (!records().passive) current_window()->flags.block_needs_help = true;
    if (call.question) {
        // One text a cell.
        call.question = false;
        for (std::int32_t cell = 0; cell < columns * rows; ++cell) {
            if (*call.format != '[' && *call.format != '@') {
                quillpan_error("Missing help string");
                break;
            }
            get_standard_string(call, "help");
        }
    }
    finish_control(call, control, "should be an overall %IB call-back function");
}

// ---- Toolbars of many buttons
// --------------------------------------------------------------------
void handle_mb(code_call& call) {
    window_control* control = new_placeholder(control_type::toolbar);
    if (call.n < 1) quillpan_error("?Invalid button count in %%MB");
    fancy_window& window = *current_window();
    if (!records().passive) {
        window.flags.multi_button = true;
        if (!window.flags.own_background) window.background = dialog_colour();
    }
    const control_options found = collect_other_options(call);
    user_int_pointer(call.arguments);                      // styles
    control->variable = user_int_pointer(call.arguments);  // pictures
    if (call.grave) {
        call.grave = false;
        user_string(call.arguments);
    }
    if (call.tilde) {
        call.tilde = false;
        user_int_pointer(call.arguments);
    }
    if (found.adjustable) user_int_pointer(call.arguments);
    read_callback(call, *control, "should be a %MB call-back function");
    if (found.strings) {
        if (*call.format != '[' && *call.format != '@') {
            quillpan_error("Missing button text");
        } else {
            control->text = get_standard_string(call, "button text");
        }
        if (call.question) {
            quillpan_error("?%%MB cannot have both text and help strings.");
            call.question = false;
        }
    }
    if (call.question) {
        call.question = false;
        if (*call.format != '[' && *call.format != '@') {
            quillpan_error("Missing help string");
        } else {
            control->help = get_standard_string(call, "help");
        }
    }
    const std::int32_t count = std::max(call.n, 1);
    size_in_pixels(*control, count * (std::clamp(found.button_width, 1, 256) + 7),
                   std::clamp(found.button_height, 1, 256) + 6);
    place_control(control);
}

}  // namespace tarn::winio
