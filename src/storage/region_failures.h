// The end of a program that can't have its storage.
#pragma once

namespace tarn::storage {

// Shows the text and "Fatal run-time error" as traceback_flags say, and ends the process.
[[noreturn]] void fail_region(const char* text);

}  // namespace tarn::storage
