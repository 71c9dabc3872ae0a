// The view on the lines: bars, wheel and keys move the bottom line.
#include <algorithm>

#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

constexpr std::int32_t columns = 255;
constexpr std::int32_t to_the_end = 1'000'000;

void repaint(window_info& window) {
    window.painted = false;
    InvalidateRect(window.hwnd, nullptr, false);
}

// A selection moves with the text under it.
void shift_selection(window_info& window, std::int32_t dy) {
    if (window.anchor.y == no_selection) return;
    window.anchor.y += dy;
    window.end.y += dy;
}

}  // namespace

// During a flood the bar moves only every eighth line: the last move is owed, and the pump pays it
// five messages later.
void set_vert_scroll_bar(window_info& window, std::int32_t position, bool forced) {
    if (!window.vertical_bar) return;
    if (!forced && position == window.line_count && window.line_count % 8 != 0) {
        state().bar_countdown = 5;
        window.bar_pending = true;
        return;
    }
    SCROLLINFO info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMin = 1;
    info.nMax = window.line_count;
    info.nPage = static_cast<UINT>(std::max(window.lines_on_view, 0));
    info.nPos = position;
    window.bar_pending = false;
    SetScrollInfo(window.hwnd, SB_VERT, info, true);
}

void count_down_bars() {
    if (state().bar_countdown == 0 || --state().bar_countdown != 0) return;
    for (window_info* window = state().windows; window != nullptr; window = window->next)
        if (window->bar_pending) set_vert_scroll_bar(*window, window->line_count, true);
}

void scrollv(window_info& window, std::int32_t amount, std::int32_t update_option, bool absolute) {
    if (window.bottom == nullptr) return;
    std::int32_t motion =
        absolute ? amount + window.lines_on_view - window.bottom_number - 1 : amount;
    bool moved = false;
    for (; motion < 0 && window.bottom_number > window.lines_on_view; ++motion, moved = true) {
        if (window.bottom->previous == nullptr) break;
        window.bottom = window.bottom->previous;
        --window.bottom_number;
        shift_selection(window, window.bottom->height);
    }
    for (; motion > 0 && window.bottom_number < window.line_count; --motion, moved = true) {
        if (window.bottom->next == nullptr) break;
        shift_selection(window, -window.bottom->height);
        window.bottom = window.bottom->next;
        ++window.bottom_number;
    }
    if (!moved && update_option != 2) return;
    if (update_option != 0)
        set_vert_scroll_bar(window, window.bottom_number - window.lines_on_view + 1, true);
    repaint(window);
}

// Where lines above the view have gone, those below it come up.
void show_full_page(window_info& window) {
    scrollv(window,
            std::max(0, std::min(window.lines_on_view, window.line_count) - window.bottom_number),
            2, false);
}

void scrollh(window_info& window, std::int32_t amount, std::int32_t update_option) {
    const std::int64_t wanted = std::int64_t{window.column} + amount;
    const auto column = static_cast<std::int32_t>(std::clamp<std::int64_t>(wanted, 1, columns));
    if (column == window.column && update_option != 2) return;
    window.column = column;
    if (update_option != 0 && window.horizontal_bar)
        SetScrollPos(window.hwnd, SB_HORZ, column, true);
    repaint(window);
}

void scroll_message(window_info& window, UINT message, WPARAM wparam) {
    const std::int32_t code = LOWORD(wparam);
    const bool vertical = message == WM_VSCROLL;
    const std::int32_t page = vertical ? window.lines_on_view : window.column_page;
    SCROLLINFO info;
    info.fMask = SIF_ALL;
    const auto scroll = vertical ? [](window_info& w, std::int32_t by) { scrollv(w, by, 1, false); }
                                 : [](window_info& w, std::int32_t by) { scrollh(w, by, 1); };
    switch (code) {
        case SB_LINEUP:
            scroll(window, -1);
            break;
        case SB_LINEDOWN:
            scroll(window, 1);
            break;
        case SB_PAGEUP:
            scroll(window, -page);
            break;
        case SB_PAGEDOWN:
            scroll(window, page);
            break;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK:
            if (!GetScrollInfo(window.hwnd, vertical ? SB_VERT : SB_HORZ, info)) break;
            if (vertical)
                scrollv(window, code == SB_THUMBTRACK ? info.nTrackPos : info.nPos,
                        code == SB_THUMBTRACK ? 0 : 2, true);
            else
                scrollh(window,
                        (code == SB_THUMBTRACK ? info.nTrackPos : info.nPos) - window.column,
                        code == SB_THUMBTRACK ? 0 : 1);
            break;
        case SB_TOP:
            if (vertical) scrollv(window, 1, 1, true);
            break;
        case SB_BOTTOM:
            scroll(window, to_the_end);
            break;
        default:
            break;
    }
}

void wheel(window_info& window, WPARAM wparam) {
    const auto delta = static_cast<std::int16_t>(HIWORD(wparam));
    std::int32_t lines = delta / WHEEL_DELTA * wheel_scroll_lines();
    if ((LOWORD(wparam) & MK_MBUTTON) != 0) lines *= 5;
    scrollv(window, -lines, 1, false);
}

}  // namespace tarn::textwin
