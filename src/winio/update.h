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
// Takes the program's string into the copy that is shown, if it is one. True: it has changed.
bool refresh_bound_copy(const char* copy);

}  // namespace tarn::winio
