// Drawing areas, plots, documents and editors, as far as the format goes: arguments, checks, sizes.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/options.h"
#include "winio/placeholders.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t largest_dimension = 10000;

// Pixels as units: up to the next unit, or with wide characters down.
void size_graphics(window_control& control, std::int32_t width, std::int32_t height) {
    size_in_pixels(control, width, height);
    if (records().char_width <= 8) return;
    control.width = width * 4 / records().char_width;
    control.height = height * 8 / records().char_height;
}

void take_handle(code_call& call, window_control& control) {
    const handle_variable variable = user_handle_variable(call.arguments);
    control.hwnd_var = variable.narrow;
    control.hwnd_var_wide = variable.wide;
}

struct dimensions {
    std::int32_t width, height;
};

dimensions read_dimensions(code_call& call, window_control& control) {
    if (in_dialog_resource()) {
        control.resource_id = user_integer(call.arguments);
        return {1, 1};
    }
    const std::int32_t width = user_integer(call.arguments);
    const std::int32_t height = user_integer(call.arguments);
    return {width, height};
}

// True: the control is to grow with the window and hasn't said that it can.
bool refuses_pivot(const window_control& control, bool resizes) {
    return control.flags.pivot && !resizes && !records().old_resize;
}

void keep_resize(window_control& control, const control_options& found) {
    control.flags.user_resize = found.user_resize;
    control.flags.metafile_resize = found.metafile_resize;
    if (found.background != no_colour) control.background = found.background;
}

}  // namespace

void handle_gr(code_call& call) {
    window_control* control = new_placeholder(control_type::graphics);
    dimensions size = read_dimensions(call, *control);
    const bool right = size.width >= 1 && size.width <= largest_dimension && size.height >= 1 &&
                       size.height <= largest_dimension;
    if (!right && !records().passive) {
        quillpan_error("Unreasonable graphics dimensions - %d x %d", size.width, size.height);
        size = {1, 1};
    }
    const control_options found = collect_other_options(call);
    if (found.user_surface) control->block = user_void_star_star_pointer(call.arguments);
    if (call.grave) control->data = user_integer(call.arguments);
    call.grave = false;
    if (found.handle) take_handle(call, *control);
    keep_resize(*control, found);
    if (refuses_pivot(*control, found.user_resize || found.metafile_resize)) {
        quillpan_error("?Graphics box must have resize option to accept pivot");
    }
    size_graphics(*control, size.width, size.height);
    finish_control(call, control, "should be a call-back function for the %%GR format");
}

void handle_og(code_call& call) {
    window_control* control = new_placeholder(control_type::opengl);
    const dimensions size = read_dimensions(call, *control);
    const control_options found = collect_other_options(call);
    if (call.grave) take_handle(call, *control);
    call.grave = false;
    keep_resize(*control, found);
    size_graphics(*control, size.width, size.height);
    finish_control(call, control, "should be a call-back function for the %%OG format");
}

void handle_dw(code_call& call) {
    window_control* control = new_placeholder(control_type::owner_draw);
    const control_options found = collect_other_options(call);
    dimensions size{1, 1};
    if (found.user_resize) {
        size.width = user_integer(call.arguments);
        size.height = user_integer(call.arguments);
    } else {
        control->data = user_thing(call.arguments, true);  // a device context
    }
    keep_resize(*control, found);
    if (refuses_pivot(*control, found.user_resize)) {
        quillpan_error("Pivot applied to owner-draw(%%DW) control without user_resize option");
    }
    size_graphics(*control, size.width, size.height);
    finish_control(call, control, "should be a call-back function for the %%DW format");
}

// ---- Plots -------------------------------------------------------------------------------------
namespace {

// One graph's data: how many points, x as an array or as start and step, y as an array.
void read_graph(code_call& call, const control_options& found, bool reads_count, bool reads_x) {
    if (reads_count) user_integer(call.arguments);
    if (reads_x && found.x_array) user_float_pointer(call.arguments);
    if (reads_x && !found.x_array) {
        user_float(call.arguments, "Invalid number passed to %pl format");
        user_float(call.arguments, "Invalid number passed to %pl format");
    }
    user_float_pointer(call.arguments);
}

}  // namespace

void handle_pl(code_call& call) {
    window_control* control = new_placeholder(control_type::plot);
    const dimensions size = read_dimensions(call, *control);
    auto* preloaded = static_cast<control_options*>(get_preloaded_block(control_type::plot));
    control_options found = collect_other_options(call);
    if (preloaded) {
        if (found.graphs <= 1) found.graphs = preloaded->graphs;
        found.x_array |= preloaded->x_array;
        found.independent |= preloaded->independent;
        found.user_drawn |= preloaded->user_drawn;
        found.function_given |= preloaded->function_given;
        found.handle |= preloaded->handle;
        std::free(preloaded);
    }
    if (!found.user_drawn && !found.function_given) {
        for (std::int32_t graph = 0; graph < std::max(found.graphs, 1); ++graph) {
            const bool own = graph == 0 || found.independent;
            read_graph(call, found, own, own);
        }
    }
    if (found.handle) take_handle(call, *control);
    control->flags.user_resize = true;
    size_graphics(*control, size.width, size.height);
    call.grave = false;
    finish_control(call, control, "should be a call-back function for the %%PL format");
}

// ---- Documents and editors
void handle_eb(code_call& call) {
    window_control* control = new_placeholder(control_type::edit_box);
    read_resource_id(call, *control);
    control->variable = user_char_pointer(call.arguments);
    control->high = user_integer(call.arguments);
    const control_options found = collect_other_options(call);
    if ((call.n < 1 || call.m < 1) && !in_dialog_resource()) {
        quillpan_error("?Edit box size not specified");
    }
    size_in_characters(*control, std::max(call.n, 1), std::max(call.m, 1));
    read_grey_variable(call, *control);
    if (call.grave) {
        call.grave = false;
        control->gcb = user_struct_pointer(call.arguments, true);
    }
    if (found.limit_height) {
        control->height_limit = user_float(call.arguments, "Invalid number passed to %eb format");
    }
    read_callback(call, *control, "should be a call-back function for the %%EB format");
    place_control(control);
}

void handle_ht(code_call& call) {
    window_control* control = new_placeholder(control_type::hypertext);
    control->text = get_standard_string(call, "%HT");
    size_in_characters(*control, std::max(call.n, 1), std::max(call.m, 1));
    if (call.grave && !call.caret) {
        quillpan_error("?%%`HT requires a call-back function");
    }
    if (!records().passive) current_window()->hypertext = control;
    finish_control(call, control, "should be a call-back function for the %%HT format");
}

void handle_wb(code_call& call) {
    window_control* control = new_placeholder(control_type::browser);
    control->text = get_standard_string(call, "%WB");
    size_in_characters(*control, std::max(call.n, 1), std::max(call.m, 1));
    finish_control(call, control, "should be a call-back function for the %%WB format");
}

void handle_eq(code_call& call) {
    window_control* control = new_placeholder(control_type::equation);
    collect_other_options(call);
    control->text = get_standard_string(call, "%EQ");
    const dimensions size = read_dimensions(call, *control);
    if (size.width > 0) {
        size_in_pixels(*control, size.width, size.height);
    } else {
        get_text_dimensions(control->font, control->text, control->width, control->height);
    }
    finish_control(call, control, "should be a call-back function for the %%EQ format");
}

}  // namespace tarn::winio
