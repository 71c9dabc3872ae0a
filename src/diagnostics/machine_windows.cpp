// Memory and the floating-point units, each in a window over the exception window.
#include <cstdlib>

#include "diagnostics/windows.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/user/user.h"
#include "traceback/text_buffer.h"

namespace tarn::diagnostics {

using namespace platform;

namespace {

enum Item : std::int32_t {
    show_button = 1,
    close_button = 2,
    address_item = 401,
    text_item = 402,
    label_item = 403,
};

constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
constexpr DWORD button = shown | WS_TABSTOP;
constexpr DWORD frame = WS_POPUP | WS_CAPTION | WS_SYSMENU;

// From what stands in the address field, hexadecimal with or without its prefix.
void dump(HWND window) {
    const std::string digits = window_text(GetDlgItem(window, address_item));
    char* end = nullptr;
    const std::uintptr_t address = std::strtoull(digits.c_str(), &end, 16);
    const bool sound = end != digits.c_str() && *end == 0;
    show_columns(window, text_item, dump_text(sound ? address : UINTPTR_MAX));
}

std::intptr_t memory_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        char room[20];
        traceback::TextBuffer address(room, sizeof room);
        address.hexadecimal(static_cast<std::uintptr_t>(lparam), 8);
        set_window_text(GetDlgItem(window, address_item), address.text());
        dump(window);
        SetFocus(GetDlgItem(window, address_item));
        SendMessageA(GetDlgItem(window, address_item), EM_SETSEL, 0, -1);
        return 0;
    }
    if (message == WM_CTLCOLORSTATIC) return box_colours(window, wparam, lparam);
    if (message != WM_COMMAND) return 0;
    if (LOWORD(wparam) == show_button) dump(window);
    if (LOWORD(wparam) == close_button) EndDialog(window, close_button);
    return 1;
}

std::intptr_t floating_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        show_columns(window, text_item, reinterpret_cast<const Report*>(lparam)->floating);
        SetFocus(GetDlgItem(window, close_button));
        return 0;
    }
    if (message == WM_CTLCOLORSTATIC) return box_colours(window, wparam, lparam);
    if (message == WM_COMMAND && LOWORD(wparam) == close_button) EndDialog(window, close_button);
    return message == WM_COMMAND ? 1 : 0;
}

}  // namespace

void run_memory_window(HWND owner, std::uintptr_t address) {
    const DialogTemplate window{
        "Memory Dump",
        342,
        226,
        frame,
        WS_EX_TOPMOST | WS_EX_DLGMODALFRAME,
        {{"static", "&address:", label_item, 10, 13, 36, 9, shown, 0},
         {"edit", "", address_item, 48, 10, 100, 14, button | WS_BORDER | ES_AUTOHSCROLL, 0},
         {"button", "&Show", show_button, 154, 9, 50, 16, button | BS_DEFPUSHBUTTON, 0},
         {"edit", "", text_item, 10, 32, 324, 164, box_style({}, 0, 0) | WS_VSCROLL, 0},
         {"button", "&Close", close_button, 276, 204, 58, 16, button, 0}}};
    DialogBoxParamA(window, owner, memory_procedure, static_cast<LPARAM>(address));
}

void run_floating_window(HWND owner, const Report& report) {
    const DWORD box = box_style(report.floating, 27, 70);
    const DialogTemplate window{
        "Floating point registers",
        298,
        260,
        frame,
        WS_EX_TOPMOST | WS_EX_DLGMODALFRAME,
        {{"static", "Co-processor:", label_item, 10, 8, 100, 9, shown, 0},
         {"edit", "", text_item, 10, 20, 280, 210, box, 0},
         {"button", "&Close", close_button, 232, 238, 58, 16, button | BS_DEFPUSHBUTTON, 0}}};
    DialogBoxParamA(window, owner, floating_procedure, reinterpret_cast<LPARAM>(&report));
}

}  // namespace tarn::diagnostics
