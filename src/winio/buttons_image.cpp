// The picture of a button as a bitmap: a program's bitmap, its label, and the edges of a state.
#include <algorithm>
#include <cstring>
#include <vector>

#include "frame/link_name.h"
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

constexpr std::uint32_t opaque = 0xFF000000u, marker = 0xFFC0C0C0u, one_grey = 0xFF808080u;
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

// A memory context that draws in a bitmap, or reads it.
class canvas {
  public:
    explicit canvas(HBITMAP shown) : dc_(CreateCompatibleDC(HDC{})) {
        before_ = SelectObject(dc_, shown);
    }
    ~canvas() {
        SelectObject(dc_, before_);
        DeleteDC(dc_);
    }
    canvas(const canvas&) = delete;
    canvas& operator=(const canvas&) = delete;
    HDC dc() const { return dc_; }

  private:
    HDC dc_;
    HGDIOBJ before_;
};

HBITMAP new_bitmap(SIZE size) {
    HDC dc = CreateCompatibleDC(HDC{});
    HBITMAP made = CreateCompatibleBitmap(dc, size.cx, size.cy);
    DeleteDC(dc);
    return made;
}

// A bitmap may have more real pixels than logical ones: one of each counts.
picture pixels_of(HBITMAP shown, SIZE size) {
    picture result(size.cx, size.cy, opaque);
    const canvas from(shown);
    for (std::int32_t y = 0; y < size.cy; ++y)
        for (std::int32_t x = 0; x < size.cx; ++x)
            result.at(x, y) = pixel_of(GetPixel(from.dc(), x, y));
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
    HDC dc = CreateCompatibleDC(HDC{});
    SelectObject(dc, label_font());
    RECT rect{0, 0, 1000, 1000};
    const auto lines = static_cast<std::int32_t>(1 + std::count(text, text + strlen(text), '\n'));
    const std::int32_t height = DrawTextAW(dc, text, -1, rect, DT_CALCRECT);
    DeleteDC(dc);
    return {rect.width() + 10, height / lines * std::max(lines, min_lines) + 4};
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
    COLORREF outer_top, inner_top, inner_bottom, outer_bottom;
};

edge edge_of(std::int32_t state, std::int32_t style, COLORREF face) {
    constexpr COLORREF black = 0, grey = 0x808080, white = 0xFFFFFF;
    const bool down = state == state_down || state == state_checked;
    if (down && style == style_plain) return {black, grey, face, white};
    if (down) return {grey, face, face, white};
    if (style == style_flat) return {face, face, face, face};
    if (style == style_hover) return {white, face, face, grey};
    return {white, face, grey, black};
}

void fill(HDC dc, const RECT& place, COLORREF colour) {
    FillRect(dc, place, get_brush(colour));
}

void draw_edge(HDC dc, SIZE size, const edge& colours) {
    const auto ring = [&](std::int32_t inset, COLORREF top, COLORREF bottom) {
        const std::int32_t right = size.cx - inset, low = size.cy - inset;
        fill(dc, {inset, inset, right, inset + 1}, top);
        fill(dc, {inset, low - 1, right, low}, bottom);
        fill(dc, {inset, inset, inset + 1, low - 1}, top);
        fill(dc, {right - 1, inset, right, low}, bottom);
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

void draw_label(HDC dc, const button_image& wanted, bool down) {
    if (wanted.label.cy == 0) return;
    SelectObject(dc, label_font());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(wanted.state == state_grey ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
    RECT place{4, wanted.size.cy - wanted.label.cy, wanted.size.cx - 4, wanted.size.cy - 2};
    if (down) place = {place.left + 1, place.top + 1, place.right + 1, place.bottom + 1};
    DrawTextAW(dc, wanted.text, -1, place, DT_CENTER | DT_VCENTER | DT_END_ELLIPSIS);
}

void draw_bitmap_in(HDC dc, const button_image& wanted, const picture& bitmap, bool down) {
    if (bitmap.pixels.empty()) return;
    const std::int32_t shift = down ? 3 : 2;
    const bool centred = wanted.fixed_width || wanted.label.cx > 0;
    const std::int32_t left =
        centred ? std::max(shift, (wanted.size.cx - bitmap.width) / 2 + shift - 2) : shift;
    HBITMAP made =
        CreateBitmapFromPixels(bitmap.width, bitmap.height, bitmap.pixels.data(), bitmap.width);
    {
        const canvas from(made);
        BitBlt(dc, left, shift, bitmap.width, bitmap.height, from.dc(), 0, 0, SRCCOPY);
    }
    DeleteObject(made);
}

HBITMAP compose(const button_image& wanted, picture bitmap) {
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const bool down = wanted.state == state_down || wanted.state == state_checked;
    recolour(bitmap, wanted.state, wanted.style, wanted.coloured, pixel_of(face));
    HBITMAP made = new_bitmap(wanted.size);
    const canvas image(made);
    fill(image.dc(), {0, 0, wanted.size.cx, wanted.size.cy}, face);
    draw_label(image.dc(), wanted, down);
    draw_bitmap_in(image.dc(), wanted, bitmap, down);
    draw_edge(image.dc(), wanted.size, edge_of(wanted.state, wanted.style, face));
    if (wanted.state == state_checked && wanted.label.cy == 0 && !wanted.fixed_width) {
        for (std::int32_t y = 2; y < wanted.size.cy - 2; y += 2)
            for (const std::int32_t x : {3, wanted.size.cx - 3})
                fill(image.dc(), {x, y, x + 1, y + 1}, COLORREF{0});
    }
    return made;
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
    return compose(wanted, pixels_of(shown, picture_size));
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
