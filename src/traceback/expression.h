// The small stack programs that unwind tables hold for what a plain rule can't say (the frames of
// signals, the stubs that calls of shared libraries go through): DWARF 5, section 2.5.
#pragma once

#include <cstdint>

#include "traceback/careful_memory.h"
#include "traceback/registers.h"

namespace tarn::traceback {

// False for a program that is broken, reads what isn't there, or wants what no unwind table needs.
// `first`, unless null, is on the stack when the program starts.
bool evaluate(const unsigned char* program, std::uint32_t size, const Registers& registers,
              const std::uintptr_t* first, CarefulMemory& memory, std::uintptr_t& result);

}  // namespace tarn::traceback
