// What happens to messages that a window doesn't handle itself.
#include "platform/gdi/theme.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

LRESULT erase_background(const Window& window, HDC dc) {
    HBRUSH brush = window.cls->background;
    if (brush == HBRUSH{}) return 0;
    // Small numbers are system colours, one above their index.
    const auto number = static_cast<std::int32_t>(brush);
    if (number > 0 && number <= COLOR_INFOBK + 1) brush = GetSysColorBrush(number - 1);
    RECT box;
    GetClipBox(dc, box);
    FillRect(dc, box, brush);
    return 1;
}

// Controls are coloured by their parents; one that doesn't care gets the theme's colours.
LRESULT control_colour(UINT message, HDC dc) {
    const bool field = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
    const std::int32_t background = message == WM_CTLCOLORSCROLLBAR ? COLOR_SCROLLBAR
                                    : field                         ? COLOR_WINDOW
                                                                    : COLOR_BTNFACE;
    if (dc != HDC{}) {
        SetTextColor(dc, GetSysColor(field ? COLOR_WINDOWTEXT : COLOR_BTNTEXT));
        SetBkColor(dc, GetSysColor(background));
    }
    return static_cast<LRESULT>(GetSysColorBrush(background));
}

LRESULT set_cursor(Window& window, WPARAM wparam, LPARAM lparam) {
    const auto hit = static_cast<std::int16_t>(LOWORD(static_cast<std::uintptr_t>(lparam)));
    const HWND under{static_cast<std::int32_t>(wparam)};
    // An ancestor may want a cursor of its own over all its children.
    const HWND parent = handle_of(window.parent);
    if (parent != HWND{} && call(parent, WM_SETCURSOR, wparam, lparam) != 0) return 1;
    const Window* const target = find(under);
    if (target == nullptr) return 0;
    if (target != &window) return 0;
    if (hit != HTCLIENT) {
        SetCursor(border_cursor(hit));
        return 1;
    }
    if (target->cls->cursor != HCURSOR{})
        SetCursor(target->cls->cursor);
    else if (!target->is_child())
        SetCursor(LoadSystemCursor(IDC_ARROW));
    else
        return 0;
    return 1;
}

LRESULT system_command(Window& window, WPARAM wparam, LPARAM lparam) {
    const HWND hwnd = window.handle;
    switch (wparam & 0xFFF0) {
        case SC_CLOSE:
            return call(window, WM_CLOSE, 0, 0);
        case SC_MINIMIZE:
            ShowWindow(hwnd, SW_MINIMIZE);
            break;
        case SC_MAXIMIZE:
            ShowWindow(hwnd, SW_SHOWMAXIMIZED);
            break;
        case SC_RESTORE:
            ShowWindow(hwnd, SW_RESTORE);
            break;
        case SC_KEYMENU: {
            const auto open = menu_hooks().open_by_key;
            const HWND top = top_of(window).handle;
            if (open != nullptr) open(top, static_cast<char32_t>(lparam));
            break;
        }
        default:
            break;
    }
    return 0;
}

void context_menu_by_key(Window& window) {
    call(window, WM_CONTEXTMENU, static_cast<WPARAM>(window.handle), -1);
}

LRESULT key_down(Window& window, UINT message, WPARAM wparam, LPARAM lparam) {
    const bool alt = (lparam >> 29 & 1) != 0;
    if (wparam == VK_F10 && GetKeyState(VK_SHIFT) < 0) context_menu_by_key(window);
    if (wparam == VK_F1 && message == WM_KEYDOWN) {
        HELPINFO info{0, static_cast<std::int32_t>(window.id), window.handle,
                      state().input.pointer};
        return call(window, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
    }
    if (message == WM_SYSKEYDOWN && wparam == VK_F4 && alt) {
        Window& top = top_of(window);
        if ((top.style & WS_DISABLED) == 0) PostMessageA(top.handle, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
    return 0;
}

LRESULT key_up(Window& window, UINT message, WPARAM wparam) {
    Input& in = state().input;
    if (wparam == VK_APPS) context_menu_by_key(window);
    const bool opens = (wparam == VK_MENU && message == WM_SYSKEYUP && in.alt_alone) ||
                       (wparam == VK_F10 && in.f10_alone);
    if (!opens) return 0;
    in.alt_alone = in.f10_alone = false;
    set_keyboard_cues(true);
    return call(top_of(window), WM_SYSCOMMAND, SC_KEYMENU, 0);
}

LRESULT system_character(Window& window, WPARAM wparam, LPARAM lparam) {
    const bool alt = (lparam >> 29 & 1) != 0;
    if (!alt || wparam < 32) return 0;
    return call(top_of(window), WM_SYSCOMMAND, SC_KEYMENU, static_cast<LPARAM>(wparam));
}

// A window with bars of its own scrolls; others leave the wheel to their parents.
LRESULT wheel(Window& window, UINT message, WPARAM wparam, LPARAM lparam) {
    Pinned w(&window);
    const bool across = message == WM_MOUSEHWHEEL;
    const std::int32_t bar = across ? SB_HORZ : SB_VERT;
    const RECT area = window_bar_rect(*w, bar);
    if (area.empty() || scroll_of(*w, bar).values.idle()) {
        if (w->parent != nullptr) return call(*w->parent, message, wparam, lparam);
        return 0;
    }
    const std::int32_t notches = static_cast<std::int16_t>(HIWORD(wparam)) / WHEEL_DELTA;
    const bool back = across ? notches < 0 : notches > 0;
    const std::int32_t steps = std::min(std::abs(notches), 100) * wheel_scroll_lines();
    const UINT sent = across ? UINT{WM_HSCROLL} : UINT{WM_VSCROLL};
    for (std::int32_t i = 0; i < steps && w.alive(); ++i)
        call(*w, sent, static_cast<WPARAM>(back ? SB_LINEUP : SB_LINEDOWN), 0);
    if (w.alive()) call(*w, sent, SB_ENDSCROLL, 0);
    return 0;
}

LRESULT mouse_activate(Window& window, WPARAM wparam, LPARAM lparam) {
    constexpr LRESULT MA_ACTIVATE = 1;
    // A child with a caption comes up when it is touched.
    Pinned w(&window);
    if (has_caption_of_ours(*w)) BringWindowToTop(w->handle);
    if (!w.alive()) return MA_ACTIVATE;
    if (window.parent != nullptr) return call(*window.parent, WM_MOUSEACTIVATE, wparam, lparam);
    return MA_ACTIVATE;
}

// The focus goes back to where it was when the window was last active.
void activated(Window& window) {
    if (window.is_child() || (window.style & WS_MINIMIZE) != 0) return;
    Window* const last = find(window.top->last_focus);
    const bool still = last != nullptr && is_within(last, window) && is_visible(*last) &&
                       (last->style & WS_DISABLED) == 0;
    give_focus(still ? last : &window);
}

LRESULT frame_press(Window& window, WPARAM hit, LPARAM lparam, bool twice) {
    const POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    if (hit == HTVSCROLL)
        press_window_bar(window, SB_VERT, at);
    else if (hit == HTHSCROLL)
        press_window_bar(window, SB_HORZ, at);
    else if (hit == HTMENU && menu_hooks().bar_pressed != nullptr)
        menu_hooks().bar_pressed(window.handle, at);
    else
        press_own_frame(window, static_cast<LRESULT>(hit), at, twice);
    return 0;
}

LRESULT set_redraw(Window& window, bool on) {
    if (!on) {
        forget_updates(window);
        window.no_redraw = true;
    } else if (window.no_redraw) {
        window.no_redraw = false;
        invalidate_all(window);
    }
    return 0;
}

}  // namespace

LRESULT default_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam,
                          Encoding encoding) {
    Pinned window(hwnd);
    if (!window) return 0;
    switch (message) {
        case WM_NCCREATE:
        case WM_QUERYENDSESSION:
        case WM_NCACTIVATE:
            return 1;
        case WM_NCCALCSIZE: {
            RECT& rect = *reinterpret_cast<RECT*>(lparam);
            rect = moved(frame_client(*window, {rect.width(), rect.height()}), rect.left, rect.top);
            return 0;
        }
        case WM_SETTEXT:
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
            return default_text(*window, message, wparam, lparam, encoding);
        case WM_CLOSE:
            DestroyWindow(hwnd);
            return 0;
        case WM_ERASEBKGND:
            return erase_background(*window, HDC{static_cast<std::int32_t>(wparam)});
        case WM_PAINT: {
            PAINTSTRUCT paint;
            BeginPaint(hwnd, paint);
            EndPaint(hwnd, paint);
            return 0;
        }
        case WM_NCPAINT: {
            // Most controls are nothing but client area.
            if (window->client.width() == window->rect.width() &&
                window->client.height() == window->rect.height())
                return 0;
            const HDC dc = frame_context(*window);
            paint_frame(*window, dc);
            ReleaseDC(hwnd, dc);
            return 0;
        }
        case WM_NCHITTEST:
            return hit_frame(*window, {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)});
        case WM_CTLCOLORMSGBOX:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSCROLLBAR:
        case WM_CTLCOLORSTATIC:
            return control_colour(message, HDC{static_cast<std::int32_t>(wparam)});
        case WM_SETCURSOR:
            return set_cursor(*window, wparam, lparam);
        case WM_SYSCOMMAND:
            return system_command(*window, wparam, lparam);
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return key_down(*window, message, wparam, lparam);
        case WM_KEYUP:
        case WM_SYSKEYUP:
            return key_up(*window, message, wparam);
        case WM_SYSCHAR:
            return system_character(*window, wparam, lparam);
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
            return wheel(*window, message, wparam, lparam);
        case WM_MOUSEACTIVATE:
            return mouse_activate(*window, wparam, lparam);
        case WM_ACTIVATE:
            if (LOWORD(wparam) != WA_INACTIVE) activated(*window);
            return 0;
        case WM_NCLBUTTONDOWN:
        case WM_NCLBUTTONDBLCLK:
            return frame_press(*window, wparam, lparam, message == WM_NCLBUTTONDBLCLK);
        case WM_RBUTTONUP: {
            POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            ClientToScreen(hwnd, at);
            call(*window, WM_CONTEXTMENU, static_cast<WPARAM>(hwnd), MAKELPARAM(at.x, at.y));
            return 0;
        }
        case WM_CONTEXTMENU:
        case WM_HELP:
            if (window->parent != nullptr) call(*window->parent, message, wparam, lparam);
            return 0;
        case WM_CANCELMODE:
            if (GetCapture() == hwnd) ReleaseCapture();
            return 0;
        case WM_ENABLE:
            invalidate(*window, {0, 0, 0x7FFF, 0x7FFF}, true);
            return 0;
        case WM_SETREDRAW:
            return set_redraw(*window, wparam != 0);
        case WM_UNICHAR:
            return 0;
        default:
            return 0;
    }
}

LRESULT DefWindowProcA(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return default_procedure(hwnd, message, wparam, lparam, Encoding::page);
}

LRESULT DefWindowProcW(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return default_procedure(hwnd, message, wparam, lparam, Encoding::wide);
}

}  // namespace tarn::platform
