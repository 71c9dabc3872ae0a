#include "fio/gnu/byte_order.h"

#include <cstdint>
#include <cstring>
#ifdef __x86_64__
#include <immintrin.h>
#endif

#include "platform/kernel/cpu.h"

namespace tarn::fio {
namespace {

std::uint16_t turned(std::uint16_t value) {
    return __builtin_bswap16(value);
}
std::uint32_t turned(std::uint32_t value) {
    return __builtin_bswap32(value);
}
std::uint64_t turned(std::uint64_t value) {
    return __builtin_bswap64(value);
}

template <class Word>
void turn_words(char* to, const char* from, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, from += sizeof(Word), to += sizeof(Word)) {
        Word value;
        std::memcpy(&value, from, sizeof value);
        value = turned(value);
        std::memcpy(to, &value, sizeof value);
    }
}

void turn_128(char* to, const char* from, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, from += 16, to += 16) {
        std::uint64_t half[2];
        std::memcpy(half, from, sizeof half);
        const std::uint64_t whole[2] = {turned(half[1]), turned(half[0])};
        std::memcpy(to, whole, sizeof whole);
    }
}

void turn_one_by_one(char* to, const char* from, std::size_t unit, std::size_t count) {
    switch (unit) {
        case 2:
            return turn_words<std::uint16_t>(to, from, count);
        case 4:
            return turn_words<std::uint32_t>(to, from, count);
        case 8:
            return turn_words<std::uint64_t>(to, from, count);
        case 16:
            return turn_128(to, from, count);
        default:
            if (to != from) std::memcpy(to, from, unit * count);
    }
}

#ifdef __x86_64__

// Where each byte of 16 comes from: the numbers in them turned around one by one.
alignas(16) constexpr unsigned char sources[4][16] = {
    {1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14},
    {3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12},
    {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8},
    {15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0},
};

const unsigned char* sources_of(std::size_t unit) {
    switch (unit) {
        case 2:
            return sources[0];
        case 4:
            return sources[1];
        case 8:
            return sources[2];
        case 16:
            return sources[3];
        default:
            return nullptr;
    }
}

__attribute__((target("avx2"))) std::size_t turn_blocks(char* to, const char* from,
                                                        const unsigned char* order,
                                                        std::size_t bytes) {
    const __m128i half = _mm_load_si128(reinterpret_cast<const __m128i*>(order));
    const __m256i whole = _mm256_broadcastsi128_si256(half);
    std::size_t done = 0;
    for (; done + 32 <= bytes; done += 32) {
        const __m256i in = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + done));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + done), _mm256_shuffle_epi8(in, whole));
    }
    return done;
}

#endif

}  // namespace

void copy_turned(char* to, const char* from, std::size_t unit, std::size_t count) {
    std::size_t done = 0;
#ifdef __x86_64__
    constexpr std::size_t worthwhile = 64;
    const unsigned char* const order = sources_of(unit);
    const std::size_t bytes = unit * count;
    if (order != nullptr && bytes >= worthwhile &&
        platform::vector_level() >= platform::VectorLevel::avx2) {
        done = turn_blocks(to, from, order, bytes);
    }
#endif
    turn_one_by_one(to + done, from + done, unit, count - (unit == 0 ? 0 : done / unit));
}

}  // namespace tarn::fio
