// What keys type beside their letters, the same whoever makes the event.
#pragma once

#include <cstdint>
#include <string>

#include "platform/base/constants.h"
#include "platform/display/display.h"

namespace tarn::platform {

// Keys of the main block that have no name of their own: on a US keyboard ; = , - . / ` [ \ ] '
// and the key beside the left shift key.
inline constexpr std::int32_t VK_OEM_1 = 0xBA, VK_OEM_PLUS = 0xBB, VK_OEM_COMMA = 0xBC,
                              VK_OEM_MINUS = 0xBD, VK_OEM_PERIOD = 0xBE, VK_OEM_2 = 0xBF,
                              VK_OEM_3 = 0xC0, VK_OEM_4 = 0xDB, VK_OEM_5 = 0xDC, VK_OEM_6 = 0xDD,
                              VK_OEM_7 = 0xDE, VK_OEM_102 = 0xE2, VK_LWIN = 0x5B;

// The control character that a key types, as an event's text: Return, Tab, Backspace and Escape
// have one, and letters with Ctrl. Empty for all other keys.
inline std::string control_text(std::int32_t key, std::uint32_t modifiers) {
    bool control = (modifiers & mod_control) != 0;
    if (control && (modifiers & (mod_alt | mod_altgr)) != 0) return {};
    switch (key) {
        case VK_RETURN:
            return control ? "\n" : "\r";
        case VK_BACK:
            return control ? "\x7f" : "\b";
        case VK_TAB:
            return control ? "" : "\t";
        case VK_ESCAPE:
            return "\x1b";
        case VK_OEM_4:
            return control ? "\x1b" : "";
        case VK_OEM_5:
            return control ? "\x1c" : "";
        case VK_OEM_6:
            return control ? "\x1d" : "";
        default:
            break;
    }
    if (control && key >= 'A' && key <= 'Z') return {static_cast<char>(key - 'A' + 1)};
    return {};
}

}  // namespace tarn::platform
