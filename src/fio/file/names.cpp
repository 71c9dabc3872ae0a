#include "fio/file/names.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "fio/file/file.h"
#include "fio/unit.h"
#include "platform/kernel/error.h"

namespace tarn::fio {
namespace {

std::string without_trailing_blanks(std::string_view name) {
    const std::size_t last = name.find_last_not_of(' ');
    return std::string(name.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

bool same_file(const std::string& a, const std::string& b) {
    struct stat x;
    struct stat y;
    return ::stat(a.c_str(), &x) == 0 && ::stat(b.c_str(), &y) == 0 && x.st_dev == y.st_dev &&
           x.st_ino == y.st_ino;
}

// Joins the parts of a path from the root. `collapse`: a ".." takes the part before it away.
std::string normalised(std::string_view path, bool collapse) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string_view part = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        if (part.empty() || part == ".") continue;
        if (collapse && part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else {
            parts.push_back(part);
        }
    }
    std::string result;
    for (const std::string_view part : parts) result.append("/").append(part);
    return result.empty() ? "/" : result;
}

std::string parent_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

struct Temporary {
    std::mutex lock;
    std::string folder;
    int last_number = 0;
};

Temporary& temporary() {
    // Never destroyed: units are closed after the program's last destructor.
    alignas(Temporary) static unsigned char storage[sizeof(Temporary)];
    static Temporary* record = nullptr;
    static std::once_flag once;
    std::call_once(once, [] { record = new (storage) Temporary; });
    return *record;
}

// Copies a file to another file system and takes the old one away.
bool move_by_copying(const char* from, const char* to) {
    const int in = ::open(from, O_RDONLY | O_CLOEXEC);
    if (in < 0) return false;
    struct stat about;
    const mode_t rights = ::fstat(in, &about) == 0 ? about.st_mode & 0777 : 0666;
    const int out = ::open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rights);
    if (out < 0) {
        const int reason = errno;
        ::close(in);
        errno = reason;
        return false;
    }
    char block[65536];
    ssize_t n = 0;
    bool good = true;
    while (good && (n = ::read(in, block, sizeof block)) != 0) {
        if (n < 0 && errno == EINTR) continue;
        good = n > 0;
        for (ssize_t done = 0; good && done < n;) {
            const ssize_t written = ::write(out, block + done, static_cast<std::size_t>(n - done));
            if (written < 0 && errno == EINTR) continue;
            good = written > 0;
            done += written;
        }
    }
    good = good && ::unlink(from) == 0;
    const int reason = errno;
    ::close(in);
    ::close(out);
    if (!good) ::unlink(to);
    errno = reason;
    return good;
}

}  // namespace

std::string current_folder() {
    char* const folder = ::getcwd(nullptr, 0);
    if (folder == nullptr) return {};
    std::string result(folder);
    std::free(folder);
    return result;
}

std::string full_path_name(std::string_view name) {
    std::string path(name);
    if (path.empty() || path.front() != '/') {
        std::string folder = current_folder();
        // From the root the name would be another file's, or one that the system refuses.
        if (folder.empty() || folder.size() + path.size() + 1 >= PATH_MAX) return path;
        path = folder.append("/").append(path);
    }
    std::string plain = normalised(path, false);
    if (plain.find("/..") == std::string::npos) return plain;
    std::string collapsed = normalised(path, true);
    if (same_file(parent_of(plain), parent_of(collapsed))) return collapsed;
    return plain;
}

bool clean_name(std::string_view given, std::string& name) {
    constexpr std::string_view fill(" \t\n\v\f\r\0", 7);
    const std::size_t last = given.find_last_not_of(fill);
    name = given.substr(0, last == std::string_view::npos ? 0 : last + 1);
    return name.find('\0') == std::string::npos;
}

int remove_file(const char* name) {
    struct stat about;
    const bool device =
        ::stat(name, &about) == 0 && (S_ISCHR(about.st_mode) || S_ISBLK(about.st_mode));
    return device ? 0 : ::unlink(name);
}

// Rights alone don't tell: a file system may have no room for a name, or take none at all.
bool is_writable_folder(const char* name) {
    struct stat about;
    if (name == nullptr || *name == '\0' || ::stat(name, &about) != 0 || !S_ISDIR(about.st_mode) ||
        ::access(name, W_OK | X_OK) != 0)
        return false;
    std::string probe(name);
    probe.append("/~~~~~~XXXXXX");
    const int descriptor = ::mkostemp(probe.data(), O_CLOEXEC);
    if (descriptor < 0) return errno == EMFILE || errno == ENFILE;
    ::close(descriptor);
    ::unlink(probe.c_str());
    return true;
}

std::string find_temporary_folder() {
    const char* const candidates[] = {std::getenv("TMPDIR"), std::getenv("TMP"),
                                      std::getenv("TEMP"), "/tmp", "/var/tmp"};
    for (const char* folder : candidates) {
        if (is_writable_folder(folder)) return folder;
    }
    return {};
}

const std::string& temporary_folder() {
    Temporary& record = temporary();
    const std::lock_guard guard(record.lock);
    if (record.folder.empty()) record.folder = find_temporary_folder();
    if (record.folder.empty()) record.folder.assign(1, '.');
    return record.folder;
}

std::string next_temporary_name() {
    constexpr int highest_number = 999999;
    Temporary& record = temporary();
    const std::lock_guard guard(record.lock);
    if (record.last_number >= highest_number) return {};
    char name[24];
    std::snprintf(name, sizeof name, "F$%06d.tmp", ++record.last_number);
    return name;
}

// The file is made here, so that no other process takes the name before it is opened.
std::string sys_createTempFilename(int& err) {
    const std::string& folder = temporary_folder();
    for (std::string name = next_temporary_name(); !name.empty(); name = next_temporary_name()) {
        std::string path = folder == "." ? std::string() : folder + "/";
        path.append(name);
        const int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        const int descriptor = ::open(path.c_str(), flags, 0600);
        if (descriptor >= 0) {
            ::close(descriptor);
            err = 0;
            return path;
        }
        if (errno != EEXIST && errno != EINTR) {
            err = platform::platform_error(errno);
            return {};
        }
    }
    errno = EEXIST;
    err = 9;
    return {};
}

std::string sys_resolvePathName(std::string_view name, int& err) {
    const std::string given = without_trailing_blanks(name);
    err = 0;
    if (given.empty()) {
        errno = ENOENT;
        err = platform::error_file_not_found;
        return {};
    }
    return full_path_name(given);
}

Unit* sys_findUnitFromFilename(std::string_view name) {
    const std::string given = without_trailing_blanks(name);
    if (given.empty()) return nullptr;
    struct stat about;
    const bool exists = ::stat(given.c_str(), &about) == 0;
    const std::string path = exists ? std::string() : full_path_name(given);
    const std::lock_guard guard(unit_list_lock());
    for (Unit* unit = UnitList_first(); unit != nullptr; unit = unit->next) {
        const File& file = unit->file;
        if (file.descriptor < 0) continue;
        if (exists ? file.inode == about.st_ino && file.device == about.st_dev && file.inode != 0
                   : file.path == path) {
            return unit;
        }
    }
    return nullptr;
}

bool sys_fileExists(std::string_view name) {
    struct stat about;
    return ::stat(without_trailing_blanks(name).c_str(), &about) == 0 && !S_ISDIR(about.st_mode);
}

void sys_deleteFile(std::string_view name, int& err) {
    const int result = remove_file(without_trailing_blanks(name).c_str());
    err = result == 0 ? 0 : platform::platform_error(errno);
}

// A file that has the new name already stays as it is.
void sys_renameFile(std::string_view old_name, std::string_view new_name, int& err) {
    const std::string from = without_trailing_blanks(old_name);
    const std::string to = without_trailing_blanks(new_name);
    err = 0;
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
    if (errno == EXDEV && move_by_copying(from.c_str(), to.c_str())) return;
    // Not every file system knows how to rename without replacing.
    if (errno == EINVAL || errno == ENOSYS) {
        if (::access(to.c_str(), F_OK) == 0) {
            errno = EEXIST;
        } else if (::rename(from.c_str(), to.c_str()) == 0) {
            return;
        }
    }
    err = platform::platform_error(errno);
}

}  // namespace tarn::fio
