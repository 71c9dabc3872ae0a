// Pictures that formats name: built-in icons, and files of the program.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "platform/dialogs/program_resources.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"
#include "winio/buttons.h"
#include "winio/resources.h"

namespace tarn::winio {

using namespace platform;

namespace {

struct loaded_bitmap {
    loaded_bitmap* next;
    std::string name;
    HBITMAP bitmap;                                              // 0: it isn't there
    HICON looks[static_cast<std::size_t>(picture_look::count)];  // made when first wanted
};

loaded_bitmap*& loaded() {
    static constinit loaded_bitmap* list = nullptr;
    return list;
}

constexpr std::int32_t stand_in_size = 24, usual_icon = 32;

struct loaded_icon {
    loaded_icon* next;
    std::string name;
    HICON icon;  // 0: it isn't there
};

loaded_icon*& loaded_icons() {
    static constinit loaded_icon* list = nullptr;
    return list;
}

HBITMAP read_bitmap(const std::string& name) {
    constexpr std::size_t header = 14;
    std::string bytes;
    if (!read_picture_resource(resource_kind::bitmap, name, bytes)) return HBITMAP{};
    if (bytes.size() <= header || bytes[0] != 'B' || bytes[1] != 'M') return HBITMAP{};
    return CreateDIBitmap(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

struct pixel_block {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint32_t> pixels;  // opaque
};

pixel_block pixels_of(HBITMAP bitmap) {
    pixel_block block;
    SIZE size;
    if (!bitmap || !GetBitmapSize(bitmap, size)) return block;
    HDC dc = CreateCompatibleDC(HDC{});
    HGDIOBJ before = SelectObject(dc, bitmap);
    const Surface* surface = surface_of(dc);
    if (surface && surface->pixels) {
        block.width = surface->width;
        block.height = surface->height;
        for (std::int32_t y = 0; y < surface->height; ++y) {
            const std::uint32_t* row = surface->pixels + std::ptrdiff_t{y} * surface->stride;
            for (std::int32_t x = 0; x < surface->width; ++x)
                block.pixels.push_back(row[x] | 0xFF000000u);
        }
    }
    SelectObject(dc, before);
    DeleteDC(dc);
    return block;
}

HICON icon_of_pixels(const pixel_block& block) {
    return CreateIconFromPixels(block.width, block.height, block.pixels.data());
}

std::uint32_t without_colour(std::uint32_t pixel) {
    const std::uint32_t red = pixel >> 16 & 0xFF, green = pixel >> 8 & 0xFF, blue = pixel & 0xFF;
    const std::uint32_t light = (red * 77 + green * 151 + blue * 28) >> 8;
    return 0xFF000000u | light * 0x010101u;
}

HICON icon_of_look(HBITMAP bitmap, picture_look look, bool corner) {
    constexpr std::uint32_t marker = 0xFFC0C0C0u, one_grey = 0xFF808080u;
    pixel_block block = pixels_of(bitmap);
    if (block.pixels.empty()) return HICON{};
    const std::uint32_t background = corner ? block.pixels[0] : marker;
    for (std::uint32_t& pixel : block.pixels) {
        if (pixel == marker || pixel == background)
            pixel = 0;
        else if (look == picture_look::grey)
            pixel = one_grey;
        else if (look == picture_look::colourless)
            pixel = without_colour(pixel);
    }
    return icon_of_pixels(block);
}

HICON read_icon(const char* name) {
    std::string bytes;
    if (!read_picture_resource(resource_kind::icon, name, bytes)) return HICON{};
    POINT hot;
    return CreateIconFromFile(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                              false, hot);
}

// An icon file, or a bitmap whose background is left out.
HICON icon_of_file(const char* name) {
    for (const loaded_icon* each = loaded_icons(); each; each = each->next)
        if (each->name == name) return each->icon;
    HICON icon = read_icon(name);
    if (!icon) icon = icon_of_look(load_resource(name), picture_look::plain, false);
    auto* fresh = new (std::nothrow) loaded_icon{loaded_icons(), name, icon};
    if (!fresh) heap_exhausted();
    loaded_icons() = fresh;
    return fresh->icon;
}

}  // namespace

HICON find_icon(const char* name) {
    if (!name || !*name) return HICON{};
    if (static_cast<unsigned char>(name[0]) == 0xFF) {
        std::uint16_t number = 0;
        std::memcpy(&number, name + 1, sizeof number);
        return LoadSystemIcon(number);
    }
    HICON icon = LoadNamedIcon(name);
    return icon ? icon : icon_of_file(name);
}

std::int32_t GetIconSize(const char* name) {
    if (!name || !*name) return 0;
    if (records().check_mode) return usual_icon;  // the program's pictures needn't be there
    HICON icon = find_icon(name);
    SIZE size;
    if (!icon) return 0;
    return platform::GetIconSize(icon, size) ? std::max(size.cx, size.cy) : usual_icon;
}

HBITMAP load_resource(const char* name) {
    if (!name || !*name) return HBITMAP{};
    for (const loaded_bitmap* each = loaded(); each; each = each->next)
        if (each->name == name) return each->bitmap;
    auto* fresh = new (std::nothrow) loaded_bitmap{loaded(), name, read_bitmap(name), {}};
    if (!fresh) heap_exhausted();
    loaded() = fresh;
    return fresh->bitmap;
}

SIZE size_bitmap(const char* name) {
    SIZE size;
    if (HBITMAP bitmap = load_resource(name); bitmap && GetBitmapSize(bitmap, size)) return size;
    return {stand_in_size, stand_in_size};
}

// A hill and a sun in a frame.
void draw_missing_picture(HDC dc, const RECT& place) {
    const Theme& look = theme();
    auto left = static_cast<float>(place.left), top = static_cast<float>(place.top);
    auto wide = static_cast<float>(place.width()), high = static_cast<float>(place.height());
    RectF frame{left + wide * 0.15F, top + high * 0.2F, left + wide * 0.85F, top + high * 0.8F};
    const PointF hill[] = {{frame.left + wide * 0.08F, frame.bottom - high * 0.08F},
                           {frame.left + wide * 0.28F, frame.top + high * 0.24F},
                           {frame.left + wide * 0.48F, frame.bottom - high * 0.08F}};
    stroke_rounded(dc, frame, 2.0F, 1.2F, look.text_muted);
    fill_path(dc, hill, look.text_muted, 0.55F);
    fill_circle(dc, {frame.right - wide * 0.16F, frame.top + high * 0.16F}, wide * 0.06F,
                look.text_muted, 0.8F);
}

void draw_bitmap(HDC dc, const RECT& place, HBITMAP bitmap) {
    SIZE size;
    if (!bitmap || !GetBitmapSize(bitmap, size)) {
        draw_missing_picture(dc, place);
        return;
    }
    HDC memory = CreateCompatibleDC(dc);
    HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(dc, place.left + (place.width() - size.cx) / 2,
           place.top + (place.height() - size.cy) / 2, size.cx, size.cy, memory, 0, 0, SRCCOPY);
    SelectObject(memory, before);
    DeleteDC(memory);
}

void draw_button_picture(HDC dc, const RECT& place, HBITMAP bitmap, picture_look look,
                         bool corner) {
    loaded_bitmap* record = loaded();
    while (record && (!bitmap || record->bitmap != bitmap)) record = record->next;
    SIZE size;
    if (!record || !GetBitmapSize(bitmap, size)) {
        draw_missing_picture(dc, place);
        return;
    }
    HICON& icon = record->looks[static_cast<std::size_t>(look)];
    if (!icon) icon = icon_of_look(bitmap, look, corner);
    DrawIconEx(dc, place.left + (place.width() - size.cx) / 2,
               place.top + (place.height() - size.cy) / 2, icon, size.cx, size.cy);
}

}  // namespace tarn::winio
