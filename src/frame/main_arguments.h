// The library's own splitting of a command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::frame {

// Blanks and tabs separate arguments; a `/` begins a new one wherever it stands. Inside "..." and
// '...' neither counts, and the quotes stay.
std::vector<std::string> split_command_line(std::string_view line);

// The process's command line as one text; argument 0 always stands in double quotes, since the
// slashes of a path would split it.
std::string join_command_line(int count, char* const* values);

// SearchPath: the full path of a program; empty when there is none.
std::string search_program(const std::string& name);

}  // namespace tarn::frame
