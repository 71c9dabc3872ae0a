// Exceptions of compiled C++ pass through the library's frames, where they clean up. Nothing is
// thrown or caught here, and the library doesn't load the system's unwinder: a program without
// exceptions starts without it. The one that is at work when a frame is cleaned up is the
// program's; the routines that the clean-up asks of it are looked up there at that time.
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <unwind.h>

namespace {

struct Unwinder {
    decltype(&_Unwind_SetGR) set_register;
    decltype(&_Unwind_SetIP) set_place;
    decltype(&_Unwind_GetIPInfo) place;
    decltype(&_Unwind_GetLanguageSpecificData) data;
    decltype(&_Unwind_GetRegionStart) start;
    decltype(&_Unwind_GetTextRelBase) text_base;
    decltype(&_Unwind_GetDataRelBase) data_base;
    decltype(&_Unwind_Resume) resume;
    decltype(&_Unwind_RaiseException) raise;
    decltype(&_Unwind_Resume_or_Rethrow) rethrow;
    decltype(&_Unwind_DeleteException) forget;
};

template <class Function>
void look_up(Function& function, void* module, const char* name) {
    function = reinterpret_cast<Function>(dlsym(module, name));
    if (function == nullptr) std::abort();
}

const Unwinder& unwinder() {
    static Unwinder all;
    if (all.resume != nullptr) return all;
    void* module = dlopen("libgcc_s.so.1", RTLD_NOW | RTLD_NOLOAD);
    if (module == nullptr) module = RTLD_DEFAULT;
    look_up(all.set_register, module, "_Unwind_SetGR");
    look_up(all.set_place, module, "_Unwind_SetIP");
    look_up(all.place, module, "_Unwind_GetIPInfo");
    look_up(all.data, module, "_Unwind_GetLanguageSpecificData");
    look_up(all.start, module, "_Unwind_GetRegionStart");
    look_up(all.text_base, module, "_Unwind_GetTextRelBase");
    look_up(all.data_base, module, "_Unwind_GetDataRelBase");
    look_up(all.raise, module, "_Unwind_RaiseException");
    look_up(all.rethrow, module, "_Unwind_Resume_or_Rethrow");
    look_up(all.forget, module, "_Unwind_DeleteException");
    look_up(all.resume, module, "_Unwind_Resume");
    return all;
}

}  // namespace

extern "C" {

void _Unwind_SetGR(_Unwind_Context* context, int index, _Unwind_Word value) {
    unwinder().set_register(context, index, value);
}
void _Unwind_SetIP(_Unwind_Context* context, _Unwind_Ptr value) {
    unwinder().set_place(context, value);
}
_Unwind_Ptr _Unwind_GetIPInfo(_Unwind_Context* context, int* before) {
    return unwinder().place(context, before);
}
void* _Unwind_GetLanguageSpecificData(_Unwind_Context* context) {
    return unwinder().data(context);
}
_Unwind_Ptr _Unwind_GetRegionStart(_Unwind_Context* context) {
    return unwinder().start(context);
}
_Unwind_Ptr _Unwind_GetTextRelBase(_Unwind_Context* context) {
    return unwinder().text_base(context);
}
_Unwind_Ptr _Unwind_GetDataRelBase(_Unwind_Context* context) {
    return unwinder().data_base(context);
}
void _Unwind_Resume(_Unwind_Exception* exception) {
    unwinder().resume(exception);
    std::abort();
}

_Unwind_Reason_Code _Unwind_RaiseException(_Unwind_Exception* exception) {
    return unwinder().raise(exception);
}
_Unwind_Reason_Code _Unwind_Resume_or_Rethrow(_Unwind_Exception* exception) {
    return unwinder().rethrow(exception);
}
void _Unwind_DeleteException(_Unwind_Exception* exception) {
    unwinder().forget(exception);
}

}  // extern "C"
