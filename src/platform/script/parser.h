// A script as a list of lines, read whole before the first one runs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/types.h"
#include "platform/script/keys.h"

namespace tarn::platform {

enum class Command : std::uint8_t {
    click,
    double_click,
    right_click,
    middle_click,
    hold,
    type,
    key,
    press,
    release,
    drag,
    wheel,
    hover,
    drop,
    wait_idle,
    wait,
    focus,
    expect_value,
    expect_text,
    expect_checked,
    expect_not_checked,
    expect_enabled,
    expect_disabled,
    expect_focused,
    expect_window,
    expect_no_window,
    window,
    screenshot,
    tree,
    close,
    resize,
    move,
    menu,
};

// What a line acts on: a control by its name or number, or a point of the window.
struct Target {
    enum class Kind : std::uint8_t { none, name, number, point } kind = Kind::none;
    std::string name;
    std::int32_t number = 0;
    bool has_offset = false;  // else the middle of the control
    POINT offset;             // from the control's corner, or the window's for a point
};

struct ScriptLine {
    std::int32_t number = 0;  // in the file, from 1
    std::string source;
    Command command = Command::wait_idle;
    Target target, other;
    std::vector<std::string> texts;
    bool has_text = false;  // of an optional one
    Key key;
    std::int32_t first = 0, second = 0;  // numbers; milliseconds; times
};

struct ScriptMistake {
    std::int32_t line = 0;
    std::string source;
    std::string what;  // what is wrong, as the rest of a sentence
};

// False: the first line that can't be understood is in `mistake`.
bool parse_script(std::string_view text, std::vector<ScriptLine>& lines, ScriptMistake& mistake);

}  // namespace tarn::platform
