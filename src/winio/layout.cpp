// The pen, and how controls find their places.
#include "winio/layout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "platform/user/user.h"
#include "winio/callbacks.h"
#include "winio/layout_map.h"
#include "winio/layout_state.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t smallest_map = 1280;

void choose_map_size() {
    if (layout().size_given) return;
    records_state& all = records();
    all.occupancy_width =
        std::max(smallest_map, platform::GetSystemMetrics(platform::SM_CXMAXTRACK));
    all.occupancy_height =
        std::max(smallest_map, platform::GetSystemMetrics(platform::SM_CYMAXTRACK));
}

std::int64_t map_cells() {
    return std::int64_t{records().occupancy_width} * records().occupancy_height;
}

void too_big() {
    if (!options().limit_errors) quillpan_error("?Control is too big for window\n");
}

enum class search { free, moved, off_the_map };

// Tests the block at the pen; when a cell of it is taken the pen goes behind that cell's run.
search try_block(std::int32_t w, std::int32_t h) {
    window_builder& at = builder();
    const std::int32_t width = records().occupancy_width;
    for (std::int32_t y = at.row; y < at.row + h; ++y) {
        const std::int64_t first = std::int64_t{y} * width + at.col;
        const std::int64_t there =
            std::clamp(map_cells() - first, std::int64_t{0}, std::int64_t{w});
        const std::int64_t taken = find_set_bit(at.occupancy, first, there);
        if (taken < 0 && there < w) return search::off_the_map;
        if (taken < 0) continue;
        const std::int64_t rest = width - taken % width;
        at.col = static_cast<std::int32_t>(taken + count_set_run(at.occupancy, taken, rest) -
                                           std::int64_t{y} * width);
        return search::moved;
    }
    return search::free;
}

// A line that doesn't take the pen down any more (a tiny text scale) ends the search as well.
void search_place(std::int32_t w, std::int32_t h) {
    window_builder& at = builder();
    for (;;) {
        if (at.col + w >= records().occupancy_width) {
            const std::int32_t before = at.row;
            next_line();
            if (at.row <= before) return too_big();
        }
        switch (try_block(w, h)) {
            case search::free:
                return;
            case search::off_the_map:
                return too_big();
            case search::moved:
                break;
        }
    }
}

// A bar's size in whole units, as its control's area grows by it.
std::int32_t bar_height() {
    return pixels_to_units_y(platform::GetSystemMetrics(platform::SM_CYHSCROLL));
}
std::int32_t bar_width() {
    return pixels_to_units_x(platform::GetSystemMetrics(platform::SM_CXVSCROLL));
}

void take_pending_place(window_control* control) {
    std::int32_t* place = pending().place;
    if (place[2] == 0) return;
    control->fixed_x = place[0];
    control->fixed_y = place[1];
    control->fixed_w = place[2];
    control->fixed_h = place[3];
    std::fill_n(place, 4, 0);
}

void take_pending_size(window_control* control) {
    fancy_window* window = current_window();
    if (window->next_width >= 0) control->width = window->next_width;
    if (window->next_depth >= 0) control->height = window->next_depth;
    window->next_width = window->next_depth = -1;
    control->width = within_reach(control->width);
    control->height = within_reach(control->height);
}

}  // namespace

layout_state& layout() {
    static constinit layout_state all;
    return all;
}

std::int32_t within_reach(double value) {
    return static_cast<std::int32_t>(
        std::clamp(value, static_cast<double>(-farthest), static_cast<double>(farthest)));
}

void set_max_dialog_size(std::int32_t width, std::int32_t height) {
    if (layout().began) {
        quillpan_error("SET_MAX_DIALOG_SIZE@ must be called before WINIO@");
        return;
    }
    // A map of 2 GB serves no screen; one without cells serves nobody.
    constexpr std::int32_t largest = 1 << 17;
    records().occupancy_width = std::clamp(width, 1, largest);
    records().occupancy_height = std::clamp(height, 1, largest);
    layout().size_given = true;
}

void begin_layout() {
    layout_state& all = layout();
    if (!all.began) choose_map_size();
    all.began = true;
    unsigned char* map = all.spare;
    all.spare = nullptr;
    if (!map)
        map = static_cast<unsigned char*>(
            std::calloc(1, occupancy_bytes(records().occupancy_width, records().occupancy_height)));
    if (!map) heap_exhausted();
    builder().occupancy = map;
    builder().high_water = 0;
}

void end_layout() {
    window_builder& at = builder();
    free_open_boxes();
    unsigned char* map = at.occupancy;
    if (!map) return;
    at.occupancy = nullptr;
    if (layout().spare) {
        std::free(map);
        return;
    }
    std::memset(map, 0, static_cast<std::size_t>((at.high_water + 63) / 64 * 8));
    at.high_water = 0;
    layout().spare = map;
}

void reset_layout_values(fancy_window* window) {
    window->next_width = window->next_depth = -1;
    std::fill_n(pending().place, 4, 0);
    pending().extra_x = pending().extra_y = 0;
}

std::int32_t units_to_pixels_x(std::int32_t units) {
    return units * records().char_width / 4;
}
std::int32_t units_to_pixels_y(std::int32_t units) {
    return units * records().char_height / 8;
}
std::int32_t pixels_to_units_x(std::int32_t pixels) {
    return within_reach(std::ceil(pixels * 4.0 / records().char_width));
}
std::int32_t pixels_to_units_y(std::int32_t pixels) {
    return within_reach(std::ceil(pixels * 8.0 / records().char_height));
}

bool block_is_occupied(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) {
    if (x + w >= records().occupancy_width) {
        quillpan_error("Window is too wide ");
        return false;
    }
    if (y + h >= records().occupancy_height) {
        quillpan_error("Window is too tall ");
        return false;
    }
    for (std::int32_t row = std::max(y, 0); row < y + h; ++row)
        if (find_set_bit(builder().occupancy,
                         std::int64_t{row} * records().occupancy_width + std::max(x, 0), w) >= 0)
            return true;
    return false;
}

void occupy_block(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) {
    const std::int32_t left = std::max(x, 0);
    const std::int32_t top = std::max(y, 0);
    const std::int32_t right = std::min(x + w, records().occupancy_width);
    const std::int32_t bottom = std::min(y + h, records().occupancy_height);
    if (right <= left || bottom <= top || !builder().occupancy) return;
    const std::int64_t width = records().occupancy_width;
    for (std::int32_t row = top; row < bottom; ++row)
        set_bits(builder().occupancy, row * width + left, right - left);
    builder().high_water = std::max(builder().high_water, (bottom - 1) * width + right);
}

// The last cell ever taken is the one before the high-water mark: cells are never given back.
std::int32_t the_bottom() {
    const std::int64_t width = records().occupancy_width;
    const std::int64_t rows = width ? (builder().high_water + width - 1) / width : 0;
    return std::max(static_cast<std::int32_t>(rows), builder().max_y);
}

void deepen_line(std::int32_t height) {
    const auto text = static_cast<std::int32_t>(current_window()->text_scale * 8.0);
    builder().line_extra = std::max(builder().line_extra, height - text);
}

// Below the map nothing can be placed or seen: there a line is no more than the pen's return, so
// that a format of a million lines costs no million records.
void next_line() {
    if (records().passive) return;
    window_builder& at = builder();
    fancy_window* window = current_window();
    std::int32_t floor = at.row_floor;
    at.row_floor = 0;
    if (window->centre_col >= 0 && !at.box) floor = the_bottom();
    const bool on_the_map = at.row < records().occupancy_height;
    if (on_the_map) new_window_control(control_type::line_end);
    centre_information();
    at.col = at.box ? at.box->inner_x : 0;
    if (on_the_map) {
        at.row = within_reach(at.line_extra + at.row + window->text_scale * 8.0);
        at.row = std::max(at.row, floor);
    }
    at.line_extra = 0;
    window->flags.mixed_font = false;
}

void bottom_line() {
    if (records().passive) return;
    window_builder& at = builder();
    new_window_control(control_type::line_end);
    centre_information();
    if (at.box) {
        at.col = at.box->cell_x + at.box->left;
        at.row = at.box->max_y;
    } else {
        at.row = the_bottom();
        at.col = 0;
    }
    at.line_extra = 0;
    current_window()->flags.mixed_font = false;
}

void tabulate() {
    if (records().passive) return;
    window_builder& at = builder();
    const fancy_window* window = current_window();
    const std::int32_t base = at.box ? at.box->cell_x : 0;
    for (std::int32_t i = 0; i < window->tab_count; ++i) {
        const double stop = window->tab_stops[i];
        if (at.col - base < stop) {
            at.col = within_reach(base + stop);
            return;
        }
    }
    at.col = std::min((at.col + 32 - base) / 32 * 32 + base, farthest);
}

void locate(window_control* control, std::int32_t extra_depth) {
    window_builder& at = builder();
    fancy_window* window = current_window();
    take_pending_place(control);
    take_pending_size(control);
    const std::uint16_t properties = type_properties(control->type);
    std::int32_t frame = 0;
    if (window->flags.three_d && properties & framed_in_3d) {
        frame = 4;
        control->inset += 4;
    }
    std::int32_t w = control->width + 2 * frame + pending().extra_x;
    std::int32_t h = control->height + 2 * frame + pending().extra_y + extra_depth;
    if (control->scrolls) {
        if (control->scrolls->horizontal.wanted) h += bar_height();
        if (control->scrolls->vertical.wanted) w += bar_width();
    }
    // A line that was made deep enough for the control is so for its frame and its bar too.
    const auto text = static_cast<std::int32_t>(window->text_scale * 8.0);
    if (at.line_extra > 0 && at.line_extra + text >= control->height) deepen_line(h);
    if (window->flags.explicit_pen || h < 1 || control->width < 1)
        window->flags.explicit_pen = false;
    else
        search_place(w, h);
    control->x = at.col + frame;
    control->y = at.row + frame + pending().extra_y;
    occupy_block(at.col, at.row, w, h);
    at.row_floor = properties & tall_item ? std::max(at.row_floor, at.row + h) : 0;
    at.col = std::min(at.col + w, farthest);
    at.max_x = std::max(at.max_x, at.col);
    at.max_y = std::max(at.max_y, at.row + h);
    if (at.box) {
        at.box->max_x = std::max(at.box->max_x, at.col);
        at.box->max_y = std::max(at.box->max_y, at.row + h);
    }
    pending().extra_x = pending().extra_y = 0;
}

}  // namespace tarn::winio
