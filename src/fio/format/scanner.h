// The tokens of a format in the gnu dialect. Blanks and tabs may stand anywhere between the
// characters of a token; letters count in either case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "fio/format/program.h"

namespace tarn::fio {

struct Token {
    enum Kind : std::uint8_t {
        descriptor,  // `edit` tells which; X comes as TR with `is_x`
        hollerith,
        quote,
        positive,
        zero,
        signed_number,
        comma,
        period,
        star,
        open,
        close,
        end,
        unknown,
    };
    Kind kind = unknown;
    Edit edit = Edit::end;
    bool is_x = false;
    bool overflow = false;  // the number doesn't fit
    std::int32_t value = 0;
    std::size_t at = 0;
    char quote_mark = 0;
};

class Scanner {
  public:
    Scanner(const char* text, std::size_t length) : text_(text), length_(length) {}

    Token next() {
        if (held_) {
            held_ = false;
            return last_;
        }
        last_ = scan();
        return last_;
    }
    // The token last taken comes again.
    void put_back() { held_ = true; }

    // Characters of a Hollerith constant; false when the text ends before.
    bool take_raw(std::size_t count, std::string& into);
    // The rest of a quoted constant; false when the closing quote is missing.
    bool take_quoted(char mark, std::string& into);

  private:
    char peek();
    void scan_number(Token& token);
    bool scan_descriptor(Token& token, char first);
    Token scan();

    const char* text_;
    std::size_t length_;
    std::size_t position_ = 0;
    Token last_;
    bool held_ = false;
};

}  // namespace tarn::fio
