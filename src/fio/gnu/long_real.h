// The long way for a REAL: character by character, digits of any number, blanks inside.
#pragma once

#include "fio/gnu/number_text.h"
#include "fio/modes.h"

namespace tarn::fio {

// Digits met one at a time: what is kept is enough to tell the value.
class DigitCollector {
  public:
    DigitCollector() { digits_[kept] = '0'; }
    void add(char digit) {
        if (digit != '0') any_ = true;
        if (!any_) return;  // leading zeros
        if (count_ < kept) {
            digits_[count_++] = digit;
            return;
        }
        ++dropped_;
        if (digit != '0') digits_[kept] = '1';
    }
    // The number, with its last digit standing at 10^exponent.
    DecimalNumber number(bool negative, std::int64_t exponent) const;

  private:
    // No halfway point between two values of any kind has more digits than this.
    static constexpr std::size_t kept = 11600;
    std::size_t count_ = 0;
    std::int64_t dropped_ = 0;
    bool any_ = false;
    char digits_[kept + 1];  // filled as digits come
};

class LongRealScanner {
  public:
    LongRealScanner(const char* at, const char* end, const EditModes& modes)
        : at_(at),
          end_(end),
          blank_is_zero_(modes.blank == Blank::zero),
          may_lack_digits_(modes.dec_extensions),
          mark_(modes.decimal == DecimalMark::comma ? ',' : '.') {}

    // False: no number and no word, `fault` says where.
    bool scan();

    const char* fault() const { return at_; }
    // A letter that begins INF or NAN stands where the number should; null: none does.
    const char* word() const { return word_; }
    bool negative() const { return negative_; }
    // Blanks, perhaps with a sign among them.
    bool is_blank() const { return blank_; }
    bool has_digit() const { return has_digit_; }
    bool has_mark() const { return has_mark_; }
    bool has_exponent() const { return has_exponent_; }
    // The exponent that was written; far beyond every range it is no longer exact.
    std::int64_t written() const { return written_; }
    // The digits, without the exponent that was written. They live as long as the scanner.
    DecimalNumber number() const { return digits_.number(negative_, -places_); }

  private:
    bool scan_digits();
    bool scan_exponent();
    void add_digit(char digit);

    const char* at_;
    const char* end_;
    bool blank_is_zero_;
    bool may_lack_digits_;  // of the exponent
    char mark_;
    bool negative_ = false;
    bool blank_ = false;
    bool has_digit_ = false;
    bool has_mark_ = false;
    bool has_exponent_ = false;
    std::int64_t places_ = 0;
    std::int64_t written_ = 0;
    const char* word_ = nullptr;
    DigitCollector digits_;
};

}  // namespace tarn::fio
