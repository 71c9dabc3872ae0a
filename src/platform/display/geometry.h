// Between logical pixels and the real ones of a screen with a factor.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/base/types.h"

namespace tarn::platform {

// The place of an edge.
inline std::int32_t real_edge(std::int32_t logical, double scale) {
    return static_cast<std::int32_t>(std::floor(logical * scale + 0.5));
}

// The logical pixel that a real one belongs to: the last whose edge isn't behind it.
inline std::int32_t logical_pixel(std::int32_t real, double scale) {
    auto pixel = static_cast<std::int32_t>(std::ceil((real + 0.5) / scale)) - 1;
    // An edge on a half is rounded up, which the quotient may miss by its last digit.
    if (real_edge(pixel, scale) > real) return pixel - 1;
    return real_edge(pixel + 1, scale) <= real ? pixel + 1 : pixel;
}

// The logical edge nearest to a real one.
inline std::int32_t logical_edge(std::int32_t real, double scale) {
    return static_cast<std::int32_t>(std::floor(real / scale + 0.5));
}

// The logical length that fills a real one; `asked` when that length was asked for and granted, so
// that a granted wish comes back unchanged at every scale.
inline std::int32_t logical_length(std::int32_t real, std::int32_t asked, double scale) {
    if (real_edge(asked, scale) == real) return asked;
    return static_cast<std::int32_t>(std::ceil(real / scale - 1e-6));
}

inline POINT middle_of(const RECT& rect) {
    return {rect.left + rect.width() / 2, rect.top + rect.height() / 2};
}

// The rectangle around all of these.
inline RECT bounds_of(std::span<const RECT> rects) {
    RECT whole = rects.empty() ? RECT{} : rects.front();
    for (const RECT& each : rects) {
        whole = {std::min(whole.left, each.left), std::min(whole.top, each.top),
                 std::max(whole.right, each.right), std::max(whole.bottom, each.bottom)};
    }
    return whole;
}

// `rect` moved into `area`, by its top left corner where it is too large.
inline RECT moved_inside(RECT rect, const RECT& area) {
    std::int32_t x = std::max(std::min(rect.left, area.right - rect.width()), area.left);
    std::int32_t y = std::max(std::min(rect.top, area.bottom - rect.height()), area.top);
    return {x, y, x + rect.width(), y + rect.height()};
}

// The monitor that a place belongs to: the one it lies in, or else the nearest; 0 when there is
// none.
inline std::size_t monitor_at(std::span<const RECT> monitors, POINT at) {
    auto beside = [](std::int64_t place, std::int64_t from, std::int64_t to) {
        return std::max({from - place, place - (to - 1), std::int64_t{0}});
    };
    std::size_t nearest = 0;
    std::int64_t least = INT64_MAX;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const RECT& area = monitors[i];
        std::int64_t distance =
            beside(at.x, area.left, area.right) + beside(at.y, area.top, area.bottom);
        if (distance >= least) continue;
        least = distance;
        nearest = i;
    }
    return nearest;
}

// A factor as desktops have it, in quarters, from the resolution that a desktop tells.
inline double scale_of_dpi(double dpi) {
    double quarters = std::floor(dpi / 96.0 * 4.0 + 0.5) / 4.0;
    return quarters < 0.5 ? 0.5 : quarters > 4.0 ? 4.0 : quarters;
}

}  // namespace tarn::platform
