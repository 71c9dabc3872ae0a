// Menus at work: pop-ups are unmanaged windows of their own; while one is open, the pointer is
// captured and keys go to the menu, so that no control loses the focus.
#include "platform/user/menu_tracking.h"

#include <algorithm>

#include "platform/base/text.h"
#include "platform/display/display.h"
#include "platform/gdi/theme.h"
#include "platform/user/window.h"

namespace tarn::platform {

namespace {

constexpr const char* class_name = "TarnMenu";

struct MenuTracking {
    MenuRun* current = nullptr;
    HWND hovered_bar{};
    std::int32_t hovered = no_item;
    bool installed = false;
};
MenuTracking& menu_state() {
    static MenuTracking all;
    return all;
}

}  // namespace

MenuLevel* level_of(HWND window) {
    MenuRun* t = menu_state().current;
    if (t == nullptr) return nullptr;
    for (MenuLevel& level : t->levels)
        if (level.window == window) return &level;
    return nullptr;
}

namespace {

RECT bar_on_screen(HWND owner) {
    const Window* window = find(owner);
    if (window == nullptr) return {};
    RECT bar = menu_bar_rect(*window);
    if (bar.empty()) return bar;
    bar.left += window->rect.left;
    bar.right += window->rect.left;
    bar.top += window->rect.top;
    bar.bottom += window->rect.top;
    return bar;
}

}  // namespace

std::int32_t bar_item_at(HWND owner, POINT screen) {
    const RECT bar = bar_on_screen(owner);
    if (!bar.contains(screen)) return no_item;
    RECT button;
    const MenuLayout layout = layout_bar(GetMenu(owner), owner, bar.width(), button);
    const POINT at{screen.x - bar.left, screen.y - bar.top};
    if (button.contains(at)) return system_item;
    for (std::size_t i = 0; i < layout.items.size(); ++i)
        if (layout.items[i].contains(at)) return static_cast<std::int32_t>(i);
    return no_item;
}

namespace {

RECT bar_item_rect(HWND owner, std::int32_t item) {
    const RECT bar = bar_on_screen(owner);
    RECT button;
    const MenuLayout layout = layout_bar(GetMenu(owner), owner, bar.width(), button);
    RECT rect = button;
    if (item >= 0) {
        if (static_cast<std::size_t>(item) >= layout.items.size()) return {};
        rect = layout.items[static_cast<std::size_t>(item)];
    }
    return {rect.left + bar.left, rect.top + bar.top, rect.right + bar.left, rect.bottom + bar.top};
}

}  // namespace

void repaint_menu(HWND window) {
    if (window != 0) InvalidateRect(window, nullptr, false);
}

void repaint_bar(HWND owner) {
    DrawMenuBar(owner);
}

namespace {

// ---- Telling the owner -------------------------------------------------------------------------

}  // namespace

void tell_selection(const MenuRun& t) {
    HMENU menu = GetMenu(t.owner);
    std::int32_t selected = t.bar_item;
    if (!t.levels.empty() && (t.levels.back().selected != no_item || !t.bar)) {
        menu = t.levels.back().menu;
        selected = t.levels.back().selected;
    } else if (t.levels.size() > 1) {
        menu = t.levels[t.levels.size() - 2].menu;
        selected = t.levels[t.levels.size() - 2].selected;
    }
    const MenuItem* item =
        selected >= 0 ? find_item(menu, static_cast<UINT>(selected), MF_BYPOSITION) : nullptr;
    if (item == nullptr) return;
    UINT flags = (item->flags & 0xFFF) | MF_HILITE;
    if (item->sub != 0) flags |= MF_POPUP;
    const std::int32_t word = item->sub != 0 ? selected : static_cast<std::int32_t>(item->id);
    SendMessageA(t.owner, WM_MENUSELECT, MAKEWPARAM(word, static_cast<std::int32_t>(flags)), menu);
}

namespace {

// ---- Levels ------------------------------------------------------------------------------------

}  // namespace

void close_from(MenuRun& t, std::size_t level) {
    while (t.levels.size() > level) {
        const HWND window = t.levels.back().window;
        t.levels.pop_back();
        DestroyWindow(window);
    }
}

namespace {

// Beside `anchor` (below it for a bar's, at its right for a sub-menu's), within the monitor.
RECT place_popup(const RECT& anchor, SIZE size, bool below, UINT flags) {
    const RECT area = display().work_area(middle_of(anchor));
    size.cy = std::min(size.cy, area.height());
    std::int32_t x = below ? anchor.left : anchor.right - 2;
    std::int32_t y = below ? anchor.bottom : anchor.top - 4;
    if ((flags & TPM_CENTERALIGN) != 0)
        x -= size.cx / 2;
    else if ((flags & TPM_RIGHTALIGN) != 0)
        x -= size.cx;
    if ((flags & TPM_VCENTERALIGN) != 0)
        y -= size.cy / 2;
    else if ((flags & TPM_BOTTOMALIGN) != 0)
        y -= size.cy;
    if (!below && x + size.cx > area.right) x = anchor.left - size.cx + 2;
    x = std::max(area.left, std::min(x, area.right - size.cx));
    if (y + size.cy > area.bottom)
        y = below && anchor.top - size.cy >= area.top ? anchor.top - size.cy
                                                      : area.bottom - size.cy;
    y = std::max(area.top, y);
    return {x, y, x + size.cx, y + size.cy};
}

// False: the menu or the owner didn't live through its being announced.
bool open_level(MenuRun& t, HMENU menu, const RECT& anchor, bool below, UINT flags,
                bool select_first) {
    std::int32_t index = t.levels.empty() ? std::max(t.bar_item, 0) : t.levels.back().selected;
    SendMessageA(t.owner, WM_INITMENUPOPUP, static_cast<WPARAM>(menu), MAKELPARAM(index, 0));
    if (!IsWindow(t.owner) || !IsMenu(menu)) {
        t.done = true;
        return false;
    }
    MenuLevel level;
    level.menu = menu;
    level.layout = layout_popup(menu, t.owner);
    if (!IsWindow(t.owner)) {
        t.done = true;
        return false;
    }
    if (level.layout.items.empty()) return false;
    level.screen = place_popup(anchor, level.layout.size, below, flags);
    level.window = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, class_name,
                                   "", WS_POPUP, level.screen.left, level.screen.top,
                                   level.screen.width(), level.screen.height(), t.owner, HMENU{});
    if (level.window == 0) return false;
    t.levels.push_back(level);
    if (select_first) {
        MenuLevel& fresh = t.levels.back();
        const Menu* found = find_menu(menu);
        for (std::size_t i = 0; found != nullptr && i < found->items.size(); ++i) {
            if (found->items[i].separator()) continue;
            fresh.selected = static_cast<std::int32_t>(i);
            break;
        }
    }
    ShowWindow(t.levels.back().window, SW_SHOWNOACTIVATE);
    UpdateWindow(t.levels.back().window);
    return true;
}

RECT item_on_screen(const MenuLevel& level, std::int32_t item) {
    RECT rect = level.layout.items[static_cast<std::size_t>(item)];
    const std::int32_t dx = level.screen.left, dy = level.screen.top - level.offset;
    return {rect.left + dx, rect.top + dy, rect.right + dx, rect.bottom + dy};
}

}  // namespace

// A sub-menu of the innermost selected item.
void open_sub(MenuRun& t, bool select_first) {
    if (t.levels.empty()) return;
    const MenuLevel& level = t.levels.back();
    HMENU menu = level.menu;
    const MenuItem* item = level.selected >= 0
                               ? find_item(menu, static_cast<UINT>(level.selected), MF_BYPOSITION)
                               : nullptr;
    if (item == nullptr || item->sub == 0 || !item->enabled()) return;
    const HMENU sub = item->sub;
    open_level(t, sub, item_on_screen(level, level.selected), false, 0, select_first);
    if (!t.done) tell_selection(t);
}

void open_bar_item(MenuRun& t, std::int32_t item, bool select_first) {
    close_from(t, 0);
    t.bar_item = item;
    repaint_bar(t.owner);
    HMENU menu = item == system_item ? system_menu_of(t.owner) : HMENU{};
    if (item >= 0) {
        HMENU bar = GetMenu(t.owner);
        const MenuItem* found = find_item(bar, static_cast<UINT>(item), MF_BYPOSITION);
        if (found == nullptr || !found->enabled()) return;
        menu = found->sub;
    }
    tell_selection(t);
    if (!IsWindow(t.owner)) {
        t.done = true;
        return;
    }
    if (menu != 0) open_level(t, menu, bar_item_rect(t.owner, item), true, 0, select_first);
}

namespace {

// ---- The pop-ups' procedure
// ------------------------------------------------------------------------

LRESULT popup_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_ERASEBKGND:
            return 1;
        case WM_MOUSEACTIVATE:
            return 3;  // no activation
        case WM_PAINT: {
            PAINTSTRUCT paint;
            const HDC dc = BeginPaint(hwnd, paint);
            if (const MenuLevel* level = level_of(hwnd)) {
                const MenuLevel copy = *level;
                draw_popup(dc, copy.menu, menu_state().current->owner, copy.layout, copy.selected,
                           copy.offset, copy.screen.height());
            }
            EndPaint(hwnd, paint);
            return 0;
        }
        case WM_TIMER:
            if (menu_state().current == nullptr) return 0;
            if (wparam == menu_scroll_timer)
                scroll_by_pointer(*menu_state().current, hwnd);
            else
                hover_is_over(*menu_state().current, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

// ---- The loop
// --------------------------------------------------------------------------------------

bool take(MSG& message, void* run) {
    return take_message(*static_cast<MenuRun*>(run), message);
}

// Also when another window took the pointer, or the program was left.
bool over(void* run) {
    const MenuRun& t = *static_cast<const MenuRun*>(run);
    return t.done || GetCapture() != t.owner || GetActiveWindow() == 0;
}

// The result is the command chosen, 0 for none.
std::uintptr_t track(MenuRun& t, void (*open)(MenuRun&, const void*), const void* context) {
    MenuTracking& all = menu_state();
    if (all.current != nullptr || !IsWindow(t.owner)) return 0;
    all.current = &t;
    const bool quiet = (t.flags & TPM_NONOTIFY) != 0;
    SendMessageA(t.owner, WM_ENTERMENULOOP, t.bar ? 0 : 1, 0);
    if (!quiet && IsWindow(t.owner))
        SendMessageA(t.owner, WM_INITMENU, static_cast<WPARAM>(GetMenu(t.owner)), 0);
    if (IsWindow(t.owner)) {
        SetCapture(t.owner);
        open(t, context);
        modal_loop(t.owner, take, over, &t);
    }
    close_from(t, 0);
    t.bar_item = no_item;
    all.current = nullptr;
    if (!IsWindow(t.owner)) return 0;
    if (GetCapture() == t.owner) ReleaseCapture();
    if (t.bar) repaint_bar(t.owner);
    SendMessageA(t.owner, WM_MENUSELECT, MAKEWPARAM(0, 0xFFFF), 0);
    if (IsWindow(t.owner)) SendMessageA(t.owner, WM_EXITMENULOOP, t.bar ? 0 : 1, 0);
    return t.command;
}

void send_command(HWND owner, std::uintptr_t command, bool system) {
    if (command == 0 || !IsWindow(owner)) return;
    PostMessageA(owner, system ? WM_SYSCOMMAND : WM_COMMAND, static_cast<WPARAM>(command), 0);
}

// ---- Hooks of the windows
// ----------------------------------------------------------------------------

std::int32_t hook_bar_height(HWND hwnd, HMENU menu, std::int32_t width) {
    RECT button;
    return layout_bar(menu, hwnd, width, button).size.cy;
}

void hook_draw_bar(HWND hwnd, HMENU menu, HDC dc, const RECT& bar) {
    const MenuTracking& all = menu_state();
    const bool tracked = all.current != nullptr && all.current->bar && all.current->owner == hwnd;
    draw_bar(dc, menu, hwnd, bar, tracked ? all.current->bar_item : no_item,
             all.hovered_bar == hwnd ? all.hovered : no_item,
             tracked && !all.current->levels.empty(),
             (tracked && all.current->cues) || keyboard_focus_visible());
}

void hook_bar_pressed(HWND hwnd, POINT screen) {
    const std::int32_t item = bar_item_at(hwnd, screen);
    if (item != no_item) track_bar(hwnd, item, false);
}

void hook_bar_hover(HWND hwnd, POINT screen) {
    MenuTracking& all = menu_state();
    if (all.current != nullptr) return;
    const std::int32_t item = bar_item_at(hwnd, screen);
    if (all.hovered_bar == hwnd && all.hovered == item) return;
    all.hovered_bar = hwnd;
    all.hovered = item;
    repaint_bar(hwnd);
}

// By its mnemonic, or for want of one by its first letter.
std::int32_t bar_item_of_key(HMENU bar, char32_t letter) {
    const Menu* found = find_menu(bar);
    if (found == nullptr) return no_item;
    for (const bool by_first : {false, true}) {
        for (std::size_t i = 0; i < found->items.size(); ++i) {
            const MenuItem& item = found->items[i];
            char32_t own = item.mnemonic();
            std::size_t begin = 0;
            if (by_first && (own != 0 || item.text.empty())) continue;
            if (by_first) own = lower_letter(next_code_point(item.text, begin));
            if (own == letter && item.enabled()) return static_cast<std::int32_t>(i);
        }
    }
    return no_item;
}

bool hook_open_by_key(HWND hwnd, char32_t key) {
    const HMENU bar = GetMenu(hwnd);
    if (bar == 0 && system_menu_of(hwnd) == 0) return false;
    if (key == 0) {
        track_bar(hwnd, GetMenuItemCount(bar) > 0 ? next_item(bar, no_item, 1) : system_item, true);
        return true;
    }
    const std::int32_t item = bar_item_of_key(bar, lower_letter(key));
    if (item != no_item) track_bar(hwnd, item, true);
    return item != no_item;
}

void hook_window_destroyed(HWND hwnd, HMENU menu) {
    if (menu != 0) DestroyMenu(menu);
    GetSystemMenu(hwnd, true);
    if (menu_state().hovered_bar == hwnd) menu_state().hovered_bar = HWND{};
}

}  // namespace

void install_menus() {
    MenuTracking& all = menu_state();
    if (all.installed) return;
    all.installed = true;
    WNDCLASS description;
    description.style = CS_DROPSHADOW;
    description.lpfnWndProc = popup_procedure;
    description.hCursor = LoadSystemCursor(IDC_ARROW);
    description.lpszClassName = class_name;
    description.utf8 = true;
    RegisterClassA(description);
    menu_hooks() = {hook_bar_height, hook_draw_bar,    hook_bar_pressed,
                    hook_bar_hover,  hook_open_by_key, hook_window_destroyed};
}

bool menu_tracking() {
    return menu_state().current != nullptr;
}

void track_bar(HWND owner, std::int32_t item, bool by_key) {
    MenuRun t;
    t.owner = owner;
    t.bar = true;
    t.cues = by_key;
    struct Start {
        std::int32_t item;
        bool by_key;
    } const start{item, by_key};
    const bool system = item == system_item;
    const std::uintptr_t command = track(
        t,
        [](MenuRun& tracking, const void* context) {
            const Start& wanted = *static_cast<const Start*>(context);
            open_bar_item(tracking, wanted.item, wanted.by_key);
        },
        &start);
    send_command(owner, command, system && command != 0);
}

std::int32_t track_popup(HMENU menu, UINT flags, POINT at, HWND owner) {
    MenuRun t;
    t.owner = owner;
    t.flags = flags;
    struct Start {
        HMENU menu;
        POINT at;
        UINT flags;
    } const start{menu, at, flags};
    const std::uintptr_t command = track(
        t,
        [](MenuRun& tracking, const void* context) {
            const Start& wanted = *static_cast<const Start*>(context);
            const RECT anchor{wanted.at.x, wanted.at.y, wanted.at.x, wanted.at.y};
            if (!open_level(tracking, wanted.menu, anchor, true, wanted.flags, false))
                tracking.done = true;
        },
        &start);
    if ((flags & TPM_RETURNCMD) != 0) return static_cast<std::int32_t>(command);
    send_command(owner, command, false);
    return command != 0 ? 1 : 0;
}

bool SetMenu(HWND hwnd, HMENU menu) {
    if (menu != 0 && !IsMenu(menu)) return false;
    return set_window_menu(hwnd, menu);
}

HMENU GetMenu(HWND hwnd) {
    const Window* window = find(hwnd);
    return window != nullptr ? window->menu : HMENU{};
}

// The bar's height may have changed with its items.
bool DrawMenuBar(HWND hwnd) {
    Window* window = find(hwnd);
    if (window == nullptr) return false;
    if (window->menu != 0) {
        const RECT bar = menu_bar_rect(*window);
        RECT button;
        if (layout_bar(window->menu, hwnd, bar.width(), button).size.cy != bar.height())
            return set_window_menu(hwnd, window->menu);
    }
    invalidate_frame(*window);
    return true;
}

}  // namespace tarn::platform
