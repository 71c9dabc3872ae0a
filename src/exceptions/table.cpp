#include "exceptions/exceptions.h"

namespace tarn::exceptions {
namespace {

constinit State the_state;

constexpr Row table[] = {
    {TARN_ACCESS_VIOLATION, "Access violation", trap_class::access_violation,
     Kind::access_violation},
    {TARN_DATA_ALIGNMENT, "Data alignment", trap_class::none, Kind::generic},
    {TARN_BREAKPOINT, "Breakpoint", trap_class::breakpoint, Kind::generic},
    {TARN_SINGLE_STEP, "Single step", trap_class::single_step, Kind::single_step},
    {0xC000008C, "Array bounds violation", trap_class::none, Kind::generic},
    {TARN_FLOAT_DENORMAL, "Denormalised operand", trap_class::denormal, Kind::floating_point},
    {TARN_FLOAT_ZERO_DIVIDE, "Floating point divide by zero", trap_class::zero_divide,
     Kind::floating_point},
    {TARN_FLOAT_INEXACT, "Loss of precision", trap_class::inexact, Kind::generic},
    {TARN_FLOAT_INVALID, "Invalid floating point operation", trap_class::invalid,
     Kind::floating_point},
    {TARN_FLOAT_OVERFLOW, "Floating point overflow", trap_class::overflow, Kind::floating_point},
    {TARN_FLOAT_STACK, "Floating point stack fault", trap_class::stack, Kind::generic},
    {TARN_FLOAT_UNDERFLOW, "Floating point underflow", trap_class::underflow, Kind::floating_point},
    {TARN_INTEGER_ZERO_DIVIDE, "Integer divide by zero", trap_class::integer_zero_divide,
     Kind::generic},
    {TARN_INTEGER_OVERFLOW, "Integer overflow", trap_class::integer_overflow, Kind::generic},
    {TARN_PRIVILEGED_INSTRUCTION, "Attempt to execute privileged instruction",
     trap_class::privileged, Kind::generic},
    {TARN_PAGE_ERROR, "Exception in page error", trap_class::none, Kind::generic},
    {TARN_CONTROL_C, "Control-C exit", trap_class::control_c, Kind::generic},
    {TARN_ILLEGAL_INSTRUCTION, "Attempt to execute illegal instruction", trap_class::none,
     Kind::generic},
    // The classic handler of this row is the one of the floating-point unit's own stack. The
    // machine's stack isn't its business; the report of it is a generic one.
    {TARN_STACK_OVERFLOW, "Stack overflow", trap_class::stack, Kind::generic},
    {0xC0000026, "Invalid disposition exception", trap_class::none, Kind::generic},
};

}  // namespace

State& state() {
    return the_state;
}

const Row* find_row(std::uint32_t code) {
    for (const Row& row : table) {
        if (row.code == code) return &row;
    }
    return nullptr;
}

bool is_arithmetic(int wanted) {
    return (wanted >= trap_class::invalid && wanted <= trap_class::stack) ||
           wanted == trap_class::integer_zero_divide || wanted == trap_class::integer_overflow;
}

}  // namespace tarn::exceptions
