#include "intrinsics/random/native_generators.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <type_traits>

#include "intrinsics/arrays/dispatch.h"

namespace tarn::intrinsics {
namespace {

constexpr std::size_t twist_distance = 397;

[[gnu::always_inline]] inline std::uint32_t tempered(std::uint32_t y) {
    y ^= y >> 11;
    y ^= y << 7 & 0x9D2C5680;
    y ^= y << 15 & 0xEFC60000;
    return y ^ y >> 18;
}

[[gnu::always_inline]] inline std::uint32_t twisted(std::uint32_t upper, std::uint32_t lower,
                                                    std::uint32_t far) {
    const std::uint32_t y = (upper & 0x80000000) | (lower & 0x7FFFFFFF);
    // All ones where the lowest bit is set, so that the loop has no branch.
    return far ^ y >> 1 ^ ((0 - (y & 1)) & 0x9908B0DF);
}

// One value from one or two words of the twister.
template <class Real, Bits bits>
constexpr std::size_t words_each = bits == Bits::from_53 || bits == Bits::from_64 ? 2 : 1;

template <class Real, Bits bits>
[[gnu::always_inline]] inline Real real_of_words(const std::uint32_t* words) {
    if constexpr (bits == Bits::from_24) {
        return static_cast<Real>(static_cast<std::int32_t>(words[0] >> 8)) * Real(0x1p-24);
    } else if constexpr (bits == Bits::from_32) {
        return static_cast<Real>(words[0]) * Real(0x1p-32);
    } else if constexpr (bits == Bits::from_53) {
        const auto high = static_cast<Real>(static_cast<std::int32_t>(words[0] >> 6));
        const auto low = static_cast<Real>(static_cast<std::int32_t>(words[1] >> 5));
        return (low + high * Real(0x1p27)) * Real(0x1p-53);
    } else {
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): Twister::fill wrote it
        return static_cast<Real>(std::uint64_t{words[1]} << 32 | words[0]) * Real(0x1p-64L);
    }
}

// Whole arrays, with the widest vectors that there are.
struct Twist {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(std::uint32_t* state) {
        constexpr std::size_t size = Twister::size;
        constexpr std::size_t turn = size - twist_distance;
        for (std::size_t i = 0; i < turn; ++i)
            state[i] = twisted(state[i], state[i + 1], state[i + twist_distance]);
        for (std::size_t i = turn; i < size - 1; ++i)
            state[i] = twisted(state[i], state[i + 1], state[i - turn]);
        state[size - 1] = twisted(state[size - 1], state[0], state[size - 1 - turn]);
    }
};
struct Temper {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(std::uint32_t* values, const std::uint32_t* state,
                                                  std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) values[i] = tempered(state[i]);
    }
};
template <class Real, Bits bits>
struct RealsOfWords {
    static constexpr bool has_vectors = !std::is_same_v<Real, long double>;
    [[gnu::always_inline]] static inline void run(Real* values, const std::uint32_t* words,
                                                  std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            values[i] = real_of_words<Real, bits>(words + i * words_each<Real, bits>);
    }
};

std::int32_t word_of(const char* text) {
    std::int32_t word = 0;
    std::memcpy(&word, text, sizeof word);
    return word;
}

std::int32_t wrapped_product(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

}  // namespace

NativeGenerators& native_generators() {
    static constinit NativeGenerators generators;
    return generators;
}

// ---- The twister ----

void Twister::set_seed(std::uint32_t seed) {
    seed_ = seed != 0 ? seed : 1;
    state_[0] = seed_;
    for (std::uint32_t i = 1; i < size; ++i)
        state_[i] = 1812433253 * (state_[i - 1] ^ state_[i - 1] >> 30) + i;
    read_index_ = 0;
    seeded_ = true;
}

void Twister::twist() {
    arrays::dispatch<Twist>(state_ + 0);
    read_index_ = 0;
}

void Twister::make_ready() {
    if (!seeded_) {
        set_seed(first_seed);
    } else if (read_index_ >= size) {
        twist();
    }
}

std::uint32_t Twister::next() {
    make_ready();
    return tempered(state_[read_index_++]);
}

void Twister::fill(std::uint32_t* values, std::size_t count) {
    while (count > 0) {
        make_ready();
        const std::size_t some = std::min(count, size - read_index_);
        const std::uint32_t* const from = state_ + read_index_;
        arrays::dispatch<Temper>(values, from, some);
        read_index_ += static_cast<std::uint32_t>(some);
        values += some;
        count -= some;
    }
}

template <class Real, Bits bits>
Real random_real(Twister& twister) {
    std::uint32_t words[2] = {};
    for (std::size_t i = 0; i < words_each<Real, bits>; ++i) words[i] = twister.next();
    return real_of_words<Real, bits>(words);
}

template <class Real, Bits bits>
void fill_random(Twister& twister, Real* values, std::size_t count) {
    constexpr std::size_t each = words_each<Real, bits>;
    constexpr std::size_t room = 1024;
    std::uint32_t words[room];
    while (count > 0) {
        const std::size_t some = std::min(count, room / each);
        twister.fill(words, some * each);
        arrays::dispatch<RealsOfWords<Real, bits>>(values, words + 0, some);
        values += some;
        count -= some;
    }
}

template float random_real<float, Bits::from_24>(Twister&);
template double random_real<double, Bits::from_32>(Twister&);
template double random_real<double, Bits::from_53>(Twister&);
template long double random_real<long double, Bits::from_64>(Twister&);
template void fill_random<float, Bits::from_24>(Twister&, float*, std::size_t);
template void fill_random<double, Bits::from_32>(Twister&, double*, std::size_t);
template void fill_random<double, Bits::from_53>(Twister&, double*, std::size_t);
template void fill_random<long double, Bits::from_64>(Twister&, long double*, std::size_t);

// ---- The congruential generator ----

std::uint64_t Congruential::next() {
    const std::uint64_t x = value() * multiplier & mask;
    set_value(x);
    return x;
}

float Congruential::to_float(std::uint64_t x) {
    const auto bits = static_cast<std::int32_t>((x ^ x >> 32) & 0xFFFFFF);
    return static_cast<float>(bits) * 0x1p-24F;
}

void Congruential::set_pair(std::uint32_t low, std::uint32_t high) {
    low_ = low;
    high_ = high & high_mask;
    if (low_ == 0 && high_ == 0) low_ = 1;
}

void Congruential::set_real(double seed) {
    const double rest = std::fmod(seed * 62831.854820251465, 20000.0);
    // An infinite seed or none at all leaves no rest.
    low_ = std::isfinite(rest) ? static_cast<std::uint32_t>(static_cast<std::int32_t>(rest)) : 0;
    high_ = 0;
    if (low_ == 0) low_ = 218;
}

void Congruential::set_time(const char (&text)[8]) {
    const std::int32_t a = word_of(text);
    const std::int32_t b = word_of(text + 4);
    std::int32_t low = wrapped_product(a, b) % 20000;
    std::int32_t high = a % 19999;
    if (low + high == 0) {
        low = 129;
        high = 513;
    }
    low_ = static_cast<std::uint32_t>(low);
    high_ = static_cast<std::uint32_t>(high) & high_mask;
}

// ---- The moment ----

std::uint32_t seed_of_moment() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm fields{};
    gmtime_r(&now.tv_sec, &fields);
    const auto milliseconds = static_cast<std::uint32_t>(now.tv_nsec / 1000000);
    const std::uint32_t v = static_cast<std::uint32_t>(fields.tm_hour) << 10 | milliseconds << 12 |
                            static_cast<std::uint32_t>(fields.tm_min) << 5 |
                            static_cast<std::uint32_t>(fields.tm_sec);
    timespec since_start{};
    clock_gettime(CLOCK_MONOTONIC, &since_start);
    const auto ticks =
        static_cast<std::uint32_t>(since_start.tv_sec * 1000 + since_start.tv_nsec / 1000000);
    return ticks ^ (~v ^ v << 16);
}

}  // namespace tarn::intrinsics
