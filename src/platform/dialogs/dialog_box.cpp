// Dialogs from descriptions in memory.
#include "platform/base/text.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/display/display.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"

namespace tarn::platform {

bool (*somebody_answers)() = nullptr;

namespace {

constexpr const char* class_name = "TarnDialog";

struct Dialog {
    Dialog* outer = nullptr;
    HWND window{};
    std::intptr_t result = 0;
    bool ended = false;
};
struct DialogState {
    Dialog* innermost = nullptr;  // of the modal ones
    DLGPROC starting = nullptr;   // of the window being made
    bool registered = false;
};
DialogState& dialogs() {
    static DialogState all;
    return all;
}

constexpr std::int32_t procedure_slot = 0;

DLGPROC procedure_of(HWND dialog) {
    return reinterpret_cast<DLGPROC>(GetWindowLong(dialog, procedure_slot));
}

// A quarter of 8 across, an eighth of 16 down.
std::int32_t across(std::int32_t units) {
    return units * 2;
}
std::int32_t down(std::int32_t units) {
    return units * 2;
}

LRESULT dialog_window_procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE)
        SetWindowLong(hwnd, procedure_slot, reinterpret_cast<LPARAM>(dialogs().starting));
    const DLGPROC procedure = procedure_of(hwnd);
    if (procedure != nullptr) {
        const std::intptr_t answer = procedure(hwnd, message, wparam, lparam);
        if (answer != 0 || !IsWindow(hwnd)) return answer;
    }
    switch (message) {
        case WM_CLOSE:
            PostMessageA(hwnd, WM_COMMAND, IDCANCEL, 0);
            return 0;
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORDLG: {
            const HDC dc{static_cast<std::int32_t>(wparam)};
            SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
            SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
            return GetSysColorBrush(COLOR_BTNFACE);
        }
        default:
            return DefWindowProcA(hwnd, message, wparam, lparam);
    }
}

void register_class() {
    if (dialogs().registered) return;
    dialogs().registered = true;
    register_standard_controls();
    WNDCLASS description;
    description.lpfnWndProc = dialog_window_procedure;
    description.cbWndExtra = sizeof(LPARAM);
    description.hCursor = LoadSystemCursor(IDC_ARROW);
    description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    description.lpszClassName = class_name;
    description.utf8 = true;
    RegisterClassA(description);
}

void make_items(HWND dialog, const DialogTemplate& pattern) {
    const HFONT font = GetStockObject(DEFAULT_GUI_FONT);
    for (const DialogItem& item : pattern.items) {
        const HWND control = CreateWindowExA(item.ex_style, item.class_name, "", item.style,
                                             across(item.x), down(item.y), across(item.width),
                                             down(item.height), dialog, HMENU{item.id});
        if (control == 0) continue;
        set_window_text(control, item.text);
        send_message(control, WM_SETFONT, static_cast<WPARAM>(font), 0);
    }
}

// Over the owner, but all of it on the monitor.
POINT middle(HWND owner, SIZE size) {
    RECT area;
    const bool owned = owner != 0 && GetWindowRect(owner, area) && !IsIconic(owner);
    const RECT screen = display().work_area(owned ? middle_of(area) : display().pointer());
    if (!owned) area = screen;
    const std::int32_t x = area.left + (area.width() - size.cx) / 2;
    const std::int32_t y = area.top + (area.height() - size.cy) / 2;
    const RECT place = moved_inside({x, y, x + size.cx, y + size.cy}, screen);
    return {place.left, place.top};
}

HWND make_dialog(const DialogTemplate& pattern, HWND owner, DLGPROC procedure, LPARAM parameter) {
    register_class();
    const std::int32_t frame_x = 2 * GetSystemMetrics(SM_CXDLGFRAME);
    const std::int32_t frame_y =
        2 * GetSystemMetrics(SM_CYDLGFRAME) + GetSystemMetrics(SM_CYCAPTION);
    const SIZE size{across(pattern.width) + frame_x, down(pattern.height) + frame_y};
    const POINT at = middle(owner, size);
    dialogs().starting = procedure;
    const HWND dialog =
        CreateWindowExA(pattern.ex_style | WS_EX_DLGMODALFRAME, class_name, "", pattern.style, at.x,
                        at.y, size.cx, size.cy, owner, HMENU{});
    dialogs().starting = nullptr;
    if (dialog == 0) return dialog;
    set_window_text(dialog, pattern.title);
    make_items(dialog, pattern);
    if (procedure(dialog, WM_INITDIALOG, 0, parameter) != 0) {
        const HWND first = GetNextDlgTabItem(dialog, HWND{}, false);
        if (first != 0) SetFocus(first);
    }
    return dialog;
}

bool take_dialog_key(MSG& message, void* record) {
    return IsDialogMessageA(static_cast<const Dialog*>(record)->window, message);
}

bool dialog_ended(void* record) {
    return static_cast<const Dialog*>(record)->ended;
}

}  // namespace

bool can_ask() {
    return !display().headless() || (somebody_answers != nullptr && somebody_answers());
}

HWND CreateDialogParamA(const DialogTemplate& pattern, HWND owner, DLGPROC procedure,
                        LPARAM parameter) {
    const HWND dialog = make_dialog(pattern, owner, procedure, parameter);
    if (dialog != 0) ShowWindow(dialog, SW_SHOW);
    return dialog;
}

std::intptr_t DialogBoxParamA(const DialogTemplate& pattern, HWND owner, DLGPROC procedure,
                              LPARAM parameter) {
    Dialog record;
    record.outer = dialogs().innermost;
    const HWND focus = GetFocus();
    const bool was_enabled = owner != 0 && IsWindowEnabled(owner);
    const HWND dialog = make_dialog(pattern, owner, procedure, parameter);
    if (dialog == 0) return -1;
    record.window = dialog;
    dialogs().innermost = &record;
    if (was_enabled) EnableWindow(owner, false);
    ShowWindow(dialog, SW_SHOW);
    modal_loop(dialog, take_dialog_key, dialog_ended, &record);
    dialogs().innermost = record.outer;
    // The owner first, so that the activation goes back to it and not elsewhere.
    if (was_enabled && IsWindow(owner)) EnableWindow(owner, true);
    if (IsWindow(dialog)) DestroyWindow(dialog);
    if (IsWindow(focus)) SetFocus(focus);
    return record.ended ? record.result : -1;
}

bool EndDialog(HWND dialog, std::intptr_t result) {
    for (Dialog* record = dialogs().innermost; record != nullptr; record = record->outer) {
        if (record->window != dialog) continue;
        record->result = result;
        record->ended = true;
        return true;
    }
    return DestroyWindow(dialog);
}

}  // namespace tarn::platform
