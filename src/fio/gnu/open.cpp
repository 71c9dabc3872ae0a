#include "fio/gnu/open.h"

#include <cerrno>
#include <optional>
#include <string>

#include "fio/file/record_buffer.h"
#include "fio/gnu/connection.h"
#include "fio/gnu/keyword.h"
#include "fio/gnu/options.h"
#include "fio/gnu/position.h"
#include "fio/gnu/records.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

enum class AccessWord : std::uint8_t { sequential, direct, stream, append };

constexpr Word<AccessWord> access_words[] = {{"SEQUENTIAL", AccessWord::sequential},
                                             {"DIRECT", AccessWord::direct},
                                             {"APPEND", AccessWord::append},
                                             {"STREAM", AccessWord::stream}};
constexpr Word<Form> form_words[] = {{"FORMATTED", Form::formatted},
                                     {"UNFORMATTED", Form::unformatted}};
constexpr Word<Action> action_words[] = {
    {"READ", Action::read}, {"WRITE", Action::write}, {"READWRITE", Action::readwrite}};
constexpr Word<FileStatus> status_words[] = {{"UNKNOWN", FileStatus::unknown},
                                             {"OLD", FileStatus::old},
                                             {"NEW", FileStatus::fresh},
                                             {"REPLACE", FileStatus::replace},
                                             {"SCRATCH", FileStatus::scratch}};
constexpr Word<Position> position_words[] = {
    {"ASIS", Position::asis}, {"REWIND", Position::rewind}, {"APPEND", Position::append}};
constexpr Word<Encoding> encoding_words[] = {{"UTF-8", Encoding::utf8},
                                             {"DEFAULT", Encoding::standard}};
constexpr Word<Convert> convert_words[] = {{"NATIVE", Convert::native},
                                           {"SWAP", Convert::swap},
                                           {"BIG_ENDIAN", Convert::big_endian},
                                           {"LITTLE_ENDIAN", Convert::little_endian},
                                           {"TARN", Convert::native_records}};
constexpr Word<Share> share_words[] = {{"DENYRW", Share::deny_rw}, {"DENYNONE", Share::deny_none}};
constexpr Word<CarriageControl> carriage_words[] = {{"LIST", CarriageControl::list},
                                                    {"FORTRAN", CarriageControl::fortran},
                                                    {"NONE", CarriageControl::none}};

constexpr Fault conflict{81, iostat_option_conflict};
constexpr Fault bad_combination{81, iostat_bad_option};
constexpr Fault missing_recl{106, iostat_missing_option};
constexpr Fault bad_recl{69, iostat_bad_option};
constexpr Fault may_not_change{84, iostat_bad_option};
constexpr Fault negative_unit{60, iostat_bad_option};
constexpr Fault same_unit{433, iostat_option_conflict};

// The specifiers of one OPEN with their words looked up.
struct Request {
    std::optional<FileStatus> status;
    std::optional<AccessWord> access;
    std::optional<Form> form;
    std::optional<Action> action;
    std::optional<Position> position;
    std::optional<Blank> blank;
    std::optional<Delim> delim;
    std::optional<bool> pad;
    std::optional<DecimalMark> decimal;
    std::optional<Encoding> encoding;
    std::optional<Rounding> round;
    std::optional<SignMode> sign;
    std::optional<Convert> convert;
    std::optional<bool> asynchronous;
    std::optional<Share> share;
    std::optional<CarriageControl> carriage;
};

// Looks words up until one of them is unknown.
struct Lookup {
    Caller& caller;
    bool good = true;

    template <class Value, std::size_t count>
    void operator()(std::string_view text, const Word<Value> (&words)[count], int number,
                    std::string_view specifier, std::optional<Value>& result) {
        if (!good || text.data() == nullptr) return;
        Value value{};
        good = keyword(text, words, value);
        if (good) {
            result = value;
            return;
        }
        std::string detail(specifier);
        detail.append("'").append(text).append("'");
        raise_fault(caller, {number, iostat_bad_option}, detail);
    }
};

bool look_up(Caller& caller, const OpenSpecifiers& s, Request& r) {
    Lookup find{caller};
    find(s.access, access_words, 80, "ACCESS=", r.access);
    find(s.action, action_words, 209, "ACTION=", r.action);
    find(s.carriage_control, carriage_words, 81, "CARRIAGECONTROL=", r.carriage);
    find(s.share, share_words, 207, "SHARE=", r.share);
    find(s.blank, blank_words, 153, "BLANK=", r.blank);
    find(s.delim, delim_words, 211, "DELIM=", r.delim);
    find(s.pad, pad_words, 212, "PAD=", r.pad);
    find(s.decimal, decimal_words, 81, "DECIMAL=", r.decimal);
    find(s.encoding, encoding_words, 81, "ENCODING=", r.encoding);
    find(s.asynchronous, yes_no_words, 81, "ASYNCHRONOUS=", r.asynchronous);
    find(s.round, round_words, 81, "ROUND=", r.round);
    find(s.sign, sign_words, 81, "SIGN=", r.sign);
    find(s.form, form_words, 151, "FORM=", r.form);
    find(s.position, position_words, 210, "POSITION=", r.position);
    find(s.status, status_words, 152, "STATUS=", r.status);
    find(s.convert, convert_words, 81, "CONVERT=", r.convert);
    return find.good;
}

// ACCESS='APPEND' is an older spelling of POSITION='APPEND'.
bool settle_position(Caller& caller, Request& r) {
    if (r.position && r.access == AccessWord::direct) {
        raise_fault(caller, bad_combination, "POSITION= with ACCESS='DIRECT'");
        return false;
    }
    if (r.access != AccessWord::append) return true;
    if (r.position && *r.position != Position::append) {
        raise_fault(caller, bad_combination, "ACCESS='APPEND' with another POSITION=");
        return false;
    }
    r.access = AccessWord::sequential;
    r.position = Position::append;
    return true;
}

Access access_of(const Request& r) {
    switch (r.access.value_or(AccessWord::sequential)) {
        case AccessWord::direct:
            return Access::direct;
        case AccessWord::stream:
            return Access::stream;
        default:
            return Access::sequential;
    }
}

// The modes of editing belong to formatted connections.
bool modes_fit(Caller& caller, const Request& r, Form form) {
    if (form == Form::formatted) return true;
    const struct {
        bool given;
        std::string_view specifier;
    } rows[] = {
        {r.delim.has_value(), "DELIM="},       {r.blank.has_value(), "BLANK="},
        {r.pad.has_value(), "PAD="},           {r.decimal.has_value(), "DECIMAL="},
        {r.encoding.has_value(), "ENCODING="}, {r.round.has_value(), "ROUND="},
        {r.sign.has_value(), "SIGN="},
    };
    for (const auto& row : rows) {
        if (!row.given) continue;
        raise_fault(caller, conflict, std::string(row.specifier) + " with FORM='UNFORMATTED'");
        return false;
    }
    return true;
}

bool carriage_fits(Caller& caller, const Request& r, Form form) {
    if (form == Form::formatted || !r.carriage || access_of(r) == Access::stream) return true;
    raise_fault(caller, conflict, "CARRIAGECONTROL= with FORM='UNFORMATTED'");
    return false;
}

void set_modes(const Request& r, EditModes& modes, Encoding& encoding, bool& delim_given) {
    if (r.blank) modes.blank = *r.blank;
    if (r.delim) modes.delim = *r.delim;
    if (r.pad) modes.pad = *r.pad;
    if (r.decimal) modes.decimal = *r.decimal;
    if (r.round) modes.round = *r.round;
    if (r.sign) modes.sign = *r.sign;
    if (r.encoding) encoding = *r.encoding;
    delim_given = delim_given || r.delim.has_value();
}

Convert convert_of(const Request& r, std::int32_t unit) {
    return convert_of_unit(unit, r.convert ? &*r.convert : nullptr);
}

bool make_terms(Caller& caller, const OpenSpecifiers& s, const Request& r, std::int32_t number,
                Terms& terms) {
    terms.status = r.status.value_or(FileStatus::unknown);
    terms.access = access_of(r);
    terms.form =
        r.form.value_or(terms.access == Access::sequential ? Form::formatted : Form::unformatted);
    if (!modes_fit(caller, r, terms.form) || !carriage_fits(caller, r, terms.form)) return false;
    if (terms.access == Access::direct && !s.has_recl) {
        raise_fault(caller, missing_recl);
        return false;
    }
    if (s.has_recl && s.recl <= 0) {
        raise_fault(caller, bad_recl, "RECL= must be positive");
        return false;
    }
    if (terms.status == FileStatus::scratch && s.file.data() != nullptr) {
        raise_fault(caller, bad_combination, "FILE= with STATUS='SCRATCH'");
        return false;
    }
    if (s.read_only && r.action.value_or(Action::read) != Action::read) {
        raise_fault(caller, conflict, "ACTION conflicts with READONLY");
        return false;
    }
    terms.recl = s.has_recl ? s.recl : 0;
    terms.read_only = s.read_only;
    terms.action_given = s.read_only || r.action.has_value();
    terms.action = r.action.value_or(s.read_only ? Action::read : Action::readwrite);
    terms.position = r.position.value_or(Position::asis);
    terms.share = r.share.value_or(Share::unspecified);
    terms.asynchronous = r.asynchronous.value_or(false);
    terms.carriage = r.carriage.value_or(CarriageControl::list);
    terms.convert = convert_of(r, number);
    set_modes(r, terms.modes, terms.encoding, terms.delim_given);
    return true;
}

// A name as the system takes it: a zero byte ends it, and trailing blanks don't count.
std::string_view file_name_in(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    const std::size_t last = text.find_last_not_of(' ');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

void open_new(Caller& caller, Unit& unit, const OpenSpecifiers& s, const Request& r) {
    Terms terms;
    if (!make_terms(caller, s, r, unit.number, terms)) return;
    const std::string fallback = default_file_name(unit.number);
    const std::string_view name =
        s.file.data() != nullptr ? file_name_in(s.file) : std::string_view(fallback);
    connect(caller, unit, terms, name);
}

// A connection stays as it is in these; true: nothing asks for another value.
bool keeps_the_connection(Caller& caller, const Unit& unit, const OpenSpecifiers& s,
                          const Request& r) {
    const GnuConnection& gnu = unit.gnu;
    const bool other_status = r.status == FileStatus::fresh || r.status == FileStatus::replace ||
                              (r.status == FileStatus::scratch && !unit.status.scratch);
    const struct {
        bool changes;
        std::string_view specifier;
    } rows[] = {
        {r.access && access_of(r) != gnu.access, "ACCESS="},
        {r.form && *r.form != gnu.form, "FORM="},
        {s.has_recl && s.recl != unit.recl, "RECL="},
        {r.action && *r.action != gnu.action, "ACTION="},
        {r.share && unit.share != (*r.share == Share::deny_rw ? 1 : 4), "SHARE="},
        {r.carriage && *r.carriage != gnu.carriage, "CARRIAGECONTROL="},
        {other_status, "STATUS="},
    };
    for (const auto& row : rows) {
        if (!row.changes) continue;
        raise_fault(caller, may_not_change, row.specifier);
        return false;
    }
    return true;
}

void change_modes(Caller& caller, Unit& unit, const OpenSpecifiers& s, const Request& r) {
    if (!keeps_the_connection(caller, unit, s, r) || !modes_fit(caller, r, unit.gnu.form)) return;
    GnuConnection& gnu = unit.gnu;
    set_modes(r, gnu.modes, gnu.encoding, gnu.delim_given);
    unit.status.blank_null = gnu.modes.blank == Blank::null;
    unit.status.pad_no = !gnu.modes.pad;
    if (r.asynchronous) gnu.asynchronous = *r.asynchronous;
    if (r.convert) set_convert(unit, convert_of(r, unit.number));
    int err = 0;
    if (r.position == Position::rewind) go_to_start(unit, err);
    if (r.position == Position::append) go_to_end(unit, err);
    if (err != 0) raise_system_fault(caller, err);
}

bool is_same_file(const Unit& unit, std::string_view name) {
    if (unit.file.path.empty()) return false;
    const Unit* found = sys_findUnitFromFilename(name);
    if (found == &unit) return true;
    return found != nullptr && unit.file.inode != 0 && found->file.inode == unit.file.inode &&
           found->file.device == unit.file.device;
}

void open_again(Caller& caller, Unit& unit, const OpenSpecifiers& s, const Request& r) {
    const bool same = s.file.data() == nullptr || is_same_file(unit, s.file);
    if (same) return change_modes(caller, unit, s, r);
    int err = 0;
    disconnect(unit, false, err);
    if (err != 0) return raise_system_fault(caller, err);
    open_new(caller, unit, s, r);
}

}  // namespace

void open_unit(Caller& caller, const OpenSpecifiers& specifiers) {
    bring_up_units();
    Request request;
    if (!look_up(caller, specifiers, request) || !settle_position(caller, request)) return;
    std::int32_t number = specifiers.unit;
    const bool numbered_here = specifiers.new_unit != nullptr;
    if (numbered_here) {
        number = take_new_unit_number();
        if (number == 0) return raise_system_fault(caller, ENOMEM);
    }
    caller.unit = number;
    caller.has_unit = true;
    if (!numbered_here && number < 0 && UnitList_getUnit(number) == nullptr) {
        raise_fault(caller, negative_unit);
        return;
    }
    bool created = false;
    Unit* unit = acquire_or_create_unit(number, created);
    if (unit->statements > 1) {
        raise_fault(caller, same_unit);
    } else if (unit->status.connected) {
        open_again(caller, *unit, specifiers, request);
    } else {
        open_new(caller, *unit, specifiers, request);
    }
    if (unit->status.connected) {
        if (numbered_here && caller.outcome == Outcome::ok) *specifiers.new_unit = number;
    } else if (unit->statements == 1) {
        give_back_new_unit_number(number);
        UnitList_destroy(unit);
    }
    release_unit(unit);
}

}  // namespace tarn::fio
