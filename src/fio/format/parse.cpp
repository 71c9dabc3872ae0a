// The format parser of the gnu dialect: one recursive routine a group.
//
// gfortran's run-time takes more than the standard's grammar: blanks anywhere outside literals,
// most commas left out, X and H without a count, REAL edits without a width. Programs that choose
// their formats at run time rely on that, so the same texts are taken and refused here. EX is taken
// too, for which gfortran 12 has no rule; and an unlimited group needs a data descriptor of its
// own, wherever it stands among others.
#include "fio/format/program.h"
#include "fio/format/scanner.h"

namespace tarn::fio {
namespace {

// The sentences of the catalogue that a format can meet.
enum Sentence : std::int32_t {
    digits_exceed_integer_width = 54,
    digits_exceed_bits_width = 55,
    no_repeatable_descriptor = 59,
    bad_scale_factor = 61,
    bad_repeat_count = 62,
    width_too_large = 68,
    nested_too_deep = 72,
    missing_open = 73,
    bad_descriptor = 74,
    zero_or_signed = 75,
    repeat_not_allowed = 76,
    digits_expected = 77,
    decimal_point_missing = 78,
    missing_separator = 79,
    unpaired_quotes = 176,
    zero_width_on_input = 409,
    missing_close = 415,
};

class Parser {
  public:
    Parser(const char* text, std::size_t length, FormatRules rules, FormatProgram& program)
        : scanner_(text, length), rules_(rules), program_(program) {}

    FormatError run() {
        const Token token = scanner_.next();
        if (token.kind != Token::open) {
            fault(missing_open, token);
        } else {
            bool data_edit = false;
            group(token, 1, 0, data_edit);
            program_.has_data_edit = data_edit;
        }
        return error_;
    }

  private:
    bool fault(Sentence sentence, const Token& at) {
        error_ = {sentence, at.at};
        return false;
    }

    // The end of the text where more was expected. A descriptor that lacks its width has taken the
    // closing parenthesis for it: that is the better thing to name.
    bool fault_at_end(const Token& at) {
        if (swallowed_close_.kind == Token::close) return fault(digits_expected, swallowed_close_);
        return fault(missing_close, at);
    }

    bool unexpected(const Token& token, Sentence sentence = bad_descriptor) {
        return token.kind == Token::end ? fault_at_end(token) : fault(sentence, token);
    }

    void unfit_for_input(const Token& at) {
        if (program_.unfit_for_input.number == 0) {
            program_.unfit_for_input = {zero_width_on_input, at.at};
        }
    }

    FormatNode& add(Edit edit, const Token& at, std::int32_t repeat = 1) {
        FormatNode& node = program_.nodes.emplace_back();
        node.edit = edit;
        node.repeat = repeat;
        node.source = static_cast<std::uint32_t>(at.at);
        return node;
    }

    // One group, its opening parenthesis taken.
    bool group(const Token& at, std::int32_t repeat, std::uint32_t level, bool& data_edit) {
        if (level > max_format_depth) return fault(nested_too_deep, at);
        if (level > program_.depth) program_.depth = level;
        const auto start = static_cast<std::uint32_t>(program_.nodes.size());
        add(Edit::open, at, repeat).level = level;
        for (bool first = true;; first = false) {
            const Token token = scanner_.next();
            if (token.kind == Token::close) {
                close_group(token, start, level);
                return true;
            }
            // One comma between two items, or before the closing parenthesis; or none.
            Token head = token;
            if (token.kind == Token::comma && !first) {
                head = scanner_.next();
                if (head.kind == Token::close) {
                    close_group(head, start, level);
                    return true;
                }
            }
            if (!item(head, level, data_edit)) return false;
        }
    }

    void close_group(const Token& at, std::uint32_t start, std::uint32_t level) {
        const auto index = static_cast<std::uint32_t>(program_.nodes.size());
        FormatNode& node = add(level == 0 ? Edit::end : Edit::close, at);
        node.level = level;
        node.link = level == 0 ? reversion_ : start;
        program_.nodes[start].link = index;
        if (level == 1) reversion_ = start;
    }

    bool item(const Token& token, std::uint32_t level, bool& data_edit) {
        switch (token.kind) {
            case Token::star:
                return unlimited_group(level, data_edit);
            case Token::open:
                return group(token, 1, level + 1, data_edit);
            case Token::positive:
                return counted_item(token, level, data_edit);
            case Token::zero:
            case Token::signed_number: {
                const Token p = scanner_.next();
                if (p.kind != Token::descriptor || p.edit != Edit::P) {
                    return p.kind == Token::end ? fault_at_end(p) : fault(zero_or_signed, token);
                }
                return scale_factor(token, level, data_edit);
            }
            case Token::quote:
                return quoted(token);
            case Token::hollerith:
                return hollerith(token, 1);
            case Token::descriptor:
                if (token.edit == Edit::P) return fault(bad_scale_factor, token);
                return descriptor(token, nullptr, data_edit);
            default:
                return unexpected(token);
        }
    }

    bool unlimited_group(std::uint32_t level, bool& data_edit) {
        const Token token = scanner_.next();
        if (token.kind != Token::open) return unexpected(token, missing_open);
        bool inner = false;
        if (!group(token, unlimited, level + 1, inner)) return false;
        if (!inner) return fault(no_repeatable_descriptor, token);
        data_edit = true;
        return true;
    }

    // What follows a positive number.
    bool counted_item(const Token& count, std::uint32_t level, bool& data_edit) {
        if (count.overflow) return fault(bad_repeat_count, count);
        const Token token = scanner_.next();
        switch (token.kind) {
            case Token::open:
                return group(token, count.value, level + 1, data_edit);
            case Token::hollerith:
                return hollerith(token, static_cast<std::size_t>(count.value));
            case Token::descriptor:
                if (token.edit == Edit::P) return scale_factor(count, level, data_edit);
                return descriptor(token, &count, data_edit);
            case Token::comma:
            case Token::close:
                return fault(no_repeatable_descriptor, token);
            case Token::positive:  // after blanks it would have been one number: can't be
            case Token::quote:
            case Token::star:
                return fault(repeat_not_allowed, count);
            default:
                return unexpected(token);
        }
    }

    // kP, and what may follow it without a comma: a REAL edit, a number, a slash.
    bool scale_factor(const Token& factor, std::uint32_t level, bool& data_edit) {
        if (factor.overflow) return fault(bad_scale_factor, factor);
        add(Edit::P, factor).w = factor.value;
        const Token token = scanner_.next();
        switch (token.kind) {
            case Token::comma:
            case Token::close:
                scanner_.put_back();
                return true;
            case Token::positive:
                return counted_item(token, level, data_edit);
            case Token::descriptor:
                switch (token.edit) {
                    case Edit::F:
                    case Edit::E:
                    case Edit::EN:
                    case Edit::ES:
                    case Edit::EX:
                    case Edit::D:
                    case Edit::G:
                    case Edit::slash:
                        return descriptor(token, nullptr, data_edit);
                    default:
                        break;
                }
                return fault(missing_separator, token);
            default:
                return unexpected(token, missing_separator);
        }
    }

    FormatNode& add_literal(const Token& at, std::size_t offset) {
        FormatNode& node = add(Edit::literal, at);
        node.text = static_cast<std::uint32_t>(offset);
        node.length = static_cast<std::uint32_t>(program_.literals.size() - offset);
        return node;
    }

    bool quoted(const Token& token) {
        const std::size_t offset = program_.literals.size();
        if (!scanner_.take_quoted(token.quote_mark, program_.literals)) {
            return fault(unpaired_quotes, token);
        }
        add_literal(token, offset);
        return true;
    }

    bool hollerith(const Token& token, std::size_t count) {
        const std::size_t offset = program_.literals.size();
        if (!scanner_.take_raw(count, program_.literals)) return fault(missing_close, token);
        add_literal(token, offset);
        return true;
    }

    // Any descriptor but P. `count`: the number before it, if there was one.
    bool descriptor(const Token& token, const Token* count, bool& data_edit) {
        const std::int32_t repeat = count != nullptr ? count->value : 1;
        if (is_data_edit(token.edit)) {
            data_edit = true;
            FormatNode& node = add(token.edit, token, repeat);
            switch (token.edit) {
                case Edit::A:
                    return optional_width(node, false);
                case Edit::L:
                    return optional_width(node, true);
                case Edit::I:
                case Edit::B:
                case Edit::O:
                case Edit::Z:
                    return integer_widths(node);
                case Edit::DT:
                    return derived_type(node);
                default:
                    return real_widths(node);
            }
        }
        if (token.edit == Edit::slash || token.is_x) {
            add(token.edit, token).w = repeat;
            return true;
        }
        if (count != nullptr) return fault(repeat_not_allowed, *count);
        FormatNode& node = add(token.edit, token);
        if (token.edit != Edit::T && token.edit != Edit::TL && token.edit != Edit::TR) return true;
        return number(node.w, false);
    }

    // A number that has to be there.
    bool number(std::int32_t& value, bool zero_allowed) {
        const Token token = scanner_.next();
        if (token.kind == Token::positive || (token.kind == Token::zero && zero_allowed)) {
            if (token.overflow) return fault(width_too_large, token);
            value = token.value;
            return true;
        }
        const bool zero_or_sign = token.kind == Token::zero || token.kind == Token::signed_number;
        return unexpected(token, zero_or_sign ? zero_or_signed : digits_expected);
    }

    bool optional_width(FormatNode& node, bool zero_allowed) {
        const Token token = scanner_.next();
        scanner_.put_back();
        if (token.kind != Token::positive && token.kind != Token::zero) return true;
        if (!number(node.w, zero_allowed)) return false;
        if (node.w == 0) node.w = absent;
        return true;
    }

    bool integer_widths(FormatNode& node) {
        if (rules_.natural_widths && !width_follows()) return true;
        if (!number(node.w, true)) return false;
        const Token token = scanner_.next();
        if (node.w == 0) unfit_for_input(token);
        if (token.kind != Token::period) {
            scanner_.put_back();
            return true;
        }
        if (!number(node.d, true)) return false;
        if (node.w != 0 && node.d > node.w) {
            return fault(
                node.edit == Edit::I ? digits_exceed_integer_width : digits_exceed_bits_width,
                token);
        }
        return true;
    }

    bool width_follows() {
        const Token token = scanner_.next();
        scanner_.put_back();
        return token.kind == Token::positive || token.kind == Token::zero;
    }

    bool real_widths(FormatNode& node) {
        if (rules_.natural_widths && !width_follows()) return true;
        const Token width = scanner_.next();
        if (width.kind != Token::positive && width.kind != Token::zero) {
            // No width: the natural one is taken. What stands in its place is passed over,
            // whatever it is: `(G,I5)` and even `(E/I5)` are formats that work.
            if (width.kind == Token::end || node.edit == Edit::EX) {
                return fault(digits_expected, width);
            }
            if (width.kind == Token::close) swallowed_close_ = width;
            return width.kind != Token::quote || skip_quoted(width);
        }
        if (width.overflow) return fault(width_too_large, width);
        node.w = width.value;
        if (node.w == 0) unfit_for_input(width);
        if (node.w == 0 && node.edit != Edit::F &&
            (node.edit == Edit::G ? rules_.before_f2008 : rules_.before_f2018)) {
            return fault(zero_width_on_input, width);
        }
        const Token period = scanner_.next();
        if (period.kind != Token::period) {
            if (node.w != 0 && !rules_.legacy) {
                return unexpected(period, decimal_point_missing);
            }
            if (node.w != 0) node.d = 0;
            scanner_.put_back();
            return true;
        }
        if (!number(node.d, true)) return false;
        if (node.edit == Edit::D) return true;
        if (node.edit == Edit::F && node.w != 0) return true;
        const Token exponent = scanner_.next();
        if (exponent.kind != Token::descriptor || exponent.edit != Edit::E) {
            scanner_.put_back();
            return true;
        }
        return number(node.e, true);
    }

    bool skip_quoted(const Token& token) {
        const std::size_t length = program_.literals.size();
        if (!scanner_.take_quoted(token.quote_mark, program_.literals)) {
            return fault(unpaired_quotes, token);
        }
        program_.literals.resize(length);
        return true;
    }

    // DT, DT'name', DT(1,2), DT'name'(1,2).
    bool derived_type(FormatNode& node) {
        Token token = scanner_.next();
        node.w = 0;
        node.d = static_cast<std::int32_t>(program_.values.size());
        if (token.kind == Token::quote) {
            node.text = static_cast<std::uint32_t>(program_.literals.size());
            if (!scanner_.take_quoted(token.quote_mark, program_.literals)) {
                return fault(unpaired_quotes, token);
            }
            node.length = static_cast<std::uint32_t>(program_.literals.size() - node.text);
            token = scanner_.next();
        }
        if (token.kind != Token::open) {
            scanner_.put_back();
            return true;
        }
        do {
            std::int32_t value = 0;
            if (!number(value, false)) return false;
            program_.values.push_back(value);
            ++node.w;
            token = scanner_.next();
        } while (token.kind == Token::comma);
        return token.kind == Token::close || unexpected(token);
    }

    Scanner scanner_;
    FormatRules rules_;
    FormatProgram& program_;
    FormatError error_;
    Token swallowed_close_;
    std::uint32_t reversion_ = 0;
};

}  // namespace

void fill_natural_width(FieldEdit& edit, bool integer, int kind) {
    if (integer || is_bits_edit(edit.edit)) {
        edit.w = kind <= 2 ? 7 : kind == 4 ? 12 : kind == 8 ? 23 : 44;
        return;
    }
    edit.w = kind == 4 ? 15 : kind == 8 ? 25 : 42;
    edit.d = kind == 4 ? 7 : kind == 8 ? 16 : 33;
    edit.e = 2;
}

FormatError parse_gnu_format(const char* text, std::size_t length, FormatRules rules,
                             FormatProgram& program) {
    program.nodes.clear();
    program.literals.clear();
    program.values.clear();
    program.depth = 0;
    program.has_data_edit = false;
    program.unfit_for_input = {};
    return Parser(text, length, rules, program).run();
}

}  // namespace tarn::fio
