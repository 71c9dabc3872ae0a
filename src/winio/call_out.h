// The one place where the library calls a program's function from a window.
#pragma once

#include "winio/callbacks.h"

namespace tarn::winio {

// What a call changes and its end puts back, whichever way it ends.
struct call_frame {
    fancy_window* window;  // whose call-back it is; may be null
    std::int32_t second_number;
    bool set_busy;  // the window was open: its busy bit is ours to restore
    bool was_busy;
    fancy_window* outer_window;  // that was current
    std::int32_t outer_number;
    // Of the context and of the call that this one runs in:
    const char* reason;
    std::int32_t window_handle, control_handle;
    window_control* control;
    fancy_window* context_window;
    word user_data;
    thunk* current_thunk;
    HWND call_handle;
    bool call_from_user;
};

// `control` is null for a call-back of a window.
call_frame enter_call(call_back function, window_control* control, const char* reason, HWND handle,
                      bool from_user);
void leave_call(const call_frame& frame, bool unwinding);
// Is the window of the call still the same and open?
bool still_open(const call_frame& frame);

// Calls `action`. Should an exception of the program unwind through, the frame is left all the
// same, so that the library goes on as if the call-back had returned.
std::int32_t call_out(call_back action, const call_frame& frame);

}  // namespace tarn::winio
