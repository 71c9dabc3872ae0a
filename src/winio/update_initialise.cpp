// From variables to the screen: what each control shows.
#include <algorithm>

#include "platform/controls/controls.h"
#include "platform/user/user.h"
#include "winio/actions.h"
#include "winio/procedures.h"
#include "winio/text_layer.h"
#include "winio/update.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

using namespace platform;
using enum control_type;

bool is_edit_type(const window_control* control) {
    return control->type == integer_box || control->type == float_box ||
           control->type == string_box || control->type == buffer_box;
}

// A Fortran string is shown from a copy, which first takes what the program has made of it.
void show_text(const window_control* control) {
    refresh_bound_copy(control->text);
    SetWindowTextAW(control->hwnd, control->text ? control->text : "");
}

void show_button(window_control* control, bool first) {
    if (control->grey) {
        if (first) undef_int_check(control->grey, "a grey variable", 1);
        EnableWindow(control->hwnd, *control->grey != 0);
    }
    if (control->type == fancy_button || control->flags.colour_button) redraw(control);
}

void show_switch(window_control* control, bool first) {
    auto* variable = static_cast<std::int32_t*>(control->variable);
    if (!variable) return;
    if (first) undef_int_check(variable, "%rb", 0);
    SendMessageA(control->hwnd, BM_SETCHECK, *variable != 0, 0);
    if (!first && refresh_bound_copy(control->text)) show_text(control);
}

// A page or an embedded window brings its own controls.
void show_child(const window_control* control, bool first) {
    const fancy_window* child =
        window_from_control_variable(static_cast<std::int32_t*>(control->variable));
    if (child && child->flags.open && child != control->window)
        initialise_controls(child->hwnd, first);
}

// %gp: where the marker is on the screen, or within the client area of the window's parent.
void tell_position(const window_control* control) {
    auto* x = static_cast<std::int32_t*>(control->variable);
    auto* y = static_cast<std::int32_t*>(control->block);
    POINT at{control->left, control->top};
    ClientToScreen(control->window->hwnd, at);
    if (control->flags.parent_relative) {
        if (const HWND parent = GetParent(control->window->hwnd)) ScreenToClient(parent, at);
    }
    if (x) *x = at.x;
    if (y) *y = at.y;
}

void attach_standard_test(window_control* control) {
    if (control->callback && !control->grey_test)
        control->grey_test = GetGreyControlCheckFunction(control->callback);
}

void select_all_text(const window_control* control) {
    if (control->hwnd && is_edit_type(control) && !control->flags.read_form)
        SendMessageA(control->hwnd, EM_SETSEL, 0, -1);
}

void show_control(window_control* control, bool first) {
    switch (control->type) {
        case text:
            if (first) show_text(control);
            return;
        case help_line:
        case static_string:
            show_text(control);
            return;
        case button:
        case fancy_button:
        case option_button:
            show_button(control, first);
            return;
        case system_icon:
            if (control->grey) redraw(control);
            return;
        case integer_box:
            show_integer(control, first);
            return;
        case float_box:
            show_float(control, first);
            return;
        case string_box:
        case buffer_box:
            show_string(control, first);
            return;
        case list_box:
        case combo_box:
        case multi_select:
            show_list(control, first);
            return;
        case edit_list:
            show_edit_list(control, first);
            return;
        case radio:
            show_switch(control, first);
            return;
        case child_window:
            show_child(control, first);
            return;
        default:
            if (!first) redraw(control);
            return;
    }
}

// Has it a window that its type's work can be done on?
bool can_be_shown(const window_control* control) {
    return control->hwnd && control->hwnd != HWND{-1} && control != callbacks().no_update_control;
}

}  // namespace

void redraw(const window_control* control) {
    if (control->hwnd) InvalidateRect(control->hwnd, nullptr, true);
}

void redraw_caption(const fancy_window* window) {
    refresh_bound_copy(window->caption);
    if (window->caption && window->hwnd > 0) SetWindowTextAW(window->hwnd, window->caption);
}

void initialise_control(HWND, window_control* control, bool first) {
    if (control->window->hwnd <= 0) return;
    if (first) attach_standard_test(control);
    if (control->type == marker) return tell_position(control);
    if (!can_be_shown(control)) return;
    if (control->scrolls && !first) show_scroll_bars(control);
    if (control->flags.placeholder)
        redraw(control);
    else
        show_control(control, first);
}

// Showing a value may run code of the program (a grey test, a window that hears of its child's
// change): the window is asked for after each.
void initialise_controls(HWND handle, bool first) {
    fancy_window* window = fancy_window_from_handle(handle);
    if (!window) return;
    const std::int32_t number = window->second_number;
    redraw_caption(window);
    for (window_control* c = window->first_control; c; c = c->next) {
        initialise_control(handle, c, first);
        if (!fancy_window_exists(window) || window->second_number != number) return;
        if (first) select_all_text(c);
    }
}

}  // namespace tarn::winio
