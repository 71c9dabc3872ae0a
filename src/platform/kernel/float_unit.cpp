#include "platform/kernel/float_unit.h"

#include <xmmintrin.h>

namespace tarn::platform {
namespace {

constexpr std::uint32_t sse_flags = 0x3F;
constexpr std::uint32_t sse_masks = 0x1F80;     // the x87's mask bits, 7 places up
constexpr std::uint32_t sse_rounding = 0x6000;  // bits 10 and 11 of the x87, 3 places up
constexpr std::uint16_t x87_default = 0x037F;

std::uint16_t read_control() {
    std::uint16_t word;
    __asm__ volatile("fnstcw %0" : "=m"(word));
    return word;
}

std::uint16_t read_status() {
    std::uint16_t word;
    __asm__ volatile("fnstsw %0" : "=m"(word));
    return word;
}

void write_control(std::uint16_t word) {
    __asm__ volatile("fldcw %0" : : "m"(word));
}

}  // namespace

void load_control_word(std::uint16_t word) {
    __asm__ volatile("fnclex");
    write_control(word);
    std::uint32_t sse = _mm_getcsr() & ~(sse_flags | sse_masks | sse_rounding);
    sse |= (word & std::uint32_t{fp_all}) << 7;
    sse |= (word & std::uint32_t{0x0C00}) << 3;
    _mm_setcsr(sse);
}

std::uint16_t control_word() {
    return read_control();
}

std::uint32_t sse_control() {
    return _mm_getcsr();
}

std::uint16_t pending_exceptions() {
    return static_cast<std::uint16_t>((read_status() | _mm_getcsr()) & fp_all);
}

void clear_exceptions() {
    __asm__ volatile("fnclex");
    _mm_setcsr(_mm_getcsr() & ~sse_flags);
}

std::uint16_t status_word() {
    return static_cast<std::uint16_t>(read_status() | (_mm_getcsr() & fp_all));
}

void reset_unit() {
    __asm__ volatile("fninit");
    _mm_setcsr(_mm_getcsr() & ~sse_flags);
}

MaskedFloat::MaskedFloat() : saved_sse(_mm_getcsr()), saved_x87(read_control()) {
    _mm_setcsr((saved_sse | sse_masks) & ~sse_rounding);
    if (saved_x87 != x87_default) write_control(x87_default);
}

MaskedFloat::~MaskedFloat() {
    // Flags that our own code left in the x87 would trap at the program's next instruction there;
    // when it has everything masked they are only noise, and clearing them costs too much.
    if (saved_x87 != x87_default) {
        __asm__ volatile("fnclex");
        write_control(saved_x87);
    }
    _mm_setcsr(saved_sse);
}

}  // namespace tarn::platform
