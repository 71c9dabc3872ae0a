// Events of the display that are about windows: they happen when they are looked at.
#include <cmath>
#include <cstring>

#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"
#include "platform/user/state.h"

namespace tarn::platform {

void forget_configures(HWND hwnd) {
    std::erase_if(state().queue.events, [&](const Event& e) {
        return e.kind == Event::Kind::configure && e.window == static_cast<TopLevel>(hwnd);
    });
}

namespace {

void take_configure(Window& top, const RECT& surface) {
    if ((top.style & WS_MINIMIZE) != 0 || surface.empty()) return;
    const Insets hidden = hidden_frame(top);
    const RECT rect{surface.left - hidden.left, surface.top - hidden.top,
                    surface.right + hidden.right, surface.bottom + hidden.bottom};
    if (rect != top.rect) set_window_rect(top, rect, 0, true);
}

void take_state(Window& top, WindowState granted) {
    Pinned w(&top);
    if (granted == w->top->state)
        w->top->state_asked_until = 0;
    else if (clock_us() < w->top->state_asked_until)
        return;
    const bool icon = granted == WindowState::minimized;
    const bool full = granted == WindowState::maximized || granted == WindowState::full_screen;
    DWORD style = w->style & ~(WS_MINIMIZE | WS_MAXIMIZE);
    if (icon) style |= WS_MINIMIZE | (w->style & WS_MAXIMIZE);
    if (full) style |= WS_MAXIMIZE;
    w->top->state = granted;
    if (style == w->style) return;
    if (full && (w->style & (WS_MINIMIZE | WS_MAXIMIZE)) == 0) w->normal_rect = w->rect;
    w->style = style;
    if (icon) forget_updates(*w);
    send_size(*w);
    if (w.alive() && !icon) invalidate_all(*w);
}

void take_scale() {
    set_default_scale(display().scale());
    for (HWND hwnd = first_window(); hwnd != HWND{};) {
        Pinned top(hwnd);
        fit_surface(*top);
        const auto dpi = static_cast<std::int32_t>(std::lround(display().scale() * 96));
        call(*top, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), 0);
        if (!top.alive()) return;
        hwnd = top->top->newer;
    }
}

std::vector<HWND> all_top_levels() {
    std::vector<HWND> all;
    for (HWND hwnd = first_window(); hwnd != HWND{}; hwnd = next_top_level(hwnd))
        all.push_back(hwnd);
    return all;
}

// Everybody is asked; when nobody objects the program is told to end.
void take_session_end() {
    const std::vector<HWND> all = all_top_levels();
    bool agreed = true;
    for (const HWND hwnd : all)
        if (find(hwnd) != nullptr && call(hwnd, WM_QUERYENDSESSION, 0, 0) == 0) agreed = false;
    for (const HWND hwnd : all) call(hwnd, WM_ENDSESSION, agreed ? 1 : 0, 0);
    if (agreed) PostQuitMessage(0);
}

void collect(const Window& window, std::vector<HWND>& all) {
    all.push_back(window.handle);
    for (const Window* c = window.first_child; c != nullptr; c = c->below) collect(*c, all);
}

// Children are told besides: a procedure of a program's own passes nothing on.
void take_theme() {
    if (theme_is_chosen()) return;
    set_theme(display().dark());
    std::vector<HWND> all;
    for (const HWND hwnd : all_top_levels()) collect(*find(hwnd), all);
    for (const HWND hwnd : all) {
        if (find(hwnd) != nullptr) call(hwnd, WM_SYSCOLORCHANGE, 0, 0);
        if (Window* const window = find(hwnd)) invalidate_all(*window);
    }
}

}  // namespace

void take_event(const Event& event) {
    using Kind = Event::Kind;
    if (event.kind == Kind::scale) return take_scale();
    if (event.kind == Kind::session_end) return take_session_end();
    if (event.kind == Kind::theme) return take_theme();
    Pinned top(HWND{event.window});
    if (!top || !top->top) return;
    switch (event.kind) {
        case Kind::expose: {
            const RECT area = surface_rect(*top);
            add_damage(*top, {0, 0, area.width(), area.height()});
            break;
        }
        case Kind::configure:
            take_configure(*top, event.rect);
            break;
        case Kind::state:
            take_state(*top, event.state);
            break;
        case Kind::close:
            if ((top->style & WS_DISABLED) != 0)
                raise_modal_of(*top);
            else
                PostMessageA(top->handle, WM_SYSCOMMAND, SC_CLOSE, 0);
            break;
        case Kind::focus_in:
        case Kind::focus_out:
            display_focus(*top, event.kind == Kind::focus_in);
            break;
        case Kind::pointer_move:
        case Kind::pointer_leave:
        case Kind::button_down:
        case Kind::button_up:
        case Kind::wheel:
            take_pointer_event(event);
            break;
        case Kind::key_down:
        case Kind::key_up:
        case Kind::text:
            take_key_event(event);
            break;
        case Kind::drop_files:
            take_drop_event(event);
            break;
        default:
            break;
    }
}

// ---- Dropped files -----------------------------------------------------------------------------
namespace {

constexpr std::size_t most_drops = 64;  // a program that never calls DragFinish

Drop* find_drop(HDROP handle) {
    for (Drop& d : state().drops)
        if (d.id == handle) return &d;
    return nullptr;
}

}  // namespace

void take_drop_event(const Event& event) {
    Window* const top = find(HWND{event.window});
    const RECT area = surface_rect(*top);
    POINT at{area.left + event.point.x, area.top + event.point.y};
    Window* window = find(WindowFromPoint(at));
    if (window == nullptr || &top_of(*window) != top) window = top;
    while (window != nullptr && !window->accepts_files) window = window->parent;
    if (window == nullptr) return;
    Drop drop;
    for (std::string_view rest = event.text; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (end > 0) drop.paths.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (drop.paths.empty()) return;
    ScreenToClient(window->handle, at);
    drop.at = at;
    auto& drops = state().drops;
    if (drops.size() >= most_drops) drops.erase(drops.begin());
    drop.id = state().next_drop++;
    const auto id = static_cast<WPARAM>(drop.id);
    drops.push_back(std::move(drop));
    PostMessageA(window->handle, WM_DROPFILES, id, 0);
}

void DragAcceptFiles(HWND hwnd, bool accept) {
    Window* const window = find(hwnd);
    if (window == nullptr) return;
    window->accepts_files = accept;
    Window& top = top_of(*window);
    if (!accept || top.top->accepts_files) return;
    top.top->accepts_files = true;
    options_changed(top);
}

// Paths are the file system's bytes, in no code page.
std::int32_t DragQueryFileA(HDROP handle, std::uint32_t which, char* buffer, std::int32_t size) {
    const Drop* const drop = find_drop(handle);
    if (drop == nullptr) return 0;
    if (which == 0xFFFFFFFFu) return static_cast<std::int32_t>(drop->paths.size());
    if (which >= drop->paths.size()) return 0;
    const std::string& path = drop->paths[which];
    if (buffer == nullptr || size <= 0) return static_cast<std::int32_t>(path.size());
    const std::size_t length = std::min(path.size(), static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, path.data(), length);
    buffer[length] = 0;
    return static_cast<std::int32_t>(length);
}

bool DragQueryPoint(HDROP handle, POINT& client) {
    const Drop* const drop = find_drop(handle);
    if (drop == nullptr) return false;
    client = drop->at;
    return true;
}

void DragFinish(HDROP handle) {
    std::erase_if(state().drops, [&](const Drop& d) { return d.id == handle; });
}

}  // namespace tarn::platform
