// Lines and shapes by the platform's whole-number rules; what can't be plain (wide lines, round
// shapes) is drawn by coverage.
#include <algorithm>
#include <cmath>

#include "platform/gdi/coverage.h"
#include "platform/gdi/raster.h"

namespace tarn::platform {

namespace {

// Lengths of marks and gaps in turn, in logical pixels; they end with a zero.
constexpr std::uint8_t dash_lengths[5][7] = {
    {0}, {18, 6, 0}, {3, 3, 0}, {9, 6, 3, 6, 0}, {9, 3, 3, 3, 3, 3, 0}};

struct Dashes {
    const std::uint8_t* lengths = nullptr;  // null: solid
    std::int32_t unit = 1;                  // real pixels of a logical one
    bool gaps_painted = false;
    Ink gap;

    bool mark(std::int64_t at) const {
        std::int64_t whole = 0;
        for (int i = 0; lengths[i] != 0; ++i) whole += lengths[i];
        if (whole == 0) return true;
        std::int64_t rest = (at / unit) % whole;
        int i = 0;
        while (rest >= lengths[i]) rest -= lengths[i++];
        return i % 2 == 0;
    }
};

Dashes pen_dashes(const DeviceContext& dc) {
    Dashes dashes;
    const Pen& pen = *dc.state.pen;
    if (pen.style < PS_DASH || pen.style > PS_DASHDOTDOT || pen.width > 1) return dashes;
    dashes.lengths = dash_lengths[pen.style];
    dashes.unit = dc.thickness(1);
    dashes.gaps_painted = dc.state.back_mode == OPAQUE;
    dashes.gap = {pixel_of(dc.state.back_colour), rop_of_rop2(dc.state.rop2), nullptr};
    return dashes;
}

std::int64_t floor_div(std::int64_t a, std::int64_t b) {
    return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
}

void put_run(const Surface& surface, const RECT& run, const Ink& ink) {
    if (ink.rop == rop_pattern) {
        fill_block(surface, run, ink.pixel);
    } else {
        combine_block(surface, run, ink.pixel, ink.rop);
    }
}

// A line along its longer axis u, a mark of `thick` pixels across it at each step. A tie goes to
// the smaller coordinate in either direction, so that a line there and back is one line. The last
// logical pixel isn't drawn. Returns how far the dashes went.
struct ThinLine {
    bool upright;  // u is y
    std::int64_t u0, v0, u1, v1;
    std::int32_t thick;

    std::int64_t begin() const { return u0 <= u1 ? u0 : u1 + thick; }
    std::int64_t end() const { return u0 <= u1 ? u1 : u0 + thick; }
    // Twice the distance of v from v0 in parts of du, so that halves are whole.
    std::int64_t v_at(std::int64_t u) const {
        const std::int64_t du = u1 - u0, dv = v1 - v0;
        if (du == 0) return v0;
        const std::int64_t sign = du < 0 ? -1 : 1;
        // The ceiling of (exact - 1/2).
        return v0 - floor_div(-(2 * (u - u0) * dv * sign - du * sign), 2 * du * sign);
    }
    RECT run(std::int64_t from, std::int64_t to, std::int64_t v) const {
        const auto a = static_cast<std::int32_t>(from), b = static_cast<std::int32_t>(to);
        const auto c = static_cast<std::int32_t>(v);
        return upright ? RECT{c, a, c + thick, b} : RECT{a, c, b, c + thick};
    }
};

void paint_thin_line(const DeviceContext& dc, const ThinLine& line, const Ink& ink,
                     const Dashes& dashes, std::int64_t phase) {
    const std::int64_t begin = line.begin(), end = line.end();
    if (begin >= end) return;
    if (line.v0 == line.v1 && dashes.lengths == nullptr) {
        paint_block(dc, line.run(begin, end, line.v0), ink);
        return;
    }
    const std::int64_t low = std::min(line.v0, line.v1), high = std::max(line.v0, line.v1);
    RECT bounds = line.run(begin, end, low);
    (line.upright ? bounds.right : bounds.bottom) = static_cast<std::int32_t>(high) + line.thick;
    // Drawn backwards the steps are counted, and their centres lie, from the other end.
    const std::int64_t shift = line.u0 <= line.u1 ? 0 : line.thick - 1;
    for_each_visible(dc, bounds, [&](const RECT& clip) {
        const std::int64_t from = line.upright ? clip.top : clip.left;
        const std::int64_t to = line.upright ? clip.bottom : clip.right;
        for (std::int64_t u = from; u < to; ++u) {
            const std::int64_t step = line.u0 <= line.u1 ? u - begin : end - 1 - u;
            const bool mark = dashes.lengths == nullptr || dashes.mark(step + phase);
            if (!mark && !dashes.gaps_painted) continue;
            const RECT run = intersection(line.run(u, u + 1, line.v_at(u - shift)), clip);
            if (!run.empty()) put_run(dc.surface, run, mark ? ink : dashes.gap);
        }
    });
}

ThinLine thin_line(const DeviceContext& dc, POINT a, POINT b) {
    const std::int32_t x0 = dc.x(a.x), y0 = dc.y(a.y), x1 = dc.x(b.x), y1 = dc.y(b.y);
    const bool upright = std::abs(y1 - y0) > std::abs(x1 - x0);
    if (upright) return {true, y0, x0, y1, x1, dc.thickness(1)};
    return {false, x0, y0, x1, y1, dc.thickness(1)};
}

// The middle of a wide pen at a point: on the pixels' edge for an even width, so that level and
// upright lines stay sharp.
PointF pen_centre(const DeviceContext& dc, POINT p, std::int32_t width) {
    const float middle = width % 2 == 0 ? 0.0F : 0.5F;
    return {static_cast<float>(dc.x(p.x)) + middle, static_cast<float>(dc.y(p.y)) + middle};
}

void stroke_wide(const DeviceContext& dc, std::span<const POINT> points, bool closed) {
    const std::int32_t width = dc.thickness(dc.state.pen->width);
    std::vector<PointF> line;
    line.reserve(points.size());
    for (const POINT p : points) line.push_back(pen_centre(dc, p, width));
    Path path;
    path.add_stroke(line, static_cast<float>(width), closed);
    fill_coverage(dc, path, pen_ink(dc));
}

void stroke_points(const DeviceContext& dc, std::span<const POINT> points, bool closed) {
    const Pen& pen = *dc.state.pen;
    if (pen.style == PS_NULL || points.empty()) return;
    if (pen.width > 1) {
        stroke_wide(dc, points, closed);
        return;
    }
    const Ink ink = pen_ink(dc);
    const Dashes dashes = pen_dashes(dc);
    std::int64_t phase = 0;
    const std::size_t count = closed ? points.size() : points.size() - 1;
    for (std::size_t i = 0; i < count; ++i) {
        const ThinLine line = thin_line(dc, points[i], points[(i + 1) % points.size()]);
        paint_thin_line(dc, line, ink, dashes, phase);
        phase += std::max<std::int64_t>(line.end() - line.begin(), 0);
    }
}

struct Edge {
    std::int32_t top, bottom;  // rows whose middle lies beside the edge
    std::int64_t x0, y0, dx, dy;
    // The first column whose pixel point lies on the edge or right of it.
    std::int32_t column(std::int32_t y) const {
        return static_cast<std::int32_t>(x0 - floor_div(-(y - y0) * dx, dy));
    }
};

// Alternate filling: a row's crossings in pairs, left included and right not.
void fill_polygon(const DeviceContext& dc, std::span<const POINT> points, const Ink& ink) {
    std::vector<Edge> edges;
    edges.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        POINT a = points[i], b = points[(i + 1) % points.size()];
        a = {dc.x(a.x), dc.y(a.y)};
        b = {dc.x(b.x), dc.y(b.y)};
        if (a.y == b.y) continue;
        if (a.y > b.y) std::swap(a, b);
        edges.push_back({a.y, b.y, a.x, a.y, std::int64_t{b.x} - a.x, std::int64_t{b.y} - a.y});
    }
    std::sort(edges.begin(), edges.end(),
              [](const Edge& a, const Edge& b) { return a.top < b.top; });
    std::vector<Edge> active;
    std::vector<std::int32_t> crossings;
    std::size_t next = 0;
    for (std::int32_t y = edges.empty() ? 0 : std::max(edges[0].top, dc.real_bounds.top);
         y < dc.real_bounds.bottom && (next < edges.size() || !active.empty()); ++y) {
        for (; next < edges.size() && edges[next].top <= y; ++next) active.push_back(edges[next]);
        std::erase_if(active, [y](const Edge& e) { return e.bottom <= y; });
        crossings.clear();
        for (const Edge& e : active) crossings.push_back(e.column(y));
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
            paint_block(dc, {crossings[i], y, crossings[i + 1], y + 1}, ink);
        }
    }
}

// What a closed shape consists of: the outer edge of its outline in real pixels, the outline's
// thickness (0: none), and what lies inside.
struct Framed {
    RECT outer;
    std::int32_t pen = 0;
    RECT inner() const {
        return {outer.left + pen, outer.top + pen, outer.right - pen, outer.bottom - pen};
    }
};

Framed framed(const DeviceContext& dc, std::int32_t left, std::int32_t top, std::int32_t right,
              std::int32_t bottom) {
    const Pen& pen = *dc.state.pen;
    left = tame(left), top = tame(top), right = tame(right), bottom = tame(bottom);
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
    // Without an outline the shape is one pixel smaller: where its last row would have been.
    if (pen.style == PS_NULL) return {dc.real({left, top, right - 1, bottom - 1}), 0};
    const bool inside = pen.style == PS_INSIDEFRAME;
    const std::int32_t before = inside ? 0 : pen.width / 2;
    const std::int32_t behind = inside ? 0 : (pen.width + 1) / 2 - 1;
    return {dc.real({left - before, top - before, right + behind, bottom + behind}),
            dc.thickness(pen.width)};
}

RectF as_floats(const RECT& r) {
    return {static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
            static_cast<float>(r.bottom)};
}

// An ellipse is a rectangle with nothing but corners.
bool rounded_shape(DeviceContext& dc, const Framed& shape, float rx, float ry) {
    Ink ink;
    const auto pen = static_cast<float>(shape.pen);
    if (brush_ink(*dc.state.brush, rop_of_rop2(dc.state.rop2), ink)) {
        // To the middle of the outline, so that no background shines between the two.
        RectF inside = as_floats(shape.outer);
        const float inset = ink.rop == rop_pattern ? pen / 2 : pen;
        inside = {inside.left + inset, inside.top + inset, inside.right - inset,
                  inside.bottom - inset};
        fill_rounded_real(dc, inside, std::max(rx - inset, 0.0F), std::max(ry - inset, 0.0F), ink);
    }
    if (shape.pen > 0) {
        stroke_rounded_real(dc, as_floats(shape.outer), rx, ry, pen, pen_ink(dc));
    }
    return true;
}

}  // namespace

bool MoveToEx(HDC handle, std::int32_t x, std::int32_t y, POINT* old) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    if (old != nullptr) *old = dc->state.at;
    dc->state.at = {x, y};
    return true;
}

bool LineTo(HDC handle, std::int32_t x, std::int32_t y) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    const POINT ends[] = {dc->state.at, {x, y}};
    stroke_points(*dc, ends, false);
    dc->state.at = {x, y};
    return true;
}

bool GetCurrentPositionEx(HDC handle, POINT& at) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    at = dc->state.at;
    return true;
}

bool Rectangle(HDC handle, std::int32_t left, std::int32_t top, std::int32_t right,
               std::int32_t bottom) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    const Framed shape = framed(*dc, left, top, right, bottom);
    Ink ink;
    if (brush_ink(*dc->state.brush, rop_of_rop2(dc->state.rop2), ink)) {
        paint_block(*dc, shape.inner(), ink);
    }
    if (shape.pen == 0) return true;
    if (pen_dashes(*dc).lengths != nullptr) {
        const POINT corners[] = {{left, top},
                                 {tame(right) - 1, top},
                                 {tame(right) - 1, tame(bottom) - 1},
                                 {left, tame(bottom) - 1}};
        stroke_points(*dc, corners, true);
    } else {
        paint_frame(*dc, shape.outer, shape.pen, pen_ink(*dc));
    }
    return true;
}

bool RoundRect(HDC handle, std::int32_t left, std::int32_t top, std::int32_t right,
               std::int32_t bottom, std::int32_t width, std::int32_t height) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    const auto scale = static_cast<float>(dc->surface.scale);
    return rounded_shape(*dc, framed(*dc, left, top, right, bottom),
                         std::fabs(static_cast<float>(width)) * scale / 2,
                         std::fabs(static_cast<float>(height)) * scale / 2);
}

bool Ellipse(HDC handle, std::int32_t left, std::int32_t top, std::int32_t right,
             std::int32_t bottom) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    const Framed shape = framed(*dc, left, top, right, bottom);
    return rounded_shape(*dc, shape, static_cast<float>(shape.outer.width()) / 2,
                         static_cast<float>(shape.outer.height()) / 2);
}

bool Polygon(HDC handle, const POINT* points, std::int32_t count) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || points == nullptr || count < 2) return false;
    const std::span<const POINT> all(points, static_cast<std::size_t>(count));
    Ink ink;
    if (brush_ink(*dc->state.brush, rop_of_rop2(dc->state.rop2), ink)) {
        fill_polygon(*dc, all, ink);
    }
    stroke_points(*dc, all, true);
    return true;
}

bool Polyline(HDC handle, const POINT* points, std::int32_t count) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || points == nullptr || count < 2) return false;
    stroke_points(*dc, {points, static_cast<std::size_t>(count)}, false);
    return true;
}

bool FillRect(HDC handle, const RECT& rect, HBRUSH filler) {
    DeviceContext* dc = find_context(handle);
    const Brush* brush = find_brush(filler);
    if (dc == nullptr || brush == nullptr) return false;
    Ink ink;
    if (brush_ink(*brush, rop_pattern, ink)) paint_block(*dc, dc->real(rect), ink);
    return true;
}

bool FrameRect(HDC handle, const RECT& rect, HBRUSH filler) {
    DeviceContext* dc = find_context(handle);
    const Brush* brush = find_brush(filler);
    if (dc == nullptr || brush == nullptr) return false;
    Ink ink;
    if (brush_ink(*brush, rop_pattern, ink)) {
        paint_frame(*dc, dc->real(rect), dc->thickness(1), ink);
    }
    return true;
}

// A frame of dots that a second call takes away: every other pixel is inverted.
bool DrawFocusRect(HDC handle, const RECT& rect) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    if (rect.empty()) return true;
    const RECT block = dc->real(rect);
    const std::int32_t dot = dc->thickness(1);
    const auto side = [&](const RECT& area) {
        for_each_visible(*dc, area, [&](const RECT& part) {
            for (std::int32_t y = part.top; y < part.bottom; ++y) {
                std::uint32_t* row = pixel_row(dc->surface, y);
                for (std::int32_t x = part.left; x < part.right; ++x) {
                    const std::int32_t at = (x - block.left) / dot + (y - block.top) / dot;
                    if (at % 2 == 0) row[x] ^= 0xFFFFFF;
                }
            }
        });
    };
    side({block.left, block.top, block.right, block.top + dot});
    if (block.height() <= dot) return true;
    side({block.left, block.bottom - dot, block.right, block.bottom});
    side({block.left, block.top + dot, block.left + dot, block.bottom - dot});
    if (block.width() > dot) {
        side({block.right - dot, block.top + dot, block.right, block.bottom - dot});
    }
    return true;
}

}  // namespace tarn::platform
