// Icons: pictures with alpha, and the system's own, which are drawn at any size.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <strings.h>

#include "platform/gdi/coverage.h"
#include "platform/gdi/theme.h"

namespace tarn::platform {

namespace {

constexpr std::int32_t largest_icon = 4096;

// A built-in drawing is designed on a field of 32 x 32 and comes out in real pixels.
class Easel {
  public:
    Easel(const DeviceContext& dc, const RECT& block, bool greyed)
        : dc_(dc),
          left_(static_cast<float>(block.left)),
          top_(static_cast<float>(block.top)),
          x_unit_(static_cast<float>(block.width()) / 32),
          y_unit_(static_cast<float>(block.height()) / 32),
          greyed_(greyed) {}

    void disc(float cx, float cy, float r, COLORREF colour) const {
        box({cx - r, cy - r, cx + r, cy + r}, r, colour);
    }
    void box(RectF r, float radius, COLORREF colour) const {
        const RectF real{x(r.left), y(r.top), x(r.right), y(r.bottom)};
        fill_rounded_real(dc_, real, radius * x_unit_, radius * y_unit_, ink(colour), opacity());
    }
    void line(std::span<const PointF> points, float width, COLORREF colour,
              bool closed = false) const {
        std::vector<PointF> real;
        for (const PointF& p : points) real.push_back({x(p.x), y(p.y)});
        Path path;
        path.add_stroke(real, width * std::min(x_unit_, y_unit_), closed);
        fill_coverage(dc_, path, ink(colour), opacity());
    }
    // A filled outline with round corners: the outline itself and a stroke around it at once.
    void soft_shape(std::span<const PointF> points, float rounding, COLORREF colour) const {
        std::vector<PointF> real;
        for (const PointF& p : points) real.push_back({x(p.x), y(p.y)});
        Path path;
        path.add_polygon(real);
        path.add_stroke(real, 2 * rounding * std::min(x_unit_, y_unit_), true);
        fill_coverage(dc_, path, ink(colour), opacity());
    }

  private:
    float x(float v) const { return left_ + v * x_unit_; }
    float y(float v) const { return top_ + v * y_unit_; }
    float opacity() const { return greyed_ ? 0.45F : 1.0F; }
    Ink ink(COLORREF colour) const {
        if (greyed_) {
            const std::uint32_t grey =
                ((colour & 0xFF) * 77 + (colour >> 8 & 0xFF) * 150 + (colour >> 16 & 0xFF) * 29) >>
                8;
            colour = RGB(grey, grey, grey);
        }
        return {pixel_of(colour), rop_pattern, nullptr};
    }

    const DeviceContext& dc_;
    float left_, top_, x_unit_, y_unit_;
    bool greyed_;
};

constexpr COLORREF white = RGB(255, 255, 255);

// Of the sign on a disc.
COLORREF sign_colour(const Theme& look) {
    return look.dark ? look.window : white;
}

void draw_information(const Easel& easel, const Theme& look) {
    easel.disc(16, 16, 14, look.information);
    const COLORREF ink = sign_colour(look);
    easel.disc(16, 9.6F, 1.9F, ink);
    easel.box({14.4F, 13.6F, 17.6F, 24}, 1.6F, ink);
}

void draw_question(const Easel& easel, const Theme& look) {
    easel.disc(16, 16, 14, look.information);
    const COLORREF ink = sign_colour(look);
    std::vector<PointF> hook;
    constexpr float from = 3.30F, to = 7.20F, radius = 4.5F;  // angles, from the left over the top
    constexpr int steps = 24;
    for (int i = 0; i <= steps; ++i) {
        const float angle = from + (to - from) * static_cast<float>(i) / steps;
        hook.push_back({16 + radius * std::cos(angle), 12.4F + radius * std::sin(angle)});
    }
    hook.push_back({16.6F, 17.3F});
    hook.push_back({16, 18.6F});
    hook.push_back({16, 19.4F});
    easel.line(hook, 2.9F, ink);
    easel.disc(16, 23.9F, 1.9F, ink);
}

void draw_warning(const Easel& easel, const Theme& look) {
    constexpr PointF triangle[] = {{16, 5.2F}, {27.6F, 25.6F}, {4.4F, 25.6F}};
    easel.soft_shape(triangle, 2.6F, look.warning);
    const COLORREF ink = RGB(0x3A, 0x28, 0x05);
    constexpr PointF bar[] = {{16, 11.6F}, {16, 18.2F}};
    easel.line(bar, 3.0F, ink);
    easel.disc(16, 22.9F, 1.8F, ink);
}

void draw_error(const Easel& easel, const Theme& look) {
    easel.disc(16, 16, 14, look.danger);
    const COLORREF ink = sign_colour(look);
    constexpr PointF down[] = {{11, 11}, {21, 21}}, up[] = {{11, 21}, {21, 11}};
    easel.line(down, 3.0F, ink);
    easel.line(up, 3.0F, ink);
}

void draw_check(const Easel& easel, const Theme& look) {
    easel.disc(16, 16, 14, look.success);
    const COLORREF ink = sign_colour(look);
    constexpr PointF tick[] = {{9.8F, 16.6F}, {14.2F, 21}, {22.4F, 11.8F}};
    easel.line(tick, 3.0F, ink);
}

// A window with a caption and two lines of content.
void draw_application(const Easel& easel, const Theme& look) {
    easel.box({3, 5, 29, 27}, 4, look.accent);
    easel.box({5, 11, 27, 25}, 2, look.dark ? look.window : white);
    for (const float x : {7.0F, 11.0F, 15.0F}) {
        easel.disc(x, 8, 1.2F, sign_colour(look));
    }
    easel.box({8, 14.2F, 20, 16.2F}, 1, look.accent);
    easel.box({8, 19, 24, 21}, 1, look.border_hover);
}

void draw_drawing(const DeviceContext& dc, Drawing drawing, const RECT& block, bool greyed) {
    const Easel easel(dc, block, greyed);
    const Theme& look = theme();
    switch (drawing) {
        case Drawing::application:
            return draw_application(easel, look);
        case Drawing::error:
            return draw_error(easel, look);
        case Drawing::question:
            return draw_question(easel, look);
        case Drawing::warning:
            return draw_warning(easel, look);
        case Drawing::information:
            return draw_information(easel, look);
        case Drawing::check:
            return draw_check(easel, look);
        case Drawing::none:
            return;
    }
}

std::uint32_t grey_of(std::uint32_t pixel) {
    const std::uint32_t grey =
        ((pixel >> 16 & 0xFF) * 77 + (pixel >> 8 & 0xFF) * 150 + (pixel & 0xFF) * 29) >> 8;
    constexpr std::uint32_t faded = 115;  // of 255
    return ((pixel >> 24) * faded / 255) << 24 | grey << 16 | grey << 8 | grey;
}

// One pixel of a picture at another size: the average of what falls on it, weighted by alpha.
std::uint32_t sampled(const Icon& icon, double x0, double y0, double x1, double y1) {
    double alpha = 0, red = 0, green = 0, blue = 0, area = 0;
    const auto last_y =
        std::min<std::int32_t>(static_cast<std::int32_t>(std::ceil(y1)), icon.size.cy);
    const auto last_x =
        std::min<std::int32_t>(static_cast<std::int32_t>(std::ceil(x1)), icon.size.cx);
    for (auto y = static_cast<std::int32_t>(y0); y < last_y; ++y) {
        const double part_y = std::min(y1, y + 1.0) - std::max<double>(y0, y);
        for (auto x = static_cast<std::int32_t>(x0); x < last_x; ++x) {
            const double part = part_y * (std::min(x1, x + 1.0) - std::max<double>(x0, x));
            const std::uint32_t pixel = icon.pixels[std::size_t(y) * icon.size.cx + x];
            const double weight = part * (pixel >> 24);
            area += part;
            alpha += weight;
            red += weight * (pixel >> 16 & 0xFF);
            green += weight * (pixel >> 8 & 0xFF);
            blue += weight * (pixel & 0xFF);
        }
    }
    if (alpha <= 0 || area <= 0) return 0;
    const auto byte = [](double v) { return static_cast<std::uint32_t>(std::lround(v)); };
    return byte(alpha / area) << 24 | byte(red / alpha) << 16 | byte(green / alpha) << 8 |
           byte(blue / alpha);
}

// The pixels of a picture within a block.
template <typename Put>
void resample(const Icon& icon, std::int32_t width, std::int32_t height, const RECT& part,
              Put put) {
    const double step_x = double(icon.size.cx) / width, step_y = double(icon.size.cy) / height;
    const bool same = icon.size.cx == width && icon.size.cy == height;
    for (std::int32_t y = part.top; y < part.bottom; ++y) {
        for (std::int32_t x = part.left; x < part.right; ++x) {
            put(x, y,
                same ? icon.pixels[std::size_t(y) * width + x]
                     : sampled(icon, x * step_x, y * step_y, (x + 1) * step_x, (y + 1) * step_y));
        }
    }
}

void draw_picture(const DeviceContext& dc, const Icon& icon, const RECT& block, bool greyed) {
    for_each_visible(dc, block, [&](const RECT& clip) {
        const RECT part{clip.left - block.left, clip.top - block.top, clip.right - block.left,
                        clip.bottom - block.top};
        resample(icon, block.width(), block.height(), part,
                 [&](std::int32_t x, std::int32_t y, std::uint32_t pixel) {
                     if (greyed) pixel = grey_of(pixel);
                     std::uint32_t& under = pixel_row(dc.surface, block.top + y)[block.left + x];
                     under = mix(under, pixel, pixel >> 24);
                 });
    });
}

HICON drawing_icon(Drawing drawing) {
    HICON& handle = gdi_state().drawings[static_cast<int>(drawing)];
    if (handle == HICON{}) {
        auto icon = std::make_unique<Icon>();
        icon->drawing = drawing;
        icon->permanent = true;
        icon->size = {32, 32};
        handle = gdi_state().icons.add(std::move(icon));
    }
    return handle;
}

// What a drawing makes of a background tells its colour and its alpha.
void drawing_pixels(Drawing drawing, SIZE size, std::uint32_t* pixels) {
    const std::size_t count = std::size_t(size.cx) * size.cy;
    std::vector<std::uint32_t> on_white(count, 0xFFFFFFFFu), on_black(count, 0xFF000000u);
    DeviceContext dc;
    dc.surface = {nullptr, size.cx, size.cy, size.cx, 1.0};
    dc.state.clip = {{0, 0, size.cx, size.cy}};
    for (std::vector<std::uint32_t>* canvas : {&on_white, &on_black}) {
        dc.surface.pixels = canvas->data();
        update_real_clip(dc);
        draw_drawing(dc, drawing, {0, 0, size.cx, size.cy}, false);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t green_white = on_white[i] >> 8 & 0xFF;
        const std::uint32_t green_black = on_black[i] >> 8 & 0xFF;
        const std::uint32_t alpha = 255 - (green_white - std::min(green_white, green_black));
        std::uint32_t pixel = alpha << 24;
        for (int shift = 0; shift < 24 && alpha > 0; shift += 8) {
            const std::uint32_t part = on_black[i] >> shift & 0xFF;
            pixel |= std::min<std::uint32_t>((part * 255 + alpha / 2) / alpha, 255) << shift;
        }
        pixels[i] = pixel;
    }
}

}  // namespace

HICON CreateIconFromPixels(std::int32_t width, std::int32_t height, const std::uint32_t* pixels) {
    if (pixels == nullptr || width <= 0 || height <= 0 || width > largest_icon ||
        height > largest_icon) {
        return HICON{};
    }
    auto icon = std::make_unique<Icon>();
    icon->size = {width, height};
    icon->pixels.assign(pixels, pixels + std::size_t(width) * height);
    return gdi_state().icons.add(std::move(icon));
}

bool DestroyIcon(HICON handle) {
    const Icon* icon = gdi_state().icons.find(handle);
    if (icon == nullptr) return false;
    if (!icon->permanent) gdi_state().icons.remove(handle);
    return true;
}

bool GetIconSize(HICON handle, SIZE& size) {
    const Icon* icon = gdi_state().icons.find(handle);
    if (icon == nullptr) return false;
    size = icon->size;
    return true;
}

bool GetIconPixels(HICON handle, std::int32_t width, std::int32_t height, std::uint32_t* pixels) {
    const Icon* icon = gdi_state().icons.find(handle);
    if (icon == nullptr || pixels == nullptr || width <= 0 || height <= 0 || width > largest_icon ||
        height > largest_icon) {
        return false;
    }
    if (icon->drawing != Drawing::none) {
        drawing_pixels(icon->drawing, {width, height}, pixels);
        return true;
    }
    resample(*icon, width, height, {0, 0, width, height},
             [&](std::int32_t x, std::int32_t y, std::uint32_t pixel) {
                 pixels[std::size_t(y) * width + x] = pixel;
             });
    return true;
}

bool DrawIconEx(HDC to, std::int32_t x, std::int32_t y, HICON handle, std::int32_t w,
                std::int32_t h, bool greyed) {
    DeviceContext* dc = find_context(to);
    const Icon* icon = gdi_state().icons.find(handle);
    if (dc == nullptr || icon == nullptr) return false;
    if (w <= 0) w = icon->size.cx;
    if (h <= 0) h = icon->size.cy;
    const RECT block = dc->real(tame_block(x, y, w, h));
    if (block.empty()) return true;
    if (icon->drawing != Drawing::none) {
        draw_drawing(*dc, icon->drawing, block, greyed);
    } else {
        draw_picture(*dc, *icon, block, greyed);
    }
    return true;
}

HICON LoadSystemIcon(std::int32_t which) {
    switch (which) {
        case IDI_APPLICATION:
        case IDI_WINLOGO:
            return drawing_icon(Drawing::application);
        case IDI_HAND:
            return drawing_icon(Drawing::error);
        case IDI_QUESTION:
            return drawing_icon(Drawing::question);
        case IDI_EXCLAMATION:
            return drawing_icon(Drawing::warning);
        case IDI_ASTERISK:
            return drawing_icon(Drawing::information);
        default:
            return HICON{};
    }
}

HICON LoadNamedIcon(const char* name) {
    struct Named {
        char name[16];
        Drawing drawing;
    };
    constexpr Named named[] = {
        {"warnIcon", Drawing::warning},     {"errorIcon", Drawing::error},
        {"infoIcon", Drawing::information}, {"questionIcon", Drawing::question},
        {"appIcon", Drawing::application},  {"checkIcon", Drawing::check}};
    if (name == nullptr) return HICON{};
    for (const Named& entry : named) {
        if (strcasecmp(entry.name, name) == 0) return drawing_icon(entry.drawing);
    }
    return HICON{};
}

}  // namespace tarn::platform
