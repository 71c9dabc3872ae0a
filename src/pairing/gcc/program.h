// STOP, PAUSE and the other ends of a gfortran program.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::gcc {

// The line that names the floating-point exceptions which have happened and which the program's
// summary asks for; empty when there are none. Both sets in the bits of fpe_summary.
std::string exception_note(std::int32_t happened, std::int32_t summary);

}  // namespace tarn::gcc
