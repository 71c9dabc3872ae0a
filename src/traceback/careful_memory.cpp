#include "traceback/careful_memory.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace tarn::traceback {
namespace {

// Where the kernel doesn't offer one road (a filter of system calls), it offers the other.
ssize_t copy_out(std::uintptr_t address, void* to, std::size_t size) {
    iovec local{to, size};
    iovec remote{reinterpret_cast<void*>(address), size};
    const ssize_t got = process_vm_readv(getpid(), &local, 1, &remote, 1, 0);
    if (got >= 0 || (errno != ENOSYS && errno != EPERM)) return got;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    if (memory < 0) return -1;
    const ssize_t read = pread(memory, to, size, static_cast<off_t>(address));
    close(memory);
    return read;
}

}  // namespace

// A window never crosses a page, so that what lies before an unreadable page can be read. It begins
// at the address: a walk goes upward.
bool CarefulMemory::fill(std::uintptr_t address) {
    constexpr std::uintptr_t page = 4096;
    const std::uintptr_t page_end = (address | (page - 1)) + 1;
    const std::size_t wanted = std::min<std::size_t>(window, page_end - address);
    const int kept = errno;
    const ssize_t got = copy_out(address, copy_, wanted);
    errno = kept;
    start_ = address;
    length_ = got > 0 ? static_cast<std::size_t>(got) : 0;
    return length_ > 0;
}

bool CarefulMemory::read(std::uintptr_t address, void* to, std::size_t size) {
    auto* target = static_cast<char*>(to);
    while (size > 0) {
        if (address < start_ || address - start_ >= length_) {
            if (!fill(address)) return false;
        }
        const std::size_t at = address - start_;
        const std::size_t part = std::min(size, length_ - at);
        std::memcpy(target, copy_ + at, part);
        target += part;
        address += part;
        size -= part;
    }
    return true;
}

}  // namespace tarn::traceback
