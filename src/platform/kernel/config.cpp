#include "platform/kernel/config.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

constexpr std::size_t largest_file = 1 << 20;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

bool same(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::optional<std::string> read_file(const std::string& path) {
    int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return {};
    struct stat status;
    std::optional<std::string> text;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        text.emplace();
        char block[4096];
        for (;;) {
            ssize_t count = read(descriptor, block, sizeof block);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0 || text->size() > largest_file) break;
            text->append(block, static_cast<std::size_t>(count));
        }
    }
    close(descriptor);
    return text;
}

}  // namespace

std::string config_path() {
    const char* folder = std::getenv("XDG_CONFIG_HOME");
    if (folder && *folder == '/') return std::string(folder) + "/tarnlibc/config";
    const char* home = std::getenv("HOME");
    if (!home || !*home) return {};
    return std::string(home) + "/.config/tarnlibc/config";
}

std::optional<std::string> find_config_value(std::string_view text, std::string_view key,
                                             std::string_view name) {
    bool inside = false;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#' || line.front() == ';') continue;
        if (line.front() == '[') {
            inside = line.back() == ']' && same(trimmed(line.substr(1, line.size() - 2)), key);
            continue;
        }
        std::size_t equals = line.find('=');
        if (!inside || equals == std::string_view::npos) continue;
        if (same(trimmed(line.substr(0, equals)), name)) {
            return std::string(trimmed(line.substr(equals + 1)));
        }
    }
    return {};
}

std::optional<std::string> config_value(std::string_view key, std::string_view name) {
    std::string path = config_path();
    if (path.empty()) return {};
    auto text = read_file(path);
    if (!text) return {};
    return find_config_value(*text, key, name);
}

}  // namespace tarn::platform
