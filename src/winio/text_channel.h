// Text for a window of another program of the same user: a local socket named by the window's
// class.
#pragma once

#include <cstddef>

#include "platform/base/types.h"

namespace tarn::winio {

constexpr std::size_t text_message_size = 256;  // with its terminator
using text_message = char[text_message_size];

// The window's class can be reached from other programs until `close_text_channel`; `message` is
// posted when one has something to say. Without XDG_RUNTIME_DIR, or when another program has the
// class, nothing happens.
void open_text_channel(platform::HWND hwnd, const char* class_name, std::uint32_t message);
void close_text_channel(platform::HWND hwnd);
// Takes what was said; `serve` fills in the reply.
void serve_text_channel(platform::HWND hwnd,
                        void (*serve)(platform::HWND, const text_message&, text_message&));

// Sends to the program that has the class. Waits for its answer, and serves this program's own
// channels meanwhile. False: nobody has it, or it ended without an answer.
bool send_through_channel(const char* class_name, const text_message& text, text_message& reply);

}  // namespace tarn::winio
