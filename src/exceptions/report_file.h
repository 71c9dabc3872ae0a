// The report's files: as text, and as JSON for programs. Written with system calls from storage of
// its own, for the heap may be what broke.
#pragma once

#include <string_view>

#include "exceptions/exceptions.h"
#include "traceback/registers.h"

namespace tarn::exceptions {

struct ReportFacts {
    std::string_view kind;   // "failure", "exception" or "signal"
    std::string_view cause;  // in a few words
    std::string_view text;   // as the console has it, without callers
    std::int64_t number;     // of the failure, the exception or the signal
    const traceback::Registers& registers;
    const Context* context = nullptr;  // of an exception: all registers
};

// Writes them where TARN_REPORT names a file: the name may hold `%p` for the process's number. The
// callers are those that were collected last. False where nothing was asked for.
bool write_report_files(const ReportFacts& facts);

}  // namespace tarn::exceptions
