// WM_COMMAND: what a control's notification, a menu item or the Enter key does.
#include "platform/controls/controls.h"
#include "winio/buttons.h"
#include "winio/callbacks.h"
#include "winio/menus.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

struct command {
    std::int32_t id;
    std::int32_t notification;
    HWND sender;
};

// What serving one control means for the walk through the others.
enum class after : std::uint8_t { go_on, stop, close };

bool is_box(const window_control* control) {
    switch (control->type) {
        case control_type::integer_box:
        case control_type::float_box:
        case control_type::string_box:
        case control_type::buffer_box:
            return true;
        default:
            return false;
    }
}

bool is_grey(const window_control* control) {
    if (control->hwnd && !IsWindowEnabled(control->hwnd)) return true;
    return control->grey && *control->grey == 0;
}

// Enter without a button under the focus is the default button's.
bool enter_key(const command& what) {
    return what.id == IDOK && what.notification == 0;
}

bool is_served(const window_control* control, const command& what) {
    if (!control->hwnd) return false;
    if (what.sender && control->hwnd == what.sender) return true;
    return enter_key(what) && is_default_button(control) && !is_grey(control);
}

bool ignored_by_check(const window_control* control, const command& what) {
    if (!control->flags.focus_loss_check) return false;
    if (control->type == control_type::edit_list)
        return what.notification != CBN_KILLFOCUS && what.notification != CBN_DROPDOWN &&
               what.notification != CBN_CLOSEUP;
    return is_box(control) && what.notification != EN_KILLFOCUS && what.notification != EN_MAXTEXT;
}

// A box that checks when it loses the focus is made to, when the button was pressed by a key.
// False: it refuses what it holds, and has taken the focus back.
bool commit_pending_edit(fancy_window* window, const window_control* button) {
    HWND focus = GetFocus();
    if (!focus || focus == button->hwnd) return true;
    for (const window_control* control = window->first_control; control; control = control->next) {
        if (control->hwnd != focus) continue;
        if (!control->flags.focus_loss_check) return true;
        HWND pressed = button->hwnd;
        SetFocus(pressed);
        if (GetFocus() == focus) return false;
        if (IsWindow(focus)) SetFocus(focus);
        return true;
    }
    return true;
}

after button_pressed(fancy_window* window, window_control* control) {
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    const bool committed = commit_pending_edit(window, control);
    if (watch.gone() || !committed) return after::stop;
    if (control->callback) {
        get_action_coordinates(control);
        std::int32_t result = call_function(control, "BUTTON_PRESS", true);
        if (callbacks().window_gone || watch.gone()) return after::stop;
        if (result != 0) {
            if (result == 1) initialise_controls(hwnd, false);
            return after::stop;
        }
    }
    if (window->result == 0) window->result = button_value(control);
    return after::close;
}

after switch_pressed(fancy_window* window, window_control* control) {
    if (!control->callback) return after::stop;
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    get_action_coordinates(control);
    std::int32_t result = call_function(control, "BUTTON_PRESS", true);
    if (callbacks().window_gone || watch.gone()) return after::stop;
    if (result == 1) initialise_controls(hwnd, false);
    if (result != 0) return after::stop;
    if (window->result == 0) window->result = button_value(control);
    return after::close;
}

// %rb. A result of 0 doesn't close here.
after radio_pressed(fancy_window* window, window_control* control) {
    auto* variable = static_cast<std::int32_t*>(control->variable);
    if (!variable) return after::stop;
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    *variable = *variable == 0 ? 1 : 0;
    SendMessageA(control->hwnd, BM_SETCHECK, static_cast<WPARAM>(*variable), 0);
    gang_check(hwnd, variable);
    if (watch.gone()) return after::stop;
    careful_window_update(control, variable);
    if (watch.gone() || !control->callback) return after::stop;
    get_action_coordinates(control);
    callbacks().context.latest_variable = reinterpret_cast<word>(variable);
    std::int32_t result = call_function(control, "BUTTON_PRESS", true);
    if (callbacks().window_gone || watch.gone()) return after::stop;
    if (result == 1) initialise_controls(hwnd, false);
    return after::stop;
}

after picture_clicked(fancy_window* window, window_control* control) {
    if (!control->callback) return after::stop;
    get_action_coordinates(control);
    HWND hwnd = window->hwnd;
    act_on_result(hwnd, call_function(control, "MOUSE_LEFT_CLICK", true));
    return after::stop;
}

after serve_control(fancy_window* window, window_control* control, const command& what) {
    bool clicked = what.notification == BN_CLICKED;
    switch (control->type) {
        case control_type::button:
        case control_type::fancy_button:
        case control_type::option_button:
            return clicked ? button_pressed(window, control) : after::stop;
        case control_type::bitmap_switch:
            return clicked ? switch_pressed(window, control) : after::stop;
        case control_type::radio:
            return clicked ? radio_pressed(window, control) : after::stop;
        case control_type::integer_box:
        case control_type::float_box:
        case control_type::string_box:
        case control_type::buffer_box:
            data_entry_event(control, what.notification, what.id == 0);
            return after::stop;
        case control_type::system_icon:
        case control_type::icon:
        case control_type::bitmap:
        case control_type::picture:
            return clicked ? picture_clicked(window, control) : after::stop;
        default:
            return after::stop;
    }
}

// A menu's or an accelerator's: no sender. 1 and 2 are the Enter and the Escape key, and items of
// an enhanced menu, which are numbered from 1.
bool menu_served(fancy_window* window, const command& what) {
    if (what.sender) return false;
    if (what.id <= std::int32_t{IDCANCEL} &&
        (procedures().dialog_key || (!window->enhanced_menu && !window->enhanced_popup)))
        return false;
    return menu_command(window, what.id);
}

}  // namespace

void window_command(fancy_window* window, WPARAM wparam, LPARAM lparam) {
    if (window->flags.busy && !window->flags.permit && !callbacks().clipboard_refresh) return;
    window_watch watch(window);
    command what{LOWORD(wparam), static_cast<std::int32_t>(HIWORD(wparam)), to_hwnd(lparam)};
    // What controls say while they get their first values is no news.
    if (what.sender && !window->flags.ready) return;
    if (!what.sender && mdi_menu_command(window, what.id)) return;
    if (menu_served(window, what) || watch.gone()) return;
    // But for the Enter key a command is its sender's alone.
    window_control* first = window->first_control;
    if (what.sender && !enter_key(what)) first = control_of_handle(window, what.sender);
    for (window_control* control = first; control; control = control->next) {
        if (window->flags.closing) return;
        if (!is_served(control, what)) continue;
        if (control->flags.update_source) return;
        if (ignored_by_check(control, what)) return;
        after next = serve_control(window, control, what);
        if (watch.gone()) return;
        if (next == after::close) {
            window_close(window);
            return;
        }
        // Any other default button has been spoken for.
        if (next == after::stop) return;
    }
}

}  // namespace tarn::winio
