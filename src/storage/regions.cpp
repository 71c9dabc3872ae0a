#include "storage/regions.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/mman.h>

#include "frame/state.h"
#include "platform/kernel/debug_output.h"

namespace tarn::storage {

namespace {

constinit Regions the_regions;

struct GlobalBlock {
    GlobalBlock* next;
    void* address;
    std::size_t size;
};
struct GlobalBlocks {
    PolledSection section;
    GlobalBlock* first = nullptr;
};
constinit GlobalBlocks the_blocks;

void* reserve(std::intptr_t size) {
    if (size <= 0) {
        errno = EINVAL;
        return nullptr;
    }
    void* range = mmap(nullptr, static_cast<std::size_t>(size), PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return range == MAP_FAILED ? nullptr : range;
}

// What a new region counts as committed, by its owner's name.
std::intptr_t first_commit(const char* name, std::intptr_t size) {
    const std::string_view text = name != nullptr ? name : "";
    if (text.starts_with("ORVEX")) return std::min<std::intptr_t>(0x400000, size);
    if (text == "VIRTUAL_STORAGE") return 16384;
    return the_regions.commit_size;
}

void tell_debugger(const ExpandingRegion& region) {
    if (__debugged == 0) return;
    char line[256];
    if (__debugged == 1) {
        std::snprintf(line, sizeof line, "VIRTUAL_COM_ADDRESS %s 0x%lx 0x%lx\n",
                      region.name != nullptr ? region.name : "No name", region.start, region.end);
    } else {
        std::snprintf(line, sizeof line, "VIRTUAL_COM_ADDRESS 0x%lx 0x%lx\n", region.start,
                      region.end);
    }
    platform::debug_output(line);
}

}  // namespace

Regions& regions() {
    return the_regions;
}

void* setup_virtual_region(const char* name, std::intptr_t size, void* address) {
    auto* region = static_cast<ExpandingRegion*>(std::malloc(sizeof(ExpandingRegion)));
    if (region == nullptr) return nullptr;
    if (address == nullptr) address = reserve(size);
    if (address == nullptr) {
        std::free(region);
        return nullptr;
    }
    const auto start = reinterpret_cast<std::uintptr_t>(address);
    *region = {nullptr,
               name,
               start,
               start,
               start + static_cast<std::uintptr_t>(size),
               first_commit(name, size)};
    tell_debugger(*region);
    InSection held(the_regions.section);
    region->next = the_regions.first;
    the_regions.first = region;
    return address;
}

bool release_virtual_region(void* start) {
    const auto wanted = reinterpret_cast<std::uintptr_t>(start);
    ExpandingRegion* region = nullptr;
    {
        InSection held(the_regions.section);
        ExpandingRegion** place = &the_regions.first;
        while (*place != nullptr && (*place)->start != wanted) place = &(*place)->next;
        region = *place;
        if (region != nullptr) *place = region->next;
    }
    if (region == nullptr) return false;
    munmap(reinterpret_cast<void*>(region->reserved_base), region->end - region->reserved_base);
    if (__debugged != 0) {
        char line[80];
        std::snprintf(line, sizeof line, "REMOVE_VIRTUAL_ADDRESS 0x%lx 0x%lx\n", region->start,
                      region->end);
        platform::debug_output(line);
    }
    std::free(region);
    return true;
}

// The size of a range isn't kept by the system, which wants it when the range is given back.
void* global_alloc(std::intptr_t size) {
    auto* block = static_cast<GlobalBlock*>(std::malloc(sizeof(GlobalBlock)));
    if (block == nullptr) return nullptr;
    void* address = MAP_FAILED;
    if (size > 0) {
        address = mmap(nullptr, static_cast<std::size_t>(size), PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    if (address == MAP_FAILED) {
        std::free(block);
        return nullptr;
    }
    InSection held(the_blocks.section);
    *block = {the_blocks.first, address, static_cast<std::size_t>(size)};
    the_blocks.first = block;
    return address;
}

void global_free(void* address) {
    GlobalBlock* block = nullptr;
    {
        InSection held(the_blocks.section);
        GlobalBlock** place = &the_blocks.first;
        while (*place != nullptr && (*place)->address != address) place = &(*place)->next;
        block = *place;
        if (block != nullptr) *place = block->next;
    }
    if (block == nullptr) return;
    munmap(block->address, block->size);
    std::free(block);
}

}  // namespace tarn::storage
