#include "failure/reporter.h"

#include <atomic>
#include <cstdio>
#include <pthread.h>
#include <unistd.h>

#include "failure/failure.h"
#include "frame/state.h"
#include "platform/kernel/console.h"

namespace tarn::failure {
namespace {

struct Reporter {
    std::atomic<bool> taken{false};
    std::atomic<pthread_t> thread{};
    std::atomic<bool> printed{false};
    std::atomic<bool> being_read{false};
    std::string_view text;
    std::string_view callers;
};
constinit Reporter reporter;

constexpr unsigned other_thread_patience = 10;  // seconds

// A C program's standard output is flushed too, unless another thread is inside it: the report
// must come out in any case.
void flush_c_output() {
    if (ftrylockfile(stdout) != 0) return;
    fflush_unlocked(stdout);
    funlockfile(stdout);
}

}  // namespace

Claim claim_report() {
    if (!reporter.taken.exchange(true)) {
        reporter.thread = pthread_self();
        return Claim::first;
    }
    return pthread_equal(reporter.thread, pthread_self()) ? Claim::again : Claim::other;
}

bool is_reporting() {
    return reporter.taken.load(std::memory_order_relaxed) &&
           pthread_equal(reporter.thread, pthread_self());
}

ReportingHere::ReportingHere() : before_(reporter.thread.exchange(pthread_self())) {}

ReportingHere::~ReportingHere() {
    reporter.thread = before_;
}

void set_being_read(bool read) {
    reporter.being_read = read;
}

void release_report() {
    reporter.being_read = false;
    reporter.text = reporter.callers = {};
    reporter.printed = false;
    reporter.taken = false;
}

void set_report(std::string_view text) {
    reporter.text = text;
}

void set_report_callers(std::string_view callers) {
    reporter.callers = callers;
}

void print_line(std::string_view text) {
    const bool to_output = (frame::traceback_flags() & frame::tb_kill_dialogbox) != 0;
    platform::write_descriptor(to_output ? STDOUT_FILENO : STDERR_FILENO, text);
}

void print_report() {
    if (reporter.printed.exchange(true)) return;
    print_line(reporter.text);
    print_line(reporter.callers);
}

std::string_view report_callers() {
    return reporter.callers;
}

FileLimitIgnored::FileLimitIgnored() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignore, &before_);
}

FileLimitIgnored::~FileLimitIgnored() {
    sigaction(SIGXFSZ, &before_, nullptr);
}

void flush_for_report() {
    if (hooks().flush_everything) hooks().flush_everything();
    flush_c_output();
}

void wait_for_other_report() {
    do {
        sleep(other_thread_patience);
    } while (reporter.being_read);
    print_report();
    _exit(1);
}

}  // namespace tarn::failure
