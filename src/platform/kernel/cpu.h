// What the processor can do beyond the x86-64 that everything is compiled for.
//
// A routine that has a wider form asks `vector_level()` where the work is long enough to pay for
// the question: one load and a compare. TARN_CPU=base in the environment keeps a program on the
// base forms, TARN_CPU=avx2 from using AVX-512.
#pragma once

#include <atomic>
#include <cstdint>

namespace tarn::platform {

enum class VectorLevel : std::uint8_t {
    unknown,
    base,    // SSE2
    avx2,    // with FMA, BMI and BMI2, which every processor with AVX2 that counts has
    avx512,  // F, VL, BW and DQ
};

// The level found out once; `unknown` until somebody asks.
extern std::atomic<VectorLevel> known_vector_level;
VectorLevel find_vector_level();

inline VectorLevel vector_level() {
    const VectorLevel level = known_vector_level.load(std::memory_order_relaxed);
    return level != VectorLevel::unknown ? level : find_vector_level();
}

}  // namespace tarn::platform
