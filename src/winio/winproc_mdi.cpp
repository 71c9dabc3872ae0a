// The frame of %fr, in which %aw windows stand as children: which one is on top, and how they fill
// the frame together.
#include <vector>

#include "platform/gdi/theme.h"
#include "platform/user/menus.h"
#include "winio/callbacks.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t caption_cut = 6;

void paint_frame(const fancy_window* window, HWND hwnd) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, paint);
    if (!dc) return;
    for (const fancy_window* child = window->first_child; child; child = child->next_sibling) {
        RECT place;
        if (!child->flags.open || !GetWindowRect(child->hwnd, place)) continue;
        POINT corners[] = {{place.left, place.top}, {place.right, place.bottom}};
        MapWindowPoints(HWND{}, hwnd, corners, 2);
        ExcludeClipRect(dc, {corners[0].x, corners[0].y + caption_cut, corners[1].x, corners[1].y});
    }
    RECT client;
    GetClientRect(hwnd, client);
    FillRect(dc, client, GetSysColorBrush(COLOR_APPWORKSPACE));
    EndPaint(hwnd, paint);
}

void hand_focus_down(const fancy_window* window) {
    const fancy_window* child = window->top_child ? window->top_child : window->first_child;
    if (child && child->flags.open && child->hwnd) SetFocus(child->hwnd);
}

bool is_listed_host(const fancy_window* host) {
    return host && window_listed(host) && host->flags.open && host->mdi_frame;
}

// ---- All children maximised, or none -----------------------------------------------------------
// While they are, their captions are out of sight: their commands are offered in the menu.
constexpr UINT restore_command = mdi_restore, minimise_command = mdi_minimise;

void maximise_menu(fancy_window* host, bool on) {
    if (host->flags.menu_buttons_shown == on) return;
    host->flags.menu_buttons_shown = on;
    const HMENU bar = host->enhanced_menu ? host->enhanced_menu : host->menu;
    const HMENU system = GetSystemMenu(host->hwnd, false);
    for (UINT id : {restore_command, minimise_command}) {
        DeleteMenu(system, id, 0);
        if (bar) DeleteMenu(bar, id, 0);
    }
    if (on) {
        AppendMenuA(system, MF_STRING, restore_command, "&Restore");
        AppendMenuA(system, MF_STRING, minimise_command, "Mi&nimise");
        if (bar) AppendMenuA(bar, MF_STRING | MF_RIGHTJUSTIFY, restore_command, "&Restore");
    }
    DrawMenuBar(host->hwnd);
}

// Children as handles: showing one may run call-backs that close others.
std::vector<HWND> children_of(const fancy_window* host) {
    std::vector<HWND> all;
    for (const fancy_window* child = host->first_child; child; child = child->next_sibling)
        if (child->flags.open) all.push_back(child->hwnd);
    return all;
}

void maximise_children(fancy_window* host, bool on) {
    if (host->flags.changing_menu_buttons) return;
    host->flags.changing_menu_buttons = true;
    window_watch watch(host);
    const HWND top =
        host->top_child && host->top_child->flags.open ? host->top_child->hwnd : HWND{};
    for (HWND hwnd : children_of(host)) {
        fancy_window* child = fancy_window_from_handle(hwnd);
        if (!child) continue;
        child->flags.mdi_maximised = on;
        if (IsZoomed(hwnd) != on && !IsIconic(hwnd))
            ShowWindow(hwnd, on ? SW_SHOWMAXIMIZED : SW_RESTORE);
        if (watch.gone()) return;
    }
    if (top && IsWindow(top)) BringWindowToTop(top);
    if (watch.gone()) return;
    maximise_menu(host, on);
    host->flags.changing_menu_buttons = false;
}

// ---- The child on top --------------------------------------------------------------------------
fancy_window* highest_child(const fancy_window* host, const fancy_window* but = nullptr) {
    for (HWND hwnd = GetTopWindow(host->mdi_frame->hwnd); hwnd;
         hwnd = GetWindow(hwnd, GW_HWNDNEXT)) {
        fancy_window* child = fancy_window_from_handle(hwnd);
        if (child && child != but && child->flags.open && IsWindowVisible(hwnd)) return child;
    }
    return nullptr;
}

void show_maximised_again(fancy_window* window) {
    for (const fancy_window* child = window->first_child; child; child = child->next_sibling)
        if (child->flags.open && child->flags.mdi_maximised)
            ShowWindow(child->hwnd, SW_SHOWMAXIMIZED);
}

}  // namespace

void mdi_child_sized(fancy_window* child, WPARAM kind) {
    fancy_window* host = child->frame_window;
    if (!is_listed_host(host) || kind == SIZE_MINIMIZED) return;
    const bool on = kind == SIZE_MAXIMIZED;
    if (child->flags.mdi_maximised != on) maximise_children(host, on);
}

void mdi_child_made(fancy_window* child) {
    fancy_window* host = child->frame_window;
    if (!is_listed_host(host)) return;
    window_watch watch(child);
    if (host->flags.menu_buttons_shown) {
        child->flags.mdi_maximised = true;
        ShowWindow(child->hwnd, SW_SHOWMAXIMIZED);
    }
    if (!watch.gone() && is_listed_host(host)) change_topmost_mdi_child(host);
}

void change_topmost_mdi_child(fancy_window* host) {
    if (!is_listed_host(host)) return;
    fancy_window* top = highest_child(host);
    if (top == host->top_child) return;
    if (host->top_child && window_listed(host->top_child)) host->top_child->flags.top_child = false;
    host->top_child = top;
    if (top) top->flags.top_child = true;
    const window_control* frame = host->mdi_frame;
    const auto handle = top ? static_cast<std::int32_t>(top->hwnd) : 0;
    if (frame->hwnd_var) *frame->hwnd_var = handle;
    if (frame->hwnd_var_wide) *frame->hwnd_var_wide = handle;
    if (!top) maximise_menu(host, false);
    if (frame->callback) PostMessageA(host->hwnd, msg_mdi_page, 0, 0);
}

HWND mdi_child_below(const fancy_window* child) {
    const fancy_window* host = child->frame_window;
    if (!is_listed_host(host)) return HWND{};
    const fancy_window* next = highest_child(host, child);
    return next ? next->hwnd : HWND{};
}

void mdi_page_turned(const fancy_window* host) {
    if (!host->mdi_frame || !host->mdi_frame->callback) return;
    const HWND hwnd = host->hwnd;
    act_on_result(hwnd, call_function(host->mdi_frame, "MDI_PAGE_TURN", true));
}

bool mdi_menu_command(fancy_window* host, std::int32_t id) {
    if (id != mdi_restore && id != mdi_minimise) return false;
    if (!is_listed_host(host) || !host->top_child) return false;
    const HWND top = host->top_child->hwnd;
    window_watch watch(host);
    maximise_children(host, false);
    if (!watch.gone() && id == mdi_minimise && IsWindow(top)) ShowWindow(top, SW_SHOWMINIMIZED);
    return true;
}

void next_mdi_child(fancy_window* host, bool back) {
    if (!is_listed_host(host)) return;
    const HWND frame = host->mdi_frame->hwnd;
    HWND to{};
    if (back) {
        // The lowest comes up; forwards the highest goes down.
        for (HWND each = GetTopWindow(frame); each; each = GetWindow(each, GW_HWNDNEXT)) to = each;
    } else {
        const HWND top = GetTopWindow(frame);
        to = top ? GetWindow(top, GW_HWNDNEXT) : HWND{};
        if (to)
            SetWindowPos(top, to_hwnd(HWND_BOTTOM), 0, 0, 0, 0,
                         SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    if (!to || !IsWindow(to)) return;
    BringWindowToTop(to);
    if (IsWindow(to)) SetFocus(to);
}

LRESULT mdi_frame_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    const window_control* control = control_from_window(hwnd, false);
    if (!control) return DefWindowProcA(hwnd, message, wparam, lparam);
    fancy_window* window = control->window;
    switch (message) {
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSTATIC:
            return control_colours(window, static_cast<HDC>(static_cast<std::int32_t>(wparam)),
                                   to_hwnd(lparam));
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint_frame(window, hwnd);
            return 0;
        case WM_SETFOCUS:
            hand_focus_down(window);
            return 0;
        case WM_SIZE:
            show_maximised_again(window);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

}  // namespace tarn::winio
