// From layout units to pixels: the rectangles of controls and of the window, and what happens to
// them when the user gives the window another size.
#include <algorithm>

#include "platform/display/display.h"
#include "platform/user/user.h"
#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/layout_state.h"
#include "winio/menus.h"
#include "winio/procedures.h"

namespace tarn::winio {
namespace {

using namespace platform;

constexpr std::int32_t no_place = -100000;

// ---- The window --------------------------------------------------------------------------------
// What the parts around the client add to it.
struct additions {
    std::int32_t x, y;
};

void add_border(additions& to, std::int32_t metric_x, std::int32_t metric_y) {
    to.x += 2 * GetSystemMetrics(metric_x);
    to.y += 2 * GetSystemMetrics(metric_y);
}

bool may_be_sized(const fancy_window* window) {
    return window->flags.sizable && !window->flags.fixed_size;
}

void style_default_window(fancy_window* window, additions& frame) {
    if (may_be_sized(window)) {
        window->style |= WS_THICKFRAME;
        add_border(frame, SM_CXFRAME, SM_CYFRAME);
    } else {
        window->style |= WS_DLGFRAME;
        add_border(frame, SM_CXBORDER, SM_CYBORDER);
    }
    window->style |= WS_CAPTION;
    if (window->flags.system_menu) window->style |= WS_SYSMENU;
    if (window->menu)
        window->style |= WS_BORDER;
    else
        window->ex_style |= WS_EX_DLGMODALFRAME;
}

void style_ww_window(fancy_window* window, additions& frame) {
    const window_flags& flags = window->flags;
    if (flags.caption) window->style |= WS_CAPTION;
    if (flags.system_menu) window->style |= WS_SYSMENU;
    if (may_be_sized(window)) {
        window->style |= WS_THICKFRAME;
        add_border(frame, SM_CXFRAME, SM_CYFRAME);
    } else if (flags.sizable) {
        add_border(frame, SM_CXEDGE, SM_CYEDGE);
    } else if (flags.caption) {
        add_border(frame, SM_CXBORDER, SM_CYBORDER);  // a caption's own
    }
    if (flags.minimise_box) window->style |= WS_MINIMIZEBOX;
    if (flags.maximise_box) window->style |= WS_MAXIMIZEBOX;
}

additions style_and_frame(fancy_window* window) {
    additions frame{0, 0};
    if (window->menu && !window->flags.sheet) frame.y += GetSystemMetrics(SM_CYMENU);
    if (window->flags.caption) frame.y += GetSystemMetrics(SM_CYCAPTION);
    if (window->flags.vertical_bar) frame.x += GetSystemMetrics(SM_CXVSCROLL);
    if (window->flags.horizontal_bar) frame.y += GetSystemMetrics(SM_CYHSCROLL);
    const bool is_default =
        !window->flags.has_ww && !window->flags.sheet && !window->flags.mdi_child;
    if (is_default)
        style_default_window(window, frame);
    else
        style_ww_window(window, frame);
    return frame;
}

// The top left corner before the frame counts; a centred window moves back by half its frame.
struct origin {
    std::int32_t x, y;
    bool centred;
};

// The monitor of the window that it belongs to, or of the one that the user works in.
RECT screen_of(const fancy_window* window) {
    HWND near = owner_of(window);
    if (!near) near = GetActiveWindow();
    RECT place;
    if (near && !IsIconic(near) && GetWindowRect(near, place))
        return display().monitor(middle_of(place));
    return display().monitors()[0];
}

origin choose_origin(const fancy_window* window, std::int32_t width, std::int32_t height) {
    if (window->flags.dragged) return {window->left - width / 2, window->top - height / 2, false};
    if (window->flags.explicit_position) return {window->left, window->top, false};
    if (window->flags.child) return {0, 0, false};
    const RECT screen = screen_of(window);
    return {screen.left + std::max((screen.width() - width) / 2, 0),
            screen.top + std::max((screen.height() - height) / 2, 0), true};
}

void take_location(fancy_window* window) {
    const window_location* given = window->location;
    if (!given) return;
    const auto pixels_x = [](std::int32_t units) {
        return static_cast<std::int32_t>(records().char_width * units / 4.0 + 0.5);
    };
    const auto pixels_y = [](std::int32_t units) {
        return static_cast<std::int32_t>(records().char_height * units / 8.0 + 0.5);
    };
    const std::int32_t x = given->x >= 0 ? pixels_x(given->x) : window->left;
    const std::int32_t y = given->y >= 0 ? pixels_y(given->y) : window->top;
    window->left = x;
    window->top = y;
    window->right = x + pixels_x(given->width) - 1;
    window->bottom = y + pixels_y(given->height) - 1;
}

// ---- Another size ------------------------------------------------------------------------------
RECT rescaled(const window_control* control, std::int32_t dx, std::int32_t dy) {
    const RECT at = creation_rectangle(control);
    double width = at.right - at.left + 1;
    double height = at.bottom - at.top + 1;
    if (control->scrolls) {
        width += control->scrolls->vertical.hidden_size;
        height += control->scrolls->horizontal.hidden_size;
    }
    return {static_cast<std::int32_t>(at.left + dx * control->move_x),
            static_cast<std::int32_t>(at.top + dy * control->move_y),
            static_cast<std::int32_t>(width + at.left + dx * control->grow_x - 1.0),
            static_cast<std::int32_t>(height + at.top + dy * control->grow_y - 1.0)};
}

RECT current_rectangle(const window_control* control) {
    return {control->left, control->top, control->right, control->bottom};
}

bool shows_sheet(const window_control* control) {
    if (control->type != control_type::child_window) return false;
    const fancy_window* child =
        window_from_control_variable(static_cast<std::int32_t*>(control->variable));
    return child && child->flags.sheet;
}

bool stays(const window_control* control) {
    return (control->type == control_type::list_box && control->scrolls) || shows_sheet(control);
}

void set_rectangle(window_control* control, const RECT& to) {
    control->left = to.left;
    control->top = to.top;
    control->right = to.right;
    control->bottom = to.bottom;
}

// The records of a window outlive the calls that moving a child makes as long as the window is
// open: `still_there` is asked after each of them.
void move_control(window_control* control, const RECT& to) {
    if (to == current_rectangle(control)) return;
    set_rectangle(control, to);
    if (!control->hwnd || stays(control)) return;
    MoveWindow(control->hwnd, to.left, to.top, std::max(to.right - to.left + 1, 0),
               std::max(to.bottom - to.top + 1, 0), true);
}

void fit_status_bar(window_control* bar, std::int32_t width, std::int32_t height) {
    RECT now;
    if (!GetWindowRect(bar->hwnd, now)) return;
    const std::int32_t depth = now.height();
    set_rectangle(bar, {0, height - depth, width - 1, height - 1});
    MoveWindow(bar->hwnd, 0, height - depth, width, depth, true);
}

}  // namespace

void window_size_and_position(fancy_window* window) {
    const std::int32_t width = units_to_pixels_x(builder().max_x);
    const std::int32_t height = units_to_pixels_y(builder().max_y);
    const origin at = choose_origin(window, width, height);
    const additions frame = style_and_frame(window);
    window->left = at.centred ? at.x - frame.x / 2 : at.x;
    window->top = at.centred ? at.y - frame.y / 2 : at.y;
    window->right = window->left + std::max(width + frame.x, window->min_width) - 1;
    window->bottom = window->top + std::max(height + frame.y, window->min_height) - 1;
    take_location(window);
}

RECT creation_rectangle(const window_control* control) {
    RECT at;
    at.left = units_to_pixels_x(control->x) + control->x_extra;
    at.right = at.left + units_to_pixels_x(control->width) - 1;
    at.top = units_to_pixels_y(control->y) + control->y_extra;
    at.bottom = at.top + units_to_pixels_y(control->height) - 1;
    if (control->fixed_x > no_place) {
        at.right += control->fixed_x - at.left;
        at.left = control->fixed_x;
    }
    if (control->fixed_y > no_place) {
        at.bottom += control->fixed_y - at.top;
        at.top = control->fixed_y;
    }
    if (control->fixed_w > 0) at.right = at.left + control->fixed_w - 1;
    if (control->fixed_h > 0) at.bottom = at.top + control->fixed_h - 1;
    return at;
}

void control_rectangle(window_control* control) {
    set_rectangle(control, creation_rectangle(control));
}

// Pictures follow when the queue is next empty: a yield after each of 200 moved controls would
// paint the window 200 times.
void re_scale_window(fancy_window* window, std::int32_t width, std::int32_t height) {
    const std::int32_t number = window->second_number;
    const auto still_there = [&] {
        return fancy_window_exists(window) && window->second_number == number;
    };
    const std::int32_t dx = width - window->base_width;
    const std::int32_t dy = height - window->base_height;
    for (window_control* c = window->first_control; c; c = c->next) {
        if (c->type == control_type::status_bar) {
            if (c->hwnd) fit_status_bar(c, width, height);
        } else {
            move_control(c, rescaled(c, dx, dy));
        }
        if (!still_there()) return;
        if (c->scrolls && c->hwnd) re_size_scroll_bars(c);
        if (c->type == control_type::marker) initialise_control(window->hwnd, c, false);
    }
}

}  // namespace tarn::winio
