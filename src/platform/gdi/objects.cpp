#include "platform/gdi/objects.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "platform/gdi/context.h"
#include "platform/gdi/theme.h"

namespace tarn::platform {

namespace {

constexpr std::int64_t largest_bitmap = std::int64_t{1} << 27;  // pixels: half a gigabyte

using ObjectOwner = std::unique_ptr<GdiObject, DeleteObjectRecord>;

LOGFONT describe(std::int32_t height, std::int32_t width, std::uint8_t pitch,
                 std::string_view face) {
    LOGFONT font;
    font.lfHeight = height;
    font.lfWidth = width;
    font.lfWeight = 400;
    font.lfPitchAndFamily = pitch;
    std::memcpy(font.lfFaceName, face.data(), face.size());
    return font;
}

// 9 points are 12 pixels of the em. The fixed fonts get the 8-pixel cell of a text window.
LOGFONT stock_font(std::int32_t which) {
    switch (which) {
        case OEM_FIXED_FONT:
            return describe(-13, 8, 0x31, "Terminal");
        case ANSI_FIXED_FONT:
            return describe(-13, 8, 0x31, "Courier New");
        case SYSTEM_FIXED_FONT:
            return describe(-13, 8, 0x31, "Fixedsys");
        case ANSI_VAR_FONT:
            return describe(-12, 0, 0x22, "MS Sans Serif");
        case DEFAULT_GUI_FONT:
            return describe(-12, 0, 0x22, "MS Shell Dlg");
        default:
            return describe(-12, 0, 0x22, "System");
    }
}

GdiObject* make_stock_object(std::int32_t which) {
    constexpr COLORREF greys[] = {RGB(255, 255, 255), RGB(192, 192, 192), RGB(128, 128, 128),
                                  RGB(64, 64, 64), 0};
    if (which <= NULL_BRUSH) {
        auto* brush = new Brush;
        brush->hollow = which == NULL_BRUSH;
        if (!brush->hollow) brush->colour = greys[which];
        return brush;
    }
    if (which <= NULL_PEN) {
        auto* pen = new Pen;
        pen->style = which == NULL_PEN ? PS_NULL : PS_SOLID;
        pen->colour = which == WHITE_PEN ? greys[0] : 0;
        return pen;
    }
    auto* font = new Font;
    font->description = stock_font(which);
    return font;
}

// Numbers 9 and 15 have never been those of an object here.
bool is_stock(std::int32_t which) {
    return which >= WHITE_BRUSH && which <= DEFAULT_GUI_FONT && which != 9 && which != 15;
}

}  // namespace

GdiState& gdi_state() {
    static auto* state = new GdiState;
    return *state;
}

void DeleteObjectRecord::operator()(GdiObject* object) const {
    switch (object->kind) {
        case ObjectKind::pen:
            delete static_cast<Pen*>(object);
            break;
        case ObjectKind::brush:
            delete static_cast<Brush*>(object);
            break;
        case ObjectKind::font:
            delete static_cast<Font*>(object);
            break;
        case ObjectKind::bitmap:
            delete static_cast<Bitmap*>(object);
            break;
    }
}

HGDIOBJ add_object(GdiObject* object) {
    auto owner = std::make_unique<ObjectOwner>(object);
    stock_object(WHITE_BRUSH);
    if (gdi_state().objects.full()) return HGDIOBJ{};
    object->handle = gdi_state().objects.add(std::move(owner));
    return object->handle;
}

GdiObject* find_object(HGDIOBJ handle) {
    const ObjectOwner* owner = gdi_state().objects.find(handle);
    return owner == nullptr ? nullptr : owner->get();
}

void retain(GdiObject* object) {
    ++object->selected;
}

void release(GdiObject* object) {
    if (--object->selected == 0 && object->deleted) DeleteObjectRecord{}(object);
}

// All of them get their handles before the first other object can have one.
GdiObject* stock_object(std::int32_t which) {
    auto& stock = gdi_state().stock;
    if (stock[WHITE_BRUSH] == nullptr) {
        for (std::int32_t i = WHITE_BRUSH; i <= DEFAULT_GUI_FONT; ++i) {
            if (!is_stock(i)) continue;
            stock[i] = make_stock_object(i);
            stock[i]->permanent = true;
            add_object(stock[i]);
        }
    }
    return stock[which];
}

HGDIOBJ GetStockObject(std::int32_t which) {
    return is_stock(which) ? stock_object(which)->handle : HGDIOBJ{};
}

HBRUSH GetSysColorBrush(std::int32_t which) {
    if (which < 0 || which >= static_cast<std::int32_t>(std::size(gdi_state().system_brushes))) {
        return HBRUSH{};
    }
    HGDIOBJ& handle = gdi_state().system_brushes[which];
    if (handle == HGDIOBJ{}) handle = add_object(new Brush);
    Brush* brush = find_brush(handle);
    if (brush == nullptr) return HBRUSH{};
    brush->permanent = true;
    brush->colour = GetSysColor(which);  // each time, since the theme may have changed
    return handle;
}

// A bitmap in a context can't be deleted; anything else lives on unseen until it is put out.
bool DeleteObject(HGDIOBJ handle) {
    GdiObject* object = find_object(handle);
    if (object == nullptr) return false;
    if (object->permanent) return true;
    if (object->kind == ObjectKind::bitmap && object->selected > 0) return false;
    std::unique_ptr<ObjectOwner> owner = gdi_state().objects.remove(handle);
    if (object->selected > 0) {
        object->deleted = true;
        static_cast<void>(owner->release());
    }
    return true;
}

bool IsGdiObject(HGDIOBJ object) {
    return find_object(object) != nullptr;
}

HPEN CreatePen(std::int32_t style, std::int32_t width, COLORREF colour) {
    auto* pen = new Pen;
    pen->style = style >= PS_SOLID && style <= PS_INSIDEFRAME ? style : PS_SOLID;
    pen->width = std::clamp(width, 1, 10000);
    pen->colour = colour & 0xFFFFFF;
    return add_object(pen);
}

HPEN ExtCreatePen(std::uint32_t style, std::uint32_t width, COLORREF colour) {
    return CreatePen(static_cast<std::int32_t>(style & 0xF),
                     static_cast<std::int32_t>(std::min(width, 10000u)), colour);
}

HBRUSH CreateSolidBrush(COLORREF colour) {
    auto* brush = new Brush;
    brush->colour = colour & 0xFFFFFF;
    return add_object(brush);
}

HBRUSH CreatePatternBrush(HBITMAP bitmap) {
    const Bitmap* source = find_bitmap(bitmap);
    if (source == nullptr || source->size.cx <= 0 || source->size.cy <= 0) return HBRUSH{};
    std::unique_ptr<Bitmap> copy = make_bitmap(source->size, source->surface.scale);
    if (copy == nullptr) return HBRUSH{};
    const Surface& from = source->surface;
    std::copy_n(from.pixels, std::size_t(from.stride) * from.height, copy->pixels.get());
    auto* brush = new Brush;
    brush->pattern = std::move(copy);
    return add_object(brush);
}

HFONT CreateFontIndirectA(const LOGFONT& description) {
    auto* font = new Font;
    font->description = description;
    font->description.lfFaceName[31] = 0;
    return add_object(font);
}

std::unique_ptr<Bitmap> make_bitmap(SIZE logical, double scale) {
    if (logical.cx < 0 || logical.cy < 0) return nullptr;
    auto bitmap = std::make_unique<Bitmap>();
    Surface& surface = bitmap->surface;
    bitmap->size = logical;
    surface.scale = scale;
    if (logical.cx * scale > 1e6 || logical.cy * scale > 1e6) return nullptr;
    surface.width = std::max(surface.to_real(logical.cx), 1);
    surface.height = std::max(surface.to_real(logical.cy), 1);
    surface.stride = surface.width;
    const std::int64_t count = std::int64_t{surface.width} * surface.height;
    if (count > largest_bitmap) return nullptr;
    bitmap->pixels.reset(new (std::nothrow) std::uint32_t[count]);
    if (bitmap->pixels == nullptr) return nullptr;
    std::fill_n(bitmap->pixels.get(), count, 0xFF000000u);
    surface.pixels = bitmap->pixels.get();
    return bitmap;
}

HBITMAP CreateCompatibleBitmap(HDC like, std::int32_t width, std::int32_t height) {
    const DeviceContext* dc = find_context(like);
    const double scale = dc == nullptr ? default_scale() : dc->surface.scale;
    std::unique_ptr<Bitmap> bitmap = make_bitmap({width, height}, scale);
    return bitmap == nullptr ? HBITMAP{} : add_object(bitmap.release());
}

HBITMAP CreateBitmapFromPixels(std::int32_t width, std::int32_t height, const std::uint32_t* pixels,
                               std::int32_t stride) {
    if (width <= 0 || height <= 0 || pixels == nullptr || stride < width) return HBITMAP{};
    std::unique_ptr<Bitmap> bitmap = make_bitmap({width, height}, 1.0);
    if (bitmap == nullptr) return HBITMAP{};
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint32_t* from = pixels + std::size_t(y) * stride;
        std::uint32_t* to = bitmap->pixels.get() + std::size_t(y) * width;
        std::transform(from, from + width, to, [](std::uint32_t p) { return p | 0xFF000000u; });
    }
    return add_object(bitmap.release());
}

bool GetBitmapSize(HBITMAP handle, SIZE& size) {
    const Bitmap* bitmap = find_bitmap(handle);
    if (bitmap == nullptr) return false;
    size = bitmap->size;
    return true;
}

bool GetObjectFont(HFONT handle, LOGFONT& description) {
    const Font* font = find_font(handle);
    if (font == nullptr) return false;
    description = font->description;
    return true;
}

bool GetObjectBrush(HBRUSH handle, COLORREF& colour) {
    const Brush* brush = find_brush(handle);
    if (brush == nullptr || brush->hollow || brush->pattern != nullptr) return false;
    colour = brush->colour;
    return true;
}

void set_default_scale(double scale) {
    if (scale >= 0.25 && scale <= 16) gdi_state().default_scale = scale;
}

double default_scale() {
    return gdi_state().default_scale;
}

}  // namespace tarn::platform
