// Address ranges below 2 GiB, where the own heap lives: its header words hold addresses in 29 bits
// with the low two cut off.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::storage {

// An address of the own heap.
using Address = std::uint32_t;

inline constexpr std::uint64_t address_limit = 0x80000000;
inline constexpr std::uint32_t page_size = 4096;

// Reserves `size` bytes below `address_limit`, page-aligned and not yet accessible. 0: no room.
Address reserve_pages(std::uint64_t size);
void release_pages(Address start, std::uint64_t size);
// Makes the pages from `start` to `end` readable and writable. False: the system refuses.
bool commit_pages(Address start, Address end);

}  // namespace tarn::storage
