// The scroll bars in the frames of windows.
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

constexpr std::uintptr_t repeat_timer = 2;

DWORD style_of(std::int32_t bar) {
    return bar == SB_HORZ ? DWORD{WS_HSCROLL} : DWORD{WS_VSCROLL};
}

bool valid_bar(std::int32_t bar) {
    return bar == SB_HORZ || bar == SB_VERT;
}

RECT bar_on_screen(const Window& window, std::int32_t bar) {
    const RECT r = window_bar_rect(window, bar);
    const POINT client = client_origin_on_screen(window);
    return moved(r, client.x - window.client.left, client.y - window.client.top);
}

void redraw_bar(Window& window, std::int32_t bar) {
    if (!window_bar_rect(window, bar).empty()) invalidate_frame(window);
}

// A bar comes and goes with the need for it; the client area makes room.
void show_bar(Window& window, std::int32_t bar, bool show) {
    if (((window.style & style_of(bar)) != 0) == show) return;
    if (show)
        window.style |= style_of(bar);
    else
        window.style &= ~style_of(bar);
    set_window_rect(window, window.rect, SWP_FRAMECHANGED, false);
}

void notify_bar(HWND owner, std::int32_t code, std::int32_t position) {
    const UINT message = state().input.scroll_bar == SB_HORZ ? WM_HSCROLL : WM_VSCROLL;
    call(owner, message, MAKEWPARAM(code, position), 0);
}

void repeat(HWND hwnd, UINT, std::uintptr_t, DWORD) {
    Input& in = state().input;
    Pinned w(hwnd);
    if (!w || in.scroll_window != hwnd || !in.scroll.active()) return;
    in.scroll.repeat(bar_on_screen(*w, in.scroll_bar), scroll_of(*w, in.scroll_bar).values);
    if (w.alive() && in.scroll.active())
        start_timer(hwnd, repeat_timer, in.scroll.interval(), repeat, true);
}

}  // namespace

WindowScroll& scroll_of(Window& window, std::int32_t bar) {
    auto& scroll = window.bars[bar == SB_HORZ ? 0 : 1];
    if (!scroll) scroll = std::make_unique<WindowScroll>();
    return *scroll;
}

ScrollLook window_bar_look(const Window& window, std::int32_t bar) {
    const Input& in = state().input;
    ScrollLook look;
    look.vertical = bar == SB_VERT;
    look.enabled = (window.style & WS_DISABLED) == 0;
    if (in.bar_hover_window == window.handle && in.bar_hover == bar) look.hover = in.bar_hover_part;
    if (in.scroll_window == window.handle && in.scroll_bar == bar)
        look.pressed = in.scroll.pressed();
    return look;
}

void press_window_bar(Window& window, std::int32_t bar, POINT screen) {
    Input& in = state().input;
    Pinned w(&window);
    WindowScroll& scroll = scroll_of(*w, bar);
    if (scroll.disabled || (w->style & WS_DISABLED) != 0) return;
    const RECT area = bar_on_screen(*w, bar);
    if (scroll_hit(scroll_layout(area, bar == SB_VERT, scroll.values), bar == SB_VERT, screen) ==
        ScrollPart::none)
        return;
    SetCapture(w->handle);
    if (!w.alive()) return;
    in.scroll_window = w->handle;
    in.scroll_bar = bar;
    if (!in.scroll.press(w->handle, area, bar == SB_VERT, scroll.values, screen, notify_bar)) {
        in.scroll_window = HWND{};
        ReleaseCapture();
        return;
    }
    if (!w.alive()) return;
    redraw_bar(*w, bar);
    if (in.scroll.repeats() && in.scroll_window == w->handle)
        start_timer(w->handle, repeat_timer, in.scroll.interval(), repeat, true);
}

bool follow_window_bar(POINT screen, UINT message) {
    Input& in = state().input;
    Pinned w(in.scroll_window);
    if (!w) return false;
    if (message == WM_MOUSEMOVE) {
        in.scroll.move(bar_on_screen(*w, in.scroll_bar), scroll_of(*w, in.scroll_bar).values,
                       screen);
        if (w.alive()) redraw_bar(*w, in.scroll_bar);
    } else if (message == WM_LBUTTONUP) {
        ReleaseCapture();  // which ends it
        if (w.alive()) hover_window_bar(w.get(), in.scroll_bar, screen);
    }
    return true;
}

void end_window_bar() {
    Input& in = state().input;
    Pinned w(in.scroll_window);
    const std::int32_t bar = in.scroll_bar;
    if (!w) {
        in.scroll.forget();
        return;
    }
    stop_timer(w->handle, repeat_timer, true);
    in.scroll.release(scroll_of(*w, bar).values);
    in.scroll_window = HWND{};
    if (w.alive()) redraw_bar(*w, bar);
}

void hover_window_bar(Window* window, std::int32_t bar, POINT screen) {
    Input& in = state().input;
    ScrollPart part = ScrollPart::none;
    if (window != nullptr) {
        const RECT area = bar_on_screen(*window, bar);
        if (area.contains(screen))
            part = scroll_hit(scroll_layout(area, bar == SB_VERT, scroll_of(*window, bar).values),
                              bar == SB_VERT, screen);
    }
    const HWND hwnd = part != ScrollPart::none ? window->handle : HWND{};
    if (in.bar_hover_window == hwnd && in.bar_hover == bar && in.bar_hover_part == part) return;
    if (Window* const old = find(in.bar_hover_window)) redraw_bar(*old, in.bar_hover);
    in.bar_hover_window = hwnd;
    in.bar_hover = bar;
    in.bar_hover_part = part;
    if (hwnd != HWND{}) redraw_bar(*window, bar);
}

// ---- Set and get -------------------------------------------------------------------------------
std::int32_t SetScrollInfo(HWND hwnd, std::int32_t bar, const SCROLLINFO& info, bool redraw) {
    if (bar == SB_CTL)
        return static_cast<std::int32_t>(
            call(hwnd, SBM_SETSCROLLINFO, redraw ? 1 : 0, reinterpret_cast<LPARAM>(&info)));
    Pinned w(hwnd);
    if (!w || !valid_bar(bar)) return 0;
    WindowScroll& scroll = scroll_of(*w, bar);
    const bool changed = scroll.values.set(info);
    if ((info.fMask & (SIF_RANGE | SIF_PAGE)) != 0) {
        const bool keep = (info.fMask & SIF_DISABLENOSCROLL) != 0;
        const bool idle = scroll.values.idle();
        const bool was_disabled = scroll.disabled;
        scroll.disabled = keep && idle;
        const std::int32_t position = scroll.values.position;
        show_bar(*w, bar, keep || !idle);
        if (!w.alive()) return position;
        if (was_disabled != scroll.disabled) redraw_bar(*w, bar);
    }
    if (changed && redraw) redraw_bar(*w, bar);
    return scroll.values.position;
}

bool GetScrollInfo(HWND hwnd, std::int32_t bar, SCROLLINFO& info) {
    if (bar == SB_CTL)
        return call(hwnd, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info)) != 0;
    Window* const window = find(hwnd);
    if (window == nullptr || !valid_bar(bar)) return false;
    const ScrollValues& values = scroll_of(*window, bar).values;
    const Input& in = state().input;
    const bool dragged =
        in.scroll_window == hwnd && in.scroll_bar == bar && in.scroll.part() == ScrollPart::thumb;
    values.get(info);
    if ((info.fMask & SIF_TRACKPOS) != 0 && !dragged) info.nTrackPos = values.position;
    return true;
}

std::int32_t SetScrollPos(HWND hwnd, std::int32_t bar, std::int32_t position, bool redraw) {
    const std::int32_t old = GetScrollPos(hwnd, bar);
    SetScrollInfo(hwnd, bar, {.fMask = SIF_POS, .nPos = position}, redraw);
    return old;
}

std::int32_t GetScrollPos(HWND hwnd, std::int32_t bar) {
    SCROLLINFO info{.fMask = SIF_POS};
    GetScrollInfo(hwnd, bar, info);
    return info.nPos;
}

bool SetScrollRange(HWND hwnd, std::int32_t bar, std::int32_t low, std::int32_t high, bool redraw) {
    if (find(hwnd) == nullptr) return false;
    SetScrollInfo(hwnd, bar, {.fMask = SIF_RANGE, .nMin = low, .nMax = high}, redraw);
    return true;
}

bool ShowScrollBar(HWND hwnd, std::int32_t bar, bool show) {
    Pinned w(hwnd);
    if (!w) return false;
    if (bar == SB_CTL) {
        ShowWindow(hwnd, show ? SW_SHOW : SW_HIDE);
        return true;
    }
    if (bar == SB_HORZ || bar == SB_BOTH) show_bar(*w, SB_HORZ, show);
    if (w.alive() && (bar == SB_VERT || bar == SB_BOTH)) show_bar(*w, SB_VERT, show);
    return true;
}

}  // namespace tarn::platform
