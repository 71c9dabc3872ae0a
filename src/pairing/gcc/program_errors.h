// Failures that gfortran's code or its run-time finds itself, in the catalogue's words.
#pragma once

#include <string_view>

namespace tarn::gcc {

// The catalogue number for the text of such a failure; 381, "Fortran run-time error", for a text
// that fits no sentence.
int catalogue_number(std::string_view text);

}  // namespace tarn::gcc
