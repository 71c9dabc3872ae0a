#include "intrinsics/characters/text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include "intrinsics/characters/strings.h"

namespace tarn::intrinsics {
namespace {

const std::uint8_t* bytes(ConstText text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

void put(Text result, std::string_view text) {
    const std::size_t count = std::min(result.size(), text.size());
    std::copy_n(text.begin(), count, result.begin());
    std::ranges::fill(result.subspan(count), ' ');
}

std::size_t leading_blanks(ConstText text) {
    const std::size_t at = other_than(bytes(text), text.size(), blank<std::uint8_t>, From::start);
    return at == none ? text.size() : at;
}

// ---- Numbers in words ----

constexpr std::string_view small_numbers[] = {
    "ZERO",     "ONE",     "TWO",     "THREE",     "FOUR",     "FIVE",    "SIX",
    "SEVEN",    "EIGHT",   "NINE",    "TEN",       "ELEVEN",   "TWELVE",  "THIRTEEN",
    "FOURTEEN", "FIFTEEN", "SIXTEEN", "SEVENTEEN", "EIGHTEEN", "NINETEEN"};
constexpr std::string_view tens[] = {"TWENTY", "THIRTY",  "FORTY",  "FIFTY",
                                     "SIXTY",  "SEVENTY", "EIGHTY", "NINETY"};

class Words {
  public:
    void add(std::string_view word) {
        if (!text_.empty()) text_ += ' ';
        text_ += word;
    }
    // `joined`: something of the same group stands before, so that an "AND" comes between.
    void below_thousand(unsigned n, bool joined) {
        const unsigned hundreds = n / 100;
        unsigned rest = n % 100;
        if (hundreds != 0) {
            add(small_numbers[hundreds]);
            add("HUNDRED");
            joined = true;
        }
        if (joined && rest != 0) add("AND");
        if (rest / 10 > 1) {
            add(tens[rest / 10 - 2]);
            rest %= 10;
        }
        if (rest != 0) add(small_numbers[rest]);
    }
    void below_million(unsigned n) {
        const unsigned thousands = n / 1000;
        if (thousands != 0) {
            below_thousand(thousands, false);
            add("THOUSAND");
        }
        below_thousand(n % 1000, thousands != 0);
    }
    std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

}  // namespace

std::size_t trimmed_length(ConstText text) {
    return trimmed_length(bytes(text), text.size());
}

void to_upper_case(Text text) {
    for (char& c : text) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c);
}

void to_lower_case(Text text) {
    for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

void move_left(Text text) {
    const std::size_t blanks = leading_blanks(text);
    if (blanks == 0) return;
    std::memmove(text.data(), text.data() + blanks, text.size() - blanks);
    std::ranges::fill(text.last(blanks), ' ');
}

void move_right(Text text) {
    const std::size_t kept = trimmed_length(text);
    const std::size_t blanks = text.size() - kept;
    if (blanks == 0) return;
    std::memmove(text.data() + blanks, text.data(), kept);
    std::ranges::fill(text.first(blanks), ' ');
}

void append(Text text, ConstText addition) {
    const std::size_t kept = trimmed_length(text);
    if (kept == text.size()) return;
    put(text.subspan(kept), {addition.data(), addition.size()});
}

void centre(Text result, ConstText source, int width) {
    std::ranges::fill(result, ' ');
    const std::size_t length = trimmed_length(source);
    const auto spare = static_cast<std::intptr_t>(width) - static_cast<std::intptr_t>(length);
    // A text wider than the field would begin before the result.
    const auto column = static_cast<std::size_t>(std::max<std::intptr_t>(spare / 2, 1));
    if (column > result.size()) return;
    put(result.subspan(column - 1), {source.data(), length});
}

std::int32_t first_nonblank(ConstText text) {
    const std::size_t blanks = leading_blanks(text);
    return blanks == text.size() ? 0 : static_cast<std::int32_t>(blanks + 1);
}

void adjust_left(Text result, ConstText text) {
    if (text.empty()) return;
    const ConstText kept = text.subspan(leading_blanks(text));
    put(result, {kept.data(), kept.size()});
}

void adjust_right(Text result, ConstText text) {
    if (text.empty()) return;
    std::ranges::fill(result, ' ');
    const std::size_t kept = trimmed_length(text);
    const std::size_t count = std::min(kept, result.size());
    std::ranges::copy(text.subspan(kept - count, count), result.last(count).begin());
}

void write_digits(Text result, std::int32_t value) {
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const std::string_view text(digits, static_cast<std::size_t>(end - digits));
    put(result, text.size() <= result.size() ? text : std::string_view("*****************"));
}

std::string words_of(std::int32_t value) {
    if (value == 0) return "ZERO";
    Words words;
    const auto word = static_cast<std::uint32_t>(value);
    const std::uint32_t magnitude = value < 0 ? 0 - word : word;
    if (value < 0) words.add("MINUS");
    const unsigned millions = magnitude / 1000000;
    const unsigned rest = magnitude % 1000000;
    if (millions != 0) {
        words.below_million(millions);
        words.add("MILLION");
        if (rest >= 1 && rest <= 99) words.add("AND");
    }
    words.below_million(rest);
    return words.take();
}

void write_words(Text result, std::int32_t value) {
    const std::string words = words_of(value);
    put(result, words.size() <= result.size() ? words : std::string(52, '*'));
}

}  // namespace tarn::intrinsics
