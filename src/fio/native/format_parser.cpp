#include "fio/native/format_parser.h"

#include <cstddef>
#include <limits>

#include "fio/native/format_stream.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t max_levels = 64;

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
constexpr char fold(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr bool is_quote(char c) {
    return c == '\'' || c == '"';
}

// The number before a descriptor: a repeat count, k or n.
struct Prefix {
    bool has_sign = false;
    bool negative = false;
    bool given = false;
    std::int32_t value = 0;
};

// The parser walks the text once, in two alternating phases: an item, and what may stand between
// items. Every turn of a phase moves on in the text or changes over to the other, whatever
// messages are ignored. Every function returns false when a message ends the parse.
class Parser {
  public:
    Parser(std::string_view text, bool strict, ReportMessage report, Format& format)
        : text_(text.substr(0, text.find('\0'))),
          strict_(strict),
          report_(report),
          format_(format) {}

    bool run() {
        format_.clear();
        skip_blanks();
        if (peek() == '(') {
            ++place_;
        } else if (!report_(73)) {
            return false;
        }
        open(0);
        while (!open_.empty()) {
            if (!(in_item_ ? item() : separator())) return false;
        }
        return true;
    }

  private:
    // ---- The text ----

    char peek() const { return place_ < text_.size() ? text_[place_] : '\0'; }
    void skip_blanks() {
        while (place_ < text_.size() && text_[place_] == ' ') ++place_;
    }
    static void add_digit(std::int32_t& value, char digit) {
        constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
        const std::int32_t d = digit - '0';
        value = value > (most - d) / 10 ? most : value * 10 + d;
    }
    // `digit`: whether a digit comes next.
    bool is_a_digit(bool& digit) {
        skip_blanks();
        if (peek() == '+' || peek() == '-') {
            if (!report_(75)) return false;
            ++place_;
            skip_blanks();
        }
        digit = is_digit(peek());
        return true;
    }
    // Blanks may stand between the digits.
    bool get_pos_int(std::int32_t& value, bool zero_allowed) {
        value = 0;
        bool any = false;
        for (skip_blanks(); is_digit(peek()); skip_blanks()) {
            add_digit(value, text_[place_++]);
            any = true;
        }
        return (any && (value > 0 || zero_allowed)) || report_(75);
    }
    bool required_number(std::int32_t& value, bool zero_allowed) {
        bool digit = false;
        if (!is_a_digit(digit)) return false;
        if (digit) return get_pos_int(value, zero_allowed);
        value = 0;
        return report_(77);
    }
    // Passes the mark if it comes next.
    bool passes(char mark) {
        skip_blanks();
        if (fold(peek()) != mark) return false;
        ++place_;
        return true;
    }
    std::int32_t count_slashes() {
        std::int32_t count = 0;
        for (; peek() == '/'; skip_blanks()) {
            ++place_;
            ++count;
        }
        return count;
    }

    // ---- The steps ----

    FormatStep& emit(FormatOp op, std::int32_t repeat = 0) {
        FormatStep& step = format_.steps.emplace_back();
        step.op = op;
        step.repeat = repeat;
        return step;
    }
    std::int32_t level() const { return static_cast<std::int32_t>(open_.size()); }

    void open(std::int32_t repeat) {
        open_.push_back(static_cast<std::uint32_t>(format_.steps.size()));
        emit(op_open, repeat).level = level();
        skip_blanks();
        in_item_ = peek() != ')';
    }
    void close() {
        if (level() > 1) {
            reversion_ = open_.back();
            FormatStep& step = emit(op_close);
            step.level = level();
            step.link = reversion_;
        } else {
            emit(op_end).link = reversion_;
        }
        open_.pop_back();
        in_item_ = false;
    }
    void text_step(FormatOp op, std::size_t start) {
        FormatStep& step = emit(op);
        step.text = static_cast<std::uint32_t>(start);
        step.length = static_cast<std::uint32_t>(format_.text.size() - start);
    }
    // From an opening quote to behind the closing one, or to the end of the text.
    void quoted(FormatOp op) {
        const std::size_t start = format_.text.size();
        const char quote = text_[place_++];
        while (place_ < text_.size()) {
            const char c = text_[place_++];
            if (c == quote) {
                if (peek() != quote) break;
                ++place_;
            }
            format_.text.push_back(c);
        }
        text_step(op, start);
    }
    void hollerith(std::int32_t count) {
        const std::size_t start = format_.text.size();
        const std::string_view text = text_.substr(place_, static_cast<std::size_t>(count));
        format_.text.append(text);
        place_ += text.size();
        text_step(op_hollerith, start);
    }

    // ---- An item ----

    bool prefix(Prefix& number) {
        skip_blanks();
        if (peek() == '+' || peek() == '-') {
            number.has_sign = true;
            number.negative = peek() == '-';
            ++place_;
            skip_blanks();
        }
        number.given = is_digit(peek());
        while (is_digit(peek())) add_digit(number.value, text_[place_++]);
        skip_blanks();
        const char next = fold(peek());
        const bool wrong = number.has_sign || (number.given && number.value == 0);
        if (wrong && next != 'P' && !report_(75)) return false;
        return !number.given || (next != ')' && next != ',') || report_(59);
    }

    bool item() {
        in_item_ = false;
        after_scale_ = false;
        Prefix number;
        if (!prefix(number)) return false;
        const char next = fold(peek());
        if (next == '(') {
            ++place_;
            if (level() >= max_levels && !report_(72)) return false;
            open(number.value);
            return true;
        }
        if (next == '/') {
            const std::int32_t more = number.value > 0 ? number.value - 1 : 0;
            slashes(more);
            in_item_ = peek() != ')';
            return true;
        }
        if (is_quote(next)) {
            if (number.given && !report_(76)) return false;
            quoted(op_hollerith);
            return true;
        }
        return descriptor(next, number);
    }

    void slashes(std::int32_t more) {
        std::int64_t count = more;
        for (; peek() == '/'; ++place_) ++count;
        constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
        emit(op_slash, static_cast<std::int32_t>(count < most ? count : most));
        if (passes(',')) skip_blanks();
    }

    // A letter outside the table stays for the separator phase, which knows no such letter either.
    bool descriptor(char letter, const Prefix& number) {
        switch (letter) {
            case 'A':
                ++place_;
                return character(number.value);
            case 'B':
                ++place_;
                return letter_b(number.value);
            case 'D':
                ++place_;
                return fixed(op_D, number.value);
            case 'E':
                ++place_;
                if (passes('N')) return exponential(op_EN, number.value);
                if (passes('S')) return exponential(op_ES, number.value);
                return exponential(op_E, number.value);
            case 'F':
                ++place_;
                return fixed(op_F, number.value);
            case 'G':
                ++place_;
                return exponential(op_G, number.value);
            case 'H':
                ++place_;
                if (!number.given) return report_(77);
                hollerith(number.value);
                return true;
            case 'I':
                ++place_;
                return integer(op_I, number.value, 54);
            case 'L':
                ++place_;
                return logical(number.value);
            case 'O':
                ++place_;
                return integer(op_O, number.value, 55);
            case 'P':
                ++place_;
                return scale(number);
            case 'S':
                ++place_;
                return sign(number.given);
            case 'T':
                ++place_;
                return tabulator(number.given);
            case 'X':
                ++place_;
                if (!number.given) return report_(77);
                emit(op_X, number.value);
                return true;
            case 'Z':
                ++place_;
                return integer(op_Z, number.value, 55);
            default:
                return true;
        }
    }

    bool character(std::int32_t repeat) {
        bool digit = false;
        std::int32_t w = 0;
        if (!is_a_digit(digit) || (digit && !get_pos_int(w, false))) return false;
        emit(op_A, repeat).w = w;
        return true;
    }
    bool letter_b(std::int32_t repeat) {
        skip_blanks();
        if (is_quote(peek())) {
            if (strict_ && !report_(126)) return false;
            quoted(op_business);
            return true;
        }
        if (passes('N')) {
            emit(op_BN);
            return true;
        }
        if (passes('Z')) {
            emit(op_BZ);
            return true;
        }
        return integer(op_B, repeat, 55);
    }
    bool integer(FormatOp op, std::int32_t repeat, std::int32_t too_wide) {
        std::int32_t w = 0;
        std::int32_t m = absent;
        if (!required_number(w, true)) return false;
        if (passes('.') && !required_number(m, true)) return false;
        if (w != 0 && m > w && !report_(too_wide)) return false;
        FormatStep& step = emit(op, repeat);
        step.w = w;
        step.d = m;
        return true;
    }
    bool fixed(FormatOp op, std::int32_t repeat) {
        std::int32_t w = 0;
        std::int32_t d = 0;
        if (!required_number(w, true)) return false;
        if (passes('.')) {
            if (!required_number(d, true)) return false;
        } else if (!report_(77)) {
            return false;
        }
        FormatStep& step = emit(op, repeat);
        step.w = w;
        step.d = d;
        return true;
    }
    bool exponential(FormatOp op, std::int32_t repeat) {
        std::int32_t w = 0;
        std::int32_t d = 0;
        std::int32_t e = absent;
        if (!required_number(w, true)) return false;
        if (passes('.')) {
            if (!required_number(d, true)) return false;
            if (passes('E') && !required_number(e, false)) return false;
        } else if (w != 0 && !report_(77)) {
            return false;
        }
        FormatStep& step = emit(op, repeat);
        step.w = w;
        step.d = d;
        step.e = e;
        return true;
    }
    bool logical(std::int32_t repeat) {
        std::int32_t w = 0;
        if (!required_number(w, false)) return false;
        emit(op_L, repeat).w = w;
        return true;
    }
    bool scale(const Prefix& number) {
        if (!number.given && !report_(77)) return false;
        emit(op_P, number.negative ? -number.value : number.value);
        skip_blanks();
        const char next = fold(peek());
        after_scale_ = next == 'D' || next == 'E' || next == 'F' || next == 'G' || is_digit(next);
        return true;
    }
    bool sign(bool numbered) {
        if (numbered && !report_(76)) return false;
        emit(passes('P') ? op_SP : passes('S') ? op_SS : op_S);
        return true;
    }
    bool tabulator(bool numbered) {
        if (numbered && !report_(76)) return false;
        const FormatOp op = passes('L') ? op_TL : passes('R') ? op_TR : op_T;
        std::int32_t n = 0;
        if (!required_number(n, false)) return false;
        emit(op, n);
        return true;
    }

    // ---- Between items ----

    bool separator() {
        if (after_scale_) {
            in_item_ = true;
            return true;
        }
        skip_blanks();
        if (const std::int32_t count = count_slashes()) {
            emit(op_slash, count);
            passes(',');
            in_item_ = true;
            return true;
        }
        const char next = fold(peek());
        switch (next) {
            case ',':
                ++place_;
                in_item_ = true;
                return true;
            case ':':
                ++place_;
                emit(op_colon);
                in_item_ = true;
                return true;
            case '$':
            case '\\':
                return dollar();
            case ')':
                ++place_;
                close();
                return true;
            case '\0':
                // With the message ignored the groups close here.
                if (!report_(415)) return false;
                close();
                return true;
            default:
                return no_separator(next);
        }
    }

    bool dollar() {
        if (strict_ && !report_(126)) return false;
        ++place_;
        emit(op_dollar);
        std::size_t rest = text_.find_first_not_of(')', place_);
        if (rest != std::string_view::npos) rest = text_.find_first_not_of(' ', rest);
        return rest == std::string_view::npos || report_(415);
    }

    bool no_separator(char next) {
        constexpr std::string_view starts = "'ABDEFGHILOPSTXZ";
        if (is_digit(next) || starts.find(next) != std::string_view::npos) {
            in_item_ = true;
            return !strict_ || report_(79);
        }
        if (!report_(74)) return false;
        ++place_;
        in_item_ = true;
        return true;
    }

    std::string_view text_;
    bool strict_;
    ReportMessage report_;
    Format& format_;
    std::size_t place_ = 0;
    bool in_item_ = false;
    bool after_scale_ = false;  // kP stands directly before its descriptor
    std::vector<std::uint32_t> open_;
    std::uint32_t reversion_ = 0;
};

}  // namespace

bool parse_format(std::string_view text, bool strict, ReportMessage report, Format& format) {
    return Parser(text, strict, report, format).run();
}

std::int32_t IO_parse_format_string(std::string_view text, bool strict, ReportMessage report,
                                    std::vector<std::uint16_t>& code) {
    Format format;
    if (!parse_format(text, strict, report, format)) return 0;
    code.clear();
    return encode_format(format, code) ? 2 : 0;
}

}  // namespace tarn::fio::native
