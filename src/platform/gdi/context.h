// A device context: where it draws, with what, and within which rectangles.
#pragma once

#include <algorithm>
#include <vector>

#include "platform/gdi/objects.h"
#include "platform/gdi/paint.h"

namespace tarn::platform {

// What SaveDC keeps.
struct ContextState {
    Pen* pen = nullptr;
    Brush* brush = nullptr;
    Font* font = nullptr;
    COLORREF text_colour = 0, back_colour = RGB(255, 255, 255);
    std::int32_t back_mode = OPAQUE;
    std::uint32_t align = TA_LEFT;
    std::int32_t rop2 = R2_COPYPEN;
    POINT at;                // the current position
    POINT window_org;        // the logical point at the context's top left
    std::vector<RECT> clip;  // disjoint, in the surface's logical coordinates
};

// Keeps sums, products and scaled values of coordinates within their types: what lies so far off
// is as good as any farther.
inline constexpr std::int32_t coordinate_limit = 1 << 24;
constexpr std::int32_t tame(std::int64_t coordinate) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(coordinate, -coordinate_limit, coordinate_limit));
}
// The block at (x, y); `w` and `h` below 0 lead to the left and up.
constexpr RECT tame_block(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) {
    return {tame(x), tame(y), tame(x) + tame(w), tame(y) + tame(h)};
}
constexpr RECT tame(const RECT& r) {
    return {tame(r.left), tame(r.top), tame(r.right), tame(r.bottom)};
}

struct DeviceContext {
    Surface surface;
    POINT origin;              // where the context begins on the surface
    Bitmap* bitmap = nullptr;  // of a memory context
    HBITMAP first_bitmap{};    // the one it was made with, and which goes with it
    ContextState state;
    std::vector<RECT> real_clip;  // the same clip in real pixels, within the surface
    RECT real_bounds;             // around it
    std::vector<ContextState> saved;

    // Real pixels of a logical point.
    std::int32_t x(std::int32_t logical) const { return surface.to_real(place(logical, 0)); }
    std::int32_t y(std::int32_t logical) const { return surface.to_real(place(logical, 1)); }
    RECT real(const RECT& r) const { return {x(r.left), y(r.top), x(r.right), y(r.bottom)}; }
    // The same without rounding.
    float exact_x(float logical) const {
        return static_cast<float>((double(logical) + place(0, 0)) * surface.scale);
    }
    float exact_y(float logical) const {
        return static_cast<float>((double(logical) + place(0, 1)) * surface.scale);
    }
    // A length that is never nothing.
    std::int32_t thickness(std::int32_t logical) const {
        return std::max(1, surface.to_real(logical));
    }

    // Logical on the context to logical on the surface.
    std::int32_t place(std::int32_t logical, int axis) const {
        const std::int64_t shift = axis == 0 ? std::int64_t{origin.x} - state.window_org.x
                                             : std::int64_t{origin.y} - state.window_org.y;
        return tame(logical + shift);
    }
};

DeviceContext* find_context(HDC handle);
void update_real_clip(DeviceContext& dc);

inline RECT intersection(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}
inline bool overlap(const RECT& a, const RECT& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// Calls `paint` with each part of `area` (real pixels) that may be drawn on.
template <typename Paint>
void for_each_visible(const DeviceContext& dc, const RECT& area, Paint paint) {
    if (!overlap(area, dc.real_bounds)) return;
    for (const RECT& clip : dc.real_clip) {
        if (overlap(area, clip)) paint(intersection(area, clip));
    }
}

}  // namespace tarn::platform
