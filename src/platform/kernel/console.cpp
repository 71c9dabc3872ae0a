#include "platform/kernel/console.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace tarn::platform {

ConsoleHooks& console_hooks() {
    static constinit ConsoleHooks hooks;
    return hooks;
}

bool write_descriptor(int descriptor, std::string_view text) {
    while (!text.empty()) {
        ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            // Somebody made the descriptor non-blocking; the text still has to get out.
            pollfd ready{descriptor, POLLOUT, 0};
            if (poll(&ready, 1, -1) < 0 && errno != EINTR) return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool write_output(std::string_view text) {
    if (console_hooks().flush_output) console_hooks().flush_output();
    return write_descriptor(STDOUT_FILENO, text);
}

bool write_error_output(std::string_view text) {
    return write_descriptor(STDERR_FILENO, text);
}

bool read_input_line(std::string& line) {
    line.clear();
    if (console_hooks().read_line) return console_hooks().read_line(line) >= 0;
    for (;;) {
        char c;
        ssize_t count = read(STDIN_FILENO, &c, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return !line.empty();
        if (c == '\n') break;
        line.push_back(c);
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

}  // namespace tarn::platform
