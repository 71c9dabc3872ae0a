// RANDOM_NUMBER's streams: each thread has its own, 2^128 numbers behind the one that the thread
// before it was given.
#pragma once

#include <array>
#include <cstdint>

#include "intrinsics/random/xoshiro.h"

namespace tarn::intrinsics {

// The calling thread's stream; made at its first use.
struct ThreadStream {
    Stream stream;
    bool made;

    [[gnu::tls_model("initial-exec")]] static constinit thread_local ThreadStream current;
};
Stream& make_thread_stream();
inline Stream& thread_stream() {
    ThreadStream& current = ThreadStream::current;
    return current.made ? current.stream : make_thread_stream();
}

// The seed as a program sees it: four 64-bit words that stand for the generator's state.
using Seed = std::array<std::uint64_t, 4>;
Seed thread_seed();
// Of the calling thread, and of the threads that come to draw their first number later.
void set_seed(const Seed& seed);
void set_seed_from_system();
// The seed that every run begins with that asks for repeatable numbers.
void set_repeatable_seed();

// The older functions RAND, IRAND and SRAND of gfortran: one stream for all threads,
// x := 16807 * x modulo 2^31 - 1.
std::int32_t next_irand();
void seed_irand(std::int32_t seed);
// A value of next_irand as a REAL from [0, 1).
float real_of_irand(std::int32_t value);

}  // namespace tarn::intrinsics
