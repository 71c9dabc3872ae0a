#include "platform/kernel/config.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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

namespace {

bool heads(std::string_view line, std::string_view key) {
    return line.size() > 2 && line.front() == '[' && line.back() == ']' &&
           same(trimmed(line.substr(1, line.size() - 2)), key);
}

// Where the section ends, its blank lines left out; npos when there is none.
std::size_t end_of_section(const std::vector<std::string>& lines, std::string_view key) {
    std::size_t end = std::string::npos;
    bool inside = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = trimmed(lines[i]);
        if (!line.empty() && line.front() == '[') inside = heads(line, key);
        if (inside && !line.empty()) end = i + 1;
    }
    return end;
}

void put_value(std::vector<std::string>& lines, const ConfigValue& value) {
    const std::string fresh = value.name + "=" + value.value;
    bool inside = false;
    for (std::string& text : lines) {
        const std::string_view line = trimmed(text);
        if (!line.empty() && line.front() == '[') inside = heads(line, value.key);
        const std::size_t equals = line.find('=');
        if (!inside || equals == std::string_view::npos || line.front() == '#' ||
            line.front() == ';' || !same(trimmed(line.substr(0, equals)), value.name))
            continue;
        text = fresh;
        return;
    }
    std::size_t at = end_of_section(lines, value.key);
    if (at == std::string::npos) {
        if (!lines.empty()) lines.emplace_back();
        lines.push_back("[" + value.key + "]");
        at = lines.size();
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), fresh);
}

bool make_folder_of(const std::string& path) {
    for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        if (mkdir(path.substr(0, at).c_str(), 0777) != 0 && errno != EEXIST) return false;
    return true;
}

bool write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace

std::string with_config_values(std::string_view text, const std::vector<ConfigValue>& values) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    for (const ConfigValue& value : values) put_value(lines, value);
    std::string all;
    for (const std::string& line : lines) all += line + "\n";
    return all;
}

bool store_config_values(const std::vector<ConfigValue>& values) {
    const std::string path = config_path();
    if (path.empty() || !make_folder_of(path)) return false;
    const std::string text = with_config_values(read_file(path).value_or(""), values);
    if (text.size() > largest_file) return false;
    std::string fresh = path + ".XXXXXX";
    const int descriptor = mkostemp(fresh.data(), O_CLOEXEC);
    if (descriptor < 0) return false;
    bool written = write_all(descriptor, text);
    written = close(descriptor) == 0 && written;
    if (written && rename(fresh.c_str(), path.c_str()) == 0) return true;
    unlink(fresh.c_str());
    return false;
}

}  // namespace tarn::platform
