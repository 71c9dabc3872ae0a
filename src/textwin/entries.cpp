// Link-name entries of text windows: handles come and go as numbers.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <utility>

#include "frame/link_name.h"
#include "platform/dialogs/program_resources.h"
#include "tarn/text_window.h"
#include "textwin/error_report.h"
#include "textwin/input.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

namespace {

constexpr std::int32_t version = 0x740306;

window_info* window_or_default(std::int32_t window) {
    return find_window(window != 0 ? HWND{window} : state().default_window);
}

void print_to(std::int32_t window, char* buffer, std::size_t room, const char* format,
              std::va_list arguments, const char* end) {
    const int wanted = std::vsnprintf(buffer, room, format, arguments);
    if (wanted < 0) return;
    const std::size_t length = std::min<std::size_t>(static_cast<std::size_t>(wanted), room - 1);
    win_coua(HWND{window}, buffer, length);
    if (*end != 0) win_coua(HWND{window}, end, std::strlen(end));
}

std::int32_t all_text(const window_info& window, char* buffer) {
    std::size_t size = 1;
    for (const window_line* line = window.first; line != nullptr; line = line->next) {
        const std::size_t length = std::strlen(line->text());
        if (buffer != nullptr) {
            std::memcpy(buffer + size - 1, line->text(), length);
            std::memcpy(buffer + size - 1 + length, "\r\n", 2);
        }
        size += length + 2;
    }
    if (buffer != nullptr) buffer[size - 1] = 0;
    return static_cast<std::int32_t>(size);
}

// At least 50 lines are kept.
std::int32_t floored(std::int32_t lines) {
    return lines < default_maximum_floor + 1 ? default_maximum_floor : lines;
}

void allow_clipping(window_info& window, bool on) {
    if (on == window.copy_on_menu) return;
    window.copy_on_menu = on;
    const platform::HMENU menu = platform::GetSystemMenu(window.hwnd, !on);
    if (!on) return;
    platform::AppendMenuA(menu, platform::MF_SEPARATOR, 0, nullptr);
    platform::AppendMenuA(menu, platform::MF_STRING, copy_command, "Copy to Cli&pboard");
}

HDC graphics_dc(window_info& window) {
    if (window.graphics_dc != 0) return window.graphics_dc;
    const HDC dc = platform::GetDC(window.hwnd);
    window.graphics_dc = platform::CreateCompatibleDC(dc);
    window.graphics_bitmap = platform::CreateCompatibleBitmap(dc, window.width, window.height);
    platform::ReleaseDC(window.hwnd, dc);
    window.saved_bitmap = platform::SelectObject(window.graphics_dc, window.graphics_bitmap);
    platform::FillRect(window.graphics_dc, {0, 0, window.width, window.height},
                       state().class_brush);
    return window.graphics_dc;
}

void add_callback(std::int32_t window, UINT message, message_callback function,
                  fortran_callback by_reference) {
    window_info* found = find_window(HWND{window});
    if (found == nullptr) return;
    auto* entry = static_cast<callback_entry*>(std::malloc(sizeof(callback_entry)));
    if (entry == nullptr) return;
    *entry = {found->callbacks, message, function, by_reference};
    found->callbacks = entry;
}

constexpr std::uint32_t icon_file = 0x10000, cursor_file = 0x20000;

std::uint32_t first_word(const unsigned char* bytes) {
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// A resource is named by a text, or by a number in the place of its address.
void no_resource(const char* kind, const char* name) {
    constexpr std::uintptr_t numbers = 0x10000;
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    const std::string shown = number < numbers ? std::to_string(number) : name;
    report_error((kind + (" resource " + shown) + " is not available").c_str(), true);
}

// False: there is no such window, or no such menu, which is said.
bool attach_menu(std::int32_t window, const char* resource) {
    if (find_window(HWND{window}) == nullptr) return false;
    const platform::HMENU menu = platform::LoadMenuA(resource);
    if (menu == 0) no_resource("Menu", resource);
    return menu != 0 && platform::SetMenu(HWND{window}, menu);
}

}  // namespace

}  // namespace tarn::textwin

using namespace tarn::textwin;
using tarn::platform::HBRUSH;
using tarn::platform::HMENU;
using tarn::platform::HWND;

extern "C" {

TARN_EXPORT std::int32_t __create_window(const char* title, std::int32_t x, std::int32_t y,
                                         std::int32_t width, std::int32_t height) {
    return create_window(title, x, y, width, height);
}
TARN_EXPORT std::int32_t __create_default_window() {
    return create_default_window();
}
TARN_EXPORT std::int32_t __create_embeded_window_x(std::int32_t parent, std::int32_t horizontal_bar,
                                                   std::int32_t vertical_bar, std::int32_t x,
                                                   std::int32_t y, std::int32_t width,
                                                   std::int32_t height, std::int32_t brush,
                                                   std::uint32_t background, std::uint32_t text,
                                                   std::int32_t popup) {
    return create_embeded_window_x(HWND{parent}, horizontal_bar != 0, vertical_bar != 0, x, y,
                                   width, height, HBRUSH{brush}, background, text, HMENU{popup});
}
TARN_EXPORT void __set_default_window(std::int32_t window) {
    state().default_window = HWND{window};
}
TARN_EXPORT void __clear_window(std::int32_t window) {
    if (window_info* found = window_or_default(window)) clear_window(*found);
}
TARN_EXPORT void __destroy_window(std::int32_t window) {
    destroy_text_window(HWND{window});
}

TARN_EXPORT void __win_coua(std::int32_t window, const char* bytes, std::int32_t count) {
    if (count > 0) win_coua(HWND{window}, bytes, static_cast<std::size_t>(count));
}
TARN_EXPORT void __win_coua_f() {
    win_coua_f();
}
TARN_EXPORT void __win_printf(std::int32_t window, const char* format, ...) {
    char buffer[300];
    std::va_list arguments;
    va_start(arguments, format);
    print_to(window, buffer, sizeof buffer, format, arguments, "");
    va_end(arguments);
}
TARN_EXPORT void __cw_printf(std::int32_t window, const char* format, ...) {
    char buffer[30000];
    std::va_list arguments;
    va_start(arguments, format);
    print_to(window, buffer, sizeof buffer, format, arguments, "\r\n");
    va_end(arguments);
}
TARN_EXPORT void __cw_write(std::int32_t unit, const char* text) {
    if (pump_hooks().control_of_unit == nullptr) return;
    const HWND window = pump_hooks().control_of_unit(unit);
    if (window == 0) return;
    win_coua(window, text, std::strlen(text));
    win_coua(window, "\r\n", 2);
}
TARN_EXPORT void __add_window_line(std::int32_t window, const char* text) {
    if (window_info* found = find_window(HWND{window}))
        add_window_line(*found, text, std::strlen(text));
}
TARN_EXPORT void __update_window(std::int32_t window) {
    if (find_window(HWND{window}) == nullptr) return;
    tarn::platform::InvalidateRect(HWND{window}, nullptr, false);
    yield_program_control(1);
}
TARN_EXPORT std::int32_t __set_window_update_flag(std::int32_t window, std::int32_t flag) {
    window_info* found = find_window(HWND{window});
    if (found == nullptr) return 0;
    found->update_at_once = flag != 0;
    return flag != 0 ? 1 : 0;
}
TARN_EXPORT void __add_text_descriptor(std::int32_t window, std::int32_t font,
                                       std::uint32_t colour) {
    add_text_descriptor(HWND{window}, tarn::platform::HFONT{font}, colour);
}
TARN_EXPORT void __set_win_escape(std::int32_t window, std::int32_t character) {
    if (window == 0)
        state().default_escape = static_cast<char>(character);
    else if (window_info* found = find_window(HWND{window}))
        found->escape = static_cast<char>(character);
}
TARN_EXPORT void setMaxLines(std::int32_t window, std::int32_t lines) {
    window_info* found = find_window(HWND{window});
    if (found == nullptr) return;
    found->maximum_lines = floored(lines);
    remove_excess_lines(*found, true);
    show_full_page(*found);
}
TARN_EXPORT void setAllMaxLines(std::int32_t lines) {
    state().default_maximum_lines = floored(lines);
}
TARN_EXPORT void set_default_to_proportional_font() {
    set_default_font(tarn::platform::GetStockObject(tarn::platform::SYSTEM_FONT));
}
TARN_EXPORT void set_default_to_fixed_font() {
    set_default_font(tarn::platform::GetStockObject(tarn::platform::SYSTEM_FIXED_FONT));
}
TARN_EXPORT void set_default_font(std::int32_t font) {
    tarn::textwin::set_default_font(tarn::platform::HFONT{font});
}
TARN_EXPORT void __set_quillpan_window_colour(std::int32_t brush, std::uint32_t text,
                                              std::uint32_t background) {
    textwin_state& s = state();
    s.colours_set = true;
    s.window_brush = HBRUSH{brush};
    s.text_colour = text;
    s.background = background;
}
TARN_EXPORT std::uint32_t __set_quillpan_style(std::uint32_t style) {
    return std::exchange(state().default_style, style);
}

TARN_EXPORT std::int32_t __win_getchar(std::int32_t window) {
    return win_getchar(HWND{window});
}
TARN_EXPORT void __win_getline(std::int32_t window, char* buffer) {
    win_getline(HWND{window}, buffer);
}

TARN_EXPORT std::int32_t __get_quillpan_text(std::int32_t window, char* buffer, std::int32_t flag) {
    const window_info* found = find_window(HWND{window});
    return found != nullptr ? all_text(*found, flag != 0 ? buffer : nullptr) : 0;
}
TARN_EXPORT char* __get_selected_quillpan_text(std::int32_t window, std::int32_t query) {
    return selected_text(HWND{window}, query != 0);
}
TARN_EXPORT void __cancel_selection(std::int32_t window) {
    if (window_info* found = window_or_default(window)) cancel_selection(*found);
}
TARN_EXPORT void __allow_clipping(std::int32_t window, std::int32_t flag) {
    if (window_info* found = find_window(HWND{window})) allow_clipping(*found, flag != 0);
}
TARN_EXPORT void __clip_window_data(std::int32_t window) {
    if (window_info* found = find_window(HWND{window})) copy_window(*found);
}

TARN_EXPORT std::int32_t __get_graphics_dc(std::int32_t window) {
    window_info* found = find_window(HWND{window});
    return found != nullptr ? graphics_dc(*found) : 0;
}
TARN_EXPORT std::int32_t __get_graphics_bitmap(std::int32_t window) {
    const window_info* found = find_window(HWND{window});
    return found != nullptr ? found->graphics_bitmap : 0;
}

TARN_EXPORT void __add_window_callback(std::int32_t window, std::uint32_t message,
                                       std::int32_t (*function)(std::int32_t, std::int32_t,
                                                                std::uintptr_t, std::intptr_t)) {
    add_callback(window, message, reinterpret_cast<message_callback>(function), nullptr);
}
TARN_EXPORT void __add_fortran_window_callback(
    std::int32_t window, std::uint32_t message,
    std::int32_t (*function)(std::int32_t*, std::int32_t*, std::uintptr_t*, std::intptr_t*)) {
    add_callback(window, message, nullptr, reinterpret_cast<fortran_callback>(function));
}
TARN_EXPORT void __add_window_menu(std::int32_t window, std::int32_t menu) {
    tarn::platform::SetMenu(HWND{window}, HMENU{menu});
}

TARN_EXPORT void __yield_program_control(std::int32_t mode) {
    yield_program_control(mode);
}
TARN_EXPORT void __temporary_yield() {
    yield_program_control(1);
}
TARN_EXPORT void __register_message_loop_hook(void (*function)()) {
    register_message_loop_hook(function);
}
TARN_EXPORT void __register_modeless_dialog_box(std::int32_t dialog) {
    register_modeless_dialog(HWND{dialog});
}
TARN_EXPORT void __unregister_modeless_dialog_box(std::int32_t dialog) {
    unregister_modeless_dialog(HWND{dialog});
}
TARN_EXPORT std::int32_t set_quillpan_message_upper_limit(std::int32_t limit) {
    return std::exchange(state().upper_limit, limit);
}

// The windows live on: the sleep is cut into what the queue brings.
TARN_EXPORT void __sleep_at(const float* seconds) {
    const double wanted = *seconds > 0 ? static_cast<double>(*seconds) * 1e9 : 0;
    const std::uint64_t end =
        now_nanoseconds() + static_cast<std::uint64_t>(std::min(wanted, 9e18));
    yield_program_control(1);
    while (true) {
        const std::uint64_t now = now_nanoseconds();
        if (now >= end) return;
        constexpr std::uint64_t slice = 10'000'000;
        const std::uint64_t rest = std::min(end - now, slice);
        const timespec pause{0, static_cast<long>(rest)};
        nanosleep(&pause, nullptr);
        yield_program_control(1);
    }
}
TARN_EXPORT void __new_sleep_at(const float* seconds) {
    if (!(*seconds > 0)) return;
    const auto milliseconds = static_cast<std::int64_t>(std::min(*seconds, 1e15F) * 1000.0F);
    const timespec pause{milliseconds / 1000, static_cast<long>(milliseconds % 1000 * 1'000'000)};
    nanosleep(&pause, nullptr);
}

TARN_EXPORT std::int32_t __quillpan_version() {
    return version;
}

// The picture tells its own length; one that tells more than a picture can have is none.
TARN_EXPORT std::int32_t __create_bitmap(const void* file_image) {
    const auto* bytes = static_cast<const unsigned char*>(file_image);
    if (bytes == nullptr || bytes[0] != 'B' || bytes[1] != 'M') {
        report_error("Invalid bitmap passed to create_bitmap", false);
        return 0;
    }
    std::uint32_t length;
    std::memcpy(&length, bytes + 2, sizeof length);
    constexpr std::uint32_t largest = 1U << 28;
    return length <= largest ? tarn::platform::CreateDIBitmap(bytes, length) : 0;
}

// A cursor file begins with its kind, and tells its own length too.
TARN_EXPORT std::int32_t __create_cursor(const void* file_image) {
    const auto* bytes = static_cast<const unsigned char*>(file_image);
    if (bytes == nullptr || first_word(bytes) != cursor_file) {
        report_error("Invalid cursor passed to create_cursor", false);
        return 0;
    }
    tarn::platform::POINT hot;
    return tarn::platform::CreateIconFromFile(bytes, tarn::platform::icon_file_length(bytes), true,
                                              hot);
}
TARN_EXPORT std::int32_t __create_icon(const void* file_image) {
    const auto* bytes = static_cast<const unsigned char*>(file_image);
    if (bytes == nullptr || first_word(bytes) != icon_file) return 0;
    tarn::platform::POINT hot;
    return tarn::platform::CreateIconFromFile(bytes, tarn::platform::icon_file_length(bytes), false,
                                              hot);
}

TARN_EXPORT void __attach_menu(std::int32_t window, const char* resource,
                               std::int32_t (*function)(std::int32_t, std::int32_t, std::uintptr_t,
                                                        std::intptr_t)) {
    if (attach_menu(window, resource))
        __add_window_callback(window, tarn::platform::WM_COMMAND, function);
}
TARN_EXPORT void __attach_fortran_menu(std::int32_t window, const char* resource,
                                       std::int32_t (*function)(std::int32_t*, std::int32_t*,
                                                                std::uintptr_t*, std::intptr_t*)) {
    if (attach_menu(window, resource))
        __add_fortran_window_callback(window, tarn::platform::WM_COMMAND, function);
}
// A program has nothing to read a dialog's controls with: what asks for one hears of it.
TARN_EXPORT std::intptr_t __make_dialog_box(std::int32_t, const char* resource,
                                            std::intptr_t (*)(std::int32_t, std::uint32_t,
                                                              std::uintptr_t, std::intptr_t)) {
    no_resource("Dialog", resource);
    return -1;
}

}  // extern "C"
