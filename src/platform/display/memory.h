// The display that needs nothing: windows in memory, and a manager that grants every request.
#pragma once

#include "platform/display/display.h"

namespace tarn::platform {

// `scale` and `screen` (logical) as the user wants them. Lives to the end of the process.
Display* make_memory_display(double scale, SIZE screen);

}  // namespace tarn::platform
