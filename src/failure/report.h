// The report of a failure: its words, its way out, and the end of the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::failure {

// Free text comes under these two numbers, from the C side and from Fortran.
inline constexpr int free_text = 359;
inline constexpr int fortran_free_text = 381;
inline constexpr std::size_t longest_free_text = 253;

struct State {
    int last_failure = 0;  // 0: none pending
    void (*user_handler)(int number) = nullptr;
    void (*managed_handler)(int number, const char* text) = nullptr;
    char error_string[80] = {};  // what stands for %1
    std::size_t error_string_length = 0;
    std::intptr_t argument_base = 0;       // of the call being checked, as the check stored it
    bool without_callers = false;          // compiled to leave them out of what is printed
    std::string* debugger_text = nullptr;  // collected for a Fortran debugger
};
State& state();

// Whether who called is a part of what is printed. A report's files have it in any case.
bool shows_callers();

// The words of a report, with a line feed at their end. `free` counts for the two numbers of free
// text only; `routine` (may be null) is a routine that was called and isn't there.
std::string report_text(int number, std::string_view free, const char* routine,
                        const void* address);

// Tells the debugger or the user, and ends the process.
[[noreturn]] void report(int number, std::string_view text);

// NT_FAIL_AT: managed handler, words, report.
[[noreturn]] void fail_at(int number, std::string_view free, const char* routine,
                          const void* address);
// C_FAIL#: the user's handler first.
[[noreturn]] void c_fail(int number);
// ORV2_ERROR#: free text, without trailing blanks and cut to what a report holds.
[[noreturn]] void fortran_error(std::string_view text);

}  // namespace tarn::failure
