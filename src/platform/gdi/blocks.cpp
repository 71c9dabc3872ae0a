// Blocks of pixels: copied, stretched, scrolled, flooded, read and set one by one.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "platform/gdi/raster.h"

namespace tarn::platform {

namespace {

// The pattern operand of a raster code is the context's brush.
Ink block_ink(const DeviceContext& dc, Rop rop) {
    Ink ink;
    brush_ink(*dc.state.brush, rop, ink);
    return ink;
}

// `row` of the surface from (x, y) on, combined with `count` source pixels.
void combine_source(const DeviceContext& dc, std::int32_t x, std::int32_t y,
                    const std::uint32_t* source, std::int32_t count, const Ink& ink,
                    std::vector<std::uint32_t>& pattern) {
    std::uint32_t* row = pixel_row(dc.surface, y) + x;
    if (ink.rop == rop_source) {
        std::memmove(row, source, std::size_t(count) * sizeof *row);
        return;
    }
    pattern.assign(static_cast<std::size_t>(count), ink.pixel);
    if (ink.pattern != nullptr) pattern_row(dc, *ink.pattern, x, y, count, pattern.data());
    combine_row(row, count, source, pattern.data(), ink.rop);
}

// Where pixels fall on pixels. `from` is another surface, or this one with its rows gone through
// in the order that leaves an overlap intact.
void copy_block(const DeviceContext& dc, const RECT& block, const Surface& from, POINT at,
                const Ink& ink) {
    const std::int32_t dx = at.x - block.left, dy = at.y - block.top;
    const RECT sound = intersection(block, {-dx, -dy, from.width - dx, from.height - dy});
    if (sound.empty()) return;
    const bool itself = from.pixels == dc.surface.pixels;
    const bool upward = itself && dy < 0;
    std::vector<std::uint32_t> pattern, kept;
    for_each_visible(dc, sound, [&](const RECT& part) {
        for (std::int32_t i = 0; i < part.height(); ++i) {
            const std::int32_t y = upward ? part.bottom - 1 - i : part.top + i;
            const std::uint32_t* source = pixel_row(from, y + dy) + part.left + dx;
            if (itself && dy == 0 && ink.rop != rop_source) {
                kept.assign(source, source + part.width());
                source = kept.data();
            }
            combine_source(dc, part.left, y, source, part.width(), ink, pattern);
        }
    });
}

// A part of a surface on its own.
struct Picture {
    std::vector<std::uint32_t> pixels;
    Surface surface;
};

Picture copy_of(const Surface& from, const RECT& part) {
    Picture copy;
    const RECT sound = intersection(part, {0, 0, from.width, from.height});
    copy.surface = from;
    copy.surface.width = copy.surface.stride = std::max(part.width(), 0);
    copy.surface.height = std::max(part.height(), 0);
    copy.pixels.assign(std::size_t(copy.surface.width) * copy.surface.height, 0xFF000000u);
    copy.surface.pixels = copy.pixels.data();
    for (std::int32_t y = sound.top; y < sound.bottom; ++y) {
        std::copy_n(pixel_row(from, y) + sound.left, std::max(sound.width(), 0),
                    pixel_row(copy.surface, y - part.top) + sound.left - part.left);
    }
    return copy;
}

// A picture's part, in its own real pixels; a width below 0 mirrors.
struct Source {
    const Surface* surface;
    double x, y, width, height;
    bool smooth;
};

std::uint32_t nearest_inside(const Surface& s, std::int32_t x, std::int32_t y) {
    return pixel_row(s, std::clamp(y, 0, s.height - 1))[std::clamp(x, 0, s.width - 1)];
}

std::uint32_t smooth_pixel(const Surface& s, double x, double y) {
    const double left = std::floor(x - 0.5), top = std::floor(y - 0.5);
    const auto fx = static_cast<std::uint32_t>((x - 0.5 - left) * 255);
    const auto fy = static_cast<std::uint32_t>((y - 0.5 - top) * 255);
    const auto ix = static_cast<std::int32_t>(left), iy = static_cast<std::int32_t>(top);
    return mix(mix(nearest_inside(s, ix, iy), nearest_inside(s, ix + 1, iy), fx),
               mix(nearest_inside(s, ix, iy + 1), nearest_inside(s, ix + 1, iy + 1), fx), fy);
}

void stretch_block(const DeviceContext& dc, const RECT& block, const Source& source,
                   const Ink& ink) {
    const Surface& s = *source.surface;
    const double step_x = source.width / block.width(), step_y = source.height / block.height();
    const auto column = [&](std::int32_t x) { return source.x + (x - block.left + 0.5) * step_x; };
    const auto inside = [](double v, std::int32_t size) { return v >= 0 && v < size; };
    std::vector<std::uint32_t> row, pattern;
    for_each_visible(dc, block, [&](const RECT& part) {
        // What would come from outside the source stays as it is.
        std::int32_t left = part.left, right = part.right;
        while (left < right && !inside(column(left), s.width)) ++left;
        while (left < right && !inside(column(right - 1), s.width)) --right;
        row.resize(static_cast<std::size_t>(right - left));
        for (std::int32_t y = part.top; y < part.bottom && left < right; ++y) {
            const double from_y = source.y + (y - block.top + 0.5) * step_y;
            if (!inside(from_y, s.height)) continue;
            const std::uint32_t* from = pixel_row(s, static_cast<std::int32_t>(from_y));
            for (std::int32_t x = left; x < right; ++x) {
                row[x - left] = source.smooth ? smooth_pixel(s, column(x), from_y)
                                              : from[static_cast<std::int32_t>(column(x))];
            }
            combine_source(dc, left, y, row.data(), right - left, ink, pattern);
        }
    });
}

// Between contexts of different factors a picture grows or shrinks; by a whole factor its pixels
// stay sharp, otherwise they are blended.
bool blend_for_scale(const DeviceContext& to, const DeviceContext& from) {
    const double factor = to.surface.scale / from.surface.scale;
    return std::fabs(factor - std::round(factor)) > 1e-6;
}

bool stretch(DeviceContext& to, const RECT& wanted, const DeviceContext& from, const RECT& part,
             std::uint32_t code) {
    const Rop rop = rop_of_code(code);
    RECT block = to.real(wanted);
    const RECT real = from.real(part);
    if (block.left == block.right || block.top == block.bottom) return true;
    const Ink ink = block_ink(to, rop);
    if (block.width() == real.width() && block.height() == real.height() && block.width() > 0 &&
        block.height() > 0) {
        copy_block(to, block, from.surface, {real.left, real.top}, ink);
        return true;
    }
    // The logical part exactly: its rounded edges would shift what is in between.
    Source source{&from.surface,      real.left + 0.0,     real.top + 0.0,
                  real.width() + 0.0, real.height() + 0.0, false};
    const bool same_size = wanted.width() == part.width() && wanted.height() == part.height();
    source.smooth = same_size && blend_for_scale(to, from);
    if (block.right < block.left) {
        std::swap(block.left, block.right);
        source.x += source.width;
        source.width = -source.width;
    }
    if (block.bottom < block.top) {
        std::swap(block.top, block.bottom);
        source.y += source.height;
        source.height = -source.height;
    }
    Picture copy;
    if (from.surface.pixels == to.surface.pixels) {
        const RECT all{0, 0, from.surface.width, from.surface.height};
        copy = copy_of(from.surface, all);
        source.surface = &copy.surface;
    }
    stretch_block(to, block, source, ink);
    return true;
}

bool whole_pixels(const DeviceContext& dc, std::int32_t logical) {
    const double real = logical * dc.surface.scale;
    return real == std::floor(real);
}

struct FloodRun {
    std::int32_t left, right, y;
};

}  // namespace

bool PatBlt(HDC handle, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
            std::uint32_t code) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || rop_uses_source(rop_of_code(code))) return false;
    RECT block = tame_block(x, y, w, h);
    if (block.right < block.left) std::swap(block.left, block.right);
    if (block.bottom < block.top) std::swap(block.top, block.bottom);
    if (rop_uses_pattern(rop_of_code(code)) && dc->state.brush->hollow) return true;
    paint_block(*dc, dc->real(block), block_ink(*dc, rop_of_code(code)));
    return true;
}

bool BitBlt(HDC to, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, HDC from,
            std::int32_t from_x, std::int32_t from_y, std::uint32_t code) {
    if (!rop_uses_source(rop_of_code(code))) return PatBlt(to, x, y, w, h, code);
    return StretchBlt(to, x, y, w, h, from, from_x, from_y, w, h, code);
}

bool StretchBlt(HDC to, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, HDC from,
                std::int32_t from_x, std::int32_t from_y, std::int32_t from_w, std::int32_t from_h,
                std::uint32_t code) {
    DeviceContext* target = find_context(to);
    const DeviceContext* source = find_context(from);
    if (target == nullptr || source == nullptr || source->surface.pixels == nullptr) return false;
    return stretch(*target, tame_block(x, y, w, h), *source,
                   tame_block(from_x, from_y, from_w, from_h), code);
}

COLORREF GetPixel(HDC handle, std::int32_t x, std::int32_t y) {
    const DeviceContext* dc = find_context(handle);
    x = tame(x), y = tame(y);
    if (dc == nullptr || !RectVisible(handle, {x, y, x + 1, y + 1})) return CLR_INVALID;
    const std::int32_t rx = dc->x(x), ry = dc->y(y);
    if (rx < 0 || ry < 0 || rx >= dc->surface.width || ry >= dc->surface.height) {
        return CLR_INVALID;
    }
    return colour_of(pixel_row(dc->surface, ry)[rx]);
}

COLORREF SetPixel(HDC handle, std::int32_t x, std::int32_t y, COLORREF colour) {
    DeviceContext* dc = find_context(handle);
    x = tame(x), y = tame(y);
    if (dc == nullptr || !RectVisible(handle, {x, y, x + 1, y + 1})) return CLR_INVALID;
    paint_block(*dc, dc->real({x, y, x + 1, y + 1}), {pixel_of(colour), rop_pattern, nullptr});
    return colour & 0xFFFFFF;
}

// Kind 0 floods up to the colour, kind 1 floods what has the colour.
bool ExtFloodFill(HDC handle, std::int32_t x, std::int32_t y, COLORREF colour, std::uint32_t kind) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || kind > 1 || dc->state.brush->hollow) return false;
    const POINT start{dc->x(x), dc->y(y)};
    const RECT bounds = dc->real_bounds;
    const std::int32_t width = bounds.width();
    // Reached or forbidden pixels, a byte each: the clip's shape first, then what has been flooded.
    std::vector<std::uint8_t> closed(std::size_t(std::max(width, 0)) * std::max(bounds.height(), 0),
                                     1);
    const auto mark = [&](std::int32_t px, std::int32_t py) -> std::uint8_t& {
        return closed[std::size_t(py - bounds.top) * width + (px - bounds.left)];
    };
    const std::uint32_t wanted = pixel_of(colour & 0xFFFFFF);
    for (const RECT& clip : dc->real_clip) {
        for (std::int32_t py = clip.top; py < clip.bottom; ++py) {
            const std::uint32_t* row = pixel_row(dc->surface, py);
            for (std::int32_t px = clip.left; px < clip.right; ++px) {
                mark(px, py) = ((row[px] | 0xFF000000u) == wanted) == (kind == 0);
            }
        }
    }
    if (!bounds.contains(start) || mark(start.x, start.y) != 0) return false;
    const Ink ink = block_ink(*dc, rop_of_rop2(dc->state.rop2));
    std::vector<POINT> waiting{start};
    while (!waiting.empty()) {
        const POINT at = waiting.back();
        waiting.pop_back();
        if (mark(at.x, at.y) != 0) continue;
        FloodRun run{at.x, at.x + 1, at.y};
        while (run.left > bounds.left && mark(run.left - 1, run.y) == 0) --run.left;
        while (run.right < bounds.right && mark(run.right, run.y) == 0) ++run.right;
        std::fill(&mark(run.left, run.y), &mark(run.left, run.y) + (run.right - run.left), 1);
        paint_block(*dc, {run.left, run.y, run.right, run.y + 1}, ink);
        for (const std::int32_t ny : {run.y - 1, run.y + 1}) {
            if (ny < bounds.top || ny >= bounds.bottom) continue;
            for (std::int32_t px = run.left; px < run.right; ++px) {
                const bool begins = px == run.left || mark(px - 1, ny) != 0;
                if (mark(px, ny) == 0 && begins) waiting.push_back({px, ny});
            }
        }
    }
    return true;
}

// Pixels move where the way is a whole number of real ones and one rectangle is visible;
// otherwise all is painted anew, which is never wrong.
bool ScrollDC(HDC handle, std::int32_t dx, std::int32_t dy, const RECT* scroll, const RECT* clip,
              RECT* uncovered) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    RECT area;
    if (GetClipBox(handle, area) == NULLREGION) {
        if (uncovered != nullptr) *uncovered = {};
        return true;
    }
    dx = tame(dx), dy = tame(dy);
    if (clip != nullptr) area = intersection(area, *clip);
    const RECT moving = scroll == nullptr ? area : intersection(area, *scroll);
    const RECT target = intersection(
        area, {moving.left + dx, moving.top + dy, moving.right + dx, moving.bottom + dy});
    RECT anew = moving.empty() ? RECT{} : moving;
    const bool can_move = dc->real_clip.size() == 1 && whole_pixels(*dc, dx) &&
                          whole_pixels(*dc, dy) && !moving.empty() && !target.empty();
    if (can_move) {
        const RECT block = dc->real(target);
        const POINT shift{static_cast<std::int32_t>(std::lround(dx * dc->surface.scale)),
                          static_cast<std::int32_t>(std::lround(dy * dc->surface.scale))};
        copy_block(*dc, block, dc->surface, {block.left - shift.x, block.top - shift.y},
                   {0, rop_source, nullptr});
        // Left over: what moved away and wasn't moved upon. A strip when it went one way only.
        if (dx == 0 && dy > 0) anew.bottom = std::min(anew.bottom, target.top);
        if (dx == 0 && dy < 0) anew.top = std::max(anew.top, target.bottom);
        if (dy == 0 && dx > 0) anew.right = std::min(anew.right, target.left);
        if (dy == 0 && dx < 0) anew.left = std::max(anew.left, target.right);
        if (dx == 0 && dy == 0) anew = {};
    }
    if (uncovered != nullptr) *uncovered = anew.empty() ? RECT{} : anew;
    return true;
}

}  // namespace tarn::platform
