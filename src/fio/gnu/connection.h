// Connections of gnu units: the preconnected ones, those that OPEN makes, those that a READ or
// WRITE makes of itself, and how each of them ends.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "fio/gnu/fault.h"
#include "fio/gnu/options.h"
#include "fio/modes.h"

namespace tarn::fio {

struct Unit;

enum class FileStatus : std::uint8_t { unknown, old, fresh, replace, scratch };
enum class Position : std::uint8_t { asis, rewind, append };
enum class Share : std::uint8_t { unspecified, deny_rw, deny_none };

// What a connection is to be.
struct Terms {
    FileStatus status = FileStatus::unknown;
    Access access = Access::sequential;
    Form form = Form::formatted;
    Action action = Action::readwrite;
    bool read_only = false;     // READONLY
    bool action_given = false;  // otherwise the first of both, read and write that the file grants
    Position position = Position::asis;
    Share share = Share::unspecified;
    std::int64_t recl = 0;  // 0: not given
    EditModes modes;
    bool delim_given = false;
    Encoding encoding = Encoding::standard;
    Convert convert = Convert::native;
    CarriageControl carriage = CarriageControl::list;
    bool asynchronous = false;
};

// RECL= of a connection that didn't give one.
std::int64_t default_record_length();

// How the numbers and records of an unformatted unit lie, by what its OPEN says if anything: the
// environment wins over that.
Convert convert_of_unit(std::int32_t unit, const Convert* given);
void set_convert(Unit& unit, Convert convert);

// Units 0, 5 and 6, or the numbers that the environment gives them. Every entry that looks at a
// unit comes through here first; all but the first call are a test of one word.
void bring_up_units();

// The unit of a number, locked for the statement: connected by an OPEN, preconnected, or connected
// now to `fort.N`. Null: there can't be one, and the caller has heard of it.
Unit* connect_implicitly(Caller& caller, std::int32_t number, bool reading, Form form,
                         Access access);

// Connects a unit that has no connection. `name` is the file's, without trailing blanks. False:
// the caller has heard why not, and the unit is as it was.
bool connect(Caller& caller, Unit& unit, const Terms& terms, std::string_view name);
std::string default_file_name(std::int32_t number);

// Ends the connection: the open record is ended, everything is written, the file is closed, and
// removed when `remove` says so. err: an errno value, 0 when all went well.
void disconnect(Unit& unit, bool remove, int& err);

// Numbers for NEWUNIT=: -10 and down, the one nearest to zero that is free; 0 without memory.
std::int32_t take_new_unit_number();
void give_back_new_unit_number(std::int32_t number);  // nothing happens for other numbers
inline constexpr std::int32_t first_new_unit_number = -10;

// Connects a unit with a text window in place of a file; it is locked for the caller, who releases
// it. What stood on the number is closed.
Unit* connect_window(std::int32_t number, void* window);

}  // namespace tarn::fio
