// The message pump: every wait of the window library goes through it.
#include <cstdio>
#include <cstdlib>
#include <pthread.h>
#include <unistd.h>
#include <utility>

#include "frame/end.h"
#include "frame/hooks.h"
#include "platform/dialogs/dialogs.h"
#include "platform/display/display.h"
#include "platform/script/script.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

struct hook_entry {
    hook_entry* next;
    void (*function)();
};
struct dialog_entry {
    dialog_entry* next;
    HWND dialog;
};
struct pump_state {
    PumpHooks hooks;
    hook_entry* loop_hooks;
    dialog_entry* dialogs;
    bool started;
    pthread_t thread;
    bool desktop_lost;
};
pump_state& pump() {
    static pump_state all;
    return all;
}

// What the program wrote must not be lost, whatever ends it here.
void flush_everything() {
    if (frame::hooks().flush_fortran_units != nullptr) frame::hooks().flush_fortran_units();
    std::fflush(nullptr);
}

// Nobody watches and nothing can ever come: the program would wait for ever.
void give_up(const char* what) {
    std::fprintf(
        stderr,
        "*** %s: nobody can answer on this display; the program ends.\n"
        "    (TARN_DISPLAY=x11 opens windows on a desktop, TARN_EVENTS=file plays events.)\n",
        what);
    flush_everything();
    _exit(status_nobody_to_answer);
}

void end_with(std::int32_t status) {
    flush_everything();
    _exit(status);
}

// The server of the desktop is gone, and with it every window. What the program wrote is safe
// before its own exit routines have their turn.
void end_without_desktop(const char* message) {
    pump().desktop_lost = true;
    std::fprintf(stderr, "*** %s\n", message);
    flush_everything();
    frame::exit_program(1);
}

bool for_a_dialog(MSG& message) {
    for (dialog_entry* entry = pump().dialogs; entry != nullptr;) {
        dialog_entry* next = entry->next;
        if (IsDialogMessageA(entry->dialog, message)) return true;
        entry = next;
    }
    return false;
}

void deliver(MSG& message) {
    const PumpHooks& hooks = pump().hooks;
    if (hooks.pre_filter != nullptr && hooks.pre_filter(message)) return;
    if (for_a_dialog(message)) return;
    TranslateMessage(message);
    DispatchMessageA(message);
}

void after_message(const MSG& message) {
    if (message.message == WM_CLOSE) return;
    count_down_bars();
    for (const hook_entry* hook = pump().loop_hooks; hook != nullptr; hook = hook->next)
        hook->function();
    const PumpHooks& hooks = pump().hooks;
    if (hooks.loop_hook != nullptr) hooks.loop_hook();
    if (hooks.post_filter != nullptr) hooks.post_filter(message);
}

void nothing_left() {
    show_all_output();
    const PumpHooks& hooks = pump().hooks;
    if (hooks.graphics_update != nullptr) hooks.graphics_update();
    if (hooks.idle != nullptr) hooks.idle();
}

// The program is told to end.
[[noreturn]] void quit() {
    state().windows = nullptr;
    frame::exit_program(0);
}

UINT upper_limit() {
    const textwin_state& s = state();
    return s.yield_mask != 0 ? s.yield_mask : static_cast<UINT>(s.upper_limit);
}

}  // namespace

bool desktop_lost() {
    return pump().desktop_lost;
}

bool pump_started() {
    return pump().started;
}

pthread_t pump_thread() {
    return pump().thread;
}

void start_pump() {
    if (pump().started) return;
    pump().started = true;
    pump().thread = pthread_self();
    unanswered_wait = give_up;
    end_after_script = end_with;
    display_lost = end_without_desktop;
    somebody_answers = script_active;
    start_script();
    register_text_class();
}

PumpHooks& pump_hooks() {
    return pump().hooks;
}

std::uint32_t& yield_mask() {
    return state().yield_mask;
}

void yield_program_control(std::int32_t mode) {
    start_pump();
    while (true) {
        MSG message;
        while (PeekMessageA(message, HWND{}, 0, upper_limit(), PM_REMOVE)) {
            if (message.message == WM_QUIT) {
                if (mode == 2) return;
                quit();
            }
            deliver(message);
            after_message(message);
            if (std::exchange(state().key_taken, false)) return;
        }
        nothing_left();
        if (mode != 0 && mode != 3) return;
        WaitMessage();
        if (mode == 3) return;
    }
}

void register_message_loop_hook(void (*function)()) {
    auto* entry = static_cast<hook_entry*>(std::malloc(sizeof(hook_entry)));
    if (entry == nullptr) return;
    *entry = {pump().loop_hooks, function};
    pump().loop_hooks = entry;
}

void register_modeless_dialog(HWND dialog) {
    for (const dialog_entry* entry = pump().dialogs; entry != nullptr; entry = entry->next)
        if (entry->dialog == dialog) return;
    auto* entry = static_cast<dialog_entry*>(std::malloc(sizeof(dialog_entry)));
    if (entry == nullptr) return;
    *entry = {pump().dialogs, dialog};
    pump().dialogs = entry;
}

void unregister_modeless_dialog(HWND dialog) {
    for (dialog_entry** link = &pump().dialogs; *link != nullptr; link = &(*link)->next) {
        if ((*link)->dialog != dialog) continue;
        dialog_entry* gone = *link;
        *link = gone->next;
        std::free(gone);
        return;
    }
}

}  // namespace tarn::textwin
