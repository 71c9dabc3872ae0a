// The entries of regions, virtual common and virtual scratch, under their link names. What each
// does is told in include/tarn/virtual_storage.h.
#include "frame/link_name.h"
#include "frame/state.h"
#include "storage/regions.h"
#include "storage/virtual_common.h"
#include "storage/virtual_scratch.h"
#include "tarn/virtual_storage.h"

namespace storage = tarn::storage;

namespace {

// An unset argument of a C caller isn't stored through.
template <class To, class From>
void store(To* to, From value) {
    if (to != nullptr) *to = static_cast<To>(value);
}

void store_info(const storage::RegionInfo& info, std::uintptr_t* address, std::intptr_t* size,
                std::intptr_t* commit_size, std::intptr_t* committed) {
    store(address, info.address);
    store(size, info.size);
    store(commit_size, info.commit_size);
    store(committed, info.committed);
}

// A handle has bit 15 set, which makes it negative; its slot does as well.
constexpr int handle_bit = 0x8000;
int slot_of(int handle) {
    return handle & (handle_bit - 1);
}

}  // namespace

extern "C" {

TARN_EXPORT tarn_virtual_common* __get_virtual_common_block(void* instance,
                                                            tarn_virtual_common* record) {
    tarn::frame::ensure_up();
    storage::get_virtual_common_block(instance, *record);
    return record;
}
TARN_EXPORT void* setup_common_block_region(const char* path, void* address, intptr_t size,
                                            intptr_t commit_size) {
    tarn::frame::ensure_up();
    const auto* region = storage::setup_common_block_region(
        path, reinterpret_cast<std::uintptr_t>(address), size, commit_size);
    return reinterpret_cast<void*>(region->range.start);
}
TARN_EXPORT int __get_virtual_common_info(const char* file_name, uintptr_t* address, intptr_t* size,
                                          intptr_t* commit_size, intptr_t* committed) {
    storage::RegionInfo info;
    if (!storage::get_virtual_common_info(file_name, info)) return 0;
    store_info(info, address, size, commit_size, committed);
    return 1;
}

TARN_EXPORT void* setup_expanding_region(const char* name, intptr_t size) {
    tarn::frame::ensure_up();
    return storage::setup_expanding_region(name, size);
}
TARN_EXPORT void* setup_virtual_region(const char* name, intptr_t size, void* address) {
    tarn::frame::ensure_up();
    return storage::setup_virtual_region(name, size, address);
}
TARN_EXPORT int remove_virtual_region(void* start, int32_t kind) {
    if (kind == TARN_DECOMMIT)
        return storage::remove_virtual_region(start, storage::Removal::keep_addresses);
    if (kind == TARN_RELEASE)
        return storage::remove_virtual_region(start, storage::Removal::release);
    return 0;
}
TARN_EXPORT void __set_commit_pages(int32_t pages) {
    storage::set_commit_pages(pages);
}

TARN_EXPORT void SET_VIRTUAL_SCRATCH_FILE_SIZE_h(const intptr_t* size) {
    storage::set_scratch_size(*size);
}
TARN_EXPORT void OPEN_VIRTUAL_SCRATCH_h(int16_t* handle, int16_t* status) {
    tarn::frame::ensure_up();
    int slot = 0;
    *status = storage::open_scratch(slot);
    if (*status == 0) *handle = static_cast<std::int16_t>(slot + handle_bit);
}
TARN_EXPORT void CREATE_VIRTUAL_SCRATCH_FILE_h(const int32_t* slot, void** address,
                                               int16_t* status) {
    tarn::frame::ensure_up();
    *address = storage::create_scratch_region(slot_of(*slot), *address);
    *status = *address != nullptr ? 0 : storage::no_scratch_region;
}
TARN_EXPORT void GET_VIRTUAL_SCRATCH_FILE_INFO_h(const int32_t* slot, uintptr_t* address,
                                                 intptr_t* size, intptr_t* commit_size,
                                                 intptr_t* committed) {
    storage::RegionInfo info;
    storage::get_scratch_info(slot_of(*slot), info);
    store_info(info, address, size, commit_size, committed);
}
TARN_EXPORT void CLOSE_VIRTUAL_SCRATCH_h(const int16_t* slot) {
    storage::close_scratch(slot_of(*slot));
}
TARN_EXPORT void RELEASE_VIRTUAL_SCRATCH_h(const int16_t* slot) {
    storage::release_scratch(slot_of(*slot));
}

}  // extern "C"
