// Reading keys and lines from a text window. There is no type-ahead beyond one character.
#include "textwin/input.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/end.h"
#include "platform/base/text.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

void show_caret(window_info& window, bool on) {
    if (on && !window.caret_exists && window.has_focus) {
        const text_descriptor* font =
            window.last != nullptr ? window.last->end : window.descriptors;
        CreateCaret(window.hwnd, 2, font->height);
        window.caret_exists = true;
        place_caret(window);
    } else if (!on && window.caret_exists) {
        DestroyCaret();
        window.caret_exists = false;
    }
}

// The window as it is now: one that went away while the program waited ends the program.
window_info& still_there(HWND hwnd) {
    window_info* window = find_window(hwnd);
    if (window == nullptr) frame::exit_program(0);
    return *window;
}

// An open working line must exist for the caret to stand in.
void start_input(window_info& window) {
    if (window.input_started) return;
    window.input_started = true;
    write_bytes(window, " ", 1);
    take_back_character(window);
}

bool has_input(const window_info& window) {
    return window.pending_length != 0 || window.event_waiting;
}

// A control of the active window that waits for keys gets them: the button that led here has the
// focus.
void take_keyboard(const window_info& window) {
    if (!window.embedded || GetFocus() == window.hwnd) return;
    HWND top = window.hwnd;
    while (const HWND parent = GetParent(top)) top = parent;
    if (GetActiveWindow() == top && IsWindowEnabled(top)) SetFocus(window.hwnd);
}

// What is in the queue may be what is waited for: only then is there a wait.
void wait_for_key(HWND hwnd) {
    if (!has_input(still_there(hwnd))) take_keyboard(still_there(hwnd));
    while (!has_input(still_there(hwnd))) {
        window_info& window = still_there(hwnd);
        window.waiting = true;
        show_caret(window, true);
        yield_program_control(1);
        if (!has_input(still_there(hwnd))) WaitMessage();
    }
}

}  // namespace

void key_typed(window_info& window, UINT message, WPARAM wparam) {
    if (window.pending_length != 0 || wparam == 0) return;
    const char byte = wparam == '\r' ? '\n' : static_cast<char>(wparam);
    std::string typed(1, byte);
    if (message == WM_UNICHAR) {
        typed.clear();
        append_utf8(typed, static_cast<char32_t>(wparam));
    } else if (window.utf8) {
        typed = utf8_from_page(typed);
    }
    // A window of the code page has no byte for what isn't in it.
    if (typed.size() > (window.utf8 ? sizeof window.pending : 1)) return;
    std::memcpy(window.pending, typed.data(), typed.size());
    window.pending_length = static_cast<std::uint8_t>(typed.size());
    state().key_taken = window.waiting;
}

std::int32_t win_getchar(HWND hwnd) {
    start_input(still_there(hwnd));
    show_all_output();
    wait_for_key(hwnd);
    window_info& window = still_there(hwnd);
    window.waiting = false;
    show_caret(window, false);
    if (window.event_waiting) {
        window.event_waiting = false;
        return 0;
    }
    const auto character = static_cast<unsigned char>(window.pending[0]);
    --window.pending_length;
    std::memmove(window.pending, window.pending + 1, window.pending_length);
    return character;
}

void win_getline(HWND hwnd, char* buffer) {
    constexpr std::size_t room = 256;
    std::size_t length = 0;
    bool full = false;
    still_there(hwnd).pending_length = 0;
    while (true) {
        const std::int32_t character = win_getchar(hwnd);
        window_info& window = still_there(hwnd);
        if (character == 0) {
            const std::int32_t written = std::snprintf(buffer + length, room - length, "%cmenu %d",
                                                       window.escape, window.last_command);
            (void)written;  // an event behind a full line is cut with it
            return;
        }
        const char byte = static_cast<char>(character);
        if (character == '\n') {
            write_bytes(window, "\n", 1);
            buffer[length] = 0;
            return;
        }
        if (character == 8) {
            if (length == 0) continue;
            length = last_character(window, buffer, length);
            full = false;
            take_back_character(window);
            continue;
        }
        full = full || length + character_length(window, byte) > room - 1;
        if (full) continue;
        buffer[length++] = byte;
        write_bytes(window, &byte, 1);
    }
}

}  // namespace tarn::textwin
