// The native generators. Both are shared by all threads and have no lock: a program that draws
// from several threads at once gets numbers in no particular order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::intrinsics {

// MT19937 (M. Matsumoto and T. Nishimura, "Mersenne Twister", 1998). After seeding, the seeded
// vector itself is handed out before the first twist: from its 625th number on the stream is the
// published one.
class Twister {
  public:
    static constexpr std::size_t size = 624;
    static constexpr std::uint32_t first_seed = 54678665;

    void set_seed(std::uint32_t seed);
    std::uint32_t seed() const { return seed_; }
    std::uint32_t next();
    // The same as one at a time.
    void fill(std::uint32_t* values, std::size_t count);

  private:
    void twist();
    void make_ready();

    std::uint32_t state_[size] = {};
    std::uint32_t read_index_ = 0;
    std::uint32_t seed_ = first_seed;
    bool seeded_ = false;
};

// x := x * 13^13 modulo 2^59.
class Congruential {
  public:
    static constexpr std::uint64_t multiplier = 302875106592253;
    static constexpr std::uint32_t high_mask = 0x7FFFFFF;

    std::uint64_t next();
    double next_real() { return to_real(next()); }
    double peek() const { return to_real(value()); }
    static double to_real(std::uint64_t x) { return static_cast<double>(x) * 0x1p-59; }
    static float to_float(std::uint64_t x);

    // The next `count` states, one after the other to `take`: the same as one at a time.
    template <class Take>
    void draw(std::size_t count, Take take);

    // Both words 0 become 1 and 0.
    void set_pair(std::uint32_t low, std::uint32_t high);
    void set_real(double seed);
    // Of the time of day, as the eight characters hh:mm:ss.
    void set_time(const char (&text)[8]);
    std::uint32_t low() const { return low_; }
    std::uint32_t high() const { return high_; }

  private:
    static constexpr std::uint64_t mask = (std::uint64_t{1} << 59) - 1;
    std::uint64_t value() const { return (std::uint64_t{high_} << 32 | low_) & mask; }
    void set_value(std::uint64_t x) {
        low_ = static_cast<std::uint32_t>(x);
        high_ = static_cast<std::uint32_t>(x >> 32);
    }

    std::uint32_t low_ = 0x80808080;
    std::uint32_t high_ = 0x80808080;
};

template <class Take>
void Congruential::draw(std::size_t count, Take take) {
    // A product waits for the one before it; four chains, each four numbers ahead, don't wait for
    // each other.
    constexpr std::uint64_t by_2 = multiplier * multiplier & mask;
    constexpr std::uint64_t by_3 = by_2 * multiplier & mask;
    constexpr std::uint64_t by_4 = by_2 * by_2 & mask;
    std::uint64_t x = value();
    for (; count >= 4; count -= 4) {
        take(x * multiplier & mask);
        take(x * by_2 & mask);
        take(x * by_3 & mask);
        x = x * by_4 & mask;
        take(x);
    }
    for (; count > 0; --count) {
        x = x * multiplier & mask;
        take(x);
    }
    set_value(x);
}

struct NativeGenerators {
    Twister twister;
    Congruential congruential;
};
NativeGenerators& native_generators();

// A seed of the twister from the moment.
std::uint32_t seed_of_moment();

// The twister's REALs, of 24, 32, 53 or 64 bits.
enum class Bits { from_24, from_32, from_53, from_64 };
template <class Real, Bits bits>
Real random_real(Twister& twister);
template <class Real, Bits bits>
void fill_random(Twister& twister, Real* values, std::size_t count);

}  // namespace tarn::intrinsics
