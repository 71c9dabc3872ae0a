// Forms for tests: opens windows on the memory display and works their controls by messages.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <string>

#include "platform/controls/controls.h"
#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/builder.h"
#include "winio/records.h"

namespace tarn::winio::test {

inline word w(const void* pointer) {
    return reinterpret_cast<word>(pointer);
}
inline word w(call_back function) {
    return reinterpret_cast<word>(function);
}

// One call of winio; `types` as a compiler would tell them.
inline std::int32_t form(const char* format, const char* types,
                         std::initializer_list<word> words = {}) {
    setenv("TARN_DISPLAY", "memory", 1);
    setenv("TARN_SCREEN", "1280x1024,1600x900+1280+100", 1);  // two monitors
    return internal_winio(format, types, words.begin(), static_cast<std::int32_t>(words.size()));
}

inline void settle() {
    for (int i = 0; i < 4; ++i) textwin::yield_program_control(1);
}

inline fancy_window* newest() {
    for (fancy_window* window = records().windows; window; window = window->next)
        if (window->flags.open) return window;
    return nullptr;
}

inline std::int32_t open_windows() {
    std::int32_t count = 0;
    for (fancy_window* window = records().windows; window; window = window->next)
        count += window->flags.open;
    return count;
}

inline window_control* nth(fancy_window* window, control_type type, int which = 0) {
    for (window_control* control = window ? window->first_control : nullptr; control;
         control = control->next)
        if (control->type == type && which-- == 0) return control;
    return nullptr;
}

inline void click(window_control* control) {
    platform::SetFocus(control->hwnd);
    platform::SendMessageA(control->hwnd, platform::BM_CLICK, 0, 0);
    settle();
}

inline std::string field(window_control* control) {
    return platform::window_text(control->hwnd);
}

// A window doesn't serve its buttons while a call-back of its own runs: it finds the click later.
inline void press_later(window_control* control) {
    platform::PostMessageA(control->hwnd, platform::BM_CLICK, 0, 0);
}

// Types over what the field holds.
inline void type(window_control* control, const char* text) {
    platform::SetFocus(control->hwnd);
    platform::SendMessageA(control->hwnd, platform::EM_SETSEL, 0, -1);
    if (!*text) platform::SendMessageA(control->hwnd, platform::WM_CHAR, 8, 0);
    for (; *text; ++text)
        platform::SendMessageA(control->hwnd, platform::WM_CHAR,
                               static_cast<platform::WPARAM>(*text), 0);
    settle();
}

// At the end of a test, when the variables of its forms are gone: nothing is stored any more.
inline void close_all() {
    for (int i = 0; i < 20; ++i) {
        fancy_window* window = newest();
        if (!window) break;
        window->flags.ready = false;
        window->control_var = &window->own_control_word;
        platform::DestroyWindow(window->hwnd);
    }
    settle();
}

}  // namespace tarn::winio::test
