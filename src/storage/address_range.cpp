#include "storage/address_range.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace tarn::storage {

namespace {

constexpr std::uintptr_t page = 4096;
constexpr int quiet = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;

void* at(std::uintptr_t address) {
    return reinterpret_cast<void*>(address);
}

std::uintptr_t down(std::uintptr_t value, std::uintptr_t unit) {
    return value & ~(unit - 1);
}
std::uintptr_t up(std::uintptr_t value, std::uintptr_t unit) {
    return down(value + unit - 1, unit);
}
std::uintptr_t last_page_end(const AddressRange& range) {
    return up(range.end, page);
}

void unmap(std::uintptr_t from, std::uintptr_t to) {
    if (from < to) munmap(at(from), to - from);
}

// Takes exactly these addresses, if nobody has them.
bool take(std::uintptr_t from, std::uintptr_t size) {
    void* got = mmap(at(from), size, PROT_NONE, quiet | MAP_FIXED_NOREPLACE, -1, 0);
    if (got == at(from)) return true;
    if (got != MAP_FAILED) {
        // A kernel without MAP_FIXED_NOREPLACE took the address as a mere wish.
        munmap(got, size);
        errno = EEXIST;
    }
    return false;
}

bool reserve_at(std::uintptr_t bytes, AddressRange& range) {
    std::uintptr_t behind = 0;
    if (range.start % page != 0 || range.start < page ||
        __builtin_add_overflow(range.start, bytes + fence_size, &behind)) {
        errno = EINVAL;
        return false;
    }
    if (!take(range.start, bytes)) return false;
    range.reserved_base = range.start;
    range.reserved_end = range.start + bytes;
    // A neighbour may stand where a fence would; then there is none on that side.
    const int error = errno;
    if (take(range.reserved_end, fence_size)) range.reserved_end += fence_size;
    if (range.start > fence_size && take(range.start - fence_size, fence_size))
        range.reserved_base -= fence_size;
    errno = error;
    return true;
}

bool reserve_anywhere(std::uintptr_t bytes, AddressRange& range) {
    const std::uintptr_t wanted = bytes + 2 * fence_size + range_alignment;
    void* got = mmap(nullptr, wanted, PROT_NONE, quiet, -1, 0);
    if (got == MAP_FAILED) return false;
    const auto first = reinterpret_cast<std::uintptr_t>(got);
    range.start = up(first + fence_size, range_alignment);
    range.reserved_base = range.start - fence_size;
    range.reserved_end = range.start + bytes + fence_size;
    unmap(first, range.reserved_base);
    unmap(range.reserved_end, first + wanted);
    return true;
}

// A file of nothing but undefined bytes, which only a descriptor names; -1: none can be had.
int undefined_file(std::uintptr_t size) {
    const int file = memfd_create("undefined", MFD_CLOEXEC);
    if (file < 0) return -1;
    char bytes[page];
    std::memset(bytes, undefined_byte, sizeof bytes);
    for (std::uintptr_t done = 0; done < size; done += sizeof bytes) {
        if (write(file, bytes, sizeof bytes) != static_cast<ssize_t>(sizeof bytes)) {
            close(file);
            return -1;
        }
    }
    return file;
}

bool map_file_over(AddressRange& range, int file, std::uintptr_t from, std::uintptr_t size) {
    constexpr int over = MAP_PRIVATE | MAP_FIXED | MAP_NORESERVE;
    if (range.commits == Commits::by_system) {
        if (mmap(at(from), size, PROT_READ | PROT_WRITE, over, file, 0) != MAP_FAILED) return true;
        range.commits = Commits::by_fault;
    }
    return mmap(at(from), size, PROT_READ, over, file, 0) != MAP_FAILED;
}

// The pages of one file are mapped over and over, privately: each reads as that file until it is
// written to and becomes the program's own, with no handler of faults between. A longer file takes
// memory, a shorter one more mappings, of which the system gives some 65,000 to a process. The
// result is how far it came.
std::uintptr_t map_undefined(AddressRange& range, std::uintptr_t from, std::uintptr_t to) {
    constexpr std::uintptr_t shortest = 0x10000;
    constexpr std::uintptr_t longest = 0x4000000;
    constexpr std::uintptr_t usual_mappings = 4096;
    const std::uintptr_t chunk =
        std::clamp(std::bit_ceil((to - from) / usual_mappings), shortest, longest);
    const int file = undefined_file(std::min(chunk, to - from));
    if (file < 0) return from;
    while (from < to) {
        const std::uintptr_t size = std::min(chunk, to - from);
        if (!map_file_over(range, file, from, size)) break;
        from += size;
    }
    close(file);
    return from;
}

void fill_undefined(const AddressRange& range, std::uintptr_t from, std::uintptr_t to) {
    if (from >= to || !make_writable(range, from, to)) return;
    std::memset(at(from), undefined_byte, to - from);
}

}  // namespace

bool reserve_range(std::intptr_t size, std::uintptr_t address, AddressRange& range) {
    constexpr std::intptr_t most = std::intptr_t{1} << 47;
    if (size <= 0 || size > most) {
        errno = size <= 0 ? EINVAL : ENOMEM;
        return false;
    }
    const std::uintptr_t bytes = up(static_cast<std::uintptr_t>(size), page);
    range.start = address;
    if (!(address != 0 ? reserve_at(bytes, range) : reserve_anywhere(bytes, range))) return false;
    range.end = range.start + static_cast<std::uintptr_t>(size);
    return true;
}

bool open_range(AddressRange& range, std::intptr_t commit_size) {
    constexpr std::intptr_t large_page = 0x200000;
    const std::uintptr_t bytes = last_page_end(range) - range.start;
    range.commits = Commits::by_system;
    if (mprotect(at(range.start), bytes, PROT_READ | PROT_WRITE) != 0) {
        range.commits = Commits::by_fault;
        if (mprotect(at(range.start), bytes, PROT_READ) != 0) return false;
    }
    // A system set to large pages would commit 2 MiB for a byte.
    const int error = errno;
    madvise(at(range.start), bytes, commit_size >= large_page ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
    errno = error;
    return true;
}

bool close_range(const AddressRange& range) {
    return mmap(at(range.start), last_page_end(range) - range.start, PROT_NONE, quiet | MAP_FIXED,
                -1, 0) != MAP_FAILED;
}

bool release_range(const AddressRange& range) {
    return munmap(at(range.reserved_base), range.reserved_end - range.reserved_base) == 0;
}

bool make_writable(const AddressRange& range, std::uintptr_t from, std::uintptr_t to) {
    if (range.commits == Commits::by_system) return true;
    from = std::max(down(from, page), range.start);
    to = std::min(to, last_page_end(range));
    return from >= to || mprotect(at(from), to - from, PROT_READ | PROT_WRITE) == 0;
}

void make_undefined(AddressRange& range, std::uintptr_t from, std::uintptr_t to) {
    from = std::max(from, range.start);
    to = std::min(to, range.end);
    if (from >= to) return;
    const std::uintptr_t first = up(from, page);
    const std::uintptr_t last = down(to, page);
    if (first >= last) return fill_undefined(range, from, to);
    fill_undefined(range, from, first);
    fill_undefined(range, last, to);
    fill_undefined(range, map_undefined(range, first, last), last);
}

// The system's own account knows the pages that it committed, also of a part that reads as a file.
std::intptr_t committed_bytes(const AddressRange& range) {
    std::FILE* account = std::fopen("/proc/self/smaps", "re");
    if (account == nullptr) return 0;
    std::intptr_t total = 0;
    bool within = false;
    char line[512];
    while (std::fgets(line, sizeof line, account) != nullptr) {
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        std::intptr_t kilobytes = 0;
        if (std::sscanf(line, "%lx-%lx ", &from, &to) == 2) {
            within = from >= range.start && to <= last_page_end(range);
        } else if (within && (std::sscanf(line, "Anonymous: %ld kB", &kilobytes) == 1 ||
                              std::sscanf(line, "Swap: %ld kB", &kilobytes) == 1)) {
            total += kilobytes * 1024;
        }
    }
    std::fclose(account);
    return total;
}

}  // namespace tarn::storage
