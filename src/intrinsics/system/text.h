// Texts between Fortran and the system.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::intrinsics {

// Into a CHARACTER variable: padded with blanks, or cut.
void give_text(std::string_view text, char* variable, std::intptr_t length);

// An argument that compiled code leaves out is a null pointer or the mark of an absent one.
template <typename Type>
bool is_present(const Type* argument) {
    constexpr std::uintptr_t absent = 0xF0F0F0F0F0F0F0F0U;
    return argument != nullptr && reinterpret_cast<std::uintptr_t>(argument) != absent;
}
template <typename Type>
void give(Type* variable, Type value) {
    if (is_present(variable)) *variable = value;
}

}  // namespace tarn::intrinsics
