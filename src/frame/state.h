// What the frame keeps for the process: one set, shared by every compiled image in it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

#include "frame/records.h"

namespace tarn::frame {

inline constexpr int max_control_tables = 100;
using ControlWords = std::array<std::uint16_t, 8>;

// How the floating-point units are kept. `system`: as the system gives them, everything masked,
// until the program unmasks something itself; a plain gfortran or C program must not trap on 0/0.
// `native`: the library's own masks are loaded at the start and trap all but inexact results. Only
// an image that asks for them gets them (image_native_float).
enum class FloatRules : std::uint8_t { system, native };

// Bits of the image type beyond the platform's own values 0 (console), 1 and 2 (windowed).
inline constexpr int image_native_float = 0x100;
inline constexpr int image_type_mask = 0xFF;

struct State {
    std::atomic<bool> ready{false};  // __initialise_cpplib has run to its end
    int init_count = 0;
    bool registered = false;  // __init_cpplib_info has run
    bool options_read = false;
    std::recursive_mutex start_lock;

    int windows_mode = 0;
    int windows_type = 0;  // the cell of cinit_
    bool window_output = false;
    bool message_debug = false;
    bool stack_faults = false;  // detect_stack_faults
    bool managed = false;
    int format_check = -1;
    int setup_flag = 0;
    bool is_nt = true;

    ProgramInfo program{};
    void* instance = nullptr;
    void* own_module = nullptr;
    LoadedModule* modules = nullptr;
    StdcallRecord* stdcalls = nullptr;
    TracebackOptions traceback;
    GeneralShared general_shared{};

    FloatRules float_rules = FloatRules::system;
    // Everything masked, extended precision: what the system gives.
    ControlWords control_words{0x033F, 0x0F3F, 0x073F, 0x0B3F, 0x033F, 0x0F3F, 0x073F, 0x0B3F};
    std::uint16_t* control_tables[max_control_tables] = {};
    int control_table_count = 0;
    std::int32_t underflow_count = 0;

    StreamRecord* streams[3] = {};  // the cells of stdin, stdout, stderr

    // The Fortran side.
    int argument_count = 0;
    char** arguments = nullptr;
    int next_argument = 1;
    std::intptr_t third_word = 0;
    bool fortran_started = false;  // the one-time part has run
    bool preexit = false;
    std::int32_t debugger_flag = 0;  // what ERRTEXT# tests; a debugger may set it
};
extern State the_state;
inline State& state() {
    return the_state;
}

inline std::uint32_t& traceback_flags() {
    return state().traceback.flags;
}

// Brings the library up when nobody has: a C main that calls Fortran, a preloaded library, a
// static constructor that prints. Cheap once done.
void bring_up();
inline void ensure_up() {
    if (!state().ready.load(std::memory_order_acquire)) [[unlikely]]
        bring_up();
}

}  // namespace tarn::frame

// Words that a debugger reads and writes by name.
extern "C" {
extern __attribute__((visibility("default"))) std::int32_t __debugged;
extern __attribute__((visibility("default"))) std::int32_t __sai;
extern __attribute__((visibility("default"))) void* __throw_temporary_ptr;
}
