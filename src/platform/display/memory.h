// The display that needs nothing: windows in memory, and a manager that grants every request.
#pragma once

#include <vector>

#include "platform/display/display.h"

namespace tarn::platform {

// `scale` and `monitors` (logical, the first at 0,0) as the user wants them. Lives to the end of
// the process.
Display* make_memory_display(double scale, std::vector<RECT> monitors);

}  // namespace tarn::platform
