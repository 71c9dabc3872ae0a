#include "storage/virtual_scratch.h"

#include <algorithm>

#include "storage/polled_section.h"
#include "storage/regions.h"

namespace tarn::storage {

namespace {

constexpr std::intptr_t least_size = 0x10000;
constexpr std::intptr_t most_size = 0x1F400000;

struct Slot {
    void* base = nullptr;
    void* remembered = nullptr;  // the addresses of a region that was closed
};
struct Scratch {
    PolledSection section;
    std::intptr_t size = most_size;  // takes memory where it is touched
    Slot slots[scratch_slots + 1];
};
constinit Scratch scratch;

bool is_slot(int slot) {
    return slot >= 1 && slot <= scratch_slots;
}

struct SlotName {
    char text[10] = "SCRATCH_";
    explicit SlotName(int slot) { text[8] = static_cast<char>('0' + slot); }
};

// Regions were made longer since this one was closed.
void forget_short_range(Slot& slot) {
    if (slot.remembered == nullptr || kept_bytes(slot.remembered) >= scratch.size) return;
    release_kept(slot.remembered);
    slot.remembered = nullptr;
}

}  // namespace

void set_scratch_size(std::intptr_t size) {
    scratch.size = std::clamp(size, least_size, most_size);
}

std::int16_t open_scratch(int& slot) {
    InSection held(scratch.section);
    int found = 1;
    while (found <= scratch_slots && scratch.slots[found].base != nullptr) ++found;
    if (found > scratch_slots) return all_slots_in_use;
    Slot& place = scratch.slots[found];
    forget_short_range(place);
    void* base = create_scratch_region(found, place.remembered);
    if (base == nullptr) return no_scratch_region;
    place = {base, nullptr};
    slot = found;
    return 0;
}

void* create_scratch_region(int slot, void* address) {
    if (!is_slot(slot)) return nullptr;
    return setup_virtual_region(SlotName(slot).text, scratch.size, address);
}

bool get_scratch_info(int slot, RegionInfo& info) {
    return is_slot(slot) && get_virtual_common_info(SlotName(slot).text, info);
}

void close_scratch(int slot) {
    if (!is_slot(slot)) return;
    InSection held(scratch.section);
    Slot& place = scratch.slots[slot];
    if (place.base == nullptr) return;
    remove_virtual_region(place.base, Removal::keep_addresses);
    place = {nullptr, place.base};
}

void release_scratch(int slot) {
    if (!is_slot(slot)) return;
    InSection held(scratch.section);
    Slot& place = scratch.slots[slot];
    if (place.base != nullptr) remove_virtual_region(place.base, Removal::release);
    if (place.remembered != nullptr) release_kept(place.remembered);
    place = {};
}

}  // namespace tarn::storage
