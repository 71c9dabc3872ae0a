// The numbered catalogue in its two forms.
#pragma once

#include <string_view>

namespace tarn::failure {

// The form that Fortran-callable entries use: the same numbering, some rows worded otherwise, and
// nothing above 457. A number of 0 or below has the text of number 0.
std::string_view fortran_text(int number);

inline constexpr int last_fortran_number = 457;

}  // namespace tarn::failure
