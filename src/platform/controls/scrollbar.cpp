// "scrollbar": a scroll bar that is a window of its own. It looks and moves like those of windows.
#include "platform/controls/look.h"
#include "platform/user/scroll_bar.h"

namespace tarn::platform {
namespace {

constexpr std::uintptr_t repeat_timer = 1;

struct ScrollBar : Control {
    ScrollValues values;
    ScrollTracker tracker;
    ScrollPart hover = ScrollPart::none;
    bool unusable = false;  // everything is in view, and it was asked to say so

    bool vertical() const { return has(SBS_VERT); }
    bool usable() const { return enabled() && !unusable && !values.idle(); }
    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT set_info(const SCROLLINFO& info, bool redraw);
    LRESULT handle_mouse(UINT message, POINT at);
    bool key(WPARAM code);
    void set_hover(ScrollPart part);
    void keep_timer();
    void paint();
};

void send_scroll(HWND hwnd, std::int32_t code, std::int32_t position) {
    const bool vertical = (GetWindowLong(hwnd, GWL_STYLE) & SBS_VERT) != 0;
    send_message(GetParent(hwnd), vertical ? WM_VSCROLL : WM_HSCROLL, MAKEWPARAM(code, position),
                 hwnd);
}

LRESULT ScrollBar::set_info(const SCROLLINFO& info, bool redraw) {
    if (values.set(info) && redraw) repaint();
    unusable = (info.fMask & SIF_DISABLENOSCROLL) != 0 && values.idle();
    return values.position;
}

void ScrollBar::set_hover(ScrollPart part) {
    if (hover == part) return;
    hover = part;
    repaint();
}

void ScrollBar::keep_timer() {
    if (tracker.repeats()) {
        SetTimer(hwnd, repeat_timer, tracker.interval(), nullptr);
    } else {
        KillTimer(hwnd, repeat_timer);
    }
}

LRESULT ScrollBar::handle_mouse(UINT message, POINT at) {
    const RECT bar = client();
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (!usable()) return 0;
            if (has(WS_TABSTOP)) SetFocus(hwnd);
            if (dead) return 0;
            SetCapture(hwnd);
            if (!tracker.press(hwnd, bar, vertical(), values, at, send_scroll)) {
                ReleaseCapture();
                return 0;
            }
            break;
        case WM_MOUSEMOVE:
            if (tracker.active()) {
                tracker.move(bar, values, at);
            } else {
                set_hover(scroll_hit(scroll_layout(bar, vertical(), values), vertical(), at));
                return 0;
            }
            break;
        default:
            if (!tracker.active()) return 0;
            tracker.release(values);
            if (!dead && GetCapture() == hwnd) ReleaseCapture();
            break;
    }
    if (dead) return 0;
    keep_timer();
    repaint();
    return 0;
}

bool ScrollBar::key(WPARAM code) {
    std::int32_t step = -1;
    switch (code) {
        case VK_UP:
        case VK_LEFT:
            step = SB_LINEUP;
            break;
        case VK_DOWN:
        case VK_RIGHT:
            step = SB_LINEDOWN;
            break;
        case VK_PRIOR:
            step = SB_PAGEUP;
            break;
        case VK_NEXT:
            step = SB_PAGEDOWN;
            break;
        case VK_HOME:
            step = SB_TOP;
            break;
        case VK_END:
            step = SB_BOTTOM;
            break;
        default:
            return false;
    }
    if (!usable()) return true;
    send_scroll(hwnd, step, 0);
    if (!dead) send_scroll(hwnd, SB_ENDSCROLL, 0);
    return true;
}

void ScrollBar::paint() {
    const Paint painting{*this};
    const RECT bar = client();
    ScrollLook look;
    look.vertical = vertical();
    look.enabled = usable();
    look.hover = hover;
    look.pressed = tracker.pressed();
    draw_scroll_bar(painting.dc(), bar, values, look);
    if (focused && keyboard_focus_visible()) draw_focus_ring(painting.dc(), bar, 2);
}

LRESULT ScrollBar::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        case SBM_SETSCROLLINFO:
            if (lparam == 0) return 0;
            return set_info(*reinterpret_cast<const SCROLLINFO*>(lparam), wparam != 0);
        case SBM_GETSCROLLINFO:
            if (lparam == 0) return 0;
            values.get(*reinterpret_cast<SCROLLINFO*>(lparam));
            return 1;
        case SBM_SETPOS: {
            const std::int32_t was = values.position;
            SCROLLINFO info;
            info.fMask = SIF_POS;
            info.nPos = static_cast<std::int32_t>(wparam);
            set_info(info, lparam != 0);
            return was;
        }
        case SBM_GETPOS:
            return values.position;
        case SBM_SETRANGE:
        case SBM_SETRANGEREDRAW: {
            SCROLLINFO info;
            info.fMask = SIF_RANGE;
            info.nMin = static_cast<std::int32_t>(wparam);
            info.nMax = static_cast<std::int32_t>(lparam);
            return set_info(info, message == SBM_SETRANGEREDRAW);
        }
        case SBM_GETRANGE:
            if (wparam != 0) *reinterpret_cast<std::int32_t*>(wparam) = values.low;
            if (lparam != 0) *reinterpret_cast<std::int32_t*>(lparam) = values.high;
            return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
            return handle_mouse(message, {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)});
        case WM_MOUSELEAVE:
            if (!tracker.active()) set_hover(ScrollPart::none);
            return 0;
        case WM_TIMER:
            if (wparam != repeat_timer || !tracker.repeats()) break;
            tracker.repeat(client(), values);
            if (dead) return 0;
            keep_timer();
            repaint();
            return 0;
        case WM_CAPTURECHANGED:
            if (tracker.active()) tracker.release(values);
            if (dead) return 0;
            KillTimer(hwnd, repeat_timer);
            repaint();
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            focused = message == WM_SETFOCUS;
            repaint();
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            if (key(wparam)) return 0;
            break;
        case WM_ENABLE:
        case WM_SIZE:
        case WM_SYSCOLORCHANGE:
            repaint();
            return 0;
        case WM_DESTROY:
            KillTimer(hwnd, repeat_timer);
            break;
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wparam, lparam);
}

}  // namespace

LRESULT scrollbar_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return control_procedure<ScrollBar>(hwnd, message, wparam, lparam);
}

}  // namespace tarn::platform
