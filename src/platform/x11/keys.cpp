#include "platform/x11/keys.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include "platform/display/keys.h"

namespace tarn::x11 {
namespace {

using namespace tarn::platform;

struct Pair {
    std::uint16_t keysym;
    std::uint8_t key;
};

constexpr Pair named_keys[] = {
    {XKB_KEY_BackSpace, VK_BACK},
    {XKB_KEY_Tab, VK_TAB},
    {XKB_KEY_ISO_Left_Tab, VK_TAB},
    {XKB_KEY_Linefeed, VK_RETURN},
    {XKB_KEY_Clear, VK_CLEAR},
    {XKB_KEY_Return, VK_RETURN},
    {XKB_KEY_Pause, VK_PAUSE},
    {XKB_KEY_Break, VK_CANCEL},
    {XKB_KEY_Cancel, VK_CANCEL},
    {XKB_KEY_Scroll_Lock, VK_SCROLL},
    {XKB_KEY_Escape, VK_ESCAPE},
    {XKB_KEY_Home, VK_HOME},
    {XKB_KEY_Left, VK_LEFT},
    {XKB_KEY_Up, VK_UP},
    {XKB_KEY_Right, VK_RIGHT},
    {XKB_KEY_Down, VK_DOWN},
    {XKB_KEY_Prior, VK_PRIOR},
    {XKB_KEY_Next, VK_NEXT},
    {XKB_KEY_End, VK_END},
    {XKB_KEY_Print, VK_SNAPSHOT},
    {XKB_KEY_Sys_Req, VK_SNAPSHOT},
    {XKB_KEY_Insert, VK_INSERT},
    {XKB_KEY_Delete, VK_DELETE},
    {XKB_KEY_Help, VK_HELP},
    {XKB_KEY_Menu, VK_APPS},
    {XKB_KEY_Num_Lock, VK_NUMLOCK},
    {XKB_KEY_Shift_L, VK_SHIFT},
    {XKB_KEY_Shift_R, VK_SHIFT},
    {XKB_KEY_Control_L, VK_CONTROL},
    {XKB_KEY_Control_R, VK_CONTROL},
    {XKB_KEY_Caps_Lock, VK_CAPITAL},
    {XKB_KEY_Alt_L, VK_MENU},
    {XKB_KEY_Alt_R, VK_MENU},
    {XKB_KEY_Meta_L, VK_MENU},
    {XKB_KEY_Meta_R, VK_MENU},
    {XKB_KEY_Super_L, VK_LWIN},
    {XKB_KEY_Super_R, VK_LWIN},
    {XKB_KEY_space, VK_SPACE},
    {XKB_KEY_nobreakspace, VK_SPACE},
    {XKB_KEY_semicolon, VK_OEM_1},
    {XKB_KEY_equal, VK_OEM_PLUS},
    {XKB_KEY_plus, VK_OEM_PLUS},
    {XKB_KEY_comma, VK_OEM_COMMA},
    {XKB_KEY_minus, VK_OEM_MINUS},
    {XKB_KEY_period, VK_OEM_PERIOD},
    {XKB_KEY_slash, VK_OEM_2},
    {XKB_KEY_grave, VK_OEM_3},
    {XKB_KEY_bracketleft, VK_OEM_4},
    {XKB_KEY_backslash, VK_OEM_5},
    {XKB_KEY_bracketright, VK_OEM_6},
    {XKB_KEY_apostrophe, VK_OEM_7},
    {XKB_KEY_less, VK_OEM_102},
};

constexpr Pair keypad_keys[] = {
    {XKB_KEY_KP_Space, VK_SPACE},       {XKB_KEY_KP_Tab, VK_TAB},
    {XKB_KEY_KP_Enter, VK_RETURN},      {XKB_KEY_KP_Home, VK_HOME},
    {XKB_KEY_KP_Left, VK_LEFT},         {XKB_KEY_KP_Up, VK_UP},
    {XKB_KEY_KP_Right, VK_RIGHT},       {XKB_KEY_KP_Down, VK_DOWN},
    {XKB_KEY_KP_Prior, VK_PRIOR},       {XKB_KEY_KP_Next, VK_NEXT},
    {XKB_KEY_KP_End, VK_END},           {XKB_KEY_KP_Begin, VK_CLEAR},
    {XKB_KEY_KP_Insert, VK_INSERT},     {XKB_KEY_KP_Delete, VK_DELETE},
    {XKB_KEY_KP_Multiply, VK_MULTIPLY}, {XKB_KEY_KP_Add, VK_ADD},
    {XKB_KEY_KP_Subtract, VK_SUBTRACT}, {XKB_KEY_KP_Decimal, VK_DECIMAL},
    {XKB_KEY_KP_Separator, VK_DECIMAL}, {XKB_KEY_KP_Divide, VK_DIVIDE},
};

// From Escape on, which has scan code 1; 0 for those that have a name on every keyboard.
constexpr std::uint8_t us_keys[] = {
    0,   0,        '1',          '2',           '3',      '4',          '5',
    '6', '7',      '8',          '9',           '0',      VK_OEM_MINUS, VK_OEM_PLUS,
    0,   0,        'Q',          'W',           'E',      'R',          'T',
    'Y', 'U',      'I',          'O',           'P',      VK_OEM_4,     VK_OEM_6,
    0,   0,        'A',          'S',           'D',      'F',          'G',
    'H', 'J',      'K',          'L',           VK_OEM_1, VK_OEM_7,     VK_OEM_3,
    0,   VK_OEM_5, 'Z',          'X',           'C',      'V',          'B',
    'N', 'M',      VK_OEM_COMMA, VK_OEM_PERIOD, VK_OEM_2,
};

}  // namespace

std::int32_t virtual_key(std::uint32_t keysym) {
    if (keysym >= XKB_KEY_a && keysym <= XKB_KEY_z)
        return static_cast<std::int32_t>(keysym - XKB_KEY_a + 'A');
    if ((keysym >= XKB_KEY_A && keysym <= XKB_KEY_Z) ||
        (keysym >= XKB_KEY_0 && keysym <= XKB_KEY_9))
        return static_cast<std::int32_t>(keysym);
    if (keysym >= XKB_KEY_F1 && keysym <= XKB_KEY_F24)
        return VK_F1 + static_cast<std::int32_t>(keysym - XKB_KEY_F1);
    for (const Pair& pair : named_keys) {
        if (pair.keysym == keysym) return pair.key;
    }
    return 0;
}

std::int32_t keypad_key(std::uint32_t keysym) {
    if (keysym >= XKB_KEY_KP_0 && keysym <= XKB_KEY_KP_9)
        return VK_NUMPAD0 + static_cast<std::int32_t>(keysym - XKB_KEY_KP_0);
    for (const Pair& pair : keypad_keys) {
        if (pair.keysym == keysym) return pair.key;
    }
    return 0;
}

std::int32_t key_of_scan(std::int32_t scan) {
    if (scan < 0 || scan >= static_cast<std::int32_t>(sizeof us_keys)) return 0;
    return us_keys[scan];
}

}  // namespace tarn::x11
