// Fortran units on text windows: what the rooms of input and output call.
#include <cstring>

#include "fio/file/file.h"
#include "fio/native/hooks.h"
#include "frame/hooks.h"
#include "textwin/input.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

namespace {

// A unit's window is told by its handle. For a window that is gone the text is lost, as for a
// handle that never was one.
HWND handle_of(void* window) {
    if (window == fio::console_window) return get_default_window();
    return HWND{static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(window))};
}

void write_unit(void* window, const char* bytes, std::size_t count) {
    if (window_info* found = find_window(handle_of(window))) write_bytes(*found, bytes, count);
}

// One line at a time; the reader asks for at least a buffer of text.
std::ptrdiff_t read_unit(void* window, char* bytes, std::size_t count) {
    if (find_window(handle_of(window)) == nullptr) return 0;
    char line[257];
    win_getline(handle_of(window), line);
    std::size_t length = std::strlen(line);
    if (length + 1 > count) length = count - 1;
    std::memcpy(bytes, line, length);
    bytes[length] = '\n';
    return static_cast<std::ptrdiff_t>(length + 1);
}

void write_native(void* window, const char* text, std::size_t count) {
    win_coua_f();
    win_coua(handle_of(window), text, count);
}

void clear_native(void* window) {
    if (window_info* found = find_window(handle_of(window))) clear_window(*found);
}

void install_units() {
    fio::window_stream() = {write_unit, read_unit, live_while_writing};
    frame::hooks().console_to_window = fio::console_to_window;
    fio::native::hooks().window_write = write_native;
    fio::native::hooks().window_clear = clear_native;
}
TARN_PREAMBLE(install_units)

}  // namespace

}  // namespace tarn::textwin
