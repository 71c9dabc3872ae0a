// The pointer: which window is under it, and the messages made of its events.
#include <cstdlib>

#include "platform/user/state.h"

namespace tarn::platform {

namespace {

constexpr DWORD double_click_ms = 500;
constexpr std::int32_t double_click_distance = 4;
constexpr LRESULT MA_NOACTIVATE = 3, MA_NOACTIVATEANDEAT = 4, MA_ACTIVATEANDEAT = 2;

struct Hit {
    HWND hwnd{};
    LRESULT code = HTNOWHERE;
};

// Windows that hold the point, the innermost first. Disabled children let it through to what lies
// below them.
void collect(const Window& window, POINT in_parent, std::vector<HWND>& found) {
    if ((window.style & WS_VISIBLE) == 0 || !window.rect.contains(in_parent)) return;
    if (window.is_child() && (window.style & WS_DISABLED) != 0) return;
    const POINT p{in_parent.x - window.rect.left - window.client.left,
                  in_parent.y - window.rect.top - window.client.top};
    if (RECT{0, 0, window.client.width(), window.client.height()}.contains(p))
        for (const Window* c = window.first_child; c != nullptr; c = c->below)
            collect(*c, p, found);
    found.push_back(window.handle);
}

Hit hit_test(const Window& top, POINT screen) {
    std::vector<HWND> candidates;
    collect(top, screen, candidates);
    for (const HWND hwnd : candidates) {
        if (find(hwnd) == nullptr) continue;
        const LRESULT code = call(hwnd, WM_NCHITTEST, 0, MAKELPARAM(screen.x, screen.y));
        if (code != HTTRANSPARENT && find(hwnd) != nullptr) return {hwnd, code};
    }
    return {};
}

WPARAM key_flags(std::uint32_t modifiers) {
    WPARAM flags = 0;
    if ((modifiers & mod_left) != 0) flags |= MK_LBUTTON;
    if ((modifiers & mod_right) != 0) flags |= MK_RBUTTON;
    if ((modifiers & mod_middle) != 0) flags |= MK_MBUTTON;
    if ((modifiers & mod_shift) != 0) flags |= MK_SHIFT;
    if ((modifiers & mod_control) != 0) flags |= MK_CONTROL;
    return flags;
}

void note_modifiers(const Event& event) {
    Input& in = state().input;
    in.modifiers = event.modifiers;
    const auto set = [&](std::int32_t key, bool down) {
        in.keys[key] = static_cast<std::uint8_t>((in.keys[key] & 1) | (down ? 0x80 : 0));
    };
    set(VK_LBUTTON, (event.modifiers & mod_left) != 0);
    set(VK_RBUTTON, (event.modifiers & mod_right) != 0);
    set(VK_MBUTTON, (event.modifiers & mod_middle) != 0);
    set(VK_SHIFT, (event.modifiers & mod_shift) != 0);
    set(VK_CONTROL, (event.modifiers & mod_control) != 0);
}

void set_hover(HWND hwnd) {
    Input& in = state().input;
    if (in.hover == hwnd) return;
    const HWND old = in.hover;
    in.hover = hwnd;
    if (find(old) != nullptr) queue_input(old, WM_MOUSELEAVE, 0, 0);
}

void hover_menu_bar(HWND hwnd, POINT screen) {
    Input& in = state().input;
    const auto hook = menu_hooks().bar_hover;
    if (hook == nullptr || (in.menu_hover == HWND{} && hwnd == HWND{})) return;
    if (in.menu_hover != hwnd && find(in.menu_hover) != nullptr) hook(in.menu_hover, {-1, -1});
    in.menu_hover = hwnd;
    if (hwnd != HWND{}) hook(hwnd, screen);
}

void hover_frame(const Hit& hit, POINT screen) {
    Window* const window = find(hit.hwnd);
    const bool bar = hit.code == HTVSCROLL || hit.code == HTHSCROLL;
    hover_window_bar(bar ? window : nullptr, hit.code == HTHSCROLL ? SB_HORZ : SB_VERT, screen);
    hover_own_frame(window, hit.code);
    hover_menu_bar(hit.code == HTMENU ? hit.hwnd : HWND{}, screen);
}

UINT button_message(std::int32_t button, bool down) {
    switch (button) {
        case 1:
            return down ? WM_LBUTTONDOWN : WM_LBUTTONUP;
        case 2:
            return down ? WM_MBUTTONDOWN : WM_MBUTTONUP;
        case 3:
            return down ? WM_RBUTTONDOWN : WM_RBUTTONUP;
        default:
            return 0;  // back and forward: nobody asks for them
    }
}

constexpr UINT to_frame = WM_LBUTTONDOWN - WM_NCLBUTTONDOWN;  // from a message to its frame form
constexpr UINT to_double = WM_LBUTTONDBLCLK - WM_LBUTTONDOWN;

bool second_click(HWND hwnd, std::int32_t button, POINT at, DWORD time) {
    Input& in = state().input;
    const bool second = in.click_window == hwnd && in.click_button == button &&
                        time - in.click_time <= double_click_ms &&
                        std::abs(at.x - in.click_at.x) <= double_click_distance &&
                        std::abs(at.y - in.click_at.y) <= double_click_distance;
    in.click_window = second ? HWND{} : hwnd;
    in.click_button = button;
    in.click_at = at;
    in.click_time = time;
    return second;
}

// False: the press is eaten.
bool activate_by_press(HWND hwnd, LRESULT code, UINT message) {
    Pinned window(hwnd);
    Pinned top(&top_of(*window));
    const LRESULT answer =
        call(*window, WM_MOUSEACTIVATE, static_cast<WPARAM>(top->handle),
             MAKELPARAM(static_cast<std::int32_t>(code), static_cast<std::int32_t>(message)));
    if (top.alive() && top->handle != state().input.active && answer != MA_NOACTIVATE &&
        answer != MA_NOACTIVATEANDEAT && (top->ex_style & WS_EX_NOACTIVATE) == 0)
        activate(top.get(), WA_CLICKACTIVE);
    return window.alive() && answer != MA_NOACTIVATEANDEAT && answer != MA_ACTIVATEANDEAT;
}

void send_set_cursor(const Hit& hit, UINT message) {
    call(hit.hwnd, WM_SETCURSOR, static_cast<WPARAM>(hit.hwnd),
         MAKELPARAM(static_cast<std::int32_t>(hit.code), static_cast<std::int32_t>(message)));
}

// A press on a disabled window: what disabled it comes up.
bool blocked(Window& top, const Event& event) {
    if ((top.style & WS_DISABLED) == 0) return false;
    set_hover(HWND{});
    if (event.kind == Event::Kind::button_down)
        raise_modal_of(top);
    else
        SetCursor(LoadSystemCursor(IDC_ARROW));
    return true;
}

void take_wheel(const Event& event, POINT screen) {
    Pinned top(HWND{event.window});
    if ((top->style & WS_DISABLED) != 0) return;
    const Hit hit = hit_test(*top, screen);
    HWND target = hit.hwnd;
    Input& in = state().input;
    if (find(in.capture) != nullptr) target = in.capture;
    if (find(target) == nullptr) return;
    std::int32_t& rest = in.wheel_rest[event.horizontal ? 1 : 0];
    // Turning back, or over another window, begins anew.
    if (in.wheel_window != target) in.wheel_rest[0] = in.wheel_rest[1] = 0;
    in.wheel_window = target;
    if ((rest < 0) != (event.delta < 0)) rest = 0;
    rest += std::clamp(event.delta, -100 * WHEEL_DELTA, 100 * WHEEL_DELTA);
    const std::int32_t whole = rest / WHEEL_DELTA * WHEEL_DELTA;
    if (whole == 0) return;
    rest -= whole;
    const std::int32_t delta = event.horizontal ? -whole : whole;  // the platform's right is up
    queue_input(target, event.horizontal ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL,
                MAKEWPARAM(static_cast<std::int32_t>(key_flags(event.modifiers)), delta),
                MAKELPARAM(screen.x, screen.y));
}

void queue_client(HWND hwnd, UINT message, WPARAM wparam, POINT screen) {
    ScreenToClient(hwnd, screen);
    queue_input(hwnd, message, wparam, MAKELPARAM(screen.x, screen.y));
}

void take_captured(const Event& event, POINT screen) {
    Input& in = state().input;
    const bool press = event.kind == Event::Kind::button_down;
    const UINT message = event.kind == Event::Kind::pointer_move
                             ? UINT{WM_MOUSEMOVE}
                             : button_message(event.button, press);
    if (message == 0) return;
    if (in.scroll.active()) {
        follow_window_bar(screen, message);
        return;
    }
    if (in.frame_drag.hwnd != HWND{}) return follow_own_frame(screen, message);
    const Window* const window = find(in.capture);
    UINT sent = message;
    if (press && second_click(in.capture, event.button, screen, event.time) &&
        (window->cls->style & CS_DBLCLKS) != 0)
        sent += to_double;
    queue_client(in.capture, sent, key_flags(event.modifiers), screen);
}

void take_move(const Hit& hit, const Event& event, POINT screen) {
    hover_frame(hit, screen);
    set_hover(hit.code == HTCLIENT ? hit.hwnd : HWND{});
    if (find(hit.hwnd) == nullptr) return;
    send_set_cursor(hit, WM_MOUSEMOVE);
    if (find(hit.hwnd) == nullptr) return;
    if (hit.code == HTCLIENT)
        queue_client(hit.hwnd, WM_MOUSEMOVE, key_flags(event.modifiers), screen);
    else
        queue_input(hit.hwnd, WM_NCMOUSEMOVE, static_cast<WPARAM>(hit.code),
                    MAKELPARAM(screen.x, screen.y));
}

void take_button(const Hit& hit, const Event& event, POINT screen) {
    const bool press = event.kind == Event::Kind::button_down;
    UINT message = button_message(event.button, press);
    if (message == 0 || find(hit.hwnd) == nullptr) return;
    if (press) {
        if (!activate_by_press(hit.hwnd, hit.code, message)) return;
        send_set_cursor(hit, message);
    }
    const Window* const window = find(hit.hwnd);
    if (window == nullptr) return;
    const bool in_client = hit.code == HTCLIENT;
    if (press && second_click(hit.hwnd, event.button, screen, event.time) &&
        (!in_client || (window->cls->style & CS_DBLCLKS) != 0))
        message += to_double;
    if (in_client)
        queue_client(hit.hwnd, message, key_flags(event.modifiers), screen);
    else
        queue_input(hit.hwnd, message - to_frame, static_cast<WPARAM>(hit.code),
                    MAKELPARAM(screen.x, screen.y));
}

}  // namespace

void take_pointer_event(const Event& event) {
    using Kind = Event::Kind;
    Input& in = state().input;
    Pinned top(HWND{event.window});
    if (event.kind == Kind::pointer_leave) {
        if (find(in.capture) != nullptr) return;
        set_hover(HWND{});
        hover_frame({}, {});
        return;
    }
    const RECT area = surface_rect(*top);
    const POINT screen{area.left + event.point.x, area.top + event.point.y};
    in.pointer = screen;
    in.pointer_known = true;
    note_modifiers(event);
    if (event.kind == Kind::wheel) return take_wheel(event, screen);
    if (event.kind == Kind::button_down) {
        in.alt_alone = in.f10_alone = false;
        set_keyboard_cues(false);
    }
    if (find(in.capture) != nullptr) return take_captured(event, screen);
    if (blocked(*top, event)) return;
    const Hit hit = hit_test(*top, screen);
    if (event.kind == Kind::pointer_move)
        take_move(hit, event, screen);
    else
        take_button(hit, event, screen);
}

// ---- Capture -----------------------------------------------------------------------------------
namespace {

void change_capture(HWND hwnd) {
    Input& in = state().input;
    const HWND old = in.capture;
    if (old == hwnd) return;
    in.capture = hwnd;
    if (in.scroll.active() && in.scroll_window != hwnd) end_window_bar();
    if (in.frame_drag.hwnd != HWND{} && in.frame_drag.hwnd != hwnd) end_own_frame();
    Window* const window = find(hwnd);
    if (display_open()) display().grab_pointer(window != nullptr ? display_id(top_of(*window)) : 0);
    if (find(old) != nullptr) call(old, WM_CAPTURECHANGED, 0, static_cast<LPARAM>(hwnd));
}

}  // namespace

HWND SetCapture(HWND hwnd) {
    const HWND old = state().input.capture;
    if (find(hwnd) != nullptr) change_capture(hwnd);
    return old;
}

bool ReleaseCapture() {
    change_capture(HWND{});
    return true;
}

HWND GetCapture() {
    return state().input.capture;
}

bool GetCursorPos(POINT& screen) {
    const Input& in = state().input;
    screen = in.pointer_known ? in.pointer : display().pointer();
    return true;
}

bool SetCursorPos(std::int32_t x, std::int32_t y) {
    state().input.pointer = {x, y};
    state().input.pointer_known = true;
    display().warp_pointer({x, y});
    return true;
}

}  // namespace tarn::platform
