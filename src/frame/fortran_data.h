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
extern TARN_EXPORT tarn::frame::LibraryCommon LIBCOM_h_ LINK_NAME("LIBCOM#_");
extern TARN_EXPORT std::intptr_t LIB_h_[16] LINK_NAME("LIB#_");
extern TARN_EXPORT std::intptr_t IOF77_h_[16] LINK_NAME("IOF77#_");
extern TARN_EXPORT std::intptr_t PRFPT_h_[16] LINK_NAME("PRFPT#_");
extern TARN_EXPORT unsigned char __DEBUGGER_SPACE_[256];
extern TARN_EXPORT tarn::frame::DebugInfo* __ptr_to_debuginfo;
}
