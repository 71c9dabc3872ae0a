// Who the system is, as programs ask for it, and what it gave the process at its start.
#pragma once

#include <cstdint>

namespace tarn::platform {

// The version word: lowest byte major, next byte minor, high half the build. The top bit, which
// marked the systems before NT, is never set.
struct SystemVersion {
    std::uint32_t platform;
    std::uint32_t major;
    std::uint32_t minor;
    std::uint32_t build;
};
inline constexpr SystemVersion system_version{2, 10, 0, 19045};
std::uint32_t version_word();

// The kernel's own argument vector, whoever's `main` runs.
struct Arguments {
    int count = 0;
    char** values = nullptr;
};
// Called by the library's constructor, to which the C library hands them.
void set_process_arguments(int count, char** values);
// They, or those of /proc/self/cmdline when nobody has told us yet.
Arguments process_arguments();

}  // namespace tarn::platform
