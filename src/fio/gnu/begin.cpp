#include <algorithm>
#include <cerrno>

#include "fio/file/record_buffer.h"
#include "fio/gnu/child.h"
#include "fio/gnu/connection.h"
#include "fio/gnu/format_run.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/items.h"
#include "fio/gnu/keyword.h"
#include "fio/gnu/namelist.h"
#include "fio/gnu/options.h"
#include "fio/gnu/records.h"
#include "fio/gnu/thread_state.h"
#include "fio/gnu/unformatted.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr std::int64_t internal_record_limit = INT64_MAX / 8;

constexpr Fault conflict{81, iostat_option_conflict};
constexpr Fault bad_option{81, iostat_bad_option};
constexpr Fault missing_option{81, iostat_missing_option};
constexpr Fault access_mismatch{90, iostat_option_conflict};
constexpr Fault form_mismatch{90, iostat_option_conflict};
constexpr Fault no_reading{208, iostat_bad_action};
constexpr Fault no_writing{139, iostat_bad_action};
constexpr Fault bad_record_number{95, iostat_bad_option};
constexpr Fault bad_position{450, iostat_bad_option};
constexpr Fault past_end_marker{104, iostat_option_conflict};
constexpr Fault read_past_end{104, iostat_endfile};
constexpr Fault same_unit{433, iostat_option_conflict};

// The specifiers of one statement that change modes of the connection. False: a word of none.
bool apply_modes(Statement& s, const ModeSpecifiers& specs) {
    EditModes& modes = s.modes;
    const struct {
        std::string_view value;
        std::int32_t number;
        bool known;
    } checks[] = {
        {specs.decimal, 81, keyword(specs.decimal, decimal_words, modes.decimal)},
        {specs.sign, 81, keyword(specs.sign, sign_words, modes.sign)},
        {specs.blank, 153, keyword(specs.blank, blank_words, modes.blank)},
        {specs.delim, 211, keyword(specs.delim, delim_words, modes.delim)},
        {specs.pad, 212, keyword(specs.pad, pad_words, modes.pad)},
        {specs.round, 81, keyword(specs.round, round_words, modes.round)},
    };
    for (const auto& check : checks) {
        if (check.known) continue;
        fail(s, {check.number, iostat_bad_option}, check.value);
        return false;
    }
    return true;
}

bool apply_asynchronous(Statement& s, const ModeSpecifiers& specs) {
    if (specs.asynchronous.data() == nullptr) return true;
    bool wanted = false;
    if (!keyword(specs.asynchronous, yes_no_words, wanted)) {
        fail(s, bad_option, "ASYNCHRONOUS=");
        return false;
    }
    if (wanted && s.unit != nullptr && !s.unit->gnu.asynchronous) {
        fail(s, conflict, "ASYNCHRONOUS='YES' on a unit that was not opened for it");
        return false;
    }
    return true;
}

bool apply_advance(Statement& s, const TransferSpecifiers& specs) {
    bool advance = true;
    if (specs.modes != nullptr && specs.modes->advance.data() != nullptr) {
        if (!keyword(specs.modes->advance, yes_no_words, advance)) {
            fail(s, {213, iostat_bad_option}, specs.modes->advance);
            return false;
        }
        const bool in_memory = s.internal && s.parent == nullptr;
        if (s.direct || in_memory || specs.format == nullptr) {
            fail(s, {214, iostat_option_conflict});
            return false;
        }
    }
    s.non_advancing = !advance;
    if (!s.reading) {
        if (specs.has_end || specs.has_eor || specs.size != nullptr) {
            fail(s, conflict, "END=, EOR= or SIZE= in a WRITE");
            return false;
        }
        return true;
    }
    if (!s.non_advancing && (specs.has_eor || specs.size != nullptr)) {
        fail(s, missing_option, "EOR= or SIZE= without ADVANCE='NO'");
        return false;
    }
    return true;
}

bool check_action(Statement& s) {
    const Unit& unit = *s.unit;
    if (s.reading ? unit.status.may_read : unit.status.may_write) return true;
    fail(s, s.reading ? no_reading : no_writing);
    return false;
}

bool check_access(Statement& s, const TransferSpecifiers& specs) {
    const Unit& unit = *s.unit;
    if (unit.status.formatted == s.unformatted) {
        fail(s, form_mismatch,
             s.unformatted ? "no format on a formatted connection"
                           : "a format on an unformatted connection");
        return false;
    }
    if (specs.has_rec && !s.direct) {
        fail(s, access_mismatch, "REC= on a unit that is not direct");
        return false;
    }
    if (s.direct && !specs.has_rec) {
        fail(s, {95, iostat_missing_option}, "a direct unit needs REC=");
        return false;
    }
    if (s.direct && s.list_directed) {
        fail(s, {100, iostat_option_conflict});
        return false;
    }
    if (specs.has_pos && !s.stream) {
        fail(s, bad_option, "POS= on a unit that is not a stream");
        return false;
    }
    return true;
}

// Behind the end of a file a statement fails. As in gfortran, a WRITE that failed so has found the
// end and the next one appends; under -std=legacy already the first does, as old programs have it.
bool check_end(Statement& s) {
    GnuConnection& connection = s.unit->gnu;
    if (s.direct || s.stream || connection.end != EndState::after) return true;
    const bool legacy = gnu_options().formats.legacy;
    if (legacy && !s.reading) return true;
    if (!s.reading) connection.end = EndState::at;
    fail(s, legacy ? read_past_end : past_end_marker);
    return false;
}

// A statement in the other direction: what one left behind is put in order for the other.
void turn(Statement& s) {
    Unit& unit = *s.unit;
    int err = 0;
    if (!s.reading && !unit.gnu.last_was_write && unit.gnu.record_open) {
        // Reading stopped inside a record; writing goes on where it stopped.
        consume(unit.file, unit.gnu.open_column);
        unit.gnu.record_open = false;
    }
    if (s.reading && unit.gnu.last_was_write) {
        // A record that was left open stays as it is: reading begins behind it.
        unit.gnu.record_open = false;
        unit.saved_length = 0;
        write_out(unit.file, err);
        unit.gnu.last_was_write = false;
    }
    if (err != 0) fail_system(s, err);
}

bool apply_record_number(Statement& s, std::int64_t rec) {
    Unit& unit = *s.unit;
    const std::int64_t stride = direct_stride(unit);
    if (rec <= 0 || rec > INT64_MAX / stride) {
        fail(s, bad_record_number);
        return false;
    }
    s.record_number = rec;
    int err = 0;
    move_to(unit.file, (rec - 1) * stride, err);
    if (s.reading) {
        char* at = nullptr;
        if (err == 0 && peek_bytes(unit.file, 1, at, err) == 0 && err == 0) {
            fail(s, bad_record_number, "the file has no such record");
        }
    }
    if (err != 0) fail_system(s, err);
    return !s.failed;
}

bool apply_stream_position(Statement& s, std::int64_t pos) {
    Unit& unit = *s.unit;
    if (pos <= 0) {
        fail(s, bad_position, "POS= must be positive");
        return false;
    }
    int err = 0;
    finish_open_record(unit, err);
    unit.gnu.record_open = false;
    move_to(unit.file, pos - 1, err);
    if (err != 0) fail_system(s, err);
    return !s.failed;
}

[[gnu::noinline]] bool refuse_format(Statement& s, const FormatError& error, const char* format,
                                     std::size_t length) {
    fail_format(s, error, {format, length});
    return false;
}

// Null: the statement is list-directed.
[[gnu::always_inline]] inline bool choose_format(Statement& s, const char* format,
                                                 std::size_t length) {
    if (format == nullptr) {
        s.list_directed = true;
        if (s.reading) s.list = ListState{};
        return true;
    }
    FormatCache& formats = thread_state().formats;
    FormatRules rules = gnu_options().formats;
    rules.natural_widths = s.modes.dec_extensions;
    s.cached = formats.acquire(format, length, rules);
    if (s.cached == nullptr) return refuse_format(s, formats.error(), format, length);
    s.format = &s.cached->program;
    if (s.reading && s.format->unfit_for_input.number != 0) {
        return refuse_format(s, s.format->unfit_for_input, format, length);
    }
    start_format(s);
    return true;
}

// CHARACTER values of a group stand in quotes unless the program says how: they couldn't be read
// otherwise.
void choose_namelist(Statement& s, const TransferSpecifiers& specs) {
    if (s.reading) s.list = ListState{};
    if (s.unit != nullptr && s.unit->gnu.delim_given) return;
    if (specs.modes == nullptr || specs.modes->delim.data() == nullptr)
        s.modes.delim = Delim::quote;
}

bool begin_on_internal(Statement& s, const TransferSpecifiers& specs) {
    s.internal = true;
    s.caller->internal = true;
    s.modes.sign = processor_sign();
    copy_internal_file(*specs.internal, s.file);
    s.wide = s.file.char_kind == 4;
    s.utf8 = s.wide && s.reading;
    s.record_limit = internal_record_limit;
    first_internal_record(s.file);
    if (specs.has_rec) {
        fail(s, {101, iostat_option_conflict});
        return false;
    }
    return true;
}

void take_modes(Statement& s, const Unit& unit) {
    s.modes = unit.gnu.modes;
    if (s.modes.sign == SignMode::processor) s.modes.sign = processor_sign();
    s.utf8 = unit.gnu.encoding == Encoding::utf8;
    s.record_limit = unit.recl > 0 ? unit.recl : internal_record_limit;
}

bool begin_on_unit(Statement& s, const TransferSpecifiers& specs) {
    Caller& caller = *s.caller;
    caller.has_unit = true;
    const Form form = specs.format != nullptr || specs.list_directed || specs.namelist != nullptr
                          ? Form::formatted
                          : Form::unformatted;
    const Access access = specs.has_rec ? Access::direct : Access::sequential;
    s.unit = connect_implicitly(caller, caller.unit, s.reading, form, access);
    if (s.unit == nullptr) {
        s.failed = true;
        return false;
    }
    Unit& unit = *s.unit;
    // An asynchronous transfer is done when its statement is; its number stays known.
    if (specs.id != nullptr) *specs.id = ++unit.gnu.last_id;
    if (unit.statements > 1) {
        fail(s, same_unit);
        return false;
    }
    s.direct = unit.status.direct;
    // A unit for which the native dialect knows no records is a stream here.
    s.stream = unit.status.stream || (unit.status.transparent && !unit.status.formatted);
    take_modes(s, unit);
    return true;
}

bool open_statement(Statement& s, const TransferSpecifiers& specs) {
    if (specs.internal != nullptr ? !begin_on_internal(s, specs) : !begin_on_unit(s, specs))
        return false;
    s.modes.dec_extensions = specs.dec_extensions;
    s.namelist = specs.namelist;
    s.unformatted = specs.format == nullptr && !specs.list_directed && s.namelist == nullptr;
    if (s.unformatted) s.raw = UnformattedState{};
    if (!s.internal && !check_action(s)) return false;
    if (s.namelist != nullptr) {
        choose_namelist(s, specs);
    } else if (!s.unformatted && !choose_format(s, specs.format, specs.format_length)) {
        return false;
    }
    if (!s.internal && (!check_access(s, specs) || !check_end(s))) return false;
    if (specs.modes != nullptr &&
        (!apply_modes(s, *specs.modes) || !apply_asynchronous(s, *specs.modes))) {
        return false;
    }
    if (!apply_advance(s, specs)) return false;
    if (s.unit != nullptr) {
        turn(s);
        if (!s.failed && specs.has_pos && !apply_stream_position(s, specs.pos)) return false;
        if (!s.failed && s.direct && !apply_record_number(s, specs.rec)) return false;
    }
    return !s.failed;
}

ItemRoad item_road(const Statement& s) {
    if (s.reading) return s.list_directed ? read_list_item : read_item;
    return s.list_directed ? write_list_item : write_item;
}

void begin_formatted(Statement& s) {
    if (s.reading) {
        begin_input(s);
    } else {
        begin_output(s);
    }
    s.transfer_item = item_road(s);
}

// All of the transfer happens as the statement begins.
void run_namelist(Statement& s) {
    if (s.reading) {
        begin_input(s);
        if (!s.failed) read_namelist(s);
    } else {
        begin_output(s);
        if (!s.failed) write_namelist(s);
    }
}

}  // namespace

Statement* begin_usual_transfer(Caller& caller, bool reading, const char* format,
                                std::size_t format_length) {
    Unit* unit = acquire_unit(caller.unit);
    if (unit == nullptr) return nullptr;
    if (!goes_on(*unit, reading) || !unit->status.formatted || unit->status.stream) {
        release_unit(unit);
        return nullptr;
    }
    Statement* statement = take_statement();
    Statement& s = *statement;
    s.caller = &caller;
    caller.has_unit = true;
    s.unit = unit;
    s.reading = reading;
    take_modes(s, *unit);
    if (choose_format(s, format, format_length)) begin_formatted(s);
    return statement;
}

namespace {

// What a child may not ask for, since the record is its parent's.
bool check_child(Statement& s, const TransferSpecifiers& specs) {
    if (specs.has_rec || specs.has_pos || specs.id != nullptr) {
        fail(s, conflict, "REC=, POS= or ID= in a child statement");
        return false;
    }
    if (s.unformatted != s.parent->unformatted) {
        fail(s, form_mismatch,
             s.unformatted ? "no format in a child of a formatted statement"
                           : "a format in a child of an unformatted statement");
        return false;
    }
    return true;
}

bool open_child(Statement& s, Statement& parent, const TransferSpecifiers& specs) {
    Caller& caller = *s.caller;
    caller.has_unit = parent.caller->has_unit;
    caller.internal = parent.internal;
    if (!take_record(parent, s)) return false;
    if (specs.namelist != nullptr) {
        fail(s, conflict, "NAMELIST in a child statement");
        return false;
    }
    s.unformatted = specs.format == nullptr && !specs.list_directed;
    if (!check_child(s, specs)) return false;
    if (s.unformatted) return true;
    if (s.unit != nullptr) s.modes = s.unit->gnu.modes;
    s.modes.dec_extensions = specs.dec_extensions;
    if (s.modes.sign == SignMode::processor) s.modes.sign = processor_sign();
    if (!choose_format(s, specs.format, specs.format_length)) return false;
    if (specs.modes != nullptr && !apply_modes(s, *specs.modes)) return false;
    if (!apply_advance(s, specs)) return false;
    // Whatever ADVANCE= says, a child leaves its record open; and where its record ends, it ends.
    s.non_advancing = s.reading && !s.internal;
    bring_record(s);
    return !s.failed;
}

Statement* begin_child(Caller& caller, Statement& parent, const TransferSpecifiers& specs) {
    Statement* statement = take_statement();
    Statement& s = *statement;
    s.caller = &caller;
    s.reading = specs.reading;
    s.size = specs.size;
    if (open_child(s, parent, specs) && !s.unformatted) s.transfer_item = item_road(s);
    return statement;
}

}  // namespace

Statement* begin_transfer(Caller& caller, const TransferSpecifiers& specs) {
    if (specs.internal == nullptr) {
        Statement* parent = parent_of(caller.unit);
        if (parent != nullptr) return begin_child(caller, *parent, specs);
    }
    Statement* statement = take_statement();
    Statement& s = *statement;
    s.caller = &caller;
    s.reading = specs.reading;
    s.size = specs.size;
    if (!open_statement(s, specs)) return statement;
    if (s.unformatted) {
        begin_unformatted(s);
    } else if (s.namelist != nullptr) {
        run_namelist(s);
    } else {
        begin_formatted(s);
    }
    return statement;
}

Statement* begin_unformatted_on(Unit& unit, Caller& caller, bool reading, std::int64_t place) {
    Statement* statement = take_statement();
    Statement& s = *statement;
    s.caller = &caller;
    s.unit = &unit;
    s.reading = reading;
    s.unformatted = true;
    s.raw = UnformattedState{};
    s.direct = unit.status.direct;
    s.stream = unit.status.stream;
    if (!check_end(s)) return statement;
    turn(s);
    if (s.failed) return statement;
    if (s.direct && !apply_record_number(s, place)) return statement;
    if (s.stream && place > 0 && !apply_stream_position(s, place)) return statement;
    begin_unformatted(s);
    return statement;
}

void end_unformatted_on(Statement* statement) {
    end_unformatted(*statement);
    give_back(statement);
}

Statement* refuse_transfer(Caller& caller) {
    Statement* statement = take_statement();
    statement->caller = &caller;
    statement->failed = true;
    return statement;
}

Statement* begin_iolength(Caller& caller, std::int64_t* result) {
    Statement* statement = take_statement();
    statement->caller = &caller;
    statement->measuring = true;
    statement->iolength = result;
    return statement;
}

}  // namespace tarn::fio
