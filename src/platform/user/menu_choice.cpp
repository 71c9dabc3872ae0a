// What keys and the pointer do to the menu that is open.
#include <algorithm>

#include "platform/base/text.h"
#include "platform/user/menu_tracking.h"

namespace tarn::platform {

namespace {

constexpr std::int32_t scroll_step = 24;

// ---- Choosing ----------------------------------------------------------------------------------

// By how much a pop-up that is taller than its monitor can be scrolled.
std::int32_t room_of(const MenuLevel& level) {
    return std::max(level.layout.size.cy - level.screen.height(), 0);
}

void scroll_to(MenuLevel& level, std::int32_t offset) {
    level.offset = std::clamp(offset, 0, room_of(level));
}

void keep_in_view(MenuLevel& level) {
    if (level.selected < 0 || room_of(level) == 0) return;
    const RECT item = level.layout.items[static_cast<std::size_t>(level.selected)];
    const std::int32_t height = level.screen.height();
    if (item.top - level.offset < menu_strip_height)
        scroll_to(level, item.top - menu_strip_height);
    else if (item.bottom - level.offset > height - menu_strip_height)
        scroll_to(level, item.bottom - height + menu_strip_height);
}

void select_item(MenuRun& t, std::size_t index, std::int32_t item) {
    MenuLevel& level = t.levels[index];
    if (level.selected == item) return;
    level.selected = item;
    keep_in_view(level);
    repaint_menu(level.window);
    tell_selection(t);
}

void choose(MenuRun& t) {
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

}  // namespace

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

namespace {

void move_selection(MenuRun& t, std::int32_t step) {
    if (t.levels.empty()) return open_bar_item(t, t.bar_item, true);
    const std::size_t index = t.levels.size() - 1;
    select_item(t, index, next_item(t.levels[index].menu, t.levels[index].selected, step));
}

void move_along_bar(MenuRun& t, std::int32_t step) {
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

void step_right(MenuRun& t) {
    if (!t.levels.empty() && t.levels.back().selected >= 0) {
        HMENU menu = t.levels.back().menu;
        const MenuItem* item =
            find_item(menu, static_cast<UINT>(t.levels.back().selected), MF_BYPOSITION);
        if (item != nullptr && item->sub != 0 && item->enabled()) return open_sub(t, true);
    }
    move_along_bar(t, 1);
}

void step_left(MenuRun& t) {
    if (t.levels.size() > 1) {
        close_from(t, t.levels.size() - 1);
        tell_selection(t);
    } else {
        move_along_bar(t, -1);
    }
}

void step_out(MenuRun& t) {
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

}  // namespace

char32_t lower_letter(char32_t c) {
    return c >= U'A' && c <= U'Z' ? c + 32 : c;
}

namespace {

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
                own = lower_letter(next_code_point(item.text, begin));
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

void typed(MenuRun& t, char32_t character) {
    const char32_t letter = lower_letter(character);
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

void key_pressed(MenuRun& t, WPARAM key) {
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

// -1 or 1 where the pointer is on the strip that scrolls that way.
std::int32_t strip_at(const MenuLevel& level, POINT screen) {
    const POINT at{screen.x - level.screen.left, screen.y - level.screen.top};
    const MenuStrips strips = menu_strips(level.layout, level.offset, level.screen.height());
    return strips.up.contains(at) ? -1 : strips.down.contains(at) ? 1 : 0;
}

std::int32_t item_at(const MenuLevel& level, POINT screen) {
    if (strip_at(level, screen) != 0) return no_item;
    const POINT at{screen.x - level.screen.left, screen.y - level.screen.top + level.offset};
    for (std::size_t i = 0; i < level.layout.items.size(); ++i)
        if (level.layout.items[i].contains(at)) return static_cast<std::int32_t>(i);
    return no_item;
}

// The innermost pop-up under the pointer; -1 for none.
std::int32_t level_at(const MenuRun& t, POINT screen) {
    for (std::size_t i = t.levels.size(); i-- > 0;)
        if (t.levels[i].screen.contains(screen)) return static_cast<std::int32_t>(i);
    return -1;
}

bool is_sub(HMENU menu, std::int32_t item) {
    const MenuItem* found =
        item >= 0 ? find_item(menu, static_cast<UINT>(item), MF_BYPOSITION) : nullptr;
    return found != nullptr && found->sub != 0 && found->enabled();
}

void pointer_moved(MenuRun& t, POINT screen) {
    if (screen == t.pointer) return;
    t.moved = t.moved || t.pointer.x != -1;
    t.pointer = screen;
    const std::int32_t level = level_at(t, screen);
    if (level >= 0) {
        const auto index = static_cast<std::size_t>(level);
        if (strip_at(t.levels[index], screen) != 0)
            SetTimer(t.levels[index].window, menu_scroll_timer, menu_scroll_period, nullptr);
        const std::int32_t item = item_at(t.levels[index], screen);
        if (item == t.levels[index].selected) return;
        const HWND window = t.levels[index].window;
        select_item(t, index, item);
        if (!t.done) SetTimer(window, menu_hover_timer, menu_hover_delay, nullptr);
        return;
    }
    const std::int32_t bar_item = t.bar ? bar_item_at(t.owner, screen) : no_item;
    if (bar_item != no_item && bar_item != t.bar_item && !t.levels.empty())
        open_bar_item(t, bar_item, false);
    else if (!t.levels.empty() && level_of(t.levels.back().window)->selected != no_item)
        select_item(t, t.levels.size() - 1, no_item);
}

void pressed(MenuRun& t, POINT screen) {
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

void released(MenuRun& t, POINT screen) {
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
    const MenuLevel& at = t.levels[static_cast<std::size_t>(level)];
    if (static_cast<std::size_t>(level) + 1 != t.levels.size() || item_at(at, screen) == no_item)
        return;
    if (!is_sub(at.menu, at.selected)) choose(t);
}

}  // namespace

void hover_is_over(MenuRun& t, HWND window) {
    KillTimer(window, menu_hover_timer);
    for (std::size_t i = 0; i < t.levels.size(); ++i) {
        if (t.levels[i].window != window) continue;
        if (!t.levels[i].screen.contains(t.pointer)) return;
        close_from(t, i + 1);
        if (is_sub(t.levels[i].menu, t.levels[i].selected)) open_sub(t, false);
        return;
    }
}

void scroll_by_pointer(MenuRun& t, HWND window) {
    for (MenuLevel& level : t.levels) {
        if (level.window != window) continue;
        const std::int32_t way = strip_at(level, t.pointer);
        if (way == 0) break;
        scroll_to(level, level.offset + way * scroll_step);
        repaint_menu(window);
        return;
    }
    KillTimer(window, menu_scroll_timer);
}

namespace {

void wheel_turned(MenuRun& t, std::int32_t delta) {
    if (t.levels.empty()) return;
    MenuLevel& level = t.levels.back();
    scroll_to(level, level.offset - delta / WHEEL_DELTA * scroll_step);
    repaint_menu(level.window);
}

POINT screen_of(const MSG& message) {
    POINT at{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    ClientToScreen(message.hwnd, at);
    return at;
}

}  // namespace

// True: the message was for the menu.
bool take_message(MenuRun& t, const MSG& message) {
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

}  // namespace tarn::platform
