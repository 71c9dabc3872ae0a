#include "platform/script/input.h"

#include <cstdlib>

#include "platform/base/text.h"
#include "platform/display/display.h"
#include "platform/display/keys.h"
#include "platform/script/targets.h"
#include "platform/user/user.h"

namespace tarn::platform {
namespace {

struct Hands {
    std::uint32_t held = 0;  // Modifier bits
    DWORD ahead = 0;         // milliseconds
};
Hands& hands() {
    static Hands all;
    return all;
}

Event make(Event::Kind kind, HWND top) {
    Event event;
    event.kind = kind;
    event.window = static_cast<TopLevel>(top);
    event.modifiers = hands().held;
    event.scale = display().scale();
    event.time = GetTickCount() + hands().ahead;
    return event;
}

Event pointer_event(Event::Kind kind, HWND top, POINT screen) {
    Event event = make(kind, top);
    POINT origin = surface_origin(top);
    event.screen = screen;
    event.point = {screen.x - origin.x, screen.y - origin.y};
    return event;
}

std::uint32_t modifier_of(MouseButton button) {
    return button == MouseButton::left     ? mod_left
           : button == MouseButton::middle ? mod_middle
                                           : mod_right;
}

void press_button(HWND top, POINT screen, MouseButton button) {
    hands().held |= modifier_of(button);
    Event event = pointer_event(Event::Kind::button_down, top, screen);
    event.button = static_cast<std::int32_t>(button);
    inject_event(event);
}

void release_button(HWND top, POINT screen, MouseButton button) {
    hands().held &= ~modifier_of(button);
    Event event = pointer_event(Event::Kind::button_up, top, screen);
    event.button = static_cast<std::int32_t>(button);
    inject_event(event);
}

void key_event(HWND top, const Key& key, bool down) {
    Event event = make(down ? Event::Kind::key_down : Event::Kind::key_up, top);
    event.key = key.code;
    event.modifiers |= key.modifiers;
    if (down) {
        event.text = control_text(key.code, event.modifiers);
        bool shortcut = (event.modifiers & (mod_control | mod_super)) != 0 &&
                        (event.modifiers & mod_altgr) == 0;
        if (event.text.empty() && key.character != 0 && !shortcut)
            append_utf8(event.text, key.character);
    }
    inject_event(event);
}

constexpr struct {
    std::uint32_t bit;
    std::int32_t code;
} modifier_keys[] = {{mod_control, VK_CONTROL},
                     {mod_alt, VK_MENU},
                     {mod_altgr, 0},
                     {mod_super, VK_LWIN},
                     {mod_shift, VK_SHIFT}};

void change_modifiers(HWND top, std::uint32_t bits, bool down) {
    for (auto& each : modifier_keys) {
        if ((bits & each.bit) == 0) continue;
        hands().held = down ? hands().held | each.bit : hands().held & ~each.bit;
        Key key;
        key.code = each.code;
        key_event(top, key, down);
    }
}

// Two lines that click are two clicks, however quickly they follow each other.
constexpr DWORD longer_than_a_double_click = 1000;

}  // namespace

void move_pointer(HWND top, POINT screen) {
    inject_event(pointer_event(Event::Kind::pointer_move, top, screen));
}

void click(HWND top, POINT screen, MouseButton button, std::int32_t times) {
    hands().ahead += longer_than_a_double_click;
    move_pointer(top, screen);
    for (std::int32_t i = 0; i < times; ++i) {
        press_button(top, screen, button);
        release_button(top, screen, button);
    }
}

void begin_hold(HWND top, POINT screen) {
    hands().ahead += longer_than_a_double_click;
    move_pointer(top, screen);
    press_button(top, screen, MouseButton::left);
}

void end_hold(HWND top, POINT screen) {
    release_button(top, screen, MouseButton::left);
}

void drag(HWND top, POINT from, POINT to) {
    constexpr std::int32_t steps = 4;
    hands().ahead += longer_than_a_double_click;
    move_pointer(top, from);
    press_button(top, from, MouseButton::left);
    for (std::int32_t i = 1; i <= steps; ++i) {
        move_pointer(top,
                     {from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
    }
    release_button(top, to, MouseButton::left);
}

void drop_files(HWND top, POINT screen, const std::vector<std::string>& paths) {
    Event event = pointer_event(Event::Kind::drop_files, top, screen);
    for (const std::string& path : paths) event.text += path + "\n";
    inject_event(event);
}

void turn_wheel(HWND top, POINT screen, std::int32_t notches) {
    move_pointer(top, screen);
    for (std::int32_t i = std::abs(notches); i > 0; --i) {
        Event event = pointer_event(Event::Kind::wheel, top, screen);
        event.delta = notches > 0 ? 120 : -120;
        inject_event(event);
    }
}

void press_key(HWND top, const Key& key) {
    change_modifiers(top, key.modifiers & ~hands().held, true);
    if (!key.is_modifier) key_event(top, key, true);
}

void release_key(HWND top, const Key& key) {
    if (!key.is_modifier) key_event(top, key, false);
    change_modifiers(top, key.modifiers & hands().held, false);
}

void strike_key(HWND top, const Key& key) {
    std::uint32_t fresh = key.modifiers & ~hands().held;
    change_modifiers(top, fresh, true);
    if (!key.is_modifier) {
        Key held = key;
        // Shift that a line before pressed makes a capital letter.
        if ((hands().held & mod_shift) != 0 && key.character >= U'a' && key.character <= U'z')
            held.character -= 32;
        key_event(top, held, true);
        key_event(top, held, false);
    }
    change_modifiers(top, fresh, false);
}

void type_text(HWND top, std::string_view utf8) {
    for (std::size_t at = 0; at < utf8.size();) {
        char32_t character = next_code_point(utf8, at);
        Key key;
        if (character == U'\n' || character == U'\t') {
            key.code = character == U'\n' ? VK_RETURN : VK_TAB;
        } else {
            key = key_of_character(character);
        }
        if (key.code != 0) {
            strike_key(top, key);
            continue;
        }
        Event event = make(Event::Kind::text, top);
        append_utf8(event.text, character);
        inject_event(event);
    }
}

}  // namespace tarn::platform
