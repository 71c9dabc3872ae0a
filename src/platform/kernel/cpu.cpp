#include "platform/kernel/cpu.h"

#include <algorithm>
#include <cpuid.h>
#include <cstdlib>
#include <string_view>

namespace tarn::platform {

constinit std::atomic<VectorLevel> known_vector_level{VectorLevel::unknown};

namespace {

struct Registers {
    unsigned a = 0, b = 0, c = 0, d = 0;
};

Registers leaf(unsigned number) {
    Registers r;
    __get_cpuid_count(number, 0, &r.a, &r.b, &r.c, &r.d);
    return r;
}

bool all(unsigned word, unsigned bits) {
    return (word & bits) == bits;
}

// Which registers the system saves when it changes between processes (XCR0).
unsigned saved_registers() {
    unsigned low = 0;
    unsigned high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

VectorLevel level_of_processor() {
    constexpr unsigned ymm_saved = 0x06;
    constexpr unsigned zmm_saved = 0xE6;
    const Registers basic = leaf(1);
    if (!all(basic.c, bit_OSXSAVE | bit_AVX | bit_FMA)) return VectorLevel::base;
    const unsigned saved = saved_registers();
    const Registers more = leaf(7);
    if (!all(saved, ymm_saved) || !all(more.b, bit_AVX2 | bit_BMI | bit_BMI2))
        return VectorLevel::base;
    const bool wide = all(saved, zmm_saved) &&
                      all(more.b, bit_AVX512F | bit_AVX512VL | bit_AVX512BW | bit_AVX512DQ);
    return wide ? VectorLevel::avx512 : VectorLevel::avx2;
}

VectorLevel level_allowed() {
    const char* const word = std::getenv("TARN_CPU");
    if (word == nullptr) return VectorLevel::avx512;
    const std::string_view name = word;
    if (name == "base") return VectorLevel::base;
    return name == "avx2" ? VectorLevel::avx2 : VectorLevel::avx512;
}

}  // namespace

VectorLevel find_vector_level() {
    const VectorLevel level = std::min(level_of_processor(), level_allowed());
    known_vector_level.store(level, std::memory_order_relaxed);
    return level;
}

}  // namespace tarn::platform
