// From a signal to an exception: the signal's number says little, so the processor's own number of
// the exception, its error code, both floating-point units and the instruction are looked at.
#include <algorithm>
#include <cstring>

#include "exceptions/exceptions.h"
#include "exceptions/float_fault.h"
#include "exceptions/instruction.h"
#include "traceback/careful_memory.h"

namespace tarn::exceptions {
namespace {

// The processor's numbers.
constexpr std::uint32_t trap_divide = 0;
constexpr std::uint32_t trap_debug = 1;
constexpr std::uint32_t trap_protection = 13;
constexpr std::uint32_t error_write = 2;

// In the order of a context's integer registers.
constexpr int integer_registers[16] = {REG_RAX, REG_RCX, REG_RDX, REG_RBX, REG_RSP, REG_RBP,
                                       REG_RSI, REG_RDI, REG_R8,  REG_R9,  REG_R10, REG_R11,
                                       REG_R12, REG_R13, REG_R14, REG_R15};
// What of the float area is the registers'; the system keeps notes of its own behind it.
constexpr std::size_t float_registers_size = offsetof(tarn_float_area, unused);

// The most negative number divided by -1 raises what a division by zero raises.
bool divides_by_zero(const Context& context) {
    Instruction instruction;
    if (!read_instruction(context, instruction)) return true;
    const bool bytes = instruction.opcode == 0xF6;
    if (instruction.map != 0 || (!bytes && instruction.opcode != 0xF7)) return true;
    std::size_t size = 4;
    if (bytes) {
        size = 1;
    } else if (instruction.wide) {
        size = 8;
    } else if (instruction.operand_size) {
        size = 2;
    }
    std::uint64_t divisor = 0;
    if (instruction.mod == 3) {
        // A divisor of one byte may be the second byte of a register, which nobody's compiler does.
        std::memcpy(&divisor, &context.integer[instruction.rm], size);
    } else {
        traceback::CarefulMemory memory;
        if (!memory.read(instruction.address, &divisor, size)) return true;
    }
    return divisor == 0;
}

bool is_privileged(const Context& context) {
    std::uint8_t code[longest_instruction];
    if (read_code(context.instruction, code) == 0) return false;
    const std::uint8_t first = code[0];
    const bool port = (first >= 0x6C && first <= 0x6F) || (first >= 0xE4 && first <= 0xE7) ||
                      (first >= 0xEC && first <= 0xEF);
    const bool system = first == 0x0F && (code[1] == 0x01 || code[1] == 0x06 ||
                                          (code[1] >= 0x20 && code[1] <= 0x23) || code[1] == 0x30 ||
                                          code[1] == 0x32);
    return port || system || first == 0xF4 || first == 0xFA || first == 0xFB;
}

// The stack pointer has left the stack, and what was reached for lies between it and the stack.
bool is_stack_overflow(const Context& context, std::uintptr_t address) {
    constexpr std::uintptr_t slack = 64 * 1024;
    constexpr std::uintptr_t red_zone = 256;
    constexpr std::uintptr_t largest_frame = std::uintptr_t{1} << 36;
    platform::StackBounds stack;
    if (!platform::stack_bounds(stack)) return false;
    const std::uint64_t pointer = context.integer[4];
    if (pointer > stack.low + slack || stack.low - std::min(stack.low, pointer) > largest_frame)
        return false;
    return address + red_zone >= pointer && address < stack.low + slack;
}

void describe_access(const platform::Fault& fault, Record& record, const Context& context) {
    const auto address = reinterpret_cast<std::uintptr_t>(fault.info->si_addr);
    const bool known = context.trap != trap_protection;
    if (!known && is_privileged(context)) {
        record.code = TARN_PRIVILEGED_INSTRUCTION;
        return;
    }
    record.code =
        known && is_stack_overflow(context, address) ? TARN_STACK_OVERFLOW : TARN_ACCESS_VIOLATION;
    record.parameter_count = 2;
    record.parameters[0] = (context.error & error_write) != 0 ? 1 : 0;
    record.parameters[1] = known ? address : ~std::uintptr_t{0};
}

std::uint32_t float_code(std::uint16_t raised) {
    constexpr struct {
        std::uint16_t bit;
        std::uint32_t code;
    } codes[] = {
        {platform::fp_overflow, TARN_FLOAT_OVERFLOW},
        {platform::fp_underflow, TARN_FLOAT_UNDERFLOW},
        {platform::fp_zero_divide, TARN_FLOAT_ZERO_DIVIDE},
        {platform::fp_denormal, TARN_FLOAT_DENORMAL},
        {platform::fp_invalid, TARN_FLOAT_INVALID},
    };
    for (auto each : codes) {
        if ((raised & each.bit) != 0) return each.code;
    }
    return TARN_FLOAT_INEXACT;
}

void describe_arithmetic(Record& record, const Context& context) {
    if (context.trap == trap_divide) {
        record.code = divides_by_zero(context) ? TARN_INTEGER_ZERO_DIVIDE : TARN_INTEGER_OVERFLOW;
        return;
    }
    const FloatUnit unit = faulting_unit(context);
    const std::uint16_t raised = raised_exceptions(context.floating, unit);
    constexpr std::uint16_t stack_fault = 0x40;
    const bool stack = unit == FloatUnit::x87 && (raised & platform::fp_invalid) != 0 &&
                       (context.floating.status & stack_fault) != 0;
    record.code = stack ? TARN_FLOAT_STACK : float_code(raised);
    if (unit == FloatUnit::x87 && context.floating.instruction != 0)
        record.address = reinterpret_cast<void*>(context.floating.instruction);
}

std::uint32_t other_code(int signal, int detail) {
    switch (signal) {
        case SIGBUS:
            return detail == BUS_ADRALN ? TARN_DATA_ALIGNMENT : TARN_PAGE_ERROR;
        case SIGILL:
            return TARN_ILLEGAL_INSTRUCTION;
        default:
            return 0;
    }
}

}  // namespace

void read_context(const ucontext_t& from, Context& to) {
    const auto& machine = from.uc_mcontext.gregs;
    to.flags = TARN_CONTEXT_INTEGER;
    to.size = sizeof to;
    for (int i = 0; i < 16; ++i)
        to.integer[i] = static_cast<std::uint64_t>(machine[integer_registers[i]]);
    to.instruction = static_cast<std::uint64_t>(machine[REG_RIP]);
    to.eflags = static_cast<std::uint64_t>(machine[REG_EFL]);
    const auto segments = static_cast<std::uint64_t>(machine[REG_CSGSFS]);
    to.cs = static_cast<std::uint16_t>(segments);
    to.gs = static_cast<std::uint16_t>(segments >> 16);
    to.fs = static_cast<std::uint16_t>(segments >> 32);
    to.ss = static_cast<std::uint16_t>(segments >> 48);
    to.trap = static_cast<std::uint32_t>(machine[REG_TRAPNO]);
    to.error = static_cast<std::uint32_t>(machine[REG_ERR]);
    if (from.uc_mcontext.fpregs == nullptr) return;
    to.flags |= TARN_CONTEXT_FLOAT;
    std::memcpy(&to.floating, from.uc_mcontext.fpregs, float_registers_size);
}

void write_context(const Context& from, ucontext_t& to) {
    auto& machine = to.uc_mcontext.gregs;
    for (int i = 0; i < 16; ++i)
        machine[integer_registers[i]] = static_cast<greg_t>(from.integer[i]);
    machine[REG_RIP] = static_cast<greg_t>(from.instruction);
    machine[REG_EFL] = static_cast<greg_t>(from.eflags);
    if (to.uc_mcontext.fpregs != nullptr)
        std::memcpy(to.uc_mcontext.fpregs, &from.floating, float_registers_size);
}

void describe(const platform::Fault& fault, Record& record, Context& context) {
    read_context(*fault.context, context);
    record = {};
    record.address = reinterpret_cast<void*>(context.instruction);
    if (fault.was_sent()) return;
    switch (fault.signal) {
        case SIGSEGV:
            describe_access(fault, record, context);
            break;
        case SIGFPE:
            describe_arithmetic(record, context);
            break;
        case SIGTRAP:
            if (context.trap == trap_debug) {
                record.code = TARN_SINGLE_STEP;
                break;
            }
            // The place is behind a breakpoint of one byte by then.
            record.code = TARN_BREAKPOINT;
            --context.instruction;
            record.address = reinterpret_cast<void*>(context.instruction);
            break;
        default:
            record.code = other_code(fault.signal, fault.info->si_code);
            break;
    }
}

}  // namespace tarn::exceptions
