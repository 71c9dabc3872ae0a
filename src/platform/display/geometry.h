// Between logical pixels and the real ones of a screen with a factor.
#pragma once

#include <cmath>
#include <cstdint>

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

// A factor as desktops have it, in quarters, from the resolution that a desktop tells.
inline double scale_of_dpi(double dpi) {
    double quarters = std::floor(dpi / 96.0 * 4.0 + 0.5) / 4.0;
    return quarters < 0.5 ? 0.5 : quarters > 4.0 ? 4.0 : quarters;
}

}  // namespace tarn::platform
