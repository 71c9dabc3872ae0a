// Menus at work: pop-ups are unmanaged windows of their own; while one is open, the pointer is
// captured and keys go to the menu, so that no control loses the focus.
#include <algorithm>

#include "platform/base/text.h"
#include "platform/display/display.h"
#include "platform/gdi/theme.h"
#include "platform/user/menu_table.h"
#include "platform/user/window.h"

namespace tarn::platform {

namespace {

constexpr const char* class_name = "TarnMenu";
constexpr UINT hover_delay = 220;  // milliseconds before a sub-menu opens under the pointer
constexpr std::uintptr_t hover_timer = 1;
constexpr std::int32_t scroll_step = 24;

struct Level {
    HMENU menu{};
    HWND window{};
    MenuLayout layout;
    RECT screen;
    std::int32_t selected = no_item;
    std::int32_t offset = 0;  // scrolled by
};

struct Tracking {
    HWND owner{};
    UINT flags = 0;
    bool bar = false;  // begun from a bar
    std::int32_t bar_item = no_item;
    std::vector<Level> levels;  // pop-ups, the innermost last
    bool done = false;
    bool moved = false;  // the pointer was moved since the press that opened
    bool cues = false;   // mnemonics show
    std::uintptr_t command = 0;
    POINT pointer{-1, -1};
};

struct MenuTracking {
    Tracking* current = nullptr;
    HWND hovered_bar{};
    std::int32_t hovered = no_item;
    bool installed = false;
};
MenuTracking& menu_state() {
    static MenuTracking all;
    return all;
}

Level* level_of(HWND window) {
    Tracking* t = menu_state().current;
    if (t == nullptr) return nullptr;
    for (Level& level : t->levels)
        if (level.window == window) return &level;
    return nullptr;
}

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

void repaint(HWND window) {
    if (window != 0) InvalidateRect(window, nullptr, false);
}

void repaint_bar(HWND owner) {
    DrawMenuBar(owner);
}

// ---- Telling the owner -------------------------------------------------------------------------

void tell_selection(const Tracking& t) {
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

// ---- Levels ------------------------------------------------------------------------------------

void close_from(Tracking& t, std::size_t level) {
    while (t.levels.size() > level) {
        const HWND window = t.levels.back().window;
        t.levels.pop_back();
        DestroyWindow(window);
    }
}

// Beside `anchor` (below it for a bar's, at its right for a sub-menu's), within the monitor.
RECT place_popup(const RECT& anchor, SIZE size, bool below, UINT flags) {
    const RECT area = display().work_area({anchor.left, anchor.top});
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
bool open_level(Tracking& t, HMENU menu, const RECT& anchor, bool below, UINT flags,
                bool select_first) {
    std::int32_t index = t.levels.empty() ? std::max(t.bar_item, 0) : t.levels.back().selected;
    SendMessageA(t.owner, WM_INITMENUPOPUP, static_cast<WPARAM>(menu), MAKELPARAM(index, 0));
    if (!IsWindow(t.owner) || !IsMenu(menu)) {
        t.done = true;
        return false;
    }
    Level level;
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
        Level& fresh = t.levels.back();
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

RECT item_on_screen(const Level& level, std::int32_t item) {
    RECT rect = level.layout.items[static_cast<std::size_t>(item)];
    const std::int32_t dx = level.screen.left, dy = level.screen.top - level.offset;
    return {rect.left + dx, rect.top + dy, rect.right + dx, rect.bottom + dy};
}

// A sub-menu of the innermost selected item.
void open_sub(Tracking& t, bool select_first) {
    if (t.levels.empty()) return;
    const Level& level = t.levels.back();
    HMENU menu = level.menu;
    const MenuItem* item = level.selected >= 0
                               ? find_item(menu, static_cast<UINT>(level.selected), MF_BYPOSITION)
                               : nullptr;
    if (item == nullptr || item->sub == 0 || !item->enabled()) return;
    const HMENU sub = item->sub;
    open_level(t, sub, item_on_screen(level, level.selected), false, 0, select_first);
    if (!t.done) tell_selection(t);
}

void open_bar_item(Tracking& t, std::int32_t item, bool select_first) {
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

// ---- Choosing ----------------------------------------------------------------------------------

void keep_in_view(Level& level) {
    if (level.selected < 0) return;
    const RECT item = level.layout.items[static_cast<std::size_t>(level.selected)];
    const std::int32_t height = level.screen.height();
    if (item.top - level.offset < 0) level.offset = std::max(0, item.top - 4);
    if (item.bottom - level.offset > height) level.offset = item.bottom - height + 4;
}

void select_item(Tracking& t, std::size_t index, std::int32_t item) {
    Level& level = t.levels[index];
    if (level.selected == item) return;
    level.selected = item;
    keep_in_view(level);
    repaint(level.window);
    tell_selection(t);
}

void choose(Tracking& t) {
    HMENU menu{};
    std::int32_t selected = no_item;
    if (!t.levels.empty()) {
        menu = t.levels.back().menu;
        selected = t.levels.back().selected;
    } else if (t.bar) {
        menu = GetMenu(t.owner);
        selected = t.bar_item;
    }
    const MenuItem* item =
        selected >= 0 ? find_item(menu, static_cast<UINT>(selected), MF_BYPOSITION) : nullptr;
    if (item == nullptr || item->separator() || !item->enabled()) return;
    if (item->sub != 0) {
        if (t.levels.empty())
            open_bar_item(t, t.bar_item, true);
        else
            open_sub(t, true);
        return;
    }
    t.command = item->id;
    t.done = true;
}

std::int32_t next_item(HMENU menu, std::int32_t from, std::int32_t step) {
    const Menu* found = find_menu(menu);
    if (found == nullptr || found->items.empty()) return no_item;
    const auto count = static_cast<std::int32_t>(found->items.size());
    std::int32_t at = from;
    for (std::int32_t tries = 0; tries < count; ++tries) {
        at = at < 0 ? (step > 0 ? 0 : count - 1) : (at + step + count) % count;
        if (!found->items[static_cast<std::size_t>(at)].separator()) return at;
    }
    return no_item;
}

void move_selection(Tracking& t, std::int32_t step) {
    if (t.levels.empty()) return open_bar_item(t, t.bar_item, true);
    const std::size_t index = t.levels.size() - 1;
    select_item(t, index, next_item(t.levels[index].menu, t.levels[index].selected, step));
}

void move_along_bar(Tracking& t, std::int32_t step) {
    if (!t.bar) return;
    const HMENU bar = GetMenu(t.owner);
    std::int32_t next;
    const bool has_system = system_menu_of(t.owner) != 0;
    const std::int32_t count = GetMenuItemCount(bar);
    if (t.bar_item == system_item)
        next = step > 0 ? 0 : count - 1;
    else if (has_system && t.bar_item + step < 0)
        next = system_item;
    else if (has_system && t.bar_item + step >= count)
        next = system_item;
    else
        next = next_item(bar, t.bar_item, step);
    const bool was_open = !t.levels.empty();
    if (was_open) return open_bar_item(t, next, true);
    t.bar_item = next;
    repaint_bar(t.owner);
    tell_selection(t);
}

void step_right(Tracking& t) {
    if (!t.levels.empty() && t.levels.back().selected >= 0) {
        HMENU menu = t.levels.back().menu;
        const MenuItem* item =
            find_item(menu, static_cast<UINT>(t.levels.back().selected), MF_BYPOSITION);
        if (item != nullptr && item->sub != 0 && item->enabled()) return open_sub(t, true);
    }
    move_along_bar(t, 1);
}

void step_left(Tracking& t) {
    if (t.levels.size() > 1) {
        close_from(t, t.levels.size() - 1);
        tell_selection(t);
    } else {
        move_along_bar(t, -1);
    }
}

void step_out(Tracking& t) {
    if (t.levels.size() > 1) {
        close_from(t, t.levels.size() - 1);
        tell_selection(t);
    } else if (t.bar && !t.levels.empty()) {
        close_from(t, 0);
        repaint_bar(t.owner);
    } else {
        t.done = true;
    }
}

char32_t lower(char32_t c) {
    return c >= U'A' && c <= U'Z' ? c + 32 : c;
}

// The next item whose mnemonic, or for want of one whose first letter, is the character.
std::int32_t item_of_letter(HMENU menu, char32_t letter, std::int32_t after, bool& only) {
    const Menu* found = find_menu(menu);
    if (found == nullptr) return no_item;
    const auto count = static_cast<std::int32_t>(found->items.size());
    std::int32_t first = no_item;
    std::int32_t matches = 0;
    for (const bool by_first : {false, true}) {
        for (std::int32_t i = 1; i <= count; ++i) {
            const std::int32_t at = (after + i + count) % count;
            const MenuItem& item = found->items[static_cast<std::size_t>(at)];
            if (item.separator()) continue;
            char32_t own = item.mnemonic();
            if (by_first && own == 0 && !item.text.empty()) {
                std::size_t begin = 0;
                own = lower(next_code_point(item.text, begin));
            } else if (by_first) {
                continue;
            }
            if (own != letter) continue;
            if (first == no_item) first = at;
            ++matches;
        }
        if (matches > 0) break;
    }
    only = matches == 1;
    return first;
}

void typed(Tracking& t, char32_t character) {
    const char32_t letter = lower(character);
    if (letter < U' ') return;
    if (letter == U' ' && !t.levels.empty()) return choose(t);
    const HMENU menu = t.levels.empty() ? GetMenu(t.owner) : t.levels.back().menu;
    const std::int32_t from = t.levels.empty() ? t.bar_item : t.levels.back().selected;
    bool only = false;
    const std::int32_t item = item_of_letter(menu, letter, from, only);
    if (item == no_item) {
        const LRESULT answer = SendMessageA(t.owner, WM_MENUCHAR,
                                            MAKEWPARAM(static_cast<std::int32_t>(letter), 0), menu);
        if (!IsWindow(t.owner))
            t.done = true;
        else if (answer == 0)
            MessageBeep(0);
        return;
    }
    if (t.levels.empty()) return open_bar_item(t, item, true);
    select_item(t, t.levels.size() - 1, item);
    if (only && !t.done) choose(t);
}

void key_pressed(Tracking& t, WPARAM key) {
    switch (key) {
        case VK_DOWN:
            move_selection(t, 1);
            break;
        case VK_UP:
            move_selection(t, -1);
            break;
        case VK_RIGHT:
            step_right(t);
            break;
        case VK_LEFT:
            step_left(t);
            break;
        case VK_HOME:
        case VK_END:
            if (!t.levels.empty())
                select_item(t, t.levels.size() - 1,
                            next_item(t.levels.back().menu, no_item, key == VK_HOME ? 1 : -1));
            break;
        case VK_RETURN:
            choose(t);
            break;
        case VK_ESCAPE:
            step_out(t);
            break;
        case VK_F10:
        case VK_MENU:
            t.done = true;
            break;
        default:
            break;
    }
}

// ---- Pointer -----------------------------------------------------------------------------------

std::int32_t item_at(const Level& level, POINT screen) {
    const POINT at{screen.x - level.screen.left, screen.y - level.screen.top + level.offset};
    for (std::size_t i = 0; i < level.layout.items.size(); ++i)
        if (level.layout.items[i].contains(at)) return static_cast<std::int32_t>(i);
    return no_item;
}

// The innermost pop-up under the pointer; -1 for none.
std::int32_t level_at(const Tracking& t, POINT screen) {
    for (std::size_t i = t.levels.size(); i-- > 0;)
        if (t.levels[i].screen.contains(screen)) return static_cast<std::int32_t>(i);
    return -1;
}

bool is_sub(HMENU menu, std::int32_t item) {
    const MenuItem* found =
        item >= 0 ? find_item(menu, static_cast<UINT>(item), MF_BYPOSITION) : nullptr;
    return found != nullptr && found->sub != 0 && found->enabled();
}

void pointer_moved(Tracking& t, POINT screen) {
    if (screen == t.pointer) return;
    t.moved = t.moved || t.pointer.x != -1;
    t.pointer = screen;
    const std::int32_t level = level_at(t, screen);
    if (level >= 0) {
        const auto index = static_cast<std::size_t>(level);
        const std::int32_t item = item_at(t.levels[index], screen);
        if (item == t.levels[index].selected) return;
        const HWND window = t.levels[index].window;
        select_item(t, index, item);
        if (!t.done) SetTimer(window, hover_timer, hover_delay, nullptr);
        return;
    }
    const std::int32_t bar_item = t.bar ? bar_item_at(t.owner, screen) : no_item;
    if (bar_item != no_item && bar_item != t.bar_item && !t.levels.empty())
        open_bar_item(t, bar_item, false);
    else if (!t.levels.empty() && level_of(t.levels.back().window)->selected != no_item)
        select_item(t, t.levels.size() - 1, no_item);
}

void pressed(Tracking& t, POINT screen) {
    const std::int32_t level = level_at(t, screen);
    if (level >= 0) {
        const auto index = static_cast<std::size_t>(level);
        const std::int32_t item = item_at(t.levels[index], screen);
        if (static_cast<std::size_t>(level + 1) < t.levels.size() &&
            item == t.levels[index].selected)
            return;
        close_from(t, index + 1);
        select_item(t, index, item);
        if (!t.done && is_sub(t.levels[index].menu, item)) open_sub(t, false);
        return;
    }
    const std::int32_t bar_item = t.bar ? bar_item_at(t.owner, screen) : no_item;
    if (bar_item == no_item || bar_item == t.bar_item) {
        t.done = true;
        return;
    }
    open_bar_item(t, bar_item, false);
}

void released(Tracking& t, POINT screen) {
    const std::int32_t level = level_at(t, screen);
    if (level < 0) {
        // A command that stands in the bar itself.
        const std::int32_t item = t.bar ? bar_item_at(t.owner, screen) : no_item;
        if (t.bar && t.levels.empty() && item == t.bar_item && item >= 0)
            choose(t);
        else if (item == no_item && t.moved && t.bar)
            t.done = true;
        return;
    }
    if (!t.bar && !t.moved) return;  // the release of the press that opened it
    const Level& at = t.levels[static_cast<std::size_t>(level)];
    if (static_cast<std::size_t>(level) + 1 != t.levels.size() || item_at(at, screen) == no_item)
        return;
    if (!is_sub(at.menu, at.selected)) choose(t);
}

void hover_is_over(Tracking& t, HWND window) {
    KillTimer(window, hover_timer);
    for (std::size_t i = 0; i < t.levels.size(); ++i) {
        if (t.levels[i].window != window) continue;
        if (!t.levels[i].screen.contains(t.pointer)) return;
        close_from(t, i + 1);
        if (is_sub(t.levels[i].menu, t.levels[i].selected)) open_sub(t, false);
        return;
    }
}

void wheel_turned(Tracking& t, std::int32_t delta) {
    if (t.levels.empty()) return;
    Level& level = t.levels.back();
    const std::int32_t room = level.layout.size.cy - level.screen.height();
    level.offset =
        std::clamp(level.offset - delta / WHEEL_DELTA * scroll_step, 0, std::max(room, 0));
    repaint(level.window);
}

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
            if (const Level* level = level_of(hwnd)) {
                const Level copy = *level;
                draw_popup(dc, copy.menu, menu_state().current->owner, copy.layout, copy.selected,
                           copy.offset, copy.screen.height());
            }
            EndPaint(hwnd, paint);
            return 0;
        }
        case WM_TIMER:
            if (menu_state().current != nullptr) hover_is_over(*menu_state().current, hwnd);
            return 0;
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

// ---- The loop
// --------------------------------------------------------------------------------------

POINT screen_of(const MSG& message) {
    POINT at{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    ClientToScreen(message.hwnd, at);
    return at;
}

// True: the message was for the menu.
bool take_message(Tracking& t, const MSG& message) {
    switch (message.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            TranslateMessage(message);
            key_pressed(t, message.wParam);
            return true;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            return true;
        case WM_CHAR:
        case WM_SYSCHAR:
        case WM_UNICHAR:
            typed(t, static_cast<char32_t>(message.wParam));
            return true;
        case WM_MOUSEMOVE:
            pointer_moved(t, screen_of(message));
            return true;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
            pressed(t, screen_of(message));
            return true;
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
            released(t, screen_of(message));
            return true;
        case WM_NCMOUSEMOVE:
        case WM_NCLBUTTONUP:
            return true;
        case WM_NCLBUTTONDOWN:
            t.done = true;
            return true;
        case WM_MOUSEWHEEL:
            wheel_turned(t, static_cast<std::int16_t>(HIWORD(message.wParam)));
            return true;
        default:
            return false;
    }
}

void run(Tracking& t) {
    while (!t.done && IsWindow(t.owner)) {
        MSG message;
        while (!t.done && PeekMessageA(message, HWND{}, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<std::int32_t>(message.wParam));
                t.done = true;
            } else if (!take_message(t, message)) {
                TranslateMessage(message);
                DispatchMessageA(message);
            }
            // Another window took the pointer, or the program was left.
            if (!IsWindow(t.owner) || GetCapture() != t.owner || GetActiveWindow() == 0)
                t.done = true;
        }
        if (!t.done && IsWindow(t.owner)) WaitMessage();
    }
}

// The result is the command chosen, 0 for none.
std::uintptr_t track(Tracking& t, void (*open)(Tracking&, const void*), const void* context) {
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
        run(t);
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

bool hook_open_by_key(HWND hwnd, char32_t key) {
    const HMENU bar = GetMenu(hwnd);
    if (bar == 0 && system_menu_of(hwnd) == 0) return false;
    if (key == 0) {
        track_bar(hwnd, GetMenuItemCount(bar) > 0 ? next_item(bar, no_item, 1) : system_item, true);
        return true;
    }
    const Menu* found = find_menu(bar);
    for (std::size_t i = 0; found != nullptr && i < found->items.size(); ++i) {
        if (found->items[i].mnemonic() != lower(key) || !found->items[i].enabled()) continue;
        track_bar(hwnd, static_cast<std::int32_t>(i), true);
        return true;
    }
    return false;
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
    Tracking t;
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
        [](Tracking& tracking, const void* context) {
            const Start& wanted = *static_cast<const Start*>(context);
            open_bar_item(tracking, wanted.item, wanted.by_key);
        },
        &start);
    send_command(owner, command, system && command != 0);
}

std::int32_t track_popup(HMENU menu, UINT flags, POINT at, HWND owner) {
    Tracking t;
    t.owner = owner;
    t.flags = flags;
    struct Start {
        HMENU menu;
        POINT at;
        UINT flags;
    } const start{menu, at, flags};
    const std::uintptr_t command = track(
        t,
        [](Tracking& tracking, const void* context) {
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
