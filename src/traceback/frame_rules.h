// How a routine's caller is found from any instruction of it: what compilers leave in the unwind
// tables of a program (the call frame information of DWARF 5, section 6.4, as .eh_frame holds it).
#pragma once

#include <cstdint>

#include "traceback/registers.h"

namespace tarn::traceback {

struct RegisterRule {
    enum class Kind : std::uint8_t {
        same,         // the caller's value is still in the register
        undefined,    // lost
        saved,        // in memory, at the frame's address plus `offset`
        frame_plus,   // is the frame's address plus `offset`
        in_register,  // in register number `offset`
        saved_at,     // in memory, where `expression` says
        computed      // is what `expression` says
    };
    Kind kind = Kind::same;
    std::int64_t offset = 0;
    const unsigned char* expression = nullptr;
    std::uint32_t expression_size = 0;
};

struct FrameRules {
    std::uintptr_t place = 0;   // the instruction they hold for
    bool signal_frame = false;  // the caller was interrupted: its place is no return address
    // The frame's address: a register plus an offset, or an expression.
    RegisterRule frame;
    unsigned frame_register = 0;
    RegisterRule registers[register_count];
};

// False where no table tells.
bool find_frame_rules(std::uintptr_t place, FrameRules& rules);

// What a table in memory says: `header` is an .eh_frame_hdr, `start` and `end` what it may point
// into. For `find_frame_rules`, and for tests with tables of their own.
bool find_frame_rules_in(const void* header, const void* start, const void* end,
                         std::uintptr_t place, FrameRules& rules);

}  // namespace tarn::traceback
