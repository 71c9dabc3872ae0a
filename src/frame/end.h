// How a program stops.
//
// Every normal way out meets one chain: the program's own exit routines, newest first; then the
// Fortran units and handles; destructors of compiled C++; C streams. The chain may be entered any
// number of times and deals with what came since the last: `exit` of this library runs it at once,
// and the library's destructor, which is the last of the process to run, runs it for plain `exit`,
// a return from main, and static destructors that still print.
//
// Between the two, the system's own exit handlers come past at_system_exit. It writes everything
// out but leaves the units connected: a static destructor or another library may still use them.
#pragma once

#include <cstdint>

namespace tarn::frame {

int add_exit_routine(void (*routine)());  // 0, or 1 when there is no storage
void run_exit_routines();

void add_cleanup_routine(void (*routine)());
void run_cleanup_routines();  // each once

void run_exit_chain();
void close_and_tidy();  // closes all Fortran units, flushes the Fortran handles

// Registers at_system_exit; once, as the library comes up.
void watch_system_exit();

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
