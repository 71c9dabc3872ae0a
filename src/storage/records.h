// What the own heap keeps in its own range, and how it is reached: addresses are 32-bit words.
#pragma once

#include <cstdint>

#include "storage/pages.h"

namespace tarn::storage {

struct MemoryBlock {  // header of a reserved range
    Address next;
    std::uint32_t size;
    Address committed_end;  // the pages below it are committed
    std::uint32_t unused;
};
static_assert(sizeof(MemoryBlock) == 16);

struct FreeRegion {
    std::uint32_t link;
    std::uint32_t size;
};
static_assert(sizeof(FreeRegion) == 8);

struct LengthChain {
    Address next;
    std::uint32_t length;  // as callers asked
    Address first_block;
};
static_assert(sizeof(LengthChain) == 12);

inline constexpr std::uint32_t block_link_bits = 0x1FFFFFFF;
inline constexpr std::uint32_t block_has_extra = 0x20000000;
inline constexpr std::uint32_t block_from_new = 0x40000000;
inline constexpr std::uint32_t block_has_padding = 0x80000000;

template <class Record>
Record& at(Address address) {
    return *reinterpret_cast<Record*>(std::uintptr_t{address});
}

template <class Record>
Address address_of(const Record& record) {
    return static_cast<Address>(reinterpret_cast<std::uintptr_t>(&record));
}

inline std::uint32_t& word_at(Address address) {
    return at<std::uint32_t>(address);
}

// The link of a free region or of an allocated block.
inline Address link_of(Address block) {
    return (word_at(block) & block_link_bits) << 2;
}

// The top bits stay as they are: a block keeps its flags when its neighbour in the chain changes.
inline void set_link(Address block, Address next) {
    std::uint32_t& word = word_at(block);
    word = (word & ~block_link_bits) | (next >> 2);
}

}  // namespace tarn::storage
