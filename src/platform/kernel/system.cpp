#include "platform/kernel/system.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarn::platform {
namespace {

constinit Arguments arguments;

// A preloaded library may be asked by another library's constructor before its own has run.
Arguments read_command_line() {
    auto* text = new std::string;  // kept: the vector points into it
    int descriptor = open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        char block[4096];
        for (;;) {
            ssize_t count = read(descriptor, block, sizeof block);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            text->append(block, static_cast<std::size_t>(count));
        }
        close(descriptor);
    }
    auto* values = new std::vector<char*>;
    for (std::size_t at = 0; at < text->size(); at = text->find('\0', at) + 1) {
        values->push_back(text->data() + at);
        if (text->find('\0', at) == std::string::npos) break;
    }
    int count = static_cast<int>(values->size());
    values->push_back(nullptr);
    return {count, values->data()};
}

}  // namespace

std::uint32_t version_word() {
    return system_version.major | system_version.minor << 8 | system_version.build << 16;
}

void set_process_arguments(int count, char** values) {
    arguments = {count, values};
}

Arguments process_arguments() {
    if (!arguments.values) arguments = read_command_line();
    return arguments;
}

}  // namespace tarn::platform
