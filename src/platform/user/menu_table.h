// The menus of this process and their items.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/user/menus.h"
#include "platform/user/user.h"

namespace tarn::platform {

struct MenuItem {
    UINT flags = 0;         // MF_...: kind and state
    std::uintptr_t id = 0;  // of a command
    HMENU sub{};
    std::string text;         // UTF-8; behind a tab the shortcut
    HBITMAP bitmap{};         // MF_BITMAP
    std::uintptr_t data = 0;  // MF_OWNERDRAW
    SIZE measured{-1, -1};    // by the owner; -1: not asked yet

    bool separator() const { return (flags & MF_SEPARATOR) != 0; }
    bool enabled() const { return (flags & (MF_GRAYED | MF_DISABLED)) == 0; }
    std::string_view label() const;     // with its mnemonic mark
    std::string_view shortcut() const;  // behind the tab
    char32_t mnemonic() const;          // folded to lower case; 0: none
};

struct Menu {
    std::vector<MenuItem> items;
    bool popup = false;
    bool system = false;  // what a program added to the system menu
};

Menu* find_menu(HMENU menu);  // null for a stale handle
// The item that `item` names (a position with MF_BYPOSITION, otherwise a command, looked for in
// sub-menus too); null for none.
MenuItem* find_item(HMENU& menu, UINT item, UINT flags);
// A text drawn without its mnemonic mark.
std::string without_mnemonic(std::string_view text);
// Gives the window's class of menus its hooks; called when the first menu is made.
void install_menus();

// ---- Look (menu_look.cpp)
// ------------------------------------------------------------------------
struct MenuPlace {
    RECT rect;  // of an item, in its pop-up or its bar
};
struct MenuLayout {
    std::vector<RECT> items;
    SIZE size;
    std::int32_t shortcut_x = 0;  // where shortcuts end
};
MenuLayout layout_popup(HMENU menu, HWND owner);
// The bar's items in rows of `width`; the system button, if any, stands first with index -1.
MenuLayout layout_bar(HMENU menu, HWND owner, std::int32_t width, RECT& system_button);
// Strips at the edges of a pop-up that is taller than its monitor, where more items lie beyond
// them.
struct MenuStrips {
    RECT up, down;  // empty: nothing more that way
};
inline constexpr std::int32_t menu_strip_height = 20;
MenuStrips menu_strips(const MenuLayout& layout, std::int32_t offset, std::int32_t height);
void draw_popup(HDC dc, HMENU menu, HWND owner, const MenuLayout& layout, std::int32_t selected,
                std::int32_t offset, std::int32_t height);
void draw_bar(HDC dc, HMENU menu, HWND owner, const RECT& bar, std::int32_t selected,
              std::int32_t hovered, bool open, bool cues);
inline constexpr std::int32_t no_item = -1, system_item = -2;

// ---- Tracking (menu_tracking.cpp)
// ------------------------------------------------------------------
void track_bar(HWND owner, std::int32_t item, bool by_key);
std::int32_t track_popup(HMENU menu, UINT flags, POINT at, HWND owner);
// A menu is open.
bool menu_tracking();
HMENU system_menu_of(HWND owner);  // 0: nothing was added

}  // namespace tarn::platform
