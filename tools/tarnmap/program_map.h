// What tarnmap learns of a program, before it is packed into a section.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::map {

struct Routine {
    std::uint64_t start = 0, end = 0;
    std::string name;
    std::uint32_t flags = 0;
};

struct InlinedCall {
    std::uint64_t start = 0, end = 0;
    std::string name;
    std::string call_file;
    std::uint32_t call_line = 0;
    std::uint32_t depth = 0;
};

struct Line {
    std::uint64_t start = 0;
    std::uint32_t file = 0;  // index into ProgramMap::files
    std::uint32_t line = 0;  // 0: nothing is known from here on
};

struct ProgramMap {
    std::vector<Routine> routines;
    std::vector<InlinedCall> inlined;
    std::vector<Line> lines;
    std::vector<std::string> files;
};

// Reads a linked program or library: its debug information, and for what that doesn't tell its
// symbols. Throws std::runtime_error with a sentence for the user.
ProgramMap read_program(const std::string& path);

// Brings all into the order that a reader searches by, and leaves out what says nothing.
void put_in_order(ProgramMap& map);

// The bytes of the section. Throws std::runtime_error for a program that is too large.
std::string packed(const ProgramMap& map);

}  // namespace tarn::map
