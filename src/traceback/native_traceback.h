// The traceback of the native reports: one line a routine, at most so many, by rules that programs
// can set (setup_traceback).
#pragma once

#include <cstddef>
#include <cstdint>

#include "traceback/text_buffer.h"
#include "traceback/walk.h"

namespace tarn::traceback {

// One routine of a traceback.
struct RoutineRecord {
    std::uintptr_t start;
    std::uint32_t recursion;  // how often it, or the run that begins with it, came again
    std::uint32_t spare1;
    std::uintptr_t offset;  // of the code address from the start
    std::uintptr_t spare2;
    char name[100];  // terminated; 80 characters of the routine's name at most
};
static_assert(sizeof(RoutineRecord) == 136);

// The routine that holds an address; its start is the address itself where none is known.
void find_routine(std::uintptr_t address, RoutineRecord& record);

// " in file a.f95 at line 12"; false, and nothing, where the line isn't known.
bool add_source_line(TextBuffer& text, std::uintptr_t address);
void add_routine_line(TextBuffer& text, const RoutineRecord& record);

// From a place outward: limited, recursion in one line. `reporting`: the library's own routines are
// left out, for the reader knows that a failure was reported by it.
void add_native_traceback(TextBuffer& text, Walk& walk, bool reporting);
// Every frame, the outermost first, at most 100.
void add_plain_traceback(TextBuffer& text, Walk& walk);

}  // namespace tarn::traceback
