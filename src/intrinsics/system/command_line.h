// The command line and the environment.
//
// Arguments are the kernel's: quotation marks within them are the user's own characters, and there
// is no limit on their length.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::intrinsics {

std::int32_t argument_count();                                    // without the program's name
bool find_argument(std::int64_t number, std::string_view& text);  // 0: the program's name
// The arguments one after the other: false after the last.
bool next_argument(std::string_view& text);
void restart_arguments();
// The whole command line. Arguments with blanks stand in quotation marks.
std::string command_line();

// A text that is a number and nothing else; otherwise the value stays as it was.
bool whole_number(std::string_view text, std::int32_t& value);

// False: there is no such variable. An empty one is there.
bool find_variable(std::string_view name, std::string_view& value);
// "NAME=value"; "NAME=" takes it away. An errno value.
int put_variable(std::string_view definition);

}  // namespace tarn::intrinsics
