#include "storage/pages.h"

#include <cerrno>
#include <sys/mman.h>

namespace tarn::storage {

namespace {

constexpr std::uint64_t lowest_try = 0x100000;
constexpr std::uint64_t try_step = 0x100000;

void* page_address(std::uint64_t address) {
    return reinterpret_cast<void*>(address);
}

}  // namespace

// The system has no call for "somewhere below 2 GiB", so the places are tried from the top down;
// what is mapped low (a program linked at a fixed address and the data behind it) keeps its room.
Address reserve_pages(std::uint64_t size) {
    if (size == 0 || size > address_limit - lowest_try) return 0;
    for (std::uint64_t start = (address_limit - size) & ~(std::uint64_t{page_size} - 1);
         start >= lowest_try; start -= try_step) {
        void* got = mmap(page_address(start), size, PROT_NONE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED_NOREPLACE, -1, 0);
        if (got == page_address(start)) return static_cast<Address>(start);
        if (got != MAP_FAILED) {
            // A kernel without MAP_FIXED_NOREPLACE took the address as a mere wish.
            munmap(got, size);
        } else if (errno != EEXIST && errno != EPERM) {
            return 0;
        }
    }
    return 0;
}

void release_pages(Address start, std::uint64_t size) {
    munmap(page_address(start), size);
}

bool commit_pages(Address start, Address end) {
    return end <= start || mprotect(page_address(start), end - start, PROT_READ | PROT_WRITE) == 0;
}

}  // namespace tarn::storage
