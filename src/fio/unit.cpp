#include "fio/unit.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>

#include "fio/file/record_buffer.h"
#include "fio/gnu/records.h"
namespace tarn::fio {
namespace {

constexpr std::uint32_t bucket_count = 1024;

struct State {
    platform::Lock lock;
    Unit* first = nullptr;
    Unit* buckets[bucket_count] = {};
    std::int32_t next_handle = 1;
};

constinit State state;

Unit*& bucket(std::int32_t number) {
    return state.buckets[static_cast<std::uint32_t>(number) % bucket_count];
}

[[noreturn]] void out_of_memory(const char* line) {
    std::fputs(line, stderr);
    std::exit(1);
}

// The routines from here to the next comment line run under the list's lock.

Unit* find(std::int32_t number) {
    for (Unit* unit = bucket(number); unit != nullptr; unit = unit->same_bucket) {
        if (unit->number == number) return unit;
    }
    return nullptr;
}

void link(Unit& unit) {
    unit.previous = nullptr;
    unit.next = state.first;
    if (state.first != nullptr) state.first->previous = &unit;
    state.first = &unit;
    Unit*& head = bucket(unit.number);
    unit.same_bucket = head;
    head = &unit;
    unit.listed = true;
}

void unlink(Unit& unit) {
    if (unit.previous != nullptr) {
        unit.previous->next = unit.next;
    } else {
        state.first = unit.next;
    }
    if (unit.next != nullptr) unit.next->previous = unit.previous;
    Unit** place = &bucket(unit.number);
    while (*place != &unit) place = &(*place)->same_bucket;
    *place = unit.same_bucket;
    unit.next = unit.previous = unit.same_bucket = nullptr;
    unit.listed = false;
}

// ----

bool try_for(auto&& lock, std::chrono::milliseconds longest) {
    const auto until = std::chrono::steady_clock::now() + longest;
    while (!lock.try_lock()) {
        if (std::chrono::steady_clock::now() >= until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void flush_unit(Unit& unit, bool ends_record) {
    int err = 0;
    if (ends_record) finish_open_record(unit, err);
    write_out(unit.file, err);
}

void flush_units(bool end_records) {
    const bool locked = try_for(state.lock, std::chrono::milliseconds(50));
    auto patience = std::chrono::milliseconds(100);
    for (Unit* unit = state.first; unit != nullptr; unit = unit->next) {
        if (!unit->file.dirty && !unit->gnu.record_open) continue;
        // A unit in the middle of another thread's statement is waited for a little. A failing
        // program writes it as it stands: what it holds would be lost otherwise.
        const bool held = try_for(unit->lock, patience);
        if (!held) patience = std::chrono::milliseconds(0);
        if (end_records || (held && unit->statements == 0)) flush_unit(*unit, end_records);
        if (held) unit->lock.unlock();
    }
    if (locked) state.lock.unlock();
    flush_console_output();
}

}  // namespace

platform::Lock& unit_list_lock() {
    return state.lock;
}

void IOStatus_clear(IOStatus& status) {
    status = IOStatus{};
}

void Unit_initialise(Unit& unit, std::int32_t number, bool buffered) {
    char* buffer = unit.file.buffer;
    std::size_t capacity = unit.file.capacity;
    if (buffered && buffer == nullptr) {
        capacity = file_buffer_size;
        buffer = buffer_memory(nullptr, capacity);
        if (buffer == nullptr) out_of_memory("Not enough memory to allocate new file buffer\n");
    }
    if (buffered) std::memset(buffer, 0, capacity);

    unit.number = number;
    unit.current_record = 0;
    unit.recl = 0;
    unit.highest_record = 0;
    std::free(unit.saved_record);
    unit.saved_record = nullptr;
    unit.saved_size = unit.saved_cursor = unit.saved_last = 0;
    unit.saved_high_water = unit.saved_length = 0;
    unit.unfinished_line = 0;
    unit.driver = nullptr;
    unit.kind = UnitKind::driver;
    unit.share = 0;
    IOStatus_clear(unit.status);
    unit.window_target = 0;
    unit.dialect = &native_dialect;
    unit.file = File{};
    unit.file.buffer = buffer;
    unit.file.capacity = capacity;
    unit.file.buffered = buffered;
    unit.gnu = GnuConnection{};
    unit.native_console = false;
    unit.closer = nullptr;
    const std::lock_guard guard(state.lock);
    unit.handle_number = state.next_handle++;
}

Unit* Unit_create(std::int32_t number, bool buffered) {
    Unit* unit = new (std::nothrow) Unit;
    if (unit == nullptr) out_of_memory("Not enough memory to allocate new unit\n");
    Unit_initialise(*unit, number, buffered);
    return unit;
}

void Unit_close(Unit& unit) {
    if (unit.status.connected && unit.closer != nullptr) {
        unit.closer(unit);
    } else if (unit.file.descriptor >= 0) {
        console_detach(unit);
        file_close(unit.file);
    }
    unit.status.connected = false;
    std::free(unit.saved_record);
    unit.saved_record = nullptr;
    unit.saved_size = unit.saved_length = 0;
    free_buffer(unit.file);
}

namespace {

[[gnu::noinline]] void free_unit(Unit* unit) {
    std::free(unit->saved_record);
    free_buffer(unit->file);
    delete unit;
}

}  // namespace

void Unit_free(Unit* unit) {
    if (unit != nullptr && !unit->references.drop()) free_unit(unit);
}

void Unit_clear(Unit& unit) {
    IOStatus_clear(unit.status);
    unit.share = 0;
}

std::uint32_t Unit_iostatus(const Unit& unit) {
    const IOStatus& s = unit.status;
    auto bit = [](bool flag, int place) { return static_cast<std::uint32_t>(flag) << place; };
    return bit(true, 31) | bit(s.blank_null, 30) | bit(s.formatted, 29) | bit(s.direct, 28) |
           bit(s.connected, 27) | bit(s.end_of_file, 26) | bit(s.scratch, 25) |
           bit(s.positioned_by_append, 24) | bit(s.writing, 23) | bit(s.reading, 22) |
           bit(s.transparent, 21) | static_cast<std::uint32_t>(unit.kind) << 19 |
           bit(s.after_rewind, 13) | bit(s.after_backspace, 12) | bit(s.line_pending, 11) |
           bit(s.read_mode, 10) | bit(s.fixed_record_length, 9) | bit(s.read_only, 8);
}

std::uint32_t Unit_iostatus1(const Unit& unit) {
    const IOStatus& s = unit.status;
    auto bit = [](bool flag, int place) { return static_cast<std::uint32_t>(flag) << place; };
    return (static_cast<std::uint32_t>(unit.share) & 7U) | bit(s.may_read, 3) |
           bit(s.may_write, 4) | bit(s.delim_apostrophe, 5) | bit(s.delim_quote, 6) |
           bit(s.pad_no, 7);
}

Unit* UnitList_first() {
    return state.first;
}

Unit* UnitList_getUnit(std::int32_t number) {
    const std::lock_guard guard(state.lock);
    return find(number);
}

Unit* UnitList_getFUnit(std::int32_t handle_number) {
    const std::lock_guard guard(state.lock);
    for (Unit* unit = state.first; unit != nullptr; unit = unit->next) {
        if (unit->handle_number == handle_number) return unit;
    }
    return nullptr;
}

void UnitList_insert(Unit* unit) {
    const std::lock_guard guard(state.lock);
    if (!unit->listed) link(*unit);
}

void UnitList_remove(Unit* unit) {
    const std::lock_guard guard(state.lock);
    if (unit != nullptr && unit->listed) unlink(*unit);
}

void UnitList_remove(std::int32_t number) {
    const std::lock_guard guard(state.lock);
    if (Unit* unit = find(number)) unlink(*unit);
}

void UnitList_destroy(Unit* unit) {
    if (unit == nullptr) return;
    UnitList_remove(unit);
    Unit_close(*unit);
    Unit_free(unit);
}

void UnitList_destroy(std::int32_t number) {
    UnitList_destroy(UnitList_getUnit(number));
}

void UnitList_destroyAll() {
    for (;;) {
        Unit* unit = nullptr;
        {
            const std::lock_guard guard(state.lock);
            unit = state.first;
            if (unit == nullptr) return;
            unlink(*unit);
        }
        // A thread that never ends its statement (it waits for input, say) must not keep the
        // program from ending: its unit is written out and left alone.
        if (!try_for(unit->lock, std::chrono::milliseconds(200))) {
            flush_unit(*unit, true);
            continue;
        }
        Unit_close(*unit);
        unit->lock.unlock();
        Unit_free(unit);
    }
}

void hold_unit(Unit& unit) {
    unit.references.add();
    unit.lock.lock();
    unit.statements++;
}

namespace {

[[gnu::noinline]] Unit* acquire_among_threads(std::int32_t number) {
    for (;;) {
        Unit* unit = nullptr;
        {
            const std::lock_guard guard(state.lock);
            unit = find(number);
            if (unit == nullptr) return nullptr;
            unit->references.add();
        }
        unit->lock.lock();
        unit->statements++;
        if (unit->listed) return unit;
        release_unit(unit);
    }
}

}  // namespace

Unit* acquire_unit(std::int32_t number) {
    if (__libc_single_threaded == 0) return acquire_among_threads(number);
    // Nobody else can change the list or close the unit in between.
    Unit* unit = find(number);
    if (unit != nullptr) hold_unit(*unit);
    return unit;
}

Unit* acquire_or_create_unit(std::int32_t number, bool& created) {
    created = false;
    Unit* fresh = nullptr;
    for (;;) {
        if (Unit* unit = acquire_unit(number)) {
            if (fresh != nullptr) {
                release_unit(fresh);
            }
            return unit;
        }
        if (fresh == nullptr) {
            fresh = Unit_create(number, false);
            fresh->lock.lock();
            fresh->statements++;
        }
        const std::lock_guard guard(state.lock);
        if (find(number) != nullptr) continue;
        fresh->references.add();
        link(*fresh);
        created = true;
        return fresh;
    }
}

void release_unit(Unit* unit) {
    if (unit == nullptr) return;
    unit->statements--;
    unit->lock.unlock();
    Unit_free(unit);
}

void flush_all_units() {
    flush_units(false);
}

void finish_all_units() {
    flush_units(true);
}

}  // namespace tarn::fio
