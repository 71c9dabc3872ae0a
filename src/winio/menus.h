// Menus in a format, and accelerator keys.
#pragma once

#include <cstdint>

#include "winio/builder.h"

namespace tarn::winio {

struct menu_info {
    menu_info* next;
    fancy_window* window;
    char* text;
    char* help;
    std::int32_t *grey, *check;
    call_back callback;
    call_back grey_test;
    HMENU menu, submenu;
    std::int32_t id;
    std::int32_t position;
    std::int32_t grey_state;  // -1 forces a send
    std::int32_t resource_id;
    std::uint32_t offsets;
    std::int32_t kind;    // 0 bar, 1 %sm, 2 nested, 3 %pm, 4 continuation
    std::uint32_t flags;  // 1 made by the system; 8 a `^` state function for grey and check
};
struct accelerator {
    accelerator* next;
    word wparam, lparam;
    std::uint32_t message;
    std::int32_t key;
};
enum : std::int32_t { key_alt = 0x100, key_control = 0x200, key_shift = 0x400 };
inline constexpr std::int32_t key_control_tab = 0x32C;  // as a pressed key

HMENU read_menu(code_call& call, std::int32_t kind);
void peek_menu(code_call& call, std::int32_t kind);
void get_menu_help(menu_info* old_head, menu_info* new_head, code_call& call);
bool display_popup_menu1(fancy_window* window, HWND hwnd, platform::LPARAM place, bool from_mouse);
std::int32_t char_from_name(const char* text, bool report);
// The mnemonic of a text, upper case, 0 for none; with `peek` nothing is recorded.
std::int32_t seek_accelerators(const char* text, fancy_window* window, bool fold, bool peek);
void check_mnemonics(const char* text);
void new_accelerator(std::uint32_t message, std::int32_t key, word lparam, word wparam);
// The key of a menu command of an open window.
void add_menu_key(fancy_window* window, std::int32_t key, std::int32_t id);
// A selected menu command; false: not of this window.
bool menu_command(fancy_window* window, std::int32_t id);
void menu_selected(fancy_window* window, platform::WPARAM wparam, platform::LPARAM lparam);
void copy_system_menu(fancy_window* window);
void destroy_all_menus(fancy_window* window);
// The accelerator that a pressed key means: rewrites the message and says so.
bool apply_accelerator(fancy_window* window, platform::MSG& message);

// ---- Enhanced menus
// -------------------------------------------------------------------------------- The grave form
// of %mn and %pm: a text and one call-back.
void read_enhanced_menu(code_call& call, bool popup);
bool decode_enhanced_menu(fancy_window* window, const char* text, bool popup);
void replace_enhanced_menu(std::int32_t handle, const char* text);
void replace_enhanced_popup_menu(std::int32_t handle, const char* text);
const char* enhanced_text(char* const* table, std::int32_t number);  // null: no such item

// ---- Items and keys of an open window
// ---------------------------------------------------------------
menu_info* seek_menu(HMENU menu, bool fatal);
std::int32_t add_menu_item(HMENU menu, const char* text, std::int32_t* grey, std::int32_t* check,
                           call_back callback);
bool remove_menu_item(std::int32_t id);
void delete_menu_item(std::int32_t resource_id, std::int32_t mode);
void insert_menu_item(const char* text, std::int32_t resource_id, std::int32_t before_id);
bool add_accelerator(HWND handle, const char* name, call_back callback);
bool add_accelerator(HWND handle, std::int32_t key, call_back callback);
bool remove_accelerator(HWND handle, const char* name);
bool send_accelerator(const char* name);
std::uint32_t& popup_alignment();  // __align_popup_menu

}  // namespace tarn::winio
