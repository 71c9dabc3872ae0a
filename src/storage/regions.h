// Expanding regions: ranges of address space that are reserved at once and take memory only where
// they are touched (address_range.h tells how). `committed` counts what a region's owner has been
// told.
//
// The list is read without a lock, by a handler of faults too. So a region goes in at the head,
// and the record of one that is gone is kept for the next.
#pragma once

#include <atomic>
#include <cstdint>

#include "storage/address_range.h"
#include "storage/polled_section.h"

namespace tarn::storage {

inline constexpr std::intptr_t usual_commit_size = 4096;

struct ExpandingRegion {
    std::atomic<ExpandingRegion*> next = nullptr;
    ExpandingRegion* next_idle = nullptr;
    AddressRange range;  // of an idle record: addresses that are kept, or none
    std::atomic<std::intptr_t> committed = 0;
    std::atomic<bool> refused = false;  // the system had no memory for a page of it
    std::int16_t version = 0;           // of the image it belongs to; 0: not known yet
    char name[256] = "";
};

struct Regions {
    PolledSection section;                          // held while the lists change
    std::atomic<ExpandingRegion*> first = nullptr;  // newest first
    ExpandingRegion* idle = nullptr;
    std::atomic<std::intptr_t> commit_size = usual_commit_size;
    std::int16_t version = 0;
    bool kept_over_forks = false;
};
Regions& regions();

// Reserves `size` bytes anywhere, or the range that begins at `address`: addresses that nobody has,
// or that `remove_virtual_region` kept. Null: there is no such range, which errno tells.
void* setup_virtual_region(const char* name, std::intptr_t size, void* address);
// Reserves `size` bytes, or half of that as often as it takes to get some; ends the program below
// 32 MiB.
void* setup_expanding_region(const char* name, std::intptr_t size);
// Lists a range that the caller has opened. Null: there is no storage for the record.
ExpandingRegion* add_region(const char* name, const AddressRange& range, std::intptr_t committed);

enum class Removal : std::uint8_t { keep_addresses, release };
// Gives a region's memory back. False: none begins there, or the system refuses.
bool remove_virtual_region(void* start, Removal removal);
// How many bytes are kept at this address; 0: none.
std::intptr_t kept_bytes(const void* start);
void release_kept(void* start);

// A number of pages, 0 for no change.
void set_commit_pages(std::int32_t pages);

ExpandingRegion* find_region(std::uintptr_t address);
ExpandingRegion* find_region_by_name(const char* file_name);

// A fault struck at `address`: true where the access will be possible when it is tried again.
bool grow_region(std::uintptr_t address, bool is_write);
// The same for who doesn't know what kind of access it was: true wherever a region is.
bool commit_at(std::uintptr_t address);
// The system may write to these bytes, as far as they lie in regions. True: something changed.
bool grow_for_system(const void* bytes, std::size_t size);
// The region that an access has just missed, by no more than a fence, or that got no memory for
// it; null: none.
const ExpandingRegion* find_missed_region(std::uintptr_t address);

}  // namespace tarn::storage
