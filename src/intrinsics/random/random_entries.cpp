// The entries of the native generators. What each does is told in include/tarn/random.h.
#include <algorithm>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/dates/clock.h"
#include "intrinsics/random/native_generators.h"
#include "tarn/random.h"

namespace {

using namespace tarn::intrinsics;

constexpr int invalid_seeder_call = 406;

Twister& twister() {
    return native_generators().twister;
}
Congruential& congruential() {
    return native_generators().congruential;
}

std::size_t counted(std::intptr_t count) {
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

template <class Real>
void fill_with_random(Real* values, std::intptr_t count) {
    congruential().draw(counted(count), [&](std::uint64_t x) {
        if constexpr (sizeof(Real) == 4) {
            *values++ = Congruential::to_float(x);
        } else {
            *values++ = Congruential::to_real(x);
        }
    });
}

void set_words(Congruential& generator, const std::uint32_t* words) {
    generator.set_pair(words[0], words[1]);
}

// What Fortran's RANDOM_SEED asks of a generator, by number.
enum class SeedAction : std::int32_t { size = 1, one = 2, put = 3, get = 4 };

template <class Word>
void seed_congruential(std::int32_t action, Word* value) {
    Congruential& generator = congruential();
    switch (static_cast<SeedAction>(action)) {
        case SeedAction::size:
            *value = 2;
            return;
        case SeedAction::one:
            *value = 1;
            return;
        case SeedAction::put:
            generator.set_pair(static_cast<std::uint32_t>(value[0]),
                               static_cast<std::uint32_t>(value[1]));
            return;
        case SeedAction::get:
            value[0] = static_cast<Word>(generator.low());
            value[1] = static_cast<Word>(generator.high());
            return;
    }
    tarn::frame::ensure_up();
    tarn::failure::fail(invalid_seeder_call);
}

template <class Word>
void seed_twister(std::int32_t action, Word* value) {
    switch (static_cast<SeedAction>(action)) {
        case SeedAction::size:
            *value = 2;
            return;
        case SeedAction::one:
            *value = 1;
            return;
        case SeedAction::put:
            twister().set_seed(static_cast<std::uint32_t>(*value));
            return;
        case SeedAction::get:
            *value = static_cast<Word>(twister().seed());
            return;
    }
    tarn::frame::ensure_up();
    tarn::failure::fail(invalid_seeder_call);
}

}  // namespace

extern "C" {

// ---- The older generator ----

TARN_EXPORT double RANDOM_h() {
    return congruential().next_real();
}
TARN_EXPORT double RANDOM() {
    return congruential().next_real();
}
TARN_EXPORT float RANDOM4_h() {
    return Congruential::to_float(congruential().next());
}
TARN_EXPORT void RNDR4_h(float* value) {
    *value = static_cast<float>(congruential().next_real());
}
TARN_EXPORT void RNDR8_h(double* value) {
    *value = congruential().next_real();
}
TARN_EXPORT void RANDOMR4_h(float* value) {
    *value = static_cast<float>(congruential().next_real());
}
TARN_EXPORT void RANDOMR8_h(double* value) {
    *value = congruential().next_real();
}
TARN_EXPORT void RANDOMQ8_h(double* value) {
    *value = congruential().next_real();
}
TARN_EXPORT void RANDOMRX_h(long double* value) {
    *value = congruential().next_real();
}
TARN_EXPORT void RANDOMR4_hARRAY(float* values, std::intptr_t count) {
    fill_with_random(values, count);
}
TARN_EXPORT void RANDOMR8_hARRAY(double* values, std::intptr_t count) {
    fill_with_random(values, count);
}
TARN_EXPORT void RANDOMQ8_hARRAY(double* values, std::intptr_t count) {
    fill_with_random(values, count);
}
TARN_EXPORT void RANDOMRX_hARRAY(long double* values, std::intptr_t count) {
    fill_with_random(values, count);
}
TARN_EXPORT void SET_SEED_h(const double* seed) {
    congruential().set_real(*seed);
}
TARN_EXPORT void SET_RANDOM_SEED_h(const std::uint32_t* words) {
    set_words(congruential(), words);
}
TARN_EXPORT void DIRECT_RANDOM_SEED_h(const std::uint32_t* words) {
    set_words(congruential(), words);
}
TARN_EXPORT void GET_RANDOM_SEED_h(std::uint32_t* words) {
    words[0] = congruential().low();
    words[1] = congruential().high();
}
TARN_EXPORT void DATE_TIME_SEED_h() {
    char text[8];
    std::ranges::copy(time_text(local_time_now()), text);
    congruential().set_time(text);
}
TARN_EXPORT double PEEK_RANDOM() {
    return congruential().peek();
}
TARN_EXPORT void RANDOM_SEED_h(std::int32_t action, std::int32_t* value) {
    seed_congruential(action, reinterpret_cast<std::uint32_t*>(value));
}
TARN_EXPORT void RANDOM_SEED64_h(std::int32_t action, std::int64_t* value) {
    seed_congruential(action, value);
}
TARN_EXPORT int tarn_rand() {
    // 2147483647 for the few states whose number rounds to 1.0.
    return static_cast<int>(congruential().next_real() * 2147483647.0);
}
TARN_EXPORT void tarn_srand(unsigned seed) {
    congruential().set_real(seed);
}

// ---- The twister ----

TARN_EXPORT std::uint32_t __IRANDOM32() {
    return twister().next();
}
TARN_EXPORT float __RANDOM24() {
    return random_real<float, Bits::from_24>(twister());
}
TARN_EXPORT double __RANDOM32() {
    return random_real<double, Bits::from_32>(twister());
}
TARN_EXPORT double __RANDOM53() {
    return random_real<double, Bits::from_53>(twister());
}
TARN_EXPORT long double __RANDOM64() {
    return random_real<long double, Bits::from_64>(twister());
}
TARN_EXPORT void __SET_RANDOM_SEED(std::uint32_t seed) {
    twister().set_seed(seed);
}
TARN_EXPORT std::uint32_t __GET_RANDOM_SEED() {
    return twister().seed();
}
TARN_EXPORT void __SET_DATE_TIME_SEED() {
    twister().set_seed(seed_of_moment());
}
TARN_EXPORT void MT_RANDOMR4_h(float* value) {
    *value = random_real<float, Bits::from_24>(twister());
}
TARN_EXPORT void MT_RANDOMQ8_h(double* value) {
    *value = random_real<double, Bits::from_32>(twister());
}
TARN_EXPORT void MT_RANDOMR8_h(double* value) {
    *value = random_real<double, Bits::from_53>(twister());
}
TARN_EXPORT void MT_RANDOMRX_h(long double* value) {
    *value = random_real<long double, Bits::from_64>(twister());
}
TARN_EXPORT void MT_RANDOMI4_h(std::uint32_t* value) {
    twister().fill(value, 1);
}
TARN_EXPORT void MT_RANDOMI8_h(std::uint64_t* value) {
    twister().fill(reinterpret_cast<std::uint32_t*>(value), 2);
}
TARN_EXPORT void MT_RANDOMR4_hARRAY(float* values, std::intptr_t count) {
    fill_random<float, Bits::from_24>(twister(), values, counted(count));
}
TARN_EXPORT void MT_RANDOMQ8_hARRAY(double* values, std::intptr_t count) {
    fill_random<double, Bits::from_32>(twister(), values, counted(count));
}
TARN_EXPORT void MT_RANDOMR8_hARRAY(double* values, std::intptr_t count) {
    fill_random<double, Bits::from_53>(twister(), values, counted(count));
}
TARN_EXPORT void MT_RANDOMRX_hARRAY(long double* values, std::intptr_t count) {
    fill_random<long double, Bits::from_64>(twister(), values, counted(count));
}
TARN_EXPORT void MT_RANDOMI4_hARRAY(std::uint32_t* values, std::intptr_t count) {
    twister().fill(values, counted(count));
}
TARN_EXPORT void MT_RANDOMI8_hARRAY(std::uint64_t* values, std::intptr_t count) {
    twister().fill(reinterpret_cast<std::uint32_t*>(values), 2 * counted(count));
}
TARN_EXPORT void MT_RANDOM_SEED_h(std::int32_t action, std::int32_t* value) {
    seed_twister(action, value);
}
TARN_EXPORT void MT_RANDOM_SEED64_h(std::int32_t action, std::int64_t* value) {
    seed_twister(action, value);
}
}
