// What the windows of a report show: texts that are put together before the first of them opens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "exceptions/exceptions.h"
#include "platform/base/types.h"

namespace tarn::diagnostics {

struct Report {
    std::string headline;  // the failure, in few words
    std::string detail;    // what more is said of it: addresses; file, line and unit
    std::string callers;
    // Of a fault; a failure of the catalogue has no state of the machine to look at.
    bool has_machine = false;
    exceptions::Context context{};
    std::uintptr_t memory = 0;  // what the instruction reached for, or the instruction itself
    std::string registers, instructions, floating;
};

// Lines are ended by LF. A failure of the catalogue has no title; the first line of its text is it.
Report make_report(std::string_view title, std::string_view text, std::string_view callers);
// A fault's state and where it stood.
void add_machine(Report& report, const exceptions::Context& context, std::uintptr_t memory);
// The instructions from `from` up to the fault, and those behind it.
std::string instructions_from(const Report& report, std::uint64_t from);

// The file that "Save As..." writes, and the text that a report by mail holds.
std::string saved_text(const Report& report);
// What goes to the clipboard from the exception window.
std::string copied_text(const Report& report);
std::string whole_text(const Report& report);

// 128 lines of 16 bytes, or the line that says that they can't be read.
std::string dump_text(std::uintptr_t address);

bool write_file(const std::string& path, std::string_view text);

}  // namespace tarn::diagnostics
