#include "platform/controls/look.h"

#include <algorithm>
#include <array>

namespace tarn::platform {
namespace {

// Where the marks and rings of this room get their proportions.
constexpr float ring_width = 2.0F;
constexpr float stroke = 1.5F;

PointF middle(const RECT& r) {
    return {static_cast<float>(r.left + r.right) / 2, static_cast<float>(r.top + r.bottom) / 2};
}

}  // namespace

COLORREF edge_colour() {
    return blend(theme().border, theme().border_strong, 0.6F);
}

Colours ask_colours(const Control& control, HDC dc, UINT message, COLORREF text, COLORREF back) {
    Colours result;
    SetTextColor(dc, text);
    SetBkColor(dc, back);
    const HWND parent = GetParent(control.hwnd);
    LRESULT answer = 0;
    if (parent != 0) answer = send_message(parent, message, static_cast<WPARAM>(dc), control.hwnd);
    result.text = GetTextColor(dc);
    result.back = GetBkColor(dc);
    result.brush = HBRUSH{static_cast<std::int32_t>(answer)};
    COLORREF brush_colour = 0;
    if (result.brush == GetStockObject(NULL_BRUSH)) {
        result.hollow = true;
    } else if (result.back == back && GetObjectBrush(result.brush, brush_colour)) {
        result.back = brush_colour;
    }
    // A parent that doesn't care answers with the system's colours: then the control's own stand.
    const bool data = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
    const std::int32_t usual = data ? COLOR_WINDOW : COLOR_BTNFACE;
    if (result.brush == GetSysColorBrush(usual) && result.back == GetSysColor(usual)) {
        result.brush = HBRUSH{};
        result.back = back;
    }
    result.own_text = result.text != text && result.text != GetSysColor(COLOR_WINDOWTEXT);
    result.own_back = result.back != back;
    if (!(result.own_text && result.own_back)) result.text = readable(result.text, result.back);
    SetTextColor(dc, result.text);
    return result;
}

void fill_back(HDC dc, const RECT& rect, const Colours& colours) {
    if (colours.hollow || rect.empty()) return;
    if (colours.brush != 0) {
        FillRect(dc, rect, colours.brush);
    } else {
        fill_rounded(dc, to_f(rect), 0, colours.back);
    }
}

COLORREF disabled_text(const Colours& colours) {
    return colours.own_back || colours.own_text ? blend(colours.text, colours.back, 0.5F)
                                                : theme().text_disabled;
}

RectF to_f(const RECT& r) {
    return {static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
            static_cast<float>(r.bottom)};
}

RectF inset(RectF r, float by) {
    return {r.left + by, r.top + by, r.right - by, r.bottom - by};
}

void draw_field_outline(HDC dc, const RECT& rect, FieldState state, float radius) {
    const Theme& look = theme();
    COLORREF colour = edge_colour();
    if (!state.enabled) {
        colour = look.border;
    } else if (state.focused) {
        colour = look.accent;
    } else if (state.hovered) {
        colour = look.border_strong;
    }
    stroke_rounded(dc, to_f(rect), radius, 1, colour);
}

// The colours are those of the parent's pixels just off each corner, so that they are right on any
// background; the theme's where the parent shows nothing there.
void fill_behind_corners(const Control& control, HDC dc, const RECT& rect) {
    const HWND parent = GetParent(control.hwnd);
    RECT place;
    GetWindowRect(control.hwnd, place);
    POINT corner{place.left, place.top};
    ScreenToClient(parent, corner);
    const std::int32_t w = place.width();
    const std::int32_t h = place.height();
    const HDC outside = GetDC(parent);
    const std::int32_t reach = std::min({4, rect.width() / 2, rect.height() / 2});
    for (const bool right : {false, true}) {
        for (const bool bottom : {false, true}) {
            COLORREF colour =
                GetPixel(outside, corner.x + (right ? w : -1), corner.y + (bottom ? h : -1));
            if (colour == CLR_INVALID) colour = theme().face;
            RECT area = rect;
            (right ? area.left : area.right) = right ? rect.right - reach : rect.left + reach;
            (bottom ? area.top : area.bottom) = bottom ? rect.bottom - reach : rect.top + reach;
            fill_rounded(dc, to_f(area), 0, colour);
        }
    }
    ReleaseDC(parent, outside);
}

void draw_focus_ring(HDC dc, const RECT& rect, float radius) {
    stroke_rounded(dc, to_f(rect), radius, ring_width, theme().focus_ring);
}

void draw_chevron(HDC dc, PointF c, float size, Direction direction, COLORREF colour) {
    const float a = size / 2;
    const float b = size / 4;
    std::array<PointF, 3> points{};
    switch (direction) {
        case Direction::down:
            points = {{{c.x - a, c.y - b}, {c.x, c.y + b}, {c.x + a, c.y - b}}};
            break;
        case Direction::up:
            points = {{{c.x - a, c.y + b}, {c.x, c.y - b}, {c.x + a, c.y + b}}};
            break;
        case Direction::left:
            points = {{{c.x + b, c.y - a}, {c.x - b, c.y}, {c.x + b, c.y + a}}};
            break;
        case Direction::right:
            points = {{{c.x - b, c.y - a}, {c.x + b, c.y}, {c.x - b, c.y + a}}};
            break;
    }
    stroke_path(dc, points, stroke, colour);
}

void draw_check_mark(HDC dc, const RECT& box, COLORREF colour) {
    const PointF c = middle(box);
    const float u = static_cast<float>(box.width()) / 14.0F;
    const std::array<PointF, 3> points{{{c.x - 3.4F * u, c.y + 0.2F * u},
                                        {c.x - 1.1F * u, c.y + 2.5F * u},
                                        {c.x + 3.4F * u, c.y - 2.4F * u}}};
    stroke_path(dc, points, 1.7F * u, colour);
}

void draw_button_face(HDC dc, const RECT& rect, FaceState state) {
    const Theme& look = theme();
    const RectF r = to_f(rect);
    COLORREF face = look.button;
    COLORREF edge = edge_colour();
    if (!state.enabled) {
        face = look.button_disabled;
        edge = look.border;
    } else if (state.is_default) {
        face = state.pressed   ? look.accent_pressed
               : state.hovered ? look.accent_hover
                               : look.accent;
        edge = face;
    } else if (state.pressed) {
        face = look.button_pressed;
    } else if (state.hovered) {
        face = look.button_hover;
        edge = look.border_strong;
    }
    fill_rounded(dc, r, look.corner, face);
    if (edge != face) stroke_rounded(dc, r, look.corner, 1, edge);
}

COLORREF button_text_colour(FaceState state) {
    const Theme& look = theme();
    if (!state.enabled) return look.text_disabled;
    return state.is_default ? look.accent_text : look.text;
}

void draw_line(HDC dc, std::string_view utf8, RECT rect, std::uint32_t format) {
    draw_text(dc, utf8, rect, format | DT_SINGLELINE | DT_VCENTER);
}

std::string without_mnemonics(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) ++i;
        result += text[i];
    }
    return result;
}

namespace {
constexpr float border_radius = 3;  // what a border of one pixel can show

bool has_border(const Control& control) {
    const auto extended = static_cast<std::uint32_t>(GetWindowLong(control.hwnd, GWL_EXSTYLE));
    return control.has(WS_BORDER) || (extended & (WS_EX_CLIENTEDGE | WS_EX_STATICEDGE)) != 0;
}
}  // namespace

void draw_window_border(const Control& control, FieldState state) {
    if (control.dead || !has_border(control) || !IsWindowVisible(control.hwnd)) return;
    RECT rect;
    GetWindowRect(control.hwnd, rect);
    const HDC dc = GetWindowDC(control.hwnd);
    const RECT whole{0, 0, rect.width(), rect.height()};
    if (!control.has(WS_CHILD)) {
        // A list that drops down stands on the screen, where nothing is seen through its corners.
        draw_field_outline(dc, whole, state, 0);
        ReleaseDC(control.hwnd, dc);
        return;
    }
    const std::int32_t saved = SaveDC(dc);
    ExcludeClipRect(dc, {1, 1, whole.right - 1, whole.bottom - 1});
    ExcludeClipRect(dc, {2, 0, whole.right - 2, whole.bottom});
    ExcludeClipRect(dc, {0, 2, whole.right, whole.bottom - 2});
    fill_behind_corners(control, dc, whole);
    RestoreDC(dc, saved);
    draw_field_outline(dc, whole, state, border_radius);
    ReleaseDC(control.hwnd, dc);
}

void draw_inner_edge(const Control& control, const RECT& damaged, FieldState state) {
    const RECT inside = control.client();
    const bool touched = damaged.top < inside.top + 2 || damaged.bottom > inside.bottom - 2 ||
                         damaged.left < inside.left + 2 || damaged.right > inside.right - 2;
    if (!touched || !has_border(control) || !control.has(WS_CHILD)) return;
    RECT whole;
    GetWindowRect(control.hwnd, whole);
    POINT corner{whole.left, whole.top};
    ScreenToClient(control.hwnd, corner);
    // The frame's own outline once more, where the client area covered it: besides the corners that
    // is, at a fractional scale, a part of an edge.
    const HDC frame = GetWindowDC(control.hwnd);
    IntersectClipRect(frame, {inside.left - corner.x, inside.top - corner.y,
                              inside.right - corner.x, inside.bottom - corner.y});
    draw_field_outline(frame, {0, 0, whole.width(), whole.height()}, state, border_radius);
    ReleaseDC(control.hwnd, frame);
}

}  // namespace tarn::platform
