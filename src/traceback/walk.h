// From a routine to its callers, up to the thread's first. No heap, no lock, and no trust in what
// stands on the stack.
#pragma once

#include <cstdint>

#include "traceback/careful_memory.h"
#include "traceback/frame_rules.h"
#include "traceback/registers.h"

namespace tarn::traceback {

class Walk {
  public:
    // From the frame that `registers` describe. `interrupted` is true where a signal came between
    // two instructions: the place is then the next instruction, not the one behind a call.
    Walk(const Registers& registers, bool interrupted)
        : registers_(registers), interrupted_(interrupted) {}

    // From a place whose frame pointer is all that is known of its registers.
    static Walk from_frame(std::uintptr_t place, std::uintptr_t frame) {
        Registers registers;
        registers[return_address] = place;
        registers[rbp] = registers[rsp] = frame;
        Walk walk(registers, true);
        walk.only_frame_ = true;
        return walk;
    }

    // An address within the instruction that is being carried out: the fault, or the call.
    std::uintptr_t place() const { return registers_.place() - (interrupted_ ? 0 : 1); }
    const Registers& registers() const { return registers_; }
    bool interrupted() const { return interrupted_; }
    CarefulMemory& memory() { return memory_; }

    // Goes to the caller; false at the end, or where nothing leads further.
    bool next();

  private:
    // A stack of a million frames has few places.
    static constexpr std::size_t kept_rules = 16;

    const FrameRules* rules_for(std::uintptr_t place);
    bool by_tables(const FrameRules& rules);
    bool by_frame_pointer();
    bool by_return_address();
    bool frame_address(const FrameRules& rules, std::uintptr_t& frame);
    bool caller_value(const RegisterRule& rule, unsigned which, std::uintptr_t frame,
                      std::uintptr_t& value);

    Registers registers_;
    bool interrupted_;
    bool first_ = true;
    bool only_frame_ = false;
    CarefulMemory memory_;
    FrameRules kept_[kept_rules];
};

}  // namespace tarn::traceback
