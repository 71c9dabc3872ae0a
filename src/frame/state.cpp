#include "frame/state.h"

#include "frame/fortran_data.h"
#include "frame/hooks.h"

namespace tarn::frame {

constinit State the_state;

Hooks& hooks() {
    static constinit Hooks the_hooks;
    return the_hooks;
}

}  // namespace tarn::frame

extern "C" {

std::int32_t __debugged = 0;
std::int32_t __sai = 0;
void* __throw_temporary_ptr = nullptr;
unsigned char __DEBUGGER_SPACE_[256] = {};
tarn::frame::DebugInfo* __ptr_to_debuginfo = nullptr;

tarn::frame::LibraryCommon LIBCOM_h_ = {};
std::intptr_t LIB_h_[16] = {};
std::intptr_t IOF77_h_[16] = {};
std::intptr_t PRFPT_h_[16] = {};
}
