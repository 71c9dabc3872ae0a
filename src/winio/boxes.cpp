// Boxes: %ob opens one, each %cb closes a cell of it.
#include <algorithm>
#include <vector>

#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/layout_state.h"
#include "winio/options.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t unset = -1;

bool has_border(const box& of) {
    return !of.no_border && !of.invisible;
}

void raise(std::int32_t& value, std::int32_t to) {
    value = std::max(value, to);
}

// ---- Opening -----------------------------------------------------------------------------------
void find_room() {
    window_builder& at = builder();
    while (block_is_occupied(at.col, at.row, 4, 8)) ++at.col;
    current_window()->flags.explicit_pen = false;
}

void take_background(box& fresh) {
    window_builder& at = builder();
    fresh.background = at.box ? at.box->background : current_window()->background;
    if (at.next_background == no_colour) return;
    fresh.background = at.next_background;
    at.next_background = no_colour;
}

// In the three-dimensional look lines and shades become relief.
void suit_look(box& fresh, bool grave) {
    if (!current_window()->flags.three_d) return;
    if (fresh.kind == 0) fresh.kind = 3;
    fresh.shaded = false;
    if (grave) fresh.kind = 5;
}

void check_cells(box& fresh) {
    if (fresh.named && fresh.columns * std::int64_t{fresh.rows} > 1)
        quillpan_error("Multiple boxes cannot be named");
    if (!fresh.status) return;
    fancy_window* window = current_window();
    if (fresh.rows > 1) {
        quillpan_error("?A status bar may not have multiple rows");
        fresh.rows = 1;
    }
    bottom_line();
    window->status_row = builder().row;
    window->flags.status_bar = true;
    window->margin_bottom = 0;
}

void start_at_pen(box& fresh) {
    const window_builder& at = builder();
    fresh.cell_x = fresh.start_x = fresh.origin_x = at.col;
    fresh.cell_y = fresh.start_y = fresh.origin_y = at.row;
    fresh.max_y = at.row;
    fresh.left = fresh.top = 0;
    fresh.right = fresh.bottom = unset;
    fresh.inner_left = fresh.inner_top = fresh.inner_right = fresh.inner_bottom = unset;
    fresh.pivot_inside = false;
}

// The name stands on the frame's top line, which lies half a text line below the pen.
void make_name_room(box& fresh, char* name) {
    const auto line = static_cast<std::int32_t>(current_window()->text_scale * 8.0);
    if (fresh.named) {
        fresh.name = name;
        fresh.name_width = string_width(nullptr, name);
    }
    fresh.cell_y += line / 2;
    builder().row += line;
}

void set_margins(box& fresh, bool grave) {
    const auto margins = [&fresh](std::int32_t left, std::int32_t top) {
        fresh.left = left;
        fresh.top = top;
    };
    if (fresh.kind == 1) {
        margins(10, fresh.status ? 6 : 8);
        fresh.bottom = 10;
        fresh.inner_left = fresh.inner_top = 2;
    } else if (fresh.kind == 2) {
        margins(8, 4);
        fresh.bottom = 6;
        fresh.inner_left = fresh.inner_top = 2;
    } else if (fresh.status) {
        margins(6, 1);
    } else if (fresh.thin_margin) {
        margins(2, 2);
        fresh.right = 2;
        fresh.bottom = current_window()->flags.data_border ? 0 : 1;
    } else if (fresh.no_border && !fresh.space && !grave) {
        margins(0, 0);
    } else {
        margins(4, 2);
    }
    const auto by_default = [](std::int32_t& margin, std::int32_t value) {
        if (margin == unset) margin = value;
    };
    by_default(fresh.right, fresh.left);
    by_default(fresh.bottom, fresh.top);
    by_default(fresh.inner_left, fresh.left);
    by_default(fresh.inner_top, fresh.top);
    by_default(fresh.inner_right, fresh.right);
    by_default(fresh.inner_bottom, fresh.bottom);
}

box blank_box(const code_call& call) {
    box fresh{};
    fresh.columns = std::clamp(call.n, 1, farthest);
    fresh.rows = std::clamp(call.m, 1, farthest);
    fresh.column = fresh.row = 1;
    fresh.centre_col = fresh.right_col = -1;
    fresh.shaded = call.grave;
    return fresh;
}

// A counting pass reads what the code would read and leaves the window alone.
void peek_box(code_call& call) {
    box peeked = blank_box(call);
    call.grave = false;
    collect_box_options(call, peeked);
    if (peeked.named) get_standard_string(call, "box name");
    if (peeked.wants_line_colour) user_integer(call.arguments);
}

void put_pen_in_cell(box& cell, std::int32_t left, std::int32_t top) {
    window_builder& at = builder();
    at.col = cell.inner_x = std::min(cell.cell_x + left, farthest);
    at.row = cell.inner_y = std::min(cell.cell_y + top, farthest);
}

// ---- Closing -----------------------------------------------------------------------------------
std::int32_t frame_flags(const box& cell) {
    return (cell.status ? status_frame : 0) | (cell.column > 1 ? not_first_column : 0) |
           (cell.row > 1 ? not_first_row : 0) | (cell.row < cell.rows ? not_last_row : 0) |
           (cell.column < cell.columns ? not_last_column : 0);
}

std::int32_t rounded_corners(std::int32_t flags) {
    const auto corner = [flags](std::int32_t not_beside, std::int32_t not_above, std::int32_t bit) {
        return flags & (not_beside | not_above) ? 0 : bit;
    };
    return corner(not_first_column, not_first_row, 1) | corner(not_last_column, not_first_row, 2) |
           corner(not_last_column, not_last_row, 4) | corner(not_first_column, not_last_row, 8);
}

frame_block* make_frame_block(const box& cell) {
    auto* block = new_record<frame_block>();
    discard_with_window(block, nullptr);
    block->flags = frame_flags(cell);
    block->corners = cell.rounded ? rounded_corners(block->flags) : 0;
    block->line_colour = cell.line_colour;
    block->name_place = cell.name_place;
    block->kind = cell.kind;
    block->shaded = cell.shaded;
    return block;
}

// Lines were set around the cell's left edge; now that the cell's width is known they are moved to
// the place that they asked for, and from here on follow the cell.
void settle_cell(const box& cell, const window_control* frame) {
    for (window_control* c = cell.start_control ? cell.start_control->next
                                                : current_window()->first_control;
         c; c = c->next) {
        if (c == frame) continue;
        const bool centred = c->flags.centred;
        const bool right = c->flags.right;
        if (centred) c->x += (cell.right + cell.max_x) / 2;
        if (right) c->x += cell.max_x;
        if (cell.pivot_inside && centred) c->move_x = c->grow_x = 0.5;
        if (cell.pivot_inside && right) c->move_x = c->grow_x = 1.0;
        c->flags.box_centred = centred;
        c->flags.box_right = right;
        c->flags.centred = frame->flags.centred;
        c->flags.right = frame->flags.right;
    }
}

void size_frame(const box& cell, window_control* frame) {
    const window_builder& at = builder();
    frame->x = cell.cell_x;
    frame->y = cell.cell_y;
    frame->width = std::max(at.col, cell.max_x) - frame->x + cell.right;
    frame->height = std::max(cell.max_y, cell.all_max_y) - frame->y + cell.bottom;
    frame->flags.undrawn = !has_border(cell);
}

void claim_frame(const box& cell, const window_control* frame) {
    window_builder& at = builder();
    const bool gap = cell.column == cell.columns && has_border(cell);
    occupy_block(frame->x, frame->y, frame->width + (gap ? 4 : 0), frame->height);
    const std::int32_t bottom = frame->y + frame->height;
    if (cell.previous) raise(cell.previous->max_y, bottom);
    raise(at.max_x, frame->x + frame->width);
    raise(at.max_y, bottom);
    at.line_extra = 0;
}

void start_next_cell(box& cell, const window_control* frame) {
    cell.frame_record = allocate_control();
    cell.centre_col = cell.right_col = -1;
    cell.centre_all_lines = false;
    cell.centre_first = cell.right_first = nullptr;
    cell.start_control = current_window()->last_control;
    raise(cell.all_max_x, cell.max_x);
    raise(cell.all_max_y, cell.max_y);
    cell.max_y = 0;
    if (cell.column == 1) {
        cell.max_x = 0;
        cell.cell_x = cell.origin_x;
        cell.cell_y = frame->y + frame->height;
    } else {
        cell.cell_x = frame->x + frame->width;
    }
    put_pen_in_cell(cell, cell.column == 1 ? cell.left : cell.inner_left,
                    cell.row == 1 ? cell.top : cell.inner_top);
}

void leave_box_pen(const box& of, const window_control* frame, std::int32_t top,
                   std::int32_t gap_right) {
    window_builder& at = builder();
    if (of.bottom_exit) {
        at.col = of.start_x;
        at.row = frame->height + frame->y + (has_border(of) ? 8 : 0);
    } else {
        at.row = top;
        at.col = frame->width + frame->x + gap_right;
    }
}

void pop_box() {
    box* done = builder().box;
    builder().box = done->previous;
    while (frame_link* link = done->frames) {
        done->frames = link->next;
        delete link;
    }
    delete done;
}

void finish_box(box& done, const window_control* frame) {
    window_builder& at = builder();
    leave_box_pen(done, frame, done.start_y, done.shaded || has_border(done) ? 4 : 0);
    if (done.bottom_exit) raise(done.max_y, at.row);
    if (done.columns > 1 || done.rows > 1) adjust_multi_boxes(done);
    if (box* outer = done.previous) {
        raise(outer->max_x, frame->x + frame->width);
        raise(outer->max_y, done.max_y);
    }
    pop_box();
}

void close_cell() {
    window_builder& at = builder();
    box& cell = *at.box;
    if (cell.centre_col >= 0 || cell.right_col >= 0) centre_information_within_box();
    fancy_window* window = current_window();
    if (cell.status) window->status_control = window->last_control;
    new_window_control(control_type::line_end);
    offer_control(cell.frame_record);
    window_control* frame = new_window_control(control_type::box_frame);
    at.row_floor = 0;
    frame->block = make_frame_block(cell);
    frame->text = cell.name;
    settle_cell(cell, frame);
    cell.frames = new frame_link{cell.frames, frame, cell.start_control};
    if (cell.named) raise(cell.max_x, cell.name_width + cell.cell_x + 8);
    size_frame(cell, frame);
    claim_frame(cell, frame);
    if (++cell.column > cell.columns) {
        cell.column = 1;
        ++cell.row;
    }
    if (cell.row > cell.rows)
        finish_box(cell, frame);
    else
        start_next_cell(cell, frame);
    new_window_control(control_type::line_end);
}

// ---- Boxes of several cells --------------------------------------------------------------------
std::vector<frame_link*> cells_in_order(const box& of) {
    std::vector<frame_link*> cells;
    for (frame_link* link = of.frames; link; link = link->next) cells.push_back(link);
    std::reverse(cells.begin(), cells.end());
    return cells;
}

}  // namespace

void re_centre_in_box(const frame_link& cell, std::int32_t extra) {
    window_control* c =
        cell.start_control ? cell.start_control->next : current_window()->first_control;
    for (; c && c != cell.frame; c = c->next) {
        if (c->flags.box_centred) c->x += extra / 2;
        if (c->flags.box_right) c->x += extra;
    }
}

// All frames of a column take the widest width and all of a row the deepest depth; what stands to
// the right of a frame that grew moves along.
void adjust_multi_boxes(box& of) {
    window_builder& at = builder();
    const std::vector<frame_link*> cells = cells_in_order(of);
    const auto columns = static_cast<std::size_t>(of.columns);
    std::vector<std::int32_t> widths(std::min(columns, cells.size()));
    std::vector<std::int32_t> depths(cells.size() / columns + 1);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        raise(widths[i % columns], cells[i]->frame->width);
        raise(depths[i / columns], cells[i]->frame->height);
    }
    std::int32_t shift = 0;
    std::size_t cell = 0;
    for (window_control* c = cells[0]->frame; c && cell < cells.size(); c = c->next) {
        c->x += shift;
        if (c != cells[cell]->frame) continue;
        const std::int32_t wider = widths[cell % columns] - c->width;
        shift += wider;
        if (wider) re_centre_in_box(*cells[cell], wider);
        c->width = widths[cell % columns];
        c->height = depths[cell / columns];
        if (++cell % columns == 0) shift = 0;
    }
    const window_control* last = cells.back()->frame;
    const std::int32_t right = last->x + last->width;
    const std::int32_t gap = has_border(of) ? 4 : 0;
    occupy_block(of.origin_x, of.origin_y, right + gap - of.origin_x,
                 last->y + last->height - of.origin_y);
    raise(at.max_x, right);
    leave_box_pen(of, last, of.origin_y, gap);
}

// Frames are painted by the window itself, below its controls; the latest first, so that what was
// drawn inside a frame stays on top of it.
void shuffle_boxes(fancy_window* window) {
    window_control* frames = nullptr;
    window_control* last_frame = nullptr;
    window_control** link = &window->first_control;
    window_control* last = nullptr;
    while (window_control* c = *link) {
        if (c->type != control_type::box_frame) {
            last = c;
            link = &c->next;
            continue;
        }
        *link = c->next;
        c->next = frames;
        frames = c;
        if (!last_frame) last_frame = c;
    }
    if (!frames) return;
    last_frame->next = window->first_control;
    window->first_control = frames;
    window->last_control = last ? last : last_frame;
}

// Controls of an open cell point to the frame that it would have had: that stays with the window.
void free_open_boxes() {
    while (const box* open = builder().box) {
        discard_with_window(open->frame_record, nullptr);
        pop_box();
    }
}

// What was made before keeps step with the window: a colour that the program chose stays.
void readjust_background(fancy_window* window) {
    const COLORREF before = window->background;
    window->background = dialog_colour();
    for (window_control* c = window->first_control; c; c = c->next)
        if (c->background == before && type_properties(c->type) & dialog_colour_in_3d)
            c->background = window->background;
}

void handle_ob(code_call& call) {
    if (QuitIfDlgResource("%ob")) return;
    if (records().passive) return peek_box(call);
    window_builder& at = builder();
    if (at.pivot_pending) {
        quillpan_error("?A pivot must not be placed on a box");
        at.pivot_pending = 0;
    }
    new_window_control(control_type::line_end);
    find_room();
    auto* fresh = new box(blank_box(call));
    const bool grave = call.grave;
    call.grave = false;
    take_background(*fresh);
    collect_box_options(call, *fresh);
    suit_look(*fresh, grave);
    check_cells(*fresh);
    fresh->start_control = current_window()->last_control;
    fresh->frame_record = allocate_control();
    start_at_pen(*fresh);
    fresh->previous = at.box;
    at.box = fresh;
    if (fresh->named)
        make_name_room(*fresh, get_standard_string(call, "box name"));
    else if (fresh->nameless)
        make_name_room(*fresh, nullptr);
    if (fresh->wants_line_colour)
        fresh->line_colour = static_cast<COLORREF>(user_integer(call.arguments));
    set_margins(*fresh, grave);
    put_pen_in_cell(*fresh, fresh->left, at.row - fresh->cell_y + fresh->top);
}

void handle_cb(code_call&) {
    if (QuitIfDlgResource("%cb")) return;
    if (records().passive) return;
    if (!builder().box) {
        quillpan_error("?Attempt to close non-existent box - invalid use of %%CB");
        return;
    }
    close_cell();
}

// What came so far stands in the vertical middle of a recessed pane above the rest of the window.
void handle_bx(code_call& call) {
    const double depth = user_float(call.arguments, "Invalid number passed to %bx format");
    if (records().passive) return;
    window_builder& at = builder();
    fancy_window* window = current_window();
    if (at.box || window->pivot_x != no_pivot || at.pivot_pending) {
        quillpan_error("%%BX cannot be used inside a box or after a pivot");
        return;
    }
    if (window->flags.pane) {
        quillpan_error("Only one %%BX permitted per window");
        return;
    }
    const std::int32_t units = within_reach(depth * 8.0);
    const std::int32_t pixels = units * records().char_height / 8;
    at.max_y = std::min(at.max_y + units + 1, farthest);
    window->flags.pane = true;
    window->pane_height = at.max_y * records().char_width / 4;
    window->margin_top = 0;
    readjust_background(window);
    for (window_control* c = window->first_control; c; c = c->next) c->y_extra += pixels / 2 + 1;
    bottom_line();
}

}  // namespace tarn::winio
