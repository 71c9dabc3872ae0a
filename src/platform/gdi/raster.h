// Rows of pixels: plain loops that the compiler turns into wide ones. All in real pixels, and all
// within what the caller has clipped.
#pragma once

#include <cstdint>

#include "platform/base/surface.h"
#include "platform/gdi/context.h"

namespace tarn::platform {

// A raster code's truth table: bit 4 * pattern + 2 * source + destination.
using Rop = std::uint8_t;
inline constexpr Rop rop_pattern = 0xF0, rop_source = 0xCC;
constexpr Rop rop_of_code(std::uint32_t code) {
    return static_cast<Rop>(code >> 16);
}
// The same for a code of two operands, pen and destination.
constexpr Rop rop_of_rop2(std::int32_t rop2) {
    const auto table = static_cast<unsigned>(rop2 - 1) & 0xF;
    const unsigned low = table & 3, high = table >> 2;
    return static_cast<Rop>(low | low << 2 | high << 4 | high << 6);
}
constexpr bool rop_uses_source(Rop rop) {
    return ((rop >> 2 ^ rop) & 0x33) != 0;
}

constexpr bool rop_uses_pattern(Rop rop) {
    return ((rop >> 4 ^ rop) & 0x0F) != 0;
}

inline std::uint32_t* pixel_row(const Surface& surface, std::int32_t y) {
    return surface.pixels + std::int64_t{surface.stride} * y;
}

// `part` of 255 of `over` on `under`; the result is opaque.
inline std::uint32_t mix(std::uint32_t under, std::uint32_t over, std::uint32_t part) {
    const std::uint32_t a = part + (part >> 7), b = 256 - a;
    const std::uint32_t rb = ((over & 0xFF00FF) * a + (under & 0xFF00FF) * b + 0x800080) >> 8;
    const std::uint32_t g = ((over & 0x00FF00) * a + (under & 0x00FF00) * b + 0x008000) >> 8;
    return 0xFF000000u | (rb & 0xFF00FF) | (g & 0x00FF00);
}

void fill_block(const Surface& surface, const RECT& block, std::uint32_t pixel);
// One colour by the rules of a raster code.
void combine_block(const Surface& surface, const RECT& block, std::uint32_t pattern, Rop rop);
// A row from a row of sources and a row of patterns (null: black).
void combine_row(std::uint32_t* row, std::int32_t count, const std::uint32_t* source,
                 const std::uint32_t* pattern, Rop rop);
// One colour by coverage.
void blend_row(std::uint32_t* row, const std::uint8_t* coverage, std::int32_t count,
               std::uint32_t pixel);

// What a shape is filled with.
struct Ink {
    std::uint32_t pixel = 0xFF000000u;
    Rop rop = rop_pattern;
    const Bitmap* pattern = nullptr;
};
Ink pen_ink(const DeviceContext& dc);
// False for a hollow brush.
bool brush_ink(const Brush& brush, Rop rop, Ink& ink);
// The pattern's pixels for a row of the surface.
void pattern_row(const DeviceContext& dc, const Bitmap& pattern, std::int32_t x, std::int32_t y,
                 std::int32_t count, std::uint32_t* row);
// A block of real pixels, within the clip.
void paint_block(const DeviceContext& dc, const RECT& block, const Ink& ink);
// The four sides of a block, `thickness` inside its edges.
void paint_frame(const DeviceContext& dc, const RECT& block, std::int32_t thickness,
                 const Ink& ink);

}  // namespace tarn::platform
