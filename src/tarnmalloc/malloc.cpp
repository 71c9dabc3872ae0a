// libtarnmalloc.so: the own heap under the C library's and C++'s plain names, for programs that ask
// for it by linking or preloading. It needs nothing else of the library.
//
// Misuse is reported and ends the program with status 1: a pointer that is no live block, `free` of
// what `new` gave, `delete` of what it didn't.
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <new>
#include <pthread.h>
#include <string_view>
#include <unistd.h>

#include "frame/link_name.h"
#include "storage/heap.h"

namespace {

using tarn::storage::Heap;
using tarn::storage::Origin;
using tarn::storage::PolledSection;
using tarn::storage::Released;

constexpr std::size_t natural_alignment = 16;

struct State {
    Heap heap;
    PolledSection starting;
    std::atomic<bool> started{false};
};
constinit State the_state;

Heap& heap() {
    if (!the_state.started.load(std::memory_order_acquire)) [[unlikely]] {
        tarn::storage::InSection held(the_state.starting);
        if (!the_state.started.load(std::memory_order_relaxed)) {
            the_state.heap.start();
            the_state.started.store(true, std::memory_order_release);
        }
    }
    return the_state.heap;
}

// A child of fork finds the heap as it was between two operations.
[[gnu::constructor]] void hold_heap_over_forks() {
    pthread_atfork([] { heap().section().enter(); }, [] { heap().section().leave(); },
                   [] { heap().section().leave(); });
}

[[noreturn]] void fail(std::string_view message) {
    [[maybe_unused]] ssize_t ignored = write(STDERR_FILENO, message.data(), message.size());
    _exit(1);
}

constexpr std::string_view corrupt = "*** Error   30, Storage heap is corrupt\n";

// Of a request or a release that was refused.
void check_heap() {
    if (heap().corrupt()) fail(corrupt);
}

void* get(std::size_t size, std::size_t alignment = natural_alignment) {
    void* result = heap().get(size, alignment);
    if (!result) {
        check_heap();
        errno = ENOMEM;
    }
    return result;
}

bool power_of_two(std::size_t value) {
    return value && (value & (value - 1)) == 0;
}

std::size_t at_least_natural(std::size_t alignment) {
    return alignment < natural_alignment ? natural_alignment : alignment;
}

// A routine of the C++ library that the process runs with. There is one wherever `new` runs out.
template <class Routine>
Routine library_routine(const char* name) {
    auto routine = reinterpret_cast<Routine>(dlsym(RTLD_NEXT, name));
    if (!routine) fail("*** Error  294, Storage block is not big enough for this operation\n");
    return routine;
}

void* new_block(std::size_t size, std::size_t alignment = natural_alignment) {
    for (;;) {
        void* result = heap().get(size ? size : 1, alignment, Origin::by_new);
        if (result) return result;
        check_heap();
        auto handler = library_routine<std::new_handler (*)()>("_ZSt15get_new_handlerv")();
        if (!handler) library_routine<void (*)()>("_ZSt17__throw_bad_allocv")();
        handler();
    }
}

std::size_t new_alignment(std::align_val_t alignment) {
    return at_least_natural(static_cast<std::size_t>(alignment));
}

void delete_block(void* block) {
    if (!block) return;
    Released released = heap().release(block);
    if (!released.found) check_heap();
    if (!released.found) fail("*** Error  376, Attempt to delete unallocated storage\n");
    if (!released.from_new) {
        fail("*** Error  303, Attempt to 'delete' memory not allocated by 'new'\n");
    }
}

}  // namespace

extern "C" {

TARN_EXPORT void* malloc(std::size_t size) {
    return get(size);
}

TARN_EXPORT void free(void* block) {
    if (!block) return;
    Released released = heap().release(block);
    if (!released.found) check_heap();
    if (!released.found) fail("*** Error  377, Attempt to free unallocated storage\n");
    if (released.from_new) {
        fail("*** Error  302, Attempt to 'free' memory allocated by 'new' - use 'delete'\n");
    }
}

TARN_EXPORT void* calloc(std::size_t count, std::size_t size) {
    std::size_t product = 0;
    if (__builtin_mul_overflow(count, size, &product)) {
        errno = ENOMEM;
        return nullptr;
    }
    void* result = get(product);
    if (result) std::memset(result, 0, product);
    return result;
}

TARN_EXPORT void* realloc(void* block, std::size_t size) {
    if (!block) return get(size);
    if (size == 0) {
        free(block);
        return nullptr;
    }
    std::optional<std::uint32_t> old = heap().find_size(block);
    if (!old) fail(corrupt);
    if (size <= *old) {
        heap().shrink(block, size);
        return block;
    }
    void* result = get(size);
    if (!result) return nullptr;
    std::memcpy(result, block, *old);
    heap().release(block);
    return result;
}

TARN_EXPORT void* reallocarray(void* block, std::size_t count, std::size_t size) {
    std::size_t product = 0;
    if (__builtin_mul_overflow(count, size, &product)) {
        errno = ENOMEM;
        return nullptr;
    }
    return realloc(block, product);
}

TARN_EXPORT void* memalign(std::size_t alignment, std::size_t size) {
    if (!power_of_two(alignment)) {
        errno = EINVAL;
        return nullptr;
    }
    return get(size, at_least_natural(alignment));
}

TARN_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

TARN_EXPORT int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    if (!power_of_two(alignment) || alignment % sizeof(void*) != 0) return EINVAL;
    int saved_errno = errno;
    void* result = get(size, at_least_natural(alignment));
    errno = saved_errno;
    if (!result) return ENOMEM;
    *block = result;
    return 0;
}

TARN_EXPORT void* valloc(std::size_t size) {
    return get(size, tarn::storage::page_size);
}

TARN_EXPORT void* pvalloc(std::size_t size) {
    constexpr std::size_t page = tarn::storage::page_size;
    std::size_t rounded = 0;
    if (__builtin_add_overflow(size, page - 1, &rounded)) {
        errno = ENOMEM;
        return nullptr;
    }
    return get(rounded & ~(page - 1), page);
}

TARN_EXPORT std::size_t malloc_usable_size(void* block) {
    return block ? heap().find_size(block).value_or(0) : 0;
}

}  // extern "C"

TARN_EXPORT void* operator new(std::size_t size) {
    return new_block(size);
}
TARN_EXPORT void* operator new[](std::size_t size) {
    return new_block(size);
}
TARN_EXPORT void* operator new(std::size_t size, std::align_val_t alignment) {
    return new_block(size, new_alignment(alignment));
}
TARN_EXPORT void* operator new[](std::size_t size, std::align_val_t alignment) {
    return new_block(size, new_alignment(alignment));
}

// On a shortage the C++ library's own form is asked: it calls the throwing form above and catches.
TARN_EXPORT void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept {
    using Next = void* (*)(std::size_t, const std::nothrow_t&);
    void* result = heap().get(size ? size : 1, natural_alignment, Origin::by_new);
    return result ? result : library_routine<Next>("_ZnwmRKSt9nothrow_t")(size, tag);
}
TARN_EXPORT void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
TARN_EXPORT void* operator new(std::size_t size, std::align_val_t alignment,
                               const std::nothrow_t& tag) noexcept {
    using Next = void* (*)(std::size_t, std::align_val_t, const std::nothrow_t&);
    void* result = heap().get(size ? size : 1, new_alignment(alignment), Origin::by_new);
    if (result) return result;
    return library_routine<Next>("_ZnwmSt11align_val_tRKSt9nothrow_t")(size, alignment, tag);
}
TARN_EXPORT void* operator new[](std::size_t size, std::align_val_t alignment,
                                 const std::nothrow_t& tag) noexcept {
    return operator new(size, alignment, tag);
}

TARN_EXPORT void operator delete(void* block) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete[](void* block) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete(void* block, std::size_t) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete[](void* block, std::size_t) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete(void* block, const std::nothrow_t&) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete[](void* block, const std::nothrow_t&) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete(void* block, std::align_val_t) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete[](void* block, std::align_val_t) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    delete_block(block);
}
TARN_EXPORT void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    delete_block(block);
}
