// Loaded modules: the executable and shared libraries, by the platform's three operations.
#pragma once

#include <string>

namespace tarn::platform {

// A module that is loaded already, by its file name without folder, with or without its suffix
// (`orval` finds liborval.so too); null when there is none. Null asks for the executable.
void* module_handle(const char* name);
// Loads a shared library by path; null on failure.
void* load_library(const char* path);
// The address of a name that the module exports; null without one.
void* procedure_address(void* module, const char* name);

// Full path of the running program. Read once.
const std::string& program_path();

}  // namespace tarn::platform
