// The entries of open windows, under their link names. What each does is told in
// include/tarn/winio_windows.h.
#include "frame/end.h"
#include "frame/link_name.h"
#include "tarn/winio_windows.h"
#include "textwin/textwin.h"
#include "winio/data_entry.h"
#include "winio/winproc.h"

namespace winio = tarn::winio;
namespace platform = tarn::platform;

namespace {

void wait_and_serve() {
    const tarn::textwin::unmasked_yield all_messages;
    platform::WaitMessage();
    tarn::textwin::yield_program_control(1);
}

winio::procedures_state& state() {
    winio::initialise_quillpan_plus();
    return winio::procedures();
}

// The program's function, behind one that knows the platform's record.
using interception = int32_t (*)(tarn_message*);

interception& program_interception() {
    static constinit interception function = nullptr;
    return function;
}

bool intercept(platform::MSG* message) {
    tarn_message shown{static_cast<int32_t>(message->hwnd), message->message, message->wParam,
                       message->lParam};
    int32_t taken = program_interception()(&shown);
    message->hwnd = platform::HWND{shown.window};
    message->message = shown.message;
    message->wParam = shown.word;
    message->lParam = shown.value;
    return taken != 0;
}

}  // namespace

extern "C" {

TARN_EXPORT void __wait_for_window_to_close(const int32_t* variable) {
    while (*variable < 0) wait_and_serve();
}

TARN_EXPORT void __close_all_windows() {
    winio::close_all_windows();
}

TARN_EXPORT void __do_winio() {
    winio::exit_cleanup();
    tarn::frame::exit_program(0);
}

TARN_EXPORT void __register_message_interception(interception function) {
    program_interception() = function;
    state().interception = function ? intercept : nullptr;
}

TARN_EXPORT void __set_mg_return_value(intptr_t value) {
    state().message_result = value;
}

TARN_EXPORT void __add_idle_monitor(void (*function)()) {
    state().idle.add(function);
}
TARN_EXPORT void __remove_idle_monitor(void (*function)()) {
    state().idle.remove(function);
}
TARN_EXPORT void __add_cursor_monitor(void (*function)()) {
    state().cursor.add(function);
}
TARN_EXPORT void __remove_cursor_monitor(void (*function)()) {
    state().cursor.remove(function);
}
TARN_EXPORT void __add_focus_monitor(void (*function)()) {
    state().focus.add(function);
}
TARN_EXPORT void __remove_focus_monitor(void (*function)()) {
    state().focus.remove(function);
}
TARN_EXPORT void __add_keyboard_monitor(void (*function)()) {
    state().keyboard.add(function);
}
TARN_EXPORT void __remove_keyboard_monitor(void (*function)()) {
    state().keyboard.remove(function);
}

TARN_EXPORT int32_t __get_wkey() {
    state();
    return winio::get_char(true);
}
TARN_EXPORT int32_t __get_wkey1() {
    state();
    return winio::get_char(false);
}
TARN_EXPORT int32_t __wkey_waiting() {
    return winio::keys_waiting();
}
TARN_EXPORT void __feed_wkeyboard(int32_t key, int32_t) {
    winio::put_char(key);
}
TARN_EXPORT void __flush_wkeyboard() {
    winio::flush_keys();
}
TARN_EXPORT int32_t GET_WKEY_h() {
    return __get_wkey();
}
TARN_EXPORT int32_t GET_WKEY1_h() {
    return __get_wkey1();
}
TARN_EXPORT int32_t WKEY_WAITING_h() {
    return winio::keys_waiting();
}
TARN_EXPORT void FEED_WKEYBOARD_h(const int32_t* key, const int32_t*) {
    winio::put_char(*key);
}
TARN_EXPORT void FLUSH_WKEYBOARD_h() {
    winio::flush_keys();
}
TARN_EXPORT void __trap_special_funkey(int32_t key, int32_t on) {
    if (key == 1) state().trap_f10 = on != 0;
}

TARN_EXPORT void __set_timer(int32_t window, double seconds, int32_t (*function)()) {
    winio::set_timer(platform::HWND{window}, seconds, function);
}
TARN_EXPORT void __kill_timer(int32_t window, int32_t (*function)()) {
    winio::kill_timer(platform::HWND{window}, function);
}
TARN_EXPORT void __change_timer_interval(int32_t window, double seconds) {
    winio::change_timer_interval(platform::HWND{window}, seconds);
}

TARN_EXPORT int32_t __send_text_message(const char* window_class, const char* text, char* reply) {
    return winio::send_text_message(window_class, text, reply);
}
TARN_EXPORT void __reply_to_text_message(const char* text) {
    winio::reply_to_text_message(text);
}

TARN_EXPORT void __set_integer_limits(int32_t control, int32_t low, int32_t high) {
    winio::set_integer_limits(platform::HWND{control}, low, high);
}
TARN_EXPORT void __set_float_limits(int32_t control, double low, double high) {
    winio::set_float_limits(platform::HWND{control}, low, high);
}
TARN_EXPORT double __set_increment(int32_t control, double step) {
    return winio::set_increment(platform::HWND{control}, step);
}

}  // extern "C"
