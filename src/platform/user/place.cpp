// Size, place, order and state of windows.
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

// Windows above and below in the Z order share areas: what changed hands is painted.
void paint_where_order_changed(Window& window) {
    if (window.is_child()) {
        expose_parent(window, window.rect);
        invalidate_all(window);
    }
}

void change_order(Window& window, HWND after) {
    Window* const parent = window.parent;
    Window* const behind = static_cast<std::int32_t>(after) > HWND_BOTTOM ? find(after) : nullptr;
    const bool bottom = static_cast<std::int32_t>(after) == HWND_BOTTOM;
    if (behind == &window || (behind != nullptr && behind->parent != parent)) return;
    const Window* const first = parent != nullptr ? parent->first_child : top_levels();
    const bool there = behind != nullptr ? window.above == behind
                       : bottom          ? window.below == nullptr
                                         : first == &window;
    if (!there) {
        unlink_child(window);
        link_child(window, parent, behind, bottom);
        paint_where_order_changed(window);
    }
    if (window.top) {
        if (static_cast<std::int32_t>(after) == HWND_TOPMOST) window.ex_style |= WS_EX_TOPMOST;
        if (static_cast<std::int32_t>(after) == HWND_NOTOPMOST) window.ex_style &= ~WS_EX_TOPMOST;
        if (static_cast<std::int32_t>(after) < 0) options_changed(window);
        if (window.top->opened && behind == nullptr && !bottom) display().raise(display_id(window));
    }
}

LPARAM point_word(std::int32_t x, std::int32_t y) {
    return MAKELPARAM(x, y);
}

}  // namespace

void send_size(Window& window) {
    const bool icon = (window.style & WS_MINIMIZE) != 0;
    const WPARAM how = icon                                ? SIZE_MINIMIZED
                       : (window.style & WS_MAXIMIZE) != 0 ? SIZE_MAXIMIZED
                                                           : SIZE_RESTORED;
    const SIZE size = icon ? SIZE{} : window.client_size();
    call(window, WM_SIZE, how, point_word(size.cx, size.cy));
}

void send_move(Window& window) {
    POINT at{window.rect.left + window.client.left, window.rect.top + window.client.top};
    call(window, WM_MOVE, 0, point_word(at.x, at.y));
}

void set_window_rect(Window& window, const RECT& rect, UINT flags, bool from_display) {
    Pinned w(&window);
    const RECT old = w->rect;
    const SIZE old_client = w->client_size();
    const bool resized = rect.width() != old.width() || rect.height() != old.height();
    const bool shifted = rect.left != old.left || rect.top != old.top;
    w->rect = rect;
    children_changed(w->parent);
    if (resized || (flags & SWP_FRAMECHANGED) != 0) update_client(*w);
    if (!w.alive()) return;
    const bool client_resized = w->client_size() != old_client;
    const bool quiet = (flags & SWP_NOREDRAW) != 0;
    if (w->top) {
        Top& top = *w->top;
        if (top.opened && !from_display) {
            if (shifted) top.placed = true;
            forget_configures(w->handle);
            display().place(display_id(*w), surface_rect(*w));
        }
        if (top.shown && (resized || (flags & SWP_FRAMECHANGED) != 0)) fit_surface(*w);
    } else if ((resized || shifted) && !quiet) {
        expose_parent(*w, old);
        invalidate_all(*w);
    } else if ((flags & SWP_FRAMECHANGED) != 0 && !quiet) {
        invalidate_all(*w);
    }
    if (w->top && w->top->size_owed) return;  // it hears of it when it is shown
    if (shifted) send_move(*w);
    if (w.alive() && client_resized) send_size(*w);
}

bool SetWindowPos(HWND hwnd, HWND after, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, UINT flags) {
    Pinned window(hwnd);
    if (!window || window->dying) return false;
    WINDOWPOS pos{hwnd, after, x, y, width, height, flags};
    if ((flags & SWP_NOMOVE) != 0) pos.x = window->rect.left, pos.y = window->rect.top;
    if ((flags & SWP_NOSIZE) != 0) pos.cx = window->rect.width(), pos.cy = window->rect.height();
    call(*window, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&pos));
    if (!window.alive()) return false;
    RECT rect = window->rect;
    if ((pos.flags & SWP_NOMOVE) == 0) {
        rect.left = std::clamp(pos.x, -0x7FFF, 0x7FFF);
        rect.top = std::clamp(pos.y, -0x7FFF, 0x7FFF);
    }
    const bool keep = (pos.flags & SWP_NOSIZE) != 0;
    const std::int32_t longest = longest_side(window->top == nullptr);
    rect.right = rect.left + (keep ? window->rect.width() : std::clamp(pos.cx, 0, longest));
    rect.bottom = rect.top + (keep ? window->rect.height() : std::clamp(pos.cy, 0, longest));

    const bool visible = (window->style & WS_VISIBLE) != 0;
    if ((pos.flags & SWP_HIDEWINDOW) != 0 && visible) hide_window(*window);
    if (!window.alive()) return false;
    if ((pos.flags & SWP_NOZORDER) == 0) change_order(*window, pos.hwndInsertAfter);
    if (rect != window->rect || (pos.flags & SWP_FRAMECHANGED) != 0) {
        set_window_rect(*window, rect, pos.flags, false);
        if (window.alive() && window->top && (pos.flags & SWP_FRAMECHANGED) != 0)
            options_changed(*window);
    }
    if (!window.alive()) return false;
    if ((pos.flags & SWP_SHOWWINDOW) != 0 && !visible)
        ShowWindow(hwnd, (pos.flags & SWP_NOACTIVATE) != 0 ? +SW_SHOWNA : +SW_SHOW);
    else if ((pos.flags & (SWP_NOACTIVATE | SWP_NOZORDER)) == 0) {
        if (!window->top)
            call(*window, WM_CHILDACTIVATE, 0, 0);
        else if (visible)
            activate(window.get(), WA_ACTIVE);
    }
    if (window.alive()) {
        pos.x = window->rect.left, pos.y = window->rect.top;
        pos.cx = window->rect.width(), pos.cy = window->rect.height();
        call(*window, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos));
    }
    return true;
}

bool MoveWindow(HWND hwnd, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                bool repaint) {
    return SetWindowPos(hwnd, HWND{}, x, y, width, height,
                        SWP_NOZORDER | SWP_NOACTIVATE | (repaint ? UINT{0} : UINT{SWP_NOREDRAW}));
}

bool BringWindowToTop(HWND hwnd) {
    return SetWindowPos(hwnd, HWND{HWND_TOP}, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
}

// ---- Showing -----------------------------------------------------------------------------------
void hide_window(Window& window) {
    Pinned w(&window);
    if (!w->dying) call(*w, WM_SHOWWINDOW, 0, 0);
    if (!w.alive()) return;
    const bool was_shown = is_visible(*w);
    w->style &= ~WS_VISIBLE;
    children_changed(w->parent);
    forget_updates(*w);
    if (w->top) {
        if (w->top->shown) display().show(display_id(*w), false, false);
        w->top->shown = false;
    } else if (was_shown) {
        expose_parent(*w, w->rect);
    }
    leave_window(*w);
}

namespace {

bool takes_activation(const Window& window) {
    return (window.ex_style & WS_EX_NOACTIVATE) == 0 && (window.style & WS_DISABLED) == 0;
}

void show_top(Window& window, bool may_activate) {
    Pinned w(&window);
    Top& top = *w->top;
    const bool with_focus = may_activate && takes_activation(*w);
    open_top(*w);
    if (!w.alive() || w->dying || (w->style & WS_VISIBLE) == 0) return;
    top.shown = true;
    top.settled = false;
    state().queue.unsettled = true;
    if (w->owner != nullptr || with_focus) {
        // It comes up in our order as on the screen.
        unlink_child(*w);
        link_child(*w, nullptr, nullptr, false);
    }
    display().show(display_id(*w), true, with_focus);
    tell_input_place();  // the caret may have been made before
    fit_surface(*w);
    invalidate_all(*w);
    if (with_focus) activate(w.get(), WA_ACTIVE);
    if (!w.alive() || !top.size_owed) return;
    top.size_owed = false;
    send_size(*w);
    if (w.alive()) send_move(*w);
}

// The outer rectangle of a window whose surface is to fill `area` below its caption.
RECT filling(const Window& window, const RECT& area) {
    const Insets hidden = hidden_frame(window);
    return {area.left - hidden.left, area.top - hidden.left, area.right + hidden.right,
            area.bottom + hidden.bottom};
}

// A child's caption and border lie outside what its parent shows.
RECT filling_parent(const Window& child) {
    const std::int32_t b = border_width(child);
    const std::int32_t caption = has_caption_of_ours(child) ? GetSystemMetrics(SM_CYCAPTION) : 0;
    return {-b, -b - caption, child.parent->client.width() + b, child.parent->client.height() + b};
}

constexpr std::int32_t minimized_width = 200;

// A minimised child is its caption, at the bottom of its parent beside the ones before it.
RECT minimized_place(const Window& child) {
    const std::int32_t height = 2 * border_width(child) + GetSystemMetrics(SM_CYCAPTION);
    const std::int32_t in_row = std::max(child.parent->client.width() / minimized_width, 1);
    std::int32_t slot = 0;
    for (const Window* c = child.parent->first_child; c != nullptr; c = c->below)
        if (c != &child && (c->style & (WS_MINIMIZE | WS_VISIBLE)) == (WS_MINIMIZE | WS_VISIBLE))
            ++slot;
    const std::int32_t x = slot % in_row * minimized_width;
    const std::int32_t y = child.parent->client.height() - (slot / in_row + 1) * height;
    return {x, y, x + minimized_width, y + height};
}

void minimize_child(Window& child, DWORD old_style) {
    Pinned w(&child);
    if ((old_style & WS_MINIMIZE) != 0) return;
    if ((old_style & WS_MAXIMIZE) == 0) w->normal_rect = w->rect;
    set_window_rect(*w, minimized_place(*w), SWP_FRAMECHANGED, true);
}

void set_state(Window& window, WindowState wanted) {
    Pinned w(&window);
    const DWORD old = w->style;
    w->style &= ~(WS_MINIMIZE | WS_MAXIMIZE);
    if (wanted == WindowState::minimized) {
        // What it was before stays known: it comes back as that.
        w->style |= WS_MINIMIZE | (old & WS_MAXIMIZE);
        forget_updates(*w);
    } else if (wanted != WindowState::normal) {
        w->style |= WS_MAXIMIZE;
    }
    const bool fills = (w->style & WS_MAXIMIZE) != 0;
    if (w->top) {
        Top& top = *w->top;
        const bool changed = top.state != wanted;
        top.state = wanted;
        if (changed && top.opened) {
            top.state_asked_until = clock_us() + answer_us;
            display().set_state(display_id(*w), wanted);
        }
    }
    if (wanted == WindowState::minimized) {
        if (!w->top) return minimize_child(*w, old);
        if ((old & WS_MINIMIZE) == 0) send_size(*w);
        if (w.alive()) leave_window(*w);
        return;
    }
    RECT rect = w->rect;
    const bool was_icon = !w->top && (old & WS_MINIMIZE) != 0;
    if (fills && !w->top && (old & WS_MAXIMIZE) != 0) {
        rect = filling_parent(*w);  // the parent may have another size by now
    } else if (fills && (old & WS_MAXIMIZE) == 0) {
        if (!was_icon) w->normal_rect = w->rect;
        rect = w->top ? filling(*w, display().work_area(middle_of(w->rect))) : filling_parent(*w);
    } else if (!fills && ((old & WS_MAXIMIZE) != 0 || was_icon)) {
        rect = w->normal_rect;
    }
    const bool owed = w->top && w->top->size_owed;
    const SIZE before = w->client_size();
    // The display was asked for the state; the size goes along with it.
    set_window_rect(*w, rect, 0, true);
    if (!w.alive() || owed) return;
    if (w->client_size() == before && w->style != old) send_size(*w);
    if (w.alive()) invalidate_all(*w);
}

}  // namespace

bool ShowWindow(HWND hwnd, std::int32_t how) {
    Pinned window(hwnd);
    if (!window || window->dying) return false;
    const bool visible = (window->style & WS_VISIBLE) != 0;
    if (how == SW_HIDE) {
        if (visible) hide_window(*window);
        return visible;
    }
    const bool quiet = how == SW_SHOWNA || how == SW_SHOWNOACTIVATE || how == SW_SHOWMINNOACTIVE;
    if (how == SW_SHOWMAXIMIZED) {
        set_state(*window, WindowState::maximized);
    } else if (how == SW_SHOWMINIMIZED || how == SW_MINIMIZE || how == SW_SHOWMINNOACTIVE) {
        set_state(*window, WindowState::minimized);
    } else if (how != SW_SHOW && how != SW_SHOWNA &&
               (window->style & (WS_MINIMIZE | WS_MAXIMIZE)) != 0) {
        const bool back_to_full =
            (window->style & WS_MINIMIZE) != 0 && (window->style & WS_MAXIMIZE) != 0;
        set_state(*window, back_to_full ? WindowState::maximized : WindowState::normal);
    }
    if (!window.alive()) return visible;
    if (visible) {
        if (window->top && !quiet && (window->style & WS_MINIMIZE) == 0)
            activate(window.get(), WA_ACTIVE);
        return true;
    }
    call(*window, WM_SHOWWINDOW, 1, 0);
    if (!window.alive() || window->dying) return false;
    window->style |= WS_VISIBLE;
    children_changed(window->parent);
    if (window->top)
        show_top(*window, !quiet && (window->style & WS_MINIMIZE) == 0);
    else
        invalidate_all(*window);
    return false;
}

HWND SetParent(HWND hwnd, HWND parent) {
    Window* const window = find(hwnd);
    Window* const to = find(parent);
    if (window == nullptr || !window->is_child() || to == nullptr || is_within(to, *window))
        return {};
    const HWND old = handle_of(window->parent);
    if (is_visible(*window)) expose_parent(*window, window->rect);
    leave_window(*window);
    unlink_child(*window);
    link_child(*window, to, nullptr, false);
    invalidate_all(*window);
    return old;
}

}  // namespace tarn::platform
