// Plays an event script, saves pictures and writes the accessibility tree: how tests and batch
// jobs drive windows with nobody watching.
#pragma once

#include <string>
#include <string_view>

#include "platform/base/types.h"

namespace tarn::platform {

// Reads `TARN_EVENTS`, `TARN_SCREENSHOT`, `TARN_TREE` once and hooks itself to the queue. Called
// when the first window is made.
void start_script();
// A script is being played and has lines left.
bool script_active();
// The rooms above know more names for a control than its label ("RD001", a bound unit ...).
extern HWND (*find_named_control)(HWND top_level, std::string_view name);
// Its code name, empty for none.
extern std::string (*control_code_name)(HWND control);

inline constexpr int status_script_failed = 71;
inline constexpr int status_nobody_to_answer = 70;

}  // namespace tarn::platform
