// What the platform's own rooms draw with beyond the platform's names: contexts on a surface, and
// anti-aliased shapes for the look of controls. Sizes may have fractions; colours are COLORREFs
// with an opacity beside them.
#pragma once

#include <span>
#include <vector>

#include "platform/gdi/gdi.h"

namespace tarn::platform {

// A context that draws on `surface`: its logical (0, 0) at `origin`, clipped to the union of
// `clip` (rectangles in the surface's logical coordinates). It must be deleted before the
// surface's pixels go.
HDC create_surface_dc(Surface& surface, POINT origin, std::span<const RECT> clip);
// Points an existing context elsewhere and gives it back its start values: cheaper than a new one.
void reset_surface_dc(HDC dc, Surface& surface, POINT origin, std::span<const RECT> clip);
// The surface behind a context, for reading pictures; null for a stale handle.
const Surface* surface_of(HDC dc);
// The scale of contexts and bitmaps that have no surface yet (compatible ones, made of nothing).
void set_default_scale(double scale);
double default_scale();

struct PointF {
    float x, y;
};
struct RectF {
    float left, top, right, bottom;
};
// Filled and stroked by coverage. `radius` of each corner; a stroke's line lies inside its edge.
void fill_rounded(HDC dc, RectF rect, float radius, COLORREF colour, float opacity = 1.0F);
void stroke_rounded(HDC dc, RectF rect, float radius, float width, COLORREF colour,
                    float opacity = 1.0F);
void fill_path(HDC dc, std::span<const PointF> points, COLORREF colour, float opacity = 1.0F);
void stroke_path(HDC dc, std::span<const PointF> points, float width, COLORREF colour,
                 float opacity = 1.0F, bool closed = false);
void fill_circle(HDC dc, PointF centre, float radius, COLORREF colour, float opacity = 1.0F);

// A soft shadow around `rect`, for menus and pop-ups.
void draw_shadow(HDC dc, RectF rect, float radius, float spread, float opacity);

// Writes `surface` as a PNG file; false with errno set.
bool write_png(const char* path, const Surface& surface);
// The same in memory.
std::vector<unsigned char> encode_png(const Surface& surface);

}  // namespace tarn::platform
