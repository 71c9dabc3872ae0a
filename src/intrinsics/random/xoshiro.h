// xoshiro256** (D. Blackman and S. Vigna, "Scrambled linear pseudorandom number generators", 2018):
// the generator behind RANDOM_NUMBER in gfortran's dialect.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

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

// A thread's numbers. Arrays of middling size are made from numbers that were made many at once,
// ahead of time; what comes out is the same as one at a time.
class Stream {
  public:
    constexpr Stream() = default;

    std::uint64_t next() {
        if (ahead_ != nullptr && ahead_->used < Ahead::size) return ahead_->numbers[ahead_->used++];
        return generator_.next();
    }
    // The generator as it stands before the next number.
    Xoshiro position() const;
    void restart(const Xoshiro& generator);

    // As many numbers in a row.
    template <class Real>
    void fill(Real* values, std::size_t count);

    // The storage for numbers made ahead, which is no longer the stream's: for the end of a thread.
    void* give_up_storage();

  private:
    struct Ahead {
        static constexpr std::size_t size = 8192;
        Xoshiro start;     // before the first of them
        std::size_t used;  // of them
        std::uint64_t numbers[size];
    };
    template <class Real>
    std::size_t take_ahead(Real* values, std::size_t count);
    bool make_ahead();

    Xoshiro generator_{};  // behind what was made ahead
    Ahead* ahead_ = nullptr;
};
// Called with storage that a stream takes for itself, which ends with the thread.
void keep_for_thread(void* storage);

// How numbers become a REAL: by their upper 24, 53 or 64 bits; REAL(16) takes 113 bits of two.
template <class Real, class Source>
Real random_real(Source& generator) {
    if constexpr (sizeof(Real) == 4) {
        return static_cast<Real>(generator.next() >> 40) * 0x1p-24F;
    } else if constexpr (sizeof(Real) == 8) {
        return static_cast<Real>(generator.next() >> 11) * 0x1p-53;
    } else if constexpr (std::is_same_v<Real, long double>) {
        return static_cast<Real>(generator.next()) * 0x1p-64L;
    } else {
        const unsigned __int128 high = generator.next();
        const unsigned __int128 bits = high << 49 | generator.next() >> 15;
        constexpr __float128 unit = static_cast<__float128>(0x1p-64) * 0x1p-49;
        return static_cast<__float128>(bits) * unit;
    }
}

}  // namespace tarn::intrinsics
