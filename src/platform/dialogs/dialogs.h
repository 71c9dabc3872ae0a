// Dialog boxes of the platform.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/base/constants.h"
#include "platform/base/types.h"

namespace tarn::platform {

// Shows a question and waits for the answer (IDOK ...). On a display that nobody watches the text
// goes to standard error and the answer is the one that changes nothing (see the source).
std::int32_t MessageBoxA(HWND owner, const char* text, const char* caption, UINT kind);
std::int32_t message_box(HWND owner, std::string_view utf8, std::string_view caption, UINT kind);

// A dialog described in memory. Places are in dialog units: a quarter of 8 across, an eighth of
// 16 down.
struct DialogItem {
    const char* class_name;
    const char* text;  // UTF-8
    std::int32_t id;
    std::int32_t x, y, width, height;
    DWORD style, ex_style;
};
struct DialogTemplate {
    const char* title;
    std::int32_t width, height;
    DWORD style, ex_style;
    std::vector<DialogItem> items;
};
std::intptr_t DialogBoxParamA(const DialogTemplate& pattern, HWND owner, DLGPROC procedure,
                              LPARAM parameter);
HWND CreateDialogParamA(const DialogTemplate& pattern, HWND owner, DLGPROC procedure,
                        LPARAM parameter);
bool EndDialog(HWND dialog, std::intptr_t result);

// Whether somebody answers questions on a display that nobody watches: a script does. Null: no.
extern bool (*somebody_answers)();
// True when a question can be shown: on a desktop, or to a script.
bool can_ask();

}  // namespace tarn::platform
