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
#include <vector>

namespace tarn::platform {

// Path of the file; empty when the user has no home.
std::string config_path();

// The value of `name` in the section `key` of such a text.
std::optional<std::string> find_config_value(std::string_view text, std::string_view key,
                                             std::string_view name);

// The value from the user's file.
std::optional<std::string> config_value(std::string_view key, std::string_view name);

struct ConfigValue {
    std::string key, name, value;  // no line ends
};
// Such a text with these values in place of those of the same key and name.
std::string with_config_values(std::string_view text, const std::vector<ConfigValue>& values);
// Writes them into the user's file, which is replaced as a whole. False: it can't be written, and
// stays as it is.
bool store_config_values(const std::vector<ConfigValue>& values);

}  // namespace tarn::platform
