// The library's own messages to the user: a message box, or standard error without windows.
#pragma once

namespace tarn::frame {

const char* message_title();
[[gnu::format(printf, 1, 2)]] void show_message(const char* format, ...);   // always
[[gnu::format(printf, 1, 2)]] void debug_message(const char* format, ...);  // after __mdebug(1)

}  // namespace tarn::frame
