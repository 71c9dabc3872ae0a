// A signal costs a microsecond or two, a step of the processor ten times that: loops that meet many
// small numbers wait for it. So what compiled code computes with is done here, in the handler, by
// the same operation on the same operands.
#include "exceptions/flushed.h"

#include <cstring>
#include <immintrin.h>
#include <type_traits>

#include "exceptions/float_fault.h"
#include "exceptions/instruction.h"

namespace tarn::exceptions {
namespace {

constexpr std::uint32_t denormals_are_zero = 0x0040;
constexpr std::uint32_t flush_to_zero = 0x8000;
constexpr std::uint32_t rounding = 0x6000;
constexpr std::uint32_t small = platform::fp_underflow | platform::fp_denormal;
constexpr int mask_shift = 7;
constexpr std::uint32_t all_masks = std::uint32_t{platform::fp_all} << mask_shift;
constexpr std::size_t half = 16;  // bytes of a register's lower half, all that SSE has

// ---- Operands and results, 16 bytes at a time ----

struct Bytes16 {
    alignas(half) unsigned char at[half] = {};
};

// The upper halves of the registers stand behind what every processor has, where the system says.
class UpperHalves {
  public:
    explicit UpperHalves(ucontext_t* machine) {
        constexpr std::uint32_t there = 0x46505853;
        constexpr std::size_t notes = 464;
        constexpr std::uint64_t avx = 4;
        constexpr std::uint64_t wider = 0x40;
        if (machine == nullptr || machine->uc_mcontext.fpregs == nullptr) return;
        auto* const area = reinterpret_cast<unsigned char*>(machine->uc_mcontext.fpregs);
        std::uint32_t magic = 0;
        std::uint32_t size = 0;
        std::uint64_t features = 0;
        std::memcpy(&magic, area + notes, sizeof magic);
        std::memcpy(&features, area + notes + 8, sizeof features);
        std::memcpy(&size, area + notes + 16, sizeof size);
        if (magic != there || (features & avx) == 0 || size < registers + 16 * half) return;
        std::memcpy(&used_, area + header, sizeof used_);
        // What is wider still would have to be cleared as well.
        if ((used_ & wider) == 0) area_ = area;
    }
    bool known() const { return area_ != nullptr; }
    Bytes16 get(unsigned which) const {
        Bytes16 value;
        if (area_ != nullptr && (used_ & in_use) != 0)
            std::memcpy(value.at, area_ + registers + which * half, half);
        return value;
    }
    void set(unsigned which, const Bytes16& value) {
        if ((used_ & in_use) == 0) {
            std::memset(area_ + registers, 0, 16 * half);
            used_ |= in_use;
            std::memcpy(area_ + header, &used_, sizeof used_);
        }
        std::memcpy(area_ + registers + which * half, value.at, half);
    }

  private:
    static constexpr std::size_t header = 512;
    static constexpr std::size_t registers = 576;
    static constexpr std::uint64_t in_use = 4;

    unsigned char* area_ = nullptr;
    std::uint64_t used_ = 0;
};

Bytes16 lower_half(const Context& context, unsigned which) {
    Bytes16 value;
    std::memcpy(value.at, context.floating.xmm[which], half);
    return value;
}

// ---- Operations ----

// The compiler may not move an operation out of the time in which small numbers count as zeros.
template <class Vector>
void pin(Vector& value) {
    __asm__ volatile("" : "+x"(value));
}

__m128d root(__m128d a) {
    return _mm_sqrt_pd(a);
}
__m128 root(__m128 a) {
    return _mm_sqrt_ps(a);
}
__m128d lesser(__m128d a, __m128d b) {
    return _mm_min_pd(a, b);
}
__m128 lesser(__m128 a, __m128 b) {
    return _mm_min_ps(a, b);
}
__m128d greater(__m128d a, __m128d b) {
    return _mm_max_pd(a, b);
}
__m128 greater(__m128 a, __m128 b) {
    return _mm_max_ps(a, b);
}

bool is_less(__m128d a, __m128d b) {
    return _mm_comilt_sd(a, b) != 0;
}
bool is_less(__m128 a, __m128 b) {
    return _mm_comilt_ss(a, b) != 0;
}

template <class Vector>
Vector arithmetic(std::uint8_t opcode, Vector a, Vector b) {
    switch (opcode) {
        case 0x51:
            return root(b);
        case 0x58:
            return a + b;
        case 0x59:
            return a * b;
        case 0x5C:
            return a - b;
        case 0x5D:
            return lesser(a, b);
        case 0x5E:
            return a / b;
        default:
            return greater(a, b);
    }
}
bool is_arithmetic_opcode(std::uint8_t opcode) {
    return opcode == 0x51 || (opcode >= 0x58 && opcode <= 0x5F && opcode != 0x5A && opcode != 0x5B);
}

// a * b + c, of which the product or the sum may be negated.
[[gnu::target("fma")]] __m128d multiply_add(__m128d a, __m128d b, __m128d c) {
    return _mm_fmadd_pd(a, b, c);
}
[[gnu::target("fma")]] __m128 multiply_add(__m128 a, __m128 b, __m128 c) {
    return _mm_fmadd_ps(a, b, c);
}

// The opcode's tens tell which operand is which, its ones the signs.
template <class Vector>
Vector fused(std::uint8_t opcode, Vector first, Vector second, Vector third) {
    const unsigned order = opcode >> 4;
    const unsigned signs = opcode & 6;  // 0: fmadd, 2: fmsub, 4: fnmadd, 6: fnmsub
    Vector a = order == 9 ? first : second;
    const Vector b = order == 10 ? first : third;
    Vector c = order == 9 ? second : order == 10 ? third : first;
    if ((signs & 4) != 0) a = -a;
    if ((signs & 2) != 0) c = -c;
    return multiply_add(a, b, c);
}
bool is_fused_opcode(std::uint8_t opcode) {
    return (opcode & 15) >= 8 && opcode >= 0x98 && opcode <= 0xBF;
}

// ---- An instruction ----

enum class Work : std::uint8_t { none, arithmetic, narrow, widen, fused, compare };

struct Form {
    Work work = Work::none;
    bool real8 = false;       // of the operands
    bool scalar = false;      // one number, the others of the destination stay
    std::size_t read = half;  // bytes of an operand in memory, for each half
};

Form form_of(const Instruction& instruction) {
    Form form;
    form.scalar = instruction.prefix == 0xF2 || instruction.prefix == 0xF3;
    form.real8 = instruction.prefix == 0xF2 || instruction.prefix == 0x66;
    if (instruction.map == 1 && is_arithmetic_opcode(instruction.opcode)) {
        form.work = Work::arithmetic;
    } else if (instruction.map == 1 && instruction.opcode == 0x5A && !instruction.longer) {
        form.work = form.real8 ? Work::narrow : Work::widen;
    } else if (instruction.map == 2 && instruction.vector && instruction.prefix == 0x66 &&
               is_fused_opcode(instruction.opcode)) {
        form.work = Work::fused;
        form.real8 = instruction.wide;
        form.scalar = (instruction.opcode & 1) != 0;
    }
    const bool compares = instruction.opcode == 0x2E || instruction.opcode == 0x2F;
    if (instruction.map == 1 && compares && !form.scalar) {
        form.work = Work::compare;
        form.scalar = true;
    }
    if (form.scalar) {
        form.read = form.real8 ? 8 : 4;
    } else if (form.work == Work::widen) {
        form.read = 8;
    }
    return form;
}

// Numbers beside the one that is meant must raise nothing.
template <class Vector>
Vector load(const Bytes16& bytes, std::size_t meant) {
    Vector value = Vector{} + std::remove_reference_t<decltype(Vector{}[0])>{1};
    std::memcpy(&value, bytes.at, meant);
    return value;
}

template <class Vector>
Bytes16 bytes_of(Vector value) {
    Bytes16 bytes;
    std::memcpy(bytes.at, &value, half);
    return bytes;
}

struct Operands {
    Bytes16 destination, first, second;
};

template <class Vector>
Bytes16 compute_as(const Instruction& instruction, const Form& form, const Operands& operands) {
    const std::size_t meant = form.scalar ? form.read : half;
    auto a = load<Vector>(operands.first, meant);
    auto b = load<Vector>(operands.second, meant);
    pin(a);
    pin(b);
    Vector result;
    if (form.work == Work::fused) {
        auto destination = load<Vector>(operands.destination, meant);
        pin(destination);
        result = fused(instruction.opcode, destination, a, b);
    } else {
        result = arithmetic(instruction.opcode, a, b);
    }
    pin(result);
    return bytes_of(result);
}

Bytes16 narrowed(const Operands& operands, std::size_t meant) {
    auto wide = load<__m128d>(operands.second, meant);
    pin(wide);
    __m128 result = _mm_cvtpd_ps(wide);
    pin(result);
    return bytes_of(result);
}

Bytes16 widened(const Operands& operands, std::size_t meant) {
    auto narrow = load<__m128>(operands.second, meant);
    pin(narrow);
    __m128d result = _mm_cvtps_pd(narrow);
    pin(result);
    return bytes_of(result);
}

Bytes16 compute(const Instruction& instruction, const Form& form, const Operands& operands) {
    Bytes16 result;
    std::size_t kept_from = form.real8 ? 8 : 4;  // of a scalar result
    switch (form.work) {
        case Work::narrow:
            result = narrowed(operands, form.read);
            kept_from = 4;
            break;
        case Work::widen:
            result = widened(operands, form.read);
            kept_from = 8;
            break;
        default:
            result = form.real8 ? compute_as<__m128d>(instruction, form, operands)
                                : compute_as<__m128>(instruction, form, operands);
            break;
    }
    if (!form.scalar) return result;
    const Bytes16& rest = form.work == Work::fused ? operands.destination : operands.first;
    std::memcpy(result.at + kept_from, rest.at + kept_from, half - kept_from);
    return result;
}

// The processor's flags. Operands that aren't numbers raise nothing small.
template <class Vector>
std::uint64_t compare_as(const Form& form, const Operands& operands) {
    constexpr std::uint64_t carry = 0x01;
    constexpr std::uint64_t zero = 0x40;
    auto a = load<Vector>(operands.first, form.read);
    auto b = load<Vector>(operands.second, form.read);
    pin(a);
    pin(b);
    std::uint64_t flags = is_less(a, b) ? carry : is_less(b, a) ? 0 : zero;
    __asm__ volatile("" : "+r"(flags));
    return flags;
}

// False where something is raised that the program wants to hear of.
template <class Compute>
bool with_flushing(tarn_float_area& area, Compute compute) {
    const std::uint32_t kept = _mm_getcsr();
    _mm_setcsr((area.sse_control & rounding) | all_masks | flush_to_zero |
               (area.sse_mask & denormals_are_zero));
    compute();
    const std::uint32_t raised = _mm_getcsr() & platform::fp_all & ~small;
    _mm_setcsr(kept);
    const std::uint32_t masks = area.sse_control >> mask_shift;
    if ((raised & ~masks) != 0) return false;
    area.sse_control = (area.sse_control & ~small) | raised;
    return true;
}

void read_second(const Context& context, const Instruction& instruction, const Form& form,
                 const UpperHalves& upper, Bytes16 (&second)[2]) {
    if (instruction.mod == 3) {
        second[0] = lower_half(context, instruction.rm);
        if (instruction.longer) second[1] = upper.get(instruction.rm);
        return;
    }
    // The instruction has read it a moment ago.
    const auto* const memory = reinterpret_cast<const unsigned char*>(instruction.address);
    std::memcpy(second[0].at, memory, form.read);
    if (instruction.longer && !form.scalar) std::memcpy(second[1].at, memory + half, half);
}

bool read_known_code(const Context& context, Instruction& instruction) {
    constexpr std::uint64_t page = 4096;
    if (context.instruction % page > page - longest_instruction) return false;
    std::uint8_t code[longest_instruction];
    // It was reached a moment ago, so that its page can be read.
    std::memcpy(code, reinterpret_cast<const void*>(context.instruction), sizeof code);
    decode(code, context, instruction);
    return !instruction.relocated;
}

}  // namespace

bool carry_out_flushed(Context& context, ucontext_t* machine) {
    Instruction instruction;
    if (!read_known_code(context, instruction)) return false;
    Form form = form_of(instruction);
    UpperHalves upper(machine);
    if (form.work == Work::none || (instruction.vector && !upper.known())) return false;
    if (form.scalar) instruction.longer = false;
    Operands operands[2];
    Bytes16 second[2];
    read_second(context, instruction, form, upper, second);
    // A comparison has none beside its destination.
    const bool named = instruction.vector && form.work != Work::compare;
    const unsigned first = named ? instruction.source : instruction.reg;
    operands[0] = {lower_half(context, instruction.reg), lower_half(context, first), second[0]};
    if (instruction.longer) operands[1] = {upper.get(instruction.reg), upper.get(first), second[1]};
    Bytes16 results[2];
    std::uint64_t flags = 0;
    const bool done = with_flushing(context.floating, [&] {
        if (form.work == Work::compare) {
            flags = form.real8 ? compare_as<__m128d>(form, operands[0])
                               : compare_as<__m128>(form, operands[0]);
            return;
        }
        results[0] = compute(instruction, form, operands[0]);
        if (instruction.longer) results[1] = compute(instruction, form, operands[1]);
    });
    if (!done) return false;
    if (form.work == Work::compare) {
        constexpr std::uint64_t result_flags = 0x8D5;
        context.eflags = (context.eflags & ~result_flags) | flags;
    } else {
        std::memcpy(context.floating.xmm[instruction.reg], results[0].at, half);
        // What has a VEX prefix clears what it doesn't compute.
        if (instruction.vector) upper.set(instruction.reg, results[1]);
    }
    context.instruction += instruction.length;
    return true;
}

}  // namespace tarn::exceptions
