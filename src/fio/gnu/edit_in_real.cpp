#include "fio/gnu/edit_in.h"
#include "fio/gnu/number_text.h"
#include "fio/gnu/real_words.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_character{52, iostat_read_value};
constexpr Fault exponent_out_of_range{452, iostat_read_value};

// A value of any kind lies well inside; what lies beyond was meant as something else.
constexpr std::int64_t greatest_exponent = 9999;

FieldResult fault_at(Fault fault, const char* field, const char* at) {
    return {fault, static_cast<std::size_t>(at - field)};
}

// The long way: character by character, with blanks inside the number.
class FieldScanner {
  public:
    FieldScanner(const char* field, std::size_t width, const EditModes& modes)
        : at_(field), end_(field + width), modes_(modes) {}

    // Null: a number was found. Otherwise the character at fault.
    const char* scan() {
        const char* fault = scan_digits();
        if (fault == nullptr && in_exponent_) fault = scan_exponent();
        return fault;
    }

    DecimalNumber number(std::int64_t exponent) const {
        return digits_.number(negative_, exponent);
    }

    bool negative_ = false;
    bool nothing_ = false;  // no digit, no mark: blanks, or a sign among them
    bool has_mark_ = false;
    bool in_exponent_ = false;
    std::int64_t places_ = 0;
    std::int64_t written_ = 0;
    const char* word_ = nullptr;  // a letter stands where the number should begin

  private:
    const char* scan_digits() {
        at_ = skip_blanks(at_, end_);
        if (at_ < end_ && (*at_ == '-' || *at_ == '+')) {
            negative_ = *at_++ == '-';
            at_ = skip_blanks(at_, end_);
        }
        nothing_ = at_ == end_;
        if (nothing_) return nullptr;
        const char first = lower_case(*at_);
        if (first == 'i' || first == 'n') {
            word_ = at_;
            return nullptr;
        }
        const char mark = modes_.decimal == DecimalMark::comma ? ',' : '.';
        for (; at_ < end_; ++at_) {
            const char c = *at_;
            if (is_decimal_digit(c)) {
                digits_.add(c);
                places_ += has_mark_ ? 1 : 0;
            } else if (c == ' ') {
                if (modes_.blank != Blank::zero) continue;
                digits_.add('0');
                places_ += has_mark_ ? 1 : 0;
            } else if (c == '.' || c == mark) {
                if (has_mark_) return at_;
                has_mark_ = true;
            } else if (is_exponent_letter(c) || c == '+' || c == '-') {
                in_exponent_ = true;
                return nullptr;
            } else {
                return at_;
            }
        }
        return nullptr;
    }

    const char* scan_exponent() {
        const char* const start = at_;
        if (is_exponent_letter(*at_)) {
            at_ = skip_blanks(at_ + 1, end_);
            // A letter asks for at least a sign.
            if (at_ == end_) return start;
        }
        bool negative = false;
        if (*at_ == '+' || *at_ == '-') {
            negative = *at_++ == '-';
            // Blanks behind a sign make an exponent of zero; the field's end doesn't.
            if (at_ == end_) return start;
            at_ = skip_blanks(at_, end_);
        }
        for (; at_ < end_; ++at_) {
            char c = *at_;
            if (c == ' ') {
                if (modes_.blank != Blank::zero) continue;
                c = '0';
            }
            if (!is_decimal_digit(c)) return at_;
            if (written_ < 1000000000) written_ = written_ * 10 + (c - '0');
        }
        if (negative) written_ = -written_;
        return nullptr;
    }

    const char* at_;
    const char* end_;
    const EditModes& modes_;
    DigitCollector digits_;
};

FieldResult store(DecimalNumber number, std::int64_t written, bool has_mark, bool has_exponent,
                  std::int32_t d, void* item, int kind, const EditModes& modes) {
    std::int64_t shift = has_exponent ? written : -std::int64_t{modes.scale};
    if (!has_mark) shift -= d;
    if (shift > greatest_exponent || shift < -greatest_exponent) {
        return {exponent_out_of_range, 0};
    }
    number.exponent += shift;
    to_binary(number, modes.round, kind, item);
    return {};
}

// What may follow a word that begins at `at`: letters, digits, blanks and one pair of parentheses.
// Null: nothing else stands there. Otherwise the character at fault.
const char* foreign_to_word(const char* at, const char* end) {
    int parentheses = 0;
    for (; at < end; ++at) {
        const bool opens = *at == '(' && parentheses == 0;
        const bool closes = *at == ')' && parentheses == 1;
        if (opens || closes) {
            ++parentheses;
        } else if (*at != ' ' && !is_word_character(*at)) {
            return at;
        }
    }
    return parentheses == 1 ? end - 1 : nullptr;
}

// INF, INFINITY, NAN or NAN(...). A blank ends the word; under BZ it is a zero in it.
FieldResult get_word(const char* field, const char* at, const char* end, bool negative, void* item,
                     int kind, const EditModes& modes) {
    const char* const fault = foreign_to_word(at, end);
    if (fault != nullptr) return fault_at(bad_character, field, fault);
    RealWord word = RealWord::nan;
    const bool blank_is_zero = modes.blank == Blank::zero;
    const char* const after = scan_real_word(at, end, blank_is_zero, word);
    const bool ended =
        after != nullptr && (after == end || after[-1] == ')' || (*after == ' ' && !blank_is_zero));
    if (!ended) return fault_at(bad_character, field, at);
    store_real_word(word, negative, item, kind);
    return {};
}

FieldResult get_real_slowly(const char* field, std::size_t width, std::int32_t d, void* item,
                            int kind, const EditModes& modes) {
    FieldScanner scanner(field, width, modes);
    const char* const fault = scanner.scan();
    if (fault != nullptr) return fault_at(bad_character, field, fault);
    if (scanner.word_ != nullptr) {
        return get_word(field, scanner.word_, field + width, scanner.negative_, item, kind, modes);
    }
    if (scanner.nothing_) {
        to_binary({}, modes.round, kind, item);
        return {};
    }
    return store(scanner.number(-scanner.places_), scanner.written_, scanner.has_mark_,
                 scanner.in_exponent_, d, item, kind, modes);
}

}  // namespace

FieldResult get_real(const char* field, std::size_t width, std::int32_t d, void* item, int kind,
                     const EditModes& modes) {
    const char* const end = field + width;
    PlainReal real;
    scan_plain_real(skip_blanks(field, end), end, modes.decimal == DecimalMark::comma ? ',' : '.',
                    real);
    if (real.end != nullptr &&
        (real.end == end || (modes.blank == Blank::null && skip_blanks(real.end, end) == end))) {
        return store(real.number, real.written, real.has_mark, real.has_exponent, d, item, kind,
                     modes);
    }
    return get_real_slowly(field, width, d, item, kind, modes);
}

}  // namespace tarn::fio
