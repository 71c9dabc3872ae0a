// Pictures that formats name: the system's icons, and bitmap files beside the program.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

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
    HBITMAP bitmap;  // 0: it isn't there
};

loaded_bitmap*& loaded() {
    static constinit loaded_bitmap* list = nullptr;
    return list;
}

constexpr std::int32_t stand_in_size = 24, usual_icon = 32;
constexpr long largest_file = 64L << 20;

bool read_file(const std::string& path, std::string& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    bool sound = std::fseek(file, 0, SEEK_END) == 0;
    long size = sound ? std::ftell(file) : 0;
    sound = size > 0 && size <= largest_file && std::fseek(file, 0, SEEK_SET) == 0;
    if (sound) {
        bytes.resize(static_cast<std::size_t>(size));
        sound = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
    }
    std::fclose(file);
    return sound;
}

HBITMAP read_bitmap(const std::string& name) {
    std::string bytes;
    if (!read_file(name, bytes) && !read_file(name + ".bmp", bytes)) return HBITMAP{};
    constexpr std::size_t header = 14;
    if (bytes.size() <= header || bytes[0] != 'B' || bytes[1] != 'M') return HBITMAP{};
    return CreateDIBitmap(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

}  // namespace

HICON find_icon(const char* name) {
    if (!name || !*name) return HICON{};
    if (static_cast<unsigned char>(name[0]) == 0xFF) {
        std::uint16_t number = 0;
        std::memcpy(&number, name + 1, sizeof number);
        return LoadSystemIcon(number);
    }
    return LoadNamedIcon(name);
}

std::int32_t GetIconSize(const char* name) {
    if (!name || !*name) return 0;
    return usual_icon;
}

HBITMAP load_resource(const char* name) {
    if (!name || !*name) return HBITMAP{};
    for (const loaded_bitmap* each = loaded(); each; each = each->next)
        if (each->name == name) return each->bitmap;
    auto* fresh = new (std::nothrow) loaded_bitmap{loaded(), name, read_bitmap(name)};
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

}  // namespace tarn::winio
