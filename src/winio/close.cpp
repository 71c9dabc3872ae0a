// How windows end: the request, the destruction, and what is left open at the end of the program.
#include <ctime>

#include "platform/display/display.h"
#include "platform/script/script.h"
#include "textwin/textwin.h"
#include "winio/builder.h"
#include "winio/callbacks.h"
#include "winio/menus.h"
#include "winio/report.h"
#include "winio/text_channel.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

window_control* control_with_focus(fancy_window* window) {
    HWND focus = GetFocus();
    if (!focus) return nullptr;
    for (window_control* control = window->first_control; control; control = control->next)
        if (control->hwnd == focus) return control;
    return nullptr;
}

// A box that checks when it loses the focus has its say first. False: it holds on to the focus.
bool focus_let_go(fancy_window* window) {
    window_control* control = control_with_focus(window);
    if (!control || !control->flags.focus_loss_check) return true;
    window_watch watch(window);
    HWND hwnd = control->hwnd;
    SetFocus(HWND{});
    if (watch.gone()) return false;
    return GetFocus() != hwnd;
}

// A page hands the close to the window that shows it.
bool handed_to_host(fancy_window* window) {
    if (!window->flags.sheet || !window->sheet_host) return false;
    fancy_window* host = window->sheet_host->window;
    if (!host || host->flags.closing) return false;
    if (host->result == 0) host->result = window->result;
    PostMessageA(host->hwnd, WM_CLOSE, 0, 0);
    return true;
}

// The %cc call-back. False: the window stays.
bool close_agreed(fancy_window* window) {
    window_watch watch(window);
    window->flags.closing = true;
    if (!window->close_callback || !IsWindowEnabled(window->hwnd)) return true;
    window->flags.close_asked = true;
    std::int32_t result =
        call_function(window->close_callback, "WINDOW_CLOSE", window->hwnd, false, true);
    if (watch.gone()) return false;
    window->flags.close_asked = false;
    if (result == 0) return true;
    window->flags.closing = false;
    return false;
}

// Gives the others their input back; the first of them is where the focus goes when nothing
// better is known.
HWND enable_the_others(fancy_window* window) {
    HWND first{};
    for (fancy_window* other = records().windows; other; other = other->next) {
        if (other->disabled_by != window) continue;
        other->disabled_by = nullptr;
        if (!other->flags.open || !IsWindow(other->hwnd)) continue;
        EnableWindow(other->hwnd, true);
        if (!first) first = other->hwnd;
    }
    return first;
}

bool focus_within(HWND hwnd) {
    HWND focus = GetFocus();
    return focus && (focus == hwnd || IsChild(hwnd, focus));
}

void remove_from_frame(fancy_window* window) {
    fancy_window* host = window->frame_window;
    if (!host || !window_listed(host)) return;
    for (fancy_window** link = &host->first_child; *link; link = &(*link)->next_sibling)
        if (*link == window) {
            *link = window->next_sibling;
            break;
        }
    if (!host->first_child) return change_topmost_mdi_child(host);
    if (host->top_child == window) host->top_child = nullptr;
    if (host->hwnd) PostMessageA(host->hwnd, msg_topmost_mdi, 0, 0);
}

void forget_controls(fancy_window* window) {
    for (window_control* control = window->first_control; control; control = control->next) {
        control->hwnd = HWND{};
        control->alert = HWND{};
        if (control->scrolls) {
            control->scrolls->horizontal.hwnd = HWND{};
            control->scrolls->vertical.hwnd = HWND{};
        }
    }
}

// A window whose own call-back ends the program is not waited for: it was asked to go.
bool any_window_open() {
    for (const fancy_window* window = records().windows; window; window = window->next)
        if (window->flags.open && !window->flags.child && !window->flags.mdi_child &&
            !window->flags.busy)
            return true;
    return false;
}

void end_all(bool destroy) {
    // One pass of handles, since each close may destroy any record.
    constexpr std::int32_t most = 256;
    HWND handles[most];
    std::int32_t count = 0;
    for (const fancy_window* window = records().windows; window && count < most;
         window = window->next)
        if (window->flags.open && !window->flags.child && !window->flags.mdi_child)
            handles[count++] = window->hwnd;
    for (std::int32_t i = 0; i < count; ++i)
        if (!IsWindow(handles[i]))
            continue;
        else if (destroy)
            DestroyWindow(handles[i]);
        else
            SendMessageA(handles[i], WM_CLOSE, 0, 0);
}

// Windows that a program leaves open stay until the user closes them. Where nobody can, they
// close as by a user as soon as everything that was waiting has been done.
void wait_for_open_windows() {
    const textwin::unmasked_yield all_messages;
    while (any_window_open() && !textwin::desktop_lost()) {
        bool unattended = display().headless() && !script_active();
        if (unattended && queue_is_idle()) {
            end_all(false);
            textwin::yield_program_control(1);
            return;
        }
        if (!unattended) WaitMessage();
        textwin::yield_program_control(1);
    }
}

void report_unfinished() {
    if (records().check_mode) return;
    if (builder().continuing != 0) quillpan_error("Incomplete formatted window at end of program");
    for (const fancy_window* window = records().windows; window; window = window->next)
        if (window->hwnd == HWND{-1}) {
            quillpan_error("Unused child window at end of program");
            return;
        }
}

}  // namespace

bool close_window(fancy_window* window) {
    if (records().at_exit || window->flags.close_asked) return false;
    window_watch watch(window);
    HWND hwnd = window->hwnd;
    if (!focus_let_go(window)) return false;
    if (handed_to_host(window)) return false;
    if (!window->flags.closing && !close_agreed(window)) return false;
    hide_tool_help();
    HWND target = IsWindow(window->focus_before) ? window->focus_before : HWND{};
    if (window->disable_window) EnableWindow(to_hwnd(window->disable_window), true);
    HWND first = enable_the_others(window);
    if (watch.gone()) return false;
    if (!target) target = first;
    if (HWND next = window->flags.mdi_child ? mdi_child_below(window) : HWND{}) target = next;
    if (target && focus_within(hwnd)) SetFocus(target);
    return !watch.gone();
}

void window_destroyed(fancy_window* window) {
    if (!window->flags.open) return;
    HWND hwnd = window->hwnd;
    forget_tool_help(window);
    close_text_channel(hwnd);
    // At the end of the program the variables may be gone.
    if (!records().at_exit) save_settings(window);
    window->open_combo = nullptr;
    window->flags.ready = false;
    if (window->drop_callback) DragAcceptFiles(hwnd, false);
    KillTimer(hwnd, 45);
    for (timer_entry* timer = window->timers; timer; timer = timer->next)
        KillTimer(hwnd, timer->id);
    enable_the_others(window);
    window->flags.open = false;
    destroy_all_menus(window);
    if (window->class_rec) window->class_rec->remove = true;
    if (window->flags.mdi_child) remove_from_frame(window);
    // The platform destroys the controls; what they were is forgotten, so that nothing speaks to
    // a handle that another window may get.
    forget_controls(window);
    window->hwnd = HWND{};
    if (window->control_var) *window->control_var = window->result;
    if (window->flags.leave) cleanup_winio(window);
}

void monitor_pending_close() {
    for (fancy_window* window = records().windows; window; window = window->next) {
        if (!window->flags.open || !window->control_var || *window->control_var != -2) continue;
        timespec pause{0, 300'000'000};
        nanosleep(&pause, nullptr);
        *window->control_var = 0;
        if (window->flags.busy)
            window->flags.close_pending = true;
        else
            PostMessageA(window->hwnd, WM_CLOSE, 0, 0);
    }
}

void close_all_windows() {
    end_all(true);
}

void exit_cleanup() {
    if (procedures().exit_cleaned || !records().used) return;
    procedures().exit_cleaned = true;
    report_unfinished();
    wait_for_open_windows();
    records().at_exit = true;  // closing is refused from here: what is left is destroyed
    end_all(true);
}

}  // namespace tarn::winio
