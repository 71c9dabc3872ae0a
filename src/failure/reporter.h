// Who reports, and where a report goes: one thread, once, for failures and faults alike.
#pragma once

#include <csignal>
#include <pthread.h>
#include <string_view>

namespace tarn::failure {

// `again`: this thread is reporting already, and something else struck meanwhile.
enum class Claim { first, again, other };
Claim claim_report();

// Whether this thread is reporting: the program's own routines aren't called then.
bool is_reporting();
// Another thread shows the report: it is the one that reports, until it gives that back.
class ReportingHere {
  public:
    ReportingHere();
    ~ReportingHere();
    ReportingHere(const ReportingHere&) = delete;
    ReportingHere& operator=(const ReportingHere&) = delete;

  private:
    pthread_t before_;
};
// The program goes on behind a report.
void release_report();
// While somebody reads it in a window, another thread's failure ends nothing.
void set_being_read(bool read);

// What the report says. Both must stay where they are.
void set_report(std::string_view text);
void set_report_callers(std::string_view callers);
std::string_view report_callers();
// Prints them, unless that has been done.
void print_report();
// To where reports go: standard error, or with the option kill_dialogbox standard output.
void print_line(std::string_view text);

// While one lives, a write beyond the limit on the length of files fails and doesn't end the
// process: it would be the end of the report, and of what other files still have to be given.
class FileLimitIgnored {
  public:
    FileLimitIgnored();
    ~FileLimitIgnored();
    FileLimitIgnored(const FileLimitIgnored&) = delete;
    FileLimitIgnored& operator=(const FileLimitIgnored&) = delete;

  private:
    struct sigaction before_ {};
};

// What a failing program has written so far, of its units, its handles and C's standard output.
void flush_for_report();

// Another thread reports and ends the process. Should it hang, this one does so.
[[noreturn]] void wait_for_other_report();

}  // namespace tarn::failure
