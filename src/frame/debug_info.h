// The record of flags that a debugger finds, and that the exception handler looks at.
#pragma once

#include "frame/records.h"

namespace tarn::frame {

DebugInfo& debug_info();

}  // namespace tarn::frame
