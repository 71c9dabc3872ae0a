// Virtual common: COMMON blocks as large as a program likes, at an address that was chosen when it
// was linked.
#pragma once

#include <cstdint>

#include "storage/regions.h"
#include "tarn/virtual_storage.h"

namespace tarn::storage {

// Reserves the range and lists it under the program's path; ends the program where that can't be.
ExpandingRegion* setup_common_block_region(const char* path, std::uintptr_t address,
                                           std::intptr_t size, std::intptr_t commit_size);
// Makes the range of a record, once, and its undefined part.
void get_virtual_common_block(void* instance, tarn_virtual_common& record);

struct RegionInfo {
    std::uintptr_t address = 0;
    std::intptr_t size = 0;
    std::intptr_t commit_size = 0;
    std::intptr_t committed = 0;
};
// The region of the module of this file name; false: there is none.
bool get_virtual_common_info(const char* file_name, RegionInfo& info);

}  // namespace tarn::storage
