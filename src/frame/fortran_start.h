// The start of the Fortran library.
#pragma once

#include <cstdint>

#include "frame/records.h"

namespace tarn::frame {

// The part that every form of start shares. `full`: the start of a Fortran main program, which
// opens the units of ORVALPRECON.
void start_fortran(bool full, const FortranArguments* arguments);

// Refuses a program that needs a newer library than this.
void require_fortran_interface(std::int32_t version);

void set_arguments(int count, char** values);

}  // namespace tarn::frame
