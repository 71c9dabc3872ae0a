// What a script's names mean: windows by title, controls by label, code name or number.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/controls.h"
#include "platform/script/parser.h"

namespace tarn::platform {

struct ScriptControl {
    HWND hwnd{};
    ControlFacts facts;
    std::int32_t number = 0;  // in the order of creation; 0: nothing to act upon
    std::int32_t depth = 1;   // below the window
};
// All controls of a window in the order of creation, with the panes that they lie in.
std::vector<ScriptControl> controls_of(HWND top);

// A label as a user reads it: no mnemonic marks, no colon at the end.
std::string plain_label(std::string_view text);
// What a control is called: its own text, the label beside it, or its code name.
std::string name_of(const std::vector<ScriptControl>& all, const ScriptControl& control);
std::string code_name_of(HWND control);

// Null, and `why_not` says what was there instead.
const ScriptControl* find_control(HWND top, const std::vector<ScriptControl>& all,
                                  const Target& target, std::string& why_not);

// A title with `*` for any run of characters.
bool title_matches(std::string_view title, std::string_view pattern);
// Visible, and no menu or tip; 0 for none. The newest counts.
HWND find_window(std::string_view title);
// The one that a user would look at: active, else the newest that isn't disabled.
HWND current_window();
// Menus, drop-downs and tips that are open over a window.
std::vector<HWND> popups_over(HWND top);
std::string list_of_windows();
// A window of its own that a user would call so, not a drop-down.
bool is_main_window(HWND top);

// Where the picture of a window begins on the screen: what points of the display's events count
// from.
POINT surface_origin(HWND top);

// "Area" with its quotes; what would break a line is written as in a script.
std::string quoted(std::string_view text);

}  // namespace tarn::platform
