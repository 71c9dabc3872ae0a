// A user's hands: events as the display would make them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/base/types.h"
#include "platform/script/keys.h"

namespace tarn::platform {

enum class MouseButton : std::int32_t { left = 1, middle = 2, right = 3 };

// Points are on the screen. Modifiers that `press_key` holds down go with every event.
void move_pointer(HWND top, POINT screen);
void click(HWND top, POINT screen, MouseButton button, std::int32_t times);
void drag(HWND top, POINT from, POINT to);
// The left button goes down there, and up in a later call.
void begin_hold(HWND top, POINT screen);
void end_hold(HWND top, POINT screen);
void drop_files(HWND top, POINT screen, const std::vector<std::string>& paths);
void turn_wheel(HWND top, POINT screen, std::int32_t notches);  // up positive

void press_key(HWND top, const Key& key);
void release_key(HWND top, const Key& key);
void strike_key(HWND top, const Key& key);
void type_text(HWND top, std::string_view utf8);

}  // namespace tarn::platform
