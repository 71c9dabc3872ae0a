// What a debugging session watches: the trace file of the own heap, and the events of allocation
// statements.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace tarn::storage {

// Turns the trace file "dumpmem.dbg" on or off.
void dump_memory_info(bool on);
// A line of the trace file; nothing while it is off.
void trace_get(std::size_t length, const void* pointer);
void trace_release(std::size_t size, const void* pointer);

struct AllocateEvents {
    std::int32_t allocate_debug = 0;
    std::int32_t allocate_events = 0;
    std::int32_t allocate_break_number = -1;
};
AllocateEvents& allocate_events();

// Counts and prints one event, while they are on.
void increment_allocate_event(const char* format, std::va_list arguments);

}  // namespace tarn::storage
