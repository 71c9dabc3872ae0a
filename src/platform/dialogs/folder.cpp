#include "platform/dialogs/folder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fnmatch.h>
#include <memory>
#include <pwd.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

char folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The run of digits at the start of a text, without the zeros before them.
std::string_view take_number(std::string_view& text) {
    std::size_t end = 0;
    while (end < text.size() && is_digit(text[end])) ++end;
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    while (number.size() > 1 && number.front() == '0') number.remove_prefix(1);
    return number;
}

// "run9" stands before "run10".
bool comes_before(std::string_view a, std::string_view b) {
    const std::string_view whole_a = a, whole_b = b;
    while (!a.empty() && !b.empty()) {
        if (is_digit(a.front()) && is_digit(b.front())) {
            const std::string_view left = take_number(a), right = take_number(b);
            if (left.size() != right.size()) return left.size() < right.size();
            if (left != right) return left < right;
            continue;
        }
        const char left = folded(a.front()), right = folded(b.front());
        if (left != right)
            return static_cast<unsigned char>(left) < static_cast<unsigned char>(right);
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    if (a.empty() != b.empty()) return a.empty();
    return whole_a < whole_b;
}

// A link counts as what it leads to.
bool entry_is_folder(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_DIR;
    struct stat facts {};
    return fstatat(folder, entry.d_name, &facts, 0) == 0 && S_ISDIR(facts.st_mode);
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

}  // namespace

bool read_folder(const std::string& path, std::string_view patterns, bool hidden,
                 std::vector<FolderEntry>& entries) {
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
    if (!folder) return false;
    entries.clear();
    while (const dirent* entry = readdir(folder.get())) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == ".." || (!hidden && name.front() == '.')) continue;
        const bool is_one = entry_is_folder(dirfd(folder.get()), *entry);
        if (is_one || fits_patterns(name, patterns)) entries.push_back({std::string(name), is_one});
    }
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return a.folder != b.folder ? a.folder : comes_before(a.name, b.name);
    });
    return true;
}

bool fits_patterns(std::string_view name, std::string_view patterns) {
    if (trimmed(patterns).empty()) return true;
    const std::string text(name);
    while (!patterns.empty()) {
        const std::size_t end = std::min(patterns.find(';'), patterns.size());
        const std::string pattern(trimmed(patterns.substr(0, end)));
        patterns.remove_prefix(std::min(end + 1, patterns.size()));
        if (pattern.empty()) continue;
        if (pattern == "*.*" || fnmatch(pattern.c_str(), text.c_str(), FNM_CASEFOLD) == 0)
            return true;
    }
    return false;
}

bool has_wildcard(std::string_view name) {
    return name.find_first_of("*?") != std::string_view::npos;
}

std::string absolute_path(std::string_view folder, std::string_view typed) {
    std::string whole;
    if (typed == "~" || typed.starts_with("~/")) {
        whole = home_folder();
        whole += typed.substr(1);
    } else if (typed.starts_with('/')) {
        whole = typed;
    } else {
        whole = folder;
        whole.append("/").append(typed);
    }
    std::string result;
    for (std::string_view left = whole; !left.empty();) {
        const std::size_t end = std::min(left.find('/'), left.size());
        const std::string_view part = left.substr(0, end);
        left.remove_prefix(std::min(end + 1, left.size()));
        if (part.empty() || part == ".") continue;
        if (part == "..")
            result.resize(result.empty() ? 0 : result.rfind('/'));
        else
            result.append("/").append(part);
    }
    return result.empty() ? "/" : result;
}

std::string folder_of(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return {};
    return slash == 0 ? "/" : std::string(path.substr(0, slash));
}

std::string name_of(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::vector<std::string> split_names(std::string_view typed) {
    typed = trimmed(typed);
    std::vector<std::string> names;
    if (!typed.starts_with('"')) {
        if (!typed.empty()) names.emplace_back(typed);
        return names;
    }
    for (std::size_t at = typed.find('"'); at != std::string_view::npos;) {
        const std::size_t end = std::min(typed.find('"', at + 1), typed.size());
        const std::string_view name = typed.substr(at + 1, end - at - 1);
        if (!name.empty()) names.emplace_back(name);
        at = end < typed.size() ? typed.find('"', end + 1) : std::string_view::npos;
    }
    return names;
}

std::string home_folder() {
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir && *user->pw_dir == '/' ? user->pw_dir : "/";
}

bool is_folder(const std::string& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

}  // namespace tarn::platform
