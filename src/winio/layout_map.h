// The map of occupied layout cells: one bit a cell, row by row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::winio {

// A map begins on an 8-byte boundary and ends on one, so that it is worked on by words.
std::size_t occupancy_bytes(std::int32_t width, std::int32_t height);

void set_bits(unsigned char* map, std::int64_t first, std::int64_t count);
// The first set bit among `count` from `first`; -1 for none.
std::int64_t find_set_bit(const unsigned char* map, std::int64_t first, std::int64_t count);
// How many bits from `first` on are set, up to `count`.
std::int64_t count_set_run(const unsigned char* map, std::int64_t first, std::int64_t count);

}  // namespace tarn::winio
