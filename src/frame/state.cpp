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

tarn::frame::LibraryCommon tarn_libcom = {};
std::intptr_t tarn_lib[16] = {};
std::intptr_t tarn_iof77[16] = {};
std::intptr_t tarn_prfpt[16] = {};
}

static_assert(sizeof(tarn::frame::LibraryCommon) == 16 && sizeof tarn_lib == 128);
__asm__(R"(
        .macro  TARN_COMMON name, variable, bytes
        .globl  "\name"
        .set    "\name", \variable
        .type   "\name", @object
        .size   "\name", \bytes
        .endm
        TARN_COMMON "LIBCOM#_", tarn_libcom, 16
        TARN_COMMON "LIB#_", tarn_lib, 128
        TARN_COMMON "IOF77#_", tarn_iof77, 128
        TARN_COMMON "PRFPT#_", tarn_prfpt, 128
)");
