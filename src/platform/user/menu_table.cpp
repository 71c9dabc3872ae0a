#include "platform/user/menu_table.h"

#include <algorithm>
#include <memory>

#include "platform/base/text.h"

namespace tarn::platform {

namespace {

struct MenuSlot {
    std::unique_ptr<Menu> menu;
    std::int32_t generation = 1;
};
struct MenuState {
    std::vector<MenuSlot> slots;
    std::vector<std::int32_t> free;
    struct System {
        HWND owner;
        HMENU menu;
    };
    std::vector<System> system_menus;
};
// Never taken apart: windows that are open at the program's end live on, and their menus with them.
MenuState& menus() {
    static MenuState* const all = new MenuState;
    return *all;
}

// Sixteen bits of index, fourteen of generation.
constexpr std::int32_t index_bits = 16, index_mask = (1 << index_bits) - 1;
constexpr std::int32_t generations = 1 << 14;

HMENU handle_at(std::int32_t index) {
    return HMENU{menus().slots[static_cast<std::size_t>(index)].generation << index_bits | index};
}

HMENU new_menu(bool popup) {
    MenuState& all = menus();
    install_menus();
    std::int32_t index;
    if (!all.free.empty()) {
        index = all.free.back();
        all.free.pop_back();
    } else {
        if (all.slots.size() > static_cast<std::size_t>(index_mask)) return HMENU{};
        index = static_cast<std::int32_t>(all.slots.size());
        all.slots.emplace_back();
    }
    MenuSlot& slot = all.slots[static_cast<std::size_t>(index)];
    slot.menu = std::make_unique<Menu>();
    slot.menu->popup = popup;
    return handle_at(index);
}

bool insert(HMENU menu, std::int32_t position, UINT flags, std::uintptr_t id, std::string text,
            std::uintptr_t raw) {
    Menu* found = find_menu(menu);
    if (found == nullptr) return false;
    MenuItem item;
    item.flags = flags & ~(MF_BYPOSITION);
    if ((flags & MF_POPUP) != 0)
        item.sub = HMENU{static_cast<std::int32_t>(id)};
    else
        item.id = id;
    if ((flags & MF_OWNERDRAW) != 0)
        item.data = raw;
    else if ((flags & MF_BITMAP) != 0)
        item.bitmap = HBITMAP{static_cast<std::int32_t>(raw)};
    else
        item.text = std::move(text);
    const auto size = static_cast<std::int32_t>(found->items.size());
    if (position < 0 || position > size) position = size;
    found->items.insert(found->items.begin() + position, std::move(item));
    return true;
}

bool insert_before(HMENU menu, UINT position, UINT flags, std::uintptr_t id, std::string text,
                   std::uintptr_t raw) {
    if ((flags & MF_BYPOSITION) != 0)
        return insert(menu, static_cast<std::int32_t>(position), flags, id, std::move(text), raw);
    const MenuItem* before = find_item(menu, position, flags);
    Menu* found = find_menu(menu);
    if (found == nullptr) return false;
    const auto at =
        before != nullptr ? static_cast<std::int32_t>(before - found->items.data()) : -1;
    return insert(menu, at, flags, id, std::move(text), raw);
}

bool holds_text(UINT flags) {
    return (flags & (MF_OWNERDRAW | MF_BITMAP | MF_SEPARATOR)) == 0;
}

std::string from_page(const char* text, UINT flags) {
    return text != nullptr && holds_text(flags) ? utf8_from_page(text) : std::string();
}

std::string from_wide(const char16_t* text, UINT flags) {
    return text != nullptr && holds_text(flags) ? utf8_from_wide(text) : std::string();
}

bool take_out(HMENU menu, UINT position, UINT flags, bool destroy_sub) {
    const MenuItem* item = find_item(menu, position, flags);
    Menu* found = find_menu(menu);
    if (item == nullptr || found == nullptr) return false;
    const HMENU sub = item->sub;
    found->items.erase(found->items.begin() + (item - found->items.data()));
    if (destroy_sub && sub != 0) DestroyMenu(sub);
    return true;
}

}  // namespace

std::string_view MenuItem::label() const {
    return std::string_view(text).substr(0, text.find('\t'));
}

std::string_view MenuItem::shortcut() const {
    const std::size_t tab = text.find('\t');
    return tab == std::string::npos ? std::string_view() : std::string_view(text).substr(tab + 1);
}

char32_t MenuItem::mnemonic() const {
    for (std::size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at)) {
        ++at;
        if (at >= text.size()) break;
        if (text[at] == '&') {
            ++at;
            continue;
        }
        const char32_t c = next_code_point(text, at);
        return c >= U'A' && c <= U'Z' ? c + 32 : c;
    }
    return 0;
}

std::string without_mnemonic(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '&' && ++at == text.size()) break;
        result += text[at];
    }
    return result;
}

Menu* find_menu(HMENU menu) {
    const std::int32_t index = menu & index_mask;
    MenuState& all = menus();
    if (menu <= 0 || static_cast<std::size_t>(index) >= all.slots.size()) return nullptr;
    const MenuSlot& slot = all.slots[static_cast<std::size_t>(index)];
    return slot.generation == menu >> index_bits ? slot.menu.get() : nullptr;
}

MenuItem* find_item(HMENU& menu, UINT item, UINT flags) {
    Menu* found = find_menu(menu);
    if (found == nullptr) return nullptr;
    if ((flags & MF_BYPOSITION) != 0)
        return item < found->items.size() ? &found->items[item] : nullptr;
    for (MenuItem& candidate : found->items)
        if (candidate.sub == 0 && !candidate.separator() && candidate.id == item) return &candidate;
    for (const MenuItem& candidate : found->items) {
        if (candidate.sub == 0 || candidate.sub == menu) continue;
        HMENU sub = candidate.sub;
        if (MenuItem* inner = find_item(sub, item, flags)) {
            menu = sub;
            return inner;
        }
    }
    return nullptr;
}

HMENU CreateMenu() {
    return new_menu(false);
}

HMENU CreatePopupMenu() {
    return new_menu(true);
}

bool DestroyMenu(HMENU menu) {
    if (find_menu(menu) == nullptr) return false;
    MenuSlot& slot = menus().slots[static_cast<std::size_t>(menu & index_mask)];
    const std::unique_ptr<Menu> gone = std::move(slot.menu);
    slot.generation = slot.generation + 1 < generations ? slot.generation + 1 : 1;
    menus().free.push_back(menu & index_mask);
    for (const MenuItem& item : gone->items)
        if (item.sub != 0) DestroyMenu(item.sub);
    return true;
}

bool IsMenu(HMENU menu) {
    return find_menu(menu) != nullptr;
}

bool AppendMenuA(HMENU menu, UINT flags, std::uintptr_t id, const char* text) {
    return insert(menu, -1, flags, id, from_page(text, flags),
                  reinterpret_cast<std::uintptr_t>(text));
}

bool AppendMenuW(HMENU menu, UINT flags, std::uintptr_t id, const char16_t* text) {
    return insert(menu, -1, flags, id, from_wide(text, flags),
                  reinterpret_cast<std::uintptr_t>(text));
}

bool InsertMenuA(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char* text) {
    return insert_before(menu, position, flags, id, from_page(text, flags),
                         reinterpret_cast<std::uintptr_t>(text));
}

bool InsertMenuW(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char16_t* text) {
    return insert_before(menu, position, flags, id, from_wide(text, flags),
                         reinterpret_cast<std::uintptr_t>(text));
}

bool ModifyMenuA(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char* text) {
    MenuItem* item = find_item(menu, position, flags);
    Menu* found = find_menu(menu);
    if (item == nullptr || found == nullptr) return false;
    const auto at = static_cast<std::int32_t>(item - found->items.data());
    const HMENU sub = item->sub;
    found->items.erase(found->items.begin() + at);
    if (sub != 0 && ((flags & MF_POPUP) == 0 || static_cast<std::uintptr_t>(sub) != id))
        DestroyMenu(sub);
    return insert(menu, at, flags, id, from_page(text, flags),
                  reinterpret_cast<std::uintptr_t>(text));
}

bool RemoveMenu(HMENU menu, UINT position, UINT flags) {
    return take_out(menu, position, flags, false);
}

bool DeleteMenu(HMENU menu, UINT position, UINT flags) {
    return take_out(menu, position, flags, true);
}

std::int32_t GetMenuItemCount(HMENU menu) {
    const Menu* found = find_menu(menu);
    return found != nullptr ? static_cast<std::int32_t>(found->items.size()) : -1;
}

UINT GetMenuItemID(HMENU menu, std::int32_t position) {
    const MenuItem* item = find_item(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return item != nullptr && item->sub == 0 ? static_cast<UINT>(item->id) : UINT(-1);
}

UINT GetMenuState(HMENU menu, UINT item, UINT flags) {
    const MenuItem* found = find_item(menu, item, flags);
    return found != nullptr ? found->flags : UINT(-1);
}

HMENU GetSubMenu(HMENU menu, std::int32_t position) {
    const MenuItem* item = find_item(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return item != nullptr ? item->sub : HMENU{};
}

std::string_view menu_text(HMENU menu, std::int32_t position) {
    const MenuItem* item = find_item(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return item != nullptr ? std::string_view(item->text) : std::string_view();
}

DWORD CheckMenuItem(HMENU menu, UINT item, UINT flags) {
    MenuItem* found = find_item(menu, item, flags);
    if (found == nullptr) return DWORD(-1);
    const DWORD before = found->flags & MF_CHECKED;
    found->flags = (found->flags & ~MF_CHECKED) | (flags & MF_CHECKED);
    return before;
}

bool EnableMenuItem(HMENU menu, UINT item, UINT flags) {
    constexpr UINT states = MF_GRAYED | MF_DISABLED;
    MenuItem* found = find_item(menu, item, flags);
    if (found == nullptr) return false;
    found->flags = (found->flags & ~states) | (flags & states);
    return true;
}

HMENU system_menu_of(HWND owner) {
    for (const MenuState::System& entry : menus().system_menus)
        if (entry.owner == owner && GetMenuItemCount(entry.menu) > 0) return entry.menu;
    return HMENU{};
}

HMENU GetSystemMenu(HWND hwnd, bool revert) {
    auto& all = menus().system_menus;
    const auto mine = std::find_if(all.begin(), all.end(),
                                   [&](const auto& entry) { return entry.owner == hwnd; });
    if (revert) {
        if (mine != all.end()) {
            DestroyMenu(mine->menu);
            all.erase(mine);
            DrawMenuBar(hwnd);
        }
        return HMENU{};
    }
    if (mine != all.end()) return mine->menu;
    if (!IsWindow(hwnd)) return HMENU{};
    std::erase_if(all, [](const auto& entry) { return !IsWindow(entry.owner); });
    const HMENU menu = CreatePopupMenu();
    find_menu(menu)->system = true;
    all.push_back({hwnd, menu});
    return menu;
}

std::int32_t TrackPopupMenu(HMENU menu, UINT flags, std::int32_t x, std::int32_t y, HWND hwnd) {
    return track_popup(menu, flags, {x, y}, hwnd);
}

}  // namespace tarn::platform
