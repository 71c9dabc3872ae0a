#include "fio/gnu/unit_bytes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "fio/file/record_buffer.h"
#include "fio/gnu/connection.h"
#include "fio/gnu/records.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

// A connected unit, locked while this lives.
class Held {
  public:
    explicit Held(std::int32_t number) {
        bring_up_units();
        unit_ = acquire_unit(number);
    }
    ~Held() { release_unit(unit_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    Unit* get() const { return unit_ != nullptr && unit_->status.connected ? unit_ : nullptr; }
    // The unit, unless a statement on it is under way: its record must not be moved.
    Unit* idle() const {
        Unit* unit = get();
        return unit != nullptr && unit->statements == 1 ? unit : nullptr;
    }

  private:
    Unit* unit_ = nullptr;
};

// What a non-advancing READ has taken of its record is behind the position.
void leave_record(Unit& unit) {
    GnuConnection& gnu = unit.gnu;
    if (!gnu.record_open || gnu.last_was_write) return;
    consume(unit.file, gnu.open_column);
    gnu.record_open = false;
}

}  // namespace

int get_byte(std::int32_t number, char* text, std::size_t length) {
    if (length > 0) std::memset(text, ' ', length);
    const Held held(number);
    Unit* unit = held.idle();
    if (unit == nullptr) return -1;
    if (!unit->status.may_read) return EBADF;
    leave_record(*unit);
    char* begin = nullptr;
    int err = 0;
    const std::size_t count = peek_bytes(unit->file, 1, begin, err);
    if (err != 0) return err;
    if (count == 0) return -1;
    if (length > 0) *text = *begin;
    consume(unit->file, 1);
    return 0;
}

int put_byte(std::int32_t number, const char* text, std::size_t length) {
    const Held held(number);
    Unit* unit = held.idle();
    if (unit == nullptr) return -1;
    if (!unit->status.may_write) return EBADF;
    if (length == 0) return 0;
    leave_record(*unit);
    int err = 0;
    const OutputRoom room = begin_record(unit->file, 1, err);
    if (room.begin == nullptr) return err;
    *room.begin = *text;
    end_record(unit->file, 1, leaves_at_once(*unit), err);
    return err;
}

int seek_unit(std::int32_t number, std::int64_t offset, std::int32_t whence) {
    const Held held(number);
    Unit* unit = held.idle();
    if (unit == nullptr || !unit->file.seekable) return -1;
    File& file = unit->file;
    leave_record(*unit);
    int err = 0;
    write_out(file, err);
    std::int64_t base = 0;
    if (whence == 1) base = file.logical_position;
    if (whence == 2) base = file.size;
    if (err != 0 || whence < 0 || whence > 2) return -1;
    if (__builtin_add_overflow(base, offset, &offset) || offset < 0) return -1;
    file_set_append(file, false);
    move_to(file, offset, err);
    file.position_state = place_unknown;
    unit->gnu.end = EndState::before;
    unit->gnu.record_open = false;
    return err == 0 ? 0 : -1;
}

std::int64_t tell_unit(std::int32_t number) {
    const Held held(number);
    const Unit* unit = held.get();
    if (unit == nullptr) return -1;
    const GnuConnection& gnu = unit->gnu;
    const bool inside = gnu.record_open && !gnu.last_was_write;
    return unit->file.logical_position + (inside ? static_cast<std::int64_t>(gnu.open_column) : 0);
}

int descriptor_of_unit(std::int32_t number) {
    const Held held(number);
    const Unit* unit = held.get();
    return unit != nullptr ? unit->file.descriptor : -1;
}

bool unit_is_terminal(std::int32_t number) {
    const int descriptor = descriptor_of_unit(number);
    return descriptor >= 0 && ::isatty(descriptor) == 1;
}

void terminal_name(std::int32_t number, char* text, std::size_t length) {
    std::memset(text, ' ', length);
    const int descriptor = descriptor_of_unit(number);
    char name[256];
    if (descriptor < 0 || ::ttyname_r(descriptor, name, sizeof name) != 0) return;
    // All of it or nothing, and no room for a terminator is no room.
    const std::string_view word(name);
    if (word.size() < length) std::memcpy(text, word.data(), word.size());
}

void flush_one_unit(std::int32_t number) {
    const Held held(number);
    Unit* unit = held.idle();
    int err = 0;
    if (unit != nullptr) write_out(unit->file, err);
}

}  // namespace tarn::fio
