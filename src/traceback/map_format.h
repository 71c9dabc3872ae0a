// The section `.tarnmap`, which tells of every instruction of a program the routine and the line
// that it came from. tarnmap writes it after linking; it isn't loaded, and a strip leaves it. All
// numbers are little-endian, all offsets count from the section's first byte, and addresses are
// relative to `low` as the file was linked.
//
//   MapHeader
//   MapRoutine x routine_count   ascending by start, without overlap
//   MapInline  x inline_count    ascending by start, outer before inner
//   MapLine    x line_count      ascending by start; each holds up to the next
//   MapFile    x file_count
//   names                        zero-terminated, the first is empty
#pragma once

#include <cstdint>

namespace tarn::traceback {

inline constexpr char map_section[] = ".tarnmap";
inline constexpr char map_magic[8] = {'T', 'A', 'R', 'N', 'M', 'A', 'P', '\n'};
inline constexpr std::uint32_t map_version = 1;

struct [[gnu::packed]] MapHeader {
    char magic[8];
    std::uint32_t version;
    std::uint32_t size;  // of the whole section
    std::uint64_t low;
    std::uint32_t routine_count;
    std::uint32_t inline_count;
    std::uint32_t line_count;
    std::uint32_t file_count;
    std::uint32_t routines, inlines, lines, files, names;  // where each part begins
    std::uint32_t reserved;
};
static_assert(sizeof(MapHeader) == 64);

struct [[gnu::packed]] MapRoutine {
    std::uint32_t start;
    std::uint32_t size;
    std::uint32_t name;
    std::uint32_t flags;
};
static_assert(sizeof(MapRoutine) == 16);

// Made by the compiler, no routine of the source: the C main in front of a Fortran main program.
inline constexpr std::uint32_t routine_hidden = 1;
// The main program, where callers end.
inline constexpr std::uint32_t routine_is_main = 2;
// The rest of a routine whose beginning the compiler put in place of its calls: the two are one
// call.
inline constexpr std::uint32_t routine_is_rest = 4;

// Code of another routine that was put in place of a call.
struct [[gnu::packed]] MapInline {
    std::uint32_t start;
    std::uint32_t end;
    std::uint32_t name;
    std::uint32_t call_file;  // where the call stood
    std::uint32_t call_line;
    std::uint32_t depth;  // 0: called by the routine itself
};
static_assert(sizeof(MapInline) == 24);

struct [[gnu::packed]] MapFile {
    std::uint32_t name;
};

// Line 0: no line is known from here on.
struct [[gnu::packed]] MapLine {
    std::uint32_t start;
    std::uint32_t file;
    std::uint32_t line;
};
static_assert(sizeof(MapLine) == 12);

}  // namespace tarn::traceback
