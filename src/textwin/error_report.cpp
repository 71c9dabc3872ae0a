#include "textwin/error_report.h"

#include <cstdio>

#include "failure/failure.h"
#include "frame/end.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

using namespace platform;

namespace {

constexpr std::int32_t text_item = 3001, icon_item = 8001;
constexpr std::int32_t ignore = 4001, ignore_all = 4002, quit = 4003, quit_with_trace = 4004;

struct report_state {
    ErrorHooks hooks;
    bool reporting;    // a report doesn't start a second one
    bool ignoring;     // "Ignore All"
    const char* text;  // of the dialog that is open
};
report_state& reports() {
    static report_state all;
    return all;
}

// The upper half in the window's colour, the lower, with the buttons, in the dialog's.
void paint_background(HWND dialog, HDC dc) {
    RECT client;
    GetClientRect(dialog, client);
    RECT upper = client, lower = client;
    upper.bottom = lower.top = client.bottom / 2 + 3;
    FillRect(dc, upper, GetSysColorBrush(COLOR_WINDOW));
    FillRect(dc, lower, GetSysColorBrush(COLOR_BTNFACE));
}

std::intptr_t dialog_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            set_window_text(GetDlgItem(dialog, text_item), reports().text);
            SendMessageA(GetDlgItem(dialog, icon_item), STM_SETICON,
                         static_cast<WPARAM>(LoadSystemIcon(IDI_HAND)), 0);
            SetFocus(GetDlgItem(dialog, ignore));
            return 0;
        case WM_ERASEBKGND: {
            paint_background(dialog, HDC{static_cast<std::int32_t>(wparam)});
            return 1;
        }
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORSTATIC: {
            const HDC dc{static_cast<std::int32_t>(wparam)};
            SetTextColor(dc, theme().danger);
            SetBkColor(dc, GetSysColor(COLOR_WINDOW));
            return GetSysColorBrush(COLOR_WINDOW);
        }
        case WM_COMMAND: {
            const std::int32_t id = LOWORD(wparam);
            if (id == IDCANCEL || (id >= ignore && id <= quit_with_trace))
                EndDialog(dialog, id == IDCANCEL ? ignore : id);
            return 1;
        }
        default:
            return 0;
    }
}

DialogTemplate error_report_dialog() {
    constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
    constexpr DWORD button = shown | WS_TABSTOP;
    return {"Quillpan+ Error",
            280,
            112,
            WS_POPUP | WS_CAPTION | WS_SYSMENU,
            WS_EX_TOPMOST | WS_EX_DLGMODALFRAME,
            {{"static", "", icon_item, 10, 12, 20, 20, shown | SS_ICON, 0},
             {"edit", "", text_item, 40, 10, 230, 44,
              shown | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, 0},
             {"button", "&Ignore", ignore, 10, 86, 58, 16, button | BS_DEFPUSHBUTTON, 0},
             {"button", "Ignore &All", ignore_all, 74, 86, 58, 16, button, 0},
             {"button", "&Quit", quit, 138, 86, 58, 16, button, 0},
             {"button", "Quit with &Trace", quit_with_trace, 202, 86, 68, 16, button, 0}}};
}

// True: the program goes on.
bool ask(const char* text) {
    report_state& r = reports();
    start_pump();  // a script answers questions
    if (!can_ask()) {
        std::fprintf(stderr, "Quillpan+ Error: %s\n", text);
        return true;
    }
    r.text = text;
    const std::intptr_t answer =
        DialogBoxParamA(error_report_dialog(), GetActiveWindow(), dialog_procedure, 0);
    switch (answer) {
        case ignore_all:
            r.ignoring = true;
            return true;
        case quit:
            frame::exit_program(0);
        case quit_with_trace:
            return false;
        default:
            return true;
    }
}

}  // namespace

ErrorHooks& error_hooks() {
    return reports().hooks;
}

void report_error(const char* text, bool recoverable) {
    report_state& r = reports();
    if (r.hooks.reports_off != nullptr && r.hooks.reports_off()) return;
    if (r.reporting) return;
    r.reporting = true;
    if (r.hooks.remember != nullptr) r.hooks.remember(text);
    if (r.hooks.passive != nullptr) r.hooks.passive(text);
    if (r.hooks.takes_text != nullptr && r.hooks.takes_text(text)) {
        r.reporting = false;
        return;
    }
    if (recoverable && (r.ignoring || ask(text))) {
        r.reporting = false;
        return;
    }
    failure::fail_text(text);
}

}  // namespace tarn::textwin
