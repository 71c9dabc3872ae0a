#include "intrinsics/system/file_list.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

#include "fio/file/names.h"

namespace tarn::intrinsics {
namespace {

struct Parts {
    std::string folder;  // as given, or "."
    std::string last;
};

Parts split(const std::string& pattern) {
    const std::size_t slash = pattern.rfind('/');
    if (slash == std::string::npos) return {".", pattern};
    return {slash == 0 ? "/" : pattern.substr(0, slash), pattern.substr(slash + 1)};
}

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool is_listed(std::string_view pattern, std::string_view name) {
    if (name == "." || name == "..") return false;
    if (name.front() == '.' && pattern.front() != '.') return false;
    return pattern == "*.*" || matches(pattern, name);
}

// Calls `take` with each name until it gives false.
template <typename Take>
void for_each_match(const Parts& parts, Take take) {
    if (parts.last.empty()) return;
    if (!has_wildcard(parts.last)) {
        struct stat about;
        const std::string path = parts.folder + "/" + parts.last;
        if (::lstat(path.c_str(), &about) == 0) take(parts.last);
        return;
    }
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(parts.folder.c_str()));
    if (folder == nullptr) return;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (is_listed(parts.last, entry->d_name) && !take(entry->d_name)) return;
    }
}

}  // namespace

bool has_wildcard(std::string_view pattern) {
    return pattern.find_first_of("*?") != std::string_view::npos;
}

// Goes back to the last star only: whatever an earlier one could take, the last one can.
bool matches(std::string_view pattern, std::string_view name) {
    std::size_t p = 0;
    std::size_t n = 0;
    std::size_t star = std::string_view::npos;
    std::size_t taken = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            taken = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++taken;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

bool matches_anything(std::string_view pattern) {
    bool found = false;
    for_each_match(split(std::string(pattern)), [&](std::string_view) {
        found = true;
        return false;
    });
    return found;
}

std::vector<ListedFile> list_files(std::string_view given, std::int64_t maximum) {
    std::string pattern;
    std::vector<ListedFile> list;
    if (maximum <= 0 || !fio::clean_name(given, pattern)) return list;
    const Parts parts = split(pattern);
    std::string folder = fio::full_path_name(parts.folder);
    if (folder.back() != '/') folder.push_back('/');
    std::vector<std::string> names;
    for_each_match(parts, [&](std::string_view name) {
        names.emplace_back(name);
        return true;
    });
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        ListedFile file;
        file.path = folder + name;
        if (file_status(file.path, file.status) != 0) continue;
        list.push_back(std::move(file));
        if (static_cast<std::int64_t>(list.size()) == maximum) break;
    }
    return list;
}

DateWords date_words(std::int64_t seconds) {
    constexpr int first_year = 1980 - 1900;
    constexpr int last_year = 2107 - 1900;
    const std::time_t time = seconds;
    std::tm parts = {};
    if (::localtime_r(&time, &parts) == nullptr || parts.tm_year < first_year ||
        parts.tm_year > last_year) {
        errno = EINVAL;
        return {};
    }
    const int date = (parts.tm_year - first_year) << 9 | (parts.tm_mon + 1) << 5 | parts.tm_mday;
    const int clock = parts.tm_hour << 11 | parts.tm_min << 5 | parts.tm_sec / 2;
    return {static_cast<std::uint16_t>(date), static_cast<std::uint16_t>(clock)};
}

}  // namespace tarn::intrinsics
