// Controls of several parts: parameter blocks and property sheets.
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

}  // namespace tarn::winio
