// Top-level windows and the display: opening, surfaces, presenting.
#include "platform/gdi/paint.h"
#include "platform/user/state.h"

namespace tarn::platform {

void (*window_settled)(HWND top_level) = nullptr;
void (*window_going)(HWND top_level) = nullptr;

namespace {

// Not managed: what drops down from a window and never has the focus.
bool is_popup(const Window& top) {
    if ((top.style & WS_CAPTION) == WS_CAPTION) return false;
    return (top.ex_style & (WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW)) != 0;
}

bool any_accepts_files(const Window& window) {
    if (window.accepts_files) return true;
    for (const Window* c = window.first_child; c != nullptr; c = c->below)
        if (any_accepts_files(*c)) return true;
    return false;
}

TopLevelOptions options_of(Window& top) {
    TopLevelOptions o;
    const bool framed = manager_frames(top);
    if (is_popup(top))
        o.role = Role::popup;
    else if ((top.ex_style & WS_EX_TOOLWINDOW) != 0)
        o.role = Role::utility;
    else if (top.owner != nullptr)
        o.role = Role::dialog;
    o.owner = top.owner != nullptr && top.owner->top->opened ? display_id(*top.owner) : 0;
    o.client = surface_rect(top);
    o.position_given = top.top->placed || o.role == Role::popup;
    o.framed = framed;
    o.resizable = (top.style & WS_THICKFRAME) != 0;
    o.minimizable = (top.style & WS_MINIMIZEBOX) != 0;
    o.maximizable = (top.style & WS_MAXIMIZEBOX) != 0;
    o.closable = (top.style & WS_SYSMENU) != 0;
    o.topmost = (top.ex_style & WS_EX_TOPMOST) != 0;
    o.accepts_focus = (top.ex_style & WS_EX_NOACTIVATE) == 0;
    o.accepts_files = any_accepts_files(top);
    limit_surface_size(top, o.minimum, o.maximum);
    o.title = top.title;
    o.class_name = top.cls->name;
    return o;
}

void send_icon(Window& top) {
    SIZE size;
    const HICON icon = top.top->icon;
    if (icon == HICON{} || !GetIconSize(icon, size) || size.cx <= 0 || size.cy <= 0) return;
    // Drawn at its own size on a surface of its own. Two backgrounds tell its opacity.
    const auto count = static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy);
    std::vector<std::uint32_t> pixels[2];
    for (int i = 0; i < 2; ++i) {
        pixels[i].assign(count, i == 0 ? 0xFF000000u : 0xFFFFFFFFu);
        Surface surface{pixels[i].data(), size.cx, size.cy, size.cx, 1.0};
        const RECT all{0, 0, size.cx, size.cy};
        const HDC dc = create_surface_dc(surface, {}, {&all, 1});
        DrawIconEx(dc, 0, 0, icon, size.cx, size.cy);
        DeleteDC(dc);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t black = pixels[0][i];
        const std::uint32_t white = pixels[1][i];
        const std::uint32_t opacity = 255 - ((white & 0xFF) - (black & 0xFF));
        std::uint32_t out = opacity << 24;
        for (int shift = 0; shift < 24 && opacity != 0; shift += 8) {
            const std::uint32_t level = (black >> shift & 0xFF) * 255 / opacity;
            out |= std::min(level, 255u) << shift;
        }
        pixels[0][i] = out;
    }
    display().set_icon(display_id(top), size.cx, size.cy, pixels[0].data());
}

}  // namespace

// The smallest and the largest size that the window wants, without what the manager adds; 0 where
// it doesn't care.
void limit_surface_size(Window& top, SIZE& least, SIZE& most) {
    MINMAXINFO info{};
    const Insets hidden = hidden_frame(top);
    if ((top.style & WS_THICKFRAME) == 0) return;
    Pinned w(&top);
    const POINT usual{GetSystemMetrics(SM_CXMAXTRACK), GetSystemMetrics(SM_CYMAXTRACK)};
    info.ptMaxTrackSize = info.ptMaxSize = usual;
    call(*w, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
    const POINT frame{hidden.left + hidden.right, hidden.top + hidden.bottom};
    least = {std::max(info.ptMinTrackSize.x - frame.x, 0),
             std::max(info.ptMinTrackSize.y - frame.y, 0)};
    // No more than the screen: nothing was asked for.
    if (info.ptMaxTrackSize.x < usual.x)
        most.cx = std::max({info.ptMaxTrackSize.x - frame.x, least.cx, 1});
    if (info.ptMaxTrackSize.y < usual.y)
        most.cy = std::max({info.ptMaxTrackSize.y - frame.y, least.cy, 1});
}

void open_top(Window& top) {
    if (top.top->opened) return;
    if (top.owner != nullptr && !top.owner->top->opened && !top.owner->dying) open_top(*top.owner);
    display();
    set_default_scale(display().scale());
    Pinned w(&top);
    const TopLevelOptions options = options_of(top);
    if (!w.alive() || top.top->opened) return;
    top.top->opened = display().open(display_id(top), options);
    if (!top.top->opened) return;
    if (top.top->state != WindowState::normal) display().set_state(display_id(top), top.top->state);
    send_icon(top);
}

void close_top(Window& top) {
    Top& t = *top.top;
    if (!t.damage.empty()) {
        t.damage.clear();
        --state().damaged;
    }
    if (!t.opened) return;
    t.opened = t.shown = false;
    t.surface = {};
    surface_changed(top);
    display().close(display_id(top));
}

void options_changed(Window& top) {
    if (!top.top || !top.top->opened) return;
    Pinned w(&top);
    const TopLevelOptions options = options_of(top);
    if (w.alive() && top.top->opened) display().set_options(display_id(top), options);
}

// The surface gets the size of the window; its picture is lost.
void fit_surface(Window& top) {
    Top& t = *top.top;
    if (!t.opened || !t.shown) return;
    const RECT area = surface_rect(top);
    const double scale = display().scale();
    const Surface measure{nullptr, 0, 0, 0, scale};
    const std::int32_t width = std::max(measure.to_real(area.width()), 1);
    const std::int32_t height = std::max(measure.to_real(area.height()), 1);
    const bool same = t.surface.pixels != nullptr && t.surface.width == width &&
                      t.surface.height == height && t.surface.scale == scale;
    if (!same) {
        t.surface = display().surface(display_id(top), width, height);
        t.surface.scale = scale;
        surface_changed(top);
    }
    invalidate_all(top);
}

// ---- Presenting --------------------------------------------------------------------------------
void add_damage(Window& top, const RECT& surface) {
    Top& t = *top.top;
    if (!t.shown || surface.empty()) return;
    if (t.damage.empty()) ++state().damaged;
    t.damage.include(surface);
}

bool anything_to_present() {
    return state().damaged > 0;
}

namespace {

void present(Window& top) {
    Top& t = *top.top;
    std::vector<RECT> real;
    const Surface& s = t.surface;
    // A stroke may touch the pixel beside its edge when the scale is no whole number.
    const std::int32_t slack = s.scale == static_cast<std::int32_t>(s.scale) ? 0 : 1;
    const RECT all{0, 0, s.width, s.height};
    for (const RECT& r : t.damage.rects()) {
        const RECT pixels = intersection({s.to_real(r.left) - slack, s.to_real(r.top) - slack,
                                          s.to_real(r.right) + slack, s.to_real(r.bottom) + slack},
                                         all);
        if (!pixels.empty()) real.push_back(pixels);
    }
    t.damage.clear();
    --state().damaged;
    if (s.pixels == nullptr || real.empty()) return;
    CaretOverlay overlay;
    caret_presented(top, overlay);
    display().present(display_id(top), real, overlay);
}

}  // namespace

void present_all() {
    if (!anything_to_present()) return;
    Queue& q = state().queue;
    // What was painted before it in this frame is part of its price.
    if (q.frame_start <= q.last_frame) q.frame_start = clock_us();
    // Contexts that a program keeps may have been drawn on at any time.
    for (Context& c : state().contexts) {
        Window* const window = c.in_use && !c.painting ? find(c.hwnd) : nullptr;
        if (window == nullptr) continue;
        for (const RECT& r : c.clip.rects()) add_damage(top_of(*window), r);
    }
    for (Window* w = top_levels(); w != nullptr; w = w->below)
        if (!w->top->damage.empty()) present(*w);
    display().flush();
    q.in_frame = false;
    frame_done();
}

bool window_surface_rect(HWND top_level, RECT& screen) {
    const Window* const window = find(top_level);
    if (window == nullptr || !window->top) return false;
    screen = surface_rect(*window);
    return true;
}

const Surface* window_surface(HWND top_level) {
    Pinned window(top_level);
    if (!window || !window->top || window->top->surface.pixels == nullptr) return nullptr;
    paint_tree(*window);
    return window.alive() && window->top->surface.pixels != nullptr ? &window->top->surface
                                                                    : nullptr;
}

}  // namespace tarn::platform
