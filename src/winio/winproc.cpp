// The window procedure of format windows: what each message means.
#include "winio/winproc.h"

#include <algorithm>

#include "winio/callbacks.h"
#include "winio/layout.h"
#include "winio/menus.h"
#include "winio/report.h"
#include "winio/text_layer.h"

namespace tarn::winio {

using namespace platform;

namespace {

struct served {
    bool done = true;  // false: the platform's default follows
    LRESULT result = 0;
};
constexpr served to_default{false, 0};

window_control* control_of_message(fancy_window* window, LPARAM lparam) {
    HWND hwnd = to_hwnd(lparam);
    if (!hwnd) return nullptr;
    for (window_control* control = window->first_control; control; control = control->next)
        if (control->hwnd == hwnd) return control;
    return nullptr;
}

void run(fancy_window* window, call_back function, const char* reason) {
    if (!function) return;
    HWND hwnd = window->hwnd;
    act_on_result(hwnd, call_function(function, reason, hwnd, false, true));
}

void defer(fancy_window* window, call_back function, const char* reason) {
    if (!function) return;
    deferred_call* call = defer_call_back(nullptr, reason);
    if (!call) return;
    call->function = function;
    call->window = window;
    call->window_second_number = window->second_number;
    call->handle = window->hwnd;
    call->context.window = window;
}

// %mg and %wm, before everything else. True: the message has been served.
bool trapped(fancy_window* window, HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam,
             LRESULT& result) {
    window_watch watch(window);
    for (message_trap* trap = window->message_traps; trap; trap = trap->next) {
        if (trap->message != message || !trap->callback) continue;
        parameter_set& context = callbacks().context;
        context.message_hwnd = static_cast<std::int32_t>(hwnd);
        context.message_msg = static_cast<std::int32_t>(message);
        context.message_wparam = static_cast<word>(wparam);
        context.message_lparam = lparam;
        procedures().message_result = 0;
        std::int32_t answer = call_function(trap->callback, "MESSAGE_HOOK", hwnd, false, false);
        result = procedures().message_result;
        if (watch.gone()) return true;
        if (answer == 3) return false;
        act_on_result(hwnd, answer);
        return true;
    }
    return false;
}

// ---- Size and place

void close_drop_down(fancy_window* window) {
    if (!window->open_combo) return;
    constexpr UINT show_drop_down = 0x14F;
    HWND hwnd = window->open_combo->hwnd;
    window->open_combo = nullptr;
    SendMessageA(hwnd, show_drop_down, 0, 0);
}

void report_size(fancy_window* window, WPARAM kind) {
    if (!window->size_x_var || !window->size_y_var) return;
    if (kind == SIZE_MINIMIZED) {
        *window->size_x_var = *window->size_y_var = 1;
    } else if (kind == SIZE_MAXIMIZED) {
        *window->size_x_var = *window->size_y_var = 0x7FFFFFFF;
        window->flags.maximised = true;
    } else {
        RECT outer;
        if (!GetWindowRect(window->hwnd, outer)) return;
        *window->size_x_var = outer.width();
        *window->size_y_var = outer.height();
        window->flags.maximised = false;
    }
}

void window_sized(fancy_window* window, WPARAM kind, LPARAM lparam) {
    if (!window->flags.ready) return;
    window_watch watch(window);
    close_drop_down(window);
    if (watch.gone()) return;
    window->flags.just_resized = true;
    window->flags.size_seen = true;
    window->size_state = static_cast<std::int32_t>(kind);
    defer(window, window->resize_callback, "WINDOW_MOVEMENT");
    report_size(window, kind);
    if (window->flags.mdi_child) mdi_child_sized(window, kind);
    if (watch.gone() || kind == SIZE_MINIMIZED) return;
    re_scale_window(window, LOWORD(static_cast<std::uintptr_t>(lparam)),
                    HIWORD(static_cast<std::uintptr_t>(lparam)));
    if (watch.gone()) return;
    InvalidateRect(window->hwnd, nullptr, false);
}

void window_moved(fancy_window* window) {
    if (!window->flags.ready) return;
    window_watch watch(window);
    close_drop_down(window);
    if (watch.gone()) return;
    for (window_control* control = window->first_control; control; control = control->next) {
        if (control->type != control_type::marker) continue;
        initialise_control(window->hwnd, control, false);
        if (watch.gone()) return;
    }
    defer(window, window->move_callback, "WINDOW_MOVEMENT");
}

// By how much the window can get smaller than it was made until a control that shrinks with it is
// too small to be used.
POINT room_to_shrink(const fancy_window* window) {
    constexpr std::int32_t least_width = 48, least_height = 24, any = 100000;
    POINT room{any, any};
    const auto limit = [](std::int32_t& most, std::int32_t size, std::int32_t least, double part) {
        if (part > 0.0) most = std::min(most, static_cast<std::int32_t>((size - least) / part));
    };
    for (const window_control* c = window->first_control; c; c = c->next) {
        const RECT at = creation_rectangle(c);
        limit(room.x, at.width() + 1, std::min(at.width() + 1, least_width), c->grow_x - c->move_x);
        limit(room.y, at.height() + 1, std::min(at.height() + 1, least_height),
              c->grow_y - c->move_y);
    }
    if (room.x == any) room.x = -1;
    if (room.y == any) room.y = -1;
    return room;
}

LRESULT minimum_size(const fancy_window* window, LPARAM lparam) {
    auto* limits = reinterpret_cast<MINMAXINFO*>(lparam);
    if (!limits) return 0;
    RECT outer, client;
    if (window->flags.ready && GetWindowRect(window->hwnd, outer) &&
        GetClientRect(window->hwnd, client)) {
        const POINT room = room_to_shrink(window);
        const std::int32_t frame_x = outer.width() - client.width();
        const std::int32_t frame_y = outer.height() - client.height();
        if (room.x >= 0) limits->ptMinTrackSize.x = window->base_width + frame_x - room.x;
        if (room.y >= 0) limits->ptMinTrackSize.y = window->base_height + frame_y - room.y;
    }
    if (window->min_width > 0) limits->ptMinTrackSize.x = window->min_width;
    if (window->min_height > 0) limits->ptMinTrackSize.y = window->min_height;
    return 0;
}

// Title bar and menu come back when a super-maximised window is given another size.
void leave_super_maximised(fancy_window* window) {
    window->flags.super_maximised = false;
    LPARAM style = GetWindowLong(window->hwnd, GWL_STYLE);
    SetWindowLong(window->hwnd, GWL_STYLE, style | static_cast<LPARAM>(WS_CAPTION));
    if (window->menu) SetMenu(window->hwnd, window->menu);
}

void enter_super_maximised(fancy_window* window) {
    LPARAM style = GetWindowLong(window->hwnd, GWL_STYLE);
    SetWindowLong(window->hwnd, GWL_STYLE, style & ~static_cast<LPARAM>(WS_CAPTION));
    SetMenu(window->hwnd, HMENU{});
    ShowWindow(window->hwnd, SW_SHOWMAXIMIZED);
    if (window_listed(window)) window->flags.super_maximised = true;
}

served position_changing(fancy_window* window, LPARAM lparam) {
    auto* position = reinterpret_cast<WINDOWPOS*>(lparam);
    if (!position) return to_default;
    bool sized = (position->flags & SWP_NOSIZE) == 0;
    if (window->flags.super_maximised && window->flags.ready && sized && !IsZoomed(window->hwnd))
        leave_super_maximised(window);
    if (window->flags.fixed_place && window->flags.ready)
        position->flags |= SWP_NOMOVE | SWP_NOSIZE;
    return to_default;
}

// ---- Activation and focus

void activation_changed(fancy_window* window, WPARAM wparam) {
    if (LOWORD(wparam) != WA_INACTIVE) return;
    hide_tool_help();
    HWND focus = GetFocus();
    if (focus && IsChild(window->hwnd, focus)) window->focus_kept = focus;
    HWND capture = GetCapture();
    if (capture && IsChild(window->hwnd, capture)) ReleaseCapture();
    if (window->flags.is_volatile && window->flags.ready && !window->flags.close_asked)
        PostMessageA(window->hwnd, WM_CLOSE, 0, 0);
}

window_control* focus_taker(fancy_window* window) {
    window_control* first = window->first_focus;
    if (first && first->hwnd && IsWindowEnabled(first->hwnd)) return first;
    for (window_control* control = window->first_control; control; control = control->next)
        if ((type_properties(control->type) & takes_focus) != 0 && control->hwnd &&
            !control->flags.read_form && IsWindowEnabled(control->hwnd))
            return control;
    return nullptr;
}

// A window that comes back has the focus where it was; a new one at its first control.
void focus_gained(fancy_window* window) {
    if (!window->flags.ready) return;
    window_watch watch(window);
    HWND kept = window->focus_kept;
    window->focus_kept = HWND{};
    window_control* control = focus_taker(window);
    if (kept && IsWindow(kept) && IsWindowEnabled(kept) && IsChild(window->hwnd, kept))
        SetFocus(kept);
    else if (control)
        set_focus_on_control(control);
    if (!watch.gone()) adjust_grey_controls(3);
}

// ---- Cursors

bool choose_cursor(const fancy_window* window, HWND under) {
    const cursor_association* chosen = nullptr;
    for (const cursor_association* each = window->cursors; each; each = each->next) {
        bool own = each->control && each->control->hwnd == under;
        if (own || (!each->control && !chosen)) chosen = each;
        if (own) break;
    }
    if (!chosen || chosen->count < 1) return false;
    std::int32_t which = chosen->variable ? *chosen->variable : 1;
    if (which < 0 || which > chosen->count) return false;
    HCURSOR cursor = which == 0 ? HCURSOR{} : chosen->cursors[which - 1];
    if (which != 0 && !cursor) return false;  // not found: what is usual there
    SetCursor(cursor);
    return true;
}

served cursor_wanted(fancy_window* window, WPARAM wparam, LPARAM lparam) {
    if (window->flags.screen_saver) {
        SetCursor(HCURSOR{});
        return {true, 1};
    }
    if (LOWORD(static_cast<std::uintptr_t>(lparam)) != HTCLIENT) return to_default;
    if (choose_cursor(window, to_hwnd(static_cast<std::intptr_t>(wparam)))) return {true, 1};
    return to_default;
}

// ---- Mouse and keys of the window itself

void button_pressed(fancy_window* window, UINT message, LPARAM lparam) {
    window_watch watch(window);
    close_drop_down(window);
    if (watch.gone()) return;
    if (window->text_control && window->text_control->hwnd)
        SetFocus(window->text_control->hwnd);
    else if (window->flags.child)
        SetFocus(window->hwnd);
    if (watch.gone() || message != WM_RBUTTONDOWN) return;
    POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    ClientToScreen(window->hwnd, at);
    display_popup_menu1(window, window->hwnd, MAKELPARAM(at.x, at.y), true);
}

// %dg: the window goes with the mouse until a button is let go.
void follow_mouse(fancy_window* window) {
    POINT at;
    RECT outer;
    if (!GetCursorPos(at) || !GetWindowRect(window->hwnd, outer)) return;
    std::int32_t dx = at.x - window->drag_x, dy = at.y - window->drag_y;
    if (dx == 0 && dy == 0) return;
    window->drag_x = at.x;
    window->drag_y = at.y;
    SetWindowPos(window->hwnd, HWND{}, outer.left + dx, outer.top + dy, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void end_drag(fancy_window* window) {
    ShowCursor(true);
    ReleaseCapture();
    if (window_listed(window)) PostMessageA(window->hwnd, WM_CLOSE, 0, 0);
}

bool saver_woken(fancy_window* window, UINT message) {
    if (!window->flags.screen_saver || !window->flags.ready) return false;
    if (message == WM_MOUSEMOVE) {
        // Showing the window counts as no movement.
        POINT at;
        GetCursorPos(at);
        if (at.x == window->drag_x && at.y == window->drag_y) return false;
    }
    window->flags.screen_saver = false;
    ShowCursor(true);
    PostMessageA(window->hwnd, WM_CLOSE, 0, 0);
    return true;
}

void files_dropped(fancy_window* window, HDROP drop) {
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    POINT at;
    RECT outer;
    DragQueryPoint(drop, at);
    GetWindowRect(hwnd, outer);
    callbacks().context.action_x = outer.left + at.x;
    callbacks().context.action_y = outer.top + at.y;
    std::int32_t count = DragQueryFileA(drop, 0xFFFFFFFFu, nullptr, 0);
    set_quillpan_info("DROPPED_COUNT", count);
    for (std::int32_t i = 0; i < count && !watch.gone(); ++i) {
        char name[4096];
        DragQueryFileA(drop, static_cast<std::uint32_t>(i), name, sizeof name);
        set_quillpan_info("DROPPED_CURRENT", i + 1);
        set_quillpan_string("DROPPED_FILE", name);
        run(window, window->drop_callback, "DROPPED_FILE");
    }
    DragFinish(drop);
    set_quillpan_info("DROPPED_COUNT", 0);
    set_quillpan_info("DROPPED_CURRENT", 0);
    set_quillpan_string("DROPPED_FILE", "");
    if (!watch.gone()) SetFocus(hwnd);
}

bool shutdown_allowed(fancy_window* window) {
    if (!window->end_callback) return true;
    return call_function(window->end_callback, "QUERY_SHUTDOWN", window->hwnd, false, false) == 0;
}

served system_command(fancy_window* window, WPARAM wparam) {
    switch (wparam & 0xFFF0) {
        case SC_SCREENSAVE:
            if (window->flags.screen_saver || window->flags.no_screen_saver) return {};
            return to_default;
        case SC_NEXTWINDOW:
        case SC_PREVWINDOW: {
            fancy_window* host = window->flags.mdi_child ? window->frame_window : window;
            next_mdi_child(host, (wparam & 0xFFF0) == SC_PREVWINDOW);
            return {};
        }
        default:
            if (wparam < 0x1000) {
                window_command(window, wparam, 0);
                return {};
            }
            return to_default;
    }
}

// ---- Messages of the library's own

void split_arrow(fancy_window* window, LPARAM lparam) {
    constexpr std::int32_t drop_down = -1248;  // BCN_DROPDOWN
    const auto* header = reinterpret_cast<const NMHDR*>(lparam);
    if (!header || header->code != drop_down) return;
    window_control* control = control_of_message(window, static_cast<LPARAM>(header->hwndFrom));
    if (!control || !control->callback) return;
    get_action_coordinates(control);
    HWND hwnd = window->hwnd;
    act_on_result(hwnd, call_function(control, "DROPDOWN", true));
}

void key_accelerator(fancy_window* window, WPARAM key, LPARAM function) {
    callbacks().context.keyboard_key = static_cast<std::int32_t>(key);
    run(window, reinterpret_cast<call_back>(function), "ACCELERATOR");
}

void control_accelerator(fancy_window* window, LPARAM lparam) {
    auto* wanted = reinterpret_cast<window_control*>(lparam);
    for (window_control* control = window->first_control; control; control = control->next) {
        if (control != wanted) continue;
        if (control->callback) call_function(control, "ACCELERATOR", true);
        return;
    }
}

// The mnemonic of a %bb, %bn or drawn button.
void button_accelerator(fancy_window* window, LPARAM lparam) {
    auto* wanted = reinterpret_cast<window_control*>(lparam);
    for (window_control* control = window->first_control; control; control = control->next) {
        if (control != wanted) continue;
        if (!control->hwnd || !IsWindowEnabled(control->hwnd)) return;
        PostMessageA(window->hwnd, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control->hwnd), 0),
                     static_cast<LPARAM>(control->hwnd));
        return;
    }
}

served private_message(fancy_window* window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case msg_start_up:
            window_started(window);
            return {};
        case msg_accelerator:
            key_accelerator(window, wparam, lparam);
            return {};
        case msg_control_accelerator:
            control_accelerator(window, lparam);
            return {};
        case msg_button_accelerator:
            button_accelerator(window, lparam);
            return {};
        case msg_super_maximise:
            enter_super_maximised(window);
            return {};
        case msg_topmost_mdi:
            change_topmost_mdi_child(window);
            return {};
        case msg_mdi_page:
            mdi_page_turned(window);
            return {};
        case msg_text_message:
            text_message_arrived(window, lparam);
            return {};
        case msg_text_channel:
            texts_from_outside(window->hwnd);
            return {};
        case msg_pending_calls:
            perform_pending_calls();
            return {};
        case msg_defered_error:
            show_defered_error();
            return {};
        default:
            return to_default;
    }
}

served input_message(fancy_window* window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return saver_woken(window, message) ? served{} : to_default;
        case WM_MOUSEMOVE:
            if (saver_woken(window, message)) return {};
            if (window->flags.dragged) follow_mouse(window);
            return to_default;
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
            if (!window->flags.dragged) return to_default;
            end_drag(window);
            return {};
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
            button_pressed(window, message, lparam);
            return {};
        case WM_CONTEXTMENU:
            if (display_popup_menu1(window, window->hwnd, lparam, lparam != -1)) return {};
            return to_default;
        case WM_NCLBUTTONDOWN:
            if (window->flags.child) SetFocus(window->hwnd);
            return to_default;
        case WM_MOUSEWHEEL: {
            auto turn = static_cast<std::int16_t>(HIWORD(wparam));
            return wheel_scrolled(window, turn) ? served{} : to_default;
        }
        case WM_DROPFILES:
            files_dropped(window, static_cast<HDROP>(wparam));
            return {};
        default:
            return to_default;
    }
}

served serve(fancy_window* window, HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CREATE:
            return {true, window_created(window, hwnd)};
        case WM_COMMAND:
            window_command(window, wparam, lparam);
            return {};
        case WM_CTLCOLORMSGBOX:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSCROLLBAR:
        case WM_CTLCOLORSTATIC: {
            LRESULT brush = control_colours(
                window, static_cast<HDC>(static_cast<std::int32_t>(wparam)), to_hwnd(lparam));
            return brush ? served{true, brush} : to_default;
        }
        case WM_ERASEBKGND:
            return {true, 1};  // WM_PAINT fills
        case WM_PAINT:
            paint_window(window);
            return {};
        case WM_DRAWITEM: {
            const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lparam);
            return item && draw_item(window, *item) ? served{true, 1} : to_default;
        }
        case WM_SIZE:
            window_sized(window, wparam, lparam);
            return {};
        case WM_MOVE:
            window_moved(window);
            return {};
        case WM_SYSCOLORCHANGE:
            take_theme(window);
            return to_default;
        case WM_GETMINMAXINFO:
            return {true, minimum_size(window, lparam)};
        case WM_WINDOWPOSCHANGING:
            return position_changing(window, lparam);
        case WM_WINDOWPOSCHANGED:
            if (window->flags.mdi_child && window->flags.ready && window->frame_window)
                PostMessageA(window->frame_window->hwnd, msg_topmost_mdi, 0, 0);
            return to_default;
        case WM_ACTIVATE:
            activation_changed(window, wparam);
            return to_default;
        case WM_SETFOCUS:
            focus_gained(window);
            return {};
        case WM_CHILDACTIVATE: {
            HWND focus = GetFocus();
            if (focus != hwnd && !IsChild(hwnd, focus)) SetFocus(hwnd);
            return {};
        }
        case WM_SETCURSOR:
            return cursor_wanted(window, wparam, lparam);
        case WM_QUERYENDSESSION:
            return {true, shutdown_allowed(window)};
        case WM_NOTIFY:
            split_arrow(window, lparam);
            return {};
        case WM_HELP:
            return help_requested(window) ? served{true, 1} : to_default;
        case WM_MENUSELECT:
            menu_selected(window, wparam, lparam);
            return {};
        case WM_INITMENU:
            procedures().input_seen = true;
            close_drop_down(window);
            adjust_grey_controls(1);
            return {};
        case WM_TIMER:
            window_timer(window, wparam);
            return {};
        case WM_SYSCOMMAND:
            return system_command(window, wparam);
        case WM_HSCROLL:
        case WM_VSCROLL:
            window_scrolled(window, message == WM_VSCROLL, wparam, to_hwnd(lparam));
            return {};
        case WM_GETDLGCODE:
            return {true, DLGC_WANTALLKEYS};
        case WM_CLOSE:
            if (close_window(window)) DestroyWindow(hwnd);
            return {};
        case WM_DESTROY:
            window_destroyed(window);
            return {};
        default:
            if (message >= WM_USER) return private_message(window, message, wparam, lparam);
            return input_message(window, message, wparam, lparam);
    }
}

}  // namespace

procedures_state& procedures() {
    static constinit procedures_state state{};
    return state;
}

LRESULT winio_winproc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    fancy_window* window = nullptr;
    if (message == WM_CREATE) {
        auto* creation = reinterpret_cast<CREATESTRUCT*>(lparam);
        window = static_cast<fancy_window*>(creation->lpCreateParams);
        if (!window || !window_listed(window)) return -1;
    } else {
        window = fancy_window_from_handle(hwnd);
        if (!window) return DefWindowProcA(hwnd, message, wparam, lparam);
    }
    fancy_window* before = current_window();
    current_window() = window;
    ++window->entered;
    ++procedures().window_depth;

    served answer;
    if (!trapped(window, hwnd, message, wparam, lparam, answer.result))
        answer = serve(window, hwnd, message, wparam, lparam);

    --procedures().window_depth;
    // A window that another one's end has taken along can't be current again.
    current_window() = before && window_listed(before) ? before : nullptr;
    if (--window->entered == 0 && window->flags.retired) {
        if (current_window() == window) current_window() = nullptr;
        destroy_fancy_window(window);
    }
    if (answer.done) return answer.result;
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

LRESULT shadow_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    // The shadow of a window is the desktop's, and of a pop-up the theme's: nothing is made here.
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

}  // namespace tarn::winio
