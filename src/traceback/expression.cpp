#include "traceback/expression.h"

#include <cstddef>
#include <utility>

#include "traceback/byte_cursor.h"

namespace tarn::traceback {
namespace {

class Machine {
  public:
    Machine(const Registers& registers, CarefulMemory& memory)
        : registers_(registers), memory_(memory) {}

    bool push(std::uintptr_t value) {
        if (depth_ == deepest) return false;
        stack_[depth_++] = value;
        return true;
    }
    bool top(std::uintptr_t& value) const {
        if (depth_ == 0) return false;
        value = stack_[depth_ - 1];
        return true;
    }
    bool step(ByteCursor& program);

  private:
    static constexpr std::size_t deepest = 32;

    bool constant(std::uint8_t code, ByteCursor& program);
    bool rearrange(std::uint8_t code, ByteCursor& program);
    bool one_operand(std::uint8_t code, ByteCursor& program);
    bool two_operands(std::uint8_t code);
    bool fetch(std::size_t size);
    bool from_register(std::uint64_t which, std::int64_t offset) {
        return which < register_count &&
               push(registers_[static_cast<unsigned>(which)] + static_cast<std::uintptr_t>(offset));
    }

    const Registers& registers_;
    CarefulMemory& memory_;
    std::uintptr_t stack_[deepest];
    std::size_t depth_ = 0;
};

bool Machine::constant(std::uint8_t code, ByteCursor& program) {
    switch (code) {
        case 0x03:
        case 0x0E:
        case 0x0F:
            return push(program.number<std::uint64_t>());
        case 0x08:
            return push(program.byte());
        case 0x09:
            return push(static_cast<std::uintptr_t>(std::intptr_t{program.number<std::int8_t>()}));
        case 0x0A:
            return push(program.number<std::uint16_t>());
        case 0x0B:
            return push(static_cast<std::uintptr_t>(std::intptr_t{program.number<std::int16_t>()}));
        case 0x0C:
            return push(program.number<std::uint32_t>());
        case 0x0D:
            return push(static_cast<std::uintptr_t>(std::intptr_t{program.number<std::int32_t>()}));
        case 0x10:
            return push(program.unsigned_leb());
        default:
            return push(static_cast<std::uintptr_t>(program.signed_leb()));
    }
}

bool Machine::rearrange(std::uint8_t code, ByteCursor& program) {
    if (depth_ == 0) return false;
    std::size_t below = 0;
    switch (code) {
        case 0x12:  // dup
            break;
        case 0x13:  // drop
            --depth_;
            return true;
        case 0x14:  // over
            below = 1;
            break;
        case 0x15:  // pick
            below = program.byte();
            break;
        default:  // swap
            if (depth_ < 2) return false;
            std::swap(stack_[depth_ - 1], stack_[depth_ - 2]);
            return true;
    }
    return below < depth_ && push(stack_[depth_ - 1 - below]);
}

bool Machine::fetch(std::size_t size) {
    std::uintptr_t value = 0;
    if (depth_ == 0 || size > sizeof value || !memory_.read(stack_[depth_ - 1], &value, size))
        return false;
    stack_[depth_ - 1] = value;
    return true;
}

bool Machine::one_operand(std::uint8_t code, ByteCursor& program) {
    if (code == 0x06) return fetch(sizeof(std::uintptr_t));
    if (code == 0x94) return fetch(program.byte());
    if (depth_ == 0) return false;
    std::uintptr_t& value = stack_[depth_ - 1];
    switch (code) {
        case 0x19:
            if (static_cast<std::intptr_t>(value) < 0) value = -value;
            return true;
        case 0x1F:
            value = -value;
            return true;
        case 0x20:
            value = ~value;
            return true;
        default:  // plus a constant
            value += program.unsigned_leb();
            return true;
    }
}

bool Machine::two_operands(std::uint8_t code) {
    if (depth_ < 2) return false;
    const std::uintptr_t right = stack_[--depth_];
    std::uintptr_t& left = stack_[depth_ - 1];
    const auto signed_left = static_cast<std::intptr_t>(left);
    const auto signed_right = static_cast<std::intptr_t>(right);
    switch (code) {
        case 0x1A:
            left &= right;
            break;
        case 0x1C:
            left -= right;
            break;
        case 0x1E:
            left *= right;
            break;
        case 0x21:
            left |= right;
            break;
        case 0x22:
            left += right;
            break;
        case 0x24:
            left = right < 64 ? left << right : 0;
            break;
        case 0x25:
            left = right < 64 ? left >> right : 0;
            break;
        case 0x26:
            left = static_cast<std::uintptr_t>(signed_left >> (right < 64 ? right : 63));
            break;
        case 0x27:
            left ^= right;
            break;
        case 0x29:
            left = signed_left == signed_right;
            break;
        case 0x2A:
            left = signed_left >= signed_right;
            break;
        case 0x2B:
            left = signed_left > signed_right;
            break;
        case 0x2C:
            left = signed_left <= signed_right;
            break;
        case 0x2D:
            left = signed_left < signed_right;
            break;
        case 0x2E:
            left = signed_left != signed_right;
            break;
        default:
            return false;
    }
    return true;
}

bool Machine::step(ByteCursor& program) {
    const std::uint8_t code = program.byte();
    if (code >= 0x30 && code <= 0x4F) return push(code - 0x30u);
    if (code >= 0x50 && code <= 0x6F) return from_register(code - 0x50u, 0);
    if (code >= 0x70 && code <= 0x8F) return from_register(code - 0x70u, program.signed_leb());
    switch (code) {
        case 0x03:
        case 0x08:
        case 0x09:
        case 0x0A:
        case 0x0B:
        case 0x0C:
        case 0x0D:
        case 0x0E:
        case 0x0F:
        case 0x10:
        case 0x11:
            return constant(code, program);
        case 0x12:
        case 0x13:
        case 0x14:
        case 0x15:
        case 0x16:
            return rearrange(code, program);
        case 0x06:
        case 0x19:
        case 0x1F:
        case 0x20:
        case 0x23:
        case 0x94:
            return one_operand(code, program);
        case 0x92: {
            const std::uint64_t which = program.unsigned_leb();
            return from_register(which, program.signed_leb());
        }
        case 0x96:
            return true;
        default:
            return two_operands(code);
    }
}

}  // namespace

// No branches among the instructions, so that a program ends with its last one.
bool evaluate(const unsigned char* program, std::uint32_t size, const Registers& registers,
              const std::uintptr_t* first, CarefulMemory& memory, std::uintptr_t& result) {
    Machine machine(registers, memory);
    if (first != nullptr) machine.push(*first);
    ByteCursor cursor(program, program + size);
    while (!cursor.done()) {
        if (!machine.step(cursor)) return false;
    }
    return !cursor.bad && machine.top(result);
}

}  // namespace tarn::traceback
