#include "platform/kernel/other_thread.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>

namespace tarn::platform {
namespace {

enum class Stage : int { none, offered, taken, done };

struct Order {
    std::atomic<Stage> stage{Stage::none};
    void (*routine)(void* data) = nullptr;
    void* data = nullptr;
};
constinit Order order;

void on_order(int) {
    const int kept = errno;
    Stage expected = Stage::offered;
    if (order.stage.compare_exchange_strong(expected, Stage::taken)) {
        order.routine(order.data);
        order.stage = Stage::done;
    }
    errno = kept;
}

void nap() {
    constexpr long ten_milliseconds = 10'000'000;
    const timespec time = {0, ten_milliseconds};
    nanosleep(&time, nullptr);
}

}  // namespace

bool run_on_thread(pthread_t thread, unsigned seconds, void (*routine)(void* data), void* data) {
    // The last of those that the system has no use for; a program's own handler comes back after.
    const int number = SIGRTMAX;
    struct sigaction ours = {};
    struct sigaction before;
    ours.sa_handler = on_order;
    ours.sa_flags = SA_ONSTACK;
    if (sigaction(number, &ours, &before) != 0) return false;
    order.routine = routine;
    order.data = data;
    order.stage = Stage::offered;
    bool taken = pthread_kill(thread, number) == 0;
    for (unsigned naps = 0; taken && order.stage == Stage::offered; ++naps) {
        constexpr unsigned naps_in_second = 100;
        taken = naps < seconds * naps_in_second;
        if (taken) nap();
    }
    Stage expected = Stage::offered;
    if (!taken && !order.stage.compare_exchange_strong(expected, Stage::none)) taken = true;
    while (taken && order.stage != Stage::done) nap();
    order.stage = Stage::none;
    // One that is still on its way finds nothing to do.
    if (taken) sigaction(number, &before, nullptr);
    return taken;
}

}  // namespace tarn::platform
