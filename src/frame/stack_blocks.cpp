// Stack blocks of run-time size for compiled code.
//
// An entry gets a byte count in the first argument register and returns with the block at its
// caller's stack pointer, and its address as the result. No C++ routine can do that, so these are
// written in the assembler. Counts are rounded up to 16, the alignment that the calls which the
// caller goes on to make need; the stack pointer moves down in steps of 0xFF6 bytes that are each
// touched, so that the guard page meets every page on the way.
#include <cstdint>

#include "frame/hooks.h"
#include "frame/state.h"

extern "C" {

// Reached by the assembler code below.
[[noreturn, gnu::used, gnu::visibility("hidden")]] void tarn_stack_failure(int number) {
    tarn::frame::attach();
    if (tarn::frame::hooks().fail) tarn::frame::hooks().fail(number);
    __builtin_trap();
}

[[gnu::used, gnu::visibility("hidden")]] bool tarn_stack_faults_armed() {
    return tarn::frame::state().stack_faults;
}
}

__asm__(R"(
        .text

        # rdi: bytes wanted. Jumps back to the caller with the stack pointer moved down; clobbers
        # rax, rcx, rdi, r10 and r11. rax: the block; r10: the stack pointer before it.
        .macro  TARN_MAKE_BLOCK
        popq    %r11
        .cfi_adjust_cfa_offset -8
        .cfi_register %rip, %r11
        movq    %rsp, %r10
        .cfi_def_cfa %r10, 0
        movq    %rdi, %rax
        shrq    $62, %rax
        jnz     .Ltarn_bad_request\@
        addq    $15, %rdi
        andq    $-16, %rdi
        movq    %rsp, %rax
        subq    %rdi, %rax
        jc      .Ltarn_bad_request\@
.Ltarn_step\@:
        movq    %rsp, %rcx
        subq    %rax, %rcx
        cmpq    $0xFF6, %rcx
        jbe     .Ltarn_last\@
        subq    $0xFF6, %rsp
        orb     $0, (%rsp)
        jmp     .Ltarn_step\@
.Ltarn_bad_request\@:
        movq    %r10, %rsp
        pushq   %r11
        andq    $-16, %rsp
        movl    $416, %edi
        call    tarn_stack_failure
.Ltarn_last\@:
        movq    %rax, %rsp
        orb     $0, (%rsp)
        .endm

        # Fills the block at rax up to r10 with the pattern in rdx.
        .macro  TARN_FILL_BLOCK
        movq    %r10, %rcx
        subq    %rax, %rcx
        shrq    $3, %rcx
        movq    %rax, %rdi
        movq    %rax, %rsi
        movq    %rdx, %rax
        rep stosq
        movq    %rsi, %rax
        .endm

        .globl  __adjust_stack
        .type   __adjust_stack, @function
        .globl  "__ADJUST_STACK#"
        .type   "__ADJUST_STACK#", @function
__adjust_stack:
"__ADJUST_STACK#":
        .cfi_startproc
        TARN_MAKE_BLOCK
        jmp     *%r11
        .cfi_endproc
        .size   __adjust_stack, .-__adjust_stack
        .size   "__ADJUST_STACK#", .-"__ADJUST_STACK#"

        .globl  __adjust_stack_f
        .type   __adjust_stack_f, @function
__adjust_stack_f:
        .cfi_startproc
        movq    %rsp, %rax
        orq     %rbp, %rax
        testb   $7, %al
        jnz     .Ltarn_askew
.Ltarn_straight:
        TARN_MAKE_BLOCK
        jmp     *%r11
.Ltarn_askew:
        # Only a caller whose frame is askew comes here, and only a test run looks at it.
        movq    %rsp, %r10
        andq    $-16, %rsp
        pushq   %rdi
        pushq   %r10
        call    tarn_stack_faults_armed
        popq    %r10
        popq    %rdi
        movq    %r10, %rsp
        testb   %al, %al
        jz      .Ltarn_straight
        andq    $-16, %rsp
        movl    $435, %edi
        call    tarn_stack_failure
        .cfi_endproc
        .size   __adjust_stack_f, .-__adjust_stack_f

        .globl  __adjust_check_stack
        .type   __adjust_check_stack, @function
__adjust_check_stack:
        .cfi_startproc
        movabsq $0x8080808080808080, %rdx
        jmp     .Ltarn_filled
        .cfi_endproc
        .size   __adjust_check_stack, .-__adjust_check_stack

        .globl  __adjust_zero_stack
        .type   __adjust_zero_stack, @function
__adjust_zero_stack:
        .cfi_startproc
        xorl    %edx, %edx
.Ltarn_filled:
        testq   %rdi, %rdi
        jle     .Ltarn_nothing
        TARN_MAKE_BLOCK
        TARN_FILL_BLOCK
        jmp     *%r11
.Ltarn_nothing:
        .cfi_def_cfa %rsp, 8
        .cfi_restore %rip
        movq    %rsp, %rax
        ret
        .cfi_endproc
        .size   __adjust_zero_stack, .-__adjust_zero_stack
)");
