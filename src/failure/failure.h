// Run-time failures: the numbered catalogue and the report.
//
// Any part of the library raises a failure by its catalogue number. A failure doesn't return and
// doesn't throw: it writes out what the program's files still hold, reports, and leaves with
// status 1; no exit routine and no destructor runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn::traceback {
struct Registers;
}

namespace tarn::failure {

inline constexpr int catalogue_size = 498;

// The sentence of a number, as it stands in the catalogue; number 0's for one outside it.
const char* text(int number);
// The same as a report shows it: cut before its first `%`.
std::string_view plain_text(int number);

// Raises failure `number`: "*** Error %4d, %s\n" and the end.
[[noreturn]] void fail(int number);
// The same with more lines behind the sentence: where it happened, on which unit and file.
// Each line ends in a line feed.
[[noreturn]] void fail(int number, std::string_view more_lines);
// The same with a sentence that says more than the catalogue's: "*** Error %4d, %s\n" with it.
[[noreturn]] void fail_sentence(int number, std::string_view sentence, std::string_view more_lines);
// Free text in place of a numbered sentence.
[[noreturn]] void fail_text(std::string_view text);
// "*** Warning: %s\n" on standard error; the program goes on.
void warn(std::string_view text);

// The statement of the source that fails next. Both stay where they are.
void set_statement(const char* file, int line);

// What the rooms above give this one at their start. Null: not there yet.
struct Hooks {
    void (*flush_everything)() = nullptr;         // every dirty unit and handle buffer
    std::int32_t (*current_io_unit)() = nullptr;  // unit of the statement in progress, or 0
    // Shows a report, and who called, in a window; false: there is nobody to see it.
    bool (*report_dialog)(std::string_view text, std::string_view callers) = nullptr;
    // Writes the report's file, where the user asked for one.
    void (*write_report)(int number, std::string_view text,
                         const traceback::Registers& registers) = nullptr;
};
Hooks& hooks();

}  // namespace tarn::failure
