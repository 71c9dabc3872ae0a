// Instructions that are carried out for the processor give what it gives itself when it is told to
// take small numbers for zeros.
#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "frame/debug_info.h"
#include "frame/hooks.h"
#include "frame/state.h"
#include "tarn/float.h"

namespace tarn::exceptions {
namespace {

constexpr unsigned flushing = 0x9FC0;  // all masked, denormals are zeros, results flushed

struct Operands {
    unsigned char a[32], b[32], c[32];
    std::uint64_t flags;
};

struct Case {
    const char* name;
    void (*run)(Operands&);
    bool wide;  // needs AVX and FMA
};

// A string that is part of an instruction can't come from a function.
#define SHORT(words)                                                                       \
    {                                                                                      \
        words,                                                                             \
            [](Operands& o) {                                                              \
                __asm__ volatile(                                                          \
                    "movups %0, %%xmm0\n\tmovups %2, %%xmm9\n\tmov $-1, %%eax\n\tcmp $0, " \
                    "%%eax\n\t" words "\n\tmovups %%xmm0, %0\n\tpushfq\n\tpopq %1"         \
                    : "+m"(o.a), "=r"(o.flags)                                             \
                    : "m"(o.b), "r"(&o.b)                                                  \
                    : "xmm0", "xmm9", "rax", "cc");                                        \
            },                                                                             \
            false                                                                          \
    }
#define WIDE(words)                                                                            \
    {                                                                                          \
        words,                                                                                 \
            [](Operands& o) {                                                                  \
                __asm__ volatile(                                                              \
                    "vmovups %0, %%ymm0\n\tvmovups %1, %%ymm9\n\tvmovups %2, %%ymm2\n\t" words \
                    "\n\tvmovups %%ymm0, %0"                                                   \
                    : "+m"(o.a)                                                                \
                    : "m"(o.b), "m"(o.c), "r"(&o.b)                                            \
                    : "xmm0", "xmm2", "xmm9");                                                 \
            },                                                                                 \
            true                                                                               \
    }

const Case cases[] = {
    SHORT("addpd %%xmm9, %%xmm0"),
    SHORT("mulpd (%3), %%xmm0"),
    SHORT("subps %%xmm9, %%xmm0"),
    SHORT("divps %%xmm9, %%xmm0"),
    SHORT("mulsd %%xmm9, %%xmm0"),
    SHORT("divss (%3), %%xmm0"),
    SHORT("sqrtsd %%xmm9, %%xmm0"),
    SHORT("minsd %%xmm9, %%xmm0"),
    SHORT("maxps %%xmm9, %%xmm0"),
    SHORT("cvtsd2ss %%xmm9, %%xmm0"),
    SHORT("cvtss2sd (%3), %%xmm0"),
    SHORT("cvtpd2ps %%xmm9, %%xmm0"),
    SHORT("cvtps2pd %%xmm9, %%xmm0"),
    SHORT("ucomisd %%xmm9, %%xmm0"),
    SHORT("comiss (%3), %%xmm0"),
    SHORT("cmpltpd %%xmm9, %%xmm0"),  // not carried out here, but by a step
    WIDE("vmulpd %%ymm9, %%ymm2, %%ymm0"),
    WIDE("vdivps (%3), %%ymm2, %%ymm0"),
    WIDE("vaddpd %%xmm9, %%xmm2, %%xmm0"),
    WIDE("vmulss %%xmm9, %%xmm2, %%xmm0"),
    WIDE("vcvtsd2ss %%xmm9, %%xmm2, %%xmm0"),
    WIDE("vsqrtpd %%ymm9, %%ymm0"),
    WIDE("vfmadd132sd %%xmm9, %%xmm2, %%xmm0"),
    WIDE("vfnmsub213ps %%ymm9, %%ymm2, %%ymm0"),
    WIDE("vfmsub231pd (%3), %%ymm2, %%ymm0"),
    WIDE("vfnmadd213ss %%xmm9, %%xmm2, %%xmm0"),
};

// Small numbers, such whose product is small, and ordinary ones.
template <class Bits>
Bits number(std::mt19937_64& random, int fraction, int middle) {
    const Bits sign = random() & 1;
    Bits exponent = middle + random() % 4;
    if (random() % 3 == 0) exponent = random() % 3;
    if (random() % 4 == 0) exponent = middle / 2 + random() % 3;
    const Bits digits = random() & ((Bits{1} << fraction) - 1);
    return sign << (sizeof(Bits) * 8 - 1) | exponent << fraction | digits;
}

void fill(unsigned char (&bytes)[32], std::mt19937_64& random, bool real8) {
    for (int i = 0; i < (real8 ? 4 : 8); ++i) {
        if (real8) {
            const auto value = number<std::uint64_t>(random, 52, 1023);
            std::memcpy(bytes + i * 8, &value, 8);
        } else {
            const auto value = number<std::uint32_t>(random, 23, 127);
            std::memcpy(bytes + i * 4, &value, 4);
        }
    }
}

TEST(Flushed, AsTheProcessorDoesIt) {
    frame::ensure_up();
    frame::debug_info().permit_underflow = 1;
    const bool wide = __builtin_cpu_supports("avx") != 0 && __builtin_cpu_supports("fma") != 0;
    std::mt19937_64 random(7);
    for (const Case& each : cases) {
        if (each.wide && !wide) continue;
        const std::string name = each.name;
        const bool real8 = name.find("sd ") != name.npos || name.find("pd ") != name.npos ||
                           name.find("sd2") != name.npos || name.find("pd2") != name.npos;
        const bool from_real4 = name.find("ss2") != name.npos || name.find("ps2") != name.npos;
        for (int round = 0; round < 200; ++round) {
            Operands operands{};
            fill(operands.a, random, real8);
            fill(operands.b, random, real8 && !from_real4);
            fill(operands.c, random, real8);
            // A root of less than zero is invalid before it is small.
            if (name.find("sqrt") != name.npos) {
                for (int i = 7; i < 32; i += 8) operands.b[i] &= 0x7F;
            }
            Operands expected = operands;
            const unsigned kept = __builtin_ia32_stmxcsr();
            __builtin_ia32_ldmxcsr(flushing);
            each.run(expected);
            constexpr unsigned trapping = 0x1F80 & ~0x0900;  // underflow and denormal
            __builtin_ia32_ldmxcsr(trapping);
            each.run(operands);
            __builtin_ia32_ldmxcsr(kept);
            ASSERT_EQ(std::memcmp(operands.a, expected.a, sizeof operands.a), 0)
                << each.name << ", round " << round;
            ASSERT_EQ(operands.flags & 0x8D5, expected.flags & 0x8D5) << each.name;
        }
    }
    EXPECT_GT(__get_underflow_count(), 1000);
}

}  // namespace
}  // namespace tarn::exceptions
