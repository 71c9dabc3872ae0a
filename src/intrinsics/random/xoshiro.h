// xoshiro256** (D. Blackman and S. Vigna, "Scrambled linear pseudorandom number generators", 2018):
// the generator behind RANDOM_NUMBER in gfortran's dialect.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace tarn::intrinsics {

struct Xoshiro {
    std::uint64_t s[4];

    std::uint64_t next() {
        const std::uint64_t result = std::rotl(s[1] * 5, 7) * 9;
        step();
        return result;
    }
    void step() {
        const std::uint64_t shifted = s[1] << 17;
        s[2] ^= s[0];
        s[3] ^= s[1];
        s[1] ^= s[2];
        s[0] ^= s[3];
        s[2] ^= shifted;
        s[3] = std::rotl(s[3], 45);
    }
    // Past 2^128 numbers, to a stream that never meets this one.
    void jump();
};

// How numbers become a REAL: by their upper 24, 53 or 64 bits; REAL(16) takes 113 bits of two.
template <class Real>
Real random_real(Xoshiro& generator) {
    if constexpr (sizeof(Real) == 4) {
        return static_cast<Real>(generator.next() >> 40) * 0x1p-24F;
    } else if constexpr (sizeof(Real) == 8) {
        return static_cast<Real>(generator.next() >> 11) * 0x1p-53;
    } else {
        return static_cast<Real>(generator.next()) * 0x1p-64L;
    }
}
template <>
inline __float128 random_real(Xoshiro& generator) {
    const unsigned __int128 high = generator.next();
    const unsigned __int128 bits = high << 49 | generator.next() >> 15;
    constexpr __float128 unit = static_cast<__float128>(0x1p-64) * 0x1p-49;
    return static_cast<__float128>(bits) * unit;
}

// As many numbers in a row: the same as one at a time.
template <class Real>
void fill_random(Xoshiro& generator, Real* values, std::size_t count);

}  // namespace tarn::intrinsics
