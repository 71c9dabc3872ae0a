// What the user says about displays in the environment. A value that makes no sense is named once
// on standard error and its default stays.
#pragma once

#include <string>
#include <vector>

#include "platform/base/types.h"

namespace tarn::platform {

enum class DisplayChoice { automatic, memory, x11 };

DisplayChoice wanted_display();  // TARN_DISPLAY
double wanted_scale();           // TARN_SCALE, 0.5 to 4; 0 when it isn't set, 1 when it is wrong
// TARN_SCREEN=WxH for the memory display, 1280 x 1024; several with commas between are monitors
// from left to right, or where a +X+Y behind the size says. The first is the primary one, at 0,0.
std::vector<RECT> wanted_monitors();

// The folder that the library loads things from: TARN_RESOURCES, or `tarnlibc` beside the library.
// Without a slash at its end.
std::string resource_folder();

}  // namespace tarn::platform
