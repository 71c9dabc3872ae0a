// Texts of the system's own error codes, for Fortran programs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::failure {

std::string system_text(int code);  // strerror

// Into a CHARACTER argument, cut or padded with blanks.
void copy_padded(std::string_view from, char* to, std::ptrdiff_t length);

}  // namespace tarn::failure
