#include "platform/x11/keyboard.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>
#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include "platform/display/keys.h"
#include "platform/x11/keys.h"
#include "platform/x11/xkb_protocol.h"

namespace tarn::x11 {
namespace {

using namespace tarn::platform;

std::uint32_t group_of(std::uint16_t state) {
    return (state >> 13) & 3;
}

// Texts are UTF-8 whatever the program's locale: a table of another encoding serves nobody.
const char* compose_locale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value) continue;
        const char* encoding = std::strchr(value, '.');
        bool utf8 =
            encoding && (strcasecmp(encoding, ".UTF-8") == 0 || strcasecmp(encoding, ".UTF8") == 0);
        return utf8 ? value : "en_US.UTF-8";
    }
    return "en_US.UTF-8";
}

std::uint32_t modifier_of(std::int32_t key, std::uint32_t keysym) {
    switch (key) {
        case VK_SHIFT:
            return mod_shift;
        case VK_CONTROL:
            return mod_control;
        case VK_MENU:
            return mod_alt;
        case VK_LWIN:
            return mod_super;
        default:
            return keysym == XKB_KEY_ISO_Level3_Shift ? mod_altgr : 0u;
    }
}

}  // namespace

void Keyboard::start(const Connection& connection) {
    context_ = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (!context_) return;
    xkb_context_set_log_level(context_, XKB_LOG_LEVEL_CRITICAL);
    if (xkb_x11_setup_xkb_extension(
            connection.xcb, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &first_event_, nullptr)) {
        device_ = xkb_x11_get_core_keyboard_device_id(connection.xcb);
        if (device_ < 0 || !select_events(connection)) first_event_ = 0;
    } else {
        first_event_ = 0;
    }
}

// The table takes its time, so it waits for the first key that can begin a sequence.
void Keyboard::load_compose() {
    compose_tried_ = true;
    xkb_compose_table* table =
        xkb_compose_table_new_from_locale(context_, compose_locale(), XKB_COMPOSE_COMPILE_NO_FLAGS);
    if (!table) return;
    compose_ = xkb_compose_state_new(table, XKB_COMPOSE_STATE_NO_FLAGS);
    xkb_compose_table_unref(table);
}

// Changes of the key map, and key repeats without releases between them.
bool Keyboard::select_events(const Connection& connection) {
    constexpr std::uint16_t events =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                    XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_ACTIONS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    auto device = static_cast<xcb_xkb_device_spec_t>(device_);
    xcb_xkb_select_events(connection.xcb, device, events, 0, events, parts, parts, nullptr);
    Reply<xcb_xkb_per_client_flags_reply_t> reply(xcb_xkb_per_client_flags_reply(
        connection.xcb,
        xcb_xkb_per_client_flags(connection.xcb, device,
                                 XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                 XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0),
        nullptr));
    return reply != nullptr;
}

void Keyboard::read_keymap(const Connection& connection) {
    xkb_keymap* keymap = first_event_
                             ? xkb_x11_keymap_new_from_device(context_, connection.xcb, device_,
                                                              XKB_KEYMAP_COMPILE_NO_FLAGS)
                             : nullptr;
    if (!keymap && !keymap_)
        keymap = xkb_keymap_new_from_names(context_, nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!keymap) return;
    xkb_state* state = xkb_state_new(keymap);
    if (!state) {
        xkb_keymap_unref(keymap);
        return;
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    keymap_ = keymap;
    state_ = state;
}

bool Keyboard::handle(const xcb_generic_event_t& event) {
    if (!first_event_ || (event.response_type & 0x7F) != first_event_) return false;
    auto kind = event.pad0;  // the extension's own number of the event
    if (kind == XCB_XKB_NEW_KEYBOARD_NOTIFY || kind == XCB_XKB_MAP_NOTIFY) changed_ = true;
    return true;
}

void Keyboard::reset() {
    down_.reset();
    if (compose_) xkb_compose_state_reset(compose_);
}

std::uint32_t Keyboard::modifiers(std::uint16_t state) {
    constexpr struct {
        std::uint16_t mask;
        std::uint32_t modifier;
    } table[] = {
        {XCB_MOD_MASK_SHIFT, mod_shift}, {XCB_MOD_MASK_CONTROL, mod_control},
        {XCB_MOD_MASK_1, mod_alt},       {XCB_MOD_MASK_5, mod_altgr},
        {XCB_MOD_MASK_4, mod_super},     {XCB_MOD_MASK_LOCK, mod_caps},
        {XCB_MOD_MASK_2, mod_num},       {XCB_BUTTON_MASK_1, mod_left},
        {XCB_BUTTON_MASK_2, mod_middle}, {XCB_BUTTON_MASK_3, mod_right},
    };
    std::uint32_t result = 0;
    for (auto& entry : table) {
        if (state & entry.mask) result |= entry.modifier;
    }
    return result;
}

// By the key's first level in one group; digits count also where they are shifted, as on French
// keyboards.
std::int32_t Keyboard::plain_key(xcb_keycode_t code, std::uint32_t group) const {
    const xkb_keysym_t* syms = nullptr;
    xkb_keysym_t plain = 0, shifted = 0;
    if (xkb_keymap_key_get_syms_by_level(keymap_, code, group, 0, &syms) == 1) plain = syms[0];
    if (xkb_keymap_key_get_syms_by_level(keymap_, code, group, 1, &syms) == 1) shifted = syms[0];
    std::int32_t key = virtual_key(plain);
    bool letter = key >= 'A' && key <= 'Z';
    bool digit = shifted >= XKB_KEY_0 && shifted <= XKB_KEY_9;
    return digit && !letter ? static_cast<std::int32_t>(shifted) : key;
}

// What a shortcut is compared with: of the group in use where it has Latin letters, of another
// group or a US keyboard where not.
std::int32_t Keyboard::key_code(xcb_keycode_t code, std::uint32_t group,
                                std::uint32_t keysym) const {
    if (std::int32_t key = keypad_key(keysym)) return key;
    xkb_layout_index_t groups = xkb_keymap_num_layouts_for_key(keymap_, code);
    if (groups == 0) return 0;
    if (group >= groups) group = groups - 1;
    if (std::int32_t key = plain_key(code, group)) return key;
    for (xkb_layout_index_t other = 0; other < groups; ++other) {
        std::int32_t key = plain_key(code, other);
        if ((key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9')) return key;
    }
    return key_of_scan(code - 8);
}

// Feeds dead keys and compose sequences. True: they decide what is typed, `text` or nothing.
bool Keyboard::compose(std::uint32_t keysym, std::string& text) {
    bool begins = (keysym >= XKB_KEY_dead_grave && keysym <= XKB_KEY_dead_greek) ||
                  keysym == XKB_KEY_Multi_key;
    if (begins && !compose_tried_) load_compose();
    if (!compose_ || keysym == XKB_KEY_NoSymbol ||
        xkb_compose_state_feed(compose_, keysym) == XKB_COMPOSE_FEED_IGNORED)
        return false;
    switch (xkb_compose_state_get_status(compose_)) {
        case XKB_COMPOSE_COMPOSING:
            return true;
        case XKB_COMPOSE_COMPOSED: {
            char buffer[64];
            int length = xkb_compose_state_get_utf8(compose_, buffer, sizeof buffer);
            if (length > 0 && length < static_cast<int>(sizeof buffer)) text.assign(buffer);
            xkb_compose_state_reset(compose_);
            return true;
        }
        case XKB_COMPOSE_CANCELLED:
            xkb_compose_state_reset(compose_);
            return true;
        default:
            return false;
    }
}

void Keyboard::translate(const Connection& connection, const xcb_key_press_event_t& key, bool down,
                         Event& event) {
    event.scan = key.detail - 8;
    event.modifiers = modifiers(key.state);
    event.repeat = down && down_[key.detail];
    down_[key.detail] = down;
    if (changed_ && context_) read_keymap(connection);
    changed_ = false;
    if (!state_) return;
    // Control is left out: what it makes of keys isn't the keyboard's business here.
    std::uint32_t group = group_of(key.state);
    xkb_state_update_mask(state_, key.state & 0xFF & ~XCB_MOD_MASK_CONTROL, 0, 0, 0, 0, group);
    xkb_keysym_t keysym = xkb_state_key_get_one_sym(state_, key.detail);
    event.key = key_code(key.detail, group, keysym);
    std::uint32_t modifier = modifier_of(event.key, keysym);
    event.modifiers = down ? event.modifiers | modifier : event.modifiers & ~modifier;
    if (!down) return;
    if (compose(keysym, event.text)) return;
    if (event.modifiers & mod_super) return;
    event.text = control_text(event.key, event.modifiers);
    bool shortcut = (event.modifiers & mod_control) != 0 && (event.modifiers & mod_altgr) == 0;
    if (!event.text.empty() || shortcut) return;
    char buffer[64];
    int length = xkb_state_key_get_utf8(state_, key.detail, buffer, sizeof buffer);
    if (length <= 0 || length >= static_cast<int>(sizeof buffer)) return;
    auto first = static_cast<unsigned char>(buffer[0]);
    if (first >= ' ' && first != 0x7F) event.text.assign(buffer);
}

}  // namespace tarn::x11
