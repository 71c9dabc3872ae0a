// Running call-backs: the context around them, what their result means, and calls put off until
// the queue is at rest.
#include "winio/callbacks.h"

#include <cstring>

#include "platform/user/user.h"
#include "textwin/textwin.h"
#include "winio/call_out.h"
#include "winio/options.h"
#include "winio/procedures.h"
#include "winio/winproc.h"

namespace tarn::winio {
namespace {

constexpr char thunk_magic[4] = {'T', 'H', 'N', 'K'};

bool same_window(const fancy_window* window, std::int32_t second_number) {
    for (const fancy_window* each = records().windows; each; each = each->next)
        if (each == window) return each->second_number == second_number;
    return false;
}

// Routines that an exception passed through can't undo what they had set for their own time.
void forget_interrupted_work() {
    callback_state& state = callbacks();
    state.no_update_control = nullptr;
    state.update_depth = 0;
    state.control_update = state.adjusting_grey = state.clipboard_refresh = false;
    textwin::yield_mask() = 0;
}

void copy_reason(const char* reason) {
    callback_state& state = callbacks();
    std::strncpy(state.reason, reason ? reason : "", sizeof state.reason - 1);
}

// The result and the window as the caller finds them: what the call-back asked for while it ran
// happens here.
std::int32_t finish_call(const call_frame& frame, std::int32_t result, bool from_user) {
    callback_state& state = callbacks();
    state.window_gone = !still_open(frame);
    if (state.window_gone) return result;
    fancy_window* window = frame.window;
    if (!window->tool_props || !window->tool_props->no_callback_hide) hide_tool_help();
    if (result < 0) {
        window->result = result == INT32_MIN ? INT32_MAX : -result;
        result = 0;
    }
    if (from_user) window->flags.permit = false;
    if (textwin::pump_hooks().graphics_update) textwin::pump_hooks().graphics_update();
    adjust_grey_controls(3);
    state.window_gone = !still_open(frame);
    if (state.window_gone || window->flags.busy || !window->flags.close_pending) return result;
    window->flags.close_pending = false;
    window_close(window);
    state.window_gone = true;
    return 0;
}

std::int32_t run(call_back function, window_control* control, const char* reason, HWND handle,
                 bool raw, bool from_user) {
    callback_state& state = callbacks();
    state.last_callback_result = 2;
    if (!function) return 2;
    const call_frame frame = enter_call(function, control, reason, handle, from_user);
    std::int32_t result = call_out(action_of(function), frame);
    if (!raw) {
        // The window of the call is current while its result is worked on.
        fancy_window* const outer = current_window();
        const std::int32_t outer_number = outer ? outer->second_number : 0;
        if (still_open(frame)) current_window() = frame.window;
        result = finish_call(frame, result, from_user);
        if (!outer || same_window(outer, outer_number)) current_window() = outer;
    }
    state.last_callback_result = result;
    return result;
}

}  // namespace

callback_state& callbacks() {
    static constinit callback_state state{};
    return state;
}

bool is_thunk(call_back function) {
    return function && std::memcmp(reinterpret_cast<const void*>(function), thunk_magic,
                                   sizeof thunk_magic) == 0;
}

call_back action_of(call_back function) {
    return is_thunk(function) ? reinterpret_cast<thunk*>(function)->action : function;
}

bool still_open(const call_frame& frame) {
    return frame.window && same_window(frame.window, frame.second_number) &&
           frame.window->flags.open;
}

call_frame enter_call(call_back function, window_control* control, const char* reason, HWND handle,
                      bool from_user) {
    callback_state& state = callbacks();
    parameter_set& context = state.context;
    fancy_window* outer = current_window();
    fancy_window* window =
        control && fancy_window_exists(control->window) ? control->window : outer;
    const call_frame frame{window,
                           window ? window->second_number : 0,
                           window && window->flags.open,
                           window && window->flags.busy,
                           outer,
                           outer ? outer->second_number : 0,
                           context.reason,
                           context.window_handle,
                           context.control_handle,
                           context.control,
                           context.window,
                           context.user_data,
                           state.current_thunk,
                           state.call_handle,
                           state.call_from_user};
    current_window() = window;
    if (frame.set_busy) {
        window->flags.busy = true;
        if (from_user) window->flags.permit = false;
    }
    state.current_thunk = is_thunk(function) ? reinterpret_cast<thunk*>(function) : nullptr;
    state.call_handle = handle;
    state.call_from_user = from_user;
    context.reason = reason;
    context.window_handle = window ? static_cast<std::int32_t>(window->hwnd) : 0;
    context.control_handle = static_cast<std::int32_t>(handle);
    if (control) {
        context.control = control;
        context.window = window;
        context.user_data = control->user_data;
    }
    copy_reason(reason);
    ++state.callback_depth;
    return frame;
}

// The reason and the handles of the last call stay to be asked for; a call within a call gives
// them back to the outer one.
void leave_call(const call_frame& frame, bool unwinding) {
    callback_state& state = callbacks();
    parameter_set& context = state.context;
    --state.callback_depth;
    state.current_thunk = frame.current_thunk;
    state.call_handle = frame.call_handle;
    state.call_from_user = frame.call_from_user;
    context.control = frame.control;
    context.window = frame.context_window;
    context.user_data = frame.user_data;
    copy_reason(nullptr);
    if (state.callback_depth > 0) {
        context.reason = frame.reason;
        context.window_handle = frame.window_handle;
        context.control_handle = frame.control_handle;
        copy_reason(frame.reason);
    }
    if (frame.set_busy && same_window(frame.window, frame.second_number))
        frame.window->flags.busy = frame.was_busy;
    current_window() =
        same_window(frame.outer_window, frame.outer_number) ? frame.outer_window : nullptr;
    if (unwinding) forget_interrupted_work();
}

std::int32_t call_function(call_back function, const char* reason, HWND handle, bool raw,
                           bool from_user) {
    return run(function, nullptr, reason, handle, raw, from_user);
}

std::int32_t call_function(window_control* control, const char* reason, bool from_user) {
    return run(control->callback, control, reason, control->hwnd, false, from_user);
}

void call_function_with_standard_action(window_control* control, const char* reason) {
    const HWND handle = control->window->hwnd;
    const std::int32_t result = call_function(control, reason, false);
    if (callbacks().window_gone) return;
    if (result == 0)
        platform::PostMessageA(handle, platform::WM_CLOSE, 0, 0);
    else if (result == 1)
        initialise_controls(handle, false);
}

void act_on_result(HWND handle, std::int32_t result) {
    if (callbacks().window_gone) return;
    if (result == 1) initialise_controls(handle, false);
    if (result != 0) return;
    if (fancy_window* window = fancy_window_from_handle(handle)) window_close(window);
}

// ---- Calls put off -----------------------------------------------------------------------------
deferred_call* defer_call_back(window_control* control, const char* reason) {
    callback_state& state = callbacks();
    deferred_call* call = state.free_records;
    if (call)
        state.free_records = call->next;
    else
        call = new_record<deferred_call>();
    *call = {};
    call->reason = reason;
    call->context = state.context;
    call->window = control ? control->window : current_window();
    call->window_second_number = call->window ? call->window->second_number : 0;
    if (control) {
        call->control = control;
        call->function = control->callback;
        call->handle = control->hwnd;
        call->user_data = control->user_data;
    } else if (call->window) {
        call->handle = call->window->hwnd;
        call->user_data = call->window->user_data;
    }
    (state.last_pending ? state.last_pending->next : state.first_pending) = call;
    state.last_pending = call;
    if (call->window && call->window->hwnd > 0)
        platform::PostMessageA(call->window->hwnd, msg_pending_calls, 0, 0);
    return call;
}

namespace {

deferred_call take_first_pending() {
    callback_state& state = callbacks();
    deferred_call* first = state.first_pending;
    state.first_pending = first->next;
    if (!state.first_pending) state.last_pending = nullptr;
    const deferred_call call = *first;
    first->next = state.free_records;
    state.free_records = first;
    return call;
}

// What the deferred call's result asks for, once the context of before is back.
void act_on_deferred(const deferred_call& call, std::int32_t result) {
    if (callbacks().window_gone || !same_window(call.window, call.window_second_number)) return;
    const HWND hwnd = call.window->hwnd;
    if (result == 0) platform::PostMessageA(hwnd, platform::WM_CLOSE, 0, 0);
    if (result != 1) return;
    if (call.control)
        initialise_control(hwnd, call.control, false);
    else
        initialise_controls(hwnd, false);
}

}  // namespace

void perform_pending_calls() {
    callback_state& state = callbacks();
    while (state.first_pending) {
        const parameter_set outer_context = state.context;
        fancy_window* const outer = current_window();
        const std::int32_t outer_number = outer ? outer->second_number : 0;
        const deferred_call call = take_first_pending();
        if (!same_window(call.window, call.window_second_number) || !call.window->flags.open ||
            call.window->flags.closing)
            continue;
        state.context = call.context;
        state.context.control = call.control;
        state.context.window = call.window;
        state.context.user_data = call.user_data;
        current_window() = call.window;
        const std::int32_t result =
            call_function(call.function, call.reason, call.handle, false, false);
        state.context = outer_context;
        const bool outer_gone = outer && !same_window(outer, outer_number);
        if (!outer_gone) current_window() = outer;
        act_on_deferred(call, result);
        if (outer_gone) return;
    }
}

// ---- Closing -----------------------------------------------------------------------------------
void window_close(fancy_window* window) {
    if (window->flags.busy) {
        window->flags.close_pending = true;
        return;
    }
    if (window->close_callback || window->flags.close_is_sent)
        platform::SendMessageA(window->hwnd, platform::WM_CLOSE, 0, 0);
    else
        platform::PostMessageA(window->hwnd, platform::WM_CLOSE, 0, 0);
}

void safe_window_close(fancy_window* window) {
    if (window->flags.busy)
        window->flags.close_pending = true;
    else
        platform::SendMessageA(window->hwnd, platform::WM_CLOSE, 0, 0);
}

void get_action_coordinates(window_control* control) {
    RECT at;
    if (!control->hwnd || !platform::GetWindowRect(control->hwnd, at)) return;
    callbacks().context.action_x = at.left;
    callbacks().context.action_y = at.top;
}

}  // namespace tarn::winio
