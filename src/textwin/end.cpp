// The end of a program that wrote to windows: its output stays on the screen until the user has
// closed every window.
#include "frame/end.h"

#include "platform/dialogs/dialogs.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

// Windows inside format windows are theirs to close.
bool any_left() {
    for (const window_info* window = state().windows; window != nullptr; window = window->next)
        if (!window->embedded) return true;
    return false;
}

// On a display that nobody watches the windows close as if somebody had done it.
void close_all() {
    yield_program_control(1);
    while (any_left()) {
        const window_info* window = state().windows;
        while (window->embedded) window = window->next;
        const HWND hwnd = window->hwnd;
        SendMessageA(hwnd, WM_CLOSE, 0, 0);
        if (find_window(hwnd) != nullptr) DestroyWindow(hwnd);
    }
}

void winexit() {
    const unmasked_yield all_messages;
    if (pump_hooks().end != nullptr) pump_hooks().end();
    while (any_left() && !desktop_lost()) {
        show_all_output();
        yield_program_control(1);
        if (!can_ask()) close_all();
        if (any_left()) WaitMessage();
    }
}

}  // namespace

void enable_winexit() {
    if (state().win_exit_enabled) return;
    state().win_exit_enabled = true;
    frame::add_exit_routine(winexit);
}

}  // namespace tarn::textwin
