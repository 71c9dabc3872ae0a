// REAL and COMPLEX values of list-directed input.
#include <cstring>

#include "fio/gnu/items.h"
#include "fio/gnu/list_scan.h"
#include "fio/gnu/long_real.h"
#include "fio/gnu/number_text.h"
#include "fio/gnu/real_words.h"

namespace tarn::fio {
namespace {

constexpr Fault open_missing{93, iostat_read_value};
constexpr Fault close_missing{91, iostat_read_value};

char decimal_mark(const Statement& s) {
    return s.modes.decimal == DecimalMark::comma ? ',' : '.';
}

void store(const Statement& s, DecimalNumber number, std::int64_t written, char* item, int kind) {
    number.exponent += written;
    to_binary(number, s.modes.round, kind, item);
}

// A word, a number of many digits, or something else: the token at the cursor.
bool take_unusual(Statement& s, const char* end, char* item, int kind) {
    const std::string_view token(s.cursor, static_cast<std::size_t>(end - s.cursor));
    EditModes modes = s.modes;
    modes.blank = Blank::null;
    LongRealScanner scanner(s.cursor, end, modes);
    const bool scanned = scanner.scan();
    if (scanned && scanner.word() != nullptr) {
        RealWord word = RealWord::nan;
        if (scan_real_word(scanner.word(), end, false, word) == end) {
            store_real_word(word, scanner.negative(), item, kind);
            s.cursor += token.size();
            return true;
        }
    } else if (scanned && scanner.has_digit()) {
        store(s, scanner.number(), scanner.written(), item, kind);
        s.cursor += token.size();
        return true;
    } else if (end == s.limit && (scanned || scanner.fault() == end)) {
        // Nothing in it is wrong, but more has to come.
        s.cursor += token.size();
        fail_incomplete(s, bad_list_value, token);
        return false;
    }
    fail_value(s, bad_list_value, token);
    return false;
}

// The number at the cursor, which a separator ends, and in a COMPLEX the closing parenthesis too.
bool take_real(Statement& s, char* item, int kind, bool in_complex) {
    const char mark = decimal_mark(s);
    PlainReal real;
    scan_plain_real(s.cursor, s.limit, mark, real);
    if (real.end != nullptr) {
        const bool ended = real.end == s.limit || (in_complex && *real.end == ')') ||
                           (is_list_separator(*real.end) && *real.end != mark);
        if (ended) {
            store(s, real.number, real.written, item, kind);
            s.cursor += real.end - s.cursor;
            return true;
        }
    }
    const char* end = token_end(s.cursor, s.limit, mark);
    if (in_complex) {
        // NAN(...) has a parenthesis of its own.
        const char* at = s.cursor;
        int open = 0;
        while (at < end && (*at != ')' || open > 0)) {
            if (*at == '(') ++open;
            if (*at == ')') --open;
            ++at;
        }
        end = at;
    }
    return take_unusual(s, end, item, kind);
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
