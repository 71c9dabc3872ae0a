// The picture of a button as a bitmap: a program's bitmap, its label, and the edges of a state.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "frame/link_name.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "tarn/winio.h"
#include "winio/buttons.h"
#include "winio/procedures.h"
#include "winio/text_layer.h"

namespace tarn::winio {

using namespace platform;

namespace {

enum button_state : std::int32_t { state_grey, state_up, state_down, state_checked };
enum button_style : std::int32_t { style_plain, style_flat, style_hover };

constexpr std::uint32_t opaque = 0xFF000000u, marker = 0xFFC0C0C0u, one_grey = 0xFF808080u,
                        white = 0xFFFFFFFFu, black = 0xFF000000u;
constexpr std::int32_t largest_side = 4096;

std::uint32_t pixel_of(COLORREF colour) {
    return opaque | (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}

struct picture {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    picture(std::int32_t w, std::int32_t h, std::uint32_t fill)
        : width(w), height(h), pixels(std::size_t(w) * h, fill) {}
    std::uint32_t& at(std::int32_t x, std::int32_t y) { return pixels[std::size_t(y) * width + x]; }
};

// One text of a memory context, drawn by `draw`.
template <class Draw>
picture drawn(std::int32_t width, std::int32_t height, HBITMAP shown, Draw draw) {
    picture result(width, height, opaque);
    HDC dc = CreateCompatibleDC(HDC{});
    HBITMAP own{};
    if (!shown) shown = own = CreateCompatibleBitmap(dc, width, height);
    HGDIOBJ before = SelectObject(dc, shown);
    draw(dc);
    const Surface* surface = surface_of(dc);
    for (std::int32_t y = 0; surface && surface->pixels && y < std::min(height, surface->height);
         ++y)
        for (std::int32_t x = 0; x < std::min(width, surface->width); ++x)
            result.at(x, y) = surface->pixels[std::ptrdiff_t{y} * surface->stride + x] | opaque;
    SelectObject(dc, before);
    DeleteDC(dc);
    if (own) DeleteObject(own);
    return result;
}

HFONT label_font() {
    LOGFONT description{};
    description.lfHeight = -11;  // 8 points
    description.lfWeight = 400;
    std::strcpy(description.lfFaceName, "MS Sans Serif");
    return get_font(description);
}

// The label's own size, and at least `min_lines` lines.
SIZE label_size(const char* text, std::int32_t min_lines) {
    SIZE size{};
    if (!text || !*text) return size;
    drawn(1, 1, HBITMAP{}, [&](HDC dc) {
        SelectObject(dc, label_font());
        RECT rect{0, 0, 1000, 1000};
        const auto lines =
            static_cast<std::int32_t>(1 + std::count(text, text + strlen(text), '\n'));
        const std::int32_t height = DrawTextAW(dc, text, -1, rect, DT_CALCRECT);
        size = {rect.width() + 10, height / lines * std::max(lines, min_lines) + 4};
    });
    return size;
}

std::uint32_t grey_of(std::uint32_t pixel) {
    const std::uint32_t light =
        ((pixel >> 16 & 0xFF) * 77 + (pixel >> 8 & 0xFF) * 151 + (pixel & 0xFF) * 28) >> 8;
    return opaque | light * 0x010101u;
}

// The bitmap's background is its first pixel; that and the marker become the face.
void recolour(picture& bitmap, std::int32_t state, std::int32_t style, bool coloured,
              std::uint32_t face) {
    if (bitmap.pixels.empty()) return;
    const std::uint32_t background = bitmap.pixels[0];
    for (std::uint32_t& pixel : bitmap.pixels) {
        if (pixel == marker || pixel == background)
            pixel = face;
        else if (state == state_grey)
            pixel = one_grey;
        else if (style == style_flat && !coloured)
            pixel = grey_of(pixel);
    }
}

struct edge {
    std::uint32_t outer_top, inner_top, inner_bottom, outer_bottom;
};

edge edge_of(std::int32_t state, std::int32_t style, std::uint32_t face) {
    const bool down = state == state_down || state == state_checked;
    if (down && style == style_plain) return {black, one_grey, face, white};
    if (down) return {one_grey, face, face, white};
    if (style == style_flat) return {face, face, face, face};
    if (style == style_hover) return {white, face, face, one_grey};
    return {white, face, one_grey, black};
}

void draw_edge(picture& image, const edge& colours) {
    const auto ring = [&](std::int32_t inset, std::uint32_t top, std::uint32_t bottom) {
        const std::int32_t right = image.width - 1 - inset, low = image.height - 1 - inset;
        for (std::int32_t x = inset; x <= right; ++x) {
            image.at(x, inset) = top;
            image.at(x, low) = bottom;
        }
        for (std::int32_t y = inset; y <= low; ++y) {
            if (y < low) image.at(inset, y) = top;
            image.at(right, y) = bottom;
        }
    };
    ring(1, colours.inner_top, colours.inner_bottom);
    ring(0, colours.outer_top, colours.outer_bottom);
}

struct button_image {
    std::int32_t state, style;
    bool coloured, fixed_width;
    const char* text;
    SIZE size, label;
};

picture compose(const button_image& wanted, picture bitmap) {
    const COLORREF face_colour = GetSysColor(COLOR_BTNFACE);
    const std::uint32_t face = pixel_of(face_colour);
    const bool down = wanted.state == state_down || wanted.state == state_checked;
    recolour(bitmap, wanted.state, wanted.style, wanted.coloured, face);
    picture image = drawn(wanted.size.cx, wanted.size.cy, HBITMAP{}, [&](HDC dc) {
        const RECT all{0, 0, wanted.size.cx, wanted.size.cy};
        FillRect(dc, all, get_brush(face_colour));
        if (wanted.label.cy == 0) return;
        SelectObject(dc, label_font());
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, GetSysColor(wanted.state == state_grey ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
        RECT place{4, wanted.size.cy - wanted.label.cy, wanted.size.cx - 4, wanted.size.cy - 2};
        if (down) place = {place.left + 1, place.top + 1, place.right + 1, place.bottom + 1};
        DrawTextAW(dc, wanted.text, -1, place, DT_CENTER | DT_VCENTER | DT_END_ELLIPSIS);
    });
    const std::int32_t shift = down ? 3 : 2;
    const bool centred = wanted.fixed_width || wanted.label.cx > 0;
    const std::int32_t left =
        centred ? std::max(shift, (image.width - bitmap.width) / 2 + shift - 2) : shift;
    for (std::int32_t y = 0; y < std::min(bitmap.height, image.height - shift); ++y)
        for (std::int32_t x = 0; x < std::min(bitmap.width, image.width - left); ++x)
            image.at(left + x, shift + y) = bitmap.at(x, y);
    draw_edge(image, edge_of(wanted.state, wanted.style, face));
    if (wanted.state == state_checked && wanted.label.cy == 0 && !wanted.fixed_width) {
        for (std::int32_t y = 2; y < image.height - 2; y += 2)
            for (const std::int32_t x : {3, image.width - 3})
                if (x > 1 && x < image.width) image.at(x, y) = black;
    }
    return image;
}

}  // namespace

HBITMAP make_button_image(HBITMAP shown, std::int32_t state, std::int32_t style, bool coloured,
                          const char* text, std::int32_t& width, std::int32_t& height,
                          std::int32_t min_lines, bool measure_only) {
    initialise_quillpan_plus();
    SIZE picture_size{};
    if (shown) GetBitmapSize(shown, picture_size);
    const SIZE label = label_size(text, min_lines);
    const SIZE size{std::max(std::max(label.cx, picture_size.cx) + 5, width),
                    std::max(picture_size.cy + label.cy + 5, height)};
    const button_image wanted{
        state,     style, coloured,
        width > 0, text,  {std::min(size.cx, largest_side), std::min(size.cy, largest_side)},
        label};
    width = wanted.size.cx;
    height = wanted.size.cy;
    if (measure_only) return HBITMAP{};
    picture bitmap(0, 0, 0);
    if (picture_size.cx > 0) bitmap = drawn(picture_size.cx, picture_size.cy, shown, [](HDC) {});
    const picture image = compose(wanted, std::move(bitmap));
    return CreateBitmapFromPixels(image.width, image.height, image.pixels.data(), image.width);
}

}  // namespace tarn::winio

extern "C" TARN_EXPORT std::int32_t __make_button_image(std::int32_t bitmap, std::int32_t state,
                                                        std::int32_t style, std::int32_t coloured,
                                                        const char* text, std::int32_t* width,
                                                        std::int32_t* height,
                                                        std::int32_t min_lines,
                                                        std::int32_t measure_only) {
    std::int32_t no_width = 0, no_height = 0;
    const tarn::platform::HBITMAP made = tarn::winio::make_button_image(
        tarn::platform::HBITMAP{bitmap}, state, style, coloured != 0, text,
        width ? *width : no_width, height ? *height : no_height, min_lines, measure_only != 0);
    return static_cast<std::int32_t>(made);
}
