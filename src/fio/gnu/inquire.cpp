#include "fio/gnu/inquire.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "fio/file/record_buffer.h"
#include "fio/gnu/child.h"
#include "fio/gnu/connection.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr Fault internal_file{60, iostat_inquire_internal_unit};
constexpr Fault bad_wait_id{81, iostat_bad_wait_id};

constexpr std::int32_t internal_unit_number = -1;

// Answers of RECL= that are no length.
constexpr std::int64_t recl_of_nothing = -1;
constexpr std::int64_t recl_of_stream = -2;

template <class Integer>
void answer(Integer* variable, std::int64_t value) {
    if (variable != nullptr) *variable = static_cast<Integer>(value);
}

void answer(const TextAnswer& variable, std::string_view word) {
    if (variable.text == nullptr) return;
    const std::size_t count = std::min(word.size(), variable.length);
    std::memcpy(variable.text, word.data(), count);
    std::memset(variable.text + count, ' ', variable.length - count);
}

std::string_view yes_no(bool yes) {
    return yes ? "YES" : "NO";
}

std::string_view word_of(Access access) {
    constexpr std::string_view words[] = {"SEQUENTIAL", "DIRECT", "STREAM"};
    return words[static_cast<int>(access)];
}

std::string_view word_of(Action action) {
    constexpr std::string_view words[] = {"READ", "WRITE", "READWRITE"};
    return words[static_cast<int>(action)];
}

std::string_view word_of(Delim delim) {
    constexpr std::string_view words[] = {"NONE", "APOSTROPHE", "QUOTE"};
    return words[static_cast<int>(delim)];
}

std::string_view word_of(Rounding round) {
    constexpr std::string_view words[] = {
        "PROCESSOR_DEFINED", "PROCESSOR_DEFINED", "NEAREST", "COMPATIBLE", "UP", "DOWN", "ZERO"};
    return words[static_cast<int>(round)];
}

std::string_view word_of(SignMode sign) {
    constexpr std::string_view words[] = {"PROCESSOR_DEFINED", "PLUS", "SUPPRESS"};
    return words[static_cast<int>(sign)];
}

std::string_view word_of(CarriageControl carriage) {
    constexpr std::string_view words[] = {"LIST", "FORTRAN", "NONE"};
    return words[static_cast<int>(carriage)];
}

std::string_view share_word(const Unit& unit) {
    return unit.share == 1 ? "DENYRW" : unit.share == 4 ? "DENYNONE" : "NODENY";
}

std::int64_t end_of(const File& file) {
    return std::max(file.size, file.logical_position);
}

// As OPEN left it, until the file has been moved in; then what the place itself tells.
// POS= of the next transfer: a READ may have stopped inside a record.
std::int64_t stream_position(const Unit& unit) {
    const GnuConnection& gnu = unit.gnu;
    const bool inside = gnu.record_open && !gnu.last_was_write;
    return unit.file.logical_position + 1 + static_cast<std::int64_t>(inside ? gnu.open_column : 0);
}

std::string_view position_word(const Unit& unit) {
    if (unit.status.direct) return "UNDEFINED";
    const File& file = unit.file;
    const std::int64_t here = file.logical_position;
    if (!unit.status.stream && !file.seekable && here > 0) return "UNSPECIFIED";
    const bool moved_back = unit.status.stream && file.position_state == place_unknown;
    if ((unit.status.stream && !moved_back) || !file.seekable) {
        return file.position_state == place_rewind   ? "REWIND"
               : file.position_state == place_append ? "APPEND"
                                                     : "ASIS";
    }
    if (here == 0 && file.position_state == place_asis) return "ASIS";
    if (here == end_of(file) && (here > 0 || file.position_state == place_append)) {
        return "APPEND";
    }
    return here == 0 ? "REWIND" : "UNSPECIFIED";
}

std::int64_t size_of(Unit& unit) {
    File& file = unit.file;
    if (unit.statements <= 1) {
        int err = 0;
        write_out(file, err);
    }
    struct stat about;
    if (::fstat(file.descriptor, &about) != 0) return -1;
    return std::max<std::int64_t>(about.st_size, file.dirty ? end_of(file) : 0);
}

void answer_numbers(Unit& unit, const Inquiry& q) {
    const IOStatus& status = unit.status;
    answer(q.exist, 1);
    answer(q.opened, 1);
    answer(q.number, unit.number);
    answer(q.named, status.scratch ? 0 : 1);
    answer(q.pending, 0);
    answer(q.nextrec, status.direct ? unit.gnu.record_number + 1 : 0);
    answer(q.recl, status.stream ? recl_of_stream : unit.recl);
    answer(q.pos, status.stream ? stream_position(unit) : 0);
    if (q.size != nullptr) *q.size = size_of(unit);
    if (!status.scratch) answer(q.name, unit.gnu.name);
}

void answer_access(const Unit& unit, const Inquiry& q) {
    const GnuConnection& gnu = unit.gnu;
    answer(q.access, word_of(gnu.access));
    answer(q.sequential, yes_no(gnu.access == Access::sequential));
    answer(q.direct, yes_no(gnu.access == Access::direct));
    answer(q.stream, yes_no(gnu.access == Access::stream));
    answer(q.form, unit.status.formatted ? "FORMATTED" : "UNFORMATTED");
    answer(q.formatted, yes_no(unit.status.formatted));
    answer(q.unformatted, yes_no(!unit.status.formatted));
    answer(q.position, position_word(unit));
    answer(q.action, word_of(gnu.action));
    answer(q.read, yes_no(gnu.action != Action::write));
    answer(q.write, yes_no(gnu.action != Action::read));
    answer(q.readwrite, yes_no(gnu.action == Action::readwrite));
    answer(q.share, share_word(unit));
}

void answer_modes(const Unit& unit, const Inquiry& q) {
    const GnuConnection& gnu = unit.gnu;
    const EditModes& modes = gnu.modes;
    const bool formatted = unit.status.formatted;
    constexpr std::string_view none = "UNDEFINED";
    answer(q.blank, !formatted ? none : modes.blank == Blank::null ? "NULL" : "ZERO");
    answer(q.delim, !formatted ? none : word_of(modes.delim));
    answer(q.pad, !formatted ? none : yes_no(modes.pad));
    answer(q.decimal, !formatted ? none : modes.decimal == DecimalMark::point ? "POINT" : "COMMA");
    answer(q.encoding, !formatted ? none : gnu.encoding == Encoding::utf8 ? "UTF-8" : "UNKNOWN");
    answer(q.round, word_of(modes.round));
    answer(q.sign, word_of(modes.sign));
    answer(q.convert, gnu.native_records           ? "TARN"
                      : gnu.endian == Endian::swap ? "BIG_ENDIAN"
                                                   : "LITTLE_ENDIAN");
    answer(q.asynchronous, yes_no(gnu.asynchronous));
    answer(q.carriage_control, word_of(gnu.carriage));
}

void answer_connected(Caller& caller, Unit& unit, const Inquiry& q) {
    answer_numbers(unit, q);
    answer_access(unit, q);
    answer_modes(unit, q);
    if (q.id != nullptr && unit.gnu.asynchronous && (*q.id < 0 || *q.id > unit.gnu.last_id)) {
        raise_fault(caller, bad_wait_id);
    }
}

// The answers that a unit and a file without a connection have in common.
void answer_unconnected(const Inquiry& q) {
    answer(q.opened, 0);
    answer(q.number, -1);
    answer(q.pending, 0);
    answer(q.nextrec, 0);
    answer(q.recl, recl_of_nothing);
    constexpr std::string_view none = "UNDEFINED";
    constexpr std::string_view unknown = "UNKNOWN";
    for (const TextAnswer* text :
         {&q.access, &q.form, &q.blank, &q.position, &q.pad, &q.decimal, &q.encoding}) {
        answer(*text, none);
    }
    for (const TextAnswer* text : {&q.sequential, &q.direct, &q.formatted, &q.unformatted,
                                   &q.stream, &q.share, &q.carriage_control}) {
        answer(*text, unknown);
    }
}

void answer_no_unit(std::int32_t number, const Inquiry& q) {
    answer_unconnected(q);
    answer(q.exist, number >= 0 ? 1 : 0);
    answer(q.named, 0);
    answer(q.pos, 0);
    answer(q.size, -1);
    for (const TextAnswer* text :
         {&q.action, &q.delim, &q.convert, &q.asynchronous, &q.round, &q.sign}) {
        answer(*text, "UNDEFINED");
    }
    for (const TextAnswer* text : {&q.read, &q.write, &q.readwrite}) answer(*text, "NO");
}

// The variables of ACTION=, DELIM=, CONVERT=, ASYNCHRONOUS=, ROUND=, SIGN= and POS= stay as they
// are, as gfortran leaves them.
void answer_no_connection_of(const std::string& path, std::string_view name, const Inquiry& q) {
    answer_unconnected(q);
    answer(q.exist, ::access(path.c_str(), F_OK) == 0 ? 1 : 0);
    answer(q.named, 1);
    answer(q.name, name);
    if (q.size != nullptr) {
        struct stat about;
        *q.size = ::stat(path.c_str(), &about) == 0 ? about.st_size : -1;
    }
    const bool reads = ::access(path.c_str(), R_OK) == 0;
    const bool writes = ::access(path.c_str(), W_OK) == 0;
    answer(q.read, yes_no(reads));
    answer(q.write, yes_no(writes));
    answer(q.readwrite, yes_no(reads && writes));
}

Unit* acquire_unit_of(const std::string& path) {
    const Unit* found = sys_findUnitFromFilename(path);
    return found != nullptr ? acquire_unit(found->number) : nullptr;
}

}  // namespace

void inquire(Caller& caller, const Inquiry& q) {
    bring_up_units();
    std::string path;
    Unit* unit = nullptr;
    if (q.by_file) {
        const std::size_t last = q.file.find_last_not_of(' ');
        path = q.file.substr(0, last == std::string_view::npos ? 0 : last + 1);
        unit = acquire_unit_of(path);
    } else {
        caller.has_unit = true;
        const Statement* const parent = parent_of(caller.unit);
        const bool internal = parent != nullptr && parent->internal;
        if (internal || caller.unit == internal_unit_number) raise_fault(caller, internal_file);
        unit = acquire_unit(caller.unit);
    }
    if (unit != nullptr && unit->status.connected) {
        answer_connected(caller, *unit, q);
    } else if (q.by_file) {
        answer_no_connection_of(path, path, q);
    } else {
        answer_no_unit(caller.unit, q);
    }
    release_unit(unit);
}

}  // namespace tarn::fio
