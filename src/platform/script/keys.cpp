#include "platform/script/keys.h"

#include <charconv>
#include <strings.h>

#include "platform/base/text.h"
#include "platform/display/keys.h"

namespace tarn::platform {
namespace {

struct Name {
    const char* name;
    std::uint8_t code;
};
constexpr Name names[] = {
    {"Tab", VK_TAB},
    {"Return", VK_RETURN},
    {"Enter", VK_RETURN},
    {"Escape", VK_ESCAPE},
    {"Esc", VK_ESCAPE},
    {"Space", VK_SPACE},
    {"Backspace", VK_BACK},
    {"Delete", VK_DELETE},
    {"Del", VK_DELETE},
    {"Insert", VK_INSERT},
    {"Ins", VK_INSERT},
    {"Home", VK_HOME},
    {"End", VK_END},
    {"PageUp", VK_PRIOR},
    {"PgUp", VK_PRIOR},
    {"PageDown", VK_NEXT},
    {"PgDn", VK_NEXT},
    {"Left", VK_LEFT},
    {"Right", VK_RIGHT},
    {"Up", VK_UP},
    {"Down", VK_DOWN},
    {"Pause", VK_PAUSE},
    {"Break", VK_CANCEL},
    {"Menu", VK_APPS},
    {"Help", VK_HELP},
    {"CapsLock", VK_CAPITAL},
    {"NumLock", VK_NUMLOCK},
    {"ScrollLock", VK_SCROLL},
    {"PrintScreen", VK_SNAPSHOT},
    {"Clear", VK_CLEAR},
};
struct ModifierName {
    const char* name;
    std::uint8_t code;
    std::uint8_t modifier;
};
constexpr ModifierName modifiers[] = {
    {"Shift", VK_SHIFT, mod_shift},
    {"Ctrl", VK_CONTROL, mod_control},
    {"Control", VK_CONTROL, mod_control},
    {"Alt", VK_MENU, mod_alt},
    {"AltGr", 0, mod_altgr},
    {"Super", VK_LWIN, mod_super},
};
// Keys of a US keyboard beside letters and digits: what they type alone and with Shift.
struct Symbol {
    char plain, shifted;
    std::uint8_t code;
};
constexpr Symbol symbols[] = {
    {';', ':', VK_OEM_1},     {'=', '+', VK_OEM_PLUS},   {',', '<', VK_OEM_COMMA},
    {'-', '_', VK_OEM_MINUS}, {'.', '>', VK_OEM_PERIOD}, {'/', '?', VK_OEM_2},
    {'`', '~', VK_OEM_3},     {'[', '{', VK_OEM_4},      {'\\', '|', VK_OEM_5},
    {']', '}', VK_OEM_6},     {'\'', '"', VK_OEM_7},     {' ', ' ', VK_SPACE},
};
constexpr std::string_view shifted_digits = ")!@#$%^&*(";

bool same(std::string_view text, const char* name) {
    std::string_view other(name);
    return text.size() == other.size() && strncasecmp(text.data(), name, text.size()) == 0;
}

const ModifierName* find_modifier(std::string_view name) {
    for (const ModifierName& modifier : modifiers) {
        if (same(name, modifier.name)) return &modifier;
    }
    return nullptr;
}

// F1 to F24, Num0 to Num9.
bool parse_numbered(std::string_view name, Key& key) {
    bool function = name.size() > 1 && (name[0] == 'F' || name[0] == 'f');
    bool pad = name.size() == 4 && same(name.substr(0, 3), "Num");
    if (!function && !pad) return false;
    name.remove_prefix(function ? 1 : 3);
    std::int32_t number = 0;
    auto [stop, failure] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (failure != std::errc{} || stop != name.data() + name.size() || number < 0) return false;
    if (pad) {
        key.code = VK_NUMPAD0 + number;
        key.character = static_cast<char32_t>('0' + number);
        return true;
    }
    constexpr std::int32_t last = 24;
    if (number < 1 || number > last) return false;
    key.code = VK_F1 + number - 1;
    return true;
}

bool parse_plain(std::string_view name, Key& key) {
    std::uint32_t held = key.modifiers;
    std::size_t length = 0;
    char32_t character = name.empty() ? U'\0' : next_code_point(name, length);
    if (!name.empty() && length == name.size() && character > U' ') {
        key = key_of_character(character);
        bool letter = key.code >= 'A' && key.code <= 'Z';
        // Ctrl+A is a shortcut, not a capital letter.
        if (letter && held != 0) key = key_of_character(static_cast<char32_t>(key.code + 32));
        key.modifiers |= held;
        if (letter && (held & mod_shift) != 0) key.character -= 32;
        return true;
    }
    for (const Name& each : names) {
        if (!same(name, each.name)) continue;
        key.code = each.code;
        if (key.code == VK_SPACE) key.character = U' ';
        return true;
    }
    return parse_numbered(name, key);
}

}  // namespace

Key key_of_character(char32_t character) {
    Key key;
    key.character = character;
    if (character >= U'a' && character <= U'z') {
        key.code = static_cast<std::int32_t>(character) - 32;
    } else if (character >= U'A' && character <= U'Z') {
        key.code = static_cast<std::int32_t>(character);
        key.modifiers = mod_shift;
    } else if (character >= U'0' && character <= U'9') {
        key.code = static_cast<std::int32_t>(character);
    } else if (character < 0x80) {
        auto c = static_cast<char>(character);
        if (std::size_t digit = shifted_digits.find(c); digit != std::string_view::npos) {
            key.code = static_cast<std::int32_t>('0' + digit);
            key.modifiers = mod_shift;
            return key;
        }
        for (const Symbol& symbol : symbols) {
            if (symbol.plain != c && symbol.shifted != c) continue;
            key.code = symbol.code;
            if (symbol.plain != c) key.modifiers = mod_shift;
        }
    }
    return key;
}

bool parse_key(std::string_view name, Key& key) {
    key = {};
    for (;;) {
        // The last + may be the key itself.
        std::size_t plus = name.find('+');
        if (plus == std::string_view::npos || plus == 0) break;
        const ModifierName* held = find_modifier(name.substr(0, plus));
        if (!held || plus + 1 == name.size()) return false;
        key.modifiers |= held->modifier;
        name.remove_prefix(plus + 1);
    }
    if (const ModifierName* alone = find_modifier(name)) {
        key.code = alone->code;
        key.is_modifier = true;
        key.modifiers |= alone->modifier;
        return true;
    }
    return parse_plain(name, key);
}

}  // namespace tarn::platform
