#include "intrinsics/random/streams.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <pthread.h>
#include <sys/random.h>
#include <time.h>
#include <unistd.h>

namespace tarn::intrinsics {

constinit thread_local ThreadStream ThreadStream::current{};

namespace {

// A seed that a program sets may have few bits, or none: exclusive-or with these makes a state of
// it that gives good numbers from the start. The values are gfortran's, so that a seed means the
// same numbers there and here.
constexpr Seed scrambler = {0xBD0C5B6E50C2DF49, 0xD46061CD46E1DF38, 0xBB4F4D4ED6103544,
                            0x114A583D0756AD39};
constexpr Seed repeatable = {0x096A7F262EC19C9E, 0x453339922608C3BC, 0x3B14755E3C258C9F,
                             0x1EC5A7E24290F636};

struct Streams {
    std::mutex lock;
    bool seeded = false;
    Xoshiro latest{};  // the stream that was given away last
};
constinit Streams streams;

Xoshiro generator_of(const Seed& seed) {
    Xoshiro generator{};
    for (std::size_t i = 0; i < seed.size(); ++i) generator.s[i] = seed[i] ^ scrambler[i];
    return generator;
}

// Where the system has no random bytes to give yet, the moment and the process must do.
Seed seed_of_system() {
    Seed seed{};
    if (getrandom(seed.data(), sizeof seed, GRND_NONBLOCK) == sizeof seed) return seed;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    seed[0] = static_cast<std::uint64_t>(now.tv_sec) * 1000000000 +
              static_cast<std::uint64_t>(now.tv_nsec);
    seed[1] = static_cast<std::uint64_t>(getpid());
    return seed;
}

void begin_streams(const Xoshiro& generator) {
    streams.latest = generator;
    streams.seeded = true;
}

void restart(const Xoshiro& generator) {
    const std::lock_guard lock(streams.lock);
    begin_streams(generator);
    ThreadStream::current.stream.restart(generator);
    ThreadStream::current.made = true;
}

// ---- Storage of a thread's stream ----

pthread_key_t key;
pthread_once_t key_made = PTHREAD_ONCE_INIT;

void end_of_thread(void* storage) {
    ThreadStream::current.stream.give_up_storage();
    std::free(storage);
}

void make_key() {
    pthread_key_create(&key, end_of_thread);
}

}  // namespace

void keep_for_thread(void* storage) {
    pthread_once(&key_made, make_key);
    pthread_setspecific(key, storage);
}

Stream& make_thread_stream() {
    const std::lock_guard lock(streams.lock);
    if (!streams.seeded) begin_streams(generator_of(seed_of_system()));
    streams.latest.jump();
    ThreadStream::current.stream.restart(streams.latest);
    ThreadStream::current.made = true;
    return ThreadStream::current.stream;
}

Seed thread_seed() {
    const Xoshiro generator = thread_stream().position();
    Seed seed{};
    for (std::size_t i = 0; i < seed.size(); ++i) seed[i] = generator.s[i] ^ scrambler[i];
    return seed;
}

void set_seed(const Seed& seed) {
    restart(generator_of(seed));
}
void set_seed_from_system() {
    restart(generator_of(seed_of_system()));
}
void set_repeatable_seed() {
    restart(generator_of(repeatable));
}

// ---- RAND ----

namespace {

constexpr std::uint64_t modulus = 2147483647;
constexpr std::int32_t usual_seed = 123459876;
constinit std::atomic<std::uint64_t> irand_state{1};

}  // namespace

std::int32_t next_irand() {
    std::uint64_t state = irand_state.load(std::memory_order_relaxed);
    std::uint64_t next = 0;
    do {
        // A negative seed counts as the 64-bit word that it is.
        next = state * 16807 % modulus;
    } while (!irand_state.compare_exchange_weak(state, next, std::memory_order_relaxed));
    return static_cast<std::int32_t>(next);
}

void seed_irand(std::int32_t seed) {
    const std::int64_t chosen = seed != 0 ? seed : usual_seed;
    irand_state.store(static_cast<std::uint64_t>(chosen), std::memory_order_relaxed);
}

float real_of_irand(std::int32_t value) {
    const std::uint32_t bits = (static_cast<std::uint32_t>(value) - 1) & 0xFFFFFE00;
    return static_cast<float>(bits) * 0x1p-31F;
}

}  // namespace tarn::intrinsics
