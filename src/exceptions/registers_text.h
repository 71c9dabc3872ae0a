// Registers and instructions as lines of a report.
#pragma once

#include "exceptions/exceptions.h"
#include "exceptions/file_writer.h"

namespace tarn::exceptions {

void add_integer_registers(FileWriter& file, const Context& context);
void add_float_registers(FileWriter& file, const Context& context);

// The next `count` instructions from an address on, where the system has a disassembler; without
// one their bytes.
void add_instructions(FileWriter& file, std::uint64_t address, int count);
// Those from `from` up to the fault before them; a mark stands at the fault.
void add_instructions(FileWriter& file, std::uint64_t from, std::uint64_t fault, int count);

inline constexpr const char* integer_register_names[16] = {"rax", "rcx", "rdx", "rbx", "rsp", "rbp",
                                                           "rsi", "rdi", "r8",  "r9",  "r10", "r11",
                                                           "r12", "r13", "r14", "r15"};

}  // namespace tarn::exceptions
