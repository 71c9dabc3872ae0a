#include "exceptions/instruction.h"

#include <cstring>

#include "traceback/careful_memory.h"

namespace tarn::exceptions {
namespace {

struct Cursor {
    const std::uint8_t* at;
    const std::uint8_t* end;
    std::uint8_t byte() { return at < end ? *at++ : 0; }
    std::uint8_t peek() const { return at < end ? *at : 0; }
    template <class Number>
    std::int64_t number() {
        Number value = 0;
        if (end - at >= static_cast<std::ptrdiff_t>(sizeof value)) {
            std::memcpy(&value, at, sizeof value);
            at += sizeof value;
        }
        return value;
    }
};

struct Extension {  // of a REX byte, or of a VEX byte's inverted bits
    std::uint8_t reg = 0, index = 0, base = 0;
};

void read_prefixes(Cursor& code, Instruction& instruction) {
    for (;; code.byte()) {
        switch (code.peek()) {
            case 0x66:
                instruction.operand_size = true;
                if (instruction.prefix == 0) instruction.prefix = 0x66;
                break;
            case 0xF2:
            case 0xF3:
                instruction.prefix = code.peek();
                break;
            case 0x26:
            case 0x2E:
            case 0x36:
            case 0x3E:
                break;
            case 0x64:
            case 0x65:
            case 0x67:
                instruction.relocated = true;
                break;
            case 0xF0:
                break;
            default:
                return;
        }
    }
}

void read_vector_opcode(Cursor& code, Instruction& instruction, Extension& extension) {
    constexpr std::uint8_t prefixes[] = {0, 0x66, 0xF3, 0xF2};
    instruction.vector = true;
    const bool three = code.byte() == 0xC4;
    std::uint8_t last = code.byte();
    extension.reg = (last & 0x80) != 0 ? 0 : 8;
    instruction.map = 1;
    if (three) {
        extension.index = (last & 0x40) != 0 ? 0 : 8;
        extension.base = (last & 0x20) != 0 ? 0 : 8;
        instruction.map = last & 0x1F;
        last = code.byte();
        instruction.wide = (last & 0x80) != 0;
    }
    instruction.prefix = prefixes[last & 3];
    instruction.longer = (last & 4) != 0;
    instruction.source = static_cast<std::uint8_t>(~last >> 3 & 15);
    instruction.opcode = code.byte();
}

void read_opcode(Cursor& code, Instruction& instruction, Extension& extension) {
    if (code.peek() == 0xC4 || code.peek() == 0xC5) {
        read_vector_opcode(code, instruction, extension);
        return;
    }
    if ((code.peek() & 0xF0) == 0x40) {
        const std::uint8_t rex = code.byte();
        instruction.wide = (rex & 8) != 0;
        extension = {static_cast<std::uint8_t>((rex & 4) << 1),
                     static_cast<std::uint8_t>((rex & 2) << 2),
                     static_cast<std::uint8_t>((rex & 1) << 3)};
    }
    instruction.opcode = code.byte();
    if (instruction.opcode != 0x0F) return;
    instruction.map = 1;
    instruction.opcode = code.byte();
    if (instruction.opcode == 0x38) instruction.map = 2;
    if (instruction.opcode == 0x3A) instruction.map = 3;
    if (instruction.map != 1) instruction.opcode = code.byte();
}

// The segments' bases are left out: what faults on a thread's own data is told by the system.
void read_operands(Cursor& code, const Context& context, const Extension& extension,
                   Instruction& instruction) {
    const std::uint8_t modrm = code.byte();
    instruction.mod = modrm >> 6;
    instruction.reg = static_cast<std::uint8_t>((modrm >> 3 & 7) | extension.reg);
    const std::uint8_t low = modrm & 7;
    instruction.rm = static_cast<std::uint8_t>(low | extension.base);
    if (instruction.mod == 3) return;
    std::uint64_t address = 0;
    bool relative = false;
    bool wide_displacement = instruction.mod == 2;
    if (low == 4) {
        const std::uint8_t sib = code.byte();
        const unsigned index = (sib >> 3 & 7) | extension.index;
        if (index != 4) address = context.integer[index] << (sib >> 6);
        if ((sib & 7) == 5 && instruction.mod == 0) {
            wide_displacement = true;
        } else {
            address += context.integer[(sib & 7) | extension.base];
        }
    } else if (low == 5 && instruction.mod == 0) {
        relative = wide_displacement = true;
    } else {
        address = context.integer[instruction.rm];
    }
    if (instruction.mod == 1)
        address += static_cast<std::uint64_t>(code.number<std::int8_t>());
    else if (wide_displacement)
        address += static_cast<std::uint64_t>(code.number<std::int32_t>());
    // Instructions that have a number behind such an operand don't matter here.
    if (relative)
        address += context.instruction + longest_instruction -
                   static_cast<std::uint64_t>(code.end - code.at);
    instruction.address = address;
}

}  // namespace

std::size_t read_code(std::uint64_t address, std::uint8_t (&code)[longest_instruction]) {
    traceback::CarefulMemory memory;
    std::size_t count = 0;
    while (count < longest_instruction && memory.read(address + count, &code[count], 1)) ++count;
    std::memset(code + count, 0, longest_instruction - count);
    return count;
}

void decode(const std::uint8_t (&bytes)[longest_instruction], const Context& context,
            Instruction& instruction) {
    Cursor code{bytes, bytes + longest_instruction};
    Extension extension;
    read_prefixes(code, instruction);
    read_opcode(code, instruction, extension);
    read_operands(code, context, extension, instruction);
    instruction.length = static_cast<std::size_t>(code.at - bytes);
}

bool read_instruction(const Context& context, Instruction& instruction) {
    std::uint8_t bytes[longest_instruction];
    if (read_code(context.instruction, bytes) == 0) return false;
    decode(bytes, context, instruction);
    return true;
}

}  // namespace tarn::exceptions
