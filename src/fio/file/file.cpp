#include "fio/file/file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "fio/file/names.h"
#include "fio/file/pipe_guard.h"
#include "fio/file/share.h"
#include "fio/unit.h"
#include "platform/kernel/error.h"
#include "storage/regions.h"

namespace tarn::fio {
namespace {

// A failure that this layer finds itself gets the errno value that belongs to its number.
int own_error(int number) {
    errno = number == error_disk_full ? ENOSPC : number == error_no_handle ? EBADF : EACCES;
    return number;
}

int last_error() {
    const int number = platform::platform_error(errno);
    return number != 0 ? number : 31;
}

// A descriptor inherited from another program may be in non-blocking mode.
bool wait_until_ready(int descriptor, short events) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd request{descriptor, events, 0};
    return poll(&request, 1, -1) >= 0 || errno == EINTR;
}

// Writes all of it; the number of bytes that went out. Short of `count`, errno tells why.
std::size_t write_all(const File& file, const char* bytes, std::size_t count) {
    if (file.window != nullptr) {
        window_stream().write(file.window, bytes, count);
        return count;
    }
    const int descriptor = file.descriptor;
    const PipeGuard guard(!file.seekable);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t n = ::write(descriptor, bytes + done, count - done);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n == 0) {
            errno = ENOSPC;
            break;
        } else if (!wait_until_ready(descriptor, POLLOUT)) {
            break;
        }
    }
    return done;
}

// One read; 0 at the end of the file, -1 on failure.
ssize_t read_some(const File& file, char* bytes, std::size_t count) {
    if (file.window != nullptr) return window_stream().read(file.window, bytes, count);
    for (bool grown = false;;) {
        const ssize_t n = ::read(file.descriptor, bytes, count);
        // The bytes may lie in storage of which the system hasn't given all pages yet.
        if (n < 0 && errno == EFAULT && !std::exchange(grown, true) &&
            storage::grow_for_system(bytes, count))
            continue;
        if (n >= 0 || !wait_until_ready(file.descriptor, POLLIN)) return n;
    }
}

// Puts the system's file pointer at `target`; files without a position stay where they are.
bool move_pointer(File& file, std::int64_t target) {
    if (!file.seekable || file.real_position == target) {
        file.real_position = target;
        return true;
    }
    if (::lseek(file.descriptor, target, SEEK_SET) < 0) return false;
    file.real_position = target;
    return true;
}

void forget_buffer(File& file) {
    file.read_index = file.write_index = file.data_count = 0;
    file.dirty = false;
}

// No commit to the disk follows, for shared files either: what the system holds is what every other
// process sees.
//
// Writes straight from memory at the real position and moves all positions behind it.
int write_through(File& file, const char* bytes, std::size_t count) {
    const std::size_t done = write_all(file, bytes, count);
    const int reason = errno;
    file.real_position += static_cast<std::int64_t>(done);
    if (file.append && file.seekable) {
        const off_t end = ::lseek(file.descriptor, 0, SEEK_CUR);
        if (end >= 0) file.real_position = end;
    }
    errno = reason;
    file.logical_position = file.buffer_position = file.real_position;
    file.size = std::max(file.size, file.real_position);
    return done == count ? 0 : last_error();
}

int open_flags(int access, bool create) {
    constexpr int common = O_CLOEXEC | O_NOCTTY;
    switch (access) {
        case 0:
            return common | O_RDONLY | (create ? O_CREAT | O_TRUNC : 0);
        case 1:
            return common | O_WRONLY | O_CREAT | (create ? O_TRUNC : 0);
        default:
            return common | O_RDWR | O_CREAT;
    }
}

std::uint32_t access_bits_of(int access) {
    constexpr std::uint32_t bits[] = {access_read, access_write, access_read | access_write};
    return bits[access];
}

}  // namespace

WindowStream& window_stream() {
    static constinit WindowStream stream;
    return stream;
}

void file_adopt(File& file, int descriptor, std::uint32_t access_bits, bool owned) {
    struct stat about = {};
    const bool known = ::fstat(descriptor, &about) == 0;
    file.access_bits = access_bits;
    file.owned = owned;
    file.window = nullptr;
    file.seekable = known && (S_ISREG(about.st_mode) || S_ISBLK(about.st_mode));
    file.size = known && S_ISREG(about.st_mode) ? about.st_size : 0;
    // A file that is no terminal is no error: a program may be about to ask what its last one was.
    const int reason = errno;
    file.terminal = !file.seekable && ::isatty(descriptor) == 1;
    errno = reason;
    file.undecided_pipe = false;
    forget_buffer(file);
    // A descriptor that another program opened may stand anywhere.
    const off_t here = file.seekable && !owned ? ::lseek(descriptor, 0, SEEK_CUR) : 0;
    file.real_position = std::max<off_t>(here, 0);
    file.logical_position = file.buffer_position = file.real_position;
    file.stream_read_position = file.stream_write_position = file.real_position + 1;
    // Other threads look for files by what follows.
    const std::lock_guard guard(unit_list_lock());
    file.descriptor = descriptor;
    file.device = about.st_dev;
    file.inode = about.st_ino;
}

void file_set_path(File& file, std::string path) {
    const std::lock_guard guard(unit_list_lock());
    file.path.swap(path);
}

bool file_reserve(File& file, std::size_t capacity) {
    if (file.buffer != nullptr && file.capacity >= capacity) return true;
    void* buffer = std::realloc(file.buffer, capacity);
    if (buffer == nullptr) return false;
    file.buffer = static_cast<char*>(buffer);
    file.capacity = capacity;
    return true;
}

void file_set_append(File& file, bool append) {
    if (file.append == append) return;
    const int flags = ::fcntl(file.descriptor, F_GETFL);
    if (flags < 0) return;
    const int wanted = append ? flags | O_APPEND : flags & ~O_APPEND;
    if (::fcntl(file.descriptor, F_SETFL, wanted) == 0) file.append = append;
}

int file_flush(File& file) {
    if (!file.dirty) return 0;
    if (file.descriptor < 0) return own_error(error_no_handle);
    file.logical_position = file.buffer_position;
    file.dirty = false;
    if (!file.append && !move_pointer(file, file.buffer_position)) {
        const int number = last_error();
        forget_buffer(file);
        return number;
    }
    const std::size_t count = file.data_count;
    const std::int64_t start = file.buffer_position;
    const int err = write_through(file, file.buffer, count);
    // The bytes stay readable in the buffer, unless they ended up somewhere else.
    const bool whole = err == 0 && (!file.append || !file.seekable);
    file.buffer_position = whole ? start : file.real_position;
    file.data_count = file.read_index = whole ? count : 0;
    file.write_index = 0;
    return err;
}

void file_sync(File& file) {
    if (!move_pointer(file, file.logical_position)) {
        const off_t here = ::lseek(file.descriptor, 0, SEEK_CUR);
        if (here >= 0) file.real_position = file.logical_position = here;
    }
    forget_buffer(file);
    file.buffer_position = file.logical_position;
    file.position_state = place_unknown;
}

void file_seek(File& file, std::int64_t target, int& err) {
    err = file_flush(file);
    if (err != 0 || !file.seekable) return;
    file.position_state = place_unknown;
    if (target < 0) {
        errno = EINVAL;
        err = last_error();
        return;
    }
    const std::int64_t end = file.buffer_position + static_cast<std::int64_t>(file.data_count);
    // At the very end of what is buffered the next transfer fills or starts a buffer anyway.
    const bool at_end = file.read_index == file.data_count && target == file.real_position;
    if (file.buffered && !at_end && target >= file.buffer_position && target <= end) {
        file.logical_position = target;
        file.read_index = static_cast<std::size_t>(target - file.buffer_position);
        file.write_index = 0;
        return;
    }
    if (!move_pointer(file, target)) {
        err = last_error();
        return;
    }
    file.logical_position = file.buffer_position = target;
    forget_buffer(file);
}

void file_seek_within(File& file, std::int64_t target, int& err) {
    err = file_flush(file);
    if (err != 0 || !file.seekable) return;
    if (!file.buffered) {
        struct stat about;
        if (::fstat(file.descriptor, &about) == 0 && S_ISREG(about.st_mode)) {
            file.size = about.st_size;
        }
    }
    file_seek(file, std::min(target, file.size), err);
}

std::int64_t file_position(File& file, int& err) {
    err = 0;
    if (file.buffered || !file.seekable) return file.logical_position;
    const off_t here = ::lseek(file.descriptor, 0, SEEK_CUR);
    if (here < 0) {
        err = last_error();
    } else {
        file.real_position = file.logical_position = here;
    }
    return file.logical_position;
}

void file_seek_to_end(File& file, int& err) {
    err = file_flush(file);
    if (err != 0 || !file.seekable) return;
    const off_t end = ::lseek(file.descriptor, 0, SEEK_END);
    if (end < 0) {
        err = last_error();
        return;
    }
    file.logical_position = file.real_position = file.buffer_position = end;
    file.size = end;
    forget_buffer(file);
    file.position_state = place_unknown;
}

void file_truncate(File& file, std::int64_t length, int& err) {
    if ((file.access_bits & access_write) == 0) {
        err = own_error(error_access_denied);
        return;
    }
    if (file.descriptor < 0) {
        err = own_error(error_no_handle);
        return;
    }
    err = file_flush(file);
    if (err != 0 || !file.seekable) return;
    struct stat about;
    const bool regular = ::fstat(file.descriptor, &about) == 0 && S_ISREG(about.st_mode);
    if (regular && about.st_size != length) {
        int result = 0;
        do {
            result = ::ftruncate(file.descriptor, length);
        } while (result < 0 && errno == EINTR);
        if (result < 0) {
            err = last_error();
            return;
        }
    }
    if (!move_pointer(file, length)) {
        err = last_error();
        return;
    }
    file.logical_position = file.buffer_position = file.size = length;
    forget_buffer(file);
    file.position_state = place_unknown;
}

std::ptrdiff_t file_fill(File& file) {
    file_sync(file);
    if (!file_reserve(file, file.buffer_size)) {
        errno = ENOMEM;
        return -1;
    }
    const ssize_t count = read_some(file, file.buffer, file.capacity);
    if (count < 0) return -1;
    file.data_count = static_cast<std::size_t>(count);
    file.buffer_position = file.logical_position = file.real_position;
    file.real_position += count;
    file.size = std::max(file.size, file.real_position);
    return count;
}

std::size_t file_read(File& file, char* bytes, std::size_t count, int& err) {
    err = 0;
    if ((file.access_bits & access_read) == 0) err = own_error(error_access_denied);
    if (file.descriptor < 0) err = own_error(error_no_handle);
    if (err == 0) err = file_flush(file);
    if (err != 0) return 0;

    std::size_t done = 0;
    while (done < count) {
        const std::size_t ready = std::min(file.data_count - file.read_index, count - done);
        if (ready > 0) {
            std::memcpy(bytes + done, file.buffer + file.read_index, ready);
            file.read_index += ready;
            file.logical_position += static_cast<std::int64_t>(ready);
            file.write_index = 0;
            done += ready;
            continue;
        }
        const std::size_t wanted = count - done;
        if (file.buffered && wanted <= std::max(file.capacity, file.buffer_size)) {
            const std::ptrdiff_t filled = file_fill(file);
            if (filled < 0) err = last_error();
            if (filled <= 0) break;
            continue;
        }
        file_sync(file);
        const ssize_t n = read_some(file, bytes + done, wanted);
        if (n < 0) err = last_error();
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
        file.real_position += n;
        file.logical_position = file.buffer_position = file.real_position;
        file.size = std::max(file.size, file.real_position);
    }
    return done;
}

std::size_t file_read_some(File& file, char* bytes, std::size_t count, int& err) {
    err = 0;
    if (file.read_index == file.data_count && count > file.buffer_size) {
        file_sync(file);
        const ssize_t n = read_some(file, bytes, count);
        if (n < 0) err = last_error();
        if (n <= 0) return 0;
        file.real_position += n;
        file.logical_position = file.buffer_position = file.real_position;
        return static_cast<std::size_t>(n);
    }
    if (file.read_index == file.data_count && file_fill(file) < 0) err = last_error();
    const std::size_t ready = std::min(file.data_count - file.read_index, count);
    return ready > 0 ? file_read(file, bytes, ready, err) : 0;
}

void file_write(File& file, const char* bytes, std::size_t count, int& err) {
    err = 0;
    if ((file.access_bits & access_write) == 0) err = own_error(error_access_denied);
    if (file.descriptor < 0) err = own_error(error_no_handle);
    if (err != 0 || count == 0) return;

    const bool buffered = file.buffered && file_reserve(file, file.buffer_size);
    if (!buffered || count > file.capacity) {
        err = file_flush(file);
        if (err != 0) return;
        if (!file.append) file_sync(file);
        forget_buffer(file);
        err = write_through(file, bytes, count);
        return;
    }
    while (count > 0) {
        // A clean buffer holds what was read: output starts a buffer of its own.
        if (!file.dirty) file.write_index = 0;
        if (file.write_index == 0) {
            file.read_index = file.data_count = 0;
            file.buffer_position = file.logical_position;
        }
        const std::size_t piece = std::min(file.capacity - file.write_index, count);
        std::memcpy(file.buffer + file.write_index, bytes, piece);
        file.write_index += piece;
        file.data_count = std::max(file.data_count, file.write_index);
        file.logical_position += static_cast<std::int64_t>(piece);
        file.size = std::max(file.size, file.logical_position);
        file.dirty = true;
        bytes += piece;
        count -= piece;
        if (file.write_index == file.capacity) {
            err = file_flush(file);
            if (err != 0) return;
        }
    }
}

int file_close(File& file) {
    if (file.descriptor < 0) return own_error(error_no_handle);
    int err = file_flush(file);
    const int reason = errno;
    // What was read ahead of the program is given back: another program may read on.
    if (!file.owned) file_sync(file);
    if (file.owned && ::close(file.descriptor) != 0 && errno != EINTR && err == 0) {
        err = last_error();
    } else {
        errno = reason;
    }
    file.access_bits = 0;
    file.append = false;
    forget_buffer(file);
    const std::lock_guard guard(unit_list_lock());
    file.descriptor = -1;
    file.device = file.inode = 0;
    return err;
}

void sys_fileOpen(Unit& unit, std::string_view name, int mode, int& err, bool create) {
    const std::size_t last = name.find_last_not_of(' ');
    const std::string path(name.substr(0, last == std::string_view::npos ? 0 : last + 1));
    const int access = mode & 7;
    const int sharing = mode & 0x70;
    if (access > 2 || sharing > 0x40) {
        err = own_error(error_access_denied);
        return;
    }
    const bool locks = (mode & mode_share_given) != 0;
    const int descriptor = open_with_sharing(path.c_str(), open_flags(access, create), access,
                                             locks ? sharing : sharing_unspecified);
    if (descriptor < 0) {
        err = last_error();
        return;
    }
    struct stat about;
    if (::fstat(descriptor, &about) == 0 && S_ISDIR(about.st_mode)) {
        ::close(descriptor);
        err = own_error(error_access_denied);
        return;
    }
    File& file = unit.file;
    file_adopt(file, descriptor, access_bits_of(access), true);
    file.append = false;
    file.shared = sharing == 0x30 || sharing == 0x40 || sharing == 0;
    if (file.shared) file.buffered = false;
    file_set_path(file, full_path_name(path));
    file.position_state = place_asis;
    err = 0;
}

void sys_fileClose(Unit& unit, int& err) {
    console_detach(unit);
    err = file_close(unit.file);
}

void sys_fileSeekToEOF(Unit& unit, std::int64_t& position, int& err) {
    file_seek_to_end(unit.file, err);
    position = unit.file.logical_position;
}

void sys_getFilePos(Unit& unit, std::int64_t& position, int& err) {
    position = file_position(unit.file, err);
}

void sys_fileSeek(Unit& unit, std::int64_t target, std::int64_t& position, int& err) {
    file_seek_within(unit.file, target, err);
    position = unit.file.logical_position;
}

void sys_logicalFileSync(Unit& unit) {
    file_sync(unit.file);
}

void sys_truncateFile(Unit& unit, bool to_zero, int& err) {
    File& file = unit.file;
    file_truncate(file, to_zero ? 0 : file.logical_position, err);
}

void sys_unbufferFile(Unit& unit) {
    file_flush(unit.file);
    unit.file.buffered = false;
}

int sys_flushWriteBuffer(Unit& unit) {
    return file_flush(unit.file);
}

void sys_fileWrite(Unit& unit, const char* bytes, std::size_t count, int& err) {
    file_write(unit.file, bytes, count, err);
}

std::ptrdiff_t sys_fillReadBuffer(Unit& unit) {
    return file_fill(unit.file);
}

std::size_t sys_fileRead(Unit& unit, char* bytes, std::size_t count, int& err) {
    File& file = unit.file;
    if (file.shared && file.data_count == file.read_index) {
        std::int64_t position = 0;
        sys_getFilePos(unit, position, err);
    }
    return file_read(file, bytes, count, err);
}

}  // namespace tarn::fio
