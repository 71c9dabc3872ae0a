// What the user's desktop does for a program.
#pragma once

#include <initializer_list>

namespace tarn::platform {

// Opens a file or a link with the program that the user has for it. False: there is no opener, or
// no name.
bool open_on_desktop(const char* name);

// Starts the first of the programs that there is with one argument, and doesn't wait for it. False:
// there is none of them.
bool start_apart(std::initializer_list<const char*> programs, const char* what);

}  // namespace tarn::platform
