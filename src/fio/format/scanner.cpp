#include "fio/format/scanner.h"

#include <limits>

namespace tarn::fio {
namespace {

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

constexpr char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Descriptors of two letters, by their first. The letters in `second` pair with `edits`; `alone`
// is the descriptor of the first letter without any of them (`end`: there is none).
struct LetterFamily {
    char first;
    const char* second;
    Edit edits[7];
    Edit alone;
};

constexpr LetterFamily families[] = {
    {'A', "", {}, Edit::A},
    {'B', "NZ", {Edit::BN, Edit::BZ}, Edit::B},
    {'D', "CPT", {Edit::DC, Edit::DP, Edit::DT}, Edit::D},
    {'E', "NSX", {Edit::EN, Edit::ES, Edit::EX}, Edit::E},
    {'F', "", {}, Edit::F},
    {'G', "", {}, Edit::G},
    {'I', "", {}, Edit::I},
    {'L', "", {}, Edit::L},
    {'O', "", {}, Edit::O},
    {'P', "", {}, Edit::P},
    {'R', "UDZNCP", {Edit::RU, Edit::RD, Edit::RZ, Edit::RN, Edit::RC, Edit::RP}, Edit::end},
    {'S', "PS", {Edit::SP, Edit::SS}, Edit::S},
    {'T', "LR", {Edit::TL, Edit::TR}, Edit::T},
    {'Z', "", {}, Edit::Z},
};

}  // namespace

bool Scanner::take_raw(std::size_t count, std::string& into) {
    if (length_ - position_ < count) return false;
    into.append(text_ + position_, count);
    position_ += count;
    return true;
}

bool Scanner::take_quoted(char mark, std::string& into) {
    while (position_ < length_) {
        const char c = text_[position_++];
        if (c == mark) {
            if (position_ == length_ || text_[position_] != mark) return true;
            ++position_;
        }
        into.push_back(c);
    }
    return false;
}

// The next character that is no blank, without taking it; 0 at the end of the text.
char Scanner::peek() {
    while (position_ < length_ && (text_[position_] == ' ' || text_[position_] == '\t')) {
        ++position_;
    }
    return position_ < length_ ? text_[position_] : '\0';
}

void Scanner::scan_number(Token& token) {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    while (is_digit(peek())) {
        value = value * 10 + (text_[position_++] - '0');
        if (value > most) {
            token.overflow = true;
            value = most;
        }
    }
    token.value = static_cast<std::int32_t>(value);
    token.kind = value == 0 ? Token::zero : Token::positive;
}

bool Scanner::scan_descriptor(Token& token, char first) {
    for (const LetterFamily& family : families) {
        if (family.first != first) continue;
        const char second = upper(peek());
        for (int i = 0; family.second[i] != '\0'; ++i) {
            if (second == family.second[i]) {
                ++position_;
                token.edit = family.edits[i];
                return true;
            }
        }
        token.edit = family.alone;
        return family.alone != Edit::end;
    }
    return false;
}

Token Scanner::scan() {
    Token token;
    const char c = peek();
    token.at = position_;
    if (position_ == length_) {
        token.kind = Token::end;
        return token;
    }
    if (is_digit(c)) {
        scan_number(token);
        return token;
    }
    ++position_;
    token.kind = Token::descriptor;
    switch (c) {
        case '+':
        case '-':
            if (!is_digit(peek())) {
                token.kind = Token::unknown;
                return token;
            }
            scan_number(token);
            token.kind = Token::signed_number;
            if (c == '-') token.value = -token.value;
            return token;
        case '\'':
        case '"':
            token.kind = Token::quote;
            token.quote_mark = c;
            return token;
        case ',':
            token.kind = Token::comma;
            return token;
        case '.':
            token.kind = Token::period;
            return token;
        case '*':
            token.kind = Token::star;
            return token;
        case '(':
            token.kind = Token::open;
            return token;
        case ')':
            token.kind = Token::close;
            return token;
        case '/':
            token.edit = Edit::slash;
            return token;
        case ':':
            token.edit = Edit::colon;
            return token;
        case '$':
            token.edit = Edit::dollar;
            return token;
        case 'X':
        case 'x':
            token.edit = Edit::TR;
            token.is_x = true;
            return token;
        case 'H':
        case 'h':
            token.kind = Token::hollerith;
            return token;
        default:
            if (!scan_descriptor(token, upper(c))) token.kind = Token::unknown;
            return token;
    }
}

}  // namespace tarn::fio
