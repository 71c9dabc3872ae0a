#include "storage/storage.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <pthread.h>
#include <string_view>

#include "failure/failure.h"
#include "frame/hooks.h"
#include "frame/state.h"
#include "storage/allocate.h"
#include "storage/mappings.h"
#include "storage/trace.h"

namespace tarn::storage {

constinit State the_state;

namespace {

constexpr int heap_is_corrupt = 30;
constexpr int out_of_storage = 294;
constexpr int free_of_new = 302;
constexpr int delete_of_plain = 303;
constexpr int delete_of_unknown = 376;
constexpr int free_of_unknown = 377;

bool environment_wants_own_heap() {
    const char* value = std::getenv("ORVEX_NEW_MEMORY");
    if (!value) return false;
    constexpr std::string_view word = "FALSE";
    for (; *value; ++value) {
        std::size_t same = 0;
        while (same < word.size() && std::toupper(static_cast<unsigned char>(value[same])) ==
                                         static_cast<unsigned char>(word[same])) {
            ++same;
        }
        if (same == word.size()) return true;
    }
    return false;
}

// A child of fork finds the heap as it was between two operations, never within one.
void hold_heap_over_forks() {
    pthread_atfork([] { the_state.heap.section().enter(); },
                   [] { the_state.heap.section().leave(); },
                   [] { the_state.heap.section().leave(); });
}

bool raise_low_memory() {
    return the_state.hooks.raise_low_memory && the_state.hooks.raise_low_memory();
}

// Whoever changes the mode or the exception mode calls this under the lock.
void decide_pass_through() {
    bool fatal = the_state.exception_mode.load(std::memory_order_relaxed) & malloc_failure_is_fatal;
    bool system = the_state.mode.load(std::memory_order_relaxed) == Mode::system;
    the_state.passes_through.store(system && !fatal, std::memory_order_release);
}

void install_storage() {
    frame::hooks().initialise_storage = initialise_storage_allocator;
}
TARN_PREAMBLE(install_storage)

Mode decide_mode() {
    initialise_storage_allocator();
    return the_state.mode.load(std::memory_order_acquire);
}

[[gnu::always_inline]] inline bool system_mode() {
    Mode now = the_state.mode.load(std::memory_order_acquire);
    if (now == Mode::undecided) [[unlikely]]
        now = decide_mode();
    return now == Mode::system;
}

[[gnu::noinline]] void* shared_memory(std::intptr_t length) {
    void* result = nullptr;
    std::int32_t ignored = 0;
    get_shared_memory(length, result, ignored);
    return result;
}

void* get_own(std::size_t length, std::size_t alignment, Origin origin = Origin::plain) {
    void* result = the_state.heap.get(length, alignment, origin);
    if (!result) {
        if (the_state.heap.corrupt()) failure::fail(heap_is_corrupt);
        errno = ENOMEM;
        return nullptr;
    }
    trace_get(length, result);
    return result;
}

// Raises `unknown` for what is no live block.
Released release_own(void* pointer, int unknown) {
    Released released = the_state.heap.release(pointer);
    if (!released.found) failure::fail(the_state.heap.corrupt() ? heap_is_corrupt : unknown);
    trace_release(released.size, pointer);
    return released;
}

[[gnu::noinline]] void* malloc_failed() {
    if (the_state.exception_mode.load(std::memory_order_relaxed) & malloc_failure_is_fatal) {
        failure::fail(out_of_storage);
    }
    return nullptr;
}

[[gnu::noinline]] void* allocate_own(std::size_t size) {
    void* result = get_own(size, compiled_alignment);
    return result ? result : malloc_failed();
}

[[gnu::noinline]] void deallocate_own(void* pointer) {
    if (pointer && release_own(pointer, free_of_unknown).from_new) failure::fail(free_of_new);
}

void* reallocate_own(void* pointer, std::size_t size) {
    std::optional<std::uint32_t> old = the_state.heap.find_size(pointer);
    if (!old) failure::fail(heap_is_corrupt);
    if (size == *old) return pointer;
    if (size < *old) {
        if (!the_state.heap.shrink(pointer, size)) failure::fail(heap_is_corrupt);
        return pointer;
    }
    void* result = get_own(size, compiled_alignment);
    if (!result) return nullptr;  // the old block stays
    std::memcpy(result, pointer, *old);
    release_own(pointer, heap_is_corrupt);
    return result;
}

}  // namespace

void initialise_storage_allocator() {
    {
        InSection held(the_state.heap.section());
        if (the_state.mode.load(std::memory_order_relaxed) != Mode::undecided) return;
        if (environment_wants_own_heap()) the_state.heap_by_system = 0;
        if (the_state.heap_by_system || frame::state().managed) {
            the_state.mode.store(Mode::system, std::memory_order_release);
            decide_pass_through();
            return;
        }
        // A start that finds no room leaves a heap whose every request is refused.
        the_state.heap.low_memory = raise_low_memory;
        the_state.heap.start();
        the_state.mode.store(Mode::own, std::memory_order_release);
    }
    hold_heap_over_forks();
}

Mode mode() {
    return system_mode() ? Mode::system : Mode::own;
}

std::uint32_t change_exception_mode(std::uint32_t set, std::uint32_t clear) {
    InSection held(the_state.heap.section());
    std::uint32_t old = the_state.exception_mode.load(std::memory_order_relaxed);
    the_state.exception_mode.store((old | set) & ~clear, std::memory_order_relaxed);
    decide_pass_through();
    return old;
}

void* get_memory(std::intptr_t length) {
    if (share_name_pending()) [[unlikely]]
        return shared_memory(length);
    if (system_mode()) return std::malloc(static_cast<std::size_t>(length));
    return get_own(static_cast<std::size_t>(length), 4);
}

void* get_aligned_memory(std::size_t length, std::size_t alignment) {
    return get_own(length, alignment);
}

void release_memory(void* pointer) {
    // What get_memory shared is no block of an allocator.
    if (is_mapped(pointer)) [[unlikely]] {
        unmap(pointer);
        return;
    }
    if (system_mode()) {
        std::free(pointer);
        return;
    }
    release_own(pointer, heap_is_corrupt);
}

void shrink_memory(void* pointer, std::intptr_t length) {
    if (system_mode()) return;
    if (!the_state.heap.shrink(pointer, static_cast<std::size_t>(length))) {
        failure::fail(heap_is_corrupt);
    }
}

std::intptr_t find_memory_size(const void* pointer) {
    if (system_mode())
        return static_cast<std::intptr_t>(malloc_usable_size(const_cast<void*>(pointer)));
    std::optional<std::uint32_t> length = the_state.heap.find_size(pointer);
    if (!length) failure::fail(heap_is_corrupt);
    return *length;
}

bool seek_memory(const void* pointer) {
    return !system_mode() && the_state.heap.find_size(pointer).has_value();
}

void* allocate(std::size_t size) {
    if (!system_mode()) [[unlikely]]
        return allocate_own(size);
    void* result = std::malloc(size);
    if (!result) [[unlikely]]
        return malloc_failed();
    return result;
}

void deallocate(void* pointer) {
    if (!system_mode()) [[unlikely]]
        return deallocate_own(pointer);
    std::free(pointer);
}

// A product that doesn't fit gives null: a block smaller than its caller believes is no service.
void* allocate_zeroed(std::size_t count, std::size_t size) {
    if (system_mode()) {
        void* result = std::calloc(count, size);
        return result ? result : malloc_failed();
    }
    std::size_t product = 0;
    if (__builtin_mul_overflow(count, size, &product)) {
        errno = ENOMEM;
        return malloc_failed();
    }
    void* result = allocate_own(product);
    if (result) std::memset(result, 0, product);
    return result;
}

void* reallocate(void* pointer, std::size_t size) {
    if (!pointer) return allocate(size);
    if (size == 0) {
        deallocate(pointer);
        return nullptr;
    }
    if (!system_mode()) return reallocate_own(pointer, size);
    // In this mode the old block goes even where no new one could be had.
    void* result = std::realloc(pointer, size);
    if (!result) std::free(pointer);
    return result;
}

void* allocate_new(std::size_t size) {
    if (size == 0) size = 1;
    if (system_mode()) return std::malloc(size);
    for (;;) {
        if (void* result = get_own(size, compiled_alignment, Origin::by_new)) return result;
        // Out of its cell while it runs, so that it can't be entered twice at once.
        std::uint32_t changes = the_state.new_handler_changes.load(std::memory_order_acquire);
        NewHandler handler = the_state.new_handler.exchange(nullptr, std::memory_order_acq_rel);
        if (!handler) {
            if (the_state.exception_mode.load(std::memory_order_relaxed) & new_failure_is_fatal) {
                failure::fail(out_of_storage);
            }
            return nullptr;
        }
        handler();
        // A handler that set another one, or none, has given up its own place.
        if (the_state.new_handler_changes.load(std::memory_order_acquire) == changes) {
            the_state.new_handler.store(handler, std::memory_order_release);
        }
    }
}

void delete_allocated(void* pointer) {
    if (!pointer) return;
    if (system_mode()) {
        std::free(pointer);
        return;
    }
    if (!release_own(pointer, delete_of_unknown).from_new) failure::fail(delete_of_plain);
}

NewHandler set_new_handler(NewHandler handler) {
    the_state.new_handler_changes.fetch_add(1, std::memory_order_acq_rel);
    return the_state.new_handler.exchange(handler, std::memory_order_acq_rel);
}

}  // namespace tarn::storage
