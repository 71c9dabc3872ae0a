#include "platform/controls/letters.h"

#include <algorithm>

#include "platform/base/text.h"

namespace tarn::platform {
namespace {

enum class Pairing : unsigned char {
    shifted,     // capitals stand `shift` before their small letters
    even_first,  // capital at an even place, small letter behind it
    odd_first,
};
struct CaseRange {
    char32_t first, last;  // of the capitals; of both kinds where they alternate
    Pairing pairing;
    unsigned char shift;
};
constexpr CaseRange case_ranges[] = {
    {0x41, 0x5A, Pairing::shifted, 32},       {0xC0, 0xD6, Pairing::shifted, 32},
    {0xD8, 0xDE, Pairing::shifted, 32},       {0x100, 0x12F, Pairing::even_first, 0},
    {0x132, 0x137, Pairing::even_first, 0},   {0x139, 0x148, Pairing::odd_first, 0},
    {0x14A, 0x177, Pairing::even_first, 0},   {0x179, 0x17E, Pairing::odd_first, 0},
    {0x1CD, 0x1DC, Pairing::odd_first, 0},    {0x1DE, 0x1EF, Pairing::even_first, 0},
    {0x1F8, 0x21F, Pairing::even_first, 0},   {0x222, 0x233, Pairing::even_first, 0},
    {0x388, 0x38A, Pairing::shifted, 37},     {0x391, 0x3A1, Pairing::shifted, 32},
    {0x3A3, 0x3AB, Pairing::shifted, 32},     {0x400, 0x40F, Pairing::shifted, 80},
    {0x410, 0x42F, Pairing::shifted, 32},     {0x460, 0x481, Pairing::even_first, 0},
    {0x48A, 0x4BF, Pairing::even_first, 0},   {0x4C1, 0x4CE, Pairing::odd_first, 0},
    {0x4D0, 0x52F, Pairing::even_first, 0},   {0x531, 0x556, Pairing::shifted, 48},
    {0x1E00, 0x1E95, Pairing::even_first, 0}, {0x1EA0, 0x1EFF, Pairing::even_first, 0},
};

bool is_mark(char32_t code) {
    return (code >= 0x300 && code <= 0x36F) || (code >= 0x1AB0 && code <= 0x1AFF) ||
           (code >= 0x20D0 && code <= 0x20FF) || (code >= 0xFE00 && code <= 0xFE0F) ||
           code == 0x200D;
}

bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

template <char32_t (*Case)(char32_t)>
std::string mapped(std::string_view utf8) {
    std::string result;
    result.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();)
        append_utf8(result, Case(next_code_point(utf8, at)));
    return result;
}

}  // namespace

char32_t upper_case(char32_t code) {
    if (code == 0xFF) return 0x178;
    if (code == 0x3C2) return 0x3A3;
    for (const CaseRange& range : case_ranges) {
        if (range.pairing == Pairing::shifted) {
            if (code >= range.first + range.shift && code <= range.last + range.shift) {
                return code - range.shift;
            }
        } else if (code >= range.first && code <= range.last) {
            const bool small = (code % 2 == 1) == (range.pairing == Pairing::even_first);
            return small ? code - 1 : code;
        }
    }
    return code;
}

char32_t lower_case(char32_t code) {
    if (code < 0x80) return code >= 'A' && code <= 'Z' ? code + 32 : code;
    if (code == 0x178) return 0xFF;
    for (const CaseRange& range : case_ranges) {
        if (code < range.first || code > range.last) continue;
        if (range.pairing == Pairing::shifted) return code + range.shift;
        const bool capital = (code % 2 == 0) == (range.pairing == Pairing::even_first);
        return capital ? code + 1 : code;
    }
    return code;
}

std::string in_upper_case(std::string_view utf8) {
    return mapped<upper_case>(utf8);
}

std::string in_lower_case(std::string_view utf8) {
    return mapped<lower_case>(utf8);
}

int compare_folded(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const char32_t x = lower_case(next_code_point(a, i));
        const char32_t y = lower_case(next_code_point(b, j));
        if (x != y) return x < y ? -1 : 1;
    }
    if (i < a.size()) return 1;
    return j < b.size() ? -1 : 0;
}

bool starts_folded(std::string_view text, std::string_view prefix) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (j < prefix.size()) {
        if (i >= text.size()) return false;
        if (lower_case(next_code_point(text, i)) != lower_case(next_code_point(prefix, j))) {
            return false;
        }
    }
    return true;
}

std::size_t character_end(std::string_view text, std::size_t at) {
    if (at >= text.size()) return text.size();
    if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') return at + 2;
    next_code_point(text, at);
    while (at < text.size() && static_cast<unsigned char>(text[at]) >= 0x80) {
        std::size_t behind = at;
        if (!is_mark(next_code_point(text, behind))) break;
        at = behind;
    }
    return at;
}

std::size_t character_begin(std::string_view text, std::size_t at) {
    at = std::min(at, text.size());
    if (at == 0) return 0;
    if (at >= 2 && text[at - 1] == '\n' && text[at - 2] == '\r') return at - 2;
    for (;;) {
        --at;
        for (int steps = 0; steps < 3 && at > 0 && continues(text[at]); ++steps) --at;
        std::size_t behind = at;
        if (at == 0 || !is_mark(next_code_point(text, behind))) return at;
    }
}

bool is_word_character(char32_t code) {
    if (code < 0x80) {
        return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
               (code >= 'a' && code <= 'z') || code == '_';
    }
    return code >= 0xC0 && code != 0xD7 && code != 0xF7 && (code < 0x2000 || code > 0x206F) &&
           (code < 0x3000 || code > 0x3020);
}

}  // namespace tarn::platform
