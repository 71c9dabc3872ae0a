#include "fio/gnu/position.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "fio/file/native_frame.h"
#include "fio/file/record_buffer.h"
#include "fio/gnu/child.h"
#include "fio/gnu/connection.h"
#include "fio/gnu/options.h"
#include "fio/gnu/records.h"
#include "fio/gnu/unformatted_marker.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr Fault rewind_of_direct{96, iostat_bad_option};
constexpr Fault move_of_direct{96, iostat_option_conflict};
constexpr Fault backspace_of_stream{90, iostat_option_conflict};
constexpr Fault backspace_of_nothing{94, iostat_bad_unit};
constexpr Fault flush_of_nothing{94, -iostat_bad_unit};
constexpr Fault behind_end{104, iostat_option_conflict};
constexpr Fault bad_wait_id{81, iostat_bad_wait_id};
constexpr Fault same_unit{433, iostat_option_conflict};
constexpr Fault corrupt{110, EINVAL};

// The unit of a statement, locked; released at the end of the statement. Null: not connected, or
// the caller has heard why it can't be had.
class Holding {
  public:
    explicit Holding(Caller& caller) {
        bring_up_units();
        caller.has_unit = true;
        unit_ = acquire_unit(caller.unit);
        if (unit_ == nullptr) return;
        busy_ = unit_->statements > 1;
        if (busy_) raise_fault(caller, same_unit);
    }
    ~Holding() { release_unit(unit_); }
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;

    bool busy() const { return busy_; }
    Unit* unit() const { return unit_ != nullptr && unit_->status.connected ? unit_ : nullptr; }

  private:
    Unit* unit_ = nullptr;
    bool busy_ = false;
};

bool is_unformatted_stream(const Unit& unit) {
    return unit.status.stream && !unit.status.formatted;
}

}  // namespace

void end_output(Unit& unit, int& err) {
    GnuConnection& gnu = unit.gnu;
    const bool written = gnu.last_was_write;
    finish_open_record(unit, err);
    gnu.record_open = false;
    write_out(unit.file, err);
    // What ends a stream, a formatted one by its whole records, has done so.
    const bool cuts = written && unit.status.may_write && !unit.status.direct &&
                      !unit.status.stream && !unit.file.append && !gnu.preconnected;
    if (cuts) cut_here(unit.file, err);
    gnu.last_was_write = false;
}

namespace {

// Pipes and terminals have no place to go back to; devices like /dev/null take any.
bool has_places(const File& file) {
    return file.seekable || ::lseek(file.descriptor, 0, SEEK_CUR) >= 0;
}

// A file that can't be sought in still has what its buffer holds.
bool step_in_buffer(File& file, std::int64_t target) {
    const std::int64_t offset = target - file.buffer_position;
    if (file.dirty || offset < 0 || offset > static_cast<std::int64_t>(file.data_count)) {
        return false;
    }
    file.read_index = static_cast<std::size_t>(offset);
    file.logical_position = target;
    return true;
}

void set_place(Unit& unit, std::int64_t target, int& err) {
    File& file = unit.file;
    file_set_append(file, false);
    if (!file.seekable) {
        if (target != file.logical_position && !step_in_buffer(file, target)) err = ESPIPE;
    } else {
        move_to(file, target, err);
    }
    file.position_state = place_unknown;
}

// Reads `count` bytes that end at `end`, from the buffer where that has them. False: they can't be
// had.
bool read_before(const File& file, std::int64_t end, char* bytes, std::size_t count, int& err) {
    std::size_t done = 0;
    const std::int64_t start = end - static_cast<std::int64_t>(count);
    const std::int64_t buffer_end =
        file.buffer_position + static_cast<std::int64_t>(file.data_count);
    if (!file.dirty && start >= file.buffer_position && end <= buffer_end) {
        std::memcpy(bytes, file.buffer + (start - file.buffer_position), count);
        return true;
    }
    while (done < count) {
        const ssize_t n = ::pread(file.descriptor, bytes + done, count - done,
                                  start + static_cast<std::int64_t>(done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            err = n < 0 ? errno : EIO;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

// The start of the record that ends at `end`: behind the line feed before the last byte.
std::int64_t start_of_line_before(const File& file, std::int64_t end, int& err) {
    // In the buffer first: stepping back through a file record by record stays cheap.
    std::int64_t at = end - 1;
    if (!file.dirty && at >= file.buffer_position &&
        at <= file.buffer_position + static_cast<std::int64_t>(file.data_count)) {
        const auto length = static_cast<std::size_t>(at - file.buffer_position);
        const void* feed = length == 0 ? nullptr : ::memrchr(file.buffer, '\n', length);
        if (feed != nullptr) {
            return file.buffer_position + (static_cast<const char*>(feed) - file.buffer) + 1;
        }
        at = file.buffer_position;
    }
    if (!file.seekable) {
        // The record may have begun before what the buffer holds.
        if (at > 0) err = ESPIPE;
        return at;
    }
    char block[8192];
    while (at > 0) {
        const auto length = static_cast<std::size_t>(std::min<std::int64_t>(at, sizeof block));
        if (!read_before(file, at, block, length, err)) return end;
        const std::int64_t start = at - static_cast<std::int64_t>(length);
        if (const void* feed = ::memrchr(block, '\n', length)) {
            return start + (static_cast<const char*>(feed) - block) + 1;
        }
        at = start;
    }
    return 0;
}

std::int64_t start_of_native_record_before(const Unit& unit, std::int64_t end, int& err) {
    char bytes[very_long_frame];
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(end, sizeof bytes));
    if (!read_before(unit.file, end, bytes, count, err)) return end;
    const std::int64_t start = native_record_start(end, bytes, count);
    if (start >= 0) return start;
    err = -1;
    return end;
}

// The start of the unformatted record that ends at `end`: its length stands behind it as in front
// of it, and a negative one tells that the record goes on before.
std::int64_t start_of_record_before(const Unit& unit, std::int64_t end, int& err) {
    if (unit.gnu.native_records) return start_of_native_record_before(unit, end, err);
    const std::size_t size = marker_size();
    std::int64_t at = end;
    for (;;) {
        char bytes[8];
        if (at < static_cast<std::int64_t>(2 * size)) break;
        if (!read_before(unit.file, at, bytes, size, err)) {
            // A record that claims more than the file has was stepped over.
            if (err == EIO) err = -1;
            return end;
        }
        const std::int64_t length = load_marker(bytes, size, unit.gnu.endian == Endian::swap);
        const std::int64_t room = at - static_cast<std::int64_t>(2 * size);
        if (length < -room || length > room) break;
        at = room - (length < 0 ? -length : length);
        if (length >= 0) return at;
    }
    err = -1;
    return end;
}

bool check_rewind(Caller& caller, const Unit& unit) {
    if (!unit.status.direct) return true;
    raise_fault(caller, rewind_of_direct);
    return false;
}

void report(Caller& caller, int err) {
    if (err < 0) {
        raise_fault(caller, corrupt);
    } else if (err != 0) {
        raise_system_fault(caller, err);
    }
}

}  // namespace

void go_to_start(Unit& unit, int& err) {
    end_output(unit, err);
    File& file = unit.file;
    if (file.seekable) {
        set_place(unit, 0, err);
    } else if (!has_places(file) && !step_in_buffer(file, 0)) {
        err = ESPIPE;
        return;
    }
    file.position_state = place_rewind;
    unit.current_record = 0;
    unit.gnu.record_number = 0;
    unit.gnu.end = EndState::before;
    unit.status.end_of_file = false;
}

void go_to_end(Unit& unit, int& err) {
    end_output(unit, err);
    File& file = unit.file;
    int number = 0;
    file_seek_to_end(file, number);
    if (number != 0) err = errno;
    file.position_state = place_append;
    unit.gnu.end = EndState::at;
    if (!file.shared || number != 0) return;
    file_set_append(file, true);
    unit.gnu.last_was_write = true;
}

void go_back_one_record(Unit& unit, int& err) {
    GnuConnection& gnu = unit.gnu;
    // A record that was read in part is the one to go back to the start of.
    const bool inside = gnu.record_open && !gnu.last_was_write;
    if (gnu.last_was_write && unit.file.logical_position > 0 && !has_places(unit.file)) {
        err = EINVAL;
        return;
    }
    end_output(unit, err);
    if (gnu.end == EndState::after) {
        gnu.end = EndState::at;
        return;
    }
    gnu.end = EndState::before;
    unit.status.end_of_file = false;
    File& file = unit.file;
    const std::int64_t here = file.logical_position;
    unit.file.position_state = place_unknown;
    if (here == 0 || inside || err != 0) return;
    if (!file.seekable && has_places(file)) return;
    int failure = 0;
    const std::int64_t start = unit.status.formatted ? start_of_line_before(file, here, failure)
                                                     : start_of_record_before(unit, here, failure);
    if (failure == 0) set_place(unit, start, failure);
    if (failure != 0) {
        err = failure;
        return;
    }
    if (unit.current_record > 0) --unit.current_record;
}

void rewind_unit(Caller& caller) {
    const Holding held(caller);
    Unit* unit = held.unit();
    if (unit == nullptr || held.busy() || !check_rewind(caller, *unit)) return;
    int err = 0;
    go_to_start(*unit, err);
    report(caller, err);
}

void backspace_unit(Caller& caller) {
    const Holding held(caller);
    Unit* unit = held.unit();
    if (held.busy()) return;
    if (unit == nullptr) return raise_fault(caller, backspace_of_nothing);
    if (unit->status.direct) return raise_fault(caller, move_of_direct);
    if (is_unformatted_stream(*unit)) return raise_fault(caller, backspace_of_stream);
    int err = 0;
    go_back_one_record(*unit, err);
    report(caller, err);
}

// A unit without a connection gets one: its file becomes empty.
void end_file_of_unit(Caller& caller) {
    {
        const Holding held(caller);
        if (held.busy()) return;
        Unit* unit = held.unit();
        if (unit != nullptr) {
            if (unit->status.direct) return raise_fault(caller, move_of_direct);
            GnuConnection& gnu = unit->gnu;
            if (gnu.access == Access::sequential && gnu.end == EndState::after) {
                return raise_fault(caller, behind_end);
            }
            int err = 0;
            finish_open_record(*unit, err);
            gnu.record_open = false;
            write_out(unit->file, err);
            if (!unit->status.may_write || !has_places(unit->file)) {
                err = EINVAL;
            } else if (err == 0) {
                int number = 0;
                file_truncate(unit->file, unit->file.logical_position, number);
                if (number != 0) err = errno;
            }
            if (err != 0) return report(caller, err);
            gnu.last_was_write = false;
            gnu.end = unit->status.stream ? EndState::at : EndState::after;
            unit->file.position_state = place_append;
            return;
        }
    }
    Unit* unit =
        connect_implicitly(caller, caller.unit, false, Form::unformatted, Access::sequential);
    if (unit == nullptr) return;
    int number = 0;
    file_truncate(unit->file, 0, number);
    unit->gnu.end = EndState::after;
    if (number != 0) raise_system_fault(caller, errno);
    release_unit(unit);
}

void flush_unit(Caller& caller) {
    // A procedure that a statement of the unit is running: the record isn't complete yet.
    if (parent_of(caller.unit) != nullptr) return;
    const Holding held(caller);
    Unit* unit = held.unit();
    if (held.busy()) return;
    if (unit == nullptr) return raise_fault(caller, flush_of_nothing);
    int err = 0;
    write_out(unit->file, err);
    report(caller, err);
}

// Every transfer is done when its statement ends: there is nothing to wait for, least of all on a
// unit without a file.
void wait_for_unit(Caller& caller, const std::int32_t* id) {
    const Holding held(caller);
    Unit* unit = held.unit();
    if (unit == nullptr || id == nullptr || !unit->gnu.asynchronous) return;
    if (*id < 0 || *id > unit->gnu.last_id) raise_fault(caller, bad_wait_id);
}

}  // namespace tarn::fio
