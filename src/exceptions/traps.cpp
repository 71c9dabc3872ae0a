#include "exceptions/exceptions.h"
#include "frame/hooks.h"
#include "storage/storage.h"

namespace tarn::exceptions {
namespace {

// -1 in the slot: the signal is ignored, and storage that is short is nobody's concern.
bool raise_low_memory() {
    Trap handler = state().traps[trap_class::low_memory];
    if (handler == nullptr || reinterpret_cast<std::intptr_t>(handler) == -1) return false;
    handler();
    return true;
}

void install() {
    frame::hooks().watch_faults = watch;
    storage::state().hooks.raise_low_memory = raise_low_memory;
    frame::hooks().trapped_float = [] {
        return state().context != nullptr ? &state().context->floating : nullptr;
    };
    frame::hooks().exception_title = [] {
        return state().title[0] != 0 ? static_cast<const char*>(state().title) : nullptr;
    };
}
TARN_PREAMBLE(install)

}  // namespace

Trap set_trap(int trap_class, Trap routine) {
    if (trap_class < 0 || trap_class >= trap_class::count) return nullptr;
    return state().traps[trap_class].exchange(routine);
}

}  // namespace tarn::exceptions
