// The console: the process's three standard descriptors, as the library's own messages use them.
//
// Fortran output to the console goes through units, which have buffers of their own; before one of
// these routines writes, it asks the hook to send those out, so that a message never overtakes
// what the program wrote before it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::platform {

struct ConsoleHooks {
    void (*flush_output)() = nullptr;                          // what waits for the standard output
    std::ptrdiff_t (*read_line)(std::string& line) = nullptr;  // a line of the standard input
};
ConsoleHooks& console_hooks();

// Each writes the whole text in one system call where the system takes it in one; an interrupted
// or short write goes on. False: the system refused it.
bool write_descriptor(int descriptor, std::string_view text);
bool write_output(std::string_view text);        // standard output
bool write_error_output(std::string_view text);  // standard error

// Reads a line of the standard input without its line end; false at the end of the input. Takes
// no byte beyond the line's end, so that the program's own reading goes on behind it.
bool read_input_line(std::string& line);

}  // namespace tarn::platform
