// The window library's routines as gfortran calls them: `name@` arrives as `name__`, every argument
// by reference, the lengths of CHARACTER arguments by value behind the last.
#include <cstdint>
#include <string>

#include "frame/console_lines.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "tarn/io_units.h"
#include "tarn/start.h"
#include "tarn/text_window.h"
#include "tarn/winio.h"
#include "tarn/winio_menus.h"
#include "tarn/winio_run.h"
#include "tarn/winio_windows.h"

namespace {

// A terminated copy without the blanks that fill a CHARACTER variable up.
std::string text_of(const char* text, std::size_t length) {
    return std::string(
        tarn::frame::trimmed(tarn::frame::character(text, static_cast<std::ptrdiff_t>(length))));
}

}  // namespace

using tarn::frame::ensure_up;
using call_back = std::int32_t (*)();

extern "C" {

// ---- Variables and parameters ----

TARN_EXPORT void window_update__(void* variable) {
    __window_update_f(variable);
}
TARN_EXPORT void control_update__(void* variable) {
    __control_update(variable);
}
TARN_EXPORT std::int64_t quillpan_info__(const char* name, std::size_t length) {
    ensure_up();
    return QUILLPAN_INFO_h(name, static_cast<std::intptr_t>(length));
}
TARN_EXPORT void quillpan_string__(char* result, std::size_t room, const char* name,
                                   std::size_t length) {
    ensure_up();
    QUILLPAN_STRING_h(result, static_cast<std::intptr_t>(room), name,
                      static_cast<std::intptr_t>(length));
}
TARN_EXPORT double quillpan_float__(const char* name, std::size_t length) {
    ensure_up();
    return __quillpan_float(text_of(name, length).c_str());
}
TARN_EXPORT void set_quillpan_info__(const char* name, const std::int32_t* value,
                                     std::size_t length) {
    __set_quillpan_info(text_of(name, length).c_str(), *value);
}
TARN_EXPORT void set_quillpan_string__(const char* name, const char* text, std::size_t length,
                                       std::size_t text_length) {
    __set_quillpan_string(text_of(name, length).c_str(), text_of(text, text_length).c_str());
}
TARN_EXPORT void set_quillpan_float__(const char* name, const double* value, std::size_t length) {
    __set_quillpan_float(text_of(name, length).c_str(), *value);
}
TARN_EXPORT void quillpan_option__(const char* word, std::size_t length) {
    __quillpan_option(text_of(word, length).c_str());
}
TARN_EXPORT void get_mouse_info__(std::int32_t* x, std::int32_t* y, std::int32_t* flags) {
    GET_MOUSE_INFO_h(x, y, flags);
}

// ---- Windows, waiting, timers ----

TARN_EXPORT void temporary_yield__() {
    __yield_program_control(1);
}
TARN_EXPORT void yield_program_control__(const std::int32_t* mode) {
    __yield_program_control(*mode);
}
TARN_EXPORT void wait_for_window_to_close__(std::int32_t* variable) {
    __wait_for_window_to_close(variable);
}
TARN_EXPORT void close_all_windows__() {
    __close_all_windows();
}
TARN_EXPORT void sleep__(const float* seconds) {
    __sleep_at(seconds);
}
TARN_EXPORT void set_timer__(const std::int32_t* window, const double* seconds,
                             call_back function) {
    __set_timer(*window, *seconds, function);
}
TARN_EXPORT void kill_timer__(const std::int32_t* window, call_back function) {
    __kill_timer(*window, function);
}
TARN_EXPORT void change_timer_interval__(const std::int32_t* window, const double* seconds) {
    __change_timer_interval(*window, *seconds);
}
TARN_EXPORT void permit_another_callback__() {
    __permit_another_callback();
}
TARN_EXPORT void permit_callback_in_window__(const std::int32_t* window) {
    __permit_callback_in_window(*window);
}

// ---- Settings ----

TARN_EXPORT void winstyle__(const char* format, std::size_t length) {
    ensure_up();
    __winstyle(text_of(format, length).c_str());
}
TARN_EXPORT void winclass__(const char* format, std::size_t length) {
    ensure_up();
    __winclass(text_of(format, length).c_str());
}
TARN_EXPORT void winop__(const char* options, std::size_t length) {
    ensure_up();
    __winop(text_of(options, length).c_str());
}
TARN_EXPORT void enable_utf8__(const std::int32_t* on) {
    __enable_utf8(*on);
}
TARN_EXPORT void set_max_dialog_size__(const std::int32_t* width, const std::int32_t* height) {
    __set_max_dialog_size(*width, *height);
}
TARN_EXPORT void set_old_resize_mechanism__() {
    __set_old_resize_mechanism();
}

// ---- Controls, keys, menus ----

TARN_EXPORT void set_integer_limits__(const std::int32_t* control, const std::int32_t* low,
                                      const std::int32_t* high) {
    __set_integer_limits(*control, *low, *high);
}
TARN_EXPORT void set_float_limits__(const std::int32_t* control, const double* low,
                                    const double* high) {
    __set_float_limits(*control, *low, *high);
}
TARN_EXPORT double set_increment__(const std::int32_t* control, const double* step) {
    return __set_increment(*control, *step);
}
TARN_EXPORT void add_accelerator__(const std::int32_t* window, const char* key, call_back function,
                                   std::size_t length) {
    __add_accelerator(*window, text_of(key, length).c_str(), function);
}
TARN_EXPORT void remove_accelerator__(const std::int32_t* window, const char* key,
                                      std::size_t length) {
    __remove_accelerator(*window, text_of(key, length).c_str());
}
TARN_EXPORT void send_accelerator__(const char* key, std::size_t length) {
    __send_accelerator(text_of(key, length).c_str());
}
TARN_EXPORT std::int32_t add_menu_item__(const std::int32_t* menu, const char* text,
                                         std::int32_t* grey, std::int32_t* check,
                                         call_back function, std::size_t length) {
    return __add_menu_item(*menu, text_of(text, length).c_str(), grey, check, function);
}
TARN_EXPORT void remove_menu_item__(const std::int32_t* item) {
    __remove_menu_item(*item);
}
TARN_EXPORT std::int32_t get_wkey__() {
    return __get_wkey();
}
TARN_EXPORT std::int32_t get_wkey1__() {
    return __get_wkey1();
}

// ---- Text windows ----

TARN_EXPORT void set_windows_mode__() {
    ensure_up();
    __set_windows_mode();
}

TARN_EXPORT std::int32_t create_window__(const char* title, const std::int32_t* x,
                                         const std::int32_t* y, const std::int32_t* width,
                                         const std::int32_t* height, std::size_t length) {
    ensure_up();
    return __create_window(text_of(title, length).c_str(), *x, *y, *width, *height);
}
TARN_EXPORT void open_to_window__(const std::int32_t* unit, const std::int32_t* window) {
    ensure_up();
    OPEN_TO_WINDOW_h(unit, window);
}
TARN_EXPORT void clear_window__(const std::int32_t* window) {
    __clear_window(*window);
}
TARN_EXPORT void destroy_window__(const std::int32_t* window) {
    __destroy_window(*window);
}
TARN_EXPORT void set_max_lines__(const std::int32_t* window, const std::int32_t* lines) {
    setMaxLines(*window, *lines);
}

}  // extern "C"
