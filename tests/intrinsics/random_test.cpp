// Generators: against the published sequences, and arrays against one number at a time.
#include "tarn/random.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

#include "intrinsics/random/native_generators.h"
#include "intrinsics/random/streams.h"
#include "platform/kernel/cpu.h"

namespace tarn::intrinsics {
namespace {

// ---- The twister ----

TEST(Twister, HandsOutTheSeededVectorAndThenThePublishedSequence) {
    for (const std::uint32_t seed : {54678665U, 1U, 5489U, 0xFFFFFFFFU}) {
        __SET_RANDOM_SEED(seed);
        for (std::size_t i = 0; i < Twister::size; ++i) __IRANDOM32();
        std::mt19937 published(seed);
        for (int i = 0; i < 2000; ++i) ASSERT_EQ(__IRANDOM32(), published()) << i;
        EXPECT_EQ(__GET_RANDOM_SEED(), seed);
    }
    // The first word is the seed, tempered; without a seed it is that of 54678665.
    std::uint32_t y = 54678665;
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680;
    y ^= (y << 15) & 0xEFC60000;
    y ^= y >> 18;
    Twister unseeded;
    EXPECT_EQ(unseeded.next(), y);
    __SET_RANDOM_SEED(0);
    EXPECT_EQ(__GET_RANDOM_SEED(), 1U);
}

TEST(Twister, HowWordsBecomeValues) {
    __SET_RANDOM_SEED(7);
    std::uint32_t words[12];
    MT_RANDOMI4_hARRAY(words, 12);
    __SET_RANDOM_SEED(7);
    std::uint64_t both = 0;
    MT_RANDOMI8_h(&both);
    EXPECT_EQ(both, std::uint64_t{words[1]} << 32 | words[0]);
    EXPECT_EQ(__RANDOM24(), static_cast<float>(words[2] >> 8) / 16777216.0F);
    EXPECT_EQ(__RANDOM32(), words[3] / 4294967296.0);
    EXPECT_EQ(__RANDOM53(), ((words[5] >> 5) + (words[4] >> 6) * 134217728.0) / 9007199254740992.0);
    EXPECT_EQ(__RANDOM64(),
              std::ldexp(static_cast<long double>(std::uint64_t{words[7]} << 32 | words[6]), -64));
    EXPECT_EQ(__IRANDOM32(), words[8]);
}

// A draw at a time and all at once, over the ends of the vector.
template <class Value>
void arrays_equal_draws(void (*one)(Value*), void (*many)(Value*, std::intptr_t)) {
    for (const std::intptr_t count : {0, 1, 7, 623, 624, 625, 5000}) {
        std::vector<Value> single(static_cast<std::size_t>(count));
        std::vector<Value> array(single);
        const std::uint32_t words[] = {12345, 678};
        __SET_RANDOM_SEED(99);
        SET_RANDOM_SEED_h(words);
        for (Value& value : single) one(&value);
        Value after_single = 0;
        one(&after_single);
        __SET_RANDOM_SEED(99);
        SET_RANDOM_SEED_h(words);
        many(array.data(), count);
        Value after_array = 0;
        one(&after_array);
        EXPECT_EQ(single, array) << count;
        EXPECT_EQ(after_single, after_array);
    }
}

TEST(NativeGenerators, ArraysEqualDraws) {
    arrays_equal_draws(MT_RANDOMR4_h, MT_RANDOMR4_hARRAY);
    arrays_equal_draws(MT_RANDOMQ8_h, MT_RANDOMQ8_hARRAY);
    arrays_equal_draws(MT_RANDOMR8_h, MT_RANDOMR8_hARRAY);
    arrays_equal_draws(MT_RANDOMRX_h, MT_RANDOMRX_hARRAY);
    arrays_equal_draws(MT_RANDOMI4_h, MT_RANDOMI4_hARRAY);
    arrays_equal_draws(MT_RANDOMI8_h, MT_RANDOMI8_hARRAY);
    arrays_equal_draws(RANDOMR8_h, RANDOMR8_hARRAY);
    arrays_equal_draws(RANDOMQ8_h, RANDOMQ8_hARRAY);
    arrays_equal_draws(RANDOMRX_h, RANDOMRX_hARRAY);
    // Elements of REAL*4 come from other bits than a single one.
    arrays_equal_draws<float>([](float* value) { *value = RANDOM4_h(); }, RANDOMR4_hARRAY);
}

// ---- The congruential generator ----

TEST(Congruential, StepsAndSeeds) {
    unsigned __int128 thirteen = 1;
    for (int i = 0; i < 13; ++i) thirteen *= 13;
    const unsigned __int128 modulus = static_cast<unsigned __int128>(1) << 59;
    unsigned __int128 x = 0x7FFFFFF;
    x = x << 32 | 0xFFFFFFF1;
    const std::uint32_t words[] = {0xFFFFFFF1, 0xFFFFFFFF};  // the high word is masked
    SET_RANDOM_SEED_h(words);
    for (int i = 0; i < 1000; ++i) {
        x = x * thirteen % modulus;
        const auto bits = static_cast<std::uint64_t>(x);
        if (i % 2 == 0) {
            ASSERT_EQ(RANDOM_h(), std::ldexp(static_cast<double>(bits), -59));
            ASSERT_EQ(PEEK_RANDOM(), std::ldexp(static_cast<double>(bits), -59));
        } else {
            ASSERT_EQ(RANDOM4_h(),
                      static_cast<float>((bits ^ bits >> 32) & 0xFFFFFF) / 16777216.0F);
        }
    }
    std::uint32_t pair[2];
    const std::uint32_t zeros[] = {0, 0};
    DIRECT_RANDOM_SEED_h(zeros);
    GET_RANDOM_SEED_h(pair);
    EXPECT_EQ(pair[0], 1U);
    EXPECT_EQ(pair[1], 0U);

    struct {
        double seed;
        std::uint32_t low;
    } const rows[] = {
        {0.0, 218},          {1.0, 2831},     {-1.0, static_cast<std::uint32_t>(-2831)},
        {std::nan(""), 218}, {INFINITY, 218},
    };
    for (const auto& row : rows) {
        SET_SEED_h(&row.seed);
        GET_RANDOM_SEED_h(pair);
        EXPECT_EQ(pair[0], row.low) << row.seed;
        EXPECT_EQ(pair[1], 0U);
    }
    Congruential generator;
    generator.set_time({'0', '0', ':', '0', '0', ':', '0', '0'});
    // Words 0x303A3030 and 0x30303A30.
    EXPECT_EQ(generator.high(), 0x303A3030U % 19999);
    tarn_srand(1);
    const int first = tarn_rand();
    tarn_srand(1);
    EXPECT_EQ(tarn_rand(), first);
    EXPECT_GE(first, 0);
}

TEST(NativeGenerators, SeedActions) {
    std::int32_t words[2] = {5, 6};
    RANDOM_SEED_h(3, words);
    words[0] = words[1] = -1;
    RANDOM_SEED_h(4, words);
    EXPECT_EQ(words[0], 5);
    EXPECT_EQ(words[1], 6);
    RANDOM_SEED_h(1, words);
    EXPECT_EQ(words[0], 2);
    RANDOM_SEED_h(2, words);
    EXPECT_EQ(words[0], 1);
    std::int64_t wide[2] = {-1, 3};
    RANDOM_SEED64_h(3, wide);
    RANDOM_SEED64_h(4, wide);
    EXPECT_EQ(wide[0], 0xFFFFFFFF);
    EXPECT_EQ(wide[1], 3);
    MT_RANDOM_SEED64_h(3, wide);
    MT_RANDOM_SEED64_h(4, wide);
    EXPECT_EQ(wide[0], 0xFFFFFFFF);
    MT_RANDOM_SEED_h(1, words);
    EXPECT_EQ(words[0], 2);
    EXPECT_EXIT(RANDOM_SEED_h(5, words), testing::ExitedWithCode(1),
                "406, Invalid call to random number seeder");
    EXPECT_EXIT(MT_RANDOM_SEED64_h(0, wide), testing::ExitedWithCode(1), "406");
}

// ---- RANDOM_NUMBER's streams ----

// The first numbers of the published generator for the state (1, 2, 3, 4).
TEST(Streams, ThePublishedGenerator) {
    Xoshiro generator{{1, 2, 3, 4}};
    const std::uint64_t published[] = {11520, 0, 1509978240, 1215971899390074240};
    for (const std::uint64_t number : published) EXPECT_EQ(generator.next(), number);
}

// Arrays of all lengths and single numbers by turns, with the thread's stream where one number
// after the other leaves a generator.
template <class Real>
void arrays_equal_numbers(Xoshiro& one) {
    for (const std::size_t count :
         {1, 7, 8, 100, 255, 1000, 2000, 4097, 8191, 8192, 8193, 6000, 32768, 70001, 5, 60}) {
        std::vector<Real> single(count);
        std::vector<Real> array(count);
        for (Real& value : single) value = random_real<Real>(one);
        thread_stream().fill(array.data(), count);
        ASSERT_EQ(single, array) << count;
        ASSERT_EQ(random_real<Real>(one), random_real<Real>(thread_stream()));
        const Xoshiro here = thread_stream().position();
        for (int word = 0; word < 4; ++word) ASSERT_EQ(here.s[word], one.s[word]) << count;
    }
}

TEST(Streams, ArraysEqualNumbers) {
    for (const auto level : {platform::VectorLevel::unknown, platform::VectorLevel::base}) {
        platform::known_vector_level = level;
        Xoshiro one{{1, 2, 3, 4}};
        thread_stream().restart(one);
        arrays_equal_numbers<double>(one);
        arrays_equal_numbers<float>(one);
        arrays_equal_numbers<long double>(one);
        arrays_equal_numbers<__float128>(one);
        arrays_equal_numbers<float>(one);
        // A new seed does away with what was made ahead.
        one = Xoshiro{{5, 6, 7, 8}};
        thread_stream().restart(one);
        arrays_equal_numbers<float>(one);
    }
    platform::known_vector_level = platform::VectorLevel::unknown;
}

TEST(Streams, ThreadsHaveStreamsOfTheirOwn) {
    const Seed seed{1, 2, 3, 4};
    set_seed(seed);
    EXPECT_EQ(thread_seed(), seed);
    Xoshiro expected = thread_stream().position();
    for (int i = 0; i < 3; ++i) {
        expected.jump();
        Xoshiro seen{};
        std::thread([&] {
            seen = thread_stream().position();
            // With storage that ends with the thread.
            float some[100];
            for (int turn = 0; turn < 1000; ++turn) thread_stream().fill(some, 100);
        }).join();
        for (int word = 0; word < 4; ++word) EXPECT_EQ(seen.s[word], expected.s[word]);
    }
    EXPECT_EQ(thread_seed(), seed);
}

}  // namespace
}  // namespace tarn::intrinsics
