// The first window of a report, for everybody: what failed, where, and who called.
#include <algorithm>
#include <cstring>
#include <unistd.h>

#include "diagnostics/mail_report.h"
#include "diagnostics/stretch.h"
#include "diagnostics/windows.h"
#include "exceptions/attempt.h"
#include "failure/reporter.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/dialogs/file_dialog.h"
#include "platform/gdi/gdi.h"
#include "platform/gdi/theme.h"
#include "platform/user/user.h"

namespace tarn::diagnostics {

using namespace platform;

namespace {

enum Item : std::int32_t {
    save_button = 1,
    close_button = 2,
    copy_button = 110,
    icon_item = 401,
    callers_item = 402,
    details_button = 403,
    detail_item = 404,
    headline_item = 405,
};
constexpr std::uintptr_t shown_timer = 1;

struct State {
    const Report* shown = nullptr;
    Stretch stretch;
    bool details_wanted = false;
    std::string page;  // of the report that was sent last
};
State& dialog_state() {
    static State state;
    return state;
}

void save(HWND dialog, const Report& report) {
    OPENFILENAME request;
    request.hwndOwner = dialog;
    request.lpstrFilter = std::string("All files (*.*)\0*\0", 18);
    request.lpstrFile = "error.txt";
    request.lpstrTitle = "Save traceback...";
    request.Flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
    if (!GetSaveFileNameA(request) || request.files.empty()) return;
    if (!write_file(request.files[0], saved_text(report)))
        message_box(dialog, "Failed to open file:" + request.files[0], "Save traceback...",
                    MB_ICONHAND);
}

void remove_page() {
    std::string& page = dialog_state().page;
    if (!page.empty()) unlink(page.c_str());
    page.clear();
}

void send(HWND dialog, const Report& report) {
    remove_page();
    dialog_state().page = send_mail(saved_text(report));
    if (dialog_state().page.empty())
        message_box(dialog, "No page could be opened: xdg-open failed", "Report", MB_ICONHAND);
}

void fill(HWND dialog, const Report& report) {
    show_headline(dialog, icon_item, headline_item, report.headline);
    show_text(dialog, detail_item, report.detail);
    show_text(dialog, callers_item, report.callers);
    if (mail_is_set_up()) set_window_text(GetDlgItem(dialog, save_button), "&Report");
    dialog_state().stretch.begin(dialog, {{headline_item, false, false, true, false},
                                          {detail_item, false, false, true, false},
                                          {callers_item, false, false, true, true},
                                          {save_button, false, true, false, false},
                                          {copy_button, false, true, false, false},
                                          {details_button, false, true, false, false},
                                          {close_button, true, true, false, false}});
    SetFocus(GetDlgItem(dialog, close_button));
    // Comes when all is painted: the window stands.
    SetTimer(dialog, shown_timer, 0, nullptr);
}

std::intptr_t command(HWND dialog, std::int32_t id, const Report& report) {
    switch (id) {
        case save_button:
            mail_is_set_up() ? send(dialog, report) : save(dialog, report);
            return 1;
        case copy_button:
            set_clipboard_text(saved_text(report));
            return 1;
        case details_button:
            if (!report.has_machine) {
                message_box(dialog, "No further details available with this error", "Details",
                            MB_ICONASTERISK);
                return 1;
            }
            dialog_state().details_wanted = true;
            EndDialog(dialog, details_button);
            return 1;
        case close_button:
            remove_page();
            EndDialog(dialog, close_button);
            return 1;
        default:
            return 0;
    }
}

DialogTemplate traceback_template(const Report& report) {
    constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
    constexpr DWORD button = shown | WS_TABSTOP;
    const std::int32_t detail = 8 * label_lines(report.detail, 96);
    const std::int32_t callers = 34 + detail;
    const std::int32_t buttons = callers + 112;
    const DWORD box = box_style(report.callers, 13, 106);
    return {
        "Run-time Error",
        341,
        buttons + 27,
        WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME,
        WS_EX_TOPMOST | WS_EX_DLGMODALFRAME,
        {{"static", "", icon_item, 10, 9, 20, 20, shown | SS_ICON, 0},
         {"static", "", headline_item, 36, 9, 294, 15, shown | SS_NOPREFIX, 0},
         {"static", "", detail_item, 36, 26, 294, detail, shown | SS_NOPREFIX, 0},
         {"edit", "", callers_item, 10, callers, 320, 102, box, 0},
         {"button", "&Save As...", save_button, 10, buttons, 66, 16, button, 0},
         {"button", "&Copy", copy_button, 82, buttons, 58, 16, button, 0},
         {"button", "&Details", details_button, 146, buttons, 58, 16, button, 0},
         {"button", "Close", close_button, 272, buttons, 58, 16, button | BS_DEFPUSHBUTTON, 0}}};
}

// Edit boxes end their lines by CR LF.
std::string with_returns(std::string_view text) {
    std::string lines;
    for (char each : text) {
        if (each == '\n') lines.push_back('\r');
        lines.push_back(each);
    }
    return lines;
}

}  // namespace

void show_text(HWND dialog, std::int32_t item, std::string_view text) {
    while (text.ends_with('\n')) text.remove_suffix(1);
    set_window_text(GetDlgItem(dialog, item), with_returns(text));
}

void show_columns(HWND dialog, std::int32_t item, std::string_view text) {
    SendMessageA(GetDlgItem(dialog, item), WM_SETFONT,
                 static_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)), 1);
    show_text(dialog, item, text);
}

void show_headline(HWND dialog, std::int32_t icon, std::int32_t item, const std::string& text) {
    LOGFONT large{};
    large.lfHeight = 23;
    large.lfWeight = 700;
    std::strcpy(large.lfFaceName, "Arial");
    HFONT font = CreateFontIndirectA(large);
    if (font == 0) font = GetStockObject(ANSI_FIXED_FONT);
    SendMessageA(GetDlgItem(dialog, item), WM_SETFONT, static_cast<WPARAM>(font), 1);
    SendMessageA(GetDlgItem(dialog, icon), STM_SETICON,
                 static_cast<WPARAM>(LoadSystemIcon(IDI_HAND)), 0);
    set_window_text(GetDlgItem(dialog, item), text);
}

DWORD box_style(std::string_view text, std::size_t lines, std::size_t columns) {
    std::size_t count = 0;
    std::size_t longest = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        ++count;
        longest = std::max(longest, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_BORDER | ES_MULTILINE | ES_READONLY |
           (count > lines ? DWORD{WS_VSCROLL} : 0) | (longest > columns ? DWORD{WS_HSCROLL} : 0);
}

std::int32_t label_lines(std::string_view text, std::size_t columns) {
    std::size_t lines = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines += end / columns + 1;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    constexpr std::size_t most = 8;
    return static_cast<std::int32_t>(std::min(lines, most));
}

std::intptr_t box_colours(HWND, WPARAM dc, LPARAM control) {
    const HWND box{static_cast<std::int32_t>(control)};
    if ((GetWindowLong(box, GWL_STYLE) & WS_BORDER) == 0) return 0;
    SetTextColor(HDC{static_cast<std::int32_t>(dc)}, GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(HDC{static_cast<std::int32_t>(dc)}, GetSysColor(COLOR_WINDOW));
    return GetSysColorBrush(COLOR_WINDOW);
}

std::intptr_t traceback_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    const Report* const report = dialog_state().shown;
    if (report == nullptr) return 0;
    if (dialog_state().stretch.take(dialog, message, lparam)) return 1;
    switch (message) {
        case WM_INITDIALOG:
            fill(dialog, *report);
            return 0;
        case WM_TIMER:
            KillTimer(dialog, shown_timer);
            exceptions::lift_limit();
            failure::set_being_read(true);
            return 1;
        case WM_COMMAND:
            return command(dialog, LOWORD(wparam), *report);
        case WM_CTLCOLORSTATIC:
            return box_colours(dialog, wparam, lparam);
        default:
            return 0;
    }
}

bool run_traceback_dialog(const Report& report) {
    State& state = dialog_state();
    state.shown = &report;
    state.stretch = {};
    state.details_wanted = false;
    DialogBoxParamA(traceback_template(report), HWND{}, traceback_procedure, 0);
    state.shown = nullptr;
    return state.details_wanted;
}

}  // namespace tarn::diagnostics
