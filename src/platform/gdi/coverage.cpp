#include "platform/gdi/coverage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tarn::platform {

namespace {

constexpr float pi = 3.14159265F;
constexpr std::int32_t band_rows = 16;

// Chords so short that they leave the arc by less than a fiftieth of a pixel.
int chords(float radius, float angle) {
    const float most = std::acos(std::max(1.0F - 0.02F / std::max(radius, 0.1F), -1.0F)) * 2;
    return std::clamp(static_cast<int>(std::ceil(std::fabs(angle) / most)), 1, 512);
}

// A winding sum as a byte; contours over each other count once.
std::uint8_t coverage_byte(float sum, float most) {
    const float exact = std::min(std::fabs(sum), 1.0F) * most;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(exact * 2 + 1) / 2);
}

// The signed areas of a few rows: entry x of a row is what the coverage changes by from pixel
// x - 1 to pixel x. Edges left of the window count in its first column, edges right of it nowhere.
class Band {
  public:
    void set_columns(std::int32_t left, std::int32_t width) {
        left_ = static_cast<float>(left);
        width_ = width;
        const std::size_t size = std::size_t(width + 2) * band_rows;
        if (sums_.size() < size) sums_.resize(size);
    }

    void begin(std::int32_t top, std::int32_t rows) {
        top_ = top;
        rows_ = rows;
        std::fill_n(sums_.begin(), std::size_t(width_ + 2) * rows, 0.0F);
        std::fill_n(first_, rows, width_ + 1);
        std::fill_n(last_, rows, -1);
    }

    void add_edge(PointF a, PointF b) {
        if (a.y == b.y) return;
        const float direction = a.y < b.y ? 1.0F : -1.0F;
        if (a.y > b.y) std::swap(a, b);
        const float top = std::max(a.y, static_cast<float>(top_));
        const float bottom = std::min(b.y, static_cast<float>(top_ + rows_));
        if (top >= bottom) return;
        // Every row reckons from the edge's own beginning, so that what a pixel gets doesn't
        // depend on which other rows are drawn.
        const float slope = (b.x - a.x) / (b.y - a.y);
        const auto last = static_cast<std::int32_t>(std::ceil(bottom));
        for (auto row = static_cast<std::int32_t>(std::floor(top)); row < last; ++row) {
            const float y0 = std::max(a.y, static_cast<float>(row));
            const float y1 = std::min(b.y, static_cast<float>(row + 1));
            const float x0 = a.x + (y0 - a.y) * slope - left_;
            const float x1 = a.x + (y1 - a.y) * slope - left_;
            add_in_row(row - top_, std::min(x0, x1), std::max(x0, x1), (y1 - y0) * direction);
        }
    }

    // The row's coverage as bytes, from column `first` to before the returned end.
    std::int32_t row_coverage(std::int32_t row, float most, std::int32_t& first,
                              std::uint8_t* coverage) const {
        first = first_[row];
        const float* sums = &sums_[std::size_t(width_ + 2) * row];
        float sum = 0;
        std::int32_t x = first;
        const std::int32_t touched = std::min(last_[row] + 1, width_);
        for (; x < touched; ++x) {
            sum += sums[x];
            coverage[x] = coverage_byte(sum, most);
        }
        // Behind the last edge inside the window nothing changes any more.
        if (x >= width_) return width_;
        sum += sums[x];
        const auto rest = coverage_byte(sum, most);
        if (rest == 0) return x;
        std::memset(coverage + x, rest, static_cast<std::size_t>(width_ - x));
        return width_;
    }

  private:
    // A piece of an edge within one row, `height` high with its sign, from x0 to x1.
    void add_in_row(std::int32_t row, float x0, float x1, float height) {
        const auto width = static_cast<float>(width_);
        if (x0 >= width) return;
        if (x1 <= 0) {
            add(row, 0, height);
            return;
        }
        if (x0 < 0 || x1 > width) {  // cut at the window's sides
            const float part = height / (x1 - x0);
            if (x0 < 0) {
                add(row, 0, -x0 * part);
                height += x0 * part;
                x0 = 0;
            }
            if (x1 > width) {
                height -= (x1 - width) * part;
                x1 = width;
            }
        }
        const auto column = static_cast<std::int32_t>(x0);
        const float right = static_cast<float>(column + 1);
        if (x1 <= right) {
            const float covered = right - (x0 + x1) * 0.5F;
            add(row, column, height * covered);
            add(row, column + 1, height * (1 - covered));
            return;
        }
        // Over several columns: each gets the area right of the edge, less what came before.
        const float part = height / (x1 - x0);
        float before = 0;
        float from = x0;
        for (std::int32_t x = column; from < x1; ++x) {
            const float to = std::min(static_cast<float>(x + 1), x1);
            const float piece = (to - from) * part;
            const float covered = piece * (static_cast<float>(x + 1) - (from + to) * 0.5F);
            add(row, x, before + covered);
            before = piece - covered;
            from = to;
        }
        add(row, static_cast<std::int32_t>(std::ceil(x1)), before);
    }

    void add(std::int32_t row, std::int32_t column, float value) {
        sums_[std::size_t(width_ + 2) * row + column] += value;
        first_[row] = std::min(first_[row], column);
        last_[row] = std::max(last_[row], column);
    }

    float left_ = 0;
    std::int32_t width_ = 0, top_ = 0, rows_ = 0;
    std::vector<float> sums_;
    std::int32_t first_[band_rows] = {}, last_[band_rows] = {};
};

// Storage that outlives one shape: most shapes are small and many.
struct Scratch {
    Band band;
    std::vector<std::uint8_t> coverage;
    std::vector<RECT> clips;
    Path path;
};

Scratch& scratch() {
    static auto* storage = new Scratch;
    return *storage;
}

void paint_covered(const DeviceContext& dc, std::int32_t x, std::int32_t y,
                   const std::uint8_t* coverage, std::int32_t count, const Ink& ink) {
    std::uint32_t* row = pixel_row(dc.surface, y) + x;
    if (ink.rop == rop_pattern && ink.pattern == nullptr) {
        blend_row(row, coverage, count, ink.pixel);
        return;
    }
    std::uint32_t pattern = ink.pixel;
    for (std::int32_t i = 0; i < count; ++i) {
        if (coverage[i] == 0) continue;
        if (ink.pattern != nullptr) pattern_row(dc, *ink.pattern, x + i, y, 1, &pattern);
        if (ink.rop == rop_pattern) {
            row[i] = mix(row[i], pattern, coverage[i]);
        } else if (coverage[i] >= 128) {
            combine_row(row + i, 1, nullptr, &pattern, ink.rop);
        }
    }
}

void add_edges(Band& band, const Path& path) {
    const std::vector<PointF>& points = path.points();
    const std::vector<std::uint32_t>& starts = path.starts();
    for (std::size_t c = 0; c < starts.size(); ++c) {
        const std::size_t begin = starts[c];
        const std::size_t end = c + 1 < starts.size() ? starts[c + 1] : points.size();
        for (std::size_t i = begin; i + 1 < end; ++i) band.add_edge(points[i], points[i + 1]);
        if (end > begin) band.add_edge(points[end - 1], points[begin]);
    }
}

float most_of(float opacity) {
    return 255.0F * std::clamp(opacity, 0.0F, 1.0F);
}

// The part of the path within `window`, which lies on the surface.
void fill_window(const DeviceContext& dc, const Path& path, const RECT& window, const Ink& ink,
                 float opacity) {
    const RECT visible = intersection(window, dc.real_bounds);
    if (visible.empty()) return;
    Scratch& storage = scratch();
    std::vector<RECT>& clips = storage.clips;
    clips.clear();
    for_each_visible(dc, window, [&](const RECT& part) { clips.push_back(part); });
    if (clips.empty()) return;
    const float most = most_of(opacity);
    Band& band = storage.band;
    band.set_columns(window.left, window.width());
    std::vector<std::uint8_t>& coverage = storage.coverage;
    if (coverage.size() < std::size_t(window.width())) coverage.resize(window.width());
    for (std::int32_t top = visible.top; top < visible.bottom; top += band_rows) {
        const std::int32_t rows = std::min(band_rows, visible.bottom - top);
        band.begin(top, rows);
        add_edges(band, path);
        for (std::int32_t row = 0; row < rows; ++row) {
            std::int32_t first = 0;
            const std::int32_t end = band.row_coverage(row, most, first, coverage.data());
            const std::int32_t y = top + row;
            for (const RECT& clip : clips) {
                if (y < clip.top || y >= clip.bottom) continue;
                const std::int32_t from = std::max(clip.left - window.left, first);
                const std::int32_t to = std::min(clip.right - window.left, end);
                if (from >= to) continue;
                paint_covered(dc, window.left + from, y, coverage.data() + from, to - from, ink);
            }
        }
    }
}

RECT surface_bounds(const DeviceContext& dc) {
    return {0, 0, dc.surface.width, dc.surface.height};
}

// The pixels that a rectangle touches.
RECT touched(const RectF& r) {
    const auto whole = [](float v) {
        return static_cast<std::int32_t>(std::clamp(v, -1e8F, 1e8F));
    };
    return {whole(std::floor(r.left)), whole(std::floor(r.top)), whole(std::ceil(r.right)),
            whole(std::ceil(r.bottom))};
}

// A number, and one that whole-number coordinates can hold.
bool is_sound(float v) {
    return std::fabs(v) < 1e7F;
}
bool is_sound(const RectF& r) {
    return is_sound(r.left) && is_sound(r.top) && is_sound(r.right) && is_sound(r.bottom) &&
           r.left < r.right && r.top < r.bottom;
}

bool is_whole(float v) {
    return v == std::floor(v);
}

// ---- Small rounded shapes, computed once -------------------------------------------------------
// Buttons, fields and marks are the same few shapes again and again: their coverage is kept.
constexpr std::int32_t largest_mask = 64;  // pixels each way
constexpr std::size_t kept_masks = 64;

// A rectangle with round corners, or the ring of `stroke` within it, from its fraction of a pixel.
struct RoundedShape {
    float x = 0, y = 0, width = 0, height = 0, rx = 0, ry = 0, stroke = 0, most = 0;
    bool operator==(const RoundedShape&) const = default;
};

struct RoundedMask {
    RoundedShape shape;
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> coverage;
};

void make_mask(RoundedMask& mask, const RoundedShape& shape) {
    const RectF rect{shape.x, shape.y, shape.x + shape.width, shape.y + shape.height};
    const RECT outer = touched(rect);
    mask.shape = shape;
    mask.width = outer.width();
    mask.height = outer.height();
    mask.coverage.assign(std::size_t(mask.width) * mask.height, 0);
    Path& path = scratch().path;
    path.clear();
    path.add_rounded(rect, shape.rx, shape.ry);
    const RectF hole{rect.left + shape.stroke, rect.top + shape.stroke, rect.right - shape.stroke,
                     rect.bottom - shape.stroke};
    if (shape.stroke > 0 && hole.left < hole.right && hole.top < hole.bottom)
        path.add_rounded(hole, std::max(shape.rx - shape.stroke, 0.0F),
                         std::max(shape.ry - shape.stroke, 0.0F), true);
    Band& band = scratch().band;
    band.set_columns(0, mask.width);
    for (std::int32_t top = 0; top < mask.height; top += band_rows) {
        const std::int32_t rows = std::min(band_rows, mask.height - top);
        band.begin(top, rows);
        add_edges(band, path);
        for (std::int32_t row = 0; row < rows; ++row) {
            std::int32_t first = 0;
            band.row_coverage(row, shape.most, first,
                              &mask.coverage[std::size_t(mask.width) * (top + row)]);
        }
    }
}

const RoundedMask& mask_of(const RoundedShape& shape) {
    struct Masks {
        RoundedMask all[kept_masks];
        std::size_t next = 0;
    };
    static auto* masks = new Masks;
    for (const RoundedMask& mask : masks->all) {
        if (mask.shape == shape) return mask;
    }
    RoundedMask& mask = masks->all[masks->next++ % kept_masks];
    make_mask(mask, shape);
    return mask;
}

// The pixels `block` of the surface, where the mask's first pixel lies at `x`, `y`.
void paint_mask(const DeviceContext& dc, const RoundedMask& mask, std::int32_t x, std::int32_t y,
                const RECT& block, const Ink& ink) {
    for_each_visible(dc, intersection(block, surface_bounds(dc)), [&](const RECT& part) {
        for (std::int32_t row = part.top; row < part.bottom; ++row) {
            const std::uint8_t* coverage =
                &mask.coverage[std::size_t(mask.width) * (row - y) + (part.left - x)];
            paint_covered(dc, part.left, row, coverage, part.width(), ink);
        }
    });
}

// The whole shape; false when it is too large to be kept.
bool paint_small(const DeviceContext& dc, const RectF& rect, float rx, float ry, float stroke,
                 float most, const Ink& ink) {
    const RECT outer = touched(rect);
    if (outer.width() > largest_mask || outer.height() > largest_mask) return false;
    const auto left = static_cast<float>(outer.left), top = static_cast<float>(outer.top);
    const RoundedMask& mask = mask_of({rect.left - left, rect.top - top, rect.right - rect.left,
                                       rect.bottom - rect.top, rx, ry, stroke, most});
    // A width that was rounded on its way may end in another pixel.
    if (mask.width != outer.width() || mask.height != outer.height()) return false;
    paint_mask(dc, mask, outer.left, outer.top, outer, ink);
    return true;
}

// A rectangle with round corners, taken apart: only the corners, and sides that lie between
// pixels, need the path.
struct RoundedParts {
    RECT outer;  // touched pixels
    RECT inner;  // without the corners and the stroke
    bool sharp;  // the sides lie on edges of pixels

    RoundedParts(const RectF& rect, float inset_x, float inset_y)
        : outer(touched(rect)),
          inner(touched({std::ceil(rect.left + inset_x), std::ceil(rect.top + inset_y),
                         std::floor(rect.right - inset_x), std::floor(rect.bottom - inset_y)})),
          sharp(is_whole(rect.left) && is_whole(rect.top) && is_whole(rect.right) &&
                is_whole(rect.bottom)) {}

    RECT top() const { return {inner.left, outer.top, inner.right, inner.top}; }
    RECT bottom() const { return {inner.left, inner.bottom, inner.right, outer.bottom}; }
    RECT left() const { return {outer.left, inner.top, inner.left, inner.bottom}; }
    RECT right() const { return {inner.right, inner.top, outer.right, inner.bottom}; }
    template <typename Visit>
    void each_corner(Visit visit) const {
        visit(RECT{outer.left, outer.top, inner.left, inner.top});
        visit(RECT{inner.right, outer.top, outer.right, inner.top});
        visit(RECT{outer.left, inner.bottom, inner.left, outer.bottom});
        visit(RECT{inner.right, inner.bottom, outer.right, outer.bottom});
    }
};

// The corners of a rectangle on edges of pixels: those of the smallest one that has them; false
// when they are too large to be kept.
bool paint_small_corners(const DeviceContext& dc, const RoundedParts& parts, float rx, float ry,
                         float stroke, float most, const Ink& ink) {
    const std::int32_t width = 2 * (parts.inner.left - parts.outer.left) + 1;
    const std::int32_t height = 2 * (parts.inner.top - parts.outer.top) + 1;
    if (!parts.sharp || width > largest_mask || height > largest_mask) return false;
    const RoundedMask& mask = mask_of(
        {0, 0, static_cast<float>(width), static_cast<float>(height), rx, ry, stroke, most});
    parts.each_corner([&](const RECT& corner) {
        const bool right = corner.left == parts.inner.right;
        const bool bottom = corner.top == parts.inner.bottom;
        paint_mask(dc, mask, right ? corner.right - width : corner.left,
                   bottom ? corner.bottom - height : corner.top, corner, ink);
    });
    return true;
}

void rounded_path(Path& path, const RectF& rect, float rx, float ry) {
    path.clear();
    path.add_rounded(rect, rx, ry);
}

}  // namespace

void Path::move_to(float x, float y) {
    starts_.push_back(static_cast<std::uint32_t>(points_.size()));
    points_.push_back({x, y});
}

void Path::line_to(float x, float y) {
    if (points_.empty()) {
        move_to(x, y);
    } else {
        points_.push_back({x, y});
    }
}

void Path::quarter_to(float cx, float cy, float x, float y) {
    const PointF from = points_.back();
    // The centre is the corner across from the one it bulges towards.
    const PointF centre{from.x + x - cx, from.y + y - cy};
    const float radius = std::max(std::fabs(cx - centre.x), std::fabs(cy - centre.y));
    const int steps = chords(radius, pi / 2);
    const float step = pi / 2 / static_cast<float>(steps);
    const float turn_c = std::cos(step), turn_s = std::sin(step);
    float c = 1, s = 0;
    for (int i = 1; i < steps; ++i) {
        const float next = c * turn_c - s * turn_s;
        s = c * turn_s + s * turn_c;
        c = next;
        line_to(centre.x + (from.x - centre.x) * c + (x - centre.x) * s,
                centre.y + (from.y - centre.y) * c + (y - centre.y) * s);
    }
    line_to(x, y);
}

void Path::add_polygon(std::span<const PointF> points) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i == 0) {
            move_to(points[i].x, points[i].y);
        } else {
            line_to(points[i].x, points[i].y);
        }
    }
}

void Path::add_rounded(const RectF& r, float rx, float ry, bool hole) {
    rx = std::clamp(rx, 0.0F, std::max((r.right - r.left) / 2, 0.0F));
    ry = std::clamp(ry, 0.0F, std::max((r.bottom - r.top) / 2, 0.0F));
    if (rx <= 0 || ry <= 0) rx = ry = 0;
    const std::size_t begin = points_.size();
    move_to(r.left + rx, r.top);
    line_to(r.right - rx, r.top);
    if (rx > 0) quarter_to(r.right, r.top, r.right, r.top + ry);
    line_to(r.right, r.bottom - ry);
    if (rx > 0) quarter_to(r.right, r.bottom, r.right - rx, r.bottom);
    line_to(r.left + rx, r.bottom);
    if (rx > 0) quarter_to(r.left, r.bottom, r.left, r.bottom - ry);
    line_to(r.left, r.top + ry);
    if (rx > 0) quarter_to(r.left, r.top, r.left + rx, r.top);
    if (hole) std::reverse(points_.begin() + static_cast<std::ptrdiff_t>(begin), points_.end());
}

void Path::add_disc_part(PointF centre, float radius, float from, float sweep) {
    const int steps = chords(radius, sweep);
    move_to(centre.x, centre.y);
    for (int i = 0; i <= steps; ++i) {
        const float angle = from + sweep * static_cast<float>(i) / static_cast<float>(steps);
        line_to(centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle));
    }
}

// One block a segment and one fan on the outer side of each corner, all turning the same way, so
// that they add up to a shape without holes.
void Path::add_stroke(std::span<const PointF> given, float width, bool closed) {
    std::vector<PointF> line;
    for (const PointF& p : given) {
        if (line.empty() || p.x != line.back().x || p.y != line.back().y) line.push_back(p);
    }
    if (closed && line.size() > 1 && line.front().x == line.back().x &&
        line.front().y == line.back().y) {
        line.pop_back();
    }
    const float r = width / 2;
    if (line.empty() || r <= 0) return;
    if (line.size() == 1) {
        add_disc_part(line[0], r, 0, 2 * pi);
        return;
    }
    const std::size_t segments = closed ? line.size() : line.size() - 1;
    std::vector<float> angles(segments);
    for (std::size_t i = 0; i < segments; ++i) {
        const PointF a = line[i], b = line[(i + 1) % line.size()];
        angles[i] = std::atan2(b.y - a.y, b.x - a.x);
        const float nx = -std::sin(angles[i]) * r, ny = std::cos(angles[i]) * r;
        move_to(a.x - nx, a.y - ny);
        line_to(b.x - nx, b.y - ny);
        line_to(b.x + nx, b.y + ny);
        line_to(a.x + nx, a.y + ny);
    }
    for (std::size_t i = closed ? 0 : 1; i < segments; ++i) {
        const float before = angles[(i + segments - 1) % segments];
        float turn = angles[i] - before;
        if (turn > pi) turn -= 2 * pi;
        if (turn < -pi) turn += 2 * pi;
        if (std::fabs(turn) < 1e-4F) continue;
        // The gap opens on the side away from the turn.
        if (turn > 0) {
            add_disc_part(line[i], r, before - pi / 2, turn);
        } else {
            add_disc_part(line[i], r, before + pi / 2 + turn, -turn);
        }
    }
    if (!closed) {
        add_disc_part(line.front(), r, angles.front() + pi / 2, pi);
        add_disc_part(line.back(), r, angles.back() - pi / 2, pi);
    }
}

RectF Path::bounds() const {
    if (points_.empty()) return {0, 0, 0, 0};
    RectF all{points_[0].x, points_[0].y, points_[0].x, points_[0].y};
    for (const PointF& p : points_) {
        all = {std::min(all.left, p.x), std::min(all.top, p.y), std::max(all.right, p.x),
               std::max(all.bottom, p.y)};
    }
    return all;
}

void Path::clear() {
    points_.clear();
    starts_.clear();
}

void fill_coverage(const DeviceContext& dc, const Path& path, const Ink& ink, float opacity) {
    for (const PointF& p : path.points()) {
        if (!is_sound(p.x) || !is_sound(p.y)) return;
    }
    fill_window(dc, path, intersection(touched(path.bounds()), surface_bounds(dc)), ink, opacity);
}

void fill_rounded_real(const DeviceContext& dc, const RectF& rect, float rx, float ry,
                       const Ink& ink, float opacity) {
    if (!is_sound(rect)) return;
    const RoundedParts parts(rect, rx, ry);
    Path& path = scratch().path;
    if (parts.inner.empty() || opacity < 1.0F || !parts.sharp) {
        if (paint_small(dc, rect, rx, ry, 0, most_of(opacity), ink)) return;
        rounded_path(path, rect, rx, ry);
        fill_coverage(dc, path, ink, opacity);
        return;
    }
    const RECT all = surface_bounds(dc);
    paint_block(dc, {parts.outer.left, parts.inner.top, parts.outer.right, parts.inner.bottom},
                ink);
    paint_block(dc, parts.top(), ink);
    paint_block(dc, parts.bottom(), ink);
    if (paint_small_corners(dc, parts, rx, ry, 0, most_of(opacity), ink)) return;
    rounded_path(path, rect, rx, ry);
    parts.each_corner([&](const RECT& corner) {
        fill_window(dc, path, intersection(corner, all), ink, opacity);
    });
}

void stroke_rounded_real(const DeviceContext& dc, const RectF& rect, float rx, float ry,
                         float stroke, const Ink& ink, float opacity) {
    if (!is_sound(rect) || !(stroke > 0)) return;
    const RectF hole{rect.left + stroke, rect.top + stroke, rect.right - stroke,
                     rect.bottom - stroke};
    const bool hollow = hole.left < hole.right && hole.top < hole.bottom;
    const RoundedParts parts(rect, std::max(rx, stroke), std::max(ry, stroke));
    const bool whole = !hollow || parts.inner.empty();
    const float most = most_of(opacity);
    const bool plain_sides = parts.sharp && is_whole(stroke) && opacity >= 1.0F;
    if (whole && paint_small(dc, rect, rx, ry, stroke, most, ink)) return;
    const bool corners_done = !whole && paint_small_corners(dc, parts, rx, ry, stroke, most, ink);
    Path& path = scratch().path;
    if (!corners_done || !plain_sides) {
        rounded_path(path, rect, rx, ry);
        if (hollow)
            path.add_rounded(hole, std::max(rx - stroke, 0.0F), std::max(ry - stroke, 0.0F), true);
    }
    if (whole) {
        fill_coverage(dc, path, ink, opacity);
        return;
    }
    const RECT all = surface_bounds(dc);
    if (!corners_done) {
        parts.each_corner([&](const RECT& corner) {
            fill_window(dc, path, intersection(corner, all), ink, opacity);
        });
    }
    if (!plain_sides) {
        for (const RECT& side : {parts.top(), parts.bottom(), parts.left(), parts.right()}) {
            fill_window(dc, path, intersection(side, all), ink, opacity);
        }
        return;
    }
    const auto width = static_cast<std::int32_t>(stroke);
    RECT top = parts.top(), bottom = parts.bottom(), left = parts.left(), right = parts.right();
    top.bottom = top.top + width;
    bottom.top = bottom.bottom - width;
    left.right = left.left + width;
    right.left = right.right - width;
    for (const RECT& side : {top, bottom, left, right}) paint_block(dc, side, ink);
}

}  // namespace tarn::platform
