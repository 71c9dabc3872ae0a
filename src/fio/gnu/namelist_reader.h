// What the parts of the NAMELIST reader share: where they stand in the text, and how they fail.
//
// What a program reads is what it reads with gfortran, apart from these, where its run-time goes
// wrong or takes less than the standard says:
// - A comment behind a comma is no null value (`A = 1, ! one`), and a comment may follow a value
//   at once, inside parentheses too.
// - The subscripts `(::2)`, blanks inside and in front of subscripts, components that go through an
//   array (`V%X(1)` of an array V), extended types in arrays, and whole values for them are read.
// - A group may end with the file's last character, without a line end.
// - A word that is a LOGICAL ends at a slash or comma like any value.
// - Characters of kind 4 are read as characters.
// - A repeat count may go on from one component to the next.
// - Faulty text is a fault (IOSTAT 5010), also where gfortran reads on to the end of the file or
//   takes the text for nothing; no group in an internal file is the end of the file. The record
//   with the fault goes by, always.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "fio/gnu/array_walk.h"
#include "fio/gnu/namelist.h"
#include "fio/gnu/number_text.h"
#include "fio/gnu/statement.h"

namespace tarn::fio {

inline constexpr Fault namelist_bad_value{52, iostat_read_value};
inline constexpr Fault namelist_syntax{202, iostat_read_value};
inline constexpr Fault namelist_too_many{203, iostat_read_value};
inline constexpr Fault namelist_unknown_name{204, iostat_read_value};
inline constexpr Fault namelist_subscript_count{205, iostat_read_value};
inline constexpr Fault namelist_out_of_range{206, iostat_read_value};
inline constexpr Fault namelist_not_allocated{194, iostat_read_value};
inline constexpr Fault namelist_no_procedure{156, iostat_internal};

struct NamelistReader {
    static constexpr std::uint32_t no_item = UINT32_MAX;
    static constexpr std::size_t longest_word = 64;  // no name is as long

    NamelistReader(Statement& statement, NamelistGroup& variables)
        : s(statement), group(variables), comma(statement.modes.decimal == DecimalMark::comma) {}

    Statement& s;
    NamelistGroup& group;
    bool comma;                   // DECIMAL='COMMA': values are parted by semicolons
    bool group_found = false;     // what follows belongs to the group
    std::int64_t group_line = 0;  // where it begins
    // Of the groups that were passed, the one whose name is nearest.
    std::string nearest_group;
    std::size_t nearest_distance = 0;
    int groups_passed = 0;
    std::uint32_t item = no_item;  // the variable that was named last

    // A word at the end of a record which turned out to be the next name.
    bool name_waits = false;
    std::size_t word_length = 0;
    char word[longest_word];

    bool ends_value(char c) const { return c == ';' || (c == ',' && !comma); }
    std::string_view waiting_name() const { return {word, word_length}; }
};

// A character of a name behind its first.
constexpr bool is_name_character(char c) {
    return is_decimal_digit(c) || c == '_' || (lower_case(c) >= 'a' && lower_case(c) <= 'z');
}
constexpr bool begins_name(char c) {
    return c == '_' || (lower_case(c) >= 'a' && lower_case(c) <= 'z');
}
constexpr bool is_namelist_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Moves to the next character that is neither blank nor in a comment, in further records if need
// be; false when there is none.
bool try_find_text(NamelistReader& reader);
// The same; none is a fault, which is reported.
bool find_text(NamelistReader& reader);
// Blanks of the record at hand go by, up to a line end.
void skip_line_blanks(Statement& statement);

// The elements that a name selects.
struct NamelistSelection {
    std::uint32_t item = NamelistReader::no_item;
    ArrayWalk walk;
    std::size_t length = 0;  // characters of each element
};

// The variable, with its subscripts, components and substring, at the cursor; false: a fault.
bool read_designator(NamelistReader& reader, NamelistSelection& selection);
// The values behind the equals sign, as many as there are; false: a fault.
bool read_namelist_values(NamelistReader& reader, NamelistSelection& selection);

std::string joined(std::initializer_list<std::string_view> pieces);
// Reports a fault: the group, the line and the column of `at` (in the record at hand) go into the
// message, and `what`. Always false.
bool fail_namelist(NamelistReader& reader, Fault fault, const char* at, std::string_view what);
// No item `first` up to `last` of the group has the name.
bool fail_unknown_name(NamelistReader& reader, const char* at, std::string_view name,
                       std::uint32_t parent);
// The text ends before the group does, or without one.
bool fail_namelist_end(NamelistReader& reader);
// Another group stands in the text; it may be what was meant.
void note_other_group(NamelistReader& reader, std::string_view name);
std::int64_t namelist_line(const Statement& statement);

}  // namespace tarn::fio
