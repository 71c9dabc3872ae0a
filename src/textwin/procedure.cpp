// The window procedure of text windows.
#include "platform/gdi/theme.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

// A program's own function for the message. True: it dealt with it.
bool run_callback(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    const window_info* window = find_window(hwnd);
    for (const callback_entry* entry = window->callbacks; entry != nullptr; entry = entry->next) {
        if (entry->message != message) continue;
        auto number = static_cast<std::int32_t>(message & 0xFFFF);
        if (entry->by_reference != nullptr)
            return entry->by_reference(&hwnd, &number, &wparam, &lparam) == 0;
        return entry->function(hwnd, number, wparam, lparam) == 0;
    }
    return false;
}

void paint(window_info& window) {
    if (window.height < 0) {
        RECT client;
        GetClientRect(window.hwnd, client);
        window.width = client.right;
        window.height = client.bottom;
    }
    window.repaint_all = false;
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window.hwnd, paint);
    paint_window(window, dc, false);
    EndPaint(window.hwnd, paint);
}

void resized(window_info& window, LPARAM lparam) {
    window.height = HIWORD(static_cast<WPARAM>(lparam));
    window.width = LOWORD(static_cast<WPARAM>(lparam));
    window.bar_pending = true;
    window.painted = false;
    scrollv(window, 0, 2, false);
    scrollh(window, 0, 2);
}

void show_popup(const window_info& window, LPARAM lparam) {
    POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    ClientToScreen(window.hwnd, at);
    TrackPopupMenu(window.popup, TPM_CENTERALIGN, at.x, at.y, GetParent(window.hwnd));
}

constexpr WPARAM copy_character = 3;  // of Ctrl+C, whose key has copied a selection

LRESULT dress_control(const window_info& window, WPARAM wparam) {
    if (!window.embedded) return 0;
    const HDC dc{static_cast<std::int32_t>(wparam)};
    SetBkColor(dc, window.background);
    SetTextColor(dc, window.text_colour);
    return window.brush;
}

// Keys that move the view, when the program isn't reading.
bool view_key(window_info& window, WPARAM key) {
    switch (key) {
        case VK_PRIOR:
            scroll_message(window, WM_VSCROLL, SB_PAGEUP);
            return true;
        case VK_NEXT:
            scroll_message(window, WM_VSCROLL, SB_PAGEDOWN);
            return true;
        case VK_UP:
            scroll_message(window, WM_VSCROLL, SB_LINEUP);
            return true;
        case VK_DOWN:
            scroll_message(window, WM_VSCROLL, SB_LINEDOWN);
            return true;
        case VK_HOME:
            scroll_message(window, WM_VSCROLL, SB_TOP);
            return true;
        case VK_END:
            scroll_message(window, WM_VSCROLL, SB_BOTTOM);
            return true;
        default:
            return false;
    }
}

}  // namespace

namespace {

// Colours that nobody chose are the theme's, which has changed.
void take_theme(window_info& window) {
    for (text_descriptor* each = window.descriptors; each != nullptr; each = each->next)
        each->colour = in_this_theme(each->colour);
    if (!window.embedded) return;
    window.background = in_this_theme(window.background);
    window.text_colour = in_this_theme(window.text_colour);
    COLORREF before = 0;
    if (GetObjectBrush(window.brush, before) && in_this_theme(before) != before)
        window.brush = CreateSolidBrush(in_this_theme(before));
}

}  // namespace

LRESULT main_windows_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    if (find_window(hwnd) == nullptr) return DefWindowProcA(hwnd, message, wparam, lparam);
    if (run_callback(hwnd, message, wparam, lparam)) return 0;
    window_info* found = find_window(hwnd);
    if (found == nullptr) return DefWindowProcA(hwnd, message, wparam, lparam);
    window_info& window = *found;
    const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    switch (message) {
        case WM_SIZE:
            resized(window, lparam);
            return 0;
        case WM_SYSCOLORCHANGE:
            take_theme(window);
            break;
        case WM_PAINT:
            paint(window);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_CHAR:
            if (wparam == copy_character && window.selected_first != nullptr) return 0;
            [[fallthrough]];
        case WM_UNICHAR:
            key_typed(window, message, wparam);
            return 0;
        case WM_KEYDOWN:
            if ((GetKeyState(VK_CONTROL) & 0x8000) != 0 && (wparam == 'C' || wparam == VK_INSERT) &&
                window.selected_first != nullptr) {
                copy_selection(window);
                return 0;
            }
            if (!window.waiting && view_key(window, wparam)) return 0;
            break;
        case WM_COPY:
            copy_selection(window);
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTALLKEYS;
        case WM_LBUTTONDOWN:
            SetFocus(hwnd);
            mouse_selection(window, message, wparam, at);
            return 0;
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            mouse_selection(window, message, wparam, at);
            return 0;
        case WM_TIMER:
            mouse_selection(window, message, wparam, at);
            break;
        case WM_RBUTTONDOWN:
            if (window.popup != 0) show_popup(window, lparam);
            return 0;
        case WM_HSCROLL:
        case WM_VSCROLL:
            scroll_message(window, message, wparam);
            return 0;
        case WM_MOUSEWHEEL:
            wheel(window, wparam);
            return 0;
        case WM_SETFOCUS:
            window.has_focus = true;
            return 0;
        case WM_KILLFOCUS:
            window.has_focus = false;
            if (window.caret_exists) DestroyCaret();
            window.caret_exists = false;
            return 0;
        case WM_SYSCOMMAND:
            if (wparam != copy_command) break;
            copy_window(window);
            return 0;
        case WM_COMMAND:
            window.last_command = LOWORD(wparam);
            window.event_waiting = true;
            return 0;
        case WM_CLOSE:
            window.last_command = LOWORD(wparam);
            window.event_waiting = true;
            break;
        case WM_DESTROY:
            release_window(hwnd);
            return 0;
        default:
            if (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC)
                return dress_control(window, wparam);
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

}  // namespace tarn::textwin
