// Keys by their names, and the keys that type a character.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn::platform {

struct Key {
    std::int32_t code = 0;        // VK_, 0: no key has this character
    std::uint32_t modifiers = 0;  // held with it
    char32_t character = 0;       // what it types without Ctrl, 0 for none
    bool is_modifier = false;     // Shift, Ctrl ... by itself
};

// Names like Tab, F5, a, Ctrl+A, Ctrl+Shift+Home, Ctrl++; not case-sensitive.
bool parse_key(std::string_view name, Key& key);
// The key of a US keyboard that types it.
Key key_of_character(char32_t character);

}  // namespace tarn::platform
