// What layout and measuring keep for the whole process.
#pragma once

#include <cstdint>

#include "platform/base/types.h"

namespace tarn::winio {

struct window_control;

// No text, and all before it has been seen: the texts of the present line come behind it.
struct text_start {
    std::int32_t window_number = 0;
    window_control* control = nullptr;
};

struct layout_state {
    text_start before_text;
    // A cleared map that waits for the next window, so that a window pays for the cells that it
    // used and not for the whole map.
    unsigned char* spare = nullptr;
    bool began = false;  // the size of the map is fixed
    bool size_given = false;
    platform::HDC device{};
    platform::HFONT device_font{};  // selected in it
    std::int32_t string_pixels = 0;
};
layout_state& layout();

// Beyond any screen, and small enough for every sum and every conversion to pixels.
inline constexpr std::int32_t farthest = 1 << 20;
std::int32_t within_reach(double value);

}  // namespace tarn::winio
