#include <cstdint>
#include <cstring>

#include "frame/end.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/messages.h"
#include "frame/modules.h"
#include "frame/records.h"
#include "frame/start.h"
#include "frame/state.h"
#include "platform/kernel/module.h"

using namespace tarn::frame;

extern "C" {

TARN_EXPORT void __init_cpplib_info(const ProgramInfo* info) {
    ensure_up();
    register_program(*info);
}
TARN_EXPORT void __initialise2_cpplib(void* instance, const char* name) {
    ensure_up();
    register_program_old(instance, name);
}
TARN_EXPORT void __initialise_xcbdll(const ModuleInfo* info) {
    ensure_up();
    register_module(*info);
}

// 0x25FF is a linker's jump standing where no map exists.
TARN_EXPORT void __Register_map_info(void* instance, const void* map) {
    if (!map) return;
    std::uint16_t first;
    std::memcpy(&first, map, sizeof first);
    if (first == 0x25FF) return;
    attach();
    if (hooks().register_map) hooks().register_map(instance, map);
}

TARN_EXPORT void __Obtain_stdcall_functionptr(std::uintptr_t* cell) {
    obtain_stdcall_function(*cell);
}

TARN_EXPORT void* __windows_instance() {
    return state().instance;
}
// Case and length are the file system's own: a path of this system is never folded or cut.
TARN_EXPORT const char* get_program_name() {
    return tarn::platform::program_path().c_str();
}
TARN_EXPORT std::int32_t xcb_lib_version() {
    return library_version;
}
TARN_EXPORT const char* get_xcblib_comments() {
    return "Run-time library of compiled programs";
}

TARN_EXPORT std::int32_t setup_traceback(const TracebackOptions* options) {
    if (!options) return 0;
    state().traceback = *options;
    return 1;
}
TARN_EXPORT std::int32_t get_setup_traceback_info(TracebackOptions* options) {
    if (!options) return 0;
    *options = state().traceback;
    return 1;
}

// Main routines that a linker falls back on when the image has none.
TARN_EXPORT void __quillpan() {}
TARN_EXPORT int tarn_main() {
    show_message("Call to missing function : main\n or __stdcall is missing from DLL Libmain");
    exit_program(0);
}
TARN_EXPORT int tarn_WinMain() {
    show_message("Call to missing function : WinMain\nWinMain must be a __stdcall function");
    return 0;
}
TARN_EXPORT int LIBMAIN_h() LINK_NAME("LIBMAIN#");
int LIBMAIN_h() {
    show_message("Call to missing function : LIBMAIN@");
    return 0;
}
}
