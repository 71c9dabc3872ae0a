// The table of windows, the tree, and the order of creation.
#include "platform/user/window.h"

#include "platform/user/state.h"

namespace tarn::platform {

constinit UserState* state_record = nullptr;

UserState& make_state() {
    state_record = new UserState;
    return *state_record;
}

MenuHooks& menu_hooks() {
    return state().menus;
}

// ---- Handles -----------------------------------------------------------------------------------
// A handle is the slot's number below and its generation above: never below 0x10000, so that no
// special value of a Z order or a class is taken for one.
namespace {

// More than any program shows. Brothers that overlap are looked at for each window that is painted:
// what a format of a million characters asks for would take minutes.
constexpr std::size_t most_windows = 10000;
constexpr std::uint16_t last_generation = 0x7FFF;

}  // namespace

Window* find(HWND hwnd) {
    const auto& slots = state().windows.slots;
    const auto value = static_cast<std::uint32_t>(hwnd);
    const std::uint32_t index = value & 0xFFFF;
    if (index >= slots.size() || slots[index].generation != value >> 16) return nullptr;
    return slots[index].window;
}

Window* new_window() {
    WindowTable& table = state().windows;
    auto index = static_cast<std::size_t>(table.first_free);
    if (table.first_free < 0) {
        if (table.slots.size() >= most_windows) return nullptr;
        index = table.slots.size();
        table.slots.emplace_back();
    } else {
        table.first_free = table.slots[index].next_free;
        if (table.first_free < 0) table.last_free = -1;
    }
    WindowTable::Slot& slot = table.slots[index];
    slot.window = new Window;
    slot.window->handle =
        HWND{static_cast<std::int32_t>(std::uint32_t{slot.generation} << 16 | index)};
    return slot.window;
}

void bury(Window& window) {
    WindowTable& table = state().windows;
    const auto index = static_cast<std::int32_t>(window.handle) & 0xFFFF;
    WindowTable::Slot& slot = table.slots[static_cast<std::size_t>(index)];
    slot.window = nullptr;
    slot.generation = slot.generation == last_generation
                          ? std::uint16_t{1}
                          : static_cast<std::uint16_t>(slot.generation + 1);
    slot.next_free = -1;
    (table.last_free < 0 ? table.first_free
                         : table.slots[static_cast<std::size_t>(table.last_free)].next_free) =
        index;
    table.last_free = index;
    window.dead = true;
    --window.cls->windows;
    if (window.pins == 0) delete &window;
}

void release_pin(Window& window) {
    if (--window.pins == 0 && window.dead) delete &window;
}

bool IsWindow(HWND hwnd) {
    return find(hwnd) != nullptr;
}

// ---- Tree --------------------------------------------------------------------------------------
Window& top_of(Window& window) {
    Window* top = &window;
    while (top->parent != nullptr) top = top->parent;
    return *top;
}

bool is_within(const Window* window, const Window& ancestor) {
    for (; window != nullptr; window = window->parent)
        if (window == &ancestor) return true;
    return false;
}

bool is_visible(const Window& window) {
    for (const Window* w = &window; w != nullptr; w = w->parent)
        if ((w->style & WS_VISIBLE) == 0) return false;
    return true;
}

bool can_paint(const Window& window) {
    for (const Window* w = &window; w != nullptr; w = w->parent) {
        if (!w->shows()) return false;
        if (w->parent == nullptr)
            return w->top->surface.pixels != nullptr && (w->style & WS_MINIMIZE) == 0;
    }
    return false;
}

namespace {

Window*& first_of(Window* parent) {
    return parent != nullptr ? parent->first_child : state().windows.top;
}
Window*& last_of(Window* parent) {
    return parent != nullptr ? parent->last_child : state().windows.bottom;
}

void count_dirty(Window* from, std::int32_t change) {
    for (; from != nullptr; from = from->parent) from->dirty_below += change;
}

}  // namespace

Window*& top_levels() {
    return state().windows.top;
}

void link_child(Window& window, Window* parent, Window* after, bool at_bottom) {
    window.parent = parent;
    if (at_bottom) after = last_of(parent);
    Window* const before = after != nullptr ? after->below : first_of(parent);
    window.above = after;
    window.below = before;
    (after != nullptr ? after->below : first_of(parent)) = &window;
    (before != nullptr ? before->above : last_of(parent)) = &window;
    count_dirty(parent, window.dirty_below);
    children_changed(parent);
}

void unlink_child(Window& window) {
    count_dirty(window.parent, -window.dirty_below);
    (window.above != nullptr ? window.above->below : first_of(window.parent)) = window.below;
    (window.below != nullptr ? window.below->above : last_of(window.parent)) = window.above;
    children_changed(window.parent);
    window.above = window.below = window.parent = nullptr;
}

std::vector<HWND> children_of(const Window& window) {
    std::vector<HWND> all;
    for (const Window* w = window.first_child; w != nullptr; w = w->below) all.push_back(w->handle);
    return all;
}

void join_creation_order(Window& window) {
    WindowTable& table = state().windows;
    window.top->older = table.newest;
    if (Window* const before = find(table.newest))
        before->top->newer = window.handle;
    else
        table.oldest = window.handle;
    table.newest = window.handle;
}

void leave_creation_order(Window& window) {
    WindowTable& table = state().windows;
    const HWND older = window.top->older;
    const HWND newer = window.top->newer;
    (older != HWND{} ? find(older)->top->newer : table.oldest) = newer;
    (newer != HWND{} ? find(newer)->top->older : table.newest) = older;
}

HWND first_window() {
    return state().windows.oldest;
}

HWND next_top_level(HWND hwnd) {
    const Window* const window = find(hwnd);
    return window != nullptr && window->top ? window->top->newer : HWND{};
}

bool IsChild(HWND parent, HWND hwnd) {
    const Window* const window = find(hwnd);
    const Window* const ancestor = find(parent);
    return window != nullptr && ancestor != nullptr && window != ancestor &&
           is_within(window, *ancestor);
}

HWND GetParent(HWND hwnd) {
    const Window* const window = find(hwnd);
    if (window == nullptr) return {};
    return handle_of(window->is_child() ? window->parent : window->owner);
}

HWND GetTopWindow(HWND parent) {
    if (parent == HWND{}) return handle_of(top_levels());
    const Window* const window = find(parent);
    return window != nullptr ? handle_of(window->first_child) : HWND{};
}

// The desktop is no window of ours: what asks for it gets 0, which stands for the screen in
// MapWindowPoints and GetDC.
HWND GetDesktopWindow() {
    return {};
}

HWND GetWindow(HWND hwnd, UINT which) {
    const Window* const window = find(hwnd);
    if (window == nullptr) return {};
    switch (which) {
        case GW_HWNDFIRST:
            return handle_of(first_of(window->parent));
        case GW_HWNDLAST:
            return handle_of(last_of(window->parent));
        case GW_HWNDNEXT:
            return handle_of(window->below);
        case GW_HWNDPREV:
            return handle_of(window->above);
        case GW_OWNER:
            return handle_of(window->owner);
        case GW_CHILD:
            return handle_of(window->first_child);
        default:
            return {};
    }
}

HWND GetDlgItem(HWND parent, std::int32_t id) {
    const Window* const window = find(parent);
    if (window == nullptr) return {};
    for (const Window* w = window->first_child; w != nullptr; w = w->below)
        if (w->id == id) return w->handle;
    return {};
}

std::int32_t GetDlgCtrlID(HWND hwnd) {
    const Window* const window = find(hwnd);
    return window != nullptr && window->is_child() ? static_cast<std::int32_t>(window->id) : 0;
}

bool IsWindowVisible(HWND hwnd) {
    const Window* const window = find(hwnd);
    return window != nullptr && is_visible(*window);
}

bool IsWindowEnabled(HWND hwnd) {
    const Window* const window = find(hwnd);
    return window != nullptr && (window->style & WS_DISABLED) == 0;
}

bool IsIconic(HWND hwnd) {
    const Window* const window = find(hwnd);
    return window != nullptr && (window->style & WS_MINIMIZE) != 0;
}

bool IsZoomed(HWND hwnd) {
    const Window* const window = find(hwnd);
    return window != nullptr && (window->style & WS_MAXIMIZE) != 0;
}

}  // namespace tarn::platform
