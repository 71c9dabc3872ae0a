// Whether a report comes in windows, and which of them. They come after the same text was written
// to standard error, so that nothing is lost where none can open.
#include "diagnostics/show_report.h"

#include <cstdlib>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <vector>

#include "diagnostics/windows.h"
#include "exceptions/attempt.h"
#include "exceptions/report.h"
#include "failure/failure.h"
#include "failure/reporter.h"
#include "frame/hooks.h"
#include "platform/dialogs/dialogs.h"
#include "platform/kernel/config.h"
#include "platform/kernel/float_unit.h"
#include "platform/kernel/other_thread.h"
#include "platform/user/user.h"
#include "textwin/window_info.h"

namespace tarn::diagnostics {
namespace {

struct State {
    bool running = false;
};
constinit State the_state;

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

// The development environment shows its programs' failures itself.
bool shown_elsewhere() {
    if (platform::FindWindowA("ADX32", nullptr) == 0) return false;
    const auto value = platform::config_value("Software\\Tarnick\\Corvane\\2.00\\Settings",
                                              "SuppressTARNLIBCExceptionHandler");
    return value && std::atoi(value->c_str()) != 0;
}

// A program that failed gets no more input: its windows stay as they are.
class StilledWindows {
  public:
    StilledWindows() {
        for (platform::HWND each = platform::first_window(); each != 0;
             each = platform::next_top_level(each)) {
            if (platform::IsWindowEnabled(each)) stilled_.push_back(each);
        }
        for (platform::HWND each : stilled_) platform::EnableWindow(each, false);
    }
    ~StilledWindows() {
        for (platform::HWND each : stilled_) platform::EnableWindow(each, true);
    }
    StilledWindows(const StilledWindows&) = delete;
    StilledWindows& operator=(const StilledWindows&) = delete;

  private:
    std::vector<platform::HWND> stilled_;
};

// Windows are their thread's. It stops where it is and shows the report of another one; where it
// holds something that the windows need, it is left alone after a while.
bool show_on_pump_thread(const Report& report) {
    constexpr unsigned patience = 3;
    constexpr unsigned dialog_patience = 5;
    bool shown = false;
    platform::run_on_thread(textwin::pump_thread(), patience, [&] {
        const failure::ReportingHere here;
        const platform::MaskedFloat masked;
        exceptions::attempt(dialog_patience, [&] { shown = show_report(report); });
    });
    return shown;
}

bool show_reported(std::string_view text, std::string_view callers) {
    if (!wanted()) return false;
    const exceptions::Cause* cause = exceptions::reported_cause();
    Report report = make_report(cause != nullptr ? cause->title : "", text, callers);
    if (cause != nullptr) {
        const exceptions::Exception& exception = *cause->exception;
        const exceptions::Record& record = exception.record;
        const bool reached =
            record.code == TARN_ACCESS_VIOLATION && record.parameters[1] != ~std::uintptr_t{0};
        add_machine(report, exception.context,
                    reached ? record.parameters[1] : exception.context.instruction);
    }
    const bool elsewhere =
        textwin::pump_started() && pthread_equal(textwin::pump_thread(), pthread_self()) == 0;
    return elsewhere ? show_on_pump_thread(report) : show_report(report);
}

void install_report_dialog() {
    failure::hooks().report_dialog = show_reported;
}
TARN_PREAMBLE(install_report_dialog)

}  // namespace

bool show_report(const Report& report) {
    if (the_state.running || shown_elsewhere()) return false;
    textwin::start_pump();
    if (!platform::can_ask()) return false;
    the_state.running = true;
    const StilledWindows stilled;
    if (run_traceback_dialog(report) && !run_exception_window(report)) {
        platform::message_box(platform::HWND{},
                              "Tarnick exception handler.\nFail to create dialog window.\n"
                              "Information will appear in a simple messagebox",
                              "Tarnick exception handler", platform::MB_ICONHAND);
        platform::message_box(platform::HWND{}, whole_text(report), report.headline,
                              platform::MB_ICONHAND);
    }
    the_state.running = false;
    return true;
}

}  // namespace tarn::diagnostics
