#include "storage/polled_section.h"

#include <time.h>

namespace tarn::storage {

namespace {

// How often a waiter looks before it sleeps. The section is held for well under a microsecond at a
// time, so a waiter on another processor nearly always gets it without the millisecond's sleep.
constexpr int looks_before_sleep = 200;

bool comes_free(std::atomic_ref<std::int32_t> value) {
    for (int look = 0; look < looks_before_sleep; ++look) {
        if (value.load(std::memory_order_relaxed) < 0) return true;
        __builtin_ia32_pause();
    }
    return false;
}

}  // namespace

void enter_held_section(std::int32_t* counter) {
    constexpr timespec millisecond{0, 1'000'000};
    std::atomic_ref<std::int32_t> value(*counter);
    do {
        value.fetch_sub(1, std::memory_order_relaxed);
        if (!comes_free(value)) nanosleep(&millisecond, nullptr);
    } while (value.fetch_add(1, std::memory_order_acquire) + 1 > 0);
}

}  // namespace tarn::storage
