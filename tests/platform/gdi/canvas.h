// A surface to draw on in tests, and what is on it as letters.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/gdi/gdi.h"
#include "platform/gdi/paint.h"

namespace tarn::platform {

inline constexpr std::uint32_t paper = 0xFFFFFFFFu;

struct Canvas {
    std::vector<std::uint32_t> pixels;
    Surface surface;
    HDC dc;

    Canvas(std::int32_t width, std::int32_t height, double scale = 1.0) {
        surface.scale = scale;
        surface.width = surface.stride = surface.to_real(width);
        surface.height = surface.to_real(height);
        pixels.assign(std::size_t(surface.width) * surface.height, paper);
        surface.pixels = pixels.data();
        dc = create_surface_dc(surface, {0, 0}, std::array{RECT{0, 0, width, height}});
    }
    ~Canvas() { DeleteDC(dc); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    void clear() { std::fill(pixels.begin(), pixels.end(), paper); }
    std::uint32_t at(std::int32_t x, std::int32_t y) const {
        return pixels[std::size_t(y) * surface.stride + x];
    }
    // Select a new object for good: tests need not put back.
    void pen(COLORREF colour, std::int32_t width = 1, std::int32_t style = PS_SOLID) const {
        SelectObject(dc, CreatePen(style, width, colour));
    }
    void brush(COLORREF colour) const { SelectObject(dc, CreateSolidBrush(colour)); }
    void no_pen() const { SelectObject(dc, GetStockObject(NULL_PEN)); }
    void no_brush() const { SelectObject(dc, GetStockObject(NULL_BRUSH)); }

    // Paper is '.', black '#', red 'r', green 'g', blue 'b', anything else '?'; a line feed
    // behind each row.
    std::string picture() const {
        std::string text;
        for (std::int32_t y = 0; y < surface.height; ++y) {
            for (std::int32_t x = 0; x < surface.width; ++x) text.push_back(letter(at(x, y)));
            text.push_back('\n');
        }
        return text;
    }
    // What black ink covers, in pixels; the picture holds greys only.
    double ink() const {
        double sum = 0;
        for (const std::uint32_t pixel : pixels) sum += (255 - (pixel & 0xFF)) / 255.0;
        return sum;
    }
    bool opaque() const {
        for (const std::uint32_t pixel : pixels) {
            if (pixel >> 24 != 255) return false;
        }
        return true;
    }

  private:
    static char letter(std::uint32_t pixel) {
        switch (pixel) {
            case paper:
                return '.';
            case 0xFF000000u:
                return '#';
            case 0xFFFF0000u:
                return 'r';
            case 0xFF00FF00u:
                return 'g';
            case 0xFF0000FFu:
                return 'b';
            default:
                return '?';
        }
    }
};

inline constexpr COLORREF black = 0, white = 0xFFFFFF, red = 0x0000FF, green = 0x00FF00,
                          blue = 0xFF0000;

}  // namespace tarn::platform
