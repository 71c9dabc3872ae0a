// Menus of open windows: selections, help, pop-ups, and items that come and go.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/user/menus.h"
#include "winio/callbacks.h"
#include "winio/menus.h"
#include "winio/report.h"
#include "winio/text_layer.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::int32_t popup_base = 2000, enhanced_end = 4000;

menu_info* item_of_id(fancy_window* window, std::int32_t id) {
    menu_info* item = window->menu_items;
    while (item != nullptr && (item->id != id || item->submenu != 0)) item = item->next;
    return item;
}

// Runs the call-back with CURRENT_MENU_ITEM set to the item, and acts on its result.
void run_item(fancy_window* window, call_back callback, const char* text) {
    const HWND handle = window->hwnd;
    set_quillpan_string("CURRENT_MENU_ITEM", text);
    const std::int32_t result = call_function(callback, "MENU_SELECTION", handle, false, true);
    set_quillpan_string("CURRENT_MENU_ITEM", "");
    act_on_result(handle, result);
}

bool enhanced_command(fancy_window* window, std::int32_t id) {
    if (id >= popup_base && id < enhanced_end && window->enhanced_popup != 0) {
        const char* path = enhanced_text(window->popup_paths, id - popup_base);
        if (path == nullptr) return false;
        run_item(window, window->popup_callback, std::string(path).c_str());
        return true;
    }
    if (id < 1 || id >= popup_base || window->enhanced_menu == 0) return false;
    const char* path = enhanced_text(window->enhanced_paths, id);
    if (path == nullptr) return false;
    run_item(window, window->enhanced_callback, std::string(path).c_str());
    return true;
}

// "|a|b" is a while the grey variable isn't zero, and b while it is.
std::string help_now(const menu_info& item) {
    const std::string help = item.help != nullptr ? item.help : "";
    if (help.empty() || help[0] != '|') return help;
    const std::size_t middle = help.find('|', 1);
    if (middle == std::string::npos) return help.substr(1);
    const bool lit = item.grey == nullptr || *item.grey != 0;
    return lit ? help.substr(1, middle - 1) : help.substr(middle + 1);
}

void show_help(fancy_window* window, const char* text) {
    if (window->help_control == nullptr || window->help_control->hwnd == 0) return;
    SetWindowTextAW(window->help_control->hwnd, text);
}

void copy_item(fancy_window* window, HMENU to, menu_info& item) {
    UINT flags = MF_STRING;
    if (item.check != nullptr && *item.check != 0) flags |= MF_CHECKED;
    if (item.grey != nullptr && *item.grey == 0) flags |= MF_GRAYED;
    if (item.id == 0 && item.submenu == 0)
        AppendMenuAW(to, MF_SEPARATOR, 0, nullptr);
    else if (item.submenu != 0)
        AppendMenuAW(to, MF_POPUP, static_cast<std::uintptr_t>(item.submenu), item.text);
    else
        AppendMenuAW(to, flags, static_cast<std::uintptr_t>(item.id), item.text);
    item.menu = to;
    item.flags |= 1;
    (void)window;
}

void copy_items(fancy_window* window, HMENU to, menu_info* item) {
    if (item == nullptr) return;
    copy_items(window, to, item->next);  // oldest first
    if (item->menu == window->system_menu) copy_item(window, to, *item);
}

void place_window_items(menu_info* added, HMENU menu) {
    for (menu_info* item = added->window->menu_items; item != nullptr; item = item->next)
        if (item != added && item->menu == menu && item->position >= added->position)
            ++item->position;
}

bool popup_allowed(const fancy_window* window) {
    return window != nullptr && window->flags.open && !window->flags.popup_off;
}

window_control* control_under(fancy_window* window, HWND hwnd, POINT screen) {
    HWND under = WindowFromPoint(screen);
    for (; under != 0 && under != window->hwnd; under = GetParent(under))
        for (window_control* c = window->first_control; c != nullptr; c = c->next)
            if (c->hwnd == under) return c;
    (void)hwnd;
    return nullptr;
}

}  // namespace

std::uint32_t& popup_alignment() {
    static std::uint32_t flags = 0;
    return flags;
}

bool menu_command(fancy_window* window, std::int32_t id) {
    if (enhanced_command(window, id)) return true;
    const menu_info* item = item_of_id(window, id);
    if (item == nullptr) return false;
    // The key of a grey item does nothing, as a click on it.
    const std::int32_t number = window->second_number;
    adjust_grey_controls(1);
    if (!fancy_window_exists(window) || window->second_number != number) return true;
    item = item_of_id(window, id);
    if (item == nullptr) return true;
    const UINT state = GetMenuState(item->menu, static_cast<UINT>(id), 0);
    if (state != UINT(-1) && (state & (MF_GRAYED | MF_DISABLED)) != 0) return true;
    run_item(window, item->callback, std::string(item->text).c_str());
    return true;
}

void menu_selected(fancy_window* window, WPARAM wparam, LPARAM lparam) {
    const std::int32_t id = LOWORD(wparam);
    const std::int32_t flags = HIWORD(wparam);
    if (flags == 0xFFFF && lparam == 0) return show_help(window, "");
    if ((flags & MF_POPUP) != 0) return show_help(window, "");
    if (const menu_info* item = item_of_id(window, id))
        return show_help(window, help_now(*item).c_str());
    const bool popup = id >= popup_base;
    const char* help = enhanced_text(popup ? window->popup_help : window->enhanced_help,
                                     popup ? id - popup_base : id);
    show_help(window, help != nullptr ? help : "");
}

void copy_system_menu(fancy_window* window) {
    if (window->system_menu == 0) return;
    const HMENU to = GetSystemMenu(window->hwnd, false);
    const HMENU built = window->system_menu;
    copy_items(window, to, window->menu_items);
    // The sub-menus live on in the system menu.
    while (GetMenuItemCount(built) > 0) RemoveMenu(built, 0, MF_BYPOSITION);
    DestroyMenu(built);
    window->system_menu = to;
    DrawMenuBar(window->hwnd);
}

void destroy_all_menus(fancy_window* window) {
    for (HMENU* menu :
         {&window->menu, &window->popup_menu, &window->enhanced_menu, &window->enhanced_popup}) {
        if (*menu != 0 && IsMenu(*menu)) DestroyMenu(*menu);
        *menu = HMENU{};
    }
    for (window_control* c = window->first_control; c != nullptr; c = c->next) {
        if (c->popup_menu != 0 && IsMenu(c->popup_menu)) DestroyMenu(c->popup_menu);
        c->popup_menu = HMENU{};
    }
    for (menu_info* item = window->menu_items; item != nullptr;) {
        menu_info* next = item->next;
        if (item->id != 0) free_id(item->id);
        std::free(item);
        item = next;
    }
    window->menu_items = nullptr;
    for (accelerator* key = window->accelerators; key != nullptr;) {
        accelerator* next = key->next;
        std::free(key);
        key = next;
    }
    window->accelerators = nullptr;
    for (char*** table : {&window->enhanced_paths, &window->enhanced_help, &window->popup_paths,
                          &window->popup_help}) {
        std::free(*table);
        *table = nullptr;
    }
}

bool display_popup_menu1(fancy_window* window, HWND hwnd, LPARAM place, bool from_mouse) {
    if (!popup_allowed(window)) return false;
    POINT at;
    GetCursorPos(at);
    const window_control* control = from_mouse ? control_under(window, hwnd, at) : nullptr;
    HMENU menu = control != nullptr ? control->popup_menu : HMENU{};
    if (menu == 0) menu = window->popup_menu;
    if (menu == 0) menu = window->enhanced_popup;
    if (menu == 0) return false;
    if (place == -1) {
        RECT rect;
        if (GetWindowRect(GetFocus(), rect)) at = {rect.left, rect.bottom};
    }
    set_quillpan_info("POPUP_X", at.x);
    set_quillpan_info("POPUP_Y", at.y);
    const UINT flags = place == -1 ? 0 : popup_alignment() & 0x3C;
    TrackPopupMenu(menu, flags, at.x, at.y, window->hwnd);
    return true;
}

menu_info* seek_menu(HMENU menu, bool fatal) {
    for (fancy_window* window = records().windows; window != nullptr; window = window->next) {
        if (!window->flags.open) continue;
        for (menu_info* item = window->menu_items; item != nullptr; item = item->next)
            if (item->menu == menu || item->submenu == menu) return item;
    }
    if (fatal) quillpan_error("Unrecognised menu ");
    return nullptr;
}

std::int32_t add_menu_item(HMENU menu, const char* text, std::int32_t* grey, std::int32_t* check,
                           call_back callback) {
    const menu_info* beside = seek_menu(menu, true);
    if (beside == nullptr) return 0;
    fancy_window* window = beside->window;
    auto* item = static_cast<menu_info*>(std::calloc(1, sizeof(menu_info)));
    if (item == nullptr) heap_exhausted();
    item->window = window;
    item->menu = menu;
    item->kind = 2;
    item->grey = grey;
    item->check = check;
    item->callback = callback;
    item->grey_test = GetGreyControlCheckFunction(callback);
    item->grey_state = -1;
    item->position = GetMenuItemCount(menu);
    item->next = window->menu_items;
    window->menu_items = item;
    place_window_items(item, menu);
    if (text == nullptr) {
        AppendMenuAW(menu, MF_SEPARATOR, 0, nullptr);
    } else {
        item->text = strdup(text);
        discard_with_garbage(item->text, nullptr);
        item->id = get_id();
        AppendMenuAW(menu, MF_STRING, static_cast<std::uintptr_t>(item->id), text);
    }
    DrawMenuBar(window->hwnd);
    fancy_window* before = current_window();
    current_window() = window;
    adjust_grey_controls(1);
    current_window() = before;
    return item->id;
}

namespace {

menu_info* item_of_resource(std::int32_t resource_id) {
    for (fancy_window* window = records().windows; window != nullptr; window = window->next)
        for (menu_info* item = window->menu_items; item != nullptr; item = item->next)
            if (item->resource_id == resource_id && item->menu != 0) return item;
    return nullptr;
}

// An item of a resource has the resource's number as its command. %rc may have given that command
// its call-back already, with no item yet.
menu_info* record_of_command(fancy_window* window, std::int32_t id) {
    menu_info* item = id != 0 ? item_of_id(window, id) : nullptr;
    if (item != nullptr) return item;
    item = static_cast<menu_info*>(std::calloc(1, sizeof(menu_info)));
    if (item == nullptr) heap_exhausted();
    item->window = window;
    item->kind = 2;
    item->grey_state = -1;
    item->id = id;
    item->next = window->menu_items;
    window->menu_items = item;
    return item;
}

void set_caption(menu_info* item, const char* text) {
    constexpr std::size_t longest_caption = 80;
    std::string caption = text;
    const std::size_t tab = caption.find('\t');
    const std::string key = tab == std::string::npos ? "" : caption.substr(tab + 1);
    caption.resize(std::min({tab, caption.size(), longest_caption}));
    if (!key.empty()) {
        const std::int32_t code = char_from_name(key.c_str(), false);
        if (code == 0)
            quillpan_error("Invalid accelerator key [%s] in INSERT_MENU_ITEM@", key.c_str());
        else
            add_menu_key(item->window, code, item->id);
        caption += "\t" + key;
    }
    item->text = strdup(caption.c_str());
    if (item->text == nullptr) heap_exhausted();
    discard_with_garbage(item->text, nullptr);
}

}  // namespace

void insert_menu_item(const char* text, std::int32_t resource_id, std::int32_t before_id) {
    menu_info* before = item_of_resource(before_id);
    if (before == nullptr) return;
    fancy_window* window = before->window;
    const HMENU menu = before->menu;
    const auto at = static_cast<UINT>(before->position);
    if (resource_id == before_id) {
        set_caption(before, text != nullptr ? text : "");
        ModifyMenuA(menu, at, MF_BYPOSITION | MF_STRING, static_cast<std::uintptr_t>(before->id),
                    before->text);
    } else {
        for (menu_info* other = window->menu_items; other != nullptr; other = other->next)
            if (other->menu == menu && other->position >= before->position && other != before)
                ++other->position;
        ++before->position;
        menu_info* item = record_of_command(window, resource_id);
        item->menu = menu;
        item->resource_id = resource_id;
        item->position = static_cast<std::int32_t>(at);
        if (resource_id == 0) {
            InsertMenuAW(menu, at, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr);
        } else {
            set_caption(item, text != nullptr ? text : "");
            InsertMenuAW(menu, at, MF_BYPOSITION | MF_STRING,
                         static_cast<std::uintptr_t>(resource_id), item->text);
        }
    }
    DrawMenuBar(window->hwnd);
}

bool remove_menu_item(std::int32_t id) {
    for (fancy_window* window = records().windows; window != nullptr; window = window->next) {
        for (menu_info** link = &window->menu_items; *link != nullptr; link = &(*link)->next) {
            menu_info* item = *link;
            if (item->id != id || id == 0 || (item->flags & 1) != 0) continue;
            *link = item->next;
            RemoveMenu(item->menu, static_cast<UINT>(id), 0);
            free_id(id);
            for (menu_info* other = window->menu_items; other != nullptr; other = other->next)
                if (other->menu == item->menu && other->position > item->position)
                    --other->position;
            std::free(item);
            DrawMenuBar(window->hwnd);
            return true;
        }
    }
    return false;
}

void delete_menu_item(std::int32_t resource_id, std::int32_t mode) {
    for (fancy_window* window = records().windows; window != nullptr; window = window->next) {
        for (menu_info* item = window->menu_items; item != nullptr; item = item->next) {
            if (item->resource_id != resource_id) continue;
            if (mode == 0)
                DeleteMenu(item->menu, static_cast<UINT>(item->id), 0);
            else if (item->position > 0)
                DeleteMenu(item->menu, static_cast<UINT>(item->position - 1), MF_BYPOSITION);
            DrawMenuBar(window->hwnd);
            return;
        }
    }
}

}  // namespace tarn::winio
