#include "platform/kernel/control_events.h"

#include <cerrno>
#include <signal.h>

#include "platform/kernel/fault.h"

namespace tarn::platform {
namespace {

int (*control_handler)(int event) = nullptr;

void on_signal(int number, siginfo_t* info, void* context) {
    int saved = errno;
    bool handled = control_handler(number == SIGINT ? ctrl_c_event : ctrl_break_event) != 0;
    if (!handled) pass_on_signal(number, info, context);
    errno = saved;
}

void take_over(int number) {
    struct sigaction present;
    if (sigaction(number, nullptr, &present) != 0) return;
    const bool is_default = (present.sa_flags & SA_SIGINFO) == 0 && present.sa_handler == SIG_DFL;
    if (!is_default && !is_watched(number)) return;
    struct sigaction ours = {};
    ours.sa_sigaction = on_signal;
    ours.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK;
    sigemptyset(&ours.sa_mask);
    sigaction(number, &ours, nullptr);
}

}  // namespace

void set_control_handler(int (*handler)(int event)) {
    bool first = !control_handler;
    control_handler = handler;
    if (!first) return;
    take_over(SIGINT);
    take_over(SIGQUIT);
}

}  // namespace tarn::platform
