// A menu at work, for the files that follow it: the pop-ups that are open, and what keys and the
// pointer do to them.
#pragma once

#include <vector>

#include "platform/user/menu_table.h"

namespace tarn::platform {

inline constexpr UINT menu_hover_delay = 220;  // milliseconds before a sub-menu opens by itself
inline constexpr std::uintptr_t menu_hover_timer = 1;
inline constexpr UINT menu_scroll_period = 60;  // milliseconds an item while the pointer rests
inline constexpr std::uintptr_t menu_scroll_timer = 2;

struct MenuLevel {
    HMENU menu{};
    HWND window{};
    MenuLayout layout;
    RECT screen;
    std::int32_t selected = no_item;
    std::int32_t offset = 0;  // scrolled by
};

struct MenuRun {
    HWND owner{};
    UINT flags = 0;
    bool bar = false;  // begun from a bar
    std::int32_t bar_item = no_item;
    std::vector<MenuLevel> levels;  // pop-ups, the innermost last
    bool done = false;
    bool moved = false;  // the pointer was moved since the press that opened
    bool cues = false;   // mnemonics show
    std::uintptr_t command = 0;
    POINT pointer{-1, -1};
};

// ---- Pop-ups (menu_tracking.cpp)
// -----------------------------------------------------------------
MenuLevel* level_of(HWND window);
void repaint_menu(HWND window);
void repaint_bar(HWND owner);
std::int32_t bar_item_at(HWND owner, POINT screen);
void tell_selection(const MenuRun& t);
void close_from(MenuRun& t, std::size_t level);
void open_sub(MenuRun& t, bool select_first);
void open_bar_item(MenuRun& t, std::int32_t item, bool select_first);

// ---- Choosing (menu_choice.cpp)
// ------------------------------------------------------------------ The next item that can be
// selected, from `from` on (no_item: the first or last).
std::int32_t next_item(HMENU menu, std::int32_t from, std::int32_t step);
char32_t lower_letter(char32_t c);
// True: the message was for the menu.
bool take_message(MenuRun& t, const MSG& message);
// The pointer has rested on an item of that pop-up.
void hover_is_over(MenuRun& t, HWND window);
// It rests on a strip beyond which more items lie.
void scroll_by_pointer(MenuRun& t, HWND window);

}  // namespace tarn::platform
