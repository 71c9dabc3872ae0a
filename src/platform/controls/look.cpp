#include "platform/controls/look.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/gdi/context.h"

namespace tarn::platform {
namespace {

// Where the marks and rings of this room get their proportions.
constexpr float ring_width = 2.0F;
constexpr float stroke = 1.5F;

PointF middle(const RECT& r) {
    return {static_cast<float>(r.left + r.right) / 2, static_cast<float>(r.top + r.bottom) / 2};
}

}  // namespace

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
    if (result.brush != 0) {
        COLORREF brush_colour = 0;
        if (result.brush == GetStockObject(NULL_BRUSH)) {
            result.hollow = true;
        } else if (result.back == back && GetObjectBrush(result.brush, brush_colour)) {
            result.back = brush_colour;
        }
    }
    result.own_text = result.text != text;
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

RectF sharp(HDC dc, RectF r) {
    const DeviceContext* context = find_context(dc);
    if (context == nullptr) return r;
    const auto scale = static_cast<float>(context->surface.scale);
    const float x0 = context->exact_x(0);
    const float y0 = context->exact_y(0);
    const auto snap = [scale](float at, float zero) {
        return (std::floor(at * scale + zero + 0.5F) - zero) / scale;
    };
    return {snap(r.left, x0), snap(r.top, y0), snap(r.right, x0), snap(r.bottom, y0)};
}

float line_width(HDC dc) {
    const Surface* surface = surface_of(dc);
    if (surface == nullptr) return 1.0F;
    const auto scale = static_cast<float>(surface->scale);
    return std::max(1.0F, std::floor(scale + 0.25F)) / scale;
}

void draw_field_outline(HDC dc, const RECT& rect, FieldState state) {
    const Theme& look = theme();
    COLORREF colour = look.border_strong;
    if (!state.enabled) {
        colour = look.border;
    } else if (state.focused) {
        colour = look.accent;
    } else if (state.hovered) {
        colour = look.border_hover;
    }
    stroke_rounded(dc, sharp(dc, to_f(rect)), look.corner, line_width(dc), colour);
}

void draw_focus_ring(HDC dc, const RECT& rect, float radius) {
    stroke_rounded(dc, sharp(dc, to_f(rect)), radius, ring_width, theme().focus_ring);
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
    const std::array<PointF, 3> points{
        {{c.x - 3.4F * u, c.y + 0.2F * u}, {c.x - 1.1F * u, c.y + 2.5F * u}, {c.x + 3.4F * u, c.y - 2.4F * u}}};
    stroke_path(dc, points, 1.7F * u, colour);
}

void draw_button_face(HDC dc, const RECT& rect, FaceState state) {
    const Theme& look = theme();
    const RectF r = sharp(dc, to_f(rect));
    COLORREF face = look.button;
    COLORREF edge = look.border_strong;
    if (!state.enabled) {
        face = look.button_disabled;
        edge = look.border;
    } else if (state.is_default) {
        face = state.pressed ? look.accent_pressed : state.hovered ? look.accent_hover : look.accent;
        edge = face;
    } else if (state.pressed) {
        face = look.button_pressed;
    } else if (state.hovered) {
        face = look.button_hover;
        edge = look.border_hover;
    }
    fill_rounded(dc, r, look.corner, face);
    if (edge != face) stroke_rounded(dc, r, look.corner, line_width(dc), edge);
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

void draw_window_border(const Control& control, FieldState state) {
    const std::uint32_t extended =
        static_cast<std::uint32_t>(GetWindowLong(control.hwnd, GWL_EXSTYLE));
    if (!control.has(WS_BORDER) && (extended & (WS_EX_CLIENTEDGE | WS_EX_STATICEDGE)) == 0) return;
    RECT rect;
    GetWindowRect(control.hwnd, rect);
    const HDC dc = GetWindowDC(control.hwnd);
    const RECT whole{0, 0, rect.width(), rect.height()};
    draw_field_outline(dc, whole, state);
    ReleaseDC(control.hwnd, dc);
}

}  // namespace tarn::platform
