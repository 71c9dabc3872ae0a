// %rd, %rf, %rs and %re: the making of a box from its code, and the limits of one that is open.
#include "winio/data_entry.h"

#include <algorithm>
#include <cmath>

#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/report.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr double lowest_integer = -2147483648.0, highest_integer = 2147483647.0;
constexpr double widest_float = 1.0E308;

std::int32_t truncated(double value) {
    return static_cast<std::int32_t>(value);
}

bool dialog_window() {
    return current_window()->dialog_resource > 0;
}

std::int32_t number_box_width(const window_control* control, std::int32_t digits) {
    if (digits < 1) return 0;
    if (control->flags.wide) return (digits + 1) * 4;
    return string_width(control, std::string(std::min(digits, 250) + 1U, '8').c_str());
}

COLORREF ground_colour() {
    const box* in = builder().box;
    return in ? in->background : current_window()->background;
}

// ---- The arguments of each kind

void read_integer_box(code_call& call, window_control* control) {
    auto* variable = user_int_pointer(call.arguments);
    control->variable = variable;
    if (radix_of(control) == 0) control->block = reinterpret_cast<void*>(std::uintptr_t{10});
    undef_int_check(variable, "%rd", 1);
    control->low = builder().int_low;
    control->high = builder().int_high;
    control->flags.bound_limits = pending().int_limits_bound;
    std::int32_t digits = call.n;
    if (digits < 1)
        digits = static_cast<std::int32_t>(std::max(integer_text(builder().int_low, 10).size(),
                                                    integer_text(builder().int_high, 10).size()));
    control->width = number_box_width(control, digits);
}

void read_float_box(code_call& call, window_control* control) {
    auto* variable = user_float_pointer(call.arguments);
    control->variable = variable;
    undef_double_check(variable, "%rf", 0.0);
    if (variable && !records().passive && !valid_double(*variable)) {
        quillpan_error(
            "?Invalid inital value for %%RF format.\nAre you sure the variable is initialised?");
        *variable = 0.0;
    }
    control->low = builder().float_low;
    control->high = builder().float_high;
    control->flags.bound_limits = pending().float_limits_bound;
    control->digits = call.n >= 1 ? std::min(call.n, 250) : 11;
    control->width = number_box_width(control, control->digits);
}

void read_text_box(code_call& call, window_control* control) {
    control->variable = user_char_pointer(call.arguments);
    std::int32_t length = 0;
    if (call.arguments.fortran) {
        length = building().last_length;
        control->string_length = length;
        control->flags.fortran_string = true;
    } else {
        length = user_integer(call.arguments);
    }
    control->high = length;
    if (control->type == control_type::string_box && length <= 0) {
        quillpan_error("Invalid length for string (%%RS)");
        control->high = length = 1;
    }
    std::int32_t n = call.n;
    if (dialog_window() && n < 1) n = 10;
    if (n >= 1) control->flags.wide = true;
    std::int32_t columns = n >= 1 ? n : std::clamp(length, 0, 100000);
    control->width = (std::min(columns, 100000) + 1) * 4;
}

// ---- Sizes

// Fixes the height of the box and how far it reaches below a line of text; what `locate` is to
// add is the result.
std::int32_t give_depth(window_control* control, std::int32_t extra, bool& one_more) {
    double scale = current_window()->text_scale;
    control->height = 8;
    one_more = true;
    if (!control->flags.read_form && control->flags.data_border) {
        std::int32_t deeper = scale < 1.0 ? 4 : scale > 1.0 ? 0 : 2;
        builder().line_extra = std::max(builder().line_extra, deeper + extra);
        return extra;
    }
    control->flags.data_border = false;
    one_more = !(control->type == control_type::string_box && control->flags.no_additional_depth);
    return 0;
}

void scale_box(window_control* control, std::int32_t lines, bool one_more) {
    double scale = current_window()->text_scale;
    if (scale >= 1.0) scale *= 1.2;
    bool text =
        control->type == control_type::string_box || control->type == control_type::buffer_box;
    if (control->flags.wide || text) control->width = truncated(control->width * scale);
    control->height = control->flags.full_check
                          ? truncated(control->height * std::max(scale, 0.2) + 2.0)
                          : truncated(control->height * std::max(scale, 1.0));
    if (control->type == control_type::buffer_box) control->height *= lines;
    if (one_more) ++control->height;
}

// A pending step gives the box its spin, and is good for this one box.
void place_box(window_control* control, std::int32_t extra) {
    double step = current_window()->spin_step;
    if (step == 0.0) {
        locate(control, extra);
        return;
    }
    std::int32_t width = truncated(control->height * 0.7);
    control->width += width;
    locate(control, extra);
    control->width -= width;
    window_control* spin = new_window_control(control_type::spin);
    auto* block = static_cast<spin_block*>(std::calloc(1, sizeof(spin_block)));
    if (!block) heap_exhausted();
    discard_with_window(block, nullptr);
    spin->block = block;
    spin->x = control->x + control->width;
    spin->y = control->y;
    spin->inset = control->inset;
    spin->width = width;
    spin->height = control->height;
    spin->spin = control;
    control->spin = spin;
    control->step = step;
    current_window()->spin_step = 0.0;
}

struct box_kind {
    control_type type;
    const char* callback_message;
};

void make_edit_box_control(code_call& call, const box_kind& kind) {
    window_control* control = new_window_control(kind.type);
    bool number = kind.type == control_type::integer_box || kind.type == control_type::float_box;
    if (number)
        collect_rd_rf_options(call, control);
    else
        collect_rs_re_options(call, control);
    std::int32_t lines = std::max(call.m, 1);
    read_resource_id(call, *control);
    if (kind.type == control_type::integer_box)
        read_integer_box(call, control);
    else if (kind.type == control_type::float_box)
        read_float_box(call, control);
    else
        read_text_box(call, control);
    control->flags.data_control = true;
    if (call.grave) {
        call.grave = false;
        control->flags.read_form = true;
        // It shows a value and takes none: it stands on the window's own ground.
        if (control->background == data_colour()) control->background = ground_colour();
    }
    bool one_more = true;
    std::int32_t extra = number || !control->flags.no_additional_depth ? 2 : 0;
    extra = give_depth(control, extra, one_more);
    scale_box(control, lines, one_more);
    read_grey_variable(call, *control);
    read_callback(call, *control, kind.callback_message);
    if (records().passive) {
        std::free(control);
        return;
    }
    deepen_line(control->height + extra);
    place_box(control, extra);
}

window_control* box_of_handle(HWND hwnd, control_type type) {
    window_control* control = control_from_window(hwnd, false);
    return control && control->type == type ? control : nullptr;
}

}  // namespace

std::int32_t radix_of(const window_control* control) {
    if (control->type != control_type::integer_box) return 10;
    return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(control->block));
}

const char* format_of(const window_control* control) {
    if (control->type != control_type::float_box) return nullptr;
    return static_cast<const char*>(control->block);
}

void handle_rd(code_call& call) {
    make_edit_box_control(
        call, {control_type::integer_box, "should be a call-back function for the %RD format"});
}

void handle_rf(code_call& call) {
    make_edit_box_control(
        call, {control_type::float_box, "should be a call-back function for the %RF format"});
}

void handle_rs(code_call& call) {
    make_edit_box_control(
        call, {control_type::string_box, "should be a call-back function for the %RS/%RE format"});
}

void handle_re(code_call& call) {
    make_edit_box_control(
        call, {control_type::buffer_box, "should be a call-back function for the %RS/%RE format"});
}

void set_integer_limits(HWND hwnd, std::int32_t low, std::int32_t high) {
    window_control* control = box_of_handle(hwnd, control_type::integer_box);
    if (!control) return;
    control->low = high < low ? lowest_integer : low;
    control->high = high < low ? highest_integer : high;
    control->flags.read_form = low == high;
    constexpr UINT set_read_only = 0xCF;  // EM_SETREADONLY
    SendMessageA(hwnd, set_read_only, low == high, 0);
}

void set_float_limits(HWND hwnd, double low, double high) {
    window_control* control = box_of_handle(hwnd, control_type::float_box);
    if (!control) return;
    bool sound = high > low;
    control->low = sound ? low : -widest_float;
    control->high = sound ? high : widest_float;
}

double set_increment(HWND hwnd, double step) {
    window_control* control = control_from_window(hwnd, false);
    if (!control || !control->flags.data_control) return 0.0;
    double before = control->step;
    if (std::isfinite(step)) control->step = step;
    return before;
}

}  // namespace tarn::winio
