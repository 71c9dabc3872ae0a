#include "platform/kernel/desktop.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::platform {

// In a process of its own, whose parent is gone at once: nobody has to wait for it. An error of the
// second process comes back through a pipe that its success closes.
bool start_apart(std::initializer_list<const char*> programs, const char* what) {
    int told[2];
    if (pipe2(told, O_CLOEXEC) != 0) return false;
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const pid_t opener = fork();
        if (opener == 0) {
            sigset_t none;
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            for (const char* program : programs)
                execlp(program, program, what, static_cast<char*>(nullptr));
            const int error = errno;
            if (write(told[1], &error, sizeof error) < 0) _exit(126);
        }
        _exit(opener < 0 ? 126 : 0);
    }
    close(told[1]);
    int error = child < 0 ? errno : 0;
    if (child > 0) {
        while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
        while (read(told[0], &error, sizeof error) < 0 && errno == EINTR) {
        }
    }
    close(told[0]);
    return error == 0;
}

// An argument that begins with a hyphen would be an option of the opener.
bool open_on_desktop(const char* name) {
    if (name == nullptr || *name == 0) return false;
    const std::string what = (name[0] == '-' ? "./" : "") + std::string(name);
    return start_apart({"xdg-open"}, what.c_str());
}

}  // namespace tarn::platform
