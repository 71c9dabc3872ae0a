#include "intrinsics/arrays/cpu.h"

#include <algorithm>
#include <atomic>
#include <cpuid.h>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace tarn::arrays {
namespace {

constinit std::atomic<CpuLevel> known_level{CpuLevel::unknown};

// The register sets that the system saves for a thread.
std::uint64_t saved_state() {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low | static_cast<std::uint64_t>(high) << 32;
}

CpuLevel ask_processor() {
    constexpr std::uint64_t vector_state = 0x06;
    constexpr std::uint64_t wide_state = 0xE6;
    constexpr unsigned fma = 1u << 12;
    constexpr unsigned osxsave = 1u << 27;
    constexpr unsigned avx2 = 1u << 5;
    constexpr unsigned avx512 = 1u << 16 | 1u << 17 | 1u << 30 | 1u << 31;  // F, DQ, BW, VL
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0) return CpuLevel::sse2;
    if ((c & fma) == 0 || (c & osxsave) == 0) return CpuLevel::sse2;
    const std::uint64_t saved = saved_state();
    if ((saved & vector_state) != vector_state) return CpuLevel::sse2;
    if (__get_cpuid_count(7, 0, &a, &b, &c, &d) == 0) return CpuLevel::sse2;
    if ((b & avx2) == 0) return CpuLevel::sse2;
    if ((b & avx512) != avx512 || (saved & wide_state) != wide_state) return CpuLevel::avx2;
    return CpuLevel::avx512;
}

CpuLevel limit() {
    const char* const text = std::getenv("TARN_CPU");
    if (text == nullptr) return CpuLevel::avx512;
    if (std::string_view(text) == "sse2") return CpuLevel::sse2;
    if (std::string_view(text) == "avx2") return CpuLevel::avx2;
    return CpuLevel::avx512;
}

}  // namespace

CpuLevel cpu_level() {
    const CpuLevel known = known_level.load(std::memory_order_relaxed);
    if (known != CpuLevel::unknown) [[likely]]
        return known;
    const CpuLevel level = std::min(ask_processor(), limit());
    known_level.store(level, std::memory_order_relaxed);
    return level;
}

}  // namespace tarn::arrays
