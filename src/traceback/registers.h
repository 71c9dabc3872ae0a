// The registers that a stack is walked with, numbered as unwind tables number them.
#pragma once

#include <cstdint>
#include <ucontext.h>

namespace tarn::traceback {

enum Register : std::uint8_t {
    rax,
    rdx,
    rcx,
    rbx,
    rsi,
    rdi,
    rbp,
    rsp,
    r8,
    r9,
    r10,
    r11,
    r12,
    r13,
    r14,
    r15,
    return_address,
    register_count
};

struct Registers {
    std::uintptr_t value[register_count] = {};

    std::uintptr_t& operator[](unsigned which) { return value[which]; }
    std::uintptr_t operator[](unsigned which) const { return value[which]; }
    std::uintptr_t place() const { return value[return_address]; }
    std::uintptr_t stack() const { return value[rsp]; }
};

// As a signal found them.
Registers registers_of(const ucontext_t& context);

// The caller's, at the place of this call.
[[gnu::always_inline]] inline Registers registers_here() {
    Registers all;
    std::uintptr_t* value = all.value;
    // The callee-saved ones are all that a caller's frames can be found with.
    __asm__ volatile(
        "movq %%rbx, %c[rbx]*8(%[to])\n\tmovq %%rbp, %c[rbp]*8(%[to])\n\tmovq %%rsp, "
        "%c[rsp]*8(%[to])\n\t"
        "movq %%r12, %c[r12]*8(%[to])\n\tmovq %%r13, %c[r13]*8(%[to])\n\tmovq %%r14, "
        "%c[r14]*8(%[to])\n\t"
        "movq %%r15, %c[r15]*8(%[to])\n\tleaq 0(%%rip), %%rax\n\tmovq %%rax, %c[ra]*8(%[to])"
        :
        : [to] "r"(value), [rbx] "i"(rbx), [rbp] "i"(rbp), [rsp] "i"(rsp), [r12] "i"(r12),
          [r13] "i"(r13), [r14] "i"(r14), [r15] "i"(r15), [ra] "i"(return_address)
        : "rax", "memory");
    return all;
}

}  // namespace tarn::traceback
