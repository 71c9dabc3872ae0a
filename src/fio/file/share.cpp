#include "fio/file/share.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::fio {
namespace {

// Four bytes far behind any data stand for the four things an opener can say of itself. Each is
// locked shared, so that saying it never waits and needs no right to write; whether somebody else
// says the opposite is then asked for. Two openers that refuse each other may both be turned away
// at the same moment, hence the second attempts.
constexpr off_t base = off_t{1} << 62;
constexpr off_t reads = base;
constexpr off_t writes = base + 1;
constexpr off_t denies_reading = base + 2;
constexpr off_t denies_writing = base + 3;

bool say(int descriptor, off_t what) {
    struct flock lock = {};
    lock.l_type = F_RDLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = what;
    lock.l_len = 1;
    return ::fcntl(descriptor, F_OFD_SETLK, &lock) == 0;
}

bool somebody_says(int descriptor, off_t what) {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = what;
    lock.l_len = 1;
    return ::fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

void unsay_all(int descriptor) {
    struct flock lock = {};
    lock.l_type = F_UNLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = base;
    lock.l_len = 4;
    ::fcntl(descriptor, F_OFD_SETLK, &lock);
}

// False: somebody holds the file against it.
bool claim(int descriptor, int access, int sharing) {
    const bool reading = access != 1;
    const bool writing = access != 0;
    const bool deny_reading = sharing == 0x10 || sharing == 0x30;
    const bool deny_writing = sharing == 0x10 || sharing == 0x20;
    bool able = true;
    if (reading) able = able && say(descriptor, reads);
    if (writing) able = able && say(descriptor, writes);
    if (deny_reading) able = able && say(descriptor, denies_reading);
    if (deny_writing) able = able && say(descriptor, denies_writing);
    // A file system without locks, or a file that can't be read: nothing to agree on.
    if (!able) return true;
    return !(reading && somebody_says(descriptor, denies_reading)) &&
           !(writing && somebody_says(descriptor, denies_writing)) &&
           !(deny_reading && somebody_says(descriptor, reads)) &&
           !(deny_writing && somebody_says(descriptor, writes));
}

bool claim_in_turn(int descriptor, int access, int sharing) {
    constexpr int attempts = 5;
    for (int i = 0; i < attempts; i++) {
        if (claim(descriptor, access, sharing)) return true;
        unsay_all(descriptor);
        const timespec pause{0, 500'000 + ::getpid() % 64 * 20'000};
        ::nanosleep(&pause, nullptr);
    }
    return false;
}

int open_again_if_interrupted(const char* path, int flags) {
    int descriptor = -1;
    do {
        descriptor = ::open(path, flags, 0666);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

}  // namespace

int open_with_sharing(const char* path, int flags, int access, int sharing) {
    const bool locks = sharing != sharing_unspecified;
    // A lock that only says something needs the right to read. And nothing is emptied before it
    // is known that the file may be had.
    const bool empties = locks && (flags & O_TRUNC) != 0;
    int descriptor = -1;
    if (locks && (flags & O_ACCMODE) == O_WRONLY) {
        const int both = (flags & ~(O_ACCMODE | O_TRUNC)) | O_RDWR;
        descriptor = open_again_if_interrupted(path, both);
    }
    if (descriptor < 0) {
        descriptor = open_again_if_interrupted(path, empties ? flags & ~O_TRUNC : flags);
    }
    if (descriptor < 0 || !locks) return descriptor;
    int reason = 0;
    struct stat about;
    if (::fstat(descriptor, &about) != 0) {
        reason = errno;
    } else if (S_ISREG(about.st_mode) && !claim_in_turn(descriptor, access, sharing)) {
        reason = EAGAIN;
    } else if (empties && S_ISREG(about.st_mode) && ::ftruncate(descriptor, 0) != 0) {
        reason = errno;
    }
    if (reason == 0) return descriptor;
    ::close(descriptor);
    errno = reason;
    return -1;
}

}  // namespace tarn::fio
