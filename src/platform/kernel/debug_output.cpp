#include "platform/kernel/debug_output.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "platform/kernel/console.h"

namespace tarn::platform {

void (*debug_listener)(const char* text) = nullptr;

void debug_output(const char* text) {
    if (debug_listener) {
        debug_listener(text);
        return;
    }
    const char* path = std::getenv("TARN_DEBUG_OUTPUT");
    if (!path || !*path) return;
    int descriptor = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (descriptor < 0) return;
    std::string line = text;
    if (line.empty() || line.back() != '\n') line.push_back('\n');
    write_descriptor(descriptor, line);
    close(descriptor);
}

}  // namespace tarn::platform
