// One line of text put on a surface, below the functions of the platform.
#pragma once

#include <string_view>

#include "platform/gdi/context.h"
#include "platform/gdi/glyphs.h"

namespace tarn::platform {

// Draws with its left end at `x` and the top of its cell at `y` (logical; x may have a fraction),
// within `bounds` (real pixels) where it is given. The lines of underlined and struck-out fonts
// come with it. Returns the width.
float draw_line(DeviceContext& dc, float x, std::int32_t y, std::string_view utf8,
                const RECT* bounds = nullptr);
// The cell's background behind a text of this width.
void fill_text_background(DeviceContext& dc, float x, std::int32_t y, float width,
                          const RECT* bounds = nullptr);
// The line under a mnemonic or an underlined text.
void underline(DeviceContext& dc, float x, std::int32_t y, float width, const RECT* bounds);

}  // namespace tarn::platform
