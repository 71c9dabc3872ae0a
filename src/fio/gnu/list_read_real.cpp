// REAL and COMPLEX values of list-directed input.
#include <algorithm>
#include <cstring>

#include "fio/gnu/items.h"
#include "fio/gnu/list_scan.h"
#include "fio/gnu/long_real.h"
#include "fio/gnu/number_window.h"
#include "fio/gnu/real_words.h"

namespace tarn::fio {
namespace {

constexpr Fault open_missing{93, iostat_read_value};
constexpr Fault close_missing{91, iostat_read_value};

char decimal_mark(const Statement& s) {
    return s.modes.decimal == DecimalMark::comma ? ',' : '.';
}

// A word at the cursor, INF or NAN with or without a sign; false when none stands there.
bool take_word(Statement& s, char* item, int kind, bool in_complex) {
    const char* at = s.cursor;
    const bool negative = at < s.limit && *at == '-';
    if (at < s.limit && (*at == '-' || *at == '+')) ++at;
    RealWord word = RealWord::nan;
    at = scan_real_word(at, s.limit, NanText::no_separators, word);
    if (at == nullptr) return false;
    if (at < s.limit && !is_list_separator(*at) && !(in_complex && *at == ')')) return false;
    store_real_word(word, negative, item, kind);
    s.cursor += at - s.cursor;
    return true;
}

// A number of many digits, or a fault: the token from the cursor to `end`.
bool take_long(Statement& s, const char* end, char* item, int kind) {
    const std::string_view token(s.cursor, static_cast<std::size_t>(end - s.cursor));
    EditModes modes = s.modes;
    modes.blank = Blank::null;
    LongRealScanner scanner(s.cursor, end, modes);
    const bool scanned = scanner.scan() && scanner.word() == nullptr;
    if (scanned && scanner.has_digit()) {
        DecimalNumber number = scanner.number();
        number.exponent += scanner.written();
        to_binary(number, input_rounding(s.modes), kind, item);
        s.cursor += token.size();
        return true;
    }
    const char* const fault = scanner.fault();
    if (!scanned && scanner.has_exponent() && fault != end && *fault == ',' &&
        is_decimal_digit(fault[-1])) {
        // Behind an exponent a comma separates, even where it is the decimal mark.
        return take_long(s, fault, item, kind);
    }
    const bool only_sign = scanned && scanner.is_blank();
    const bool cut_exponent = !scanned && scanner.has_digit() && fault == end;
    if (only_sign || cut_exponent) {
        s.cursor += token.size();
        fail_incomplete(s, bad_list_value, token);
    } else {
        fail_value(s, bad_list_value, token);
    }
    return false;
}

// A number of the common shape.
bool take_plain(Statement& s, char* item, int kind, char mark, bool in_complex) {
    const std::ptrdiff_t left = s.limit - s.cursor;
    if (left == 0) return false;
    const bool cut = left > NumberWindow::widest;
    const NumberWindow window(s.cursor, cut ? NumberWindow::widest : static_cast<int>(left),
                              s.room_end);
    PlainReal real;
    if (!scan_plain_real(window, 0, mark, real)) return false;
    if (window.is_inside(real.end)) {
        // Behind an exponent a comma separates, even where it is the decimal mark.
        const char next = window.at(real.end);
        const bool ended = (in_complex && next == ')') ||
                           (is_list_separator(next) && (next != mark || real.has_exponent));
        if (!ended) return false;
    } else if (cut) {
        return false;
    }
    store_decimal(real.significand, std::int64_t{real.exponent} - real.decimals, real.negative,
                  input_rounding(s.modes), kind, item);
    s.cursor += real.end;
    return true;
}

// The number at the cursor, which a separator ends, and in a COMPLEX the closing parenthesis too.
bool take_real(Statement& s, char* item, int kind, bool in_complex) {
    const char mark = decimal_mark(s);
    if (take_plain(s, item, kind, mark, in_complex)) return true;
    if (take_word(s, item, kind, in_complex)) return true;
    const char* end = token_end(s.cursor, s.limit, mark);
    if (in_complex) end = std::find(static_cast<const char*>(s.cursor), end, ')');
    return take_long(s, end, item, kind);
}

// The character between the parts; it may stand in a later record.
bool take_mark(Statement& s, char mark, Fault fault) {
    if (!skip_to_text(s)) return false;
    if (*s.cursor != mark) {
        const char* const end = token_end(s.cursor, s.limit, '\0');
        const auto length = static_cast<std::size_t>(end - s.cursor);
        fail_value(s, fault, {s.cursor, length != 0 ? length : 1});
        return false;
    }
    ++s.cursor;
    return true;
}

bool take_part(Statement& s, char* part, int kind) {
    return skip_to_text(s) && take_real(s, part, kind, true);
}

}  // namespace

void read_list_real(Statement& s, char* item, int kind) {
    if (!take_real(s, item, kind, false)) return;
    pass_separator(s);
    if (s.list.repeat > 1) save_value(s, ItemType::real, kind, item, real_size(kind));
}

void read_list_complex(Statement& s, char* item, int kind) {
    const char separator = s.modes.decimal == DecimalMark::comma ? ';' : ',';
    const std::size_t part = real_size(kind);
    alignas(16) char value[32] = {};
    const bool read = take_mark(s, '(', open_missing) && take_part(s, value, kind) &&
                      take_mark(s, separator, bad_list_value) && take_part(s, value + part, kind) &&
                      take_mark(s, ')', close_missing);
    if (!read) return;
    if (!at_list_separator(s)) {
        const char* const end = token_end(s.cursor, s.limit, '\0');
        return fail_value(s, bad_list_value, {s.cursor, static_cast<std::size_t>(end - s.cursor)});
    }
    s.list.at_line_end = false;
    pass_separator(s);
    std::memcpy(item, value, 2 * part);
    if (s.list.repeat > 1) save_value(s, ItemType::complex, kind, value, 2 * part);
}

}  // namespace tarn::fio
