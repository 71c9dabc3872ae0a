// What a reader wants to know of a code address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn::traceback {

struct Location {
    std::string_view routine;    // as the source spells it; empty: not known
    std::string_view file;       // empty: not known
    std::uint32_t line = 0;      // 0: not known
    std::string_view module;     // the loaded file's path; empty: the program
    std::uintptr_t address = 0;  // the code
    std::uintptr_t start = 0;    // of the routine, or of what was inlined
    bool inlined = false;        // the compiler put this routine in place of the call
    bool is_main = false;        // callers end here
    bool is_rest = false;        // of a routine whose beginning was inlined into its caller
    bool hidden = false;         // the compiler's own, or the run-time library's
    bool is_code = false;        // of a loaded file
    bool has_map = false;        // lines could be known
};

inline constexpr std::size_t most_inlined = 16;

// The routines that an address is in: the innermost inlined one first, the one that was called
// last. Their texts live until `close_files`. Never none.
std::size_t locate(std::uintptr_t address, Location (&found)[most_inlined + 1]);

// The library's own code, whose frames are of no interest to a program's user.
bool is_own_code(std::uintptr_t address);

}  // namespace tarn::traceback
