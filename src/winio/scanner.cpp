// The walk over a format: literal text, and codes with their modifiers and numbers.
#include "winio/scanner.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "winio/common_dialog.h"
#include "winio/layout.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

// More columns or rows than any screen has. What a format or an argument says beyond is this.
constexpr std::int32_t largest_number = 100000;
constexpr std::size_t accumulator_size = 1000;

class scanner {
  public:
    scanner(const char* format, argument_source& arguments)
        : cursor_(format), text_(format), arguments_(arguments) {}

    bool run() {
        while (*cursor_ && !building().abandoned) {
            if (*cursor_ != '%') {
                ++cursor_;
            } else if (cursor_[1] == '%') {
                cursor_ += 2;
            } else {
                code();
            }
        }
        const bool goes_on = text_ < cursor_ && cursor_[-1] == '&';
        if (!building().abandoned && builder().nw_mode == 0) {
            handle_text(text_, cursor_ - (goes_on ? 1 : 0), false, true);
        }
        return goes_on;
    }

  private:
    void code() {
        const char* percent = cursor_++;
        code_call call{cursor_, arguments_, -1,    -1,    0,     false,
                       false,   false,      false, false, false, false};
        while (take_modifier(call) || take_plain_flag(call)) {
        }
        if (*cursor_ == '*' || *cursor_ == '.' || is_digit(*cursor_)) {
            take_numbers(call);
            while (take_modifier(call)) {
            }
        }
        if (!take_letters(call)) {
            text_ = cursor_;
            return;
        }
        if (builder().nw_mode != 0) {
            if (!allowed_in_nw_mode(call.code)) {
                quillpan_error("Invalid format code after %%NW.");
                text_ = cursor_;
                return;
            }
        } else {
            handle_text(text_, percent, joins_text(call.code), true);
        }
        do_format_code(call);
        text_ = cursor_;
    }

    static bool is_digit(char c) { return c >= '0' && c <= '9'; }

    // Those that may stand on either side of the numbers.
    bool take_modifier(code_call& call) {
        bool* flag = nullptr;
        switch (*cursor_) {
            case '`':
                flag = &call.grave;
                break;
            case '~':
                flag = &call.tilde;
                break;
            case '^':
                flag = &call.caret;
                break;
            case '?':
                flag = &call.question;
                break;
            default:
                return false;
        }
        *flag = true;
        ++cursor_;
        return true;
    }

    bool take_plain_flag(code_call& call) {
        switch (*cursor_) {
            case '0':
                call.zero = true;
                break;
            case '+':
                call.plus = true;
                break;
            case '-':
                call.minus = true;
                break;
            case '#':
                break;
            default:
                return false;
        }
        ++cursor_;
        return true;
    }

    std::int32_t take_number() {
        if (*cursor_ == '*') {
            ++cursor_;
            return std::clamp(user_integer(arguments_), -largest_number, largest_number);
        }
        std::int32_t number = 0;
        for (; is_digit(*cursor_); ++cursor_) {
            number = std::min(number * 10 + (*cursor_ - '0'), largest_number);
        }
        return number;
    }

    void take_numbers(code_call& call) {
        if (*cursor_ != '.') call.n = take_number();
        if (*cursor_ != '.') return;
        ++cursor_;
        call.m = take_number();
    }

    bool take_letters(code_call& call) {
        const auto letter = [this](int at) {
            return static_cast<char>(std::toupper(static_cast<unsigned char>(cursor_[at])));
        };
        const char first = letter(0);
        const char second = first ? letter(1) : '\0';
        if (first < 'A' || first > 'Z' || second < 'A' || second > 'Z') {
            quillpan_error("Missing 2-character format code after '%%'");
            return false;
        }
        call.code = code_of(first, second);
        cursor_ += 2;
        return true;
    }

    static bool allowed_in_nw_mode(std::uint16_t code) {
        return code == code_of('N', 'W') || code == code_of('M', 'N') || code == code_of('P', 'M');
    }

    // What these give is part of the line's text.
    static bool joins_text(std::uint16_t code) {
        switch (code) {
            case code_of('W', 'C'):
            case code_of('W', 'D'):
            case code_of('W', 'X'):
            case code_of('W', 'F'):
            case code_of('W', 'S'):
            case code_of('P', 'D'):
                return true;
            default:
                return false;
        }
    }

    const char* cursor_;
    const char* text_;  // where the literal text begins that isn't handled yet
    argument_source& arguments_;
};

// ---- What every code has behind its own work ----------------------------------------------------
void report_left_over(const code_call& call) {
    const char first = static_cast<char>(call.code >> 8), second = static_cast<char>(call.code);
    if (call.grave) {
        quillpan_error("?Unexpected use of ` character in '%c%c' format", first, second);
    }
    if (call.caret) {
        quillpan_error("?Unexpected use of ^ character (call-back specifier)\nin '%c%c' format",
                       first, second);
    }
    if (call.tilde) {
        quillpan_error("?Unexpected use of ~ character (grey control specifier)\nin '%c%c' format",
                       first, second);
    }
}

// Made beside the control that the code asked for: its spin buttons, the end of a full line.
bool is_internal(const window_control& control) {
    return control.type == control_type::spin || control.type == control_type::line_end;
}

window_control* first_new_control(fancy_window& window, window_control* before) {
    return before ? before->next : window.first_control;
}

void read_help(code_call& call, window_control* before) {
    fancy_window* window = current_window();
    if (!window) return;
    // A code that made no control gives its help to the last one.
    window_control* control = first_new_control(*window, before);
    if (!control) control = window->last_control;
    for (; control; control = control->next) {
        if (is_internal(*control)) continue;
        window->flags.help_wanted = true;
        if (*call.format != '[' && *call.format != '@') {
            quillpan_error("Missing help string");
            return;
        }
        control->help = get_shown_string(call, "help");
        text_size(control->help, control->help_width, control->help_depth);
        window->help_width = std::max(window->help_width, control->help_width);
        window->help_depth = std::max(window->help_depth, control->help_depth);
    }
}

void report_unknown_code(const code_call& call) {
    const char* percent = call.format - 2;
    while (*percent != '%') --percent;
    const std::string text = "Unrecognised format code -" + std::string(percent, call.format);
    quillpan_error("%s ", text.c_str());
}

// While a file dialog is being described nothing else may come.
void refuse_other_than_dialog(const code_call& call) {
    if (call.code == code_of('C', 'D') || call.code == code_of('E', 'X')) return;
    auto* dialog = static_cast<common_dialog*>(get_preloaded_block(control_type::line_end));
    if (!dialog) return;
    delete dialog;
    quillpan_error("The format code must not change with successive calls to winio@('%%cd')");
}

}  // namespace

namespace {

// One scan's text and code; those of the scan that it interrupts come back also when an exception
// of the program passes through.
class scan_scope {
  public:
    scan_scope() : outer_(building().accumulator), outer_call_(building().call) {
        text_.reserve(accumulator_size);
        building().accumulator = &text_;
        building().call = nullptr;
    }
    ~scan_scope() {
        building().accumulator = outer_;
        building().call = outer_call_;
    }
    scan_scope(const scan_scope&) = delete;
    scan_scope& operator=(const scan_scope&) = delete;

  private:
    std::string text_;
    std::string* outer_;
    code_call* outer_call_;
};

}  // namespace

bool scan_format(const char* format, argument_source& arguments) {
    const scan_scope scope;
    return scanner(format, arguments).run();
}

void do_format_code(code_call& call) {
    builder_state& state = building();
    code_call* const outer = state.call;
    state.call = &call;
    refuse_other_than_dialog(call);
    process_preload_state(call);
    const code_handler handler = handler_of(call.code);
    if (!handler) {
        report_unknown_code(call);
        state.call = outer;
        return;
    }
    // %ty belongs right behind its %tx; a %tc between them gives a pair its text colour.
    if (call.code != code_of('T', 'Y') && call.code != code_of('T', 'C'))
        pending().text_array_seen = false;
    fancy_window* window = current_window();
    window_control* const before = window ? window->last_control : nullptr;
    if (!add_preloaded_options(call)) handler(call);
    end_preload_at_bracket(call);
    state.call = outer;
    if (state.abandoned) return;
    const bool same_window = window == current_window();
    if (window && same_window) {
        window_control* made = first_new_control(*window, before);
        for (; made; made = made->next) made->code = call.code;
    }
    report_left_over(call);
    if (call.question && same_window) read_help(call, before);
}

}  // namespace tarn::winio
