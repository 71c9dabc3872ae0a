// Making and destroying windows.
#include <cstring>

#include "platform/base/text.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

constexpr SIZE default_size{800, 600};
constexpr std::size_t longest_title = 1 << 20;

struct Wanted {
    DWORD ex_style, style;
    std::int32_t x, y, width, height;
    HWND parent;
    HMENU menu;
    void* parameter;
    std::string title;       // UTF-8
    const char* title_sent;  // what WM_CREATE tells: as it came, or UTF-8
    const char* class_name;
};

// The styles that the platform adds by itself.
DWORD completed_style(DWORD style) {
    if ((style & (WS_CHILD | WS_POPUP)) == 0) style |= WS_CAPTION | WS_CLIPSIBLINGS;
    if ((style & WS_CHILD) == 0) style |= WS_CLIPSIBLINGS;
    return style;
}

RECT wanted_rect(const Wanted& w, bool child, bool& placed) {
    RECT r{w.x, w.y, 0, 0};
    placed = w.x != CW_USEDEFAULT;
    if (!placed)
        r.left = r.top = 0;
    else if (w.y == CW_USEDEFAULT)
        r.top = 0;
    std::int32_t width = w.width;
    std::int32_t height = w.height;
    if (width == CW_USEDEFAULT) {
        width = child ? 0 : default_size.cx;
        height = child ? 0 : default_size.cy;
    }
    r.left = std::clamp(r.left, -0x7FFF, 0x7FFF);
    r.top = std::clamp(r.top, -0x7FFF, 0x7FFF);
    r.right = r.left + std::clamp(width, 0, longest_side(child));
    r.bottom = r.top + std::clamp(height, 0, longest_side(child));
    return r;
}

// Takes a window that wasn't finished, or is being destroyed, out of everything.
void remove_record(Window& window) {
    forget_updates(window);
    release_contexts(window);
    forget_window(window);
    if (window.has_timers) stop_timers_of(window.handle);
    if (window.top) {
        close_top(window);
        leave_creation_order(window);
    }
    unlink_child(window);
    bury(window);
}

// Null: the class is unknown, the parent is gone, or there are too many windows.
Window* make_record(const Wanted& w) {
    WindowClass* const cls = w.class_name != nullptr ? find_class(w.class_name) : nullptr;
    const bool child = (w.style & WS_CHILD) != 0;
    Window* const parent = find(w.parent);
    if (cls == nullptr || (w.parent != HWND{} && parent == nullptr) || (child && parent == nullptr))
        return nullptr;
    if (parent != nullptr && (parent->dying || top_of(*parent).dying)) return nullptr;
    Window* const window = new_window();
    if (window == nullptr) return nullptr;
    window->cls = cls;
    ++cls->windows;
    window->procedure = cls->procedure;
    window->style = completed_style(w.style) & ~WS_VISIBLE;
    window->ex_style = w.ex_style;
    window->title = w.title;
    if (cls->window_extra > 0)
        window->extra =
            std::make_unique<unsigned char[]>(static_cast<std::size_t>(cls->window_extra));
    bool placed = false;
    window->rect = wanted_rect(w, child, placed);
    if (child) {
        window->id = static_cast<std::int32_t>(w.menu);
        link_child(*window, parent, nullptr, true);
    } else {
        window->owner = parent != nullptr ? &top_of(*parent) : nullptr;
        window->menu = w.menu;
        window->top = std::make_unique<Top>();
        window->top->placed = placed;
        window->top->icon = cls->icon;
        link_child(*window, nullptr, nullptr, false);
        join_creation_order(*window);
    }
    window->client = frame_client(*window, {window->rect.width(), window->rect.height()});
    return window;
}

HWND create(const Wanted& w) {
    Pinned window(make_record(w));
    if (!window) return {};
    const HWND hwnd = window->handle;
    const CREATESTRUCT created{.lpCreateParams = w.parameter,
                               .hMenu = w.menu,
                               .hwndParent = w.parent,
                               .cy = window->rect.height(),
                               .cx = window->rect.width(),
                               .y = window->rect.top,
                               .x = window->rect.left,
                               .style = w.style,
                               .lpszName = w.title_sent,
                               .lpszClass = w.class_name,
                               .dwExStyle = w.ex_style};
    const auto told = reinterpret_cast<LPARAM>(&created);
    if (call(*window, WM_NCCREATE, 0, told) == 0) {
        if (window.alive() && !window->dying) remove_record(*window);
        return {};
    }
    if (window.alive()) update_client(*window);
    if (window.alive() && call(*window, WM_CREATE, 0, told) == -1) {
        DestroyWindow(hwnd);
        return {};
    }
    if (!window.alive() || window->dying) return {};
    // An overlapped window hears its size when it is first shown.
    if (window->top && (window->style & WS_POPUP) == 0) {
        window->top->size_owed = true;
    } else {
        send_size(*window);
        if (window.alive()) send_move(*window);
    }
    if (window.alive() && (w.style & WS_VISIBLE) != 0) {
        const std::int32_t how = (w.style & WS_MAXIMIZE) != 0   ? SW_SHOWMAXIMIZED
                                 : (w.style & WS_MINIMIZE) != 0 ? SW_SHOWMINIMIZED
                                                                : SW_SHOW;
        ShowWindow(hwnd, how);
    }
    return window.alive() ? hwnd : HWND{};
}

}  // namespace

HWND CreateWindowExA(DWORD ex_style, const char* class_name, const char* title, DWORD style,
                     std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                     HWND parent, HMENU menu_or_id, void* parameter) {
    const WindowClass* const cls = class_name != nullptr ? find_class(class_name) : nullptr;
    const std::string_view sent(title != nullptr ? title : "",
                                title != nullptr ? strnlen(title, longest_title) : 0);
    Wanted w{ex_style, style,     x,          y,         width,
             height,   parent,    menu_or_id, parameter, utf8_from_page(sent),
             title,    class_name};
    if (cls != nullptr && cls->utf8 && title != nullptr) w.title_sent = w.title.c_str();
    return create(w);
}

HWND CreateWindowExW(DWORD ex_style, const char16_t* class_name, const char16_t* title, DWORD style,
                     std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                     HWND parent, HMENU menu_or_id, void* parameter) {
    const std::string name = class_name != nullptr ? utf8_from_wide(class_name) : std::string();
    Wanted w{ex_style,  style,
             x,         y,
             width,     height,
             parent,    menu_or_id,
             parameter, title != nullptr ? utf8_from_wide(title) : std::string(),
             nullptr,   name.c_str()};
    if (title != nullptr) w.title_sent = w.title.c_str();
    return create(w);
}

// ---- The end -----------------------------------------------------------------------------------
namespace {

// WM_DESTROY goes from the window down.
void tell_destroy(Window& window) {
    Pinned w(&window);
    w->dying = true;
    call(*w, WM_DESTROY, 0, 0);
    if (!w.alive()) return;
    for (const HWND child : children_of(*w)) {
        Window* const c = find(child);
        if (c != nullptr && !c->dying) tell_destroy(*c);
    }
}

// WM_NCDESTROY and the records go from the bottom up.
void take_apart(Window& window) {
    Pinned w(&window);
    // Children that were made meanwhile go too.
    while (w->first_child != nullptr) {
        Pinned child(w->first_child);
        if (!child->dying) tell_destroy(*child);
        if (child.alive()) take_apart(*child);
    }
    call(*w, WM_NCDESTROY, 0, 0);
    if (w->top && w->menu != HMENU{} && menu_hooks().window_destroyed != nullptr)
        menu_hooks().window_destroyed(w->handle, w->menu);
    remove_record(*w);
}

void destroy_owned(Window& owner) {
    std::vector<HWND> owned;
    for (const Window* w = top_levels(); w != nullptr; w = w->below)
        if (w->owner == &owner) owned.push_back(w->handle);
    for (const HWND hwnd : owned) DestroyWindow(hwnd);
}

}  // namespace

bool DestroyWindow(HWND hwnd) {
    Pinned window(hwnd);
    if (!window || window->dying) return false;
    if (window->top && window->top->opened && window_going != nullptr) window_going(hwnd);
    if (!window.alive() || window->dying) return true;
    window->dying = true;
    if ((window->style & WS_VISIBLE) != 0)
        hide_window(*window);
    else
        leave_window(*window);
    if (window.alive() && window->top) destroy_owned(*window);
    if (window.alive()) tell_destroy(*window);
    if (window.alive()) take_apart(*window);
    return true;
}

}  // namespace tarn::platform
