// Lists, trees and drop-downs: which arguments they read and how large they are. The controls
// themselves are place-holders so far.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "platform/base/constants.h"
#include "platform/user/user.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/placeholders.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

std::int32_t truncated(double value) {
    constexpr double reach = 1.0E6;
    return static_cast<std::int32_t>(std::clamp(value, 0.0, reach));
}

// ---- List boxes --------------------------------------------------------------------------------
struct list_size {
    std::int32_t columns, rows;
    bool scrolls;  // fewer rows than items
};

list_size size_of_list(const code_call& call, const string_list& items, bool rows_first) {
    const std::int32_t wanted_columns = rows_first ? call.m : call.n;
    const std::int32_t wanted_rows = rows_first ? call.n : call.m;
    list_size size{items.width, items.count, false};
    if (wanted_columns > 0) size.columns = wanted_columns;
    if (wanted_rows > 0) {
        size.scrolls = wanted_rows < items.count;
        size.rows = wanted_rows;
    }
    // What a program counts is as large as it says; no screen shows more.
    constexpr std::int32_t most = 10000;
    size.rows = std::clamp(size.rows, 1, most);
    size.columns = std::clamp(size.columns, 0, most);
    return size;
}

void size_list(window_control& control, const list_size& size, double s) {
    control.width = truncated((size.columns * 4.0 + 4.0) * s) + (size.scrolls ? 4 : 0);
    if (control.flags.hover && control.item_height == 0) control.item_height = 24;
    if (control.item_height != 0) {
        control.height = pixels_to_units_y(control.item_height) * size.rows + 2;
    } else {
        control.height = truncated(size.rows * s * 8.0 + 2.0);
    }
}

struct row_factors {
    double large, small;  // what is added to a row for s from 1, and below
};

// `limit_height`: the list is at most that part of the screen high.
void limit_list_height(code_call& call, window_control& control, std::int32_t rows, double s,
                       const row_factors& factors, const char* message) {
    const double unit = control.item_height != 0 ? control.item_height / 2.0 : 8.0;
    control.height = truncated(rows * (unit + (s >= 1.0 ? factors.large : factors.small)) * s);
    read_grey_variable(call, control);
    const double part = user_float(call.arguments, message);
    const double screen = platform::GetSystemMetrics(platform::SM_CYSCREEN);
    control.height =
        std::min(control.height, truncated(screen * part * 8.0 / records().char_height));
    control.height_limit = part;
}

void keep_list(window_control& control, const string_list& items, std::int32_t* selection) {
    control.data = reinterpret_cast<word>(items.table ? static_cast<const void*>(items.table)
                                                      : static_cast<const void*>(items.array));
    control.data2 = items.count;
    control.string_length = items.width;
    control.flags.fortran_string = items.array != nullptr;
    control.variable = selection;
}

// The list's arguments. A font list has none in Fortran; `colors` and `icons` add one there.
string_list read_items(code_call& call, const window_control& control) {
    if (control.font_request != 0 && building().fortran_call) return {nullptr, nullptr, 10, 20};
    if (building().fortran_call && (control.flags.colours || control.flags.icons)) {
        string_list list{};
        list.array = user_char_pointer(call.arguments);
        list.width = std::max(building().last_length, 0);
        if (control.flags.colours) user_int_pointer(call.arguments);
        if (control.flags.icons) user_string(call.arguments);
        list.count = std::max(user_integer(call.arguments), 0);
        return list;
    }
    return read_string_list(call);
}

void place_drop_down(window_control* control, double s) {
    const std::int32_t line_height = truncated(s * 9.6);
    control->width += truncated(s * 4.0);
    control->height = line_height;
    if (records().passive) {
        std::free(control);
        return;
    }
    pending().extra_x = 2;
    pending().extra_y = 0;
    deepen_line(control->height);
    locate(control, builder().box ? 2 : 0);
}

void list_box(code_call& call, bool rows_first) {
    const bool combo = call.grave;
    window_control* control =
        new_placeholder(combo ? control_type::combo_box : control_type::list_box);
    collect_ls_options(call, control);
    read_resource_id(call, *control);
    const string_list items = read_items(call, *control);
    std::int32_t* selection = user_int_pointer(call.arguments);
    keep_list(*control, items, selection);
    call.grave = false;
    const double s = std::max(current_window()->text_scale, 0.5);
    const list_size size = size_of_list(call, items, rows_first);
    size_list(*control, size, s);
    const char* const message = "should be a call-back function for the %%LS format";
    if (combo) {
        read_grey_variable(call, *control);
        read_callback(call, *control, message);
        place_drop_down(control, s);
        return;
    }
    if (control->flags.limit_height) {
        limit_list_height(call, *control, size.rows, s, {0.6, 1.5},
                          "Invalid number passed to %ls format");
    }
    pending().extra_x = 2;
    pending().extra_y = 1;
    finish_control(call, control, message);
}

}  // namespace

void handle_ls(code_call& call) {
    list_box(call, false);
}
void handle_lb(code_call& call) {
    list_box(call, true);
}

void handle_ms(code_call& call) {
    window_control* control = new_placeholder(control_type::multi_select);
    collect_ms_options(call, control);
    read_resource_id(call, *control);
    const string_list items = read_string_list(call);
    std::int32_t* selections = user_int_pointer(call.arguments);
    keep_list(*control, items, selections);
    const double s = std::max(current_window()->text_scale, 0.5);
    const list_size size = size_of_list(call, items, false);
    size_list(*control, size, s);
    if (control->flags.limit_height) {
        limit_list_height(call, *control, size.rows, s, {0.6, 1.5},
                          "Invalid number passed to %ms format");
    }
    pending().extra_x = 2;
    pending().extra_y = 1;
    finish_control(call, control, "should be a call-back function for the %%MS format");
}

void handle_el(code_call& call) {
    window_control* control = new_placeholder(control_type::edit_list);
    collect_el_options(call, control);
    read_resource_id(call, *control);
    const string_list items = read_items(call, *control);
    char* text = user_char_pointer(call.arguments);
    std::int32_t length = building().last_length;
    if (!building().fortran_call) length = user_integer(call.arguments);
    keep_list(*control, items, nullptr);
    control->variable = text;
    control->high = length;
    const double s = std::max(current_window()->text_scale, 1.0);
    const list_size size = size_of_list(call, items, false);
    size_list(*control, size, s);
    call.grave = false;
    read_grey_variable(call, *control);
    read_callback(call, *control, "should be a call-back function for the %%EL format");
    place_drop_down(control, s);
}

// ---- Lists with columns, trees
namespace {

// Width and height in pixels come before the options, and not at all in a dialog resource.
window_control* pixel_sized(code_call& call, control_type type) {
    window_control* control = new_placeholder(type);
    std::int32_t width = 1, height = 1;
    if (in_dialog_resource()) {
        control->resource_id = user_integer(call.arguments);
    } else {
        width = user_integer(call.arguments);
        height = user_integer(call.arguments);
    }
    size_in_pixels(*control, width, height);
    return control;
}

}  // namespace

void handle_lv(code_call& call) {
    window_control* control = pixel_sized(call, control_type::list_view);
    collect_other_options(call);
    const string_list rows = read_string_list(call);
    keep_list(*control, rows, user_int_pointer(call.arguments));
    std::int32_t* view = user_int_pointer(call.arguments);
    control->gcb = view;
    if (call.grave) user_string(call.arguments);  // the names of its icons
    finish_control(call, control, "should be a call-back function for the %%LV format");
}

void handle_bv(code_call& call) {
    window_control* control = pixel_sized(call, control_type::branch_view);
    collect_other_options(call);
    const string_list rows = read_string_list(call);
    keep_list(*control, rows, user_int_pointer(call.arguments));
    if (call.grave) user_string(call.arguments);
    finish_control(call, control, "should be a call-back function for the %%BV format");
}

void handle_tv(code_call& call) {
    window_control* control = new_placeholder(control_type::tree_view);
    const control_options found = collect_other_options(call);
    read_resource_id(call, *control);
    if ((call.n < 1 || call.m < 1) && !in_dialog_resource()) {
        quillpan_error("?Treeview control must have size");
    }
    string_list items{};
    if (building().fortran_call && found.variable_size) {
        items.array = user_char_pointer(call.arguments);
        items.width = std::max(building().last_length, 0);
        user_int_pointer(call.arguments);  // the count, read while the window lives
    } else {
        items = read_string_list(call);
        if (found.variable_size) user_int_pointer(call.arguments);
    }
    keep_list(*control, items, user_int_pointer(call.arguments));
    if (call.grave) user_string(call.arguments);
    control->width = std::max(call.n, 1) * 4 + 4;
    control->height = std::max(call.m, 1) * 8;
    finish_control(call, control, "should be a call-back function for the %%TV format");
}

}  // namespace tarn::winio
