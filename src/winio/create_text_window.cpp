// %cw: the text window in a control's place, and what the program writes to it with: a Fortran
// unit, a C stream, or whatever goes to the default window.
#include <cstdio>

#include "fio/native/services.h"
#include "frame/hooks.h"
#include "tarn/text_window.h"
#include "textwin/textwin.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

// A stream's cookie is the handle itself: what is written after the window has gone is dropped.
ssize_t write_to_window(void* cookie, const char* bytes, std::size_t count) {
    textwin::win_coua(to_hwnd(reinterpret_cast<std::intptr_t>(cookie)), bytes, count);
    return static_cast<ssize_t>(count);
}

std::FILE* stream_on(HWND hwnd) {
    cookie_io_functions_t functions{};
    functions.write = write_to_window;
    std::FILE* stream =
        fopencookie(reinterpret_cast<void*>(static_cast<std::intptr_t>(hwnd)), "w", functions);
    // Each print shows at once, as on a terminal.
    if (stream) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

void connect(const window_control* control) {
    HWND hwnd = control->hwnd;
    if (control->data2 > 0) {
        fio::native::open_to_window(static_cast<std::int32_t>(control->data2),
                                    reinterpret_cast<void*>(static_cast<std::intptr_t>(hwnd)), 0);
    } else if (auto** stream = reinterpret_cast<std::FILE**>(control->data)) {
        *stream = stream_on(hwnd);
    } else {
        __set_default_window(static_cast<std::int32_t>(hwnd));
    }
}

// Text windows know nothing of format windows, nor of what encoding those take.
void install_text_windows() {
    textwin::pump_hooks().control_of_unit = hwnd_from_fortran_unit;
    textwin::text_is_utf8 = utf8_enabled;
}
TARN_PREAMBLE(install_text_windows)

}  // namespace

void create_text_window(fancy_window* window, window_control* control) {
    window_watch watch(window);
    HFONT before{};
    if (control->flags.local_font) before = textwin::exchange_default_font(control->font);
    if (control->flags.has_border) textwin::set_one_shot_style(WS_BORDER);
    HWND hwnd = textwin::create_embeded_window_x(
        window->hwnd, control->flags.h_bar, control->flags.v_bar, control->left, control->top,
        control->right - control->left + 1, control->bottom - control->top + 1,
        get_brush(control->background), control->background, control->text_colour,
        control->popup_menu);
    if (control->flags.local_font) textwin::exchange_default_font(before);
    if (watch.gone()) return;  // making it serves messages
    control->hwnd = hwnd;
    if (hwnd) connect(control);
}

}  // namespace tarn::winio
