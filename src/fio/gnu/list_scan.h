// What the list-directed reader's parts share: where the next value stands, and what ends one.
//
// A record's end counts as a separator. It has been passed once `list.record_passed` is set; the
// next record is fetched only when a value is looked for in it, so that a statement never takes
// more records than its items need.
#pragma once

#include <cstddef>
#include <string_view>

#include "fio/gnu/fault.h"
#include "fio/gnu/statement.h"

namespace tarn::fio {

inline constexpr Fault bad_list_value{52, iostat_read_value};

constexpr bool is_list_blank(char c) {
    // A carriage return inside a record separates like a blank.
    return c == ' ' || c == '\t' || c == '\r';
}

constexpr bool is_list_separator(char c) {
    return is_list_blank(c) || c == ',' || c == '/' || c == ';' || c == '\n';
}

// At a separator or the end of the record.
inline bool at_list_separator(const Statement& s) {
    return s.cursor == s.limit || is_list_separator(*s.cursor);
}

// At the end of a file whose last line has no line end.
inline bool at_end_of_file(const Statement& s) {
    return s.cursor == s.limit && !s.record_terminated;
}

inline void skip_list_blanks(Statement& s) {
    char* at = s.cursor;
    while (at < s.limit && is_list_blank(*at)) ++at;
    s.cursor = at;
}

// The end of the token that begins at `at`. `mark`: a decimal comma is part of it.
inline const char* token_end(const char* at, const char* end, char mark) {
    while (at < end && (!is_list_separator(*at) || *at == mark)) ++at;
    return at;
}

// Moves behind the separator that follows a value. A slash ends the input.
void pass_separator(Statement& s);

// Moves to the next character that is neither blank nor a line end, in further records if need be;
// false at the end of the file (reported).
bool skip_to_text(Statement& s);

// Reports a fault of the value at hand: what stands in its place goes into the message.
void fail_value(Statement& s, Fault fault, std::string_view text);
// The value isn't complete and the text ends: the end of the file, or else a fault.
void fail_incomplete(Statement& s, Fault fault, std::string_view text);

// A count that repeats the next value, `3*`.
enum class Repeat : unsigned char { none, value, null, failed };
Repeat take_repeat(Statement& s);

// CHARACTER. `size` in characters.
void read_list_text(Statement& s, char* item, int kind, std::size_t size);
// Keep a value in the statement: the quoted one at the cursor, over any number of records (the end
// of the file closes it too), or `text` that begins there. False: a fault.
bool keep_quoted_text(Statement& s);
bool keep_bare_text(Statement& s, std::string_view text);
// Gives an item the text that was kept.
void give_saved_text(Statement& s, char* item, int kind, std::size_t size);

// REAL and COMPLEX.
void read_list_real(Statement& s, char* item, int kind);
void read_list_complex(Statement& s, char* item, int kind);

// Keeps the value of an item that a repeat count wants again.
void save_value(Statement& s, ItemType type, int kind, const void* value, std::size_t size);

}  // namespace tarn::fio
