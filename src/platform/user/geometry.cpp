// Where windows and their parts are, and the constant metrics.
#include <algorithm>
#include <cstdlib>

#include "platform/display/pixel_store.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

// One table of metrics, in logical pixels at 96 dpi, whatever the display and its scale.
constexpr std::int32_t caption_height = 30;
constexpr std::int32_t frame_width = 4;  // sizable
constexpr std::int32_t border = 1;
constexpr std::int32_t edge = 2;
constexpr std::int32_t menu_height = 24;
constexpr std::int32_t bar_width = 16;
constexpr std::int32_t track_margin = 12;  // a maximised frame may stand out by this
struct Metric {
    std::int32_t which, value;
};
constexpr Metric metrics[] = {
    {SM_CXVSCROLL, bar_width}, {SM_CYHSCROLL, bar_width}, {SM_CYCAPTION, caption_height},
    {SM_CXBORDER, border},     {SM_CYBORDER, border},     {SM_CXDLGFRAME, 3},
    {SM_CYDLGFRAME, 3},        {SM_CXICON, 32},           {SM_CYICON, 32},
    {SM_CXCURSOR, 32},         {SM_CYCURSOR, 32},         {SM_CYMENU, menu_height},
    {SM_CXFRAME, frame_width}, {SM_CYFRAME, frame_width}, {SM_CXDOUBLECLK, 4},
    {SM_CYDOUBLECLK, 4},       {SM_CXEDGE, edge},         {SM_CYEDGE, edge},
    {SM_CXSMICON, 16},         {SM_CYSMICON, 16},
};

bool full_caption(const Window& window) {
    return (window.style & WS_CAPTION) == WS_CAPTION;
}

RECT inset(const RECT& r, std::int32_t by) {
    return {r.left + by, r.top + by, r.right - by, r.bottom - by};
}

}  // namespace

std::int32_t GetSystemMetrics(std::int32_t which) {
    for (const Metric& m : metrics)
        if (m.which == which) return m.value;
    Display& d = display();
    const SIZE screen = d.screen_size();
    const RECT desktop = bounds_of(d.monitors());
    switch (which) {
        case SM_CXSCREEN:
            return screen.cx;
        case SM_CYSCREEN:
            return screen.cy;
        case SM_CXMAXTRACK:
            return desktop.width() + track_margin;
        case SM_CYMAXTRACK:
            return desktop.height() + track_margin;
        case SM_CXFULLSCREEN:
            return d.work_area({}).width();
        case SM_CYFULLSCREEN:
            return d.work_area({}).height() - caption_height;
        default:
            return 0;
    }
}

std::uint32_t GetDialogBaseUnits() {
    return 8 | 16u << 16;
}

std::int32_t wheel_scroll_lines() {
    return 3;
}

// ---- Frames ------------------------------------------------------------------------------------
// A window with a caption that is no child is framed by the window manager. Its outer rectangle
// counts a caption and a border of constant size, which nobody draws: programs work out window
// sizes from the metrics and get the client area that they wanted, whatever the manager's frame.
bool manager_frames(const Window& window) {
    return !window.is_child() && full_caption(window);
}

bool has_caption_of_ours(const Window& window) {
    return window.is_child() && full_caption(window);
}

Insets hidden_frame(const Window& window) {
    if (!manager_frames(window)) return {};
    const std::int32_t width = (window.style & WS_THICKFRAME) != 0 ? frame_width : border;
    return {width, width + caption_height, width, width};
}

std::int32_t border_width(const Window& window) {
    if (manager_frames(window)) return 0;
    if ((window.style & WS_THICKFRAME) != 0) return frame_width;
    if ((window.style & WS_CAPTION) != 0) return border;
    if ((window.ex_style & WS_EX_CLIENTEDGE) != 0) return edge;
    return (window.ex_style & WS_EX_STATICEDGE) != 0 ? border : 0;
}

RECT frame_client(const Window& window, SIZE outer) {
    const Insets hidden = hidden_frame(window);
    RECT r{hidden.left, hidden.top, outer.cx - hidden.right, outer.cy - hidden.bottom};
    r = inset(r, border_width(window));
    if (has_caption_of_ours(window)) r.top += caption_height;
    if (!window.is_child() && window.menu != HMENU{}) {
        const auto measure = menu_hooks().bar_height;
        r.top += measure != nullptr ? measure(window.handle, window.menu, std::max(r.width(), 0))
                                    : menu_height;
    }
    // A bar that leaves no room is left out.
    if ((window.style & WS_VSCROLL) != 0 && r.width() >= bar_width) r.right -= bar_width;
    if ((window.style & WS_HSCROLL) != 0 && r.height() > bar_width) r.bottom -= bar_width;
    r.right = std::max(r.left, r.right);
    r.bottom = std::max(r.top, r.bottom);
    return r;
}

void update_client(Window& window) {
    Pinned w(&window);
    RECT client{0, 0, w->rect.width(), w->rect.height()};
    call(*w, WM_NCCALCSIZE, 0, reinterpret_cast<LPARAM>(&client));
    if (w.alive()) w->client = client;
}

RECT menu_bar_rect(const Window& window) {
    if (window.is_child() || window.menu == HMENU{}) return {};
    const Insets hidden = hidden_frame(window);
    const std::int32_t b = border_width(window);
    return {hidden.left + b, hidden.top + b, window.rect.width() - hidden.right - b,
            window.client.top};
}

RECT window_bar_rect(const Window& window, std::int32_t bar) {
    const RECT& c = window.client;
    const std::int32_t b = border_width(window);
    const Insets hidden = hidden_frame(window);
    if (bar == SB_VERT) {
        const std::int32_t room = window.rect.width() - hidden.right - b - c.right;
        if ((window.style & WS_VSCROLL) == 0 || room < bar_width) return {};
        return {c.right, c.top, c.right + bar_width, c.bottom};
    }
    const std::int32_t room = window.rect.height() - hidden.bottom - b - c.bottom;
    if ((window.style & WS_HSCROLL) == 0 || room < bar_width) return {};
    return {c.left, c.bottom, c.right, c.bottom + bar_width};
}

// The 16 bits of a message's coordinates bound what a program can use; a top-level also needs a
// surface, or it would never be painted.
std::int32_t longest_side(bool child) {
    if (child) return 0x7FFF;
    return static_cast<std::int32_t>(largest_side / std::max(display().scale(), 1.0));
}

// ---- Coordinates -------------------------------------------------------------------------------
RECT surface_rect(const Window& top) {
    const Insets hidden = hidden_frame(top);
    RECT r{top.rect.left + hidden.left, top.rect.top + hidden.top, top.rect.right - hidden.right,
           top.rect.bottom - hidden.bottom};
    r.right = std::max(r.right, r.left + 1);
    r.bottom = std::max(r.bottom, r.top + 1);
    return r;
}

POINT client_origin_on_screen(const Window& window) {
    POINT at{};
    for (const Window* w = &window; w != nullptr; w = w->parent) {
        at.x += w->rect.left + w->client.left;
        at.y += w->rect.top + w->client.top;
    }
    return at;
}

POINT client_origin_on_surface(const Window& window) {
    POINT at{};
    const Window* w = &window;
    for (; w->parent != nullptr; w = w->parent) {
        at.x += w->rect.left + w->client.left;
        at.y += w->rect.top + w->client.top;
    }
    const Insets hidden = hidden_frame(*w);
    return {at.x + w->client.left - hidden.left, at.y + w->client.top - hidden.top};
}

bool GetWindowRect(HWND hwnd, RECT& rect) {
    rect = {};
    const Window* const window = find(hwnd);
    if (window == nullptr) return false;
    rect = window->rect;
    if (window->parent != nullptr) {
        const POINT origin = client_origin_on_screen(*window->parent);
        rect = moved(rect, origin.x, origin.y);
    }
    return true;
}

bool GetClientRect(HWND hwnd, RECT& rect) {
    rect = {};
    const Window* const window = find(hwnd);
    if (window == nullptr) return false;
    rect = {0, 0, window->client.width(), window->client.height()};
    return true;
}

std::int32_t MapWindowPoints(HWND from, HWND to, POINT* points, std::int32_t count) {
    const Window* const source = find(from);
    const Window* const target = find(to);
    if ((from != HWND{} && source == nullptr) || (to != HWND{} && target == nullptr)) return 0;
    const POINT a = source != nullptr ? client_origin_on_screen(*source) : POINT{};
    const POINT b = target != nullptr ? client_origin_on_screen(*target) : POINT{};
    for (std::int32_t i = 0; i < count; ++i) {
        points[i].x += a.x - b.x;
        points[i].y += a.y - b.y;
    }
    return static_cast<std::int32_t>(MAKELPARAM(a.x - b.x, a.y - b.y));
}

bool ClientToScreen(HWND hwnd, POINT& point) {
    if (find(hwnd) == nullptr) return false;
    MapWindowPoints(hwnd, HWND{}, &point, 1);
    return true;
}

bool ScreenToClient(HWND hwnd, POINT& point) {
    if (find(hwnd) == nullptr) return false;
    MapWindowPoints(HWND{}, hwnd, &point, 1);
    return true;
}

HWND ChildWindowFromPoint(HWND parent, POINT client) {
    const Window* const window = find(parent);
    if (window == nullptr) return {};
    for (const Window* w = window->first_child; w != nullptr; w = w->below)
        if ((w->style & WS_VISIBLE) != 0 && w->rect.contains(client)) return w->handle;
    const RECT all{0, 0, window->client.width(), window->client.height()};
    return all.contains(client) ? parent : HWND{};
}

HWND WindowFromPoint(POINT screen) {
    for (const Window* w = top_levels(); w != nullptr; w = w->below) {
        if ((w->style & (WS_VISIBLE | WS_MINIMIZE)) != WS_VISIBLE || !w->rect.contains(screen))
            continue;
        const Window* at = w;
        for (const Window* inner = w; inner != nullptr;) {
            at = inner;
            const POINT origin = client_origin_on_screen(*at);
            const POINT p{screen.x - origin.x, screen.y - origin.y};
            const RECT area{0, 0, at->client.width(), at->client.height()};
            inner = nullptr;
            if (!area.contains(p)) break;
            for (const Window* c = at->first_child; c != nullptr; c = c->below) {
                if ((c->style & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE && c->rect.contains(p)) {
                    inner = c;
                    break;
                }
            }
        }
        return at->handle;
    }
    return {};
}

LRESULT hit_frame(const Window& window, POINT screen) {
    const POINT origin = client_origin_on_screen(window);
    const POINT at{screen.x - origin.x + window.client.left,
                   screen.y - origin.y + window.client.top};
    if (window.client.contains(at)) return HTCLIENT;
    if (window_bar_rect(window, SB_VERT).contains(at)) return HTVSCROLL;
    if (window_bar_rect(window, SB_HORZ).contains(at)) return HTHSCROLL;
    if (menu_bar_rect(window).contains(at)) return HTMENU;
    if (const LRESULT own = hit_own_frame(window, at); own != HTNOWHERE) return own;
    const RECT outer{0, 0, window.rect.width(), window.rect.height()};
    return outer.contains(at) ? HTBORDER : HTNOWHERE;
}

}  // namespace tarn::platform
