// A native format as the engine runs it.
//
// Formats reach a program's statements in two forms: a stream of 16-bit words that the compiler
// lays beside the statement, and a text that exists only at run time. Both become a list of steps
// before they are run. A step has room for any width and any literal, where a word of the stream
// has 10 bits for the length of an instruction and 16 for an operand; and it has been checked, so
// that the engine follows a link without looking where it leads.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::fio::native {

// The kinds of steps, by their number in the code stream.
enum FormatOp : std::int32_t {
    op_stop = 0,  // the end of a table that has no end instruction; never in a stream
    op_A = 1,
    op_BN = 2,
    op_BZ = 3,
    op_D = 4,
    op_E = 5,
    op_F = 6,
    op_G = 7,
    op_hollerith = 8,  // nH and quoted text
    op_I = 9,
    op_slash = 10,
    op_colon = 11,
    op_L = 12,
    op_quoted = 13,  // as op_hollerith; only compilers make it
    op_B = 14,
    op_O = 15,
    op_P = 16,
    op_SS = 17,
    op_SP = 18,
    op_S = 19,
    op_T = 20,
    op_TL = 21,
    op_TR = 22,
    op_end = 23,
    op_X = 24,
    op_open = 25,
    op_close = 26,  // of an inner group; the outermost group closes with op_end
    op_business = 27,
    op_dollar = 28,
    op_Z = 29,
    op_words_capital = 30,  // a number in words; only compilers make these three
    op_words_small = 31,
    op_words_title = 32,
    op_EN = 33,
    op_ES = 34,
    op_count = 35,
};

// What `edit_code` holds for Z.
inline constexpr std::int32_t edit_Z = 26;

inline constexpr std::int32_t absent = -1;

struct FormatStep {
    FormatOp op = op_stop;
    // The repeat count of a data descriptor or a group (0: none was written); n of X, T, TL, TR;
    // k of P; the number of record ends of a slash.
    std::int32_t repeat = 0;
    std::int32_t w = 0;
    std::int32_t d = absent;  // d, or m of I, B, O, Z
    std::int32_t e = absent;
    std::int32_t level = 0;    // open, close: 1 for the outermost group
    std::uint32_t link = 0;    // close: its open; end: the open at which reversion begins again
    std::uint32_t place = 0;   // where it stands: a word of the stream
    std::uint32_t text = 0;    // hollerith, quoted, business: where it stands in `Format::text`
    std::uint32_t length = 0;  // and how long it is
};

struct Format {
    std::vector<FormatStep> steps;
    std::string text;

    void clear() {
        steps.clear();
        text.clear();
    }
    std::string_view text_of(const FormatStep& step) const {
        return std::string_view(text).substr(step.text, step.length);
    }
};

}  // namespace tarn::fio::native
