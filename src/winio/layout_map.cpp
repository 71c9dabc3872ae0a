#include "winio/layout_map.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tarn::winio {
namespace {

constexpr std::int64_t word_bits = 64;

std::uint64_t load(const unsigned char* map, std::int64_t index) {
    std::uint64_t value;
    std::memcpy(&value, map + index * 8, sizeof value);
    return value;
}
void store(unsigned char* map, std::int64_t index, std::uint64_t value) {
    std::memcpy(map + index * 8, &value, sizeof value);
}
// The lowest `count` bits, 0 < count <= 64.
std::uint64_t low_bits(std::int64_t count) {
    return ~std::uint64_t{0} >> (word_bits - count);
}

// Looks for the first bit that is set in the words, after each was crossed with `flip`.
std::int64_t find_bit(const unsigned char* map, std::int64_t first, std::int64_t count,
                      std::uint64_t flip) {
    const std::int64_t end = first + count;
    while (first < end) {
        const std::int64_t shift = first % word_bits;
        const std::int64_t here = std::min(end - first, word_bits - shift);
        const std::uint64_t bits = (load(map, first / word_bits) ^ flip) >> shift & low_bits(here);
        if (bits) return first + std::countr_zero(bits);
        first += here;
    }
    return -1;
}

}  // namespace

std::size_t occupancy_bytes(std::int32_t width, std::int32_t height) {
    const std::size_t cells = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return (cells + word_bits - 1) / word_bits * 8;
}

void set_bits(unsigned char* map, std::int64_t first, std::int64_t count) {
    const std::int64_t end = first + count;
    while (first < end) {
        const std::int64_t shift = first % word_bits;
        const std::int64_t here = std::min(end - first, word_bits - shift);
        const std::int64_t index = first / word_bits;
        store(map, index, load(map, index) | low_bits(here) << shift);
        first += here;
    }
}

std::int64_t find_set_bit(const unsigned char* map, std::int64_t first, std::int64_t count) {
    return find_bit(map, first, count, 0);
}

std::int64_t count_set_run(const unsigned char* map, std::int64_t first, std::int64_t count) {
    const std::int64_t clear = find_bit(map, first, count, ~std::uint64_t{0});
    return clear < 0 ? count : clear - first;
}

}  // namespace tarn::winio
