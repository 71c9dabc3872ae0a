// The entries of the windows that show a report.
#include <cstring>
#include <string>

#include "diagnostics/mail_report.h"
#include "diagnostics/show_report.h"
#include "diagnostics/windows.h"
#include "exceptions/exceptions.h"
#include "frame/console_lines.h"
#include "frame/end.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/dialogs/file_dialog.h"
#include "platform/kernel/config.h"
#include "traceback/traceback.h"

using namespace tarn;
using diagnostics::Report;

namespace {

// The report that the last call of an entry showed.
Report& last_report() {
    static Report report;
    return report;
}

// Pairs of a name and patterns, each ended by a zero, and a zero behind the last.
std::string filter_text(const char* filter) {
    if (filter == nullptr) return {};
    const char* end = filter;
    while (*end != 0) end += std::strlen(end) + 1;
    return {filter, end};
}

}  // namespace

extern "C" {

TARN_EXPORT int __showExceptiondlg(const char* text, exceptions::Context* context) {
    frame::ensure_up();
    if ((frame::traceback_flags() & frame::tb_kill_dialogbox) != 0) {
        frame::console_line(text);
        frame::zap_out();
    }
    Report& report = last_report();
    report = diagnostics::make_report(
        "", text != nullptr ? text : "",
        traceback::console_text(traceback::registers_here(), traceback::Place::call));
    if (context != nullptr) diagnostics::add_machine(report, *context, context->instruction);
    diagnostics::show_report(report);
    return 1;
}
TARN_EXPORT int __showRegisterDialog(std::intptr_t) {
    frame::ensure_up();
    return diagnostics::show_report(last_report()) ? 1 : 0;
}

TARN_EXPORT std::intptr_t __TRACEOUTPUT_PROC(std::int32_t dialog, std::uint32_t message,
                                             std::uintptr_t wparam, std::intptr_t lparam) {
    return diagnostics::traceback_procedure(platform::HWND{dialog}, message, wparam, lparam);
}
TARN_EXPORT std::intptr_t __REGSOUTPUT_PROC(std::int32_t window, std::uint32_t message,
                                            std::uintptr_t wparam, std::intptr_t lparam) {
    return diagnostics::exception_procedure(platform::HWND{window}, message, wparam, lparam);
}

TARN_EXPORT int get_file_names(std::int32_t owner, const char* title, char* name, std::int32_t size,
                               const char* filter, const char* extension) {
    frame::ensure_up();
    if (name == nullptr || size <= 0) return 0;
    platform::OPENFILENAME request;
    request.hwndOwner = platform::HWND{owner};
    request.lpstrTitle = title != nullptr ? title : "";
    request.lpstrFilter = filter_text(filter);
    request.lpstrFile.assign(name, strnlen(name, static_cast<std::size_t>(size)));
    request.Flags = platform::OFN_HIDEREADONLY | platform::OFN_OVERWRITEPROMPT;
    if (!platform::GetSaveFileNameA(request) || request.files.empty()) return 0;
    std::string chosen = request.files[0];
    const bool bare = chosen.find('.', chosen.rfind('/') + 1) == std::string::npos;
    if (bare && extension != nullptr && *extension != 0) chosen.append(".").append(extension);
    if (chosen.size() >= static_cast<std::size_t>(size)) return 0;
    std::memcpy(name, chosen.c_str(), chosen.size() + 1);
    return 1;
}

TARN_EXPORT void NotifyRegistryExitCode(std::int32_t code) {
    platform::store_config_values({{"Software\\Tarnick\\ADX32\\Settings",
                                    "LastCreateProcessExitCode", std::to_string(code)}});
}
}
