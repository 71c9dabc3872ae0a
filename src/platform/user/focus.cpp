// Activation, the focus, and windows that are disabled by a modal one.
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

bool can_be_active(const Window& top) {
    return (top.style & (WS_VISIBLE | WS_DISABLED | WS_MINIMIZE)) == WS_VISIBLE && !top.dying &&
           (top.ex_style & WS_EX_NOACTIVATE) == 0;
}

bool can_have_focus(const Window& window) {
    for (const Window* w = &window; w != nullptr; w = w->parent)
        if ((w->style & (WS_DISABLED | WS_MINIMIZE)) != 0 || w->dying) return false;
    return true;
}

// The display's focus follows. Until it answers, what it says about others is old news.
void ask_display(Window& top) {
    Input& in = state().input;
    if (!top.top->shown || in.display_focus == display_id(top)) return;
    in.focus_asked = display_id(top);
    in.focus_asked_until = clock_us() + answer_us;
    display().focus(display_id(top));
}

void raise_in_order(Window& top) {
    if (top_levels() == &top) return;
    unlink_child(top);
    link_child(top, nullptr, nullptr, false);
}

void tell_inactive(HWND old, HWND next) {
    Pinned w(old);
    if (!w) return;
    call(*w, WM_NCACTIVATE, 0, 0);
    if (w.alive() && border_width(*w) > 0) invalidate_frame(*w);
    if (w.alive()) call(*w, WM_ACTIVATE, WA_INACTIVE, static_cast<LPARAM>(next));
}

void set_focus_record(Window* window) {
    Input& in = state().input;
    const HWND old = in.focus;
    const HWND fresh = handle_of(window);
    if (old == fresh) return;
    in.focus = fresh;
    // Captions of children show where the focus is.
    for (Window* w : {find(old), window})
        for (; w != nullptr && w->is_child(); w = w->parent)
            if (has_caption_of_ours(*w)) invalidate_frame(*w);
    if (find(old) != nullptr) call(old, WM_KILLFOCUS, static_cast<WPARAM>(fresh), 0);
    if (in.focus == fresh && find(fresh) != nullptr)
        call(fresh, WM_SETFOCUS, static_cast<WPARAM>(old), 0);
}

}  // namespace

void activate(Window* top, UINT how) {
    Input& in = state().input;
    const HWND fresh = handle_of(top);
    if (top != nullptr && (top->dying || (top->style & WS_DISABLED) != 0)) return;
    if (in.active == fresh) {
        if (top != nullptr) {
            raise_in_order(*top);
            if (top->top->opened) display().raise(fresh);
            ask_display(*top);
        }
        return;
    }
    const HWND old = in.active;
    if (Window* const before = find(old)) {
        Window* const focus = find(in.focus);
        if (focus != nullptr && is_within(focus, *before)) before->top->last_focus = in.focus;
    }
    in.active = fresh;
    Pinned w(top);
    if (w) {
        raise_in_order(*w);
        if (w->top->opened) display().raise(display_id(*w));
        ask_display(*w);
    }
    tell_inactive(old, fresh);
    if (in.active != fresh) return;  // somebody chose otherwise meanwhile
    if (!w) return set_focus_record(nullptr);
    if (!w.alive()) return;
    call(*w, WM_NCACTIVATE, 1, 0);
    if (w.alive() && border_width(*w) > 0) invalidate_frame(*w);
    if (w.alive() && in.active == fresh) call(*w, WM_ACTIVATE, how, static_cast<LPARAM>(old));
    if (!w.alive() || in.active != fresh) return;
    const Window* const focus = find(in.focus);
    if (focus == nullptr || !is_within(focus, *w)) set_focus_record(w.get());
}

void give_focus(Window* window) {
    if (window == nullptr) return set_focus_record(nullptr);
    if (!can_have_focus(*window) || window->handle == state().input.focus) return;
    Pinned w(window);
    Pinned top(&top_of(*w));
    if (state().input.active != top->handle) {
        // The window that becomes active, now or when it is shown, finds its focus chosen already.
        top->top->last_focus = w->handle;
        if (can_be_active(*top)) activate(top.get(), WA_ACTIVE);
    }
    if (w.alive()) set_focus_record(w.get());
}

HWND SetFocus(HWND hwnd) {
    const HWND old = state().input.focus;
    Window* const window = find(hwnd);
    if (window == nullptr && hwnd != HWND{}) return {};
    give_focus(window);
    return old;
}

HWND GetFocus() {
    return state().input.focus;
}

HWND GetActiveWindow() {
    return state().input.active;
}

HWND GetForegroundWindow() {
    return state().input.active;
}

HWND SetActiveWindow(HWND hwnd) {
    const HWND old = state().input.active;
    Window* const window = find(hwnd);
    if (window != nullptr) activate(&top_of(*window), WA_ACTIVE);
    return old;
}

// Keys that are let go elsewhere never tell us.
static void release_keys() {
    Input& in = state().input;
    for (std::uint8_t& key : in.keys) key &= 1;
    in.alt_alone = in.f10_alone = false;
}

void display_focus(Window& top, bool arrived) {
    Input& in = state().input;
    const TopLevel id = display_id(top);
    if (!arrived) {
        if (in.display_focus == id) in.display_focus = 0;
        release_keys();
        // Another window of ours may have been asked for: then it is about to get the focus.
        if (in.focus_asked == 0 && in.active == top.handle) activate(nullptr, WA_INACTIVE);
        return;
    }
    in.display_focus = id;
    if (in.focus_asked != 0 && in.focus_asked != id && clock_us() < in.focus_asked_until) return;
    in.focus_asked = 0;
    if ((top.style & WS_DISABLED) != 0) return raise_modal_of(top);
    if (can_be_active(top)) activate(&top, WA_ACTIVE);
}

// Who is to be active when `gone` isn't any more: its owner, or the next in the Z order.
static Window* successor(const Window& gone) {
    if (gone.owner != nullptr && can_be_active(*gone.owner)) return gone.owner;
    for (Window* w = top_levels(); w != nullptr; w = w->below)
        if (w != &gone && can_be_active(*w) && w->owner != &gone) return w;
    return nullptr;
}

void leave_window(Window& window) {
    Input& in = state().input;
    Pinned w(&window);
    const Window* const capture = find(in.capture);
    if (capture != nullptr && is_within(capture, *w)) ReleaseCapture();
    if (!w.alive()) return;
    if (w->top && in.active == w->handle) {
        activate(successor(*w), WA_ACTIVE);
        return;
    }
    Window* const focus = find(in.focus);
    if (focus == nullptr || !is_within(focus, *w)) return;
    // The parent passes it on, unless it goes too.
    if (w->parent != nullptr && can_have_focus(*w->parent))
        set_focus_record(w->parent);
    else
        in.focus = HWND{};
}

void forget_window(Window& window) {
    UserState& s = state();
    Input& in = s.input;
    const HWND hwnd = window.handle;
    for (HWND* named :
         {&in.focus, &in.active, &in.capture, &in.hover, &in.click_window, &in.wheel_window,
          &in.bar_hover_window, &in.menu_hover, &in.caption_hover, &s.clipboard_owner})
        if (*named == hwnd) *named = HWND{};
    if (in.scroll_window == hwnd) {
        in.scroll.forget();
        in.scroll_window = HWND{};
    }
    if (in.frame_drag.hwnd == hwnd) in.frame_drag = {};
    if (in.display_focus == static_cast<TopLevel>(hwnd)) in.display_focus = 0;
    if (in.focus_asked == static_cast<TopLevel>(hwnd)) in.focus_asked = 0;
    if (s.caret.hwnd == hwnd) caret_owner_changed(hwnd);
    if (window.top)
        for (Window* w = top_levels(); w != nullptr; w = w->below) {
            if (w->owner == &window) w->owner = nullptr;
            if (w->top->disabled_by == hwnd) w->top->disabled_by = HWND{};
        }
}

// ---- Enabled -----------------------------------------------------------------------------------
// The window that the user must answer first: an enabled one that stands above.
Window* modal_of(const Window& disabled) {
    Window* any = nullptr;
    for (Window* w = top_levels(); w != nullptr; w = w->below) {
        if (w == &disabled || !can_be_active(*w)) continue;
        if (w->owner == &disabled) return w;
        if (any == nullptr) any = w;
    }
    return any;
}

void raise_modal_of(Window& disabled) {
    display().beep();
    Window* const modal = modal_of(disabled);
    if (modal == nullptr) return;
    display().raise(display_id(*modal));
    activate(modal, WA_ACTIVE);
}

namespace {

void tell_display_enabled(Window& top) {
    if (!top.top->opened) return;
    const bool disabled = (top.style & WS_DISABLED) != 0;
    const HWND by = disabled ? handle_of(modal_of(top)) : HWND{};
    if (top.top->disabled_by == by) return;
    top.top->disabled_by = by;
    display().set_modal(display_id(top), static_cast<TopLevel>(by));
}

}  // namespace

bool EnableWindow(HWND hwnd, bool enabled) {
    Pinned w(hwnd);
    if (!w) return false;
    Input& in = state().input;
    const bool was_disabled = (w->style & WS_DISABLED) != 0;
    if (was_disabled != enabled) return was_disabled;
    if (!enabled) {
        call(*w, WM_CANCELMODE, 0, 0);
        if (!w.alive()) return was_disabled;
        w->style |= WS_DISABLED;
        const Window* const capture = find(in.capture);
        if (capture != nullptr && is_within(capture, *w)) ReleaseCapture();
        if (in.focus == hwnd) set_focus_record(nullptr);
    } else {
        w->style &= ~WS_DISABLED;
    }
    if (w.alive() && w->top) tell_display_enabled(*w);
    if (w.alive()) call(*w, WM_ENABLE, enabled ? 1 : 0, 0);
    // A window of the desktop's focus that was disabled when it got it.
    if (w.alive() && enabled && w->top && in.active == HWND{} && in.display_focus == display_id(*w))
        activate(w.get(), WA_ACTIVE);
    return was_disabled;
}

void set_keyboard_cues(bool on) {
    Input& in = state().input;
    if (in.keyboard_cues == on) return;
    in.keyboard_cues = on;
    if (Window* const focus = find(in.focus)) invalidate(*focus, {0, 0, 0x7FFF, 0x7FFF}, true);
}

bool keyboard_focus_visible() {
    return state().input.keyboard_cues;
}

}  // namespace tarn::platform
