#include "tarn/exceptions.h"

#include <cerrno>
#include <cfloat>
#include <cmath>
#include <csetjmp>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>

#include "exceptions/attempt.h"
#include "exceptions/float_fault.h"
#include "frame/debug_info.h"
#include "frame/state.h"
#include "tarn/float.h"

namespace tarn::exceptions {
namespace {

// ---- Traps ----

char* region = nullptr;
std::size_t region_size = 4096;
std::uintptr_t seen_address = 0;
int seen_class = -1, seen_write = -1, calls = 0;

int open_region() {
    std::int32_t failed = 1;
    ++calls;
    get_access_details(&seen_address, &seen_write, &failed);
    seen_class = __exception_caught();
    if (failed != 0 || calls > 3) return 1;
    return mprotect(region, region_size, PROT_READ | PROT_WRITE) == 0 ? 0 : 1;
}

class Traps : public testing::Test {
  protected:
    void SetUp() override {
        frame::ensure_up();
        region = static_cast<char*>(
            mmap(nullptr, region_size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        calls = 0;
    }
    void TearDown() override {
        for (int each = 0; each < trap_class::count; ++each) __reset_exception(each);
        munmap(region, region_size);
    }
};

TEST_F(Traps, ATrapThatRepairsLetsTheProgramGoOn) {
    EXPECT_EQ(__set_exception_trap(0, open_region), nullptr);
    volatile char* place = region + 8;
    *place = 5;
    EXPECT_EQ(*place, 5);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen_address, reinterpret_cast<std::uintptr_t>(region) + 8);
    EXPECT_EQ(seen_write, 1);
    EXPECT_EQ(seen_class, 0);
    EXPECT_EQ(__exception_caught(), 0);
    EXPECT_EQ(__get_exception_context(), nullptr);
}

TEST_F(Traps, OnAThreadToo) {
    __set_exception_trap(trap_class::all, open_region);
    char got = 1;
    std::thread([&] { got = *const_cast<volatile char*>(region + 100); }).join();
    EXPECT_EQ(got, 0);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen_write, 0);
}

// Skips the division, as `set_machine_state` lets a trap do.
int skip_division() {
    tarn_machine_context machine;
    EXPECT_EQ(get_machine_state(&machine), 1);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(get_exception_address()), machine.instruction);
    machine.instruction += 2;  // idiv of a 32-bit register
    machine.integer[0] = 77;
    seen_class = __exception_caught();
    return set_machine_state(&machine) == 1 ? 0 : 1;
}

int divide(int value, int by) {
    int quotient = value;
    __asm__ volatile("cltd\n\tidivl %%ecx" : "+a"(quotient) : "c"(by) : "rdx", "cc");
    return quotient;
}

TEST_F(Traps, TheStateThatATrapSetsIsGoneOnWith) {
    __set_exception_trap(trap_class::arithmetic, skip_division);
    EXPECT_EQ(divide(9, 0), 77);
    EXPECT_EQ(seen_class, trap_class::integer_zero_divide);
    // The processor has one exception for both.
    EXPECT_EQ(divide(-2147483647 - 1, -1), 77);
    EXPECT_EQ(seen_class, trap_class::integer_overflow);
    EXPECT_EQ(divide(9, 2), 4);
}

TEST_F(Traps, ClassesOutOfRangeAreRefused) {
    for (int each : {-1, 17, 1000}) {
        EXPECT_EQ(__set_exception_trap(each, open_region), nullptr);
        EXPECT_EQ(__set_exception_trap(each, open_region), nullptr);
    }
    EXPECT_EQ(__set_exception_trap(16, open_region), nullptr);
    EXPECT_EQ(__set_exception_trap(16, nullptr), open_region);
}

sigjmp_buf back;
TEST_F(Traps, MayBeLeftByAJump) {
    calls = 0;
    __set_exception_trap(0, [] {
        ++calls;
        siglongjmp(back, 1);
        return 0;
    });
    while (calls < 3) {
        if (sigsetjmp(back, 1) == 0) *const_cast<volatile char*>(region) = 1;
    }
    EXPECT_EQ(calls, 3);
}

TEST_F(Traps, ThatDeclineOrEnd) {
    volatile char* place = region;
    EXPECT_EXIT(
        {
            __set_exception_trap(0, [] { return 1; });
            __Put_exception_message("In the second pass");
            *place = 1;
        },
        testing::KilledBySignal(SIGSEGV), "In the second pass\n.*Access violation:\n");
    EXPECT_EXIT(
        {
            __set_exception_trap(0, [] { return -2; });
            *place = 1;
        },
        testing::ExitedWithCode(1), "^$");
    // A fault inside the trap doesn't come to the trap again.
    EXPECT_EXIT(
        {
            __set_exception_trap(0, [] { return static_cast<int>(*region); });
            *place = 1;
        },
        testing::KilledBySignal(SIGSEGV), "attempted to read from location");
}

// ---- Underflow ----

class Underflow : public testing::Test {
  protected:
    void SetUp() override {
        frame::ensure_up();
        frame::debug_info().permit_underflow = 1;
        frame::state().underflow_count = 0;
        __unmask_all_fp_ex();
    }
    void TearDown() override { __mask_all_fp_ex(); }
};

TEST_F(Underflow, OfSseIsFlushedToZeroAndCounted) {
    volatile double small = DBL_MIN, half = 0.5, normal = 3.0;
    volatile double product = small * half;
    volatile float narrow = 1e-30F, narrow_product = narrow * narrow;
    volatile double sum = normal + half;
    EXPECT_EQ(__get_underflow_count(), 2);
    EXPECT_EQ(product, 0.0);
    EXPECT_EQ(narrow_product, 0.0F);
    EXPECT_EQ(sum, 3.5);
    // The masks are the program's again.
    product = small * half;
    EXPECT_EQ(__get_underflow_count(), 3);
    // An operand that is too small counts as zero.
    volatile double denormal = 0;
    const std::uint64_t bits = 1;
    std::memcpy(const_cast<double*>(&denormal), &bits, sizeof bits);
    product = denormal + normal;
    EXPECT_EQ(product, 3.0);
    EXPECT_EQ(__get_underflow_count(), 4);
}

TEST_F(Underflow, OfTheX87) {
    volatile long double small = LDBL_MIN, half = 0.5L;
    volatile long double product = small * half;
    EXPECT_EQ(product, 0.0L);
    EXPECT_EQ(__get_underflow_count(), 1);
    // A store to memory has not been done when it underflows: it is done, and popped, with zero.
    // The unit tells of it with its next instruction.
    double stored = 9;
    long double tiny = 1e-400L;
    __asm__ volatile("fldt %1\n\tfstpl %0\n\tfwait" : "=m"(stored) : "m"(tiny));
    volatile long double next = half + half;
    EXPECT_EQ(stored, 0.0);
    EXPECT_EQ(next, 1.0L);
    EXPECT_EQ(__get_underflow_count(), 2);
}

int put_zero() {
    ++calls;
    return clear_flt_underflow() == 1 ? 0 : 1;
}

TEST_F(Underflow, CanBeRepairedByATrap) {
    calls = 0;
    __set_exception_trap(trap_class::underflow, put_zero);
    volatile double small = DBL_MIN;
    volatile double product = small * 0.5;
    __reset_exception(trap_class::underflow);
    EXPECT_EQ(product, 0.0);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(clear_flt_underflow(), 0);
}

TEST_F(Underflow, IsAFailureWhereItIsNotPermitted) {
    EXPECT_EXIT(
        {
            __set_underflow_flag(0);
            volatile double small = DBL_MIN;
            small = small * 0.5;
        },
        testing::KilledBySignal(SIGFPE),
        "co-processor fault at address .*\nFloating point underflow");
}

// Where the result of each x87 instruction is.
TEST(RecoverX87, PutsZeroWhereTheResultIs) {
    struct Case {
        std::uint8_t code[2];
        int zeroed;  // register from the top; -1: none, it fails
    };
    constexpr Case cases[] = {
        {{0xD8, 0xC9}, 0},  {{0xDA, 0x08}, 0},  {{0xD9, 0xC1}, 0},  {{0xDC, 0x08}, 0},
        {{0xDE, 0x08}, 0},  {{0xDD, 0x00}, 0},  {{0xDC, 0xCB}, 3},  {{0xDD, 0xD2}, 2},
        {{0xDE, 0xCA}, 1},  {{0xDE, 0xC8}, -1}, {{0xDF, 0xE0}, -1}, {{0xDD, 0x20}, -1},
        {{0xDF, 0x10}, -1},
    };
    for (const Case& each : cases) {
        tarn_float_area area = {};
        for (auto& st : area.st) st = {1, 0x3FFF, {}};
        area.status = 0x8090;
        area.instruction = area.data = 7;
        EXPECT_EQ(recover_x87(each.code, area), each.zeroed >= 0);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(area.st[i].significand == 0, i == each.zeroed);
        EXPECT_EQ(area.status, each.zeroed >= 0 ? 0 : 0x8090);
        EXPECT_EQ(area.instruction, each.zeroed >= 0 ? 0 : 7);
    }
}

TEST(RecoverX87, StoresZeroAndPops) {
    struct Case {
        std::uint8_t code[2];
        std::size_t size;
        bool pops;
    };
    constexpr Case cases[] = {{{0xD9, 0x18}, 4, true},
                              {{0xDB, 0x18}, 4, true},
                              {{0xDD, 0x18}, 8, true},
                              {{0xD9, 0x10}, 4, false},
                              {{0xDD, 0x10}, 8, false}};
    for (const Case& each : cases) {
        std::uint64_t memory = ~std::uint64_t{0};
        tarn_float_area area = {};
        area.tags = 0xC0;  // registers 6 and 7
        area.status = 6 << 11;
        area.st[1].significand = 22;
        area.data = reinterpret_cast<std::uintptr_t>(&memory);
        EXPECT_TRUE(recover_x87(each.code, area));
        EXPECT_EQ(memory, each.size == 8 ? 0 : ~std::uint64_t{0} << 32);
        EXPECT_EQ(area.status, each.pops ? 7 << 11 : 6 << 11);
        EXPECT_EQ(area.tags, each.pops ? 0x80 : 0xC0);
        EXPECT_EQ(area.st[0].significand, each.pops ? 22U : 0U);
        area.data = 8;
        EXPECT_FALSE(recover_x87(each.code, area));
    }
}

// ---- The filter on records of a caller, breakpoints, signals ----

TEST(Filter, OnRecordsOfACaller) {
    tarn_exception_record record = {};
    tarn_machine_context context = {};
    context.flags = TARN_CONTEXT_INTEGER;
    record.code = 0x40010006;
    EXPECT_EQ(tarn_exception_handler(&record, nullptr, &context), 0);
    record.code = 0xC0001234;
    EXPECT_EXIT(tarn_exception_handler(&record, nullptr, &context), testing::ExitedWithCode(1),
                "Cannot process exception c0001234\nAt address 00000000\n");
    record.code = TARN_FLOAT_INVALID;
    EXPECT_EXIT(tarn_exception_handler(&record, nullptr, &context), testing::ExitedWithCode(1),
                "Floating point coprocessor area is not available\n");
    context.flags = 0;
    EXPECT_EXIT(tarn_exception_handler(&record, nullptr, &context), testing::ExitedWithCode(1),
                "Unknown processor type\n");
}

TEST(Breakpoint, ReportsAndGoesOn) {
    testing::internal::CaptureStderr();
    __At_Breakpoint("here");
    __At_Breakpoint("there");
    const std::string report = testing::internal::GetCapturedStderr();
    EXPECT_NE(report.find("here\nBreakpoint at address "), std::string::npos);
    EXPECT_NE(report.find("there\nBreakpoint at address "), std::string::npos);
}

int heard = 0;
TEST(Signals, AreCalledOnceAndThenAtTheirDefault) {
    heard = 0;
    const tarn_signal_routine listen = [](int number, int) { heard = number; };
    EXPECT_EQ(tarn_signal(107, listen), nullptr);
    EXPECT_EQ(tarn_signal(107, listen), listen);
    EXPECT_EQ(tarn_raise(107), 0);
    EXPECT_EQ(heard, 107);
    EXPECT_EXIT(tarn_raise(107), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(tarn_raise(203), testing::ExitedWithCode(1), "");
    tarn_signal(106, TARN_SIGNAL_IGNORE);
    EXPECT_EQ(tarn_raise(106), 0);
    tarn_signal(106, TARN_SIGNAL_DEFAULT);
    errno = 0;
    EXPECT_EQ(tarn_raise(99), 1);
    EXPECT_EQ(errno, -1008);
    errno = 0;
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(tarn_signal(200, listen)), -2);
    EXPECT_EQ(errno, -1008);
}

TEST(Signals, BreakKeysComeToTheirRoutine) {
    heard = 0;
    EXPECT_EQ(tarn_signal(100, [](int number, int) { heard = number; }), nullptr);
    for (int key : {SIGQUIT, SIGINT}) {
        heard = 0;
        raise(key);
        EXPECT_EQ(heard, 100);
        tarn_signal(100, [](int number, int) { heard = number; });
    }
    tarn_signal(100, TARN_SIGNAL_IGNORE);
    raise(SIGINT);
    tarn_signal(100, TARN_SIGNAL_DEFAULT);
    EXPECT_EXIT(raise(SIGQUIT), testing::KilledBySignal(SIGQUIT), "");
    EXPECT_EXIT(tarn_raise(100), testing::KilledBySignal(SIGINT), "");
}

TEST(Attempt, IsLeftWhenItFaultsOrHangs) {
    frame::ensure_up();
    volatile int steps = 0;
    EXPECT_TRUE(attempt(5, [&] { steps = 1; }));
    EXPECT_FALSE(attempt(5, [&] { *reinterpret_cast<volatile int*>(steps * 8) = 1; }));
    EXPECT_FALSE(attempt(1, [] {
        for (;;) pause();
    }));
    EXPECT_FALSE(attempt(5, [&] {
        EXPECT_FALSE(attempt(5, [] { __builtin_trap(); }));
        *reinterpret_cast<volatile int*>(steps * 8) = 1;
    }));
}

}  // namespace
}  // namespace tarn::exceptions
