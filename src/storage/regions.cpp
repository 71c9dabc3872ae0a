#include "storage/regions.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <pthread.h>
#include <string_view>
#include <strings.h>

#include "frame/end.h"
#include "frame/hooks.h"
#include "frame/state.h"
#include "platform/kernel/debug_output.h"
#include "platform/kernel/message_box.h"
#include "storage/region_failures.h"

namespace tarn::storage {

namespace {

constinit Regions the_regions;

// Every image names its version when it is registered.
void give_version(int version) {
    InSection held(the_regions.section);
    the_regions.version = static_cast<std::int16_t>(version);
    for (ExpandingRegion* region = the_regions.first; region != nullptr; region = region->next) {
        if (region->version == 0) region->version = the_regions.version;
    }
}
void install_regions() {
    frame::hooks().expanding_region_version = give_version;
}
TARN_PREAMBLE(install_regions)

// A child of fork finds the lists as they were between two changes.
void keep_over_forks() {
    if (the_regions.kept_over_forks) return;
    the_regions.kept_over_forks = true;
    pthread_atfork([] { the_regions.section.enter(); }, [] { the_regions.section.leave(); },
                   [] { the_regions.section.leave(); });
}

// What a new region counts as committed, by its owner's name.
std::intptr_t first_commit(const char* name, std::intptr_t size) {
    const std::string_view text = name != nullptr ? name : "";
    if (text.starts_with("ORVEX")) return std::min<std::intptr_t>(0x400000, size);
    if (text == "VIRTUAL_STORAGE") return 16384;
    return the_regions.commit_size;
}

// The end of a path tells more than its beginning.
void keep_name(ExpandingRegion& region, const char* name) {
    const std::string_view text = name != nullptr ? name : "No name";
    const std::string_view kept =
        text.substr(text.size() - std::min(text.size(), sizeof region.name - 1));
    std::memcpy(region.name, kept.data(), kept.size());
    region.name[kept.size()] = 0;
}

void tell_debugger(const ExpandingRegion& region) {
    if (__debugged == 0) return;
    char line[sizeof region.name + 80];
    if (__debugged == 1) {
        std::snprintf(line, sizeof line, "VIRTUAL_COM_ADDRESS %s 0x%lx 0x%lx\n", region.name,
                      region.range.start, region.range.end);
    } else {
        std::snprintf(line, sizeof line, "VIRTUAL_COM_ADDRESS 0x%lx 0x%lx\n", region.range.start,
                      region.range.end);
    }
    platform::debug_output(line);
}

void tell_debugger_of_removal(const AddressRange& range) {
    if (__debugged == 0) return;
    char line[80];
    std::snprintf(line, sizeof line, "REMOVE_VIRTUAL_ADDRESS 0x%lx 0x%lx\n", range.start,
                  range.end);
    platform::debug_output(line);
}

bool keeps_addresses(const ExpandingRegion& idle, std::uintptr_t start) {
    return idle.range.start == start && idle.range.reserved_end != 0;
}

ExpandingRegion* find_kept(const void* start) {
    const auto wanted = reinterpret_cast<std::uintptr_t>(start);
    ExpandingRegion* idle = the_regions.idle;
    while (idle != nullptr && !keeps_addresses(*idle, wanted)) idle = idle->next_idle;
    return wanted != 0 ? idle : nullptr;
}

// The addresses that are kept at `start`, for `size` bytes of them; what is left over fences.
bool take_kept(const void* start, std::intptr_t size, AddressRange& range) {
    InSection held(the_regions.section);
    ExpandingRegion* idle = find_kept(start);
    if (idle == nullptr || size <= 0) return false;
    const auto wanted = static_cast<std::uintptr_t>(size);
    if (wanted > idle->range.end - idle->range.start) return false;
    range = idle->range;
    range.end = range.start + wanted;
    idle->range = {};
    return true;
}

ExpandingRegion* new_record() {
    for (ExpandingRegion* idle = the_regions.idle; idle != nullptr; idle = idle->next_idle) {
        if (idle->range.reserved_end != 0) continue;
        ExpandingRegion** link = &the_regions.idle;
        while (*link != idle) link = &(*link)->next_idle;
        *link = idle->next_idle;
        return idle;
    }
    auto* place = std::malloc(sizeof(ExpandingRegion));
    return place != nullptr ? new (place) ExpandingRegion : nullptr;
}

void unlink(ExpandingRegion& region) {
    std::atomic<ExpandingRegion*>* link = &the_regions.first;
    while (*link != &region) link = &link->load()->next;
    link->store(region.next);
}

// A user who is asked may close something else first; nobody can be asked without a window.
bool ask_for_memory() {
    if (platform::message_box_window == nullptr) return false;
    constexpr std::uint32_t style = 0x11011;
    const int answer = platform::message_box(
        "Tarnick run-time library",
        "Tarnick run-time library.\nRunning low on memory\nRelease some memory by\nClosing "
        "unused Applications\n",
        style);
    if (answer != platform::id_ok) frame::zap_out();
    return answer == platform::id_ok;
}

}  // namespace

Regions& regions() {
    return the_regions;
}

ExpandingRegion* add_region(const char* name, const AddressRange& range, std::intptr_t committed) {
    ExpandingRegion* region = nullptr;
    {
        InSection held(the_regions.section);
        keep_over_forks();
        region = new_record();
        if (region == nullptr) return nullptr;
        region->range = range;
        region->committed = committed;
        region->refused = false;
        region->version = the_regions.version;
        keep_name(*region, name);
        region->next = the_regions.first.load();
        the_regions.first = region;
    }
    tell_debugger(*region);
    return region;
}

void* setup_virtual_region(const char* name, std::intptr_t size, void* address) {
    AddressRange range;
    if (!take_kept(address, size, range) &&
        !reserve_range(size, reinterpret_cast<std::uintptr_t>(address), range))
        return nullptr;
    if (!open_range(range, the_regions.commit_size) ||
        add_region(name, range, first_commit(name, size)) == nullptr) {
        const int error = errno;
        release_range(range);
        errno = error;
        return nullptr;
    }
    return reinterpret_cast<void*>(range.start);
}

// The ranges lie far above the 2 GiB line, which they would have to keep clear of.
void* setup_expanding_region(const char* name, std::intptr_t size) {
    constexpr std::intptr_t least = 0x2000000;
    for (;; size /= 2) {
        AddressRange range;
        if (reserve_range(size, 0, range)) {
            if (open_range(range, the_regions.commit_size) && add_region(name, range, 0) != nullptr)
                return reinterpret_cast<void*>(range.start);
            release_range(range);
        }
        if (size < least) {
            fail_region(
                "Tarnick run-time library.\nInsufficient memory available for CHECK mode\n");
        }
    }
}

bool remove_virtual_region(void* start, Removal removal) {
    AddressRange range;
    bool done = false;
    {
        InSection held(the_regions.section);
        ExpandingRegion* region = the_regions.first;
        while (region != nullptr && reinterpret_cast<void*>(region->range.start) != start)
            region = region->next;
        if (region == nullptr) return false;
        range = region->range;
        unlink(*region);
        done = removal == Removal::release ? release_range(range) : close_range(range);
        if (removal == Removal::release || !done) region->range = {};
        region->next_idle = the_regions.idle;
        the_regions.idle = region;
    }
    tell_debugger_of_removal(range);
    return done;
}

std::intptr_t kept_bytes(const void* start) {
    InSection held(the_regions.section);
    const ExpandingRegion* idle = find_kept(start);
    return idle != nullptr ? static_cast<std::intptr_t>(idle->range.end - idle->range.start) : 0;
}

void release_kept(void* start) {
    InSection held(the_regions.section);
    ExpandingRegion* idle = find_kept(start);
    if (idle == nullptr) return;
    release_range(idle->range);
    idle->range = {};
}

void set_commit_pages(std::int32_t pages) {
    if (pages > 0) the_regions.commit_size = std::intptr_t{pages} * usual_commit_size;
}

ExpandingRegion* find_region(std::uintptr_t address) {
    ExpandingRegion* region = the_regions.first;
    while (region != nullptr && !region->range.holds(address)) region = region->next;
    return region;
}

ExpandingRegion* find_region_by_name(const char* file_name) {
    const auto without_folder = [](const char* path) {
        const char* slash = std::strrchr(path, '/');
        return slash != nullptr ? slash + 1 : path;
    };
    if (file_name == nullptr) return nullptr;
    const char* wanted = without_folder(file_name);
    ExpandingRegion* region = the_regions.first;
    while (region != nullptr && strcasecmp(without_folder(region->name), wanted) != 0)
        region = region->next;
    return region;
}

// A range that the system commits has every page that it will ever have: a fault in one is of
// another kind, and would strike again and again.
bool grow_region(std::uintptr_t address, bool is_write) {
    ExpandingRegion* region = find_region(address);
    if (region == nullptr || !is_write || region->range.commits == Commits::by_system) return false;
    const std::uintptr_t page = address & -std::uintptr_t{usual_commit_size};
    const std::intptr_t step = std::max(the_regions.commit_size.load(), usual_commit_size);
    while (!make_writable(region->range, page, page + static_cast<std::uintptr_t>(step))) {
        // A long step may be more than the system has left.
        if (make_writable(region->range, page, page + 1)) break;
        region->refused = true;
        if (!ask_for_memory()) return false;
    }
    region->refused = false;
    region->committed += step;
    return true;
}

bool commit_at(std::uintptr_t address) {
    ExpandingRegion* region = find_region(address);
    if (region == nullptr) return false;
    if (region->range.commits == Commits::by_fault) return grow_region(address, true);
    region->committed += the_regions.commit_size;
    return true;
}

bool grow_for_system(const void* bytes, std::size_t size) {
    const auto from = reinterpret_cast<std::uintptr_t>(bytes);
    const std::uintptr_t to = from + std::min(size, ~std::size_t{0} - from);
    bool changed = false;
    for (ExpandingRegion* region = the_regions.first; region != nullptr; region = region->next) {
        const AddressRange& range = region->range;
        if (range.commits == Commits::by_system || to <= range.start || from >= range.end) continue;
        changed |= make_writable(range, from, to);
    }
    return changed;
}

const ExpandingRegion* find_missed_region(std::uintptr_t address) {
    for (const ExpandingRegion* region = the_regions.first; region != nullptr;
         region = region->next) {
        const AddressRange& range = region->range;
        if (range.holds(address)) return region->refused ? region : nullptr;
        if (address >= range.end && address - range.end < fence_size) return region;
        if (address < range.start && range.start - address <= fence_size) return region;
    }
    return nullptr;
}

}  // namespace tarn::storage
