// The codes that move the pen, give sizes and places, and set margins and tab stops.
#include <algorithm>
#include <cmath>

#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/layout_state.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

// A size of the format in layout units: an integer number of cells, or with grave a double, where
// the least bit keeps 2.5 x 4 from falling below 10.
std::int32_t take_units(code_call& call, std::int32_t units_in_cell, const char* message) {
    if (!call.grave)
        return within_reach(user_integer(call.arguments) * static_cast<double>(units_in_cell));
    return within_reach(user_float(call.arguments, message) * units_in_cell + 0.001);
}

struct shift {
    std::int32_t x, y;
};
shift take_shift(code_call& call, const char* message) {
    const std::int32_t x = take_units(call, 4, message);
    const std::int32_t y = take_units(call, 8, message);
    call.grave = false;
    return {x, y};
}

// The place that a program chose, wherever other controls stand.
void set_explicit_pen(std::int64_t col, std::int64_t row) {
    window_builder& at = builder();
    if (col < 0) {
        quillpan_error("?Attempt to position off window left");
        col = 0;
    }
    if (row < 0) {
        quillpan_error("?Attempt to position off window top");
        row = 0;
    }
    at.col = within_reach(static_cast<double>(col));
    at.row = within_reach(static_cast<double>(row));
    current_window()->flags.explicit_pen = true;
}

// A window of a dialog resource has its places already.
bool refused(const char* code_name) {
    return QuitIfDlgResource(code_name);
}

// The pen's column begins a group to the line's end. A line on which centring was kept on has begun
// one by itself, which counts once it has a control. True: there was one already.
bool begin_group(std::int32_t& column, bool begun) {
    const bool twice = column >= 0 && begun;
    column = builder().col;
    return twice;
}

window_control* last_placed_control() {
    window_control* last = nullptr;
    for (window_control* c = current_window()->first_control; c; c = c->next)
        if (c->type != control_type::text && c->type != control_type::blank &&
            c->type != control_type::line_end)
            last = c;
    return last;
}

}  // namespace

void handle_nl(code_call& call) {
    if (refused("%nl")) return;
    for (std::int32_t i = 0; i < std::max(call.n, 1); ++i) {
        const std::int32_t before = builder().row;
        next_line();
        if (i > 0 && builder().row == before) break;  // nothing comes after the map's end
    }
}

void handle_ff(code_call&) {
    if (!refused("%ff")) bottom_line();
}

void handle_ta(code_call& call) {
    if (refused("%ta")) return;
    for (std::int32_t i = 0; i < std::max(call.n, 1) && builder().col < farthest; ++i) {
        const std::int32_t before = builder().col;
        tabulate();
        if (builder().col == before) break;
    }
}

void handle_ap(code_call& call) {
    const shift to = take_shift(call, "Invalid number passed to %ap format");
    if (records().passive || refused("%ap")) return;
    bottom_line();
    set_explicit_pen(to.x, to.y);
}

void handle_rp(code_call& call) {
    const shift by = take_shift(call, "Invalid number passed to %rp format");
    if (records().passive || refused("%rp")) return;
    bottom_line();
    set_explicit_pen(std::int64_t{builder().col} + by.x, std::int64_t{builder().row} + by.y);
}

void handle_dy(code_call& call) {
    const double rows = user_float(call.arguments, "Invalid number passed to %dy format");
    if (records().passive || refused("%dy")) return;
    window_builder& at = builder();
    const std::int32_t col = at.col;
    const std::int32_t row = at.row;
    next_line();
    at.col = col;
    at.row = std::max(within_reach(row + rows * 8.0), 0);
}

void handle_xw(code_call& call) {
    const std::int32_t units = take_units(call, 4, "Invalid number passed to %xw format");
    call.grave = false;
    if (records().passive || refused("%xw")) return;
    current_window()->next_width = units;
}

// Depths count in the same quarter cells as widths.
void handle_xd(code_call& call) {
    const std::int32_t units = take_units(call, 4, "Invalid number passed to %xd format");
    call.grave = false;
    if (records().passive || refused("%xd")) return;
    current_window()->next_depth = units;
}

void handle_pp(code_call& call) {
    std::int32_t place[4];
    for (std::int32_t& value : place) value = user_integer(call.arguments);
    if (records().passive || refused("%pp")) return;
    std::copy_n(place, 4, pending().place);
}

void handle_lo(code_call& call) {
    std::int32_t place[4];
    for (std::int32_t& value : place) value = within_reach(user_integer(call.arguments));
    const bool of_window = call.grave;
    call.grave = false;
    if (records().passive) return;
    fancy_window* window = current_window();
    if (of_window) {
        auto* location = new_record<window_location>();
        discard_with_window(location, nullptr);
        *location = {place[0], place[1], place[2], place[3]};
        window->location = location;
        return;
    }
    window_control* control = last_placed_control();
    if (!control) {
        quillpan_error("?Can't locate a non-existent control");
        return;
    }
    const auto across = [](std::int32_t units) {
        return static_cast<std::int32_t>(records().char_width * units / 4.0 + 0.5);
    };
    const auto down = [](std::int32_t units) {
        return static_cast<std::int32_t>(records().char_height * units / 8.0 + 0.5);
    };
    control->fixed_x = across(place[0]);
    control->fixed_y = down(place[1]);
    control->fixed_w = across(place[2]);
    control->fixed_h = down(place[3]);
}

void handle_ln(code_call& call) {
    if (records().passive || refused("%ln")) return;
    window_builder& at = builder();
    if (at.box) {
        quillpan_error("?%%ln must not be within a %%ob.");
        return;
    }
    constexpr std::uint32_t etched_line = 0x10;
    const double scale = current_window()->text_scale;
    window_control* line = new_window_control(control_type::text);
    line->text = window_text_copy("", 0);
    line->style = etched_line;
    if (call.n < 0)
        line->flags.full_width = true;
    else
        line->width = within_reach(call.n * 4.0 * scale);
    line->height = within_reach(std::max(call.m, 1) * scale * 8.0 / 2);
    at.col = 0;
    at.row = std::min(at.row + line->height, farthest);
    locate(line, 0);
    bottom_line();
}

void handle_cn(code_call& call) {
    const bool all_lines = call.grave;
    call.grave = false;
    if (records().passive || refused("%cn")) return;
    fancy_window* window = current_window();
    bool twice;
    if (box* in = builder().box) {
        twice = begin_group(in->centre_col, !in->centre_all_lines || in->centre_first);
        if (all_lines) in->centre_all_lines = true;
    } else {
        twice = begin_group(window->centre_col,
                            !window->flags.centre_all_lines || window->centre_first);
        if (all_lines) window->flags.centre_all_lines = true;
    }
    if (twice) quillpan_error("?More than one centre format on one line");
}

void handle_rj(code_call&) {
    if (records().passive || refused("%rj")) return;
    box* in = builder().box;
    if (begin_group(in ? in->right_col : current_window()->right_col, true))
        quillpan_error("?More than one right justify format on one line");
}

void handle_pv(code_call&) {
    if (records().passive || refused("%pv")) return;
    fancy_window* window = current_window();
    if (window->pivot_x != no_pivot) quillpan_error("?More than one re-sizing pivot applied");
    window->pivot_x = builder().col;
    window->pivot_y = builder().row;
    if (builder().box) builder().box->pivot_inside = true;
    builder().pivot_pending = 1;
}

void handle_bd(code_call& call) {
    fancy_window* window = current_window();
    std::int32_t* margins[4] = {&window->margin_left, &window->margin_top, &window->margin_right,
                                &window->margin_bottom};
    const bool in_units = call.grave;
    call.grave = false;
    for (int i = 0; i < 4; ++i) {
        double value;
        if (in_units)
            value = user_integer(call.arguments);
        else
            value = user_float(call.arguments, "Invalid number passed to %bd format") *
                    (i % 2 ? 8.0 : 4.0);
        if (records().passive || value < 0) continue;
        *margins[i] = within_reach(value);
        window->flags.margins_given = true;
    }
}

namespace {

bool rise_strictly(const double* stops, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (!(stops[i] > (i ? stops[i - 1] : 0.0))) return false;
    }
    return true;
}

double tab_stop(code_call& call, const void* array, bool real, std::int32_t index) {
    if (!array)
        return real ? user_float(call.arguments, "Invalid number passed to %tl format") * 4.0
                    : user_integer(call.arguments) * 4.0;
    return real ? static_cast<const double*>(array)[index] * 4.0
                : static_cast<const std::int32_t*>(array)[index] * 4.0;
}

}  // namespace

void handle_tl(code_call& call) {
    if (call.n < 0) {
        quillpan_error("?%%TL requires numeric parameter");
        call.grave = call.tilde = false;
        return;
    }
    const bool real = call.grave;
    const bool from_array = call.tilde;
    call.grave = call.tilde = false;
    constexpr std::int32_t most = 0x10000;
    const std::int32_t count = std::min(call.n, most);
    const void* array = nullptr;
    if (from_array) {
        array = real ? static_cast<const void*>(user_float_pointer(call.arguments))
                     : user_int_pointer(call.arguments);
        if (!array) return;
    }
    auto* stops = static_cast<double*>(allocate_zeroed(sizeof(double) * (count + 1u)));
    for (std::int32_t i = 0; i < count && !(call.arguments.exhausted() && !array); ++i)
        stops[i] = tab_stop(call, array, real, i);
    if (records().passive || refused("%tl")) {
        std::free(stops);
        return;
    }
    fancy_window* window = current_window();
    discard_with_window(stops, window->tab_stops);
    window->tab_stops = stops;
    window->tab_count = count;
    if (!rise_strictly(stops, count)) {
        quillpan_error("Invalid tabulation number");
        window->tab_count = 0;
    }
}

}  // namespace tarn::winio
