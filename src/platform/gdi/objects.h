// Pens, brushes, fonts, bitmaps and icons as records, and the one state of the room.
#pragma once

#include <memory>
#include <vector>

#include "platform/base/handle_table.h"
#include "platform/gdi/gdi.h"

namespace tarn::platform {

struct FontInstance;
struct DeviceContext;

enum class ObjectKind : std::uint8_t { pen, brush, font, bitmap };

struct GdiObject {
    explicit GdiObject(ObjectKind what) : kind(what) {}
    ObjectKind kind;
    bool permanent = false;  // stock objects and the brushes of system colours
    bool deleted = false;    // its handle is gone, contexts still draw with it
    std::int32_t selected = 0;
    HGDIOBJ handle{};
};
struct Pen : GdiObject {
    Pen() : GdiObject(ObjectKind::pen) {}
    std::int32_t style = PS_SOLID;  // without PS_GEOMETRIC
    std::int32_t width = 1;
    COLORREF colour = 0;
};
struct Bitmap : GdiObject {
    Bitmap() : GdiObject(ObjectKind::bitmap) {}
    SIZE size;  // logical
    Surface surface;
    std::unique_ptr<std::uint32_t[]> pixels;
};
struct Brush : GdiObject {
    Brush() : GdiObject(ObjectKind::brush) {}
    bool hollow = false;
    COLORREF colour = 0;
    std::unique_ptr<Bitmap> pattern;
};
struct Font : GdiObject {
    Font() : GdiObject(ObjectKind::font) {}
    LOGFONT description;
    FontInstance* instance = nullptr;  // found at the first use
};
// Kind-checked deletion without virtual functions.
struct DeleteObjectRecord {
    void operator()(GdiObject* object) const;
};

enum class Drawing : std::uint8_t {
    none,
    application,
    error,
    question,
    warning,
    information,
    check
};
struct Icon {
    Drawing drawing = Drawing::none;  // none: pixels
    bool permanent = false;
    SIZE size;
    std::vector<std::uint32_t> pixels;
};

struct GdiState {
    double default_scale = 1.0;
    // Objects are reached through an owner each, since contexts may outlive a handle.
    HandleTable<std::unique_ptr<GdiObject, DeleteObjectRecord>, HGDIOBJ> objects;
    HandleTable<DeviceContext, HDC> contexts;
    HandleTable<Icon, HICON> icons;
    GdiObject* stock[18] = {};
    HGDIOBJ system_brushes[25] = {};
    HICON drawings[7] = {};
};
GdiState& gdi_state();

GdiObject* find_object(HGDIOBJ handle);
// The object, if it is one of that kind.
template <typename T>
T* find_object_as(HGDIOBJ handle, ObjectKind kind) {
    GdiObject* object = find_object(handle);
    return object != nullptr && object->kind == kind ? static_cast<T*>(object) : nullptr;
}
inline Pen* find_pen(HGDIOBJ handle) {
    return find_object_as<Pen>(handle, ObjectKind::pen);
}
inline Brush* find_brush(HGDIOBJ handle) {
    return find_object_as<Brush>(handle, ObjectKind::brush);
}
inline Font* find_font(HGDIOBJ handle) {
    return find_object_as<Font>(handle, ObjectKind::font);
}
inline Bitmap* find_bitmap(HGDIOBJ handle) {
    return find_object_as<Bitmap>(handle, ObjectKind::bitmap);
}
// Takes the object over; 0, and the object is gone, when there are too many.
HGDIOBJ add_object(GdiObject* object);
// One of GetStockObject's, which is always there.
GdiObject* stock_object(std::int32_t which);
// A context holds what is selected in it.
void retain(GdiObject* object);
void release(GdiObject* object);

// An own bitmap of opaque black; null when there is no storage for one so large.
std::unique_ptr<Bitmap> make_bitmap(SIZE logical, double scale);

constexpr std::uint32_t pixel_of(COLORREF colour) {
    return 0xFF000000u | (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}
constexpr COLORREF colour_of(std::uint32_t pixel) {
    return (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF);
}

}  // namespace tarn::platform
