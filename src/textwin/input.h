// Reading keys and lines from a text window.
#pragma once

#include <cstdint>

#include "textwin/textwin.h"

namespace tarn::textwin {

// The next character; 0 for a menu command or a close. A window that isn't there ends the program.
std::int32_t win_getchar(HWND hwnd);
// A line into 256 bytes, without its end. An event ends it with the escape and "menu %d".
void win_getline(HWND hwnd, char* buffer);

}  // namespace tarn::textwin
