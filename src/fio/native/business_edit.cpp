// Business editing: a number in the picture that a B'...' descriptor holds.
//
// The picture stands in the record already, at the cursor. A first pass reads it and counts the
// places for digits; a second one puts the digits over it.
#include <cmath>
#include <string>

#include "fio/native/field.h"
#include "fio/number/decimal.h"

namespace tarn::fio::native {
namespace {

constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

// How far the reading of the picture has come: what may stand next depends on it.
enum Stage : std::int32_t {
    at_start = 0,
    one_sign = 1,
    floating_sign = 2,
    one_dollar = 3,
    floating_dollar = 4,
    asterisks = 5,
    digits = 6,
    behind_point = 7,
    behind_mark = 8,
};

struct Picture {
    std::string text;  // in capitals, without the trailing mark
    char leading_sign = '\0';
    char trailing_mark = '\0';  // '+', '-' or 'C' for CR
    std::int64_t positions = 0;
    std::int64_t fraction = 0;
    std::size_t last_sign = nowhere;
    std::size_t last_dollar = nowhere;
};

class PictureReader {
  public:
    explicit PictureReader(Picture& picture) : picture_(picture) {}

    // The number of a message, or 0.
    std::int32_t read() {
        const std::string text = picture_.text;
        for (place_ = 0; place_ < text.size(); ++place_) {
            if (const std::int32_t message = take(text)) return message;
            if (stage_ == behind_mark) break;
        }
        if (picture_.trailing_mark != '\0') picture_.text.resize(mark_);
        return 0;
    }

  private:
    std::int32_t take(const std::string& text) {
        const char c = text[place_];
        switch (c) {
            case '+':
            case '-':
                return sign(c, text);
            case '$':
                return dollar();
            case '*':
                if (stage_ > asterisks || dollars_ > 1 || signs_ > 1) return 161;
                stage_ = asterisks;
                ++picture_.positions;
                return 0;
            case '#':
                return number();
            case 'Z':
                if (stage_ > digits) return 163;
                stage_ = digits;
                ++picture_.positions;
                return 0;
            case '.':
                if (stage_ > digits) return 164;
                stage_ = behind_point;
                return 0;
            case ',':
                return stage_ == at_start || stage_ > digits ? 165 : 0;
            case 'C':
                if (text.compare(place_, std::string::npos, "CR") != 0) return 159;
                return mark('C');
            default:
                return 166;
        }
    }

    std::int32_t mark(char what) {
        picture_.trailing_mark = what;
        mark_ = place_;
        stage_ = behind_mark;
        return 0;
    }
    std::int32_t sign(char c, const std::string& text) {
        if (stage_ >= one_dollar) {
            return place_ + 1 == text.size() ? mark(c) : 159;
        }
        if (stage_ == at_start) {
            stage_ = one_sign;
            picture_.leading_sign = c;
        } else {
            if (c != picture_.leading_sign) return 135;
            stage_ = floating_sign;
            ++picture_.positions;
        }
        ++signs_;
        picture_.last_sign = place_;
        return 0;
    }
    std::int32_t dollar() {
        if (signs_ > 1 || stage_ >= asterisks) return 160;
        if (stage_ < floating_sign) {
            stage_ = one_dollar;
        } else {
            stage_ = floating_dollar;
            ++picture_.positions;
        }
        ++dollars_;
        picture_.last_dollar = place_;
        return 0;
    }
    std::int32_t number() {
        if (stage_ > behind_point) return 162;
        if (stage_ == behind_point) {
            ++picture_.fraction;
        } else {
            stage_ = digits;
            ++picture_.positions;
        }
        return 0;
    }

    Picture& picture_;
    std::size_t place_ = 0;
    std::size_t mark_ = 0;
    Stage stage_ = at_start;
    int signs_ = 0;
    int dollars_ = 0;
};

class PictureWriter {
  public:
    PictureWriter(const Picture& picture, const NativeDigits& digits, std::int64_t spare,
                  bool negative)
        : picture_(picture), digits_(digits), spare_(spare), negative_(negative) {
        sign_.pending = picture.last_sign != nowhere;
        sign_.last = picture.last_sign;
        sign_.shown = negative ? '-' : picture.leading_sign == '+' ? '+' : ' ';
        dollar_.pending = picture.last_dollar != nowhere;
        dollar_.last = picture.last_dollar;
        dollar_.shown = '$';
    }

    void write(char* out) {
        begin_ = out;
        for (std::size_t i = 0; i < picture_.text.size(); ++i) out[i] = shown(i);
        out += picture_.text.size();
        switch (picture_.trailing_mark) {
            case 'C':
                out[0] = negative_ ? 'C' : ' ';
                out[1] = negative_ ? 'R' : ' ';
                break;
            case '+':
                *out = negative_ ? '-' : '+';
                break;
            case '-':
                *out = negative_ ? '-' : ' ';
                break;
            default:
                break;
        }
    }

  private:
    // A sign or a dollar: alone at its place, or one that floats up to the first digit.
    struct Floating {
        bool pending = false;
        std::size_t last = nowhere;
        char shown = ' ';
    };

    char next_digit() { return next_ < digits_.count ? digits_.digits[next_++] : '0'; }

    char floating(Floating& mark, std::size_t i) {
        if (spare_ == 0) {
            if (!mark.pending) return next_digit();
            mark.pending = false;
            if (i + 1 < picture_.text.size() && picture_.text[i + 1] == ',') {
                moved_ = mark.shown;
                return ' ';
            }
            return mark.shown;
        }
        if (i == mark.last) {
            mark.pending = false;
            return mark.shown;
        }
        --spare_;
        return ' ';
    }
    char filler(char blank) {
        if (spare_ == 0) return next_digit();
        --spare_;
        return blank;
    }
    char comma(std::size_t i) {
        if (moved_ != '\0') {
            const char mark = moved_;
            moved_ = '\0';
            return mark;
        }
        const char before = i > 0 ? begin_[i - 1] : ' ';
        return before == '*' || before == ' ' ? before : ',';
    }
    char shown(std::size_t i) {
        switch (picture_.text[i]) {
            case '+':
            case '-':
                return floating(sign_, i);
            case '$':
                return floating(dollar_, i);
            case 'Z':
                return filler(' ');
            case '*':
                return filler('*');
            case '#':
                return filler('0');
            case ',':
                return comma(i);
            default:
                return '.';
        }
    }

    const Picture& picture_;
    const NativeDigits& digits_;
    std::int64_t spare_;
    bool negative_;
    Floating sign_;
    Floating dollar_;
    char moved_ = '\0';  // a mark that takes the place of the comma behind it
    char* begin_ = nullptr;
    std::size_t next_ = 0;
};

bool edit_number(long double value) {
    IO_type& io = current();
    char* const begin = io.record_cursor;
    const std::int64_t width = io.edit.field_width;
    Picture picture;
    picture.text.assign(begin, static_cast<std::size_t>(width));
    for (char& c : picture.text) c = fold(c);
    if (const std::int32_t message = PictureReader(picture).read()) {
        if (!IO_error(message)) return false;
        pass_output(io, width);
        return true;
    }
    const bool is_number = std::isfinite(value);
    char room[max_native_digits];
    NativeDigits digits;
    if (is_number)
        digits = native_digits(value, static_cast<std::int32_t>(-picture.fraction), room);
    // Zeros between the point and the first digit are spare places too, as many as the fraction
    // has.
    const std::int64_t point = std::max<std::int64_t>(digits.point, -picture.fraction);
    if (!is_number || point > picture.positions) {
        put_asterisks(io, width);
    } else {
        PictureWriter(picture, digits, picture.positions - point, value < 0).write(begin);
    }
    pass_output(io, width);
    return true;
}

}  // namespace

bool BED__I(const std::int32_t* value) {
    return edit_number(static_cast<long double>(*value));
}
bool BED__DP(const double* value) {
    return edit_number(static_cast<long double>(*value));
}
bool BED__RX(const long double* value) {
    return edit_number(*value);
}

}  // namespace tarn::fio::native
