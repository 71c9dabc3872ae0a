// How a program stops.
//
// Every normal way out goes through the system's `exit` and meets, in this order: the program's
// own exit routines, newest first; destructors of compiled C++ and of static objects; other
// libraries' ends; and as the last of the process the library's destructor, which closes the
// Fortran units and flushes the Fortran handles. The units stay connected until then, so that a
// static destructor or another library may still print. Each step may be entered any number of
// times and deals with what came since the last.
#pragma once

#include <cstdint>

namespace tarn::frame {

int add_exit_routine(void (*routine)());  // 0, or 1 when there is no storage
void run_exit_routines();

void add_cleanup_routine(void (*routine)());
void run_cleanup_routines();  // each once

// All steps but the last.
void run_exit_chain();
void close_and_tidy();  // the last: closes all Fortran units, flushes the Fortran handles

// Gives the chain its place among the system's exit handlers: behind everything that is
// registered after the library came up.
void join_system_exit();

[[noreturn]] void exit_program(int status);
[[noreturn]] void exit_fortran(std::int16_t status);
// Writes out what files hold, and leaves with status 1 (0 with no_traceback). No routine runs.
[[noreturn]] void abort_program();
// The end of every reported failure: nothing runs any more. A debugger that knows the library
// gets the process instead.
void zap_out();
[[noreturn]] void break_out();

int on_control_event(int event);

// Marks the registers so that a debugger shows the text, and stops there.
void stop_in_debugger(const char* text);

}  // namespace tarn::frame
