#include <cstdint>
#include <gtest/gtest.h>

#include "frame/link_name.h"

extern "C" {
void __adjust_stack();
void __adjust_stack_f();
void __adjust_check_stack();
void __adjust_zero_stack();
void ADJUST_STACK_h() LINK_NAME("__ADJUST_STACK#");
void FAIL_h(const std::int16_t*) LINK_NAME("FAIL#");
}

namespace {

struct Block {
    std::uintptr_t before, after;  // the stack pointer around the call
    std::uintptr_t result;
    std::uint64_t first, last;  // words of the block

    std::size_t size() const { return before - after; }
};

// Calls an entry as compiled code does, looks at the block, and gives it back.
__attribute__((noinline)) Block ask(void (*entry)(), std::intptr_t bytes) {
    Block block;
    register void (*callee)() __asm__("r14") = entry;
    __asm__ volatile(
        "movq %%rsp, %%r12\n\t"
        "andq $-16, %%rsp\n\t"
        "subq $256, %%rsp\n\t"  // over what the compiler keeps below the stack pointer
        "movq %%rsp, %%r13\n\t"
        "call *%%r14\n\t"
        "movq %%r13, 0(%%rbx)\n\t"
        "movq %%rsp, 8(%%rbx)\n\t"
        "movq %%rax, 16(%%rbx)\n\t"
        "movq (%%rsp), %%rdx\n\t"
        "movq %%rdx, 24(%%rbx)\n\t"
        "movq -8(%%r13), %%rdx\n\t"
        "movq %%rdx, 32(%%rbx)\n\t"
        "movq %%r12, %%rsp\n\t"
        : "+D"(bytes), "+r"(callee)
        : "b"(&block)
        : "rax", "rcx", "rdx", "rsi", "r8", "r9", "r10", "r11", "r12", "r13", "memory", "cc");
    return block;
}

TEST(StackBlocks, SizesAreRoundedAndTheBlockIsAtTheStackPointer) {
    struct Case {
        std::intptr_t bytes;
        std::size_t size;
    };
    for (Case c : {Case{0, 0}, Case{1, 16}, Case{16, 16}, Case{0xFF6, 0x1000}, Case{100000, 100000},
                   Case{1000001, 1000016}}) {
        for (void (*entry)() : {__adjust_stack, __adjust_stack_f, ADJUST_STACK_h}) {
            Block block = ask(entry, c.bytes);
            EXPECT_EQ(block.size(), c.size) << c.bytes;
            EXPECT_EQ(block.result, block.after);
        }
    }
}

TEST(StackBlocks, Filled) {
    Block block = ask(__adjust_check_stack, 5000);
    EXPECT_EQ(block.size(), 5008u);
    EXPECT_EQ(block.first, 0x8080808080808080u);
    EXPECT_EQ(block.last, 0x8080808080808080u);
    block = ask(__adjust_zero_stack, 24);
    EXPECT_EQ(block.size(), 32u);
    EXPECT_EQ(block.first | block.last, 0u);
    for (std::intptr_t bytes : {std::intptr_t{0}, std::intptr_t{-8}, INTPTR_MIN}) {
        EXPECT_EQ(ask(__adjust_check_stack, bytes).size(), 0u);
        EXPECT_EQ(ask(__adjust_zero_stack, bytes).size(), 0u);
    }
}

TEST(StackBlocks, BadRequestsFail) {
    // The linker takes the room that reports failures from its archive only when it's named.
    void (*volatile named)(const std::int16_t*) = FAIL_h;
    ASSERT_NE(named, nullptr);
    EXPECT_EXIT(ask(__adjust_stack, -1), testing::ExitedWithCode(1), "416, Bad request for stack");
    EXPECT_EXIT(ask(__adjust_stack_f, std::intptr_t{1} << 62), testing::ExitedWithCode(1), "416");
}

}  // namespace
