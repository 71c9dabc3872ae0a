#include "traceback/walk.h"

#include "traceback/expression.h"
#include "traceback/module.h"

namespace tarn::traceback {

Registers registers_of(const ucontext_t& context) {
    const auto& machine = context.uc_mcontext.gregs;
    constexpr struct {
        Register ours;
        int theirs;
    } pairs[] = {
        {rax, REG_RAX}, {rdx, REG_RDX},           {rcx, REG_RCX}, {rbx, REG_RBX}, {rsi, REG_RSI},
        {rdi, REG_RDI}, {rbp, REG_RBP},           {rsp, REG_RSP}, {r8, REG_R8},   {r9, REG_R9},
        {r10, REG_R10}, {r11, REG_R11},           {r12, REG_R12}, {r13, REG_R13}, {r14, REG_R14},
        {r15, REG_R15}, {return_address, REG_RIP}};
    Registers all;
    for (auto pair : pairs) all[pair.ours] = static_cast<std::uintptr_t>(machine[pair.theirs]);
    return all;
}

const FrameRules* Walk::rules_for(std::uintptr_t place) {
    if (place == 0)
        return nullptr;  // a call through a null pointer, and the mark of an unused entry
    FrameRules& kept = kept_[(place ^ place >> 6) % kept_rules];
    if (kept.place == place) return &kept;
    if (find_frame_rules(place, kept)) return &kept;
    kept.place = 0;
    return nullptr;
}

bool Walk::frame_address(const FrameRules& rules, std::uintptr_t& frame) {
    if (rules.frame.kind == RegisterRule::Kind::computed) {
        return evaluate(rules.frame.expression, rules.frame.expression_size, registers_, nullptr,
                        memory_, frame);
    }
    frame = registers_[rules.frame_register] + static_cast<std::uintptr_t>(rules.frame.offset);
    return true;
}

bool Walk::caller_value(const RegisterRule& rule, unsigned which, std::uintptr_t frame,
                        std::uintptr_t& value) {
    const auto offset = static_cast<std::uintptr_t>(rule.offset);
    switch (rule.kind) {
        case RegisterRule::Kind::same:
            value = registers_[which];
            return true;
        case RegisterRule::Kind::undefined:
            value = 0;
            return true;
        case RegisterRule::Kind::saved:
            return memory_.word(frame + offset, value);
        case RegisterRule::Kind::frame_plus:
            value = frame + offset;
            return true;
        case RegisterRule::Kind::in_register:
            value = registers_[static_cast<unsigned>(rule.offset)];
            return true;
        case RegisterRule::Kind::saved_at: {
            std::uintptr_t at = 0;
            return evaluate(rule.expression, rule.expression_size, registers_, &frame, memory_,
                            at) &&
                   memory_.word(at, value);
        }
        case RegisterRule::Kind::computed:
            return evaluate(rule.expression, rule.expression_size, registers_, &frame, memory_,
                            value);
    }
    return false;
}

bool Walk::by_tables(const FrameRules& rules) {
    std::uintptr_t frame = 0;
    if (!frame_address(rules, frame)) return false;
    Registers caller;
    caller[rsp] = frame;
    for (unsigned which = 0; which < register_count; ++which) {
        const RegisterRule& rule = rules.registers[which];
        if (which == rsp && rule.kind == RegisterRule::Kind::same) continue;
        if (!caller_value(rule, which, frame, caller[which])) return false;
    }
    // A stack grows downward: a caller's frame lies above, except where a signal changed stacks.
    if (caller.stack() <= registers_.stack() && !rules.signal_frame) return false;
    registers_ = caller;
    interrupted_ = rules.signal_frame;
    return true;
}

// A jump to where no code is: what jumped left its return address on the stack's top.
bool Walk::by_return_address() {
    std::uintptr_t back = 0;
    Module module;
    if (!memory_.word(registers_.stack(), back) || !find_module(back, module)) return false;
    registers_[return_address] = back;
    registers_[rsp] += sizeof back;
    interrupted_ = false;
    return true;
}

bool Walk::by_frame_pointer() {
    const std::uintptr_t frame = registers_[rbp];
    std::uintptr_t pair[2];
    Module module;
    if (frame < registers_.stack() || frame % alignof(std::uintptr_t) != 0) return false;
    if (!memory_.read(frame, pair, sizeof pair) || !find_module(pair[1], module)) return false;
    registers_[rbp] = pair[0];
    registers_[rsp] = frame + sizeof pair;
    registers_[return_address] = pair[1];
    interrupted_ = false;
    return true;
}

bool Walk::next() {
    const bool first = first_;
    first_ = false;
    if (first && only_frame_) return by_frame_pointer();
    const FrameRules* rules = rules_for(place());
    if (rules != nullptr) {
        // A thread's first routine says that it has no caller.
        if (rules->registers[return_address].kind == RegisterRule::Kind::undefined) return false;
        if (by_tables(*rules)) return registers_.place() != 0;
    } else if (first && interrupted_) {
        Module module;
        if (!find_module(place(), module) && by_return_address()) return true;
    }
    return by_frame_pointer();
}

}  // namespace tarn::traceback
