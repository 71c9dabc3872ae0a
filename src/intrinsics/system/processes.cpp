#include "intrinsics/system/processes.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fio/file/file.h"
#include "fio/file/names.h"
#include "fio/handles/handles.h"
#include "fio/unit.h"
#include "frame/main_arguments.h"
#include "frame/state.h"

namespace tarn::intrinsics {
namespace {

// Programs that were started without a wait. Each stays in the system's table until somebody asks
// how it ended, which is done when the next one starts.
struct State {
    std::mutex lock;
    std::vector<pid_t>* running = nullptr;  // never destroyed: programs start others at their end
};
constinit State state;

void collect_ended() {
    if (state.running == nullptr) return;
    auto ended = [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; };
    std::vector<pid_t>& list = *state.running;
    list.erase(std::remove_if(list.begin(), list.end(), ended), list.end());
}

void remember(pid_t process) {
    const std::lock_guard guard(state.lock);
    collect_ended();
    if (state.running == nullptr) state.running = new std::vector<pid_t>;
    state.running->push_back(process);
}

void write_out_everything() {
    frame::ensure_up();
    fio::flush_all_units();
    fio::flush_console_output();
    fio::handles::Lost lost;
    fio::handles::flush_all(lost);
    std::fflush(stdout);
}

int exit_code(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) return spawn_failed;
    }
    constexpr int ended_by_signal = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : ended_by_signal + WTERMSIG(status);
}

bool is_quoted(char c) {
    return c == '"' || c == '\'' || c == '\\';
}

}  // namespace

std::vector<std::string> split_words(std::string_view text) {
    std::vector<std::string> words;
    bool inside = false;  // a word, perhaps an empty one in quotation marks
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote == 0 && (c == ' ' || c == '\t')) {
            inside = false;
            continue;
        }
        if (!inside) words.emplace_back();
        inside = true;
        if (c == '\\' && quote != '\'' && i + 1 < text.size() && is_quoted(text[i + 1])) {
            words.back().push_back(text[++i]);
        } else if (quote == 0 ? c == '"' || c == '\'' : c == quote) {
            quote = quote == 0 ? c : 0;
        } else {
            words.back().push_back(c);
        }
    }
    return words;
}

int spawn(Wait wait, std::string_view program, std::string_view arguments) {
    std::string command;
    std::string rest;
    if (!fio::clean_name(program, command) || !fio::clean_name(arguments, rest)) {
        errno = EINVAL;
        return spawn_failed;
    }
    std::vector<std::string> words;
    if (!command.empty() && ::access(command.c_str(), X_OK) == 0) {
        words.push_back(command);
    } else {
        words = split_words(command);
    }
    for (std::string& word : split_words(rest)) words.push_back(std::move(word));
    if (words.empty()) {
        errno = ENOENT;
        return nothing_to_spawn;
    }

    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    write_out_everything();
    pid_t process = 0;
    const std::string file = frame::search_program(words[0]);
    errno = file.empty()
                ? ENOENT
                : ::posix_spawn(&process, file.c_str(), nullptr, nullptr, pointers.data(), environ);
    if (errno != 0) return spawn_failed;
    if (wait == Wait::for_end) return exit_code(process);
    remember(process);
    return 0;
}

int run_command(std::string_view given) {
    return run_by_shell(given) != -1 ? 0 : errno;
}

int run_by_shell(std::string_view given) {
    std::string command;
    if (!fio::clean_name(given, command)) {
        errno = EINVAL;
        return -1;
    }
    write_out_everything();
    return std::system(command.c_str());
}

bool start_by_shell(std::string_view given) {
    std::string command;
    if (!fio::clean_name(given, command)) {
        errno = EINVAL;
        return false;
    }
    write_out_everything();
    const char* const words[] = {"sh", "-c", command.c_str(), nullptr};
    pid_t process = 0;
    errno = ::posix_spawn(&process, "/bin/sh", nullptr, nullptr, const_cast<char* const*>(words),
                          environ);
    if (errno != 0) return false;
    remember(process);
    return true;
}

}  // namespace tarn::intrinsics
