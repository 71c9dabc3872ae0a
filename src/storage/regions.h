// Ranges of address space that are reserved at once and take memory only where they are touched.
//
// The system does the committing: a range is mapped readable and writable without a claim on
// memory, so that system calls may work in it too. `committed` counts what its owner has been told.
#pragma once

#include <cstdint>

#include "storage/polled_section.h"

namespace tarn::storage {

struct ExpandingRegion {
    ExpandingRegion* next;
    const char* name;  // outlives the region; null: none
    std::uintptr_t reserved_base;
    std::uintptr_t start;
    std::uintptr_t end;  // the first address behind it
    std::intptr_t committed;
};

struct Regions {
    PolledSection section;             // held while the list changes
    ExpandingRegion* first = nullptr;  // newest first
    std::intptr_t commit_size = 4096;
};
Regions& regions();

// Reserves `size` bytes, or takes the range at `address` where one is given, and lists it. Null:
// the system has no such range.
void* setup_virtual_region(const char* name, std::intptr_t size, void* address);
// Gives a region back with its range. False: none begins there.
bool release_virtual_region(void* start);

// Pages of their own, readable, writable and zero; null: none to be had.
void* global_alloc(std::intptr_t size);
// What is no block of these is left alone.
void global_free(void* address);

}  // namespace tarn::storage
