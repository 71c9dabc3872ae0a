// The entries of ALLOCATE, DEALLOCATE and the storage routines that Fortran programs call by name.
// What each does is told in include/tarn/allocate.h.
#include <cstdio>

#include "failure/report.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "storage/allocate.h"
#include "storage/global_blocks.h"
#include "storage/large_blocks.h"
#include "storage/storage.h"
#include "tarn/allocate.h"

namespace storage = tarn::storage;

namespace {

constexpr int heap_is_corrupt = 30;
constexpr int null_pointer = 194;
constexpr int invalid_pointer = 195;

[[noreturn]] void fail(int number) {
    tarn::frame::attach();
    tarn::failure::c_fail(number);
}

void* pointer(std::intptr_t address) {
    return reinterpret_cast<void*>(address);
}

// What a program gets for an address: -1 when there is none.
std::intptr_t address_of(void* block) {
    return block != nullptr ? reinterpret_cast<std::intptr_t>(block) : -1;
}

void store_shrunk(std::intptr_t* address, void* block) {
    if (block == nullptr) fail(heap_is_corrupt);
    *address = reinterpret_cast<std::intptr_t>(block);
}

// The lines stand between what the program has printed before and what it prints after.
void print_on_output(bool allocated, bool free) {
    tarn::frame::attach();
    if (tarn::frame::hooks().flush_fortran_units) tarn::frame::hooks().flush_fortran_units();
    storage::print_vheaps(allocated, free, stdout);
    std::fflush(stdout);
}

}  // namespace

extern "C" {

TARN_EXPORT void* __ALLOCATE(intptr_t size, int32_t* stat) {
    return storage::allocate_object(size, stat);
}
TARN_EXPORT void* __ALLOCATE_U(intptr_t size, int32_t* stat) {
    return storage::allocate_undefined_object(size, stat);
}
TARN_EXPORT void* __ALLOCATE1(intptr_t size, int32_t* stat, void* current) {
    return storage::allocate_again(size, stat, current);
}
TARN_EXPORT void __DEALLOCATE(void* block, int32_t* stat) {
    storage::deallocate_object(block, stat);
}
TARN_EXPORT void __enable_deallocate(void* mapping) {
    storage::pending_statement().deallocate_mapping = mapping;
}
TARN_EXPORT const char* __ShareNextAllocate(const char* name, intptr_t length) {
    const auto count = static_cast<std::size_t>(length > 0 ? length : 0);
    storage::share_next_allocate({name, count});
    return name + count;
}
TARN_EXPORT void __ErrMsgNextAllocate(char* buffer, intptr_t length) {
    storage::errmsg_next_allocate(buffer, length);
}
TARN_EXPORT void end_stat_error_reporting() {
    storage::pending_statement().errmsg = nullptr;
}
TARN_EXPORT int32_t report_stat_error(int32_t* stat, int32_t status, int32_t number) {
    return storage::report_stat_error(stat, status, number);
}
TARN_EXPORT int32_t get_shared_memory(intptr_t size, void** result, int32_t* status) {
    return static_cast<int32_t>(storage::get_shared_memory(size, *result, *status));
}
TARN_EXPORT int32_t __alloc_times(intptr_t first, intptr_t second) {
    return storage::alloc_times(first, second);
}

TARN_EXPORT void* __map_file_for_reading(const char* path, intptr_t size) {
    return storage::map_file(path, size, storage::MappedFor::reading);
}
TARN_EXPORT void* __map_file_for_read_write(const char* path, intptr_t size) {
    return storage::map_file(path, size, storage::MappedFor::read_write);
}
TARN_EXPORT int32_t __unmap_file(void* mapping) {
    return storage::unmap(mapping);
}
TARN_EXPORT void* __create_interprocess_shared_memory(const char* name, intptr_t size) {
    return storage::create_interprocess_shared_memory(name, size);
}

TARN_EXPORT void* GET_STORAGE2_h(intptr_t size) {
    return storage::get_memory(size);
}
TARN_EXPORT void RETURN_STORAGE1_h(void* block) {
    if (block == nullptr) fail(null_pointer);
    if (reinterpret_cast<std::intptr_t>(block) < 0) fail(invalid_pointer);
    storage::release_memory(block);
}

TARN_EXPORT void GET_STORAGE_h(intptr_t* address, const intptr_t* size) {
    *address = address_of(storage::vmalloc(*size));
}
TARN_EXPORT void RETURN_STORAGE_h(const intptr_t* address) {
    storage::vfree(pointer(*address));
}
TARN_EXPORT void SHRINK_STORAGE_h(intptr_t* address, const intptr_t* size) {
    store_shrunk(address, storage::shrink_vmalloc(pointer(*address), *size));
}
TARN_EXPORT void GET_MSTORAGE_h(intptr_t* address, const intptr_t* size) {
    *address = address_of(*size < 0 ? nullptr : storage::allocate(static_cast<std::size_t>(*size)));
}
TARN_EXPORT void RETURN_MSTORAGE_h(const intptr_t* address) {
    storage::deallocate(pointer(*address));
}
TARN_EXPORT void SHRINK_MSTORAGE_h(intptr_t* address, const intptr_t* size) {
    if (*size < 0) fail(heap_is_corrupt);
    store_shrunk(address, storage::reallocate(pointer(*address), static_cast<std::size_t>(*size)));
}
TARN_EXPORT void GET_GSTORAGE_h(intptr_t* address, const intptr_t* size) {
    *address = address_of(storage::global_alloc(*size));
}
TARN_EXPORT void RETURN_GSTORAGE_h(const intptr_t* address) {
    storage::global_free(pointer(*address));
}
TARN_EXPORT void GIVEBACK_ALLOCATION_BLOCKS_h(intptr_t* freed) {
    *freed = storage::free_empty_vmalloc_blocks();
}
TARN_EXPORT void DBG_DISPLAY_GET_STORAGE_LIST_h() {
    print_on_output(true, false);
}

TARN_EXPORT void* __vmalloc(intptr_t size) {
    return storage::vmalloc(size);
}
TARN_EXPORT void __vfree(void* block) {
    storage::vfree(block);
}
TARN_EXPORT void* __shrink_vmalloc(void* block, intptr_t size) {
    return storage::shrink_vmalloc(block, size);
}
TARN_EXPORT void* __global_alloc(intptr_t size) {
    return storage::global_alloc(size);
}
TARN_EXPORT void __global_free(void* block) {
    storage::global_free(block);
}
TARN_EXPORT intptr_t _freeup_empty_vmalloc_blocks() {
    return storage::free_empty_vmalloc_blocks();
}
TARN_EXPORT intptr_t __freeup_empty_vmalloc_blocks() TARN_ALIAS(_freeup_empty_vmalloc_blocks);

TARN_EXPORT void _print_vheaps_fp(int32_t allocated, int32_t free, FILE* stream) {
    storage::print_vheaps(allocated != 0, free != 0, stream);
}
TARN_EXPORT void _print_vheaps(int32_t allocated, int32_t free) {
    print_on_output(allocated != 0, free != 0);
}
TARN_EXPORT void __print_vheaps(int32_t allocated, int32_t free) TARN_ALIAS(_print_vheaps);
TARN_EXPORT void _print_vheaps_file(int32_t allocated, int32_t free, const char* name) {
    FILE* stream = std::fopen(name, "w");
    if (stream == nullptr) return std::perror(name);
    _print_vheaps_fp(allocated, free, stream);
    std::fclose(stream);
}

}  // extern "C"
