// As much of an instruction as tells why it faulted: its opcode and where its operand is.
#pragma once

#include <cstddef>
#include <cstdint>

#include "exceptions/exceptions.h"

namespace tarn::exceptions {

inline constexpr std::size_t longest_instruction = 15;

struct Instruction {
    std::uint8_t prefix = 0;  // 0xF2, 0xF3 or 0x66, the one that counts; 0: none
    bool operand_size = false;
    bool wide = false;        // 64-bit operands
    bool vector = false;      // with a VEX prefix
    bool longer = false;      // of 256 bits
    bool relocated = false;   // an address that counts from elsewhere: a segment, or cut to 32 bits
    std::uint8_t source = 0;  // the register that a VEX prefix names
    int map = 0;              // 0: one byte; 1: behind 0F; 2 and 3: behind 0F 38 and 0F 3A
    std::uint8_t opcode = 0;
    std::uint8_t mod = 0, reg = 0, rm = 0;
    std::uint64_t address = 0;  // of the operand in memory, where mod isn't 3
    std::size_t length = 0;     // up to here; some have a number behind their operands
};

// The bytes that are there behind `address`; the rest is zero.
std::size_t read_code(std::uint64_t address, std::uint8_t (&code)[longest_instruction]);
void decode(const std::uint8_t (&code)[longest_instruction], const Context& context,
            Instruction& instruction);
// False where the bytes can't be read.
bool read_instruction(const Context& context, Instruction& instruction);

}  // namespace tarn::exceptions
