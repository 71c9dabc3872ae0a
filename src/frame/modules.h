// The compiled images of the process: their registration, versions and control-word tables.
#pragma once

#include <cstdint>

#include "frame/records.h"

namespace tarn::frame {

// The executable registers itself. An image of version 110 or lower is refused: the message, and
// the end with status 0.
void register_program(const ProgramInfo& info);
void register_program_old(void* instance, const char* name);
// A compiled shared library does.
void register_module(const ModuleInfo& info);

// Enters a module in the list of known ones, newest first, once by name. Warns when the old kind
// meets the new.
void save_loaded_module(const char* name, std::int32_t version, bool is_dll);

// Replaces the key in the cell by the function that the registered tables give for it; a miss
// leaves the cell.
void obtain_stdcall_function(std::uintptr_t& cell);

}  // namespace tarn::frame
