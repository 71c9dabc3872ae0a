// What we draw of a window outside its client area: border, caption of a child, menu bar, bars.
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

RECT inset(const RECT& r, std::int32_t by) {
    return {r.left + by, r.top + by, r.right - by, r.bottom - by};
}

void fill(HDC dc, const RECT& r, COLORREF colour) {
    if (r.empty()) return;
    fill_rounded(dc,
                 {static_cast<float>(r.left), static_cast<float>(r.top),
                  static_cast<float>(r.right), static_cast<float>(r.bottom)},
                 0, colour);
}

void fill_ring(HDC dc, const RECT& outer, std::int32_t width, COLORREF colour) {
    const RECT inner = inset(outer, width);
    fill(dc, {outer.left, outer.top, outer.right, inner.top}, colour);
    fill(dc, {outer.left, inner.bottom, outer.right, outer.bottom}, colour);
    fill(dc, {outer.left, inner.top, inner.left, inner.bottom}, colour);
    fill(dc, {inner.right, inner.top, outer.right, inner.bottom}, colour);
}

// One line outside, the face of what is inside within it.
void draw_border(const Window& window, HDC dc, const RECT& outer) {
    const std::int32_t width = border_width(window);
    if (width <= 0) return;
    const Theme& t = theme();
    const bool field = (window.ex_style & WS_EX_CLIENTEDGE) != 0;
    const bool active = window.handle == state().input.active;
    COLORREF line = field ? t.border_strong : t.border;
    if (!window.is_child() && active) line = t.border_strong;
    fill_ring(dc, outer, 1, line);
    if (width > 1) fill_ring(dc, inset(outer, 1), width - 1, field ? t.window : t.face);
}

void draw_caption(const Window& window, HDC dc) {
    const Theme& t = theme();
    const std::int32_t b = border_width(window);
    const RECT bar{b, b, window.rect.width() - b, b + GetSystemMetrics(SM_CYCAPTION)};
    const Window* const focus = find(state().input.focus);
    const bool active = focus != nullptr && is_within(focus, window);
    fill(dc, bar, active ? t.caption : t.caption_inactive);
    RECT text = inset(bar, 1);
    text.left += 8;
    const HGDIOBJ old = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, active ? t.caption_text : t.caption_inactive_text);
    draw_text(dc, window.title, text,
              DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS | DT_NOPREFIX);
    SelectObject(dc, old);
}

void draw_bar(Window& window, HDC dc, std::int32_t bar) {
    const RECT area = window_bar_rect(window, bar);
    if (area.empty()) return;
    WindowScroll& scroll = scroll_of(window, bar);
    ScrollValues values = scroll.values;
    ScrollLook look = window_bar_look(window, bar);
    look.enabled = look.enabled && !scroll.disabled;
    // A thumb that is dragged stays under the pointer, whatever the program makes of it.
    if (look.pressed == ScrollPart::thumb) values.position = values.clamp(values.track);
    draw_scroll_bar(dc, area, values, look);
}

}  // namespace

// Only what the context's clip leaves is painted: the client area is taken out first.
void paint_frame(Window& window, HDC dc) {
    Pinned w(&window);
    const Insets hidden = hidden_frame(*w);
    const RECT outer{hidden.left, hidden.top, w->rect.width() - hidden.right,
                     w->rect.height() - hidden.bottom};
    if (covers(w->client, outer)) return;
    ExcludeClipRect(dc, w->client);
    draw_border(*w, dc, outer);
    if (has_caption_of_ours(*w)) draw_caption(*w, dc);
    draw_bar(*w, dc, SB_VERT);
    draw_bar(*w, dc, SB_HORZ);
    const RECT v = window_bar_rect(*w, SB_VERT);
    const RECT h = window_bar_rect(*w, SB_HORZ);
    if (!v.empty() && !h.empty())
        fill(dc, {v.left, h.top, v.right, h.bottom}, theme().scroll_track);
    const RECT bar = menu_bar_rect(*w);
    if (bar.empty()) return;
    if (menu_hooks().draw_bar != nullptr)
        menu_hooks().draw_bar(w->handle, w->menu, dc, bar);
    else
        fill(dc, bar, theme().menu);
}

bool set_window_menu(HWND hwnd, HMENU menu) {
    Pinned w(hwnd);
    if (!w || w->is_child()) return false;
    w->menu = menu;
    set_window_rect(*w, w->rect, SWP_FRAMECHANGED, false);
    return true;
}

}  // namespace tarn::platform
