#include "intrinsics/system/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fio/file/file.h"
#include "fio/file/names.h"
#include "intrinsics/system/file_list.h"
#include "platform/kernel/error.h"

namespace tarn::intrinsics {
namespace {

constexpr int error_no_names_left = 9;
constexpr int error_not_supported = 50;
constexpr int error_wrong_name = 123;

// Runs a system call that takes a name; 0 or errno.
template <typename Call>
int with_name(std::string_view given, Call call) {
    std::string name;
    if (!fio::clean_name(given, name)) return EINVAL;
    return call(name.c_str()) == 0 ? 0 : errno;
}

std::int64_t seconds(const statx_timestamp& time) {
    return time.tv_sec;
}

bool is_hidden(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.size() > 1 && name.front() == '.' && name != "..";
}

std::uint32_t attributes_of(std::string_view path, unsigned mode) {
    std::uint32_t bits = 0;
    if ((mode & 0222U) == 0) bits |= attribute_read_only;
    if (is_hidden(path)) bits |= attribute_hidden;
    if (S_ISDIR(mode)) bits |= attribute_folder;
    return bits != 0 ? bits : attribute_normal;
}

}  // namespace

std::int32_t fit_32_bits(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

bool file_exists(std::string_view given) {
    std::string name;
    if (!fio::clean_name(given, name)) return false;
    if (::access(name.c_str(), F_OK) == 0) return true;
    return errno == ENOENT && has_wildcard(name) && matches_anything(name);
}

int erase_file(std::string_view name) {
    return with_name(name, [](const char* path) { return std::remove(path); });
}

int rename_file(std::string_view given_from, std::string_view given_to) {
    std::string from;
    std::string to;
    if (!fio::clean_name(given_from, from) || !fio::clean_name(given_to, to)) return EINVAL;
    int error = 0;
    fio::sys_renameFile(from, to, error);
    return error == 0 ? 0 : errno;
}

int make_folder(std::string_view name) {
    constexpr mode_t rights = 0777;
    return with_name(name, [](const char* path) { return ::mkdir(path, rights); });
}

int enter_folder(std::string_view name) {
    return with_name(name, [](const char* path) { return ::chdir(path); });
}

std::string current_folder() {
    return fio::current_folder();
}

bool is_writable_directory(std::string_view given) {
    std::string name;
    return fio::clean_name(given, name) && fio::is_writable_folder(name.c_str());
}

int file_status(std::string_view given, FileStatus& status) {
    status = {};
    std::string name;
    if (!fio::clean_name(given, name)) return error_wrong_name;
    struct statx about = {};
    constexpr unsigned wanted = STATX_BASIC_STATS | STATX_BTIME;
    if (::statx(AT_FDCWD, name.c_str(), 0, wanted, &about) != 0) {
        return platform::platform_error(errno);
    }
    const bool born = (about.stx_mask & STATX_BTIME) != 0;
    status.attributes = attributes_of(name, about.stx_mode);
    status.size = static_cast<std::int64_t>(about.stx_size);
    status.created = seconds(born ? about.stx_btime : about.stx_mtime);
    status.accessed = seconds(about.stx_atime);
    status.written = seconds(about.stx_mtime);
    return 0;
}

int set_file_attributes(std::string_view given, std::uint32_t attributes) {
    std::string name;
    if (!fio::clean_name(given, name)) return error_wrong_name;
    struct stat about;
    if (::stat(name.c_str(), &about) != 0) return platform::platform_error(errno);
    constexpr std::uint32_t free = attribute_read_only | attribute_archive | attribute_normal;
    if ((attributes & ~free & ~attributes_of(name, about.st_mode)) != 0) {
        return error_not_supported;
    }
    const bool read_only = (attributes & attribute_read_only) != 0;
    if (read_only == ((about.st_mode & 0222U) == 0)) return 0;
    const mode_t rights = read_only ? about.st_mode & 07555U
                                    : (about.st_mode & 07777U) | static_cast<mode_t>(S_IWUSR);
    return ::chmod(name.c_str(), rights) == 0 ? 0 : platform::platform_error(errno);
}

std::string full_path(std::string_view given) {
    std::string name;
    if (!fio::clean_name(given, name) || name.empty()) return {};
    return fio::full_path_name(name);
}

std::string local_name(std::string_view given) {
    std::string path = full_path(given);
    std::string folder = current_folder();
    if (folder.empty()) return path;
    if (path == folder) return ".";
    if (folder != "/") folder.push_back('/');
    return path.compare(0, folder.size(), folder) == 0 ? path.substr(folder.size()) : path;
}

std::string new_temporary_name(Place place, int& error) {
    std::string folder;
    if (place == Place::temporary_folder && fio::temporary_folder() != ".") {
        folder = fio::temporary_folder() + "/";
    }
    for (std::string name = fio::next_temporary_name(); !name.empty();
         name = fio::next_temporary_name()) {
        std::string path = folder + name;
        // A link that leads nowhere has the name, too.
        struct stat about;
        if (::lstat(path.c_str(), &about) == 0) continue;
        errno = error = 0;
        return path;
    }
    error = error_no_names_left;
    return {};
}

std::string temporary_directory() {
    return fio::find_temporary_folder();
}

}  // namespace tarn::intrinsics
