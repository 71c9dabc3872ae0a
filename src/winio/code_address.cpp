#include "winio/code_address.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <link.h>
#include <sys/uio.h>
#include <unistd.h>
#include <vector>

namespace tarn::winio {
namespace {

struct range {
    std::uintptr_t first, end;
};
// The executable segments of all loaded modules, until a module comes or goes.
struct code_map {
    std::vector<range> segments;
    unsigned long long added = 0, removed = 0;
    bool filled = false;
};
code_map& map() {
    static code_map* the_map = new code_map;
    return *the_map;
}

void add_segments(code_map& to, const dl_phdr_info& module) {
    for (int i = 0; i < module.dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = module.dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X)) continue;
        const std::uintptr_t first = module.dlpi_addr + segment.p_vaddr;
        to.segments.push_back({first, first + segment.p_memsz});
    }
}

// The first module tells whether anything changed since the map was filled.
int visit(dl_phdr_info* module, std::size_t, void* first_seen) {
    code_map& all = map();
    bool& first = *static_cast<bool*>(first_seen);
    if (first) {
        first = false;
        if (all.filled && all.added == module->dlpi_adds && all.removed == module->dlpi_subs)
            return 1;
        all.segments.clear();
        all.added = module->dlpi_adds;
        all.removed = module->dlpi_subs;
        all.filled = true;
    }
    add_segments(all, *module);
    return 0;
}

bool in_module(const void* address) {
    bool first = true;
    dl_iterate_phdr(visit, &first);
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    const std::vector<range>& segments = map().segments;
    return std::any_of(segments.begin(), segments.end(),
                       [at](const range& r) { return at >= r.first && at < r.end; });
}

bool starts_with(const unsigned char*& at, const unsigned char* end,
                 std::initializer_list<unsigned char> bytes, std::size_t then_skip) {
    if (static_cast<std::size_t>(end - at) < bytes.size() + then_skip) return false;
    if (!std::equal(bytes.begin(), bytes.end(), at)) return false;
    at += bytes.size() + then_skip;
    return true;
}

// mov function, %r11; mov frame, %r10; jmp *%r11. The function's address may take the short form,
// and a landing mark may stand before all. Those that are kept off the stack load %r10 first.
bool is_trampoline(const unsigned char* at, const unsigned char* end) {
    starts_with(at, end, {0xF3, 0x0F, 0x1E, 0xFA}, 0);
    if (starts_with(at, end, {0x49, 0xBB}, 8) || starts_with(at, end, {0x41, 0xBB}, 4))
        return starts_with(at, end, {0x49, 0xBA}, 8) && starts_with(at, end, {0x49, 0xFF, 0xE3}, 0);
    return starts_with(at, end, {0x49, 0xBA}, 8) && starts_with(at, end, {0x49, 0xBB}, 8) &&
           starts_with(at, end, {0x41, 0xFF, 0xE3}, 0);
}

}  // namespace

bool is_code(const void* address) {
    if (in_module(address)) return true;
    char bytes[32];
    const std::size_t count = copy_readable(address, bytes, sizeof bytes);
    const auto* first = reinterpret_cast<const unsigned char*>(bytes);
    return is_trampoline(first, first + count);
}

// The kernel copies, so that an argument that is no address is found out instead of faulted on.
// It copies whole pieces only: the second begins at the next page.
std::size_t copy_readable(const void* from, char* to, std::size_t size) {
    constexpr std::uintptr_t page = 4096;
    const auto at = reinterpret_cast<std::uintptr_t>(from);
    if (at < page) return 0;
    const std::size_t first = std::min<std::size_t>(size, page - at % page);
    const iovec target{to, size};
    const iovec sources[2] = {{const_cast<void*>(from), first},
                              {reinterpret_cast<void*>(at + first), size - first}};
    const ssize_t count = process_vm_readv(getpid(), &target, 1, sources, size > first ? 2 : 1, 0);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EFAULT) return 0;
    std::memcpy(to, from, first);  // a system that forbids the call: the page at least is likely
    return first;
}

}  // namespace tarn::winio
