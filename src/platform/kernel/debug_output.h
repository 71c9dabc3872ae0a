// Lines for a debugger that understands the library.
#pragma once

namespace tarn::platform {

// Where the lines go when somebody listens. Null: to the file that TARN_DEBUG_OUTPUT names, one
// line a call, and without it nowhere.
extern void (*debug_listener)(const char* text);

// OutputDebugStringA.
void debug_output(const char* text);

}  // namespace tarn::platform
