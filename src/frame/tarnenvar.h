// The option variable TARNENVAR.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tarn::frame {

enum class OptionAction : std::uint8_t {
    set_flag,  // bits of traceback_flags
    clear_flag,
    permit_underflow,
    mask,  // exceptions, in the control word's bits
    unmask,
    unmask_all,  // back to the default words
};

struct Option {
    std::string_view token;
    OptionAction action;
    std::uint32_t value;
};

// What the tokens of such a text ask for, in their order. Tokens are separated by blanks,
// semicolons and commas and compared without regard to case; an unknown one means nothing.
std::vector<const Option*> parse_options(std::string_view text);

// Reads the variable and does as it says, once in a process.
void read_option_variable();

}  // namespace tarn::frame
