// The keys that a program reads by itself: a ring that the pump fills.
#include "textwin/textwin.h"
#include "winio/callbacks.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

struct key_ring {
    static constexpr std::int32_t capacity = 200;
    std::uint16_t keys[capacity];
    std::int32_t read, write, count;
};

key_ring& ring() {
    static constinit key_ring state{};
    return state;
}

constexpr std::int32_t special = 0x100, with_control = 0x200;
constexpr std::int32_t first_special_scan = 59;

bool down(std::int32_t key) {
    return GetKeyState(key) < 0;
}

// A key that types no character: its scan code, moved by the modifiers.
std::int32_t special_key(std::int32_t scan) {
    if (scan == 87) return 389;  // F11
    if (scan == 88) return 390;  // F12
    if (down(VK_CONTROL)) return scan | 0x400;
    if (down(VK_SHIFT)) return (scan + 25) | special;
    return scan | special;
}

}  // namespace

void put_char(std::int32_t key) {
    monitor_list& monitors = procedures().keyboard;
    if (!monitors.empty()) {
        callbacks().context.keyboard_key = key;
        monitors.run();
        return;
    }
    key_ring& queue = ring();
    if (key == 0 || queue.count == key_ring::capacity) return;
    queue.keys[queue.write] = static_cast<std::uint16_t>(key);
    queue.write = (queue.write + 1) % key_ring::capacity;
    ++queue.count;
}

std::int32_t get_char(bool wait) {
    key_ring& queue = ring();
    if (queue.count == 0) textwin::yield_program_control(1);
    while (wait && queue.count == 0) {
        const textwin::unmasked_yield all_messages;
        WaitMessage();
        textwin::yield_program_control(1);
    }
    if (queue.count == 0) return 0;
    std::int32_t key = queue.keys[queue.read];
    queue.read = (queue.read + 1) % key_ring::capacity;
    --queue.count;
    return key;
}

std::int32_t keys_waiting() {
    return ring().count;
}

void flush_keys() {
    ring() = {};
}

void keyboard_filter(const MSG& message) {
    if (message.message == WM_CHAR) {
        std::int32_t key =
            static_cast<std::int32_t>(message.wParam) | (down(VK_CONTROL) ? with_control : 0);
        if (key >= 1 && key <= 767) put_char(key);
        return;
    }
    auto scan = static_cast<std::int32_t>(message.lParam >> 16 & 0xFF);
    constexpr std::int32_t f10_scan = 68;
    bool pressed =
        message.message == WM_KEYDOWN || (message.message == WM_SYSKEYDOWN && scan == f10_scan);
    if (!pressed || scan < first_special_scan) return;
    WPARAM key = message.wParam;
    if ((key >= 'A' && key <= 'Z') || (key >= 96 && key <= 111)) return;
    put_char(special_key(scan));
}

}  // namespace tarn::winio
