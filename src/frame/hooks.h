// What the rooms above give the frame. A null hook belongs to a room that isn't there (yet): its
// step is passed over.
#pragma once

#include <cstdint>
#include <string_view>

struct tarn_float_area;

namespace tarn::frame {

struct Hooks {
    // Start, in the order of __initialise_cpplib.
    void (*initialise_storage)() = nullptr;
    void (*watch_faults)() = nullptr;
    void (*set_window_defaults)() = nullptr;
    void (*start_clock)() = nullptr;         // the baseline of DCLOCK#
    void (*initialise_console)() = nullptr;  // __InitialiseConsole
    void (*free_console)() = nullptr;        // FreeConsoleInstance
    void (*initialise_fortran_io)() = nullptr;
    void (*reset_fortran_data)() = nullptr;  // scalar state of units, random numbers
    void (*expanding_region_version)(int version) = nullptr;
    void (*register_map)(void* instance, const void* map) = nullptr;
    // Opens a unit that ORVALPRECON names.
    void (*preconnect)(std::int32_t unit, std::string_view name, bool read_only,
                       bool formatted) = nullptr;

    // The end. Each may be called more than once and deals with what came since. What can't be
    // written is a failure, and ends the process as one.
    void (*close_fortran_units)() = nullptr;
    void (*flush_fortran_units)() = nullptr;    // writes out, and leaves the units connected
    void (*flush_fortran_handles)() = nullptr;  // __flush_fortran_io
    void (*finish_scopes)() = nullptr;          // destructors of compiled C++
    void (*end_window_output)() = nullptr;
    void (*console_to_window)() = nullptr;  // windows mode was switched on

    // Failures: C_FAIL#, FAIL#, free text through a special number.
    void (*fail)(int number) = nullptr;
    void (*fortran_fail)(int number) = nullptr;
    void (*fail_with_text)(int number, const char* text) = nullptr;
    // The units' state in a trap that runs, which the program goes on with; null: none runs.
    tarn_float_area* (*trapped_float)() = nullptr;
    const char* (*exception_title)() = nullptr;  // null result: none is set
    // Opens a format window and waits for its end; false: there are no windows.
    bool (*show_window)(const char* format) = nullptr;
};
Hooks& hooks();

// Each room stores its hooks in a routine that the library's own preamble section names; the
// library runs the section when it is attached. So a hook is there before the first entry runs,
// and no constructor has to be ordered against another:
//     TARN_PREAMBLE(install_units)
// Such a routine only stores values.
#define TARN_PREAMBLE(routine) \
    [[gnu::section("tarn_crt"), gnu::used]] static void (*routine##_preamble)() = routine;

// Runs the preamble section once; every way into the library that uses a hook comes past here.
void attach();

}  // namespace tarn::frame
