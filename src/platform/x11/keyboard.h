// The keyboard by xkbcommon: what a key is called and what it types, with dead keys and compose.
#pragma once

#include <bitset>
#include <cstdint>
#include <xcb/xcb.h>

#include "platform/display/display.h"
#include "platform/x11/connection.h"

struct xkb_context;
struct xkb_keymap;
struct xkb_state;
struct xkb_compose_table;
struct xkb_compose_state;

namespace tarn::x11 {

class Keyboard {
  public:
    // The keyboard itself is read when the first key is struck. Without the server's own
    // description a US one is taken.
    void start(const Connection& connection);
    // The keyboard may have changed (another layout list, a key map program). False: the event
    // isn't the keyboard's.
    bool handle(const xcb_generic_event_t& event);
    // Fills in key, scan, text, modifiers and repeat.
    void translate(const Connection& connection, const xcb_key_press_event_t& key, bool down,
                   platform::Event& event);
    // No key is down any more, and no dead key waits.
    void reset();

    // The Modifier bits of the state that comes with an event.
    static std::uint32_t modifiers(std::uint16_t state);

  private:
    bool select_events(const Connection& connection);
    void read_keymap(const Connection& connection);
    std::int32_t key_code(xcb_keycode_t code, std::uint32_t group, std::uint32_t keysym) const;
    std::int32_t plain_key(xcb_keycode_t code, std::uint32_t group) const;
    bool compose(std::uint32_t keysym, std::string& text);
    void load_compose();

    xkb_context* context_ = nullptr;
    xkb_keymap* keymap_ = nullptr;
    xkb_state* state_ = nullptr;
    xkb_compose_state* compose_ = nullptr;
    std::int32_t device_ = -1;
    std::uint8_t first_event_ = 0;  // 0: the server has no such extension
    bool changed_ = true;           // the key map is to be read
    bool compose_tried_ = false;
    std::bitset<256> down_;
};

}  // namespace tarn::x11
