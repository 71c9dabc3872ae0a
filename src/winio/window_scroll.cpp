// Scroll bars of whole windows (%hs, %vs) and of single controls (%hx, %vx).
#include <algorithm>

#include "textwin/textwin.h"
#include "winio/callbacks.h"
#include "winio/text_layer.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

struct bar_values {
    std::int32_t position, page, range;
    std::int32_t line, last;
};

std::int32_t value_of(const std::int32_t* variable, std::int32_t otherwise) {
    return variable ? *variable : otherwise;
}

std::int32_t thumb_position(HWND hwnd, std::int32_t bar, WPARAM wparam) {
    SCROLLINFO info;
    info.fMask = SIF_TRACKPOS | SIF_POS;
    if (!GetScrollInfo(hwnd, bar, info)) return HIWORD(wparam);
    return LOWORD(wparam) == SB_THUMBTRACK ? info.nTrackPos : HIWORD(wparam);
}

std::int32_t next_position(const bar_values& values, std::int32_t code, std::int32_t thumb) {
    std::int64_t position = values.position;
    switch (code) {
        case SB_LINEUP:
            position -= values.line;
            break;
        case SB_LINEDOWN:
            position += values.line;
            break;
        case SB_PAGEUP:
            position -= values.page;
            break;
        case SB_PAGEDOWN:
            position += values.page;
            break;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK:
            position = thumb;
            break;
        case SB_TOP:
            position = 0;
            break;
        case SB_BOTTOM:
            position = values.last;
            break;
        default:
            break;
    }
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(position, 0, std::max(values.last, 0)));
}

// Runs a scroll call-back with no key or mouse message coming in between.
std::int32_t call_scrolled(call_back function, HWND hwnd, bool dragging) {
    std::uint32_t mask = textwin::yield_mask();
    textwin::yield_mask() = 0xFF;
    callbacks().context.mousewheel_rotation = dragging ? 1 : 0;
    std::int32_t result = call_function(function, "SCROLL", hwnd, false, true);
    textwin::yield_mask() = mask;
    return result;
}

bool reported(bool always, std::int32_t code, bool changed) {
    return always ? changed && code != SB_ENDSCROLL : code == SB_ENDSCROLL;
}

void set_bar(HWND hwnd, std::int32_t bar, std::int32_t range, std::int32_t page,
             std::int32_t position) {
    SCROLLINFO info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = std::max(range - 1, 0);
    info.nPage = static_cast<UINT>(std::max(page, 0));
    info.nPos = position;
    SetScrollInfo(hwnd, bar, info, true);
}

void control_scrolled(fancy_window* window, window_control* control, scroll_block::bar& bar,
                      WPARAM wparam) {
    if (!bar.position) return;
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    std::int32_t code = LOWORD(wparam);
    bar_values values{*bar.position, value_of(bar.page, 1), value_of(bar.range, 1), 1, 0};
    values.last = values.range - 1;
    std::int32_t position = next_position(values, code, thumb_position(bar.hwnd, SB_CTL, wparam));
    bool changed = position != *bar.position;
    *bar.position = position;
    if (code != SB_THUMBTRACK) SetScrollPos(bar.hwnd, SB_CTL, position, true);
    if (!bar.callback || !reported(bar.grave, code, changed)) return;
    get_action_coordinates(control);
    std::int32_t result = call_scrolled(bar.callback, hwnd, code == SB_THUMBTRACK);
    if (!watch.gone()) act_on_result(hwnd, result);
}

bool handle_control_scrolls(fancy_window* window, bool vertical, WPARAM wparam, HWND bar_window) {
    if (!bar_window) return false;
    for (window_control* control = window->first_control; control; control = control->next) {
        if (!control->scrolls) continue;
        scroll_block::bar& bar =
            vertical ? control->scrolls->vertical : control->scrolls->horizontal;
        if (bar.hwnd != bar_window) continue;
        control_scrolled(window, control, bar, wparam);
        return true;
    }
    return false;
}

std::int32_t thickness(bool vertical) {
    return GetSystemMetrics(vertical ? SM_CXVSCROLL : SM_CYHSCROLL);
}

// A bar with nothing to scroll is hidden, and its control has the room. The result: how much more
// of it the control has than before.
std::int32_t show_bar(scroll_block::bar& bar, bool vertical) {
    if (!bar.hwnd) return 0;
    std::int32_t page = value_of(bar.page, 0), range = value_of(bar.range, 0);
    const std::int32_t before = bar.hidden_size;
    bar.hidden = page >= range;
    bar.hidden_size = bar.hidden ? thickness(vertical) : 0;
    set_bar(bar.hwnd, SB_CTL, range, page, value_of(bar.position, 0));
    ShowWindow(bar.hwnd, bar.hidden ? SW_HIDE : SW_SHOWNA);
    return bar.hidden_size - before;
}

RECT bar_place(const window_control* control, bool vertical) {
    std::int32_t thick = thickness(vertical);
    std::int32_t right = control->right + 1, bottom = control->bottom + 1;
    if (vertical) return {right, control->top, right + thick, bottom};
    return {control->left, bottom, right, bottom + thick};
}

void create_bar(window_control* control, scroll_block::bar& bar, bool vertical, std::int32_t id) {
    RECT place = bar_place(control, vertical);
    bar.hwnd = CreateWindowExAW(
        0, "scrollbar", "", WS_CHILD | WS_CLIPSIBLINGS | (vertical ? 1U : 0U), place.left,
        place.top, place.width(), place.height(), control->window->hwnd, HMENU{id});
}

}  // namespace

void set_window_scroll_bars(fancy_window* window) {
    if (window->flags.horizontal_bar)
        set_bar(window->hwnd, SB_HORZ, value_of(window->h_scroll_range, 1),
                value_of(window->h_scroll_page, 1), value_of(window->h_scroll_var, 0));
    if (window->flags.vertical_bar)
        set_bar(window->hwnd, SB_VERT, value_of(window->v_scroll_range, 1),
                value_of(window->v_scroll_page, 1), value_of(window->v_scroll_var, 0));
}

void window_scrolled(fancy_window* window, bool vertical, WPARAM wparam, HWND bar_window) {
    if (handle_control_scrolls(window, vertical, wparam, bar_window)) return;
    std::int32_t* variable = vertical ? window->v_scroll_var : window->h_scroll_var;
    if (!variable) return;
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    window_control* scrolled = window->scrolled_child;
    std::int32_t code = LOWORD(wparam), bar = vertical ? SB_VERT : SB_HORZ;
    bar_values values{*variable,
                      value_of(vertical ? window->v_scroll_page : window->h_scroll_page, 1),
                      value_of(vertical ? window->v_scroll_range : window->h_scroll_range, 1),
                      scrolled ? 10 : 1, 0};
    values.last = scrolled ? values.range - (values.page - 2) - 1 : values.range - 1;
    std::int32_t position = next_position(values, code, thumb_position(hwnd, bar, wparam));
    bool changed = position != *variable;
    *variable = position;
    bool dragging = code == SB_THUMBTRACK;
    if (!dragging) SetScrollPos(hwnd, bar, position, true);
    call_back function = vertical ? window->vertical_callback : window->horizontal_callback;
    if (function && reported(window->flags.scroll_always, code, changed)) {
        std::int32_t result = call_scrolled(function, hwnd, dragging);
        if (watch.gone()) return;
        act_on_result(hwnd, result);
        if (watch.gone()) return;
    }
    if (scrolled && scrolled->hwnd && !dragging) InvalidateRect(scrolled->hwnd, nullptr, false);
}

bool wheel_scrolled(fancy_window* window, std::int32_t turn) {
    if (!window->flags.vertical_bar || !window->v_scroll_var) return false;
    window_watch watch(window);
    std::int32_t lines = wheel_scroll_lines() * (turn < 0 ? -turn : turn) / WHEEL_DELTA;
    WPARAM code = turn > 0 ? SB_LINEUP : SB_LINEDOWN;
    for (std::int32_t i = 0; i < lines && i < 100 && !watch.gone(); ++i)
        window_scrolled(window, true, code, HWND{});
    if (!watch.gone()) window_scrolled(window, true, SB_ENDSCROLL, HWND{});
    return true;
}

void create_scroll_bars(window_control* control, std::int32_t& next_id) {
    scroll_block* block = control->scrolls;
    if (block->horizontal.wanted) create_bar(control, block->horizontal, false, next_id++);
    if (block->vertical.wanted) create_bar(control, block->vertical, true, next_id++);
    show_scroll_bars(control);
}

void show_scroll_bars(window_control* control) {
    scroll_block* block = control->scrolls;
    if (!block || !control->hwnd) return;
    window_watch watch(control->window);
    const std::int32_t wider = show_bar(block->vertical, true);
    const std::int32_t deeper = show_bar(block->horizontal, false);
    if (watch.gone()) return;
    control->right += wider;
    control->bottom += deeper;
    if (wider != 0 || deeper != 0) re_size_scroll_bars(control);
}

void re_size_scroll_bars(window_control* control) {
    scroll_block* block = control->scrolls;
    if (!block || !control->hwnd) return;
    window_watch watch(control->window);
    MoveWindow(control->hwnd, control->left, control->top,
               std::max(control->right - control->left + 1, 0),
               std::max(control->bottom - control->top + 1, 0), true);
    for (bool vertical : {false, true}) {
        const scroll_block::bar& bar = vertical ? block->vertical : block->horizontal;
        if (watch.gone() || !bar.hwnd) continue;
        RECT place = bar_place(control, vertical);
        MoveWindow(bar.hwnd, place.left, place.top, place.width(), place.height(), true);
    }
}

}  // namespace tarn::winio
