// Break keys of the console as control events.
#pragma once

namespace tarn::platform {

inline constexpr int ctrl_c_event = 0;      // SIGINT
inline constexpr int ctrl_break_event = 1;  // SIGQUIT

// SetConsoleCtrlHandler: the handler runs in a signal handler. When it returns 0, the system's
// default action ends the process. A break key that the program's parent had set to be ignored,
// or that somebody handles already, stays theirs.
void set_control_handler(int (*handler)(int event));

}  // namespace tarn::platform
