#include "fio/handles/table.h"

#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

#include "failure/failure.h"
#include "fio/file/names.h"
#include "fio/file/share.h"
#include "platform/kernel/error.h"

namespace tarn::fio::handles {
namespace {

constinit State the_state;

constexpr int too_many_files_open = 116;  // the catalogue's
constexpr int disk_full = 117;

std::size_t bucket_of(Number number) {
    return static_cast<std::size_t>(number) & 255U;
}

// One to use, not yet in the table; null when numbers or storage have run out.
Handle* take_record() {
    State& s = state();
    const std::lock_guard guard(s.lock);
    if (Handle* handle = s.free) {
        s.free = handle->next;
        return handle;
    }
    if (s.next_number < 0) return nullptr;
    Handle* handle = new (std::nothrow) Handle;
    if (handle == nullptr) return nullptr;
    handle->file.buffer_size = buffer_size;
    if (!file_reserve(handle->file, buffer_size)) {
        delete handle;
        return nullptr;
    }
    handle->number = s.next_number;
    s.next_number = s.next_number == INT16_MAX ? Number{-1} : Number(s.next_number + 1);
    return handle;
}

void list(Handle& handle) {
    const std::lock_guard guard(state().lock);
    Handle*& head = state().buckets[bucket_of(handle.number)];
    handle.next = head;
    head = &handle;
}

void set_free(Handle& handle) {
    State& s = state();
    const std::lock_guard guard(s.lock);
    Handle** link = &s.buckets[bucket_of(handle.number)];
    while (*link != nullptr && *link != &handle) link = &(*link)->next;
    if (*link == nullptr) return;  // another thread was quicker
    *link = handle.next;
    handle.next = s.free;
    s.free = &handle;
}

std::uint32_t access_of(int mode) {
    std::uint32_t bits = 0;
    if ((mode & (mode_read | mode_update)) != 0) bits |= access_read;
    if ((mode & (mode_create | mode_update)) != 0) bits |= access_write;
    return bits;
}

// Makes the handle of a descriptor that nobody else owns.
Handle* wrap(int descriptor, int mode, bool shared) {
    Handle* handle = take_record();
    if (handle == nullptr) return nullptr;
    handle->mode = static_cast<std::int16_t>(mode);
    File& file = handle->file;
    file_adopt(file, descriptor, access_of(mode), false);
    file.owned = true;
    file.shared = shared;
    file.buffered = state().buffered && file.seekable && !shared;
    file.keep_tabs = false;
    // A block device tells its size by its end only.
    if (file.seekable && file.size == 0) {
        const off_t end = ::lseek(descriptor, 0, SEEK_END);
        if (end > 0) file.size = end;
        ::lseek(descriptor, file.real_position, SEEK_SET);
    }
    return handle;
}

struct Opening {
    int flags;    // of open(2)
    int access;   // 0 reads, 1 writes, 2 does both: what open_with_sharing locks for
    int sharing;  // 0x10 to 0x40, or sharing_unspecified
    int mode;     // of the record
    bool shared;
};

Number open_file(std::string_view given, const Opening& opening, int& error) {
    std::string name;
    if (!clean_name(given, name)) {
        error = error_wrong_name;
        return none;
    }
    const int flags = opening.flags | O_CLOEXEC | O_NOCTTY;
    const int descriptor = open_with_sharing(name.c_str(), flags, opening.access, opening.sharing);
    struct stat about;
    const bool folder =
        descriptor >= 0 && ::fstat(descriptor, &about) == 0 && S_ISDIR(about.st_mode);
    if (descriptor < 0 || folder) {
        error = folder ? error_wrong_mode : platform::platform_error(errno);
        if (folder) ::close(descriptor);
        return none;
    }
    Handle* handle = wrap(descriptor, opening.mode, opening.shared);
    if (handle == nullptr) {
        ::close(descriptor);
        failure::fail(too_many_files_open);
    }
    file_set_path(handle->file, full_path_name(name));
    list(*handle);
    error = 0;
    return handle->number;
}

void flush_one(Handle& handle, Lost& lost) {
    if (!handle.file.dirty) return;
    const int error = file_flush(handle.file);
    if (error == 0 || lost.error != 0) return;
    lost.error = own_number(error);
    lost.path = handle.file.path;
}

template <typename Action>
void for_each_open(Action action) {
    const std::lock_guard guard(state().lock);
    for (Handle* handle : state().buckets) {
        for (; handle != nullptr; handle = handle->next) action(*handle);
    }
}

}  // namespace

State& state() {
    return the_state;
}

int own_number(int error) {
    return error == error_disk_full ? error_short_write : error;
}

Handle* look_up(Number number) {
    const std::lock_guard guard(state().lock);
    Handle* handle = state().buckets[bucket_of(number)];
    while (handle != nullptr && handle->number != number) handle = handle->next;
    return handle;
}

Handle* look_up_for_reading(Number number, int& error) {
    Handle* handle = look_up(number);
    const bool able = handle != nullptr && (handle->mode & (mode_read | mode_update)) != 0 &&
                      handle->file.descriptor >= 0;
    error = able ? 0 : error_unknown;
    return able ? handle : nullptr;
}

Handle* look_up_for_writing(Number number, int& error, int error_if_not) {
    Handle* handle = look_up(number);
    error = 0;
    if (handle == nullptr) {
        error = error_unknown;
    } else if ((handle->mode & (mode_create | mode_update)) == 0) {
        error = error_if_not;
    } else if (handle->file.descriptor < 0) {
        error = error_unknown;
    }
    return error == 0 ? handle : nullptr;
}

Number open(std::string_view name, int mode, int& error) {
    if ((mode & mode_read) != 0) {
        return open_file(name, {O_RDONLY, 0, sharing_unspecified, mode, false}, error);
    }
    if ((mode & mode_create) != 0) {
        constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
        return open_file(name, {flags, 1, sharing_unspecified, mode, false}, error);
    }
    if ((mode & mode_update) != 0) {
        return open_file(name, {O_RDWR | O_CREAT, 2, sharing_unspecified, mode, false}, error);
    }
    error = error_wrong_mode;
    return none;
}

Number open_shared(std::string_view name, int mode, int& error) {
    constexpr int flags[] = {O_RDONLY, O_WRONLY | O_CREAT, O_RDWR | O_CREAT};
    constexpr int modes[] = {mode_read, mode_create, mode_update};
    const int access = mode & 7;
    const int sharing = mode & 0x70;
    if (access > 2 || sharing > 0x40) {
        error = error_wrong_mode;
        return none;
    }
    const bool shared = sharing != 0x10 && sharing != 0x20;
    const int locks = sharing == 0 ? sharing_unspecified : sharing;
    return open_file(name, {flags[access], access, locks, modes[access], shared}, error);
}

Number adopt(int descriptor, int mode) {
    if (::fcntl(descriptor, F_GETFD) < 0) return none;
    Handle* handle = wrap(descriptor, mode, false);
    if (handle == nullptr) return none;
    file_set_path(handle->file, {});
    list(*handle);
    return handle->number;
}

int close(Number number, bool remove) {
    Handle* handle = look_up(number);
    if (handle == nullptr) return error_unknown;
    const std::string path = handle->file.path;
    int error = 0;
    if (handle->file.descriptor >= 0) {
        if (remove) handle->file.dirty = false;
        error = own_number(file_close(handle->file));
    }
    if (remove && !path.empty() && remove_file(path.c_str()) != 0 && error == 0) {
        error = platform::platform_error(errno);
    }
    file_set_path(handle->file, {});
    set_free(*handle);
    return error;
}

int unbuffer(Number number) {
    Handle* handle = look_up(number);
    if (handle == nullptr) return error_unknown;
    const int error = own_number(file_flush(handle->file));
    handle->file.buffered = false;
    return error;
}

int keep_tabs(Number number) {
    Handle* handle = look_up(number);
    if (handle == nullptr) return error_unknown;
    handle->file.keep_tabs = true;
    return 0;
}

int descriptor_of(Number number) {
    const Handle* handle = look_up(number);
    return handle != nullptr ? handle->file.descriptor : -1;
}

bool is_repositionable(Number number) {
    const Handle* handle = look_up(number);
    return handle != nullptr && handle->file.seekable;
}

Number find(std::string_view given) {
    std::string name;
    if (!clean_name(given, name) || name.empty()) return none;
    struct stat about;
    const bool exists = ::stat(name.c_str(), &about) == 0;
    const std::string resolved = full_path_name(name);
    Number by_path = none;
    Number by_identity = none;
    for_each_open([&](const Handle& handle) {
        const File& file = handle.file;
        if (file.path == name || file.path == resolved) by_path = handle.number;
        if (exists && file.inode == about.st_ino && file.device == about.st_dev) {
            by_identity = handle.number;
        }
    });
    return by_path != none ? by_path : by_identity;
}

const std::string* path_of(Number number) {
    const Handle* handle = look_up(number);
    return handle != nullptr ? &handle->file.path : nullptr;
}

void set_buffered_default() {
    state().buffered = true;
}

void flush_all(Lost& lost) {
    for_each_open([&](Handle& handle) { flush_one(handle, lost); });
}

void finish() {
    Lost lost;
    for_each_open([&](Handle& handle) {
        flush_one(handle, lost);
        if (handle.file.descriptor >= 0) file_close(handle.file);
    });
    if (lost.error == 0) return;
    const std::string place = "    on file '" + lost.path + "'\n";
    if (lost.error == error_short_write) failure::fail(disk_full, place);
    failure::fail_text(std::string(platform::platform_error_text(lost.error)) + "\n" + place);
}

}  // namespace tarn::fio::handles
