// Scratch storage by slots: regions that a program asks for by a small number.
#pragma once

#include <cstdint>

#include "storage/virtual_common.h"

namespace tarn::storage {

inline constexpr int scratch_slots = 32;  // 1 to 32
inline constexpr std::int16_t all_slots_in_use = -13;
inline constexpr std::int16_t no_scratch_region = 1;

// The size of regions to come, within its limits.
void set_scratch_size(std::intptr_t size);
// Takes the first slot that has no region; 0, or one of the numbers above.
std::int16_t open_scratch(int& slot);
// Makes a slot's region, at an address or anywhere; null: there is no range, or no such slot.
void* create_scratch_region(int slot, void* address);
bool get_scratch_info(int slot, RegionInfo& info);
// The memory goes; the addresses stay for the next who opens the slot.
void close_scratch(int slot);
void release_scratch(int slot);

}  // namespace tarn::storage
