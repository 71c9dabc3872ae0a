// The bodies of the connection statements. All work on the record at hand and return "go on".
#pragma once

#include "fio/native/state.h"

namespace tarn::fio::native {

[[nodiscard]] bool IO_open();
[[nodiscard]] bool IO_close();  // CLOSE and FLUSH
[[nodiscard]] bool IO_inquire();
[[nodiscard]] bool IO_backspace();
[[nodiscard]] bool IO_rewind();
[[nodiscard]] bool IO_endfile();

// Ends the connection of a unit that OPEN is about to use again; the unit's record stays.
[[nodiscard]] bool IO_quick_close(Unit& unit);
// What Unit::closer of a native connection does: a whole CLOSE, but the unit's record stays.
void close_connection(Unit& unit);

// A record of the list that reaches something: a file, a driver, a window or the console. The list
// may hold units that don't, while a gnu statement of another thread is connecting one.
bool is_connected(const Unit& unit);
constexpr bool is_file_kind(UnitKind kind) {
    return kind == UnitKind::text || kind == UnitKind::full || kind == UnitKind::printer;
}
// The position of a keyword in its list; 0: not given; -1: no such word.
std::int32_t match(const TextWord& word, std::string_view word_list);
// A file operation's failure: a full disk is message 117, all else the system's own.
[[nodiscard]] bool report_file_error(int err, const char* where);

// A file that a gnu statement connected: where its records end, and how it ends, is told there.
inline bool is_gnu_file(const Unit& unit) {
    return unit.dialect == &gnu_dialect && is_file_kind(unit.kind);
}
// A native connection as a gnu statement sees it: all that its OPEN settles.
void describe_to_gnu(Unit& unit);
// Where it stands, at the start of a native statement on a gnu connection and at the end of any.
[[nodiscard]] bool take_over_from_gnu(Unit& unit);
void hand_over_to_gnu(Unit& unit);

}  // namespace tarn::fio::native
