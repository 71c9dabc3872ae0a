// Plays an event script, saves pictures and writes the accessibility tree: how tests and batch
// jobs drive windows with nobody watching.
//
// TARN_EVENTS=file      plays the file, one command a line:
//
//     click T               press and release the left button on T
//     double click T        right click T        middle click T
//     type "text"           strike keys; \n is Return, \t is Tab
//     key Tab               a key, or with others: key Ctrl+Shift+A. `key Down 3` strikes it thrice
//     press Shift           hold a key;  release Shift  lets it go
//     drag T to T           by the left button
//     wheel T -3            turn the wheel over T, down with a minus
//     hover T               the pointer goes there and rests
//     drop T "a.txt" "b"    files from another program are dropped there
//     focus T               give T the focus
//     menu "File" "Open"    choose from the menu bar
//     close                 close the window as its user would;  resize W H;  move X Y
//     wait idle             until nothing waits (each line does);  wait 200ms, wait 2s
//     expect value T "12.5" expect text T "..."    expect text "..."    expect focused T
//     expect checked T      expect not checked T   expect enabled T     expect disabled T
//     expect window "Title" expect no window "Title"
//     window "Title"        the window that the next lines mean; `window` alone: the active one
//     screenshot "file.png" tree "file"
//     # a comment
//
// T is a control: its label in quotes, its code name in quotes ("RD001"), or #3, the third of the
// window in the order of creation, labels and frames not counted. Behind it X,Y may tell a point
// of it, counted from its corner; X,Y alone is a point of the window. The label is the control's
// own text or the text left of it or above it, without `&` marks and colon. Titles may hold `*`.
//
// The file is read whole first. A line runs when the queue is idle, in the active window, so that
// a question that a click opens gets the lines that follow. A line that can't be done is tried
// again for TARN_TIMEOUT seconds (10); then the program ends with status 71, and standard error
// names the line, and what was there instead.
//
// TARN_SCREENSHOT=folder  saves each window as NN-title.png when it is first idle and when it goes
// TARN_TREE=file          writes the controls of each window when it is first idle
#pragma once

#include <string>
#include <string_view>

#include "platform/base/types.h"

namespace tarn::platform {

// Reads `TARN_EVENTS`, `TARN_SCREENSHOT`, `TARN_TREE` once and hooks itself to the queue. Called
// when the first window is made.
void start_script();
// A script is being played and has lines left.
bool script_active();
// The rooms above know more names for a control than its label ("RD001", a bound unit ...).
extern HWND (*find_named_control)(HWND top_level, std::string_view name);
// Its code name, empty for none.
extern std::string (*control_code_name)(HWND control);
// The label that a room above draws beside it (no control of its own), empty for none.
extern std::string (*control_label)(HWND control);
// Ends the process with status_script_failed after the message, which has a line end, went to
// standard error. Filled by the room that knows how a program ends; without it buffers of the C
// library are written out and the process just ends.
extern void (*end_after_script)(int status);

inline constexpr int status_script_failed = 71;
inline constexpr int status_nobody_to_answer = 70;

}  // namespace tarn::platform
