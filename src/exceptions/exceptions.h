// Exceptions of the processor: what they are called, the traps for them, and the filter that all of
// them pass.
//
// A signal becomes an exception's record and the machine's context (`describe`), the filter looks
// at them, and what it leaves in the context is where the program goes on. Nothing here allocates
// or takes a lock: a fault comes at any instruction.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "platform/kernel/fault.h"
#include "tarn/exceptions.h"

namespace tarn::exceptions {

using Record = tarn_exception_record;
using Context = tarn_machine_context;
using Trap = tarn_trap;

namespace trap_class {
inline constexpr int none = -1;
inline constexpr int access_violation = 0;
inline constexpr int invalid = 1;
inline constexpr int denormal = 2;
inline constexpr int zero_divide = 3;
inline constexpr int overflow = 4;
inline constexpr int underflow = 5;
inline constexpr int inexact = 6;
inline constexpr int stack = 7;
inline constexpr int control_c = 8;
inline constexpr int breakpoint = 9;
inline constexpr int single_step = 10;
inline constexpr int privileged = 11;
inline constexpr int all = 12;
inline constexpr int arithmetic = 13;
inline constexpr int integer_zero_divide = 14;
inline constexpr int integer_overflow = 15;
inline constexpr int low_memory = 16;
inline constexpr int count = 17;
}  // namespace trap_class

// Which report an exception gets.
enum class Kind : std::uint8_t { generic, access_violation, floating_point, single_step };

struct Row {
    std::uint32_t code;
    const char* text;
    int trap_class;
    Kind kind;
};
// Null for a code that isn't in the table.
const Row* find_row(std::uint32_t code);
bool is_arithmetic(int trap_class);

// What the filter, and each of its steps, decides. The values are those of the filter's entry and
// of traps.
enum class Decision : std::int8_t { end = -2, proceed = 0, decline = 1 };

struct Exception {
    Record& record;
    Context& context;
    const Row* row = nullptr;
    const platform::Fault* fault = nullptr;  // null: somebody called the filter
};

inline constexpr std::size_t text_size = 100;

struct State {
    std::atomic<Trap> traps[trap_class::count] = {};

    // While a trap runs.
    Context* context = nullptr;
    Record* record = nullptr;
    int caught = 0;

    char message[text_size] = "";
    char title[text_size] = "";
    char breakpoint_message[text_size] = "";

    int disassembly_lines = 5;
    bool code_bytes = false;
    bool display_message = false;
    bool debugger_mode = false;
    std::uint32_t steps = 0;
};
State& state();

Trap set_trap(int trap_class, Trap routine);

// The filter.
Decision filter(Exception& exception);

// Watches the process's faults, from the start of the library on.
void watch();

// What a signal tells, in the records.
void describe(const platform::Fault& fault, Record& record, Context& context);
void read_context(const ucontext_t& from, Context& to);
void write_context(const Context& from, ucontext_t& to);

}  // namespace tarn::exceptions
