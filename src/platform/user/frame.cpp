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

// Thin strokes in the middle of a button.
void draw_sign(HDC dc, const RECT& button, LRESULT which, bool restores, COLORREF colour) {
    const float x = static_cast<float>(button.left + button.right) / 2;
    const float y = static_cast<float>(button.top + button.bottom) / 2;
    const float r = 4.5F;
    if (which == HTCLOSE) {
        const PointF falling[] = {{x - r, y - r}, {x + r, y + r}};
        const PointF rising[] = {{x - r, y + r}, {x + r, y - r}};
        stroke_path(dc, falling, 1.2F, colour);
        stroke_path(dc, rising, 1.2F, colour);
    } else if (which == HTMINBUTTON) {
        const PointF line[] = {{x - r, y + 0.5F}, {x + r, y + 0.5F}};
        stroke_path(dc, line, 1.2F, colour);
    } else if (!restores) {
        stroke_rounded(dc, {x - r, y - r, x + r, y + r}, 1, 1.2F, colour);
    } else {
        stroke_rounded(dc, {x - r, y - r + 2, x + r - 2, y + r}, 1, 1.2F, colour);
        const PointF behind[] = {{x - r + 2, y - r}, {x + r, y - r}, {x + r, y + r - 2}};
        stroke_path(dc, behind, 1.2F, colour);
    }
}

void draw_caption_button(const Window& window, HDC dc, const RECT& button, LRESULT which,
                         COLORREF sign) {
    if (button.empty()) return;
    const Theme& t = theme();
    const Input& in = state().input;
    const bool pressed =
        in.frame_drag.hwnd == window.handle && in.frame_drag.hit == which && in.frame_drag.over;
    const bool hover = in.caption_hover == window.handle && in.caption_hit == which;
    if (which == HTCLOSE && (pressed || hover)) {
        fill(dc, button, pressed ? blend(t.danger, RGB(0, 0, 0), 0.15F) : t.danger);
        sign = readable(RGB(255, 255, 255), t.danger);
    } else if (pressed || hover) {
        fill(dc, button, pressed ? t.button_pressed : t.button_hover);
    }
    const DWORD state_now = window.style & (WS_MINIMIZE | WS_MAXIMIZE);
    draw_sign(dc, button, which, which == HTMAXBUTTON && state_now == WS_MAXIMIZE, sign);
}

void draw_caption(const Window& window, HDC dc) {
    const Theme& t = theme();
    const std::int32_t b = border_width(window);
    const RECT bar{b, b, window.rect.width() - b, b + GetSystemMetrics(SM_CYCAPTION)};
    const Window* const focus = find(state().input.focus);
    const bool active = focus != nullptr && is_within(focus, window);
    const COLORREF colour = active ? t.caption_text : t.caption_inactive_text;
    fill(dc, bar, active ? t.caption : t.caption_inactive);
    const CaptionButtons buttons = caption_buttons(window);
    draw_caption_button(window, dc, buttons.close, HTCLOSE, colour);
    draw_caption_button(window, dc, buttons.maximize, HTMAXBUTTON, colour);
    draw_caption_button(window, dc, buttons.minimize, HTMINBUTTON, colour);
    RECT text = bar;
    text.left += 10;
    for (const RECT& r : {buttons.close, buttons.maximize, buttons.minimize})
        if (!r.empty()) text.right = std::min(text.right, r.left - 4);
    const HGDIOBJ old = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
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

void paint_frame(Window& window, HDC dc) {
    Pinned w(&window);
    const Insets hidden = hidden_frame(*w);
    const RECT outer{hidden.left, hidden.top, w->rect.width() - hidden.right,
                     w->rect.height() - hidden.bottom};
    if (covers(w->client, outer)) return;
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
