// CLOSE, FLUSH, and the implicit closes: an OPEN that takes a unit over, and the program's end.
#include <mutex>
#include <string>

#include "fio/gnu/connection.h"
#include "fio/native/connect.h"
#include "platform/kernel/error.h"

namespace tarn::fio::native {
namespace {

enum CloseWord { close_keep = 1, close_delete };
constexpr std::string_view close_words = "KEEP DELETE ";
constexpr std::int32_t in_use_message = 433;

// Unconnects a unit. A CLOSE statement takes its record out of the list too.
void drop_connection(IO_type& io, Unit& unit) {
    unit.status.connected = false;
    unit.kind = UnitKind::driver;
    unit.driver = nullptr;
    if (!io.close_removes_unit) return;
    UnitList_destroy(&unit);
    if (io.unit == &unit) io.unit = nullptr;
    if (io.target_unit == &unit) io.target_unit = nullptr;
}

bool CLOSE_error(IO_type& io, Unit& unit, std::int32_t message) {
    int ignored = 0;
    if (unit.file.descriptor >= 0) sys_fileClose(unit, ignored);
    drop_connection(io, unit);
    return IO_error(message);
}

bool flush_file(Unit& unit) {
    int err = sys_flushWriteBuffer(unit);
    // What was read ahead from a pipe can't be read again.
    if (err == 0 && unit.file.seekable) sys_logicalFileSync(unit);
    return err == 0 || report_file_error(err, "IO_close");
}

bool delete_file(const std::string& path) {
    int err = 0;
    sys_deleteFile(path, err);
    if (err == 0 || err == platform::error_file_not_found) return true;
    if (err == platform::error_access_denied) return IO_error(173);
    return IO_system_error(err, "IO_close");
}

bool rename_file(const std::string& path, std::string_view new_name) {
    int err = 0;
    sys_renameFile(path, new_name, err);
    if (err == 0) return true;
    if (err == platform::error_already_exists) return IO_error(125);
    if (err == platform::error_access_denied) return IO_error(173);
    return IO_system_error(err, "IO_close");
}

// Closes the file by the rules of the dialect that opened it; a platform error number.
int close_file(Unit& unit) {
    int err = 0;
    if (unit.dialect != &native_dialect) {
        int reason = 0;
        disconnect(unit, false, reason);
        give_back_new_unit_number(unit.number);
        err = platform::platform_error(reason);
    } else if (unit.file.descriptor >= 0) {
        sys_fileClose(unit, err);
    }
    return err;
}

// The common tail. `new_name` null: none.
bool close_unit(IO_type& io, Unit& unit, std::int32_t status, const std::string_view* new_name) {
    int err = 0;
    if (unit.kind == UnitKind::printer) write_printer_line_end(unit, err);
    if (io.action == ActionCode::flush) {
        if (err != 0) return report_file_error(err, "IO_close");
        if (is_file_kind(unit.kind)) return flush_file(unit);
        flush_console_output();
        return true;
    }
    const bool is_file = is_file_kind(unit.kind);
    const std::string path = unit.file.path;
    const int close_error = close_file(unit);
    if (err == 0) err = close_error;
    drop_connection(io, unit);
    if (err != 0 && is_file) return report_file_error(err, "IO_close");
    if (!is_file || path.empty()) return true;
    if (status == close_delete) return delete_file(path);
    if (new_name != nullptr) return rename_file(path, *new_name);
    return true;
}

bool close_driver(Unit& unit) {
    std::int32_t length = 0;
    IO_type& io = current();
    return call_driver(unit, ActionCode::close, io.buffer_start,
                       static_cast<std::int32_t>(io.buffer_size), length);
}

bool is_driver(const Unit& unit) {
    return unit.kind == UnitKind::driver && unit.driver != nullptr;
}

// A statement below this one is still at work on the unit.
bool is_in_use(const Unit& unit) {
    return unit.statements > 1;
}

bool close_connected(IO_type& io, Unit& unit, std::int32_t status) {
    const bool renames = io.spec_block.new_name.given;
    std::string_view new_name = io.spec_block.new_name.view();
    while (!new_name.empty() && new_name.front() == ' ') new_name.remove_prefix(1);
    IO_discard_buffer();
    if (is_file_kind(unit.kind)) {
        if (unit.status.read_only && status == close_delete) return CLOSE_error(io, unit, 173);
        if (unit.status.scratch && !renames) {
            if (status == close_keep && !IO_error(92)) return false;
            status = close_delete;
        }
    } else if (is_driver(unit) && !close_driver(unit)) {
        // The failure is told already; the unit goes all the same.
        drop_connection(io, unit);
        return false;
    }
    return close_unit(io, unit, status, renames ? &new_name : nullptr);
}

}  // namespace

bool is_connected(const Unit& unit) {
    return unit.status.connected || unit.kind == UnitKind::console || unit.kind == UnitKind::window;
}

bool report_file_error(int err, const char* where) {
    constexpr int not_enough_room = 28;
    if (err == error_disk_full || err == not_enough_room) return IO_error(117);
    return IO_system_error(err, where);
}

bool IO_close() {
    IO_type& io = current();
    if (io.action == ActionCode::flush) {
        if (io.unit == nullptr || io.unit_number < 0) return IO_error(94);
        return close_unit(io, *io.unit, 0, nullptr);
    }
    const std::int32_t status = match(io.spec_block.status, close_words);
    if (status < 0 && !IO_error(152)) return false;
    if (io.unit == nullptr || io.unit_number < 0) return true;
    if (is_in_use(*io.unit)) return IO_error(in_use_message);
    return close_connected(io, *io.unit, status);
}

bool IO_quick_close(Unit& unit) {
    if (is_in_use(unit)) return IO_error(in_use_message);
    IO_discard_buffer();
    if (is_driver(unit) && !close_driver(unit)) return false;
    return close_unit(current(), unit, unit.status.scratch ? close_delete : close_keep, nullptr);
}

void close_connection(Unit& unit) {
    const std::lock_guard<std::recursive_mutex> guard(state().critical_section);
    beginIO(ActionCode::close);
    IO_type& io = current();
    io.close_removes_unit = false;
    io.unit_number = unit.number;
    io.unit = io.target_unit = &unit;
    // No label and no IOSTAT=: what goes wrong here ends the program with a report.
    (void)close_connected(io, unit, 0);
    restoreSavedIO();
}

}  // namespace tarn::fio::native
