// What each kind of exception is reported as.
#include <algorithm>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>

#include "exceptions/attempt.h"
#include "exceptions/filter.h"
#include "exceptions/float_fault.h"
#include "exceptions/instruction.h"
#include "exceptions/report.h"
#include "failure/report.h"
#include "frame/debug_info.h"
#include "frame/end.h"
#include "frame/float_control.h"
#include "frame/state.h"
#include "storage/regions.h"
#include "traceback/module.h"
#include "traceback/text_buffer.h"

namespace tarn::exceptions {
namespace {

// One report at a time is put together; the second of two threads waits, but may not spoil the
// first one's text. Its own stands on its stack until then.
struct Text {
    char room[1024];
    traceback::TextBuffer buffer{room, sizeof room};

    Text() {
        if (state().message[0] != 0) buffer.add(state().message).add("\n");
    }
};

Decision end_by(Exception& exception, std::string_view title, const Text& text) {
    report({title, text.buffer.text(), &exception});
    return Decision::end;
}

void add_hexadecimal(Text& text, std::uintptr_t value) {
    text.buffer.hexadecimal(value, address_digits);
}

// A failure that stopped for a debugger has its words in a register, and two marks in others.
const char* marked_failure(const Context& context) {
    constexpr std::uint64_t first_mark = 0x4B534C31;
    constexpr std::uint64_t second_mark = 0x52444331;
    if (context.integer[0] != first_mark || context.integer[3] != second_mark) return nullptr;
    return reinterpret_cast<const char*>(context.integer[6]);
}

// Stack and OpenMP have their sizes from the environment, not from the link.
void add_stack_advice(Text& text) {
    platform::StackBounds stack;
    if (!platform::stack_bounds(stack)) return;
    text.buffer.add("(the stack has ").decimal((stack.high - stack.low) / 1024);
    text.buffer.add(" KiB; `ulimit -s`, and for OpenMP's threads OMP_STACKSIZE, give more)\n");
}

// Code compiled with argument checks reaches for an argument with an instruction of its own before
// it writes to it: a test of a register with itself, behind a segment prefix.
const char* constant_overwritten(const Context& context) {
    constexpr std::uint32_t undefined = 0x80808080;
    std::uint8_t code[longest_instruction];
    if (read_code(context.instruction, code) < 3 || code[0] != 0x3E || code[1] != 0x85)
        return nullptr;
    const unsigned reg = code[2] >> 3 & 7;
    if (reg != (code[2] & 7U)) return nullptr;
    if (static_cast<std::uint32_t>(context.integer[reg]) == undefined)
        return "Error: Attempt to access undefined argument to routine\n";
    return "Error: Attempt to alter an argument that is either a constant or a DO variable\n";
}

bool is_write_to_constants(const Exception& exception) {
    if (exception.fault == nullptr || exception.record.parameters[0] == 0) return false;
    traceback::Module module;
    return exception.fault->info->si_code == SEGV_ACCERR &&
           traceback::find_module(exception.record.parameters[1], module);
}

// A loop that runs over the end of a region ends here, in the fence behind it.
void add_missed_region(Text& text, std::uintptr_t address) {
    const storage::ExpandingRegion* region = storage::find_missed_region(address);
    if (region == nullptr) return;
    const storage::AddressRange& range = region->range;
    text.buffer.add("(");
    if (range.holds(address)) {
        text.buffer.add("the system has no memory left for a page of");
    } else if (address < range.start) {
        text.buffer.decimal(range.start - address).add(" bytes before");
    } else {
        text.buffer.add("byte ").decimal(address - range.start + 1).add(" of");
    }
    text.buffer.add(" the region ").add(region->name).add(", which has ");
    text.buffer.decimal(range.end - range.start).add(", from ");
    add_hexadecimal(text, range.start);
    text.buffer.add(" on)\n");
}

std::string_view float_cause(std::uint16_t raised) {
    constexpr struct {
        std::uint16_t bit;
        const char* text;
    } causes[] = {
        {platform::fp_overflow, "Floating point overflow"},
        {platform::fp_underflow, "Floating point underflow"},
        {platform::fp_zero_divide, "Floating point divide by zero"},
        {platform::fp_denormal, "Denormalised operand"},
        {platform::fp_invalid, "Invalid floating point operation"},
    };
    for (auto cause : causes) {
        if ((raised & cause.bit) != 0) return cause.text;
    }
    return {};
}

void count_underflow() {
    __atomic_fetch_add(&frame::state().underflow_count, 1, __ATOMIC_RELAXED);
}

}  // namespace

Decision end_with(Exception& exception, const char* words) {
    Text text;
    text.buffer.add(words);
    return end_by(exception, "Tarnick run-time library", text);
}

Decision handle_generic(Exception& exception) {
    const Record& record = exception.record;
    const char* title = exception.row->text;
    Text text;
    if (record.code == TARN_CONTROL_C) frame::abort_program();
    if (record.code != TARN_BREAKPOINT) {
        text.buffer.add("\n");
        add_at_address(text.buffer, title, record.address);
        if (record.code == TARN_STACK_OVERFLOW) add_stack_advice(text);
        return end_by(exception, title, text);
    }
    if (const char* words = marked_failure(exception.context)) {
        text.buffer.add(words);
        return end_by(exception, "Run-time Error", text);
    }
    const bool has_message = state().breakpoint_message[0] != 0;
    text.buffer.add(state().breakpoint_message).add("\n");
    add_at_address(text.buffer, title, record.address);
    report_and_go_on(
        {has_message ? state().breakpoint_message : title, text.buffer.text(), &exception});
    return Decision::proceed;
}

Decision handle_access_violation(Exception& exception) {
    const Record& record = exception.record;
    Text text;
    if (const char* words = constant_overwritten(exception.context)) {
        text.buffer.add(words);
        return end_by(exception, "Access Violation", text);
    }
    text.buffer.add("\nAccess violation:\nThe instruction at address ");
    add_hexadecimal(text, reinterpret_cast<std::uintptr_t>(record.address));
    text.buffer.add(" attempted to ").add(record.parameters[0] != 0 ? "write to" : "read from");
    if (record.parameters[1] == ~std::uintptr_t{0}) {
        text.buffer.add(" an illegal location");
    } else {
        text.buffer.add(" location ");
        add_hexadecimal(text, record.parameters[1]);
    }
    text.buffer.add("\n");
    add_missed_region(text, record.parameters[1]);
    if (record.parameters[1] == reinterpret_cast<std::uintptr_t>(record.address))
        text.buffer.add(
            "(no code is there: a call by a pointer that holds no routine's address)\n");
    if (is_write_to_constants(exception)) {
        text.buffer.add(
            "(read-only data of the program: perhaps a constant was passed to a routine that "
            "changes it)\n");
    }
    return end_by(exception, "Access Violation", text);
}

Decision handle_floating_point(Exception& exception) {
    constexpr std::uint16_t small = platform::fp_underflow | platform::fp_denormal;
    Context& context = exception.context;
    Text text;
    if ((context.flags & TARN_CONTEXT_FLOAT) == 0) {
        text.buffer.add(
            "Floating point exception.\nFloating point coprocessor area is not available\n");
        return end_by(exception, exception.row->text, text);
    }
    const std::uint16_t raised = raised_exceptions(context.floating, faulting_unit(context));
    if ((raised & small) != 0) {
        count_underflow();
        const bool permitted = frame::debug_info().permit_underflow != 0;
        ucontext_t* const machine = exception.fault != nullptr ? exception.fault->context : nullptr;
        if (permitted && !frame::underflow_repair_missing() &&
            recover_from_underflow(context, machine))
            return Decision::proceed;
    }
    const char* reason = "";
    if ((raised & platform::fp_invalid) != 0 && repair_invalid(context, context.floating, reason))
        return Decision::proceed;
    constexpr unsigned patience = 3;
    attempt(patience, [] { frame::run_cleanup_routines(); });
    text.buffer.add("\nFloating point co-processor fault at address ");
    add_hexadecimal(text, reinterpret_cast<std::uintptr_t>(exception.record.address));
    text.buffer.add("\n");
    const std::string_view cause = float_cause(raised);
    if (cause.empty()) {
        text.buffer.add("Unknown floating point exception ").hexadecimal(raised, 4).add("\n");
        return end_by(exception, "Unknown floating point exception", text);
    }
    text.buffer.add(cause).add("\n").add(reason);
    return end_by(exception, cause, text);
}

Decision handle_single_step(Exception& exception) {
    if (state().debugger_mode) {
        ++state().steps;
        return Decision::proceed;
    }
    Text text;
    text.buffer.add("A unexpected single step exception has occured\n");
    return end_by(exception, exception.row->text, text);
}

Decision handle_signal(Exception& exception) {
    const platform::Fault& fault = *exception.fault;
    const platform::SignalName name = platform::signal_name(fault.signal);
    const bool own = fault.was_sent() && fault.info->si_pid == getpid();
    Text text;
    if (own && fault.signal == SIGABRT) {
        text.buffer.add("Program aborted.\n");
        return end_by(exception, "Program aborted", text);
    }
    text.buffer.add("\n").add(name.text).add(" (").add(name.name).add(")");
    if (own) {
        text.buffer.add(", raised by the program\n");
    } else if (fault.was_sent()) {
        text.buffer.add(", sent by process ");
        text.buffer.decimal(static_cast<std::uint64_t>(fault.info->si_pid)).add("\n");
    } else {
        text.buffer.add(", sent by the system\n");
    }
    return end_by(exception, name.text, text);
}

Decision handle_unknown(Exception& exception) {
    Text text;
    text.buffer.add("Cannot process exception ").hexadecimal(exception.record.code, 8);
    text.buffer.add("\nAt address ");
    add_hexadecimal(text, reinterpret_cast<std::uintptr_t>(exception.record.address));
    text.buffer.add("\n");
    return end_by(exception, "Unknown exception", text);
}

}  // namespace tarn::exceptions
