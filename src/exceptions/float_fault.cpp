#include "exceptions/float_fault.h"

#include <cstring>
#include <sys/uio.h>
#include <unistd.h>

#include "exceptions/flushed.h"
#include "exceptions/instruction.h"

namespace tarn::exceptions {
namespace {

constexpr std::uint32_t trap_sse = 19;
constexpr std::uint32_t trap_x87 = 16;
constexpr std::uint16_t x87_error_summary = 0x80;
constexpr std::uint16_t x87_cleared_status = 0x80FF;  // what clearing exceptions clears
constexpr std::uint32_t sse_denormals_are_zero = 0x0040;
constexpr std::uint32_t sse_flush_to_zero = 0x8000;
constexpr int sse_mask_shift = 7;
constexpr std::uint32_t step_flag = 0x100;
constexpr int significand_size = 8;

// An instruction that is carried out alone on this thread.
struct Step {
    bool active = false;
    std::uint32_t sse_control = 0;
    bool was_stepping = false;
};
[[gnu::tls_model("initial-exec")]] thread_local Step the_step;

int top_of(const tarn_float_area& area) {
    return area.status >> 11 & 7;
}

void set_zero(tarn_float_area& area, unsigned from_top) {
    area.st[from_top].significand = 0;
    area.st[from_top].sign_and_exponent = 0;
    area.tags |= static_cast<std::uint8_t>(1U << ((top_of(area) + from_top) & 7));
}

void pop(tarn_float_area& area) {
    const int top = top_of(area);
    area.tags &= static_cast<std::uint8_t>(~(1U << top));
    // Registers are kept by their distance from the top.
    const auto first = area.st[0];
    std::memmove(&area.st[0], &area.st[1], 7 * sizeof area.st[0]);
    area.st[7] = first;
    area.status = static_cast<std::uint16_t>((area.status & ~0x3800) | ((top + 1) & 7) << 11);
}

// The store has not been done, and the address may be anybody's.
bool write_zeros(std::uint64_t address, std::size_t size) {
    char zeros[significand_size] = {};
    iovec local{zeros, size};
    iovec remote{reinterpret_cast<void*>(address), size};
    return process_vm_writev(getpid(), &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
}

bool repair_store(std::uint8_t opcode, unsigned reg, tarn_float_area& area) {
    const bool pops = reg == 3;
    const bool real4 = opcode == 0xD9 || (opcode == 0xDB && pops);
    const bool real8 = opcode == 0xDD;
    if ((reg != 2 && !pops) || (!real4 && !real8)) return false;
    if (!write_zeros(area.data, real4 ? 4 : 8)) return false;
    if (pops) pop(area);
    return true;
}

bool repair_result(std::uint8_t opcode, std::uint8_t operand, tarn_float_area& area) {
    const bool in_registers = operand >= 0xC0;
    const unsigned reg = operand >> 3 & 7;
    const unsigned rm = operand & 7;
    const bool to_top = opcode == 0xD8 || opcode == 0xDA || (opcode == 0xD9 && in_registers) ||
                        ((opcode == 0xDC || opcode == 0xDE) && !in_registers) ||
                        ((opcode == 0xDD || opcode == 0xDB || opcode == 0xD9) && reg == 0);
    if (to_top) {
        set_zero(area, 0);
        return true;
    }
    if (!in_registers) return repair_store(opcode, reg, area);
    if (opcode == 0xDC || opcode == 0xDD) {
        set_zero(area, rm);
        return true;
    }
    // The instruction has popped: its register is one nearer to the top.
    if (opcode == 0xDE && rm != 0) {
        set_zero(area, rm - 1);
        return true;
    }
    return false;
}

void clear_fault(tarn_float_area& area) {
    area.status &= static_cast<std::uint16_t>(~x87_cleared_status);
    area.instruction = 0;
    area.data = 0;
}

bool read_x87_code(std::uint64_t address, std::uint8_t (&code)[2]) {
    std::uint8_t bytes[longest_instruction];
    const std::size_t count = read_code(address, bytes);
    std::size_t at = 0;
    while (at + 2 < count && (bytes[at] < 0xD8 || bytes[at] > 0xDF)) ++at;
    if (at + 1 >= count || bytes[at] < 0xD8 || bytes[at] > 0xDF) return false;
    code[0] = bytes[at];
    code[1] = bytes[at + 1];
    return true;
}

// A denormal operand counts as zero, and a result too small for its kind becomes zero. The next
// instruction is the program's again, with the masks it had.
bool begin_flushed_step(Context& context) {
    if (!platform::is_watched(SIGTRAP)) return false;
    tarn_float_area& area = context.floating;
    the_step = {true, area.sse_control, (context.eflags & step_flag) != 0};
    area.sse_control |=
        sse_flush_to_zero | std::uint32_t{platform::fp_underflow | platform::fp_denormal}
                                << sse_mask_shift;
    area.sse_control |= area.sse_mask & sse_denormals_are_zero;
    area.sse_control &= ~std::uint32_t{platform::fp_all};
    context.eflags |= step_flag;
    return true;
}

}  // namespace

FloatUnit faulting_unit(const Context& context) {
    if (context.trap == trap_sse) return FloatUnit::sse;
    if (context.trap == trap_x87) return FloatUnit::x87;
    return (context.floating.status & x87_error_summary) != 0 ? FloatUnit::x87 : FloatUnit::sse;
}

std::uint16_t raised_exceptions(const tarn_float_area& area, FloatUnit unit) {
    const std::uint32_t flags = unit == FloatUnit::x87 ? area.status : area.sse_control;
    const std::uint32_t masks =
        unit == FloatUnit::x87 ? area.control : area.sse_control >> sse_mask_shift;
    return static_cast<std::uint16_t>(flags & ~masks & platform::fp_all);
}

bool recover_x87(const std::uint8_t (&code)[2], tarn_float_area& area) {
    if (!repair_result(code[0], code[1], area)) return false;
    clear_fault(area);
    return true;
}

bool recover_from_underflow(Context& context, ucontext_t* machine) {
    constexpr std::uint16_t small = platform::fp_underflow | platform::fp_denormal;
    const FloatUnit unit = faulting_unit(context);
    if ((raised_exceptions(context.floating, unit) & small) == 0) return false;
    if (unit == FloatUnit::sse)
        return carry_out_flushed(context, machine) || begin_flushed_step(context);
    std::uint8_t code[2];
    return read_x87_code(context.floating.instruction, code) && recover_x87(code, context.floating);
}

bool end_flushed_step(ucontext_t& context) {
    if (!the_step.active) return false;
    the_step.active = false;
    if (context.uc_mcontext.fpregs != nullptr)
        context.uc_mcontext.fpregs->mxcsr =
            the_step.sse_control & ~std::uint32_t{platform::fp_underflow | platform::fp_denormal};
    if (!the_step.was_stepping)
        context.uc_mcontext.gregs[REG_EFL] &= ~static_cast<greg_t>(step_flag);
    return true;
}

bool repair_invalid(const Context& context, tarn_float_area& area, const char*& reason) {
    constexpr const char* negative_root = "Negative argument to square root\n";
    constexpr const char* too_big = "Floating point number too big for integer conversion\n";
    if (faulting_unit(context) == FloatUnit::sse) {
        Instruction instruction;
        if (!read_instruction(context, instruction) || instruction.map != 1) return false;
        const std::uint8_t opcode = instruction.opcode;
        if (opcode == 0x51) reason = negative_root;
        if (opcode == 0x2C || opcode == 0x2D || opcode == 0x5B || opcode == 0xE6) reason = too_big;
        return false;
    }
    std::uint8_t code[2];
    if (!read_x87_code(area.instruction, code)) return false;
    const unsigned reg = code[1] >> 3 & 7;
    if (code[0] == 0xD9 && code[1] == 0xFA) {
        reason = negative_root;
    } else if (code[0] == 0xD9 && code[1] == 0xF4) {
        set_zero(area, 0);
        clear_fault(area);
        return true;
    } else if ((code[0] == 0xDB || code[0] == 0xDF) && (reg == 2 || reg == 3)) {
        reason = too_big;
    }
    return false;
}

}  // namespace tarn::exceptions
