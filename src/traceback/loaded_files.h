// The files behind the loaded modules, opened when a report first asks for them and kept.
#pragma once

#include "traceback/module.h"
#include "traceback/routine_map.h"

namespace tarn::traceback {

struct LoadedFile {
    Module module;
    Bytes content;  // empty: the file couldn't be read, or is another one by now
    RoutineMap map;
    bool has_map = false;
};

// The file that holds an address, or null. Not for two threads at once.
const LoadedFile* file_at(std::uintptr_t address);
// Forgets all, and closes the files.
void close_files();

}  // namespace tarn::traceback
