// What is settled when a line or the format ends: centring, justification, the factors by which
// controls follow their window's size, and margins.
#include <algorithm>

#include "winio/layout.h"
#include "winio/layout_state.h"

namespace tarn::winio {
namespace {

void follow_width(window_control* control, double factor) {
    control->move_x = control->grow_x = factor;
}
void follow_height(window_control* control, double factor) {
    control->move_y = control->grow_y = factor;
}

bool is_frame(const window_control* control) {
    return control->type == control_type::box_frame;
}
const frame_block* block_of(const window_control* frame) {
    return static_cast<const frame_block*>(frame->block);
}
bool is_status_frame(const window_control* control) {
    return is_frame(control) && block_of(control)->flags & status_frame;
}

// A control that stands right of the pivot moves with the window's width.
void follow_pivot_across(window_control* control, const fancy_window* window) {
    if (control->x > window->pivot_x && control->move_x == 0.0 && !control->flags.no_right_move)
        follow_width(control, 1.0);
    else if (is_frame(control) && control->x + control->width > window->pivot_x &&
             control->y <= window->pivot_y)
        control->grow_x = 1.0;
}

void follow_pivot_down(window_control* control, const fancy_window* window) {
    if (control->y > window->pivot_y && control->move_y == 0.0 && !control->flags.no_down_move)
        follow_height(control, 1.0);
    else if (is_frame(control) && control->y + control->height > window->pivot_y &&
             control->x <= window->pivot_x)
        control->grow_y = 1.0;
}

void follow_window(window_control* control, const fancy_window* window) {
    follow_pivot_across(control, window);
    if (is_status_frame(control)) {
        control->move_x = 0.0;
        control->grow_x = block_of(control)->flags & not_last_column ? control->grow_x : 1.0;
        follow_height(control, 1.0);
        return;
    }
    if (window->flags.pane && control->y < window->pane_height) {
        follow_width(control, 0.0);
        follow_height(control, 0.0);
    }
    if (control->y >= window->status_row) {
        follow_height(control, 1.0);
        follow_width(control, control->flags.right ? 1.0 : 0.0);
    } else {
        follow_pivot_down(control, window);
    }
}

// The control behind %pv takes up what the window gains, if its type can.
void grow_pivot(window_control* control) {
    bool across = false;
    bool down = false;
    switch (control->type) {
        case control_type::list_box:
        case control_type::text_window:
        case control_type::mdi_frame:
        case control_type::hypertext:
        case control_type::text_array:
        case control_type::multi_select:
        case control_type::static_string:
        case control_type::tree_view:
        case control_type::foreign:
        case control_type::buffer_box:
        case control_type::opengl:
        case control_type::plot:
        case control_type::list_view:
        case control_type::branch_view:
        case control_type::native_sheet:
        case control_type::browser:
            across = down = true;
            break;
        case control_type::edit_box:
            across = true;
            down = !control->flags.limit_height;
            break;
        case control_type::owner_draw:
        case control_type::graphics:
            across = down = control->flags.user_resize || control->flags.metafile_resize;
            break;
        default:
            break;
    }
    if (across) control->grow_x = 1.0;
    if (down) control->grow_y = 1.0;
}

// ---- The middle of a line ----------------------------------------------------------------------
// Depth of a control of one text line, 0 for any other. A list that drops down is as deep as its
// field.
std::int32_t line_depth(const window_control* control) {
    constexpr std::int32_t deepest_line = 16;
    switch (control->type) {
        case control_type::combo_box:
        case control_type::edit_list:
            return static_cast<std::int32_t>(std::max(control->window->text_scale, 1.0) * 9.6 +
                                             0.5);
        case control_type::text:
        case control_type::blank:
        case control_type::static_string:
        case control_type::button:
        case control_type::fancy_button:
        case control_type::option_button:
        case control_type::integer_box:
        case control_type::float_box:
        case control_type::string_box:
        case control_type::radio:
        case control_type::spin:
            return control->height <= deepest_line ? control->height : 0;
        default:
            return 0;
    }
}

bool is_text_piece(const window_control* control) {
    return (control->type == control_type::text && control->style == 0) ||
           control->type == control_type::blank;
}

// Twice the middle of a control of one line, in pixels.
std::int32_t middle_of(const window_control* control) {
    return 2 * units_to_pixels_y(control->y) + units_to_pixels_y(line_depth(control));
}

// Labels, boxes and buttons of a line stand on one middle line, that of the deepest. Only pixels
// move, within the depth that the line has anyway; texts of several sizes keep their common base.
void centre_in_line(window_control* first, const window_control* end) {
    const window_control* deepest = nullptr;
    const window_control* deepest_text = nullptr;
    for (const window_control* c = first; c != end; c = c->next) {
        const std::int32_t depth = line_depth(c);
        if (depth > 0 && (!deepest || depth > line_depth(deepest))) deepest = c;
        if (is_text_piece(c) && (!deepest_text || depth > line_depth(deepest_text)))
            deepest_text = c;
    }
    for (window_control* c = first; c != end; c = c->next) {
        const window_control* like = is_text_piece(c) ? deepest_text : c;
        if (line_depth(like) > 0 && line_depth(like) < line_depth(deepest))
            c->y_extra += (middle_of(deepest) - middle_of(like)) / 2;
    }
}

// A status box that ends in a %st gives it the rest of the row.
void stretch_status_text(const fancy_window* window) {
    window_control* last = window->status_control;
    if (!last || last->type != control_type::static_string) return;
    last->grow_x = 1.0;
    last->width = window->margin_right - records().char_width + window->margin_left - last->x +
                  builder().max_x;
}

}  // namespace

void centre_information() {
    window_builder& at = builder();
    fancy_window* window = current_window();
    if (at.box) {
        if (at.box->centre_col >= 0 || at.box->right_col >= 0) centre_information_within_box();
        return;
    }
    if (window->centre_col < 0 && window->right_col < 0) return;
    const std::int32_t span = window->centre_col + at.col;
    at.max_x = std::max(at.max_x, span);
    for (window_control* c = window->centre_first; c; c = c->next) {
        c->centre_span = span;
        follow_width(c, 0.5);
        c->flags.centred = true;
        c->flags.no_right_move = false;
    }
    for (window_control* c = window->right_first; c; c = c->next) {
        follow_width(c, 1.0);
        c->flags.right = true;
        c->right_col = at.col;
        c->flags.no_right_move = false;
    }
    window->centre_col = window->flags.centre_all_lines ? 0 : -1;
    window->right_col = -1;
    window->centre_first = window->right_first = nullptr;
}

// Lines of a cell are put in place when the cell closes and its width is known; until then they
// stand half their span left of where they were made. A cell that centres every line starts the
// next one at its own left edge. What is justified to the right isn't centred as well.
void centre_information_within_box() {
    window_builder& at = builder();
    box& cell = *at.box;
    if (cell.centre_col >= 0) {
        const std::int32_t span = cell.centre_col - cell.cell_x + at.col;
        cell.max_x = std::max(cell.max_x, span);
        for (window_control* c = cell.centre_first; c && c != cell.right_first; c = c->next) {
            c->x -= span / 2;
            c->flags.centred = true;
        }
    }
    if (cell.right_col >= 0) {
        cell.max_x = std::max(cell.max_x, cell.right_col - cell.cell_x + at.col);
        for (window_control* c = cell.right_first; c; c = c->next) {
            c->x -= at.col;
            c->flags.right = true;
        }
    }
    cell.centre_col = cell.centre_all_lines ? cell.inner_x : -1;
    cell.right_col = -1;
    cell.centre_first = cell.right_first = nullptr;
}

void centre_all_information() {
    window_builder& at = builder();
    fancy_window* window = current_window();
    for (window_control* c = window->first_control; c; c = c->next) {
        if (c->flags.pivot)
            grow_pivot(c);
        else
            follow_window(c, window);
        if (c->right_col >= 0)
            c->x += at.max_x - c->right_col;
        else if (c->centre_span >= 0)
            c->x += (at.max_x - c->centre_span) / 2;
        if (c->type == control_type::text && c->flags.full_width) c->width = at.max_x;
    }
    stretch_status_text(window);
}

void align_information() {
    window_control* line = current_window()->first_control;
    while (line) {
        std::int32_t deepest = 0;
        window_control* end = line;
        for (; end && end->type != control_type::line_end; end = end->next)
            deepest = std::max(deepest, end->inset);
        for (window_control* c = line; c != end; c = c->next) c->y += deepest - c->inset;
        centre_in_line(line, end);
        line = end;
        if (line) line = line->next;
    }
}

// The extent itself grows by the margins later: a status bar may join it before.
void apply_margins() {
    const window_builder& at = builder();
    fancy_window* window = current_window();
    for (window_control* c = window->first_control; c; c = c->next) {
        if (c->y < window->status_row) c->x += window->margin_left;
        c->y += window->margin_top;
        if (!is_status_frame(c)) continue;
        const std::int32_t flags = block_of(c)->flags;
        if (!(flags & not_first_column)) c->x = 0;
        if (!(flags & not_last_column))
            c->width = window->margin_left + window->margin_right - c->x + at.max_x;
    }
}

}  // namespace tarn::winio
