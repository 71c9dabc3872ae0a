// The frame of %fr, in which %aw windows stand as children.
#include "platform/gdi/theme.h"
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

void show_maximised_again(fancy_window* window) {
    for (const fancy_window* child = window->first_child; child; child = child->next_sibling)
        if (child->flags.open && child->flags.mdi_maximised)
            ShowWindow(child->hwnd, SW_SHOWMAXIMIZED);
}

}  // namespace

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
