// The process-wide allocator behind malloc, operator new and the Fortran storage entries.
//
// It has two modes, chosen once, by the first request or by the start of the program. In system
// mode, the default, every request goes to the process's own allocator. With the environment
// variable ORVEX_NEW_MEMORY holding "FALSE" in any case, the library manages storage itself:
// heap.h.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "storage/heap.h"

namespace tarn::storage {

enum class Mode : std::uint8_t { undecided, system, own };

// Bits of the exception mode: which failures end the program instead of giving a null result.
inline constexpr std::uint32_t malloc_failure_is_fatal = 1U << 0;
inline constexpr std::uint32_t stdio_failure_is_fatal = 28;
inline constexpr std::uint32_t new_failure_is_fatal = 1U << 5;

using NewHandler = void (*)();

// What other rooms give this one. Null: not there yet.
struct Hooks {
    // Raises class 105 where slot 16 of the trap table holds a handler; false where none is set.
    bool (*raise_low_memory)() = nullptr;
};

struct State {
    std::atomic<Mode> mode{Mode::undecided};
    // System mode, and a null result of malloc is the caller's concern: the entries have nothing to
    // add to the system's.
    std::atomic<bool> passes_through{false};
    std::int32_t heap_by_system = 1;
    Heap heap;

    std::atomic<std::uint32_t> exception_mode{0};
    std::atomic<NewHandler> new_handler{nullptr};
    std::atomic<std::uint32_t> new_handler_changes{0};

    // The name under which the next request shares its storage; empty: none is pending.
    char pending_share_name[81] = "";
    Hooks hooks;
};
extern constinit State the_state;
inline State& state() {
    return the_state;
}

// Fixes the mode. A later call changes nothing.
void initialise_storage_allocator();
// The mode in force; the first call fixes it.
Mode mode();
// Sets bits of the exception mode, or clears them; the word before.
std::uint32_t change_exception_mode(std::uint32_t set, std::uint32_t clear);

// The core. Its blocks are 4-aligned in the own heap.
void* get_memory(std::intptr_t length);
// The same on a boundary, from the own heap only.
void* get_aligned_memory(std::size_t length, std::size_t alignment);
void release_memory(void* pointer);
void shrink_memory(void* pointer, std::intptr_t length);
std::intptr_t find_memory_size(const void* pointer);
bool seek_memory(const void* pointer);

// The C and C++ entries. Their blocks are aligned to 16 bytes in both modes.
inline constexpr std::size_t compiled_alignment = 16;
void* allocate(std::size_t size);
void* allocate_zeroed(std::size_t count, std::size_t size);
void* reallocate(void* pointer, std::size_t size);
void deallocate(void* pointer);
void* allocate_new(std::size_t size);
void delete_allocated(void* pointer);
NewHandler set_new_handler(NewHandler handler);

}  // namespace tarn::storage
