// The loaded file that holds an address.
#pragma once

#include <cstdint>

namespace tarn::traceback {

struct Module {
    std::uintptr_t start = 0, end = 0;  // the addresses it takes up
    std::uintptr_t bias = 0;            // what loading added to the addresses in the file
    const char* path = "";              // empty: the program itself
    const void* frame_table = nullptr;  // its .eh_frame_hdr
};

// Takes no lock where the system's loader offers that (glibc 2.35 on), for a fault can strike while
// the loader is at work.
bool find_module(std::uintptr_t address, Module& module);

}  // namespace tarn::traceback
