#include "failure/managed_report.h"

#include "failure/failure.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "platform/kernel/console.h"

namespace tarn::failure {
namespace {

// A frame without its parameter list: "at A.B(Int32 n) in f:line 3" loses what is in parentheses.
std::string without_parameters(std::string_view line) {
    std::size_t open = line.find('(');
    std::string kept(line.substr(0, open));
    if (open == line.npos) return kept;
    std::size_t place = line.find(") in", open);
    if (place != line.npos) kept.append(line.substr(place));
    return kept;
}

}  // namespace

ManagedReport managed_report(std::string_view origin, std::string_view message,
                             std::string_view stack_text) {
    ManagedReport report;
    report.title =
        origin.starts_with("Tarnick") ? "Orvex exception" : "Common Language Runtime exception";
    if (!message.empty() && message.front() >= '0' && message.front() <= '9') {
        report.heading = "Error ";
    }
    report.heading.append(message);
    bool line_numbers = stack_text.find(":line") != stack_text.npos;
    while (!stack_text.empty()) {
        std::size_t end = stack_text.find('\n');
        std::string_view line = stack_text.substr(0, end);
        stack_text.remove_prefix(end == stack_text.npos ? stack_text.size() : end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line_numbers && line.find("Tarnick.Fortran.RTLibrary") != line.npos) continue;
        report.stack.append(without_parameters(line)).push_back('\n');
    }
    return report;
}

}  // namespace tarn::failure

// The window comes from the room that has windows; without it the report is text.
extern "C" TARN_EXPORT void tarnick_error_report(const char* origin, const char* message,
                                                 const char* stack_text) {
    using namespace tarn::failure;
    tarn::frame::attach();
    auto given = [](const char* text) { return text ? text : ""; };
    ManagedReport report = managed_report(given(origin), given(message), given(stack_text));
    std::string text(report.title);
    text.append("\n").append(report.heading).append("\n\n").append(report.stack);
    if (hooks().report_dialog && hooks().report_dialog(text, {})) return;
    tarn::platform::write_error_output(text);
}
