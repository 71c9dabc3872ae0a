#include "fio/native/english_words.h"

#include <cstring>
#include <string_view>

namespace tarn::fio::native {
namespace {

constexpr std::string_view names[] = {
    "ZERO",     "ONE",     "TWO",     "THREE",     "FOUR",     "FIVE",     "SIX",
    "SEVEN",    "EIGHT",   "NINE",    "TEN",       "ELEVEN",   "TWELVE",   "THIRTEEN",
    "FOURTEEN", "FIFTEEN", "SIXTEEN", "SEVENTEEN", "EIGHTEEN", "NINETEEN", "TWENTY",
    "THIRTY",   "FORTY",   "FIFTY",   "SIXTY",     "SEVENTY",  "EIGHTY",   "NINETY",
};
constexpr std::uint64_t first_tens = 18;  // names[18 + d] is ten times d

class Words {
  public:
    explicit Words(char (&room)[words_room]) : room_(room) {}
    std::size_t length() const { return length_; }

    void add(std::string_view word) {
        const std::size_t gap = length_ > 0 ? 1 : 0;
        if (length_ + gap + word.size() > words_room) {
            length_ = words_room + 1;
            return;
        }
        if (gap > 0) room_[length_++] = ' ';
        std::memcpy(room_ + length_, word.data(), word.size());
        length_ += word.size();
    }

    // Below 1000. `said`: something stands before it in its group, which "AND" joins it to.
    void add_hundreds(std::uint64_t n, bool& said) {
        const std::uint64_t hundreds = n / 100;
        std::uint64_t rest = n % 100;
        if (hundreds != 0) {
            add(names[hundreds]);
            add("HUNDRED");
            said = true;
        }
        if (said && rest != 0) add("AND");
        if (rest / 10 > 1) {
            add(names[first_tens + rest / 10]);
            rest %= 10;
        }
        if (rest != 0) add(names[rest]);
    }
    // Below a million.
    void add_thousands(std::uint64_t n) {
        bool said = false;
        if (n / 1000 != 0) {
            add_hundreds(n / 1000, said);
            add("THOUSAND");
            said = true;
        }
        add_hundreds(n % 1000, said);
    }
    // The millions are counted like any other number: a million of them is a "MILLION MILLION".
    void add_number(std::uint64_t n) {
        const std::uint64_t millions = n / 1000000;
        const std::uint64_t rest = n % 1000000;
        if (millions != 0) {
            add_number(millions);
            add("MILLION");
            if (rest > 0 && rest < 100) add("AND");
        }
        add_thousands(rest);
    }

  private:
    char* room_;
    std::size_t length_ = 0;
};

}  // namespace

std::size_t english_words(std::int64_t value, char (&words)[words_room]) {
    Words out(words);
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) {
        out.add("MINUS");
        magnitude = 0 - magnitude;
    }
    if (magnitude == 0) {
        out.add(names[0]);
    } else {
        out.add_number(magnitude);
    }
    return out.length();
}

}  // namespace tarn::fio::native
