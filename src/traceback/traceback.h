// The text that a report ends with: where the program stood, and who called.
#pragma once

#include <cstdint>
#include <string_view>

#include "traceback/callers.h"

namespace tarn::traceback {

// The last chain that was collected; one for the process, since only one thread reports at a time.
Callers& callers();

// The statement that the next failure's call comes from, where its caller told. A compiler makes
// one call of the ends of two statements, and the line of that is one of the two.
void set_statement(std::string_view file, std::uint32_t line);

// Collects the chain from a place and puts it into lines, in storage of its own that the next call
// reuses. Empty where there is nothing to tell.
std::string_view console_text(const Registers& registers, Place place);

}  // namespace tarn::traceback
