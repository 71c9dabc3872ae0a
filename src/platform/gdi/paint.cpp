#include "platform/gdi/paint.h"

#include <algorithm>
#include <cmath>

#include "platform/gdi/coverage.h"

namespace tarn::platform {

namespace {

// A coordinate that is whole in logical pixels lies on an edge of real ones, as with every plain
// rectangle; a broken one is meant exactly.
float snapped(const DeviceContext& dc, float logical, float exact, int axis) {
    if (logical != std::floor(logical) || std::fabs(logical) > 1e6F) return exact;
    const auto whole = static_cast<std::int32_t>(logical);
    return static_cast<float>(axis == 0 ? dc.x(whole) : dc.y(whole));
}

RectF real_rect(const DeviceContext& dc, const RectF& r) {
    return {snapped(dc, r.left, dc.exact_x(r.left), 0), snapped(dc, r.top, dc.exact_y(r.top), 1),
            snapped(dc, r.right, dc.exact_x(r.right), 0),
            snapped(dc, r.bottom, dc.exact_y(r.bottom), 1)};
}

float real_length(const DeviceContext& dc, float logical) {
    return logical * static_cast<float>(dc.surface.scale);
}

// Of a line: whole where it is whole in logical pixels, so that it stays sharp.
float real_width(const DeviceContext& dc, float logical) {
    const float exact = real_length(dc, logical);
    return logical == std::floor(logical) ? std::max(std::round(exact), 1.0F) : exact;
}

Ink ink_of(COLORREF colour) {
    return {pixel_of(colour), rop_pattern, nullptr};
}

std::vector<PointF> real_points(const DeviceContext& dc, std::span<const PointF> points) {
    std::vector<PointF> real;
    real.reserve(points.size());
    for (const PointF& p : points) real.push_back({dc.exact_x(p.x), dc.exact_y(p.y)});
    return real;
}

// How far outside a rounded rectangle a point is; below 0 inside.
float distance_outside(const RectF& r, float radius, float x, float y) {
    const float dx = std::max(r.left + radius - x, x - (r.right - radius));
    const float dy = std::max(r.top + radius - y, y - (r.bottom - radius));
    if (dx > 0 && dy > 0) return std::sqrt(dx * dx + dy * dy) - radius;
    return std::max(dx, dy) - radius;
}

}  // namespace

void fill_rounded(HDC handle, RectF rect, float radius, COLORREF colour, float opacity) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return;
    const float r = real_length(*dc, radius);
    fill_rounded_real(*dc, real_rect(*dc, rect), r, r, ink_of(colour), opacity);
}

void stroke_rounded(HDC handle, RectF rect, float radius, float width, COLORREF colour,
                    float opacity) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return;
    const float r = real_length(*dc, radius);
    stroke_rounded_real(*dc, real_rect(*dc, rect), r, r, real_width(*dc, width), ink_of(colour),
                        opacity);
}

void fill_path(HDC handle, std::span<const PointF> points, COLORREF colour, float opacity) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr || points.empty()) return;
    Path path;
    path.add_polygon(real_points(*dc, points));
    fill_coverage(*dc, path, ink_of(colour), opacity);
}

void stroke_path(HDC handle, std::span<const PointF> points, float width, COLORREF colour,
                 float opacity, bool closed) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr || points.empty()) return;
    Path path;
    path.add_stroke(real_points(*dc, points), real_length(*dc, width), closed);
    fill_coverage(*dc, path, ink_of(colour), opacity);
}

void fill_circle(HDC handle, PointF centre, float radius, COLORREF colour, float opacity) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr || !(radius > 0)) return;
    const float r = real_length(*dc, radius);
    const PointF c{dc->exact_x(centre.x), dc->exact_y(centre.y)};
    Path path;
    path.add_rounded({c.x - r, c.y - r, c.x + r, c.y + r}, r, r);
    fill_coverage(*dc, path, ink_of(colour), opacity);
}

// Falls off with the square of the distance, which looks like the blur of a soft light. Nothing is
// drawn inside: what casts the shadow lies there.
void draw_shadow(HDC handle, RectF rect, float radius, float spread, float opacity) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr || !(spread > 0) || !(rect.left < rect.right && rect.top < rect.bottom))
        return;
    const RectF r = real_rect(*dc, rect);
    const float corner = real_length(*dc, radius), reach = real_length(*dc, spread);
    const auto bound = [](float v) {
        return static_cast<std::int32_t>(std::clamp(v, -1e8F, 1e8F));
    };
    const RECT area{bound(std::floor(r.left - reach)), bound(std::floor(r.top - reach)),
                    bound(std::ceil(r.right + reach)), bound(std::ceil(r.bottom + reach))};
    const auto shade = [&](const RECT& strip) {
        for_each_visible(*dc, strip, [&](const RECT& part) {
            for (std::int32_t y = part.top; y < part.bottom; ++y) {
                std::uint32_t* row = pixel_row(dc->surface, y);
                for (std::int32_t x = part.left; x < part.right; ++x) {
                    const float away = distance_outside(r, corner, static_cast<float>(x) + 0.5F,
                                                        static_cast<float>(y) + 0.5F);
                    if (away <= 0 || away >= reach) continue;
                    const float left = 1 - away / reach;
                    const float dark = left * left * std::clamp(opacity, 0.0F, 1.0F);
                    row[x] = mix(row[x], 0xFF000000u, static_cast<std::uint32_t>(dark * 255));
                }
            }
        });
    };
    const RECT inside{bound(std::ceil(r.left + corner)), bound(std::ceil(r.top + corner)),
                      bound(std::floor(r.right - corner)), bound(std::floor(r.bottom - corner))};
    if (inside.empty()) {
        shade(area);
        return;
    }
    shade({area.left, area.top, area.right, inside.top});
    shade({area.left, inside.bottom, area.right, area.bottom});
    shade({area.left, inside.top, inside.left, inside.bottom});
    shade({inside.right, inside.top, area.right, inside.bottom});
}

}  // namespace tarn::platform
