// Menu bars and pop-up menus.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/base/types.h"

namespace tarn::platform {

HMENU CreateMenu();
HMENU CreatePopupMenu();
bool DestroyMenu(HMENU menu);
bool IsMenu(HMENU menu);
// `flags` MF_...; `id` is a command, or a menu with MF_POPUP. A text may hold a mnemonic `&` and,
// behind a tab, the shortcut shown at the right.
bool AppendMenuA(HMENU menu, UINT flags, std::uintptr_t id, const char* text);
bool AppendMenuW(HMENU menu, UINT flags, std::uintptr_t id, const char16_t* text);
bool InsertMenuA(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char* text);
bool InsertMenuW(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char16_t* text);
bool ModifyMenuA(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char* text);
bool RemoveMenu(HMENU menu, UINT position, UINT flags);
bool DeleteMenu(HMENU menu, UINT position, UINT flags);
std::int32_t GetMenuItemCount(HMENU menu);
UINT GetMenuItemID(HMENU menu, std::int32_t position);
UINT GetMenuState(HMENU menu, UINT item, UINT flags);
HMENU GetSubMenu(HMENU menu, std::int32_t position);
std::string_view menu_text(HMENU menu, std::int32_t position);  // UTF-8
DWORD CheckMenuItem(HMENU menu, UINT item, UINT flags);
bool EnableMenuItem(HMENU menu, UINT item, UINT flags);
bool SetMenu(HWND hwnd, HMENU menu);
HMENU GetMenu(HWND hwnd);
bool DrawMenuBar(HWND hwnd);
// The system menu belongs to the desktop's window manager: what a program adds is offered as a
// button at the left of the menu bar. `revert` drops what was added.
HMENU GetSystemMenu(HWND hwnd, bool revert);
// Shows a pop-up at a place on the screen and follows it to its end; WM_COMMAND goes to `hwnd`, or
// with TPM_RETURNCMD the command is the result.
std::int32_t TrackPopupMenu(HMENU menu, UINT flags, std::int32_t x, std::int32_t y, HWND hwnd);

}  // namespace tarn::platform
