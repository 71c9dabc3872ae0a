#include "fio/gnu/edit_in.h"
#include "fio/gnu/edit_in_quick.h"
#include "fio/gnu/long_real.h"
#include "fio/gnu/real_words.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_character{52, iostat_read_value};
constexpr Fault exponent_out_of_range{452, iostat_read_value};

FieldResult fault_at(Fault fault, const char* field, const char* at) {
    return {fault, static_cast<std::size_t>(at - field)};
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
    const char* const after =
        scan_real_word(at, end, blank_is_zero ? NanText::words_and_blanks : NanText::words, word);
    const bool ended =
        after != nullptr && (after == end || after[-1] == ')' || (*after == ' ' && !blank_is_zero));
    if (!ended) return fault_at(bad_character, field, at);
    store_real_word(word, negative, item, kind);
    return {};
}

FieldResult get_real_slowly(const char* field, std::size_t width, std::int32_t d, void* item,
                            int kind, const EditModes& modes) {
    LongRealScanner scanner(field, field + width, modes);
    if (!scanner.scan()) return fault_at(bad_character, field, scanner.fault());
    if (scanner.word() != nullptr) {
        return get_word(field, scanner.word(), field + width, scanner.negative(), item, kind,
                        modes);
    }
    if (scanner.is_blank()) {
        to_binary({}, input_rounding(modes), kind, item);
        return {};
    }
    std::int64_t shift = 0;
    if (!exponent_of_field(scanner.written(), scanner.has_mark(), scanner.has_exponent(), d, modes,
                           shift)) {
        return {exponent_out_of_range, 0};
    }
    DecimalNumber number = scanner.number();
    number.exponent += shift;
    to_binary(number, input_rounding(modes), kind, item);
    return {};
}

}  // namespace

FieldResult get_real(const char* field, std::size_t width, std::int32_t d, void* item, int kind,
                     const EditModes& modes) {
    if (width != 0 && width <= NumberWindow::widest &&
        quick_get_real(field, static_cast<int>(width), field + width, d, item, kind, modes)) {
        return {};
    }
    return get_real_slowly(field, width, d, item, kind, modes);
}

}  // namespace tarn::fio
