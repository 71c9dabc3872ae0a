// Anti-aliased shapes: paths in real pixels, filled by the area that they cover of each pixel.
#pragma once

#include <vector>

#include "platform/gdi/raster.h"

namespace tarn::platform {

class Path {
  public:
    void move_to(float x, float y);
    void line_to(float x, float y);
    // A quarter of an ellipse from where the path is to the point, bulging towards (cx, cy).
    void quarter_to(float cx, float cy, float x, float y);
    void add_polygon(std::span<const PointF> points);
    // Clockwise; anticlockwise when `hole`, which takes it out of what lies around it.
    void add_rounded(const RectF& rect, float rx, float ry, bool hole = false);
    // The outline of a line: ends and corners are round.
    void add_stroke(std::span<const PointF> points, float width, bool closed);

    const std::vector<PointF>& points() const { return points_; }
    const std::vector<std::uint32_t>& starts() const { return starts_; }
    RectF bounds() const;
    void clear();

  private:
    void add_disc_part(PointF centre, float radius, float from, float sweep);

    std::vector<PointF> points_;
    std::vector<std::uint32_t> starts_;  // where each contour begins; contours close themselves
};

// Where contours overlap, the shape counts once. Raster codes other than copying take the pixels
// of which half or more is covered.
void fill_coverage(const DeviceContext& dc, const Path& path, const Ink& ink, float opacity = 1.0F);

// The same for a rectangle with round corners, or for the frame of one (`stroke` above 0): only
// its corners are gone through as a path.
void fill_rounded_real(const DeviceContext& dc, const RectF& rect, float rx, float ry,
                       const Ink& ink, float opacity = 1.0F);
void stroke_rounded_real(const DeviceContext& dc, const RectF& rect, float rx, float ry,
                         float stroke, const Ink& ink, float opacity = 1.0F);

}  // namespace tarn::platform
