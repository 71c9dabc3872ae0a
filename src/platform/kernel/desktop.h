// What the user's desktop does for a program.
#pragma once

namespace tarn::platform {

// Opens a file or a link with the program that the user has for it. False: there is no opener, or
// no name.
bool open_on_desktop(const char* name);

}  // namespace tarn::platform
