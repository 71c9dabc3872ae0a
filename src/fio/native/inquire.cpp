// INQUIRE.
#include <cstring>
#include <string>
#include <sys/stat.h>

#include "fio/native/connect.h"

namespace tarn::fio::native {
namespace {

// The words that an INQUIRE returns.
constexpr std::string_view words[] = {
    "UNKNOWN",     "NO",       "YES",        "FORMATTED", "UNFORMATTED", "DIRECT", "SEQUENTIAL",
    "TRANSPARENT", "NULL",     "ZERO",       "UNDEFINED", "COMPAT",      "DENYRW", "DENYWR",
    "DENYRD",      "DENYNONE", "REWIND",     "APPEND",    "ASIS",        "READ",   "WRITE",
    "READWRITE",   "NONE",     "APOSTROPHE", "QUOTE",     "STREAM",
};
enum Word : std::int32_t {
    word_unknown,
    word_no,
    word_yes,
    word_formatted,
    word_unformatted,
    word_direct,
    word_sequential,
    word_transparent,
    word_null,
    word_zero,
    word_undefined,
    word_compat,
    word_rewind = 16,
    word_append,
    word_asis,
    word_read,
    word_write,
    word_readwrite,
    word_none,
    word_apostrophe,
    word_quote,
    word_stream,
};

struct Answers {
    bool exist = false;
    bool opened = false;
    bool named = false;
    std::int64_t number = -1;
    std::int32_t handle = 0;
    bool has_handle = false;
    std::string name = "UNDEFINED";
    std::int32_t access = word_undefined;
    std::int32_t direct = word_unknown;
    std::int32_t sequential = word_unknown;
    std::int32_t transparent = word_unknown;
    std::int32_t form = word_undefined;
    std::int32_t formatted = word_unknown;
    std::int32_t unformatted = word_unknown;
    std::int32_t blank = word_undefined;
    std::int32_t share = word_undefined;
    std::int32_t position = word_undefined;
    std::int32_t action = word_undefined;
    std::int32_t read = word_unknown;
    std::int32_t write = word_unknown;
    std::int32_t readwrite = word_unknown;
    std::int32_t delim = word_undefined;
    std::int32_t pad = word_yes;
    std::int32_t stream = word_unknown;
};

// Which forms a kind can carry.
struct Carries {
    std::int32_t formatted;
    std::int32_t unformatted;
};

Carries forms_of(UnitKind kind) {
    switch (kind) {
        case UnitKind::console:
        case UnitKind::window:
        case UnitKind::device3:
        case UnitKind::device4:
        case UnitKind::device6:
            return {word_yes, word_no};
        case UnitKind::device5:
        case UnitKind::text:
        case UnitKind::full:
        case UnitKind::device10:
            return {word_yes, word_yes};
        default:
            return {word_unknown, word_unknown};
    }
}

std::int32_t yes_or_no(bool yes) {
    return yes ? word_yes : word_no;
}

std::int32_t access_word(const Unit& unit) {
    const IOStatus& s = unit.status;
    if (!is_file_kind(unit.kind) && unit.kind != UnitKind::driver) return word_sequential;
    if (s.direct) return word_direct;
    if (s.stream) return word_stream;
    return s.transparent ? word_transparent : word_sequential;
}

std::int32_t sequential_word(const Unit& unit) {
    const IOStatus& s = unit.status;
    if (s.direct) return yes_or_no(s.formatted);
    if (!s.transparent) return word_yes;
    return word_unknown;
}

std::int32_t position_word(Unit& unit) {
    File& file = unit.file;
    if (file.path.empty()) return word_asis;
    switch (file.position_state) {
        case place_asis:
            return word_asis;
        case place_rewind:
            return word_rewind;
        case place_append:
            return word_append;
        default:
            break;
    }
    std::int64_t position = 0;
    int err = 0;
    sys_getFilePos(unit, position, err);
    if (position == 0) return word_rewind;
    return position == file.size ? word_append : word_asis;
}

void describe(Unit& unit, Answers& answers) {
    const IOStatus& s = unit.status;
    const bool is_file = is_file_kind(unit.kind);
    answers.opened = true;
    answers.number = unit.number;
    answers.handle = unit.handle_number;
    answers.has_handle = true;
    answers.named = !s.scratch && !unit.file.path.empty();
    if (answers.named) answers.name = unit.file.path;
    answers.access = access_word(unit);
    answers.direct = s.direct ? word_yes : !is_file ? word_no : word_unknown;
    answers.sequential = sequential_word(unit);
    answers.transparent = is_file || s.transparent ? word_yes : word_unknown;
    answers.form = s.formatted ? word_formatted : word_unformatted;
    answers.formatted = forms_of(unit.kind).formatted;
    answers.unformatted = forms_of(unit.kind).unformatted;
    answers.blank = s.blank_null ? word_null : word_zero;
    answers.share = word_compat + (unit.share & 7) % 5;
    answers.position = position_word(unit);
    answers.action = s.may_read && s.may_write ? word_readwrite
                     : s.may_write             ? word_write
                                               : word_read;
    answers.read = yes_or_no(s.may_read);
    answers.write = yes_or_no(s.may_write);
    answers.readwrite = yes_or_no(s.may_read && s.may_write);
    answers.delim = s.delim_apostrophe ? word_apostrophe : s.delim_quote ? word_quote : word_none;
    answers.pad = yes_or_no(!s.pad_no);
    answers.stream = yes_or_no(s.stream);
}

void put_text(const TextWord& target, std::string_view text) {
    if (!target.given || target.length <= 0) return;
    const auto room = static_cast<std::size_t>(target.length);
    const std::size_t count = text.size() < room ? text.size() : room;
    std::memcpy(target.address, text.data(), count);
    std::memset(target.address + count, ' ', room - count);
}

void put_answers(const SpecBlock& spec, const Answers& answers) {
    const struct {
        const TextWord& target;
        std::int32_t word;
    } texts[] = {
        {spec.access, answers.access},
        {spec.direct, answers.direct},
        {spec.sequential, answers.sequential},
        {spec.transparent, answers.transparent},
        {spec.form, answers.form},
        {spec.formatted, answers.formatted},
        {spec.unformatted, answers.unformatted},
        {spec.blank, answers.blank},
        {spec.share, answers.share},
        {spec.position, answers.position},
        {spec.action, answers.action},
        {spec.read, answers.read},
        {spec.write, answers.write},
        {spec.readwrite, answers.readwrite},
        {spec.delim, answers.delim},
        {spec.pad, answers.pad},
        {spec.stream, answers.stream},
    };
    for (const auto& text : texts) put_text(text.target, words[text.word]);
    put_text(spec.name, answers.name);
    store_integer(spec.exist, answers.exist);
    store_integer(spec.opened, answers.opened);
    store_integer(spec.named, answers.named);
    store_integer(spec.number, answers.number);
    if (spec.handle != nullptr && answers.has_handle)
        *spec.handle = static_cast<std::int16_t>(answers.handle);
}

// A length or a record number for a variable that may be too narrow.
bool put_number(const ResultWord& target, std::int64_t value, std::int32_t message) {
    return store_integer(target, value) || IO_error(message);
}

bool put_record_numbers(const SpecBlock& spec, Unit& unit) {
    const IOStatus& s = unit.status;
    if (s.direct)
        return put_number(spec.recl_result, unit.recl, 149) &&
               put_number(spec.nextrec, unit.current_record + 1, 149);
    if (!s.transparent) return true;
    std::int64_t place = unit.file.stream_read_position;
    if (!(s.reading && !s.writing) && !s.read_mode) {
        if (const int err = sys_flushWriteBuffer(unit)) return report_file_error(err, "IO_inquire");
        place = unit.file.stream_write_position;
    }
    return put_number(spec.recl_result, 1, 149) && put_number(spec.pos, place, 448);
}

// SIZE=: of an open file with what its buffer still holds, or of a file by its name.
bool IOSetSize(const Unit* unit, const std::string& name) {
    IO_type& io = current();
    if (io.size.address == nullptr) return true;
    std::int64_t size = -1;
    struct stat about;
    if (unit != nullptr && unit->file.descriptor >= 0)
        size = unit->file.size;
    else if (name != "UNDEFINED" && ::stat(name.c_str(), &about) == 0)
        size = about.st_size;
    if (!store_integer(io.size, size)) {
        size = -1;
        store_integer(io.size, size);
    }
    io.size.address = nullptr;
    return size >= 0 || IO_error(53);
}

bool ask_driver(Unit& unit) {
    IO_type& io = current();
    std::int32_t length = 0;
    return call_driver(unit, ActionCode::inquire, io.buffer_start,
                       static_cast<std::int32_t>(io.buffer_size), length);
}

bool is_driver(const Unit& unit) {
    return unit.kind == UnitKind::driver && unit.driver != nullptr;
}

}  // namespace

bool IO_inquire() {
    IO_type& io = current();
    const SpecBlock& spec = io.spec_block;
    Answers answers;
    Unit* unit = nullptr;
    if (spec.unit_given) {
        if (io.unit_number >= 0) {
            answers.exist = true;
            unit = io.unit;
        }
    } else if (spec.file.given) {
        std::string_view file = spec.file.view();
        while (!file.empty() && file.front() == ' ') file.remove_prefix(1);
        int err = 0;
        const std::string path = sys_resolvePathName(file, err);
        if (err == 0) {
            answers.exist = answers.named = sys_fileExists(path);
            if (answers.exist) answers.name = path;
            unit = sys_findUnitFromFilename(path);
            // The list gave a bare pointer: from here on the unit is held like any other.
            if (unit != nullptr && unit->number >= 0) {
                let_unit_go(io);
                io.unit_number = unit->number;
                io.unit = io.held_unit = acquire_unit(unit->number);
                unit = io.unit;
            }
        }
    }
    if (unit != nullptr && is_driver(*unit)) return ask_driver(*unit);
    if (unit != nullptr) describe(*unit, answers);
    put_answers(spec, answers);
    if (unit != nullptr && !put_record_numbers(spec, *unit)) return false;
    return IOSetSize(unit, answers.name);
}

}  // namespace tarn::fio::native
