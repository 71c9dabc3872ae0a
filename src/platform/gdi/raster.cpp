#include "platform/gdi/raster.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace tarn::platform {

namespace {

constexpr std::uint32_t opaque = 0xFF000000u;

constexpr std::uint32_t all_if(unsigned bits, int which) {
    return (bits >> which & 1) != 0 ? 0xFFFFFFFFu : 0;
}

std::int32_t remainder_of(std::int32_t value, std::int32_t divisor) {
    const std::int32_t rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

}  // namespace

// The C library copies and sets bytes with the widest registers that there are.
void fill_block(const Surface& surface, const RECT& block, std::uint32_t pixel) {
    constexpr std::int32_t worth_a_call = 24;
    const bool wide = block.width() >= worth_a_call;
    const bool even = pixel == (pixel & 0xFF) * 0x01010101u;
    const auto bytes = static_cast<std::size_t>(std::max(block.width(), 0)) * sizeof pixel;
    const std::uint32_t* first = nullptr;
    for (std::int32_t y = block.top; y < block.bottom; ++y) {
        std::uint32_t* start = pixel_row(surface, y) + block.left;
        if (wide && even) {
            std::memset(start, static_cast<int>(pixel & 0xFF), bytes);
        } else if (wide && first != nullptr) {
            std::memcpy(start, first, bytes);
        } else {
            std::fill_n(start, std::max(block.width(), 0), pixel);
            first = start;
        }
    }
}

void combine_block(const Surface& surface, const RECT& block, std::uint32_t pattern, Rop rop) {
    // What becomes of a destination bit that is one, and of one that is zero.
    const std::uint32_t one = (pattern & all_if(rop, 5)) | (~pattern & all_if(rop, 1));
    const std::uint32_t zero = (pattern & all_if(rop, 4)) | (~pattern & all_if(rop, 0));
    if (one == zero) {
        fill_block(surface, block, one | opaque);
        return;
    }
    for (std::int32_t y = block.top; y < block.bottom; ++y) {
        std::uint32_t* row = pixel_row(surface, y);
        for (std::int32_t x = block.left; x < block.right; ++x) {
            row[x] = (row[x] & one) | (~row[x] & zero) | opaque;
        }
    }
}

void combine_row(std::uint32_t* row, std::int32_t count, const std::uint32_t* source,
                 const std::uint32_t* pattern, Rop rop) {
    std::uint32_t term[8];
    for (int i = 0; i < 8; ++i) term[i] = all_if(rop, i);
    for (std::int32_t x = 0; x < count; ++x) {
        const std::uint32_t d = row[x];
        const std::uint32_t s = source == nullptr ? 0 : source[x];
        const std::uint32_t p = pattern == nullptr ? 0 : pattern[x];
        const std::uint32_t without =
            (~s & ((~d & term[0]) | (d & term[1]))) | (s & ((~d & term[2]) | (d & term[3])));
        const std::uint32_t with =
            (~s & ((~d & term[4]) | (d & term[5]))) | (s & ((~d & term[6]) | (d & term[7])));
        row[x] = (~p & without) | (p & with) | opaque;
    }
}

void blend_row(std::uint32_t* row, const std::uint8_t* coverage, std::int32_t count,
               std::uint32_t pixel) {
    for (std::int32_t x = 0; x < count; ++x) {
        if (coverage[x] == 255) {
            row[x] = pixel;
        } else if (coverage[x] != 0) {
            row[x] = mix(row[x], pixel, coverage[x]);
        }
    }
}

Ink pen_ink(const DeviceContext& dc) {
    return {pixel_of(dc.state.pen->colour), rop_of_rop2(dc.state.rop2), nullptr};
}

bool brush_ink(const Brush& brush, Rop rop, Ink& ink) {
    ink = {pixel_of(brush.colour), rop, brush.pattern.get()};
    return !brush.hollow;
}

// Patterns begin at the context's top left and keep their logical size.
void pattern_row(const DeviceContext& dc, const Bitmap& pattern, std::int32_t x, std::int32_t y,
                 std::int32_t count, std::uint32_t* row) {
    const double step = pattern.surface.scale / dc.surface.scale;
    const auto pixel_at = [step](std::int32_t real, std::int32_t origin, std::int32_t size) {
        return remainder_of(static_cast<std::int32_t>(std::floor((real - origin + 0.5) * step)),
                            size);
    };
    const std::int32_t left = dc.surface.to_real(dc.origin.x);
    const std::int32_t top = dc.surface.to_real(dc.origin.y);
    const std::uint32_t* from =
        pixel_row(pattern.surface, pixel_at(y, top, pattern.surface.height));
    for (std::int32_t i = 0; i < count; ++i) {
        row[i] = from[pixel_at(x + i, left, pattern.surface.width)];
    }
}

void paint_block(const DeviceContext& dc, const RECT& block, const Ink& ink) {
    if (ink.pattern == nullptr) {
        for_each_visible(dc, block, [&](const RECT& part) {
            if (ink.rop == rop_pattern) {
                fill_block(dc.surface, part, ink.pixel);
            } else {
                combine_block(dc.surface, part, ink.pixel, ink.rop);
            }
        });
        return;
    }
    std::vector<std::uint32_t> row;
    for_each_visible(dc, block, [&](const RECT& part) {
        row.resize(part.width());
        for (std::int32_t y = part.top; y < part.bottom; ++y) {
            pattern_row(dc, *ink.pattern, part.left, y, part.width(), row.data());
            combine_row(pixel_row(dc.surface, y) + part.left, part.width(), nullptr, row.data(),
                        ink.rop);
        }
    });
}

void paint_frame(const DeviceContext& dc, const RECT& block, std::int32_t thickness,
                 const Ink& ink) {
    if (block.empty()) return;
    if (2 * thickness >= block.width() || 2 * thickness >= block.height()) {
        paint_block(dc, block, ink);
        return;
    }
    const std::int32_t top = block.top + thickness, bottom = block.bottom - thickness;
    paint_block(dc, {block.left, block.top, block.right, top}, ink);
    paint_block(dc, {block.left, bottom, block.right, block.bottom}, ink);
    paint_block(dc, {block.left, top, block.left + thickness, bottom}, ink);
    paint_block(dc, {block.right - thickness, top, block.right, bottom}, ink);
}

}  // namespace tarn::platform
