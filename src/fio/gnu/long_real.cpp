#include "fio/gnu/long_real.h"

namespace tarn::fio {

DecimalNumber DigitCollector::number(bool negative, std::int64_t exponent) const {
    DecimalNumber result;
    result.negative = negative;
    result.digits = digits_;
    result.count = count_;
    result.exponent = exponent + dropped_;
    if (dropped_ > 0) {
        // The digit behind the kept ones says whether anything but zeros was dropped.
        ++result.count;
        --result.exponent;
    }
    return result;
}

bool LongRealScanner::scan() {
    return scan_digits() && (!has_exponent_ || scan_exponent());
}

void LongRealScanner::add_digit(char digit) {
    digits_.add(digit);
    places_ += has_mark_ ? 1 : 0;
}

bool LongRealScanner::scan_digits() {
    at_ = skip_blanks(at_, end_);
    if (at_ < end_ && (*at_ == '-' || *at_ == '+')) {
        negative_ = *at_++ == '-';
        at_ = skip_blanks(at_, end_);
    }
    blank_ = at_ == end_;
    if (blank_) return true;
    const char first = lower_case(*at_);
    if (first == 'i' || first == 'n') {
        word_ = at_;
        return true;
    }
    for (; at_ < end_; ++at_) {
        const char c = *at_;
        if (is_decimal_digit(c)) {
            has_digit_ = true;
            add_digit(c);
        } else if (c == ' ') {
            if (blank_is_zero_) add_digit('0');
        } else if (c == '.' || c == mark_) {
            if (has_mark_) return false;
            has_mark_ = true;
        } else {
            has_exponent_ = is_exponent_letter(c) || c == '+' || c == '-';
            return has_exponent_;
        }
    }
    return true;
}

bool LongRealScanner::scan_exponent() {
    if (is_exponent_letter(*at_)) {
        // A letter asks for a sign or a digit.
        at_ = skip_blanks(at_ + 1, end_);
        if (at_ == end_) return may_lack_digits_;
    }
    bool negative = false;
    if (*at_ == '+' || *at_ == '-') {
        negative = *at_++ == '-';
        // Blanks behind a sign make an exponent of zero; the field's end doesn't.
        if (at_ == end_) return may_lack_digits_;
        at_ = skip_blanks(at_, end_);
    }
    for (; at_ < end_; ++at_) {
        const char c = *at_;
        if (c != ' ' && !is_decimal_digit(c)) return false;
        if (c == ' ' && !blank_is_zero_) continue;
        if (written_ < far_exponent) written_ = written_ * 10 + (c == ' ' ? 0 : c - '0');
    }
    if (negative) written_ = -written_;
    return true;
}

}  // namespace tarn::fio
