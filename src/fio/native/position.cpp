// BACKSPACE, REWIND and ENDFILE.
#include "fio/gnu/position.h"

#include <algorithm>
#include <cstring>

#include "fio/file/native_frame.h"
#include "fio/native/connect.h"
#include "fio/native/hooks.h"
#include "platform/kernel/error.h"

namespace tarn::fio::native {
namespace {

bool is_driver(const Unit& unit) {
    return unit.kind == UnitKind::driver;
}

// The unit of a positioning statement, or null with the failure told.
Unit* unit_of_statement(bool& go_on) {
    const IO_type& io = current();
    go_on = true;
    if (io.unit != nullptr && io.unit_number >= 0) return io.unit;
    go_on = IO_error(94);
    return nullptr;
}

bool tell_driver(Unit& unit, ActionCode operation) {
    IO_type& io = current();
    std::int32_t length = 0;
    return call_driver(unit, operation, io.buffer_start, static_cast<std::int32_t>(io.buffer_size),
                       length);
}

bool write_kept_line_end(Unit& unit) {
    if (unit.kind != UnitKind::printer) return true;
    int err = 0;
    write_printer_line_end(unit, err);
    return err == 0 || report_file_error(err, "WrSeqFrm");
}

// Moves a file that a gnu statement connected, whose records may have another layout.
bool move_gnu_file(Unit& unit, void (*move)(Unit&, int&), const char* where) {
    int err = 0;
    move(unit, err);
    if (err < 0) return IO_error(110);
    return err == 0 || report_file_error(platform::platform_error(err), where);
}

// Reads a file from behind without disturbing what the unit knows of it.
class BackwardReader {
  public:
    explicit BackwardReader(Unit& unit) : unit_(unit) {}

    // Bytes [from, from + count) into `bytes`.
    bool read(std::int64_t from, char* bytes, std::size_t count) {
        std::int64_t position = 0;
        sys_fileSeek(unit_, from, position, err_);
        if (err_ != 0 || position != from) return false;
        return sys_fileRead(unit_, bytes, count, err_) == count;
    }
    int error() const { return err_; }

  private:
    Unit& unit_;
    int err_ = 0;
};

// The byte behind the LF that ends the record before the one in front of `end`; 0 when there is
// none. `found_line_feed` tells the two apart.
bool find_record_start(Unit& unit, std::int64_t end, std::int64_t& start, int& err) {
    constexpr std::int64_t block_size = 8192;
    char block[block_size];
    BackwardReader reader(unit);
    // A line feed directly in front of the position ends the record to step over.
    for (std::int64_t limit = end; limit > 0;) {
        const std::int64_t from = std::max<std::int64_t>(0, limit - block_size);
        const auto count = static_cast<std::size_t>(limit - from);
        if (!reader.read(from, block, count)) {
            err = reader.error();
            return false;
        }
        const std::size_t searched = limit == end && block[count - 1] == '\n' ? count - 1 : count;
        const void* const found = memrchr(block, '\n', searched);
        if (found != nullptr) {
            start = from + (static_cast<const char*>(found) - block) + 1;
            return true;
        }
        limit = from;
    }
    start = 0;
    return true;
}

bool step_back_formatted(Unit& unit) {
    if (!write_kept_line_end(unit) || !IO_write_flush()) return false;
    std::int64_t position = 0;
    std::int64_t start = 0;
    int err = 0;
    sys_getFilePos(unit, position, err);
    if (err == 0 && !find_record_start(unit, position, start, err) && err == 0) return IO_error(90);
    // Printer form ends its lines with CR and begins them with LF: the LF belongs to the record,
    // unless another one, a line of its own, follows.
    if (err == 0 && unit.kind == UnitKind::printer && start > 0) {
        char behind = 0;
        BackwardReader reader(unit);
        if (!reader.read(start, &behind, 1) || behind != '\n') --start;
    }
    if (err == 0) sys_fileSeek(unit, start, position, err);
    return err == 0 || IO_system_error(err, "IO_backspace");
}

// Where the unformatted record in front of `end` starts; -1: there is no whole record.
std::int64_t unformatted_start(Unit& unit, std::int64_t end, int& err) {
    BackwardReader reader(unit);
    char trailer[very_long_frame];
    const auto tail = static_cast<std::size_t>(std::min<std::int64_t>(end, sizeof trailer));
    if (tail == 0 || !reader.read(end - static_cast<std::int64_t>(tail), trailer, tail)) {
        err = reader.error();
        return -1;
    }
    return native_record_start(end, trailer, tail);
}

bool step_back_unformatted(Unit& unit) {
    std::int64_t position = 0;
    int err = 0;
    sys_getFilePos(unit, position, err);
    const std::int64_t start = err == 0 ? unformatted_start(unit, position, err) : -1;
    if (err == 0 && start < 0) return IO_error(110);
    if (err == 0) sys_fileSeek(unit, start, position, err);
    return err == 0 || IO_system_error(err, "IO_backspace");
}

// The steps of BACKSPACE on a unit that has a position.
bool step_back(Unit& unit) {
    IOStatus& status = unit.status;
    if (is_driver(unit)) {
        if (!tell_driver(unit, ActionCode::backspace)) return false;
        unit.current_record = std::max<std::int64_t>(0, unit.current_record - 1);
        return true;
    }
    if (!status.reading && !status.writing) return true;
    if (unit.kind == UnitKind::console || unit.current_record == 0) return true;
    if (status.end_of_file) {
        // The end-of-file record is stepped back over.
        status.after_backspace = true;
        return true;
    }
    if (!(status.formatted ? step_back_formatted(unit) : step_back_unformatted(unit))) return false;
    --unit.current_record;
    status.after_backspace = true;
    return true;
}

bool may_backspace(UnitKind kind) {
    return kind == UnitKind::driver || kind == UnitKind::console || is_file_kind(kind);
}

bool rewind_file(Unit& unit) {
    if (is_gnu_file(unit)) return move_gnu_file(unit, go_to_start, "IO_rewind");
    if (!write_kept_line_end(unit) || !IO_write_flush()) return false;
    std::int64_t position = 0;
    int err = 0;
    sys_fileSeek(unit, 0, position, err);
    return err == 0 || report_file_error(err, "IO_rewind");
}

bool clear_window(Unit& unit) {
    const auto clear = hooks().window_clear;
    if (clear == nullptr) return IO_not_available("Windows are not available");
    clear(unit.driver);
    return true;
}

// What ENDFILE refuses, in order; true when nothing does.
bool check_endfile(const Unit& unit) {
    const IOStatus& status = unit.status;
    const std::int32_t refusal = status.may_write ? 90 : 139;
    const bool other_kind = unit.kind > UnitKind::console && !is_file_kind(unit.kind);
    if (other_kind && !IO_error(refusal)) return false;
    return !status.reading || status.writing || IO_error(refusal);
}

}  // namespace

bool IO_backspace() {
    bool go_on = true;
    Unit* const unit = unit_of_statement(go_on);
    if (unit == nullptr) return go_on;
    IOStatus& status = unit->status;
    if (status.direct && !IO_error(96)) return false;
    if (status.transparent) return IO_error(90);
    if (!may_backspace(unit->kind)) return IO_error(90);
    IO_discard_buffer();
    if (is_gnu_file(*unit)) {
        if (!move_gnu_file(*unit, go_back_one_record, "IO_backspace")) return false;
    } else if (!step_back(*unit)) {
        return false;
    }
    unit->unfinished_line = 0;
    status.end_of_file = false;
    hand_over_to_gnu(*unit);
    return true;
}

bool IO_rewind() {
    bool go_on = true;
    Unit* const unit = unit_of_statement(go_on);
    if (unit == nullptr) return go_on;
    if (unit->status.direct && !IO_error(96)) return false;
    switch (unit->kind) {
        case UnitKind::driver:
            if (!tell_driver(*unit, ActionCode::rewind)) return false;
            break;
        case UnitKind::console:
            break;
        case UnitKind::window:
            return clear_window(*unit);
        case UnitKind::text:
        case UnitKind::full:
        case UnitKind::printer:
            if (!rewind_file(*unit)) return false;
            break;
        default:
            return IO_error(90);
    }
    unit->current_record = 0;
    unit->unfinished_line = 0;
    unit->status.end_of_file = false;
    unit->status.reading = false;
    unit->status.writing = false;
    unit->status.after_rewind = true;
    unit->file.stream_read_position = unit->file.stream_write_position = 1;
    hand_over_to_gnu(*unit);
    return true;
}

bool IO_endfile() {
    bool go_on = true;
    Unit* const unit = unit_of_statement(go_on);
    if (unit == nullptr) return go_on;
    IOStatus& status = unit->status;
    if ((status.direct || status.stream) && !IO_error(96)) return false;
    if (is_gnu_file(*unit)) {
        status.end_of_file = unit->gnu.end == EndState::after;
        if (!move_gnu_file(*unit, end_output, "IO_endfile")) return false;
    }
    if (status.end_of_file && !IO_error(104)) return false;
    // Refused before anything is cut.
    if (!check_endfile(*unit)) return false;
    if (is_file_kind(unit->kind)) {
        if (!IO_write_flush() || !write_kept_line_end(*unit)) return false;
        int err = 0;
        const bool at_start = unit->current_record == 0 && !is_gnu_file(*unit);
        if (at_start && !status.transparent) sys_truncateFile(*unit, true, err);
        if (err != 0) return report_file_error(err, "IO_endfile");
    }
    if (is_driver(*unit)) {
        if (!tell_driver(*unit, ActionCode::endfile)) return false;
    } else if (unit->kind == UnitKind::console) {
        if (!IO_error(155)) return false;
    } else if (is_file_kind(unit->kind)) {
        int err = 0;
        sys_truncateFile(*unit, false, err);
        if (err != 0) return report_file_error(err, "IO_endfile");
    }
    status.end_of_file = true;
    hand_over_to_gnu(*unit);
    return true;
}

}  // namespace tarn::fio::native
