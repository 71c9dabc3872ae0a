// The Fortran library's common blocks that a debugger reads by name.
#pragma once

#include <cstdint>

#include "frame/link_name.h"
#include "frame/records.h"

namespace tarn::frame {

inline constexpr std::intptr_t lib_failed = 1;  // `text` holds the report
inline constexpr std::intptr_t lib_closed = 3;  // all units are closed
inline constexpr std::intptr_t lib_running = -1;

struct LibraryCommon {
    std::intptr_t state;
    const char* text;  // of a failure that a debugger is to show
};

}  // namespace tarn::frame

extern "C" {
extern TARN_EXPORT unsigned char __DEBUGGER_SPACE_[256];
extern TARN_EXPORT tarn::frame::DebugInfo* __ptr_to_debuginfo;

// The address sanitizer can't spell a second name that it derives from a variable like `LIB#_`. So
// the variables have plain names, and the assembler gives them their link names.
extern tarn::frame::LibraryCommon tarn_libcom;
extern std::intptr_t tarn_lib[16];
extern std::intptr_t tarn_iof77[16];
extern std::intptr_t tarn_prfpt[16];
}
