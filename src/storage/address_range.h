// Address space that is taken at once and gets memory page by page, where it is touched.
//
// The pages are mapped readable and writable with no claim on memory (MAP_NORESERVE), and the
// system commits each at its first touch. It does so for its own accesses too, which a handler of
// faults can't: the signal that asks a handler for a page never comes for read(2), which would
// fail with EFAULT instead. Where the system won't promise that much writable memory (strict
// accounting of memory, `ulimit -d`), the range is readable only and `make_writable` makes pages
// writable as they are written to.
#pragma once

#include <cstdint>

namespace tarn::storage {

inline constexpr std::uintptr_t range_alignment = 0x40000;
// No access is possible for that far on either side of a range, so that a loop that runs over the
// end faults there, not somewhere in what happens to lie behind.
inline constexpr std::uintptr_t fence_size = 0x10000;
// What a byte holds that the program hasn't set.
inline constexpr int undefined_byte = 0x80;

enum class Commits : std::uint8_t { by_system, by_fault };

struct AddressRange {
    std::uintptr_t reserved_base = 0;  // with the fences
    std::uintptr_t reserved_end = 0;
    std::uintptr_t start = 0;
    std::uintptr_t end = 0;  // the first address behind it; on no boundary of pages perhaps
    Commits commits = Commits::by_system;

    bool holds(std::uintptr_t address) const { return address >= start && address < end; }
};

// Takes `size` bytes of address space, anywhere or from `address` on; no access is possible yet.
// False: there is no such range, which errno tells.
bool reserve_range(std::intptr_t size, std::uintptr_t address, AddressRange& range);
// Lets the range be used; it reads as zeros. A commit size of 2 MiB and more asks for large pages.
bool open_range(AddressRange& range, std::intptr_t commit_size);
// Gives the memory back and keeps the addresses.
bool close_range(const AddressRange& range);
bool release_range(const AddressRange& range);

// Lets the pages that hold the bytes from `from` to `to` be written to.
bool make_writable(const AddressRange& range, std::uintptr_t from, std::uintptr_t to);
// Makes a part of the range read as undefined bytes until it is written to.
void make_undefined(AddressRange& range, std::uintptr_t from, std::uintptr_t to);
// How many bytes of memory the range has by now.
std::intptr_t committed_bytes(const AddressRange& range);

}  // namespace tarn::storage
