// Compiled for AVX2 (see CMakeLists.txt): nothing here may be called where it isn't there, and
// nothing that other files have too may be compiled here other than in line.
#include <immintrin.h>

#include "intrinsics/random/xoshiro_lanes.h"

#ifndef __AVX2__
#error "this file is compiled with -mavx2"
#endif

namespace tarn::intrinsics {
namespace {

// The states of four lanes.
struct Four {
    __m256i s[4];
};

__m256i load(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

__m256i jumped(const JumpTable& table, __m256i state) {
    alignas(32) std::uint64_t words[4];
    _mm256_store_si256(reinterpret_cast<__m256i*>(words), state);
    __m256i result = _mm256_setzero_si256();
    for (int word = 0; word < 4; ++word) {
        const auto* group = table.ahead[16 * word];
        for (std::uint64_t bits = words[word], i = 0; i < 16; ++i, bits >>= 4)
            result = _mm256_xor_si256(result, load((group + 16 * i)[bits & 15]));
    }
    return result;
}

template <int count>
__m256i rotated(__m256i value) {
    return _mm256_or_si256(_mm256_slli_epi64(value, count), _mm256_srli_epi64(value, 64 - count));
}

__m256i next(Four& f) {
    const __m256i times_5 = _mm256_add_epi64(_mm256_slli_epi64(f.s[1], 2), f.s[1]);
    const __m256i turned = rotated<7>(times_5);
    const __m256i result = _mm256_add_epi64(_mm256_slli_epi64(turned, 3), turned);
    const __m256i shifted = _mm256_slli_epi64(f.s[1], 17);
    f.s[2] = _mm256_xor_si256(f.s[2], f.s[0]);
    f.s[3] = _mm256_xor_si256(f.s[3], f.s[1]);
    f.s[1] = _mm256_xor_si256(f.s[1], f.s[2]);
    f.s[0] = _mm256_xor_si256(f.s[0], f.s[3]);
    f.s[2] = _mm256_xor_si256(f.s[2], shifted);
    f.s[3] = rotated<45>(f.s[3]);
    return result;
}

// Rows to columns, of 64-bit elements; the other way round too.
void transpose(const __m256i in[4], __m256i out[4]) {
    const __m256i low_01 = _mm256_unpacklo_epi64(in[0], in[1]);
    const __m256i high_01 = _mm256_unpackhi_epi64(in[0], in[1]);
    const __m256i low_23 = _mm256_unpacklo_epi64(in[2], in[3]);
    const __m256i high_23 = _mm256_unpackhi_epi64(in[2], in[3]);
    out[0] = _mm256_permute2x128_si256(low_01, low_23, 0x20);
    out[1] = _mm256_permute2x128_si256(high_01, high_23, 0x20);
    out[2] = _mm256_permute2x128_si256(low_01, low_23, 0x31);
    out[3] = _mm256_permute2x128_si256(high_01, high_23, 0x31);
}

// The upper 53 bits as doubles: the upper 21 of them and the lower 32 each become the fraction of
// a double of known exponent; what the exponents have added is taken away again. Every step is
// exact.
__m256i doubles_of(__m256i numbers) {
    const __m256i low_exponent = _mm256_set1_epi64x(0x4330000000000000);   // 2^52
    const __m256i high_exponent = _mm256_set1_epi64x(0x4530000000000000);  // 2^84
    const __m256d both = _mm256_set1_pd(0x1p84 + 0x1p52);
    const __m256i low = _mm256_blend_epi32(_mm256_srli_epi64(numbers, 11), low_exponent, 0xAA);
    const __m256i high = _mm256_or_si256(_mm256_srli_epi64(numbers, 43), high_exponent);
    const __m256d whole =
        _mm256_add_pd(_mm256_sub_pd(_mm256_castsi256_pd(high), both), _mm256_castsi256_pd(low));
    return _mm256_castpd_si256(_mm256_mul_pd(whole, _mm256_set1_pd(0x1p-53)));
}

// The upper 24 bits of two numbers of each lane as a pair of floats.
__m256i floats_of(__m256i first, __m256i second) {
    const __m256i low = _mm256_srli_epi64(first, 40);
    const __m256i high = _mm256_slli_epi64(_mm256_srli_epi64(second, 40), 32);
    const __m256 whole = _mm256_cvtepi32_ps(_mm256_or_si256(low, high));
    return _mm256_castps_si256(_mm256_mul_ps(whole, _mm256_set1_ps(0x1p-24F)));
}

// 32 bytes of each of four lanes.
void put(Four& f, double* values, std::size_t lane) {
    __m256i rows[4];
    __m256i columns[4];
    for (__m256i& row : rows) row = doubles_of(next(f));
    transpose(rows, columns);
    for (std::size_t i = 0; i < 4; ++i)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + i * lane), columns[i]);
}
void put(Four& f, float* values, std::size_t lane) {
    __m256i rows[4];
    __m256i columns[4];
    for (__m256i& row : rows) {
        const __m256i first = next(f);
        row = floats_of(first, next(f));
    }
    transpose(rows, columns);
    for (std::size_t i = 0; i < 4; ++i)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + i * lane), columns[i]);
}

void put(Four& f, std::uint64_t* values, std::size_t lane) {
    __m256i rows[4];
    __m256i columns[4];
    for (__m256i& row : rows) row = next(f);
    transpose(rows, columns);
    for (std::size_t i = 0; i < 4; ++i)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + i * lane), columns[i]);
}

template <class Real>
void fill(Xoshiro& generator, const JumpTable& table, std::size_t lane, Real* values) {
    constexpr std::size_t at_once = 32 / sizeof(Real);
    __m256i states[8];
    states[0] = load(generator.s);
    for (int i = 1; i < 8; ++i) states[i] = jumped(table, states[i - 1]);
    Four one;
    Four two;
    transpose(states, one.s);
    transpose(states + 4, two.s);
    for (std::size_t at = 0; at < lane; at += at_once) {
        put(one, values + at, lane);
        put(two, values + 4 * lane + at, lane);
    }
    // The last lane has come to where the next number is.
    transpose(two.s, states);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(generator.s), states[3]);
}

}  // namespace

void fill_lanes(Xoshiro& generator, const JumpTable& table, std::size_t lane, double* values) {
    fill(generator, table, lane, values);
}
void fill_lanes(Xoshiro& generator, const JumpTable& table, std::size_t lane, float* values) {
    fill(generator, table, lane, values);
}

void fill_lanes(Xoshiro& generator, const JumpTable& table, std::size_t lane,
                std::uint64_t* numbers) {
    fill(generator, table, lane, numbers);
}

void reals_of(const std::uint64_t* numbers, double* values, std::size_t count) {
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + i), doubles_of(load(numbers + i)));
    for (; i < count; ++i) values[i] = static_cast<double>(numbers[i] >> 11) * 0x1p-53;
}
void reals_of(const std::uint64_t* numbers, float* values, std::size_t count) {
    // The upper halves of eight numbers, in an order that the shuffle leaves by halves.
    const __m256i in_order = _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7);
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256 low = _mm256_castsi256_ps(load(numbers + i));
        const __m256 high = _mm256_castsi256_ps(load(numbers + i + 4));
        const __m256i upper = _mm256_permutevar8x32_epi32(
            _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0xDD)), in_order);
        const __m256 whole = _mm256_cvtepi32_ps(_mm256_srli_epi32(upper, 8));
        _mm256_storeu_ps(values + i, _mm256_mul_ps(whole, _mm256_set1_ps(0x1p-24F)));
    }
    for (; i < count; ++i) values[i] = static_cast<float>(numbers[i] >> 40) * 0x1p-24F;
}

}  // namespace tarn::intrinsics
