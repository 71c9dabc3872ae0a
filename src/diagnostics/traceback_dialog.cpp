// The window in which a program with windows tells its user that it failed: the failure, where it
// came up, who called; to be read, copied or saved. It comes after the same text was written to
// standard error, so nothing is lost where no window can open.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "failure/failure.h"
#include "frame/hooks.h"
#include "platform/controls/controls.h"
#include "platform/dialogs/dialogs.h"
#include "platform/dialogs/file_dialog.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/module.h"
#include "platform/user/user.h"
#include "textwin/window_info.h"

namespace tarn::diagnostics {

using namespace platform;

namespace {

enum Item : std::int32_t {
    save_button = 1,
    close_button = 2,
    icon_item = 401,
    callers_item = 402,
    details_button = 403,
    place_item = 404,
    failure_item = 405,
    copy_button = 110
};

struct Report {
    std::string failure;  // its sentence
    std::string place;    // file, line, unit
    std::string callers;
};
struct State {
    const Report* shown = nullptr;
};
constinit State the_state;

std::string without_indent(std::string_view lines) {
    std::string text;
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        std::string_view line = lines.substr(0, end);
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (!line.empty()) text.append(line).append("\r\n");
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    return text;
}

Report parts_of(std::string_view text, std::string_view callers) {
    Report report;
    if (text.substr(0, 4) == "*** ") text.remove_prefix(4);
    const std::size_t end = std::min(text.find('\n'), text.size());
    report.failure = text.substr(0, end);
    report.place = without_indent(text.substr(std::min(end + 1, text.size())));
    report.callers = without_indent(callers);
    return report;
}

std::string whole_text(const Report& report) {
    std::string text = "Runtime error from program:" + program_path() + "\n";
    for (const std::string* part : {&report.failure, &report.place, &report.callers}) {
        for (char each : *part) {
            if (each != '\r') text.push_back(each);
        }
        if (text.back() != '\n') text.push_back('\n');
    }
    return text;
}

bool write_file(const std::string& path, const std::string& text) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) return false;
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = write(file, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    return close(file) == 0 && done == text.size();
}

void save(HWND dialog) {
    OPENFILENAME request;
    request.hwndOwner = dialog;
    request.lpstrFilter = std::string("All files (*.*)\0*\0", 18);
    request.lpstrFile = "error.txt";
    request.lpstrTitle = "Save traceback...";
    request.Flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
    if (!GetSaveFileNameA(request) || request.files.empty()) return;
    if (!write_file(request.files[0], whole_text(*the_state.shown)))
        message_box(dialog, "Failed to open file:" + request.files[0], "Save traceback...",
                    MB_ICONHAND);
}

void fill(HWND dialog) {
    const Report& report = *the_state.shown;
    LOGFONT large{};
    large.lfHeight = 23;
    large.lfWeight = 700;
    std::strcpy(large.lfFaceName, "Arial");
    SendMessageA(GetDlgItem(dialog, failure_item), WM_SETFONT,
                 static_cast<WPARAM>(CreateFontIndirectA(large)), 1);
    SendMessageA(GetDlgItem(dialog, icon_item), STM_SETICON,
                 static_cast<WPARAM>(LoadSystemIcon(IDI_HAND)), 0);
    set_window_text(GetDlgItem(dialog, failure_item), report.failure);
    set_window_text(GetDlgItem(dialog, place_item), report.place);
    set_window_text(GetDlgItem(dialog, callers_item), report.callers);
    SetFocus(GetDlgItem(dialog, close_button));
}

std::intptr_t dialog_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    if (message == WM_INITDIALOG) {
        fill(dialog);
        return 0;
    }
    if (message != WM_COMMAND) return 0;
    switch (LOWORD(wparam)) {
        case save_button:
            save(dialog);
            return 1;
        case copy_button:
            set_clipboard_text(whole_text(*the_state.shown));
            return 1;
        case details_button:
            message_box(dialog, "No further details available with this error", "Details",
                        MB_ICONASTERISK);
            return 1;
        case close_button:
            EndDialog(dialog, close_button);
            return 1;
        default:
            return 0;
    }
}

DialogTemplate traceback_dialog() {
    constexpr DWORD shown = WS_CHILD | WS_VISIBLE;
    constexpr DWORD button = shown | WS_TABSTOP;
    constexpr DWORD box = button | WS_BORDER | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_READONLY;
    return {"Run-time Error",
            340,
            196,
            WS_POPUP | WS_CAPTION | WS_SYSMENU,
            WS_EX_TOPMOST | WS_EX_DLGMODALFRAME,
            {{"static", "", icon_item, 10, 10, 20, 20, shown | SS_ICON, 0},
             {"static", "", failure_item, 40, 8, 290, 26, shown, 0},
             {"static", "", place_item, 40, 36, 290, 28, shown, 0},
             {"edit", "", callers_item, 10, 68, 320, 98, box, 0},
             {"button", "&Save As...", save_button, 10, 174, 72, 16, button, 0},
             {"button", "&Copy", copy_button, 88, 174, 58, 16, button, 0},
             {"button", "&Details", details_button, 152, 174, 58, 16, button, 0},
             {"button", "Close", close_button, 272, 174, 58, 16, button | BS_DEFPUSHBUTTON, 0}}};
}

// Under these nobody sits before the screen, even where one is named.
bool in_a_batch_job() {
    for (const char* name : {"SLURM_JOB_ID", "PBS_JOBID", "LSB_JOBID", "JOB_ID", "PMI_RANK",
                             "OMPI_COMM_WORLD_RANK", "MPI_LOCALRANKID"}) {
        if (std::getenv(name) != nullptr) return true;
    }
    return false;
}

// Standard error that nobody can read: closed, or the null device, as a desktop starts programs.
bool errors_go_nowhere() {
    struct stat status;
    if (fstat(STDERR_FILENO, &status) != 0) return true;
    return S_ISCHR(status.st_mode) && major(status.st_rdev) == 1 && minor(status.st_rdev) == 3;
}

bool wanted() {
    if (in_a_batch_job()) return false;
    if (textwin::pump_started()) return true;
    return errors_go_nowhere() && std::getenv("DISPLAY") != nullptr;
}

bool show_report(std::string_view text, std::string_view callers) {
    if (the_state.shown != nullptr || !wanted()) return false;
    textwin::start_pump();
    if (!can_ask()) return false;
    const Report report = parts_of(text, callers);
    the_state.shown = &report;
    DialogBoxParamA(traceback_dialog(), HWND{}, dialog_procedure, 0);
    the_state.shown = nullptr;
    return true;
}

void install_report_dialog() {
    failure::hooks().report_dialog = show_report;
}
TARN_PREAMBLE(install_report_dialog)

}  // namespace
}  // namespace tarn::diagnostics
