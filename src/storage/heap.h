// The own heap: first fit over one address range below 2 GiB, with a single header word a block.
//
// A block doesn't store its size. It stands on a chain of blocks of equal length, and the chain is
// found by a hash of the block's address:
//
//     free region:     link (29 bits, address / 4) | size            at least 8 bytes
//     allocated block: header (link and flags)     | caller's bytes  the pointer is behind the
//     header
//
//     header bits 0 to 28  next block of the same chain, address / 4
//            bit 29        the block owns 4 more bytes than its length implies
//            bit 30        the block came from operator new
//            bit 31        padding stands in front of the header
//
// Everything is a multiple of 4 and 4-aligned. A caller that wants more (compiled code may keep
// vectors in what malloc gives it) names an alignment; the block then begins with as much padding
// as puts its *pointer* on that boundary, the word in front of the header counts the padding's
// bytes, and bit 31 is set. Header, chain and hash are where they are without padding, so only
// carving and release know of it.
//
// All this lies among the program's own bytes, so a program that writes outside of a block ruins
// it. Every link and size is looked at before it is followed: one that can't be makes the heap
// corrupt, which it stays, and nothing is given or taken any more.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "storage/free_index.h"
#include "storage/pages.h"
#include "storage/polled_section.h"
#include "storage/records.h"

namespace tarn::storage {

inline constexpr std::uint32_t hash_buckets = 1024;
inline constexpr std::uint32_t first_reservation = 0x6400000;
inline constexpr std::uint64_t largest_extension = 0xBB800000;
inline constexpr std::uint32_t extension_step = 0x6400000;

// The bucket of a block, by the block's address: the user pointer less 4.
constexpr std::uint32_t hash_bucket(Address block) {
    return (block * 0x12345678U) >> 22;
}

enum class Origin { plain, by_new };

struct Released {
    bool found;  // it was a live block, and is none any more
    bool from_new;
    std::uint32_t size;  // its length, and 4 where it owned 4 bytes more
};

// Breakpoints of a debugging session, by address. 0 is off.
struct Breaks {
    std::uintptr_t when_allocated = 0;
    std::uintptr_t when_freed = 0;
    std::uintptr_t data_address = 0;  // touched when the block that holds it is released
};

class Heap {
  public:
    // Reserves and commits the first range. False: there is no room below 2 GiB.
    bool start();
    // Gives the address ranges back. The process's own heap lasts as long as the process.
    void stop();

    // Null: no storage. Any length is accepted; alignment is a power of two.
    void* get(std::size_t length, std::size_t alignment = 4, Origin origin = Origin::plain);
    Released release(const void* pointer);
    // Gives back what is above `length`. False: no live block, or `length` is above the old one.
    bool shrink(const void* pointer, std::size_t length);

    std::optional<std::uint32_t> find_size(const void* pointer);
    // A request or a release found a link or a size that can't be, and was refused.
    bool corrupt() const { return corrupt_; }
    std::uint32_t total_allocated() const { return total_allocated_; }
    // Sum of the free regions, and the greatest of them by the rule of the report entry.
    std::int64_t available();
    std::int64_t largest_block();

    // Listings on standard output.
    void print_chains();
    void print_chains(std::uint32_t bucket);
    void print_chain(std::uint32_t bucket, std::uint32_t length);

    // Holds the section over a fork, so that the child finds the lists whole.
    PolledSection& section() { return section_; }

    // Called with the section left when pages can't be committed; true: try again.
    bool (*low_memory)() = nullptr;
    Breaks breaks;

  private:
    struct Carved {
        Address block = 0;  // its header; 0: no storage
        std::uint32_t padding = 0;
        std::uint32_t size = 0;  // all it owns, padding included
        bool extra = false;
        bool commit_failed = false;
    };

    void use_memory_block(Address start, std::uint32_t size, std::uint32_t committed);
    bool add_more_storage();
    Carved get_region(std::uint32_t total, std::uint32_t alignment);
    Carved carve_memory_region(std::uint32_t total, std::uint32_t alignment);
    bool commit_for(Address region, Address end);
    void free_memory_region(Address region, std::uint32_t size);
    bool has_spare_chain();
    bool allocate_length_chains();
    void chain_memory(Address block, std::uint32_t length);
    std::optional<std::uint32_t> unchain_memory(Address block);
    LengthChain* find_chain(std::uint32_t bucket, std::uint32_t length);
    bool find_block(Address block, std::uint32_t& length);

    // Where a block stands in its chain; no record: nowhere.
    struct Place {
        Address* record = nullptr;  // the link to it
        Address previous = 0;
    };
    Place find_place(Address block);
    Address range_of(Address address) const;
    // Whether a record or a header can stand there. Bounds of all ranges do: it is asked at each
    // step of a walk.
    bool holds(Address address) const { return address - lowest_ < room_; }
    void note_bounds(Address begin, Address end);
    bool is_sound(Address region, std::uint32_t size) const;
    bool passes(Address region);  // sound; else the heap is corrupt

    PolledSection section_;
    FreeIndex free_index_;
    Address* hash_table_ = nullptr;
    Address free_chain_ = 0;
    Address spare_chains_ = 0;
    Address memory_blocks_ = 0;
    Address lowest_ = 0;
    std::uint32_t room_ = 0;  // from there on
    std::uint32_t total_allocated_ = 0;
    bool heap_extended_ = false;
    bool corrupt_ = false;
};

}  // namespace tarn::storage
