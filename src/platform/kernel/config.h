// The configuration store: what programs keep between their runs, as a text file of the user.
//
// One section for each key, one line for each value:
//     [Software\Tarnick\Common]
//     TARNICK_CONSOLE_ENABLED=1
// Lines that begin with `#` or `;` are comments. Keys and names are compared without regard to
// case. The file is tarnlibc/config in the folder that XDG_CONFIG_HOME names, else ~/.config.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn::platform {

// Path of the file; empty when the user has no home.
std::string config_path();

// The value of `name` in the section `key` of such a text.
std::optional<std::string> find_config_value(std::string_view text, std::string_view key,
                                             std::string_view name);

// The value from the user's file.
std::optional<std::string> config_value(std::string_view key, std::string_view name);

}  // namespace tarn::platform
