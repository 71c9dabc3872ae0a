#include "exceptions/attempt.h"
#include "exceptions/exceptions.h"
#include "exceptions/report_file.h"
#include "failure/failure.h"
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

// A failure's first line says what it is.
void write_failure(int number, std::string_view text, const traceback::Registers& registers) {
    std::string_view cause = text.substr(0, text.find('\n'));
    constexpr unsigned patience = 10;
    attempt(patience, [&] {
        write_report_files({"failure", cause, text, number, registers, nullptr});
    });
}

void install() {
    failure::hooks().write_report = write_failure;
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
