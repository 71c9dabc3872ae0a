// What must be painted, and device contexts to paint with.
#include "platform/gdi/paint.h"

#include "platform/gdi/theme.h"
#include "platform/user/state.h"

namespace tarn::platform {

// ---- Marks -------------------------------------------------------------------------------------
// A window with something to paint is counted at itself and all its ancestors, so that the next
// one is found by walking down.
namespace {

void mark_dirty(Window& window) {
    if (window.dirty) return;
    window.dirty = true;
    if (state().queue.paint_depth == 0) state().queue.fresh_marks = true;
    ++state().dirty_windows;
    ++state().marks;
    for (Window* w = &window; w != nullptr; w = w->parent) ++w->dirty_below;
}

void clear_dirty(Window& window) {
    if (!window.dirty) return;
    window.dirty = false;
    --state().dirty_windows;
    for (Window* w = &window; w != nullptr; w = w->parent) --w->dirty_below;
}

RECT client_area(const Window& window) {
    return {0, 0, window.client.width(), window.client.height()};
}

// What of a window's own client area its ancestors show.
RECT shown_area(const Window& window) {
    RECT area = client_area(window);
    std::int32_t dx = 0;
    std::int32_t dy = 0;
    for (const Window* w = &window; w->parent != nullptr; w = w->parent) {
        dx += w->rect.left + w->client.left;
        dy += w->rect.top + w->client.top;
        area = intersection(area, moved(client_area(*w->parent), -dx, -dy));
    }
    return area;
}

// Marks a window that can be painted; `area` is already known to be visible.
void mark(Window& window, const RECT& area, bool erase, bool with_children) {
    const RECT part = intersection(area, client_area(window));
    if (!part.empty()) {
        window.update.include(part);
        window.erase = window.erase || erase;
        mark_dirty(window);
    }
    if (!with_children) return;
    for (Window* c = window.first_child; c != nullptr; c = c->below) {
        if (!c->shows() || !overlap(c->rect, part)) continue;
        // The frame is painted whole when any of it is touched.
        const RECT inner = moved(c->client, c->rect.left, c->rect.top);
        if (!covers(inner, part)) {
            c->frame_dirty = true;
            mark_dirty(*c);
        }
        mark(*c, moved(part, -inner.left, -inner.top), true, true);
    }
}

void clear_update(Window& window) {
    window.update.clear();
    window.erase = false;
    if (!window.frame_dirty) clear_dirty(window);
}

}  // namespace

bool anything_dirty() {
    return state().dirty_windows > 0;
}

void invalidate(Window& window, const RECT& client, bool erase) {
    if (!can_paint(window)) return;
    const RECT area = intersection(client, shown_area(window));
    if (!area.empty()) mark(window, area, erase, (window.style & WS_CLIPCHILDREN) == 0);
}

void invalidate_frame(Window& window) {
    if (!can_paint(window)) return;
    window.frame_dirty = true;
    mark_dirty(window);
}

void invalidate_all(Window& window) {
    if (!can_paint(window)) return;
    invalidate_frame(window);
    const RECT area = shown_area(window);
    if (!area.empty()) mark(window, area, true, true);
}

void expose_parent(Window& window, const RECT& outer) {
    Window* const parent = window.parent;
    if (parent == nullptr || !can_paint(*parent)) return;
    const RECT area = intersection(outer, shown_area(*parent));
    if (!area.empty()) mark(*parent, area, true, true);
}

void forget_updates(Window& window) {
    window.update.clear();
    window.erase = window.frame_dirty = false;
    clear_dirty(window);
    if (window.dirty_below == 0) return;
    for (Window* c = window.first_child; c != nullptr; c = c->below) forget_updates(*c);
}

// Parents before children, and of overlapping brothers the lower one first.
namespace {

// The lowest marked child. Children are mostly painted from the lowest to the topmost one, so that
// the search goes on where it ended, unless that is not of this parent or something below it was
// marked since.
Window* dirty_child(Window& parent) {
    PaintSearch& search = state().paint_search;
    Window* const last = find(search.found);
    const bool goes_on =
        last != nullptr && last->parent == &parent && search.marks == state().marks;
    Window* c = goes_on ? last : parent.last_child;
    while (c != nullptr && c->dirty_below == 0) c = c->above;
    if (c == nullptr && goes_on) {  // its place among its brothers has changed
        c = parent.last_child;
        while (c != nullptr && c->dirty_below == 0) c = c->above;
    }
    if (c != nullptr) search = {c->handle, state().marks};
    return c;
}

Window* dirty_in(Window* window) {
    while (window != nullptr && window->dirty_below > 0) {
        if (window->dirty) return window;
        window = dirty_child(*window);
    }
    return nullptr;
}

}  // namespace

Window* next_to_paint() {
    for (Window* top = top_levels(); top != nullptr; top = top->below)
        if (Window* const window = dirty_in(top)) return window;
    return nullptr;
}

// ---- Contexts ----------------------------------------------------------------------------------
namespace {

// Surface coordinates of what a window may draw on: within its ancestors, without its children
// where it clips them, and without what lies over it where it or an ancestor clips its brothers.
Region visible_region(const Window& window, bool whole) {
    const RECT outer{-window.client.left, -window.client.top,
                     window.rect.width() - window.client.left,
                     window.rect.height() - window.client.top};
    Region region(whole ? outer : client_area(window));
    POINT at{};  // of the point (0, 0) of `w`'s client area, in the window's coordinates
    if ((window.style & WS_CLIPCHILDREN) != 0) {
        for (const Window* c = window.first_child; c != nullptr; c = c->below)
            if ((c->style & WS_VISIBLE) != 0 && (c->ex_style & WS_EX_TRANSPARENT) == 0)
                region.subtract(c->rect);
    }
    for (const Window* w = &window; w->parent != nullptr; w = w->parent) {
        at.x -= w->rect.left + w->client.left;
        at.y -= w->rect.top + w->client.top;
        region.intersect(moved(client_area(*w->parent), at.x, at.y));
        if (region.empty()) break;
        if ((w->style & WS_CLIPSIBLINGS) == 0 || !has_something_over(*w)) continue;
        for (const Window* over = w->above; over != nullptr; over = over->above) {
            if ((over->style & WS_VISIBLE) == 0 || !overlap(over->rect, w->rect)) continue;
            if ((over->ex_style & WS_EX_TRANSPARENT) != 0) continue;
            region.subtract(moved(over->rect, at.x, at.y));
        }
    }
    const POINT origin = client_origin_on_surface(window);
    region.move(origin.x, origin.y);
    return region;
}

Surface& no_surface() {
    static std::uint32_t pixel;
    static Surface surface;
    surface = {&pixel, 1, 1, 1, default_scale()};
    return surface;
}

Surface& surface_for(Window& top) {
    return top.top->surface.pixels != nullptr ? top.top->surface : no_surface();
}

void aim(Context& c, Window& window) {
    Window& top = top_of(window);
    POINT origin = client_origin_on_surface(window);
    if (c.whole) {
        origin.x -= window.client.left;
        origin.y -= window.client.top;
    }
    if (top.top->surface.pixels == nullptr) c.clip.clear();
    Surface& surface = surface_for(top);
    if (c.dc == HDC{})
        c.dc = create_surface_dc(surface, origin, c.clip.rects());
    else
        reset_surface_dc(c.dc, surface, origin, c.clip.rects());
}

HDC give_context(Window& window, Region&& clip, bool painting, bool whole) {
    auto& contexts = state().contexts;
    Context* free = nullptr;
    for (Context& c : contexts)
        if (!c.in_use) free = &c;
    if (free == nullptr) free = &contexts.emplace_back();
    free->hwnd = window.handle;
    free->in_use = true;
    free->painting = painting;
    free->whole = whole;
    free->clip = std::move(clip);
    aim(*free, window);
    return free->dc;
}

Context* context_of(HDC dc) {
    for (Context& c : state().contexts)
        if (c.in_use && c.dc == dc) return &c;
    return nullptr;
}

// What was drawn will be presented. Contexts are kept for the next one who asks.
void take_back(Context& c) {
    if (Window* const window = find(c.hwnd))
        for (const RECT& r : c.clip.rects()) add_damage(top_of(*window), r);
    c.in_use = false;
    c.clip.clear();
    reset_surface_dc(c.dc, no_surface(), {}, {});
}

}  // namespace

void release_contexts(Window& window) {
    for (Context& c : state().contexts)
        if (c.in_use && c.hwnd == window.handle) take_back(c);
}

void surface_changed(Window& top) {
    for (Context& c : state().contexts) {
        Window* const window = c.in_use ? find(c.hwnd) : nullptr;
        if (window == nullptr || &top_of(*window) != &top) continue;
        c.clip = visible_region(*window, c.whole);
        aim(c, *window);
    }
}

HDC GetDC(HWND hwnd) {
    Window* const window = find(hwnd);
    if (window == nullptr) {
        if (hwnd != HWND{}) return {};
        set_default_scale(display().scale());
        return CreateCompatibleDC(HDC{});
    }
    Region clip;
    if (can_paint(*window)) clip = visible_region(*window, false);
    return give_context(*window, std::move(clip), false, false);
}

HDC GetWindowDC(HWND hwnd) {
    Window* const window = find(hwnd);
    if (window == nullptr) return GetDC(hwnd);
    Region clip;
    if (can_paint(*window)) clip = visible_region(*window, true);
    return give_context(*window, std::move(clip), false, true);
}

HDC frame_context(Window& window) {
    Region clip;
    if (can_paint(window)) {
        clip = visible_region(window, true);
        const POINT origin = client_origin_on_surface(window);
        clip.subtract({origin.x, origin.y, origin.x + window.client.width(),
                       origin.y + window.client.height()});
    }
    return give_context(window, std::move(clip), false, true);
}

std::int32_t ReleaseDC(HWND, HDC dc) {
    if (Context* const c = context_of(dc)) {
        if (c->painting) return 0;
        take_back(*c);
        return 1;
    }
    return DeleteDC(dc) ? 1 : 0;  // one for measuring
}

// ---- WM_PAINT ----------------------------------------------------------------------------------
void paint_frame_if_marked(Window& window) {
    if (!window.frame_dirty) return;
    Pinned w(&window);
    w->frame_dirty = false;
    if (w->update.empty()) clear_dirty(*w);
    call(*w, WM_NCPAINT, 1, 0);
}

HDC BeginPaint(HWND hwnd, PAINTSTRUCT& paint) {
    paint = {};
    Pinned window(hwnd);
    if (!window) return {};
    window->paint_taken = true;
    paint_frame_if_marked(*window);
    if (!window.alive()) return {};
    const bool erase = window->erase;
    Region clip = visible_region(*window, false);
    Region update = std::move(window->update);
    clear_update(*window);
    paint.rcPaint = update.bounds();
    const POINT origin = client_origin_on_surface(*window);
    update.move(origin.x, origin.y);
    clip.intersect(update);
    paint.hdc = give_context(*window, std::move(clip), true, false);
    if (erase) paint.fErase = call(*window, WM_ERASEBKGND, static_cast<WPARAM>(paint.hdc), 0) == 0;
    return paint.hdc;
}

bool EndPaint(HWND, const PAINTSTRUCT& paint) {
    Context* const c = context_of(paint.hdc);
    if (c == nullptr) return false;
    take_back(*c);
    return true;
}

bool InvalidateRect(HWND hwnd, const RECT* rect, bool erase) {
    if (hwnd == HWND{}) {
        for (Window* w = top_levels(); w != nullptr; w = w->below) invalidate_all(*w);
        return true;
    }
    Window* const window = find(hwnd);
    if (window == nullptr) return false;
    invalidate(*window, rect != nullptr ? *rect : client_area(*window), erase);
    return true;
}

bool ValidateRect(HWND hwnd, const RECT* rect) {
    Window* const window = find(hwnd);
    if (window == nullptr) return false;
    window->paint_taken = true;
    if (rect != nullptr) window->update.subtract(*rect);
    if (rect == nullptr || window->update.empty()) clear_update(*window);
    return true;
}

bool GetUpdateRect(HWND hwnd, RECT& rect) {
    const Window* const window = find(hwnd);
    rect = window != nullptr ? window->update.bounds() : RECT{};
    return window != nullptr && !window->update.empty();
}

// A procedure that doesn't take its update region would be asked for ever: it is forgotten.
LRESULT send_paint(Window& window) {
    Pinned w(&window);
    w->paint_taken = false;
    Queue& q = state().queue;
    ++q.paint_depth;
    const LRESULT result = call(*w, WM_PAINT, 0, 0);
    --q.paint_depth;
    if (w.alive() && !w->paint_taken) clear_update(*w);
    return result;
}

namespace {

void paint_one(Window& window) {
    Pinned w(&window);
    paint_frame_if_marked(*w);
    if (w.alive() && !w->update.empty()) send_paint(*w);
}

// The highest of the marked ancestors that paint over the window.
Window* first_to_paint(Window& window) {
    Window* first = &window;
    for (Window* p = window.parent; p != nullptr && (p->style & WS_CLIPCHILDREN) == 0;
         p = p->parent)
        if (p->dirty) first = p;
    return first;
}

}  // namespace

void paint_tree(Window& window) {
    Pinned w(&window);
    // Each at most once here: one that marks itself while it paints comes again a frame later.
    for (Window* p = first_to_paint(*w); p != w.get(); p = first_to_paint(*w)) {
        Pinned parent(p);
        paint_one(*parent);
        if (!w.alive()) return;
        if (parent.alive()) clear_update(*parent);
    }
    for (std::int32_t left = w->dirty_below + 8; left > 0; --left) {
        Window* const next = dirty_in(w.get());
        if (next == nullptr) break;
        paint_one(*next);
        if (!w.alive()) return;
    }
}

bool UpdateWindow(HWND hwnd) {
    Pinned window(hwnd);
    if (!window) return false;
    if (window->dirty_below == 0) return true;
    paint_tree(*window);
    // Somebody who computes after it wants to see it.
    if (anything_to_present() && clock_us() >= state().queue.next_frame) present_all();
    return true;
}

bool RedrawWindow(HWND hwnd) {
    Pinned window(hwnd);
    if (!window) return false;
    invalidate_all(*window);
    return UpdateWindow(hwnd);
}

}  // namespace tarn::platform
