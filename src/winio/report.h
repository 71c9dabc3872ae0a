// The one report of the window library.
#pragma once

namespace tarn::winio {

// `format` as printf's. A leading `?` marks an error that the program may survive: the question
// window offers Ignore, Ignore All, Quit and Quit with Trace, and with Ignore the call returns.
// Without it the run ends. On a display that nobody watches a survivable one goes to standard error
// and means Ignore.
[[gnu::format(printf, 1, 2)]] void quillpan_error(const char* format, ...);
// For errors found inside a window procedure: kept, and shown by a posted message.
[[gnu::format(printf, 1, 2)]] void defered_quillpan_error(const char* format, ...);
// The kept one is shown (message 0x412).
void show_defered_error();

}  // namespace tarn::winio
