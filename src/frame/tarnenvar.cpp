#include "frame/tarnenvar.h"

#include <cstdlib>
#include <strings.h>

#include "frame/debug_info.h"
#include "frame/float_control.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"

namespace tarn::frame {
namespace {

using enum OptionAction;
constexpr std::uint32_t underflow = platform::fp_underflow | platform::fp_denormal;

constexpr Option options[] = {
    {"kill_dialogbox", set_flag, tb_kill_dialogbox},
    {"no_traceback", set_flag, tb_no_traceback},
    {"old_dialogbox", set_flag, tb_old_dialogbox},
    {"trap_underflows", permit_underflow, 0},
    {"permit_underflows", permit_underflow, 1},
    {"full_traceback", clear_flag, tb_compress_recursion},
    {"no_control_break", set_flag, tb_no_control_break},
    {"mask_underflow", mask, underflow},
    {"mask_underflows", mask, underflow},
    {"unmask_underflow", unmask, underflow},
    {"unmask_underflows", unmask, underflow},
    {"mask_overflow", mask, platform::fp_overflow},
    {"mask_overflows", mask, platform::fp_overflow},
    {"unmask_overflow", unmask, platform::fp_overflow},
    {"unmask_overflows", unmask, platform::fp_overflow},
    {"mask_zero_divide", mask, platform::fp_zero_divide},
    {"mask_zero_divides", mask, platform::fp_zero_divide},
    {"unmask_zero_divide", unmask, platform::fp_zero_divide},
    {"unmask_zero_divides", unmask, platform::fp_zero_divide},
    {"mask_invalid_op", mask, platform::fp_invalid},
    {"mask_invalid_ops", mask, platform::fp_invalid},
    {"unmask_invalid_op", unmask, platform::fp_invalid},
    {"unmask_invalid_ops", unmask, platform::fp_invalid},
    {"mask_all", mask, platform::fp_all},
    {"unmask_all", unmask_all, 0},
    {"hardfail", set_flag, tb_hardfail},
};

void apply(const Option& option) {
    switch (option.action) {
        case set_flag:
            traceback_flags() |= option.value;
            break;
        case clear_flag:
            traceback_flags() &= ~option.value;
            break;
        case permit_underflow:
            debug_info().permit_underflow = static_cast<std::uint8_t>(option.value);
            break;
        case mask:
            or_words(static_cast<std::uint16_t>(option.value));
            break;
        case unmask:
            and_words(static_cast<std::uint16_t>(~option.value));
            break;
        case unmask_all:
            tarn::frame::unmask_all();
            break;
    }
}

}  // namespace

std::vector<const Option*> parse_options(std::string_view text) {
    constexpr std::string_view separators = " ;,";
    std::vector<const Option*> found;
    for (;;) {
        std::size_t begin = text.find_first_not_of(separators);
        if (begin == std::string_view::npos) return found;
        text.remove_prefix(begin);
        std::string_view token = text.substr(0, text.find_first_of(separators));
        text.remove_prefix(token.size());
        for (const Option& option : options) {
            if (option.token.size() == token.size() &&
                strncasecmp(option.token.data(), token.data(), token.size()) == 0) {
                found.push_back(&option);
                break;
            }
        }
    }
}

void read_option_variable() {
    if (state().options_read) return;
    state().options_read = true;
    const char* value = std::getenv("TARNENVAR");
    if (!value || !*value) return;
    for (const Option* option : parse_options(value)) apply(*option);
}

}  // namespace tarn::frame
