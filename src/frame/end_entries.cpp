#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "frame/console_lines.h"
#include "frame/end.h"
#include "frame/fortran_data.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/debug_output.h"

using namespace tarn::frame;

namespace {

constexpr std::size_t quit_size = 80;
constexpr std::size_t pause_line_limit = 80;
constinit char quit_text[quit_size] = {};
constinit std::size_t quit_length = 0;

// For a profiling tool: the end is near.
void tell_profiler() {
    if (state().preexit) tarn::platform::debug_output("ORVALPREEXIT@");
}

[[noreturn]] void leave(std::int16_t status) {
    tell_profiler();
    exit_fortran(status);
}

}  // namespace

extern "C" {

[[noreturn]] TARN_EXPORT void __exitprogram(int status) {
    exit_program(status);
}
[[noreturn]] TARN_EXPORT void tarn_exit(int status) {
    exit_program(status);
}
[[noreturn]] TARN_EXPORT void __exit() {
    exit_program(0);
}
[[noreturn]] TARN_EXPORT void __fortranexit(std::int16_t status) {
    exit_fortran(status);
}
[[noreturn]] TARN_EXPORT void __dbg_exitprogram() {
    _exit(0);
}

// A managed program's own run-time ends the process; streams stay open for it.
TARN_EXPORT void __dotnetexit() {
    run_exit_routines();
    if (hooks().finish_scopes) hooks().finish_scopes();
}

TARN_EXPORT int tarn_atexit(void (*routine)()) {
    return add_exit_routine(routine);
}
TARN_EXPORT void __add_cleanup_routine(void (*routine)()) {
    add_cleanup_routine(routine);
}

[[noreturn]] TARN_EXPORT void tarn_abort() {
    abort_program();
}
[[noreturn]] TARN_EXPORT void ABORT_h() LINK_NAME("ABORT#");
void ABORT_h() {
    abort_program();
}

TARN_EXPORT void PREEXIT_INIT_h() LINK_NAME("PREEXIT_INIT#");
void PREEXIT_INIT_h() {
    state().preexit = true;
}

TARN_EXPORT void ORVAL_EXIT_h() LINK_NAME("ORVAL_EXIT#");
void ORVAL_EXIT_h() {
    tell_profiler();
}

[[noreturn]] TARN_EXPORT void EXIT_(const std::int16_t* status) {
    leave(*status);
}
[[noreturn]] TARN_EXPORT void EXIT(const std::int16_t* status) TARN_ALIAS(EXIT_);
[[noreturn]] TARN_EXPORT void EXIT_h(const std::int16_t* status) LINK_NAME("EXIT#")
    TARN_ALIAS(EXIT_);

[[noreturn]] TARN_EXPORT void EXIT1_h() LINK_NAME("EXIT1#");
void EXIT1_h() {
    exit_fortran(0);
}
[[noreturn]] TARN_EXPORT void EXIT_h1() LINK_NAME("EXIT#1");
void EXIT_h1() {
    exit_fortran(0);
}
[[noreturn]] TARN_EXPORT void DEBUGEXIT_h() LINK_NAME("DEBUGEXIT#");
void DEBUGEXIT_h() {
    exit_fortran(0);
}

[[noreturn]] TARN_EXPORT void STOP_h(const char* text, std::ptrdiff_t length) LINK_NAME("STOP#");
void STOP_h(const char* text, std::ptrdiff_t length) {
    ensure_up();
    std::string_view shown = trimmed(character(text, length));
    if (!shown.empty()) console_line(std::string("**** STOP: ").append(shown));
    leave(0);
}

TARN_EXPORT void PAUSE_h(const char* text, std::ptrdiff_t length) LINK_NAME("PAUSE#");
void PAUSE_h(const char* text, std::ptrdiff_t length) {
    ensure_up();
    console_line(std::string("***Pause: ").append(trimmed(character(text, length))));
    std::string command;
    for (;;) {
        console_text("Enter system command or press ENTER key to restart: ");
        // With nobody left to answer, the program goes on.
        if (!console_read_line(command, pause_line_limit)) command.clear();
        if (trimmed(command).empty()) return;
        // A command that can't be run says so itself.
        [[maybe_unused]] int status = std::system(command.c_str());
        console_line("");
    }
}

TARN_EXPORT void CLOSE_UNITS_h() LINK_NAME("CLOSE_UNITS#");
void CLOSE_UNITS_h() {
    if (hooks().close_fortran_units) hooks().close_fortran_units();
    tarn_libcom.state = lib_closed;
}

TARN_EXPORT void CLOSETIDY_ORVUNIT_h() LINK_NAME("CLOSETIDY_ORVUNIT#");
void CLOSETIDY_ORVUNIT_h() {
    close_and_tidy();
}

TARN_EXPORT void QUIT_CLEANUP_h(const char* text, std::ptrdiff_t length) LINK_NAME("QUIT_CLEANUP#");
void QUIT_CLEANUP_h(const char* text, std::ptrdiff_t length) {
    std::string_view kept = character(text, length).substr(0, quit_size);
    quit_length = kept.copy(quit_text, quit_size);
}

TARN_EXPORT void LIB_QUIT_HANDLER_h(const void* unused) LINK_NAME("LIB_QUIT_HANDLER#");
void LIB_QUIT_HANDLER_h(const void*) {
    console_line("");
    console_line(trimmed({quit_text, quit_length}));
}

TARN_EXPORT int console_control_event_handler(int event) {
    return on_control_event(event);
}
}
