#include "traceback/callers.h"

#include "traceback/walk.h"

namespace tarn::traceback {
namespace {

// Routines count, not lines and copies: a routine that calls itself from two places, or was put
// into itself by the compiler, is one recursion.
bool same_routine(const Location& one, const Location& other) {
    if (one.routine.empty() || other.routine.empty()) return one.start == other.start;
    return one.routine == other.routine && one.module == other.module;
}

bool same_call(const CallerLine& one, const CallerLine& other) {
    return same_routine(one.location, other.location) && one.pattern == other.pattern &&
           one.times == other.times;
}

bool ends_with(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Libraries of the system have routines between the program's (a sort that calls back) and around
// them (the start of a thread). What lies outermost is of no interest.
bool is_system_module(std::string_view path) {
    if (path.empty()) return false;
    const std::string_view file = path.substr(path.rfind('/') + 1);
    for (std::string_view name : {"libc.so", "ld-linux", "libgomp.so", "libpthread.so",
                                  "linux-vdso", "libstdc++.so", "libgcc_s.so"}) {
        if (file.substr(0, name.size()) == name) return true;
    }
    return ends_with(file, ".so.6") && file.substr(0, 5) == "libc.";
}

// So has what the C++ library has in headers: the start of a thread is made of it. And a ruined
// stack has places where no code is.
bool is_of_no_interest(const Location& location, const Callers& callers) {
    if (is_system_module(location.module)) return true;
    if (callers.total() == 0) return false;
    return !location.is_code || location.file.substr(0, 17) == "/usr/include/c++/";
}

}  // namespace

void Callers::clear() {
    first_count_ = 0;
    total_last_ = 0;
    total_ = 0;
    lacks_lines_ = false;
}

void Callers::correct_first(std::string_view file, std::uint32_t line) {
    if (first_count_ == 0 || line == 0) return;
    Location& place = first_[0].location;
    // Each is told as its compiler was given it: one may stand behind a folder.
    const auto name = [](std::string_view path) { return path.substr(path.rfind('/') + 1); };
    if (place.line != 0 && name(place.file) == name(file)) place.line = line;
}

const CallerLine& Callers::line(std::size_t index) const {
    if (index < first_count_) return first_[index];
    const std::uint64_t start = total_last_ > most_last ? total_last_ - most_last : 0;
    return last_[(start + (index - first_count_)) % most_last];
}

// When the last lines are the ones before them again, they become a count.
bool Callers::fold() {
    for (std::uint32_t length = 1; length <= longest_pattern && length < first_count_; ++length) {
        const std::size_t again = first_count_ - length;
        CallerLine* end = &first_[again - 1];  // of what was there before
        const bool counted = end->pattern == length;
        if (2 * std::size_t{length} > first_count_) break;
        bool same = true;
        for (std::uint32_t i = 0; i < length && same; ++i) {
            CallerLine earlier = first_[again - length + i];
            if (i == length - 1 && counted) earlier.pattern = 0, earlier.times = 0;
            same = same_call(earlier, first_[again + i]);
        }
        if (!same || (end->pattern != 0 && !counted)) continue;
        end->pattern = length;
        ++end->times;
        first_count_ = again;
        return true;
    }
    return false;
}

void Callers::add(const Location& location) {
    ++total_;
    if (location.is_code && location.line == 0 && location.module.empty()) lacks_lines_ = true;
    if (total_last_ == 0 && first_count_ < most_first) {
        first_[first_count_++] = {location, 0, 0};
        fold();
        return;
    }
    last_[total_last_++ % most_last] = {location, 0, 0};
}

void collect(const Registers& registers, Place kind, Callers& callers) {
    callers.clear();
    Walk walk(registers, kind != Place::call);
    Location found[most_inlined + 1];
    // Frames of the system's are held back until one of the program's comes behind them.
    constexpr std::size_t most_held = 8;
    Location held[most_held];
    std::size_t held_count = 0;
    std::string_view rest;  // the routine whose beginning is still to come
    do {
        const std::uintptr_t place = walk.place();
        if (is_own_code(place)) {
            // What the library calls is as little of interest as the library.
            if (callers.total() == 0) held_count = 0;
            continue;
        }
        const std::size_t count = locate(place, found);
        for (std::size_t i = 0; i < count; ++i) {
            if (found[i].hidden) continue;
            const bool beginning = found[i].inlined && found[i].routine == rest;
            rest = found[i].is_rest ? found[i].routine : std::string_view{};
            if (beginning) continue;
            if (is_of_no_interest(found[i], callers)) {
                if (kind == Place::signal && callers.total() == 0) continue;
                if (held_count < most_held) held[held_count++] = found[i];
                continue;
            }
            for (std::size_t each = 0; each < held_count; ++each) callers.add(held[each]);
            held_count = 0;
            callers.add(found[i]);
            if (found[i].is_main) return;
        }
    } while (walk.next());
}

}  // namespace tarn::traceback
