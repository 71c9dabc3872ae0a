// Between the parts of updating: single controls.
#pragma once

#include "winio/callbacks.h"

namespace tarn::winio {

void redraw(const window_control* control);
// Fills a %ls, %ms or %el from the program's list and shows the selection.
void show_list(window_control* control, bool first);
// Fills a %el's list and its field.
void show_edit_list(window_control* control, bool first);
void redraw_caption(const fancy_window* window);

}  // namespace tarn::winio
