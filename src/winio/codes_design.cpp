// Windows that take their controls from a layout file: the names of variables that it uses are read
// and checked. Layout files themselves aren't read yet.
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t undesigned = -1;

void needs_design_window() {
    if (current_window()->design_number == undesigned && !records().passive) {
        quillpan_error("%%Q* requires %%WI or %%WR");
    }
}

}  // namespace

void handle_wi(code_call& call) {
    const std::int32_t number = user_integer(call.arguments);
    fancy_window& window = *current_window();
    call.tilde = false;
    if (records().passive) return;
    if (window.design_number == 0) quillpan_error("%%WI may not be used with %%WR");
    if (window.design_number > 0) {
        quillpan_error("%%WI may only be used once for each window");
    }
    if (window.dialog_resource > 0) quillpan_error("%%WI may not be used with %%DI");
    if (number < 1) {
        quillpan_error("%%WI value must be positive");
        return;
    }
    window.design_number = number;
}

void handle_wr(code_call& call) {
    if (*call.format == '[' || *call.format == '@') get_standard_string(call, "RCX file");
    fancy_window& window = *current_window();
    if (records().passive) return;
    if (window.dialog_resource > 0) quillpan_error("%%WR may not be used with %%DI");
    if (window.design_number > 0) quillpan_error("%%WR may not be used with %%WI");
    window.design_number = 0;
    window.flags.design_read = true;
}

void handle_ci(code_call& call) {
    pending().design_id = user_integer(call.arguments);
}

// ---- Names of the program's variables
void handle_qd(code_call& call) {
    needs_design_window();
    get_standard_string(call, "%QD");
    user_int_pointer(call.arguments);
}

void handle_qf(code_call& call) {
    needs_design_window();
    get_standard_string(call, "%QF");
    user_float_pointer(call.arguments);
}

void handle_qs(code_call& call) {
    needs_design_window();
    get_standard_string(call, "%QS");
    user_char_pointer(call.arguments);
}

void handle_qh(code_call& call) {
    needs_design_window();
    get_standard_string(call, "%QH");
    user_handle_variable(call.arguments);
}

void handle_qc(code_call& call) {
    needs_design_window();
    get_standard_string(call, "%QC");
    get_callback_function(call.arguments, "should be a %QC call-back function");
}

void handle_qi(code_call& call) {
    const char* name = get_standard_string(call, "%QI variable name");
    const bool grey = call.tilde, check = call.grave;
    call.tilde = call.grave = false;
    if (*name == '*') {
        user_handle_variable(call.arguments);
        return;
    }
    user_string(call.arguments);
    if (grey) user_int_pointer(call.arguments);
    if (check) user_int_pointer(call.arguments);
    get_callback_function(call.arguments, "should be a %QI call-back function");
    if (call.question) {
        call.question = false;
        get_standard_string(call, "help");
    }
}

void handle_qm(code_call& call) {
    get_standard_string(call, "%QM");
    user_string(call.arguments);
    if (call.grave) {
        call.grave = false;
        user_string(call.arguments);
    }
}

}  // namespace tarn::winio
