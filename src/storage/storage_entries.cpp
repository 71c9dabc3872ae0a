// The storage entries that compiled programs call, under their link names. What each does is told
// in include/tarn/storage.h.
#include <cstdarg>
#include <cstdlib>

#include "frame/link_name.h"
#include "storage/polled_section.h"
#include "storage/storage.h"
#include "storage/trace.h"
#include "tarn/storage.h"

namespace storage = tarn::storage;

namespace {

// The short way, with no call between a program and the system's allocator but our own.
bool passes_through() {
    return storage::state().passes_through.load(std::memory_order_relaxed);
}

bool own_heap() {
    return storage::mode() == storage::Mode::own;
}

std::uintptr_t exchange(std::uintptr_t& cell, void* value) {
    std::uintptr_t old = cell;
    cell = reinterpret_cast<std::uintptr_t>(value);
    return old;
}

void* pointer(std::uintptr_t value) {
    return reinterpret_cast<void*>(value);
}

}  // namespace

extern "C" {

TARN_EXPORT void __initialise_storage_allocator() {
    storage::initialise_storage_allocator();
}

TARN_EXPORT void* tarn_malloc(size_t size) {
    if (passes_through()) [[likely]]
        return std::malloc(size);
    return storage::allocate(size);
}
TARN_EXPORT void tarn_free(void* block) {
    if (passes_through()) [[likely]]
        return std::free(block);
    storage::deallocate(block);
}
TARN_EXPORT void* tarn_calloc(size_t count, size_t size) {
    return storage::allocate_zeroed(count, size);
}
TARN_EXPORT void* tarn_realloc(void* block, size_t size) {
    return storage::reallocate(block, size);
}
TARN_EXPORT void* tarn_operator_new(size_t size) {
    return storage::allocate_new(size);
}
TARN_EXPORT void tarn_operator_delete(void* block) {
    storage::delete_allocated(block);
}
TARN_EXPORT tarn_new_handler set_new_handler(tarn_new_handler handler) {
    return storage::set_new_handler(handler);
}

TARN_EXPORT int fault_malloc_failure(int flag) {
    constexpr auto bit = storage::malloc_failure_is_fatal;
    return (storage::change_exception_mode(flag ? bit : 0, flag ? 0 : bit) & bit) != 0;
}
TARN_EXPORT uint32_t set_exception_mode(uint32_t mask) {
    return storage::change_exception_mode(mask, 0);
}
TARN_EXPORT uint32_t reset_exception_mode(uint32_t mask) {
    return storage::change_exception_mode(0, mask);
}
TARN_EXPORT uint32_t get_exception_mode() {
    return storage::state().exception_mode.load();
}

TARN_EXPORT void* __get_memory(intptr_t length) {
    return storage::get_memory(length);
}
TARN_EXPORT void __release_memory(void* block) {
    storage::release_memory(block);
}
TARN_EXPORT void __shrink_memory(void* block, intptr_t length) {
    storage::shrink_memory(block, length);
}
TARN_EXPORT intptr_t __find_memory_size(const void* block) {
    return storage::find_memory_size(block);
}
TARN_EXPORT int __seek_memory(const void* block) {
    return storage::seek_memory(block);
}

TARN_EXPORT intptr_t __total_allocated_memory() {
    return storage::state().heap.total_allocated();
}
TARN_EXPORT intptr_t __report_memory_available() {
    return own_heap() ? storage::state().heap.available() - 1000 : 0;
}
TARN_EXPORT intptr_t __report_largest_memory_block() {
    return own_heap() ? storage::state().heap.largest_block() : 0;
}
TARN_EXPORT int __find_hash_address(const void* block) {
    auto address = static_cast<storage::Address>(reinterpret_cast<std::uintptr_t>(block));
    return static_cast<int>(storage::hash_bucket(address - 4));
}
TARN_EXPORT void print_memory_chain(int bucket, int length) {
    if (!own_heap()) return;
    storage::Heap& heap = storage::state().heap;
    if (bucket < 0) {
        heap.print_chains();
    } else if (length < 0) {
        heap.print_chains(static_cast<std::uint32_t>(bucket));
    } else {
        heap.print_chain(static_cast<std::uint32_t>(bucket), static_cast<std::uint32_t>(length));
    }
}

TARN_EXPORT void* __set_break_when_allocated(void* address) {
    return pointer(exchange(storage::state().heap.breaks.when_allocated, address));
}
TARN_EXPORT void* __set_break_when_freed(void* address) {
    return pointer(exchange(storage::state().heap.breaks.when_freed, address));
}
TARN_EXPORT void __data_break_addr(void* address) {
    exchange(storage::state().heap.breaks.data_address, address);
}
TARN_EXPORT void dump_memory_info(int flag) {
    storage::dump_memory_info(flag != 0);
}

TARN_EXPORT void SET_DEBUG_ALLOCATE_h(const int32_t* flag) {
    storage::allocate_events().allocate_debug = *flag;
}
TARN_EXPORT void SET_DEBUG_ALLOCATE_BREAK_NUMBER_h(const int32_t* number) {
    storage::allocate_events().allocate_break_number = *number;
}
TARN_EXPORT void increment_allocate_event(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    storage::increment_allocate_event(format, arguments);
    va_end(arguments);
}
TARN_EXPORT int32_t get_allocate_event_count() {
    return storage::allocate_events().allocate_events;
}

TARN_EXPORT void scs_enter1(int32_t* counter) {
    storage::enter_held_section(counter);
}
// Nobody is woken: a waiter sees the change when it looks again.
TARN_EXPORT void scs_leave1(int32_t*) {}

}  // extern "C"
