// A message box, or what stands for it while there is no window.
#pragma once

#include <cstdint>

namespace tarn::platform {

inline constexpr std::uint32_t mb_ok_cancel = 0x1;
inline constexpr std::uint32_t mb_icon_hand = 0x10;
inline constexpr std::uint32_t mb_default_button_2 = 0x100;
inline constexpr std::uint32_t mb_set_foreground = 0x10000;
inline constexpr int id_ok = 1;
inline constexpr int id_cancel = 2;

// Shows a box in a window and gives the button; filled by the room that has windows. A result of
// 0 means that it couldn't.
extern int (*message_box_window)(const char* title, const char* text, std::uint32_t style);

// The button that was pressed. Without windows the text goes to standard error, and the answer is
// the box's default button.
int message_box(const char* title, const char* text, std::uint32_t style);

}  // namespace tarn::platform
