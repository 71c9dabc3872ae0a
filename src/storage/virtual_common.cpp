#include "storage/virtual_common.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>

#include "platform/kernel/error.h"
#include "platform/kernel/module.h"
#include "storage/region_failures.h"
#include "storage/regions.h"

namespace tarn::storage {

namespace {

// The start-up object and the drivers lay records out by themselves.
static_assert(sizeof(tarn_virtual_common) == 48 && offsetof(tarn_virtual_common, tag) == 24 &&
              offsetof(tarn_virtual_common, undefined_start) == 32);
static_assert(sizeof(tarn_virtual_common_data) == 64);

// The region that has some of these addresses, or null.
const ExpandingRegion* find_overlap(std::uintptr_t address, std::intptr_t size) {
    const std::uintptr_t end =
        address + static_cast<std::uintptr_t>(std::max<std::intptr_t>(size, 1));
    const ExpandingRegion* region = regions().first;
    while (region != nullptr && (region->range.start >= end || region->range.end <= address))
        region = region->next;
    return region;
}

[[noreturn]] void fail_common(const char* path, std::uintptr_t address, std::intptr_t size) {
    constexpr int invalid_address = 487;
    const int reason = errno;
    char text[1400];
    if (const ExpandingRegion* other = find_overlap(address, size)) {
        std::snprintf(text, sizeof text,
                      "Virtual common address 0x%lx of size %ld(bytes)\nhas been allocated to %s,\n"
                      "which uses addresses from 0x%lx to 0x%lx.\n"
                      "Please re-link program %.900s\n with a different virtual common address.\n",
                      address, size, other->name, other->range.start, other->range.end, path);
    } else {
        const bool taken = reason == EEXIST || reason == EINVAL;
        std::snprintf(text, sizeof text,
                      "Unable to allocate %ld(bytes) of \nvirtual common memory at address 0x%lx.\n"
                      "Last error is %d.\n",
                      size, address, taken ? invalid_address : platform::platform_error(reason));
    }
    fail_region(text);
}

const char* path_of(void* instance) {
    if (instance == nullptr) return platform::program_path().c_str();
    Dl_info info{};
    const bool known = dladdr(instance, &info) != 0 && info.dli_fname != nullptr;
    return known ? info.dli_fname : "Unknown module name";
}

constexpr std::uint32_t has_undefined_part = 0x4F464E49;

// A record is data of a program and may say anything: a part of the range itself is clipped to it.
void make_undefined_part(const tarn_virtual_common& record, ExpandingRegion* region) {
    if (record.tag != has_undefined_part || record.has_undefined_part == 0) return;
    if (record.undefined_start == nullptr || record.undefined_length <= 0) return;
    const auto from = reinterpret_cast<std::uintptr_t>(record.undefined_start);
    const auto length = static_cast<std::uintptr_t>(record.undefined_length);
    if (region == nullptr) {
        std::memset(record.undefined_start, undefined_byte, length);
    } else if (from < region->range.end) {
        make_undefined(region->range, from, from + std::min(length, region->range.end - from));
    }
}

}  // namespace

ExpandingRegion* setup_common_block_region(const char* path, std::uintptr_t address,
                                           std::intptr_t size, std::intptr_t commit_size) {
    AddressRange range;
    if (!reserve_range(size, address, range)) fail_common(path, address, size);
    if (commit_size > 0) regions().commit_size = commit_size;
    if (!open_range(range, regions().commit_size)) fail_common(path, address, size);
    ExpandingRegion* region = add_region(path, range, std::min(usual_commit_size, size));
    if (region == nullptr) fail_common(path, address, size);
    return region;
}

void get_virtual_common_block(void* instance, tarn_virtual_common& record) {
    ExpandingRegion* region = nullptr;
    if (record.size != 0) {
        region = setup_common_block_region(path_of(instance),
                                           reinterpret_cast<std::uintptr_t>(record.address),
                                           record.size, record.commit_size);
    }
    make_undefined_part(record, region);
    record.size = 0;
}

bool get_virtual_common_info(const char* file_name, RegionInfo& info) {
    const ExpandingRegion* region = find_region_by_name(file_name);
    if (region == nullptr) return false;
    const AddressRange& range = region->range;
    const auto unit = static_cast<std::uintptr_t>(regions().commit_size.load());
    const std::uintptr_t measured = range.end - (range.start & -range_alignment);
    info.address = range.start;
    info.size = static_cast<std::intptr_t>((measured + unit - 1) / unit * unit);
    info.commit_size = static_cast<std::intptr_t>(unit);
    info.committed = std::max(region->committed.load(), committed_bytes(range));
    return true;
}

}  // namespace tarn::storage
