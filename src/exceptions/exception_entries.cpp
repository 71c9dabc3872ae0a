// The entries of traps, reports and signals.
#include <algorithm>
#include <cstring>

#include "exceptions/filter.h"
#include "exceptions/float_fault.h"
#include "exceptions/handler_frames.h"
#include "exceptions/signals.h"
#include "frame/end.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"
#include "storage/regions.h"

using namespace tarn::exceptions;

namespace {

// Who sets a trap wants faults watched, even before anything else of the library was called.
Trap trap_entry(int exception_class, Trap routine) {
    tarn::frame::ensure_up();
    return set_trap(exception_class, routine);
}

void keep_text(char (&kept)[text_size], const char* text) {
    std::size_t length = 0;
    if (text != nullptr) {
        length = strnlen(text, text_size - 1);
        std::memcpy(kept, text, length);
    }
    kept[length] = 0;
}

// What a frame names. The filter sees to storage that grows, too.
FrameHandler filter_entry() {
    return reinterpret_cast<FrameHandler>(&tarn_exception_handler);
}
FrameHandler storage_entry() {
    return reinterpret_cast<FrameHandler>(&__tarn_vc_handler);
}

std::size_t block_size(std::int32_t words) {
    return static_cast<std::size_t>(std::max(words, 0)) * 4;
}

}  // namespace

extern "C" {

TARN_EXPORT int tarn_exception_handler(Record* record, void*, Context* context) {
    tarn::frame::ensure_up();
    tarn::platform::MaskedFloat masked;
    Exception exception{*record, *context, find_row(record->code), nullptr};
    const Decision decision = filter(exception);
    if (decision == Decision::end) tarn::frame::zap_out();
    return decision == Decision::proceed ? 0 : 1;
}

TARN_EXPORT int __tarn_vc_handler(Record* record, void*, Context* context) {
    tarn::frame::ensure_up();
    if ((context->flags & TARN_CONTEXT_INTEGER) == 0) {
        Exception exception{*record, *context, find_row(record->code), nullptr};
        if (end_with(exception, unknown_processor) == Decision::end) tarn::frame::zap_out();
        return 1;
    }
    const bool may_grow = record->code == TARN_ACCESS_VIOLATION;
    return may_grow && tarn::storage::commit_at(record->parameters[1]) ? 0 : 1;
}

TARN_EXPORT Trap __set_exception_trap(int exception_class, Trap routine) {
    return trap_entry(exception_class, routine);
}
TARN_EXPORT Trap set_exception_trap(int exception_class, Trap routine)
    TARN_ALIAS(__set_exception_trap);
TARN_EXPORT Trap TRAP_EXCEPTION_h(const std::int32_t* exception_class, Trap routine) {
    return trap_entry(*exception_class, routine);
}
TARN_EXPORT void __reset_exception(int exception_class) {
    set_trap(exception_class, nullptr);
}
TARN_EXPORT void RESTORE_DEFAULT_HANDLER_h(const std::int32_t* exception_class) {
    set_trap(*exception_class, nullptr);
}

TARN_EXPORT int __exception_caught() {
    return state().caught;
}
TARN_EXPORT int EXCEPTION_TRAPPED_h() {
    return state().caught;
}
TARN_EXPORT Record* __get_exception_info() {
    return state().record;
}
TARN_EXPORT Record* EXCEPTION_INFORMATION_h() {
    return state().record;
}
TARN_EXPORT Context* __get_exception_context() {
    return state().context;
}
TARN_EXPORT Context* MACHINE_STATE_h() {
    return state().context;
}
TARN_EXPORT void* get_exception_address() {
    return state().record != nullptr ? state().record->address : nullptr;
}
TARN_EXPORT void* EXCEPTION_ADDRESS_h() {
    return get_exception_address();
}
TARN_EXPORT void get_access_details(std::uintptr_t* address, std::int32_t* is_write,
                                    std::int32_t* failed) {
    const Record* record = state().record;
    const bool known = record != nullptr && record->code == TARN_ACCESS_VIOLATION;
    *address = known ? record->parameters[1] : 0;
    *is_write = known && record->parameters[0] != 0 ? 1 : 0;
    *failed = known ? 0 : 1;
}
TARN_EXPORT void ACCESS_DETAILS_h(std::uintptr_t* address, std::int32_t* is_write,
                                  std::int32_t* failed) {
    get_access_details(address, is_write, failed);
}
TARN_EXPORT int get_machine_state(Context* machine) {
    if (state().context == nullptr) return 0;
    *machine = *state().context;
    return 1;
}
TARN_EXPORT int set_machine_state(const Context* machine) {
    if (state().context == nullptr) return 0;
    *state().context = *machine;
    return 1;
}

TARN_EXPORT int clear_flt_underflow() {
    return state().context != nullptr && recover_from_underflow(*state().context, nullptr) ? 1 : 0;
}
TARN_EXPORT int CLEAR_FLT_UNDERFLOW_h() {
    return clear_flt_underflow();
}

TARN_EXPORT void __Put_exception_message(const char* text) {
    keep_text(state().message, text);
}
TARN_EXPORT void __Put_exception_title(const char* text) {
    keep_text(state().title, text);
}
TARN_EXPORT void __At_Breakpoint(const char* text) {
    tarn::frame::ensure_up();
    keep_text(state().breakpoint_message, text);
    __asm__ volatile("int3" : : : "memory");
}
TARN_EXPORT void __set_disassamble_inst(int count) {
    constexpr int usual = 5;
    constexpr int most = 20;
    state().disassembly_lines = count <= 0 ? usual : std::min(count, most);
}
TARN_EXPORT void __display_codebytes(int on) {
    state().code_bytes = on != 0;
}
TARN_EXPORT void display_ex_message(int on) {
    state().display_message = on != 0;
}
TARN_EXPORT void __debugger_mode() {
    tarn::frame::ensure_up();
    state().debugger_mode = true;
}

// The common work of the entries below.
TARN_EXPORT void __register_tarnick_handler(int storage, void* block, std::int32_t words) {
    tarn::frame::ensure_up();
    if (storage != 0) {
        register_frames(FrameKind::storage, storage_entry(), block, block_size(words));
    } else {
        register_frames(FrameKind::faults, filter_entry(), block, block_size(words));
    }
}
TARN_EXPORT void* __install_tarn_exception_handler(int storage) {
    return reinterpret_cast<void*>(
        install_frame(storage != 0 ? FrameKind::storage : FrameKind::faults));
}
TARN_EXPORT void __remove_exception_handler() {
    remove_frame();
}

TARN_EXPORT void REGISTER_TARN_EXCEPTION_HANDLER(void* block, const std::int32_t* words) {
    __register_tarnick_handler(0, block, *words);
}
TARN_EXPORT void REGISTER_TARN_VIRTUAL_HANDLER(void* block, const std::int32_t* words) {
    __register_tarnick_handler(1, block, *words);
}
TARN_EXPORT void* INSTALL_TARN_EXCEPTION_HANDLER() {
    return __install_tarn_exception_handler(0);
}
TARN_EXPORT void* INSTALL_TARN_VIRTUAL_HANDLER() {
    return __install_tarn_exception_handler(1);
}
TARN_EXPORT void REMOVE_TARN_HANDLER() {
    remove_frame();
}

TARN_EXPORT SignalRoutine tarn_signal(int number, SignalRoutine routine) {
    tarn::frame::ensure_up();
    return set_signal(number, routine);
}
TARN_EXPORT int tarn_raise(int number) {
    tarn::frame::ensure_up();
    return raise_signal(number);
}
TARN_EXPORT Trap set_trap(Trap routine, int index) {
    tarn::frame::ensure_up();
    return set_trap_by_index(routine, index);
}
TARN_EXPORT Trap SET_TRAP_h(Trap routine, const std::int32_t* index) {
    tarn::frame::ensure_up();
    return set_trap_by_index(routine, *index);
}
}
