#include "exceptions/filter.h"

#include "exceptions/attempt.h"
#include "exceptions/float_fault.h"
#include "exceptions/report.h"
#include "failure/failure.h"
#include "failure/report.h"
#include "failure/reporter.h"
#include "frame/end.h"
#include "frame/hooks.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"
#include "storage/regions.h"

namespace tarn::exceptions {
namespace {

constexpr std::uint32_t debug_print = 0x40010006;
constexpr std::uint32_t noncontinuable_code = 0xC0000025;
constexpr std::uint32_t noncontinuable_flag = 1;

// A fault inside a trap isn't given to traps.
[[gnu::tls_model("initial-exec")]] thread_local bool in_trap = false;

bool is_small_float(std::uint32_t code) {
    return code == TARN_FLOAT_UNDERFLOW || code == TARN_FLOAT_DENORMAL;
}

// An access may have reached into storage that grows.
bool grown(const Record& record) {
    return record.code == TARN_ACCESS_VIOLATION &&
           storage::grow_region(record.parameters[1], record.parameters[0] != 0);
}

void show_exception(const Exception& exception) {
    char line[text_size + 64];
    traceback::TextBuffer text(line, sizeof line);
    add_at_address(text, exception.row->text, exception.record.address);
    failure::print_line(text.text());
}

Decision handle(Exception& exception) {
    switch (exception.row->kind) {
        case Kind::access_violation:
            return handle_access_violation(exception);
        case Kind::floating_point:
            return handle_floating_point(exception);
        case Kind::single_step:
            return handle_single_step(exception);
        case Kind::generic:
            return handle_generic(exception);
    }
    return Decision::decline;
}

// The program goes on behind it, unless it stands for a failure.
Decision pass_breakpoint(Exception& exception) {
    ++exception.context.instruction;
    state().breakpoint_message[0] = 0;
    return failure::state().last_failure == 0 ? Decision::proceed : Decision::end;
}

void end_trap() {
    State& s = state();
    s.context = nullptr;
    s.record = nullptr;
    s.caught = 0;
    in_trap = false;
}

}  // namespace

Trap trap_for(const Exception& exception) {
    if (in_trap) return nullptr;
    const auto& traps = state().traps;
    if (Trap trap = traps[trap_class::all]) return trap;
    if (exception.row == nullptr) return nullptr;
    const int own = exception.row->trap_class;
    if (is_arithmetic(own)) {
        if (Trap trap = traps[trap_class::arithmetic]) return trap;
    }
    return own == trap_class::none ? nullptr : traps[own].load();
}

Decision call_trap(Trap trap, Exception& exception) {
    State& s = state();
    platform::reset_unit();
    platform::load_control_word(frame::state().control_words[0]);
    s.context = &exception.context;
    s.record = &exception.record;
    s.caught = exception.row != nullptr ? exception.row->trap_class : trap_class::none;
    in_trap = true;
    const int result = trap();
    end_trap();
    platform::load_control_word(platform::all_masked_word);
    if (result == static_cast<int>(Decision::proceed) &&
        (exception.record.flags & noncontinuable_flag) == 0)
        return Decision::proceed;
    if (result == static_cast<int>(Decision::end)) frame::zap_out();
    return Decision::decline;
}

Decision filter(Exception& exception) {
    Record& record = exception.record;
    if ((exception.context.flags & TARN_CONTEXT_INTEGER) == 0)
        return end_with(exception, unknown_processor);
    if (record.code == debug_print || grown(record)) return Decision::proceed;
    if (Trap trap = trap_for(exception)) {
        if (call_trap(trap, exception) == Decision::proceed) {
            if (record.code == TARN_BREAKPOINT) ++exception.context.instruction;
            return Decision::proceed;
        }
    }
    // A debugger sees what is left before we do, but for what is repaired.
    if (__debugged != 0 && !is_small_float(record.code)) return Decision::decline;
    if (exception.row == nullptr) return handle_unknown(exception);
    if (state().display_message) show_exception(exception);
    const Decision decision = handle(exception);
    if (decision != Decision::proceed) return decision;
    if ((record.flags & noncontinuable_flag) != 0 || record.code == noncontinuable_code) {
        return end_with(exception,
                        "Tarnick run-time library.\nCannot continue execution from this "
                        "exception.\n");
    }
    return record.code == TARN_BREAKPOINT ? pass_breakpoint(exception) : decision;
}

namespace {

bool on_fault(const platform::Fault& fault) {
    if (!fault.was_sent() && end_flushed_step(*fault.context) && fault.signal == SIGTRAP)
        return true;
    leave_attempt();
    // A trap may have been left by a jump.
    if (in_trap && !platform::struck_in_handler(fault)) end_trap();
    Record record;
    Context context;
    describe(fault, record, context);
    Exception exception{record, context, find_row(record.code), &fault};
    const Decision decision = record.code != 0 ? filter(exception) : handle_signal(exception);
    if (decision != Decision::proceed) return false;
    write_context(context, *fault.context);
    return true;
}

}  // namespace

void watch() {
    platform::watch_faults(on_fault);
}

}  // namespace tarn::exceptions
