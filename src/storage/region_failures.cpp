#include "storage/region_failures.h"

#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

#include "failure/reporter.h"
#include "frame/messages.h"
#include "frame/state.h"

namespace tarn::storage {

namespace {

// What most often stands behind it, and what nobody thinks of.
void add_limit(char* room, std::size_t size) {
    room[0] = 0;
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return;
    std::snprintf(room, size, "(address space is limited to %llu KiB, by `ulimit -v` perhaps)\n",
                  static_cast<unsigned long long>(limit.rlim_cur / 1024));
}

}  // namespace

// The status tells scripts and build systems that nothing ran, so it isn't 0.
void fail_region(const char* text) {
    failure::flush_for_report();
    const std::uint32_t flags = frame::traceback_flags();
    if ((flags & frame::tb_leaving) == 0) {
        constexpr const char* format = "%s%sFatal run-time error";
        char limit[96];
        add_limit(limit, sizeof limit);
        if ((flags & frame::tb_kill_dialogbox) != 0) {
            std::printf("%s%sFatal run-time error\n", text, limit);
            std::fflush(stdout);
        } else {
            frame::show_message(format, text, limit);
        }
    }
    frame::traceback_flags() |= frame::tb_leaving;
    _exit(1);
}

}  // namespace tarn::storage
