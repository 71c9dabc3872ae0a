// A surface: 32-bit pixels in memory with the factor between logical and real pixels.
#pragma once

#include <cmath>
#include <cstdint>

#include "platform/base/types.h"

namespace tarn::platform {

// Rows from the top, bytes blue, green, red, alpha; alpha stays 255 on a window's surface.
// Logical coordinates reach real pixels by round(x * scale) of each edge, so that neighbours meet.
struct Surface {
    std::uint32_t* pixels = nullptr;
    std::int32_t width = 0, height = 0;  // real pixels
    std::int32_t stride = 0;             // pixels from row to row
    double scale = 1.0;

    std::int32_t to_real(std::int32_t logical) const {
        return static_cast<std::int32_t>(std::floor(logical * scale + 0.5));
    }
};

}  // namespace tarn::platform
