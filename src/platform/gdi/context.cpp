#include "platform/gdi/context.h"

#include <array>
#include <cmath>

namespace tarn::platform {

namespace {

void retain_tools(ContextState& state) {
    retain(state.pen);
    retain(state.brush);
    retain(state.font);
}

void release_tools(ContextState& state) {
    release(state.pen);
    release(state.brush);
    release(state.font);
}

// The pieces of `from` that `hole` leaves: at most four.
template <typename Take>
void subtract(const RECT& from, const RECT& hole, Take take) {
    if (!overlap(from, hole)) {
        take(from);
        return;
    }
    const std::int32_t top = std::max(from.top, hole.top);
    const std::int32_t bottom = std::min(from.bottom, hole.bottom);
    if (from.top < top) take(RECT{from.left, from.top, from.right, top});
    if (from.left < hole.left) take(RECT{from.left, top, hole.left, bottom});
    if (hole.right < from.right) take(RECT{hole.right, top, from.right, bottom});
    if (bottom < from.bottom) take(RECT{from.left, bottom, from.right, from.bottom});
}

// Into `clip`, which stays disjoint.
void add_rect(std::vector<RECT>& clip, const RECT& rect) {
    if (rect.empty()) return;
    std::vector<RECT> fresh{rect}, rest;
    for (std::size_t i = 0, count = clip.size(); i < count && !fresh.empty(); ++i) {
        if (!overlap(clip[i], rect)) continue;
        rest.clear();
        for (const RECT& piece : fresh) {
            subtract(piece, clip[i], [&](const RECT& r) { rest.push_back(r); });
        }
        fresh.swap(rest);
    }
    clip.insert(clip.end(), fresh.begin(), fresh.end());
}

RECT on_surface(const DeviceContext& dc, const RECT& r) {
    return {dc.place(r.left, 0), dc.place(r.top, 1), dc.place(r.right, 0), dc.place(r.bottom, 1)};
}

RECT bounds_of(const std::vector<RECT>& clip) {
    if (clip.empty()) return {};
    RECT all = clip.front();
    for (const RECT& r : clip) {
        all = {std::min(all.left, r.left), std::min(all.top, r.top), std::max(all.right, r.right),
               std::max(all.bottom, r.bottom)};
    }
    return all;
}

std::int32_t complexity(const std::vector<RECT>& clip) {
    if (clip.empty()) return NULLREGION;
    return clip.size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

void set_start_values(DeviceContext& dc) {
    std::vector<RECT> clip;
    clip.swap(dc.state.clip);  // keeps its storage
    clip.clear();
    dc.state = ContextState{};
    dc.state.clip.swap(clip);
    dc.state.pen = static_cast<Pen*>(stock_object(BLACK_PEN));
    dc.state.brush = static_cast<Brush*>(stock_object(WHITE_BRUSH));
    dc.state.font = static_cast<Font*>(stock_object(SYSTEM_FONT));
    retain_tools(dc.state);
}

void forget_tools(DeviceContext& dc) {
    release_tools(dc.state);
    for (ContextState& saved : dc.saved) release_tools(saved);
    dc.saved.clear();
}

void attach_surface(DeviceContext& dc, const Surface& surface, POINT origin,
                    std::span<const RECT> clip) {
    dc.surface = surface;
    dc.origin = origin;
    if (clip.size() == 1 && !clip[0].empty()) {
        dc.state.clip.assign(1, clip[0]);
    } else {
        for (const RECT& rect : clip) add_rect(dc.state.clip, rect);
    }
    update_real_clip(dc);
}

void attach_bitmap(DeviceContext& dc, Bitmap* bitmap) {
    dc.bitmap = bitmap;
    retain(bitmap);
    const RECT all{0, 0, std::max(bitmap->size.cx, 1), std::max(bitmap->size.cy, 1)};
    dc.state.clip.clear();
    attach_surface(dc, bitmap->surface, {0, 0}, std::array{all});
}

template <typename T>
HGDIOBJ exchange_tool(T*& place, GdiObject* object) {
    const HGDIOBJ old = place->handle;
    retain(object);
    release(place);
    place = static_cast<T*>(object);
    return old;
}

// A bitmap is in one context only; the clip of the old one goes with it.
HGDIOBJ exchange_bitmap(DeviceContext& dc, GdiObject* object) {
    if (dc.bitmap == nullptr || (object->selected > 0 && object != dc.bitmap)) return HGDIOBJ{};
    Bitmap* old = dc.bitmap;
    const HGDIOBJ old_handle = old->handle;
    attach_bitmap(dc, static_cast<Bitmap*>(object));
    release(old);
    return old_handle;
}

}  // namespace

DeviceContext* find_context(HDC handle) {
    return gdi_state().contexts.find(handle);
}

void update_real_clip(DeviceContext& dc) {
    const RECT all{0, 0, dc.surface.pixels == nullptr ? 0 : dc.surface.width, dc.surface.height};
    dc.real_clip.clear();
    for (const RECT& r : dc.state.clip) {
        const Surface& s = dc.surface;
        const RECT real = intersection(
            {s.to_real(r.left), s.to_real(r.top), s.to_real(r.right), s.to_real(r.bottom)}, all);
        if (!real.empty()) dc.real_clip.push_back(real);
    }
    dc.real_bounds = bounds_of(dc.real_clip);
}

HDC create_surface_dc(Surface& surface, POINT origin, std::span<const RECT> clip) {
    if (gdi_state().contexts.full()) return HDC{};
    auto dc = std::make_unique<DeviceContext>();
    set_start_values(*dc);
    attach_surface(*dc, surface, origin, clip);
    return gdi_state().contexts.add(std::move(dc));
}

void reset_surface_dc(HDC handle, Surface& surface, POINT origin, std::span<const RECT> clip) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || dc->bitmap != nullptr) return;
    forget_tools(*dc);
    set_start_values(*dc);
    attach_surface(*dc, surface, origin, clip);
}

const Surface* surface_of(HDC handle) {
    const DeviceContext* dc = find_context(handle);
    return dc == nullptr ? nullptr : &dc->surface;
}

HDC CreateCompatibleDC(HDC like) {
    const DeviceContext* model = find_context(like);
    const double scale = model == nullptr ? default_scale() : model->surface.scale;
    std::unique_ptr<Bitmap> bitmap = make_bitmap({1, 1}, scale);
    if (bitmap == nullptr || gdi_state().contexts.full()) return HDC{};
    auto dc = std::make_unique<DeviceContext>();
    set_start_values(*dc);
    dc->first_bitmap = add_object(bitmap.release());
    Bitmap* first = find_bitmap(dc->first_bitmap);
    if (first == nullptr) {
        forget_tools(*dc);
        return HDC{};
    }
    attach_bitmap(*dc, first);
    return gdi_state().contexts.add(std::move(dc));
}

bool DeleteDC(HDC handle) {
    std::unique_ptr<DeviceContext> dc = gdi_state().contexts.remove(handle);
    if (dc == nullptr) return false;
    forget_tools(*dc);
    if (dc->bitmap != nullptr) release(dc->bitmap);
    if (dc->first_bitmap != HGDIOBJ{}) DeleteObject(dc->first_bitmap);
    return true;
}

std::int32_t SaveDC(HDC handle) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return 0;
    dc->saved.push_back(dc->state);
    retain_tools(dc->state);
    return static_cast<std::int32_t>(dc->saved.size());
}

bool RestoreDC(HDC handle, std::int32_t level) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    const auto count = static_cast<std::int64_t>(dc->saved.size());
    const std::int64_t wanted = level < 0 ? count + level + 1 : level;
    if (wanted < 1 || wanted > count) return false;
    while (static_cast<std::int64_t>(dc->saved.size()) >= wanted) {
        release_tools(dc->state);
        dc->state = std::move(dc->saved.back());
        dc->saved.pop_back();
    }
    update_real_clip(*dc);
    return true;
}

HGDIOBJ SelectObject(HDC handle, HGDIOBJ chosen) {
    DeviceContext* dc = find_context(handle);
    GdiObject* object = find_object(chosen);
    if (dc == nullptr || object == nullptr) return HGDIOBJ{};
    switch (object->kind) {
        case ObjectKind::pen:
            return exchange_tool(dc->state.pen, object);
        case ObjectKind::brush:
            return exchange_tool(dc->state.brush, object);
        case ObjectKind::font:
            return exchange_tool(dc->state.font, object);
        case ObjectKind::bitmap:
            return exchange_bitmap(*dc, object);
    }
    return HGDIOBJ{};
}

std::int32_t GetDeviceCaps(HDC handle, std::int32_t which) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return 0;
    switch (which) {
        case LOGPIXELSX:
        case LOGPIXELSY:
            return 96;
        case BITSPIXEL:
            return 32;
        case NUMCOLORS:
            return -1;  // more than a palette holds
        case HORZRES:
            return static_cast<std::int32_t>(std::lround(dc->surface.width / dc->surface.scale));
        case VERTRES:
            return static_cast<std::int32_t>(std::lround(dc->surface.height / dc->surface.scale));
        default:
            return 0;
    }
}

COLORREF GetNearestColor(HDC dc, COLORREF colour) {
    return find_context(dc) == nullptr ? CLR_INVALID : colour & 0xFFFFFF;
}

COLORREF SetTextColor(HDC handle, COLORREF colour) {
    DeviceContext* dc = find_context(handle);
    return dc == nullptr ? CLR_INVALID : std::exchange(dc->state.text_colour, colour & 0xFFFFFF);
}

COLORREF SetBkColor(HDC handle, COLORREF colour) {
    DeviceContext* dc = find_context(handle);
    return dc == nullptr ? CLR_INVALID : std::exchange(dc->state.back_colour, colour & 0xFFFFFF);
}

COLORREF GetTextColor(HDC handle) {
    const DeviceContext* dc = find_context(handle);
    return dc == nullptr ? CLR_INVALID : dc->state.text_colour;
}

COLORREF GetBkColor(HDC handle) {
    const DeviceContext* dc = find_context(handle);
    return dc == nullptr ? CLR_INVALID : dc->state.back_colour;
}

std::int32_t SetBkMode(HDC handle, std::int32_t mode) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || (mode != TRANSPARENT && mode != OPAQUE)) return 0;
    return std::exchange(dc->state.back_mode, mode);
}

std::uint32_t SetTextAlign(HDC handle, std::uint32_t align) {
    DeviceContext* dc = find_context(handle);
    return dc == nullptr ? 0xFFFFFFFFu : std::exchange(dc->state.align, align);
}

std::int32_t SetROP2(HDC handle, std::int32_t code) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr || code < 1 || code > 16) return 0;
    return std::exchange(dc->state.rop2, code);
}

bool SetWindowOrg(HDC handle, POINT origin) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return false;
    dc->state.window_org = {tame(origin.x), tame(origin.y)};
    return true;
}

std::int32_t ExcludeClipRect(HDC handle, const RECT& rect) {
    exclude_clip_rects(handle, {&rect, 1});
    const DeviceContext* dc = find_context(handle);
    return dc == nullptr ? ERROR_REGION : complexity(dc->state.clip);
}

// A hole touches few of the pieces: those are taken out, and what is left of them goes to the end.
void exclude_clip_rects(HDC handle, std::span<const RECT> rects) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return;
    std::vector<RECT>& clip = dc->state.clip;
    std::vector<RECT> left;
    for (const RECT& rect : rects) {
        const RECT hole = on_surface(*dc, rect);
        if (hole.empty()) continue;
        left.clear();
        std::erase_if(clip, [&](const RECT& r) {
            if (!overlap(r, hole)) return false;
            subtract(r, hole, [&](const RECT& piece) { left.push_back(piece); });
            return true;
        });
        clip.insert(clip.end(), left.begin(), left.end());
    }
    update_real_clip(*dc);
}

std::int32_t IntersectClipRect(HDC handle, const RECT& rect) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return ERROR_REGION;
    const RECT bounds = on_surface(*dc, rect);
    for (RECT& r : dc->state.clip) r = intersection(r, bounds);
    std::erase_if(dc->state.clip, [](const RECT& r) { return r.empty(); });
    update_real_clip(*dc);
    return complexity(dc->state.clip);
}

std::int32_t GetClipBox(HDC handle, RECT& box) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return ERROR_REGION;
    box = bounds_of(dc->state.clip);
    if (!dc->state.clip.empty()) {
        const POINT shift{dc->state.window_org.x - dc->origin.x,
                          dc->state.window_org.y - dc->origin.y};
        box = {box.left + shift.x, box.top + shift.y, box.right + shift.x, box.bottom + shift.y};
    }
    return complexity(dc->state.clip);
}

bool RectVisible(HDC handle, const RECT& rect) {
    const DeviceContext* dc = find_context(handle);
    if (dc == nullptr || rect.empty()) return false;
    const RECT wanted = on_surface(*dc, rect);
    return std::any_of(dc->state.clip.begin(), dc->state.clip.end(),
                       [&](const RECT& r) { return overlap(r, wanted); });
}

}  // namespace tarn::platform
