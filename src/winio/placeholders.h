// What the codes of controls that aren't built yet share with those that are: a record of the right
// size at the right place.
#pragma once

#include "winio/builder.h"

namespace tarn::winio {

// A new control that shows a frame with its code's name.
window_control* new_placeholder(control_type type);
// The usual end of a control's code: grave mark, `~`, `^`, and its place. `message` ends the error
// text of a call-back that is none.
void finish_control(code_call& call, window_control* control, const char* message,
                    std::int32_t extra_depth = 0);
// The same once the modifiers have been read.
void place_control(window_control* control, std::int32_t extra_depth = 0);
// Sizes: characters of the current font, and pixels.
void size_in_characters(window_control& control, std::int32_t columns, std::int32_t rows);
void size_in_pixels(window_control& control, std::int32_t width, std::int32_t height);
// True in a window that takes its controls from a dialog resource, where sizes aren't read.
bool in_dialog_resource();

// A string list: in C a table of pointers, in Fortran an array of `count` elements of `width`.
struct string_list {
    const char* const* table;  // C
    const char* array;         // Fortran
    std::int32_t count, width;
};
string_list read_string_list(code_call& call);

}  // namespace tarn::winio
