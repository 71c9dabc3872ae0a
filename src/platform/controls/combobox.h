// What a list knows of the combo box that it belongs to. The list of a box that drops down is a
// top-level window that takes no focus; while it is down it holds the capture, so that it hears of
// presses anywhere.
#pragma once

#include "platform/controls/listbox.h"

namespace tarn::platform {

// The items of a combo box; null when it has gone.
ListItems* combobox_items(HWND combo);

// The pointer, in the list's client coordinates. True: it was seen to; false: the list treats it
// as any list does (that of a simple combo box).
bool combobox_list_pressed(ListBox& list, POINT at);
bool combobox_list_moved(ListBox& list, POINT at, bool button_down);
bool combobox_list_released(ListBox& list, POINT at);
bool combobox_list_lost_capture(ListBox& list, LPARAM to);
bool combobox_list_timer(ListBox& list);

}  // namespace tarn::platform
