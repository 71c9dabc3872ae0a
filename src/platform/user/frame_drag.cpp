// Frames that we draw ourselves, at work: a child's caption is dragged, its buttons are pressed,
// sizable borders are pulled. The pointer is captured meanwhile and the program goes on.
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

constexpr std::int32_t corner = 12;  // how far along a border its corner reaches
constexpr std::int32_t button_breadth = 34;
constexpr SIZE smallest{112, 34};

std::int32_t caption_height() {
    return GetSystemMetrics(SM_CYCAPTION);
}

POINT window_point(const Window& window, POINT screen) {
    const POINT origin = client_origin_on_screen(window);
    return {screen.x - origin.x + window.client.left, screen.y - origin.y + window.client.top};
}

bool sizable(const Window& window) {
    return (window.style & WS_THICKFRAME) != 0 && border_width(window) > 0 &&
           (window.style & (WS_MAXIMIZE | WS_MINIMIZE)) == 0;
}

bool moves(LRESULT hit) {
    return hit == HTCAPTION || (hit >= HTLEFT && hit <= HTBOTTOMRIGHT);
}

RECT pulled(const FrameDrag& drag, std::int32_t dx, std::int32_t dy, SIZE least) {
    RECT r = drag.start;
    const LRESULT hit = drag.hit;
    if (hit == HTCAPTION) return moved(r, dx, dy);
    const bool left = hit == HTLEFT || hit == HTTOPLEFT || hit == HTBOTTOMLEFT;
    const bool right = hit == HTRIGHT || hit == HTTOPRIGHT || hit == HTBOTTOMRIGHT;
    const bool top = hit == HTTOP || hit == HTTOPLEFT || hit == HTTOPRIGHT;
    const bool bottom = hit == HTBOTTOM || hit == HTBOTTOMLEFT || hit == HTBOTTOMRIGHT;
    if (left) r.left = std::min(r.left + dx, r.right - least.cx);
    if (right) r.right = std::max(r.right + dx, r.left + least.cx);
    if (top) r.top = std::min(r.top + dy, r.bottom - least.cy);
    if (bottom) r.bottom = std::max(r.bottom + dy, r.top + least.cy);
    return r;
}

SIZE least_size(Window& window) {
    MINMAXINFO info{};
    info.ptMinTrackSize = {smallest.cx, smallest.cy};
    info.ptMaxTrackSize = {0x7FFF, 0x7FFF};
    call(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
    return {std::max(info.ptMinTrackSize.x, 1), std::max(info.ptMinTrackSize.y, 1)};
}

WPARAM command_of(const Window& window, LRESULT hit) {
    const bool max = (window.style & WS_MAXIMIZE) != 0;
    const bool min = (window.style & WS_MINIMIZE) != 0;
    switch (hit) {
        case HTCLOSE:
            return SC_CLOSE;
        case HTMINBUTTON:
            return min ? SC_RESTORE : SC_MINIMIZE;
        case HTMAXBUTTON:
            return max && !min ? SC_RESTORE : SC_MAXIMIZE;
        default:
            return 0;
    }
}

}  // namespace

CaptionButtons caption_buttons(const Window& window) {
    CaptionButtons all;
    if (!has_caption_of_ours(window)) return all;
    const std::int32_t b = border_width(window);
    std::int32_t right = window.rect.width() - b;
    const auto take = [&] {
        const RECT r{right - button_breadth, b, right, b + caption_height()};
        right = r.left;
        return r;
    };
    if ((window.style & WS_SYSMENU) != 0) all.close = take();
    if ((window.style & WS_MAXIMIZEBOX) != 0) all.maximize = take();
    if ((window.style & WS_MINIMIZEBOX) != 0) all.minimize = take();
    return all;
}

// Of the border and the caption; HTNOWHERE when the point is in neither.
LRESULT hit_own_frame(const Window& window, POINT at) {
    const std::int32_t width = window.rect.width();
    const std::int32_t height = window.rect.height();
    const std::int32_t b = border_width(window);
    if (sizable(window)) {
        const bool near_left = at.x < corner;
        const bool near_right = at.x >= width - corner;
        const bool near_top = at.y < corner;
        const bool near_bottom = at.y >= height - corner;
        if (at.y < b) return near_left ? HTTOPLEFT : near_right ? HTTOPRIGHT : HTTOP;
        if (at.y >= height - b)
            return near_left ? HTBOTTOMLEFT : near_right ? HTBOTTOMRIGHT : HTBOTTOM;
        if (at.x < b) return near_top ? HTTOPLEFT : near_bottom ? HTBOTTOMLEFT : HTLEFT;
        if (at.x >= width - b) return near_top ? HTTOPRIGHT : near_bottom ? HTBOTTOMRIGHT : HTRIGHT;
    }
    if (!has_caption_of_ours(window)) return HTNOWHERE;
    const CaptionButtons buttons = caption_buttons(window);
    if (buttons.close.contains(at)) return HTCLOSE;
    if (buttons.maximize.contains(at)) return HTMAXBUTTON;
    if (buttons.minimize.contains(at)) return HTMINBUTTON;
    return RECT{b, b, width - b, b + caption_height()}.contains(at) ? HTCAPTION : HTNOWHERE;
}

HCURSOR border_cursor(LRESULT hit) {
    switch (hit) {
        case HTLEFT:
        case HTRIGHT:
            return LoadSystemCursor(IDC_SIZEWE);
        case HTTOP:
        case HTBOTTOM:
            return LoadSystemCursor(IDC_SIZENS);
        case HTTOPLEFT:
        case HTBOTTOMRIGHT:
            return LoadSystemCursor(IDC_SIZENWSE);
        case HTTOPRIGHT:
        case HTBOTTOMLEFT:
            return LoadSystemCursor(IDC_SIZENESW);
        default:
            return LoadSystemCursor(IDC_ARROW);
    }
}

void press_own_frame(Window& window, LRESULT hit, POINT screen, bool twice) {
    FrameDrag& drag = state().input.frame_drag;
    Pinned w(&window);
    if ((w->style & WS_DISABLED) != 0) return;
    if (hit == HTCAPTION && twice && (w->style & WS_MAXIMIZEBOX) != 0) {
        call(*w, WM_SYSCOMMAND, command_of(*w, HTMAXBUTTON), 0);
        return;
    }
    const bool button = hit == HTCLOSE || hit == HTMINBUTTON || hit == HTMAXBUTTON;
    if (!button && (!moves(hit) || (w->style & WS_MAXIMIZE) != 0)) return;
    SetCapture(w->handle);
    if (!w.alive() || GetCapture() != w->handle) return;
    drag = {w->handle, hit, w->rect, screen, true};
    if (button) invalidate_frame(*w);
}

void follow_own_frame(POINT screen, UINT message) {
    FrameDrag& drag = state().input.frame_drag;
    Pinned w(drag.hwnd);
    if (!w) {
        drag = {};
        return;
    }
    const LRESULT hit = drag.hit;
    const bool over = hit_own_frame(*w, window_point(*w, screen)) == hit;
    if (message == WM_LBUTTONUP) {
        ReleaseCapture();  // which ends it
        if (w.alive() && over && command_of(*w, hit) != 0)
            PostMessageA(w->handle, WM_SYSCOMMAND, command_of(*w, hit), 0);
        return;
    }
    if (message != WM_MOUSEMOVE) return;
    if (!moves(hit)) {
        if (over != drag.over) invalidate_frame(*w);
        drag.over = over;
        return;
    }
    const SIZE least = least_size(*w);
    if (!w.alive() || drag.hwnd != w->handle) return;
    const RECT r = pulled(drag, screen.x - drag.from.x, screen.y - drag.from.y, least);
    if (r != w->rect)
        SetWindowPos(w->handle, HWND{}, r.left, r.top, r.width(), r.height(),
                     SWP_NOZORDER | SWP_NOACTIVATE);
}

void end_own_frame() {
    FrameDrag& drag = state().input.frame_drag;
    if (Window* const window = find(drag.hwnd)) invalidate_frame(*window);
    drag = {};
}

void hover_own_frame(Window* window, LRESULT hit) {
    Input& in = state().input;
    const bool button = hit == HTCLOSE || hit == HTMINBUTTON || hit == HTMAXBUTTON;
    const HWND hwnd = window != nullptr && button ? window->handle : HWND{};
    if (in.caption_hover == hwnd && in.caption_hit == hit) return;
    if (Window* const old = find(in.caption_hover)) invalidate_frame(*old);
    in.caption_hover = hwnd;
    in.caption_hit = hit;
    if (hwnd != HWND{}) invalidate_frame(*window);
}

}  // namespace tarn::platform
