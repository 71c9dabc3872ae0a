// Numbers to text and back, as the boxes show and read them.
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "winio/callbacks.h"
#include "winio/data_entry.h"
#include "winio/procedures.h"
#include "winio/report.h"

namespace tarn::winio {

namespace {

constexpr std::int32_t undefined_integer = static_cast<std::int32_t>(0x80808080);
constexpr std::int64_t undefined_double = static_cast<std::int64_t>(0x8080808080808080);

// The decimal point is a point in a box, whatever the program has made of its locale.
class point_is_a_point {
  public:
    point_is_a_point() : before_(uselocale(plain())) {}
    ~point_is_a_point() { uselocale(before_); }
    point_is_a_point(const point_is_a_point&) = delete;
    point_is_a_point& operator=(const point_is_a_point&) = delete;

  private:
    static locale_t plain() {
        static constinit locale_t made = nullptr;
        if (!made) made = newlocale(LC_ALL_MASK, "C", nullptr);
        return made ? made : LC_GLOBAL_LOCALE;
    }
    locale_t before_;
};

// The text of a number whose length nobody has bounded: 1E308 in full has 309 digits.
using number_buffer = char[512];

void cut_zeros(char* text) {
    char* point = std::strchr(text, '.');
    if (!point) return;
    std::size_t length = std::strlen(text);
    while (length > 1 && text[length - 1] == '0' && text[length - 2] != '.') text[--length] = 0;
    if (length > 2 && text[length - 1] == '0' && text[length - 2] == '.') text[length - 2] = 0;
}

bool has_exponent(const char* text) {
    return std::strpbrk(text, "eEdD") != nullptr;
}

}  // namespace

std::string float_text(double value, std::int32_t width) {
    point_is_a_point numbers;
    number_buffer text;
    std::int32_t places = std::clamp(width - 3, 6, 15);
    std::snprintf(text, sizeof text, "%.*f", places, value);
    cut_zeros(text);
    const char* point = std::strchr(text, '.');
    auto whole = static_cast<std::int32_t>(point ? static_cast<std::size_t>(point - text)
                                                 : std::strlen(text));
    double limit = quillpan_float("rf_exp_limit");
    if (limit == 0.0) limit = 0.01;
    bool plain = std::fabs(value) >= limit || value == 0.0;
    if (whole < width && !has_exponent(text) && plain)
        return {text, strnlen(text, static_cast<std::size_t>(width))};
    std::int32_t digits = std::clamp(width - 3, 0, 60);
    do {
        std::snprintf(text, sizeof text, "%*.*E", std::clamp(width - 1, 0, 100), digits, value);
        --digits;
    } while (static_cast<std::int32_t>(std::strlen(text)) > width && digits >= 2);
    return text;
}

void float_to_char(char* buffer, double value, std::int32_t width) {
    std::string text = float_text(value, width);
    std::memcpy(buffer, text.c_str(), text.size() + 1);
}

void remove00(char* text) {
    char* exponent = std::strpbrk(text, "eE");
    if (!exponent) return;
    char* zero = std::strchr(exponent, '0');
    if (!zero) return;
    std::size_t length = std::strlen(zero);
    char* pair = std::strstr(zero, "00");
    if (pair && length > 2)
        std::memmove(pair, pair + 1, std::strlen(pair));
    else if (!pair && length == 3)
        std::memmove(zero, zero + 1, length);
}

scanned_integer scan_integer(const char* text, std::int32_t radix) {
    char* rest = nullptr;
    errno = 0;
    std::int64_t value = std::strtoll(text, &rest, radix);
    return {value, errno != 0, rest};
}

double scan_float(const char* text, bool& out_of_range, const char*& rest) {
    point_is_a_point numbers;
    char* end = nullptr;
    errno = 0;
    double value = std::strtod(text, &end);
    out_of_range = errno != 0 && !(value == 0.0 || std::fabs(value) < 1.0);
    rest = end;
    return value;
}

std::string integer_text(std::int32_t value, std::int32_t radix) {
    char text[40];
    if (radix == 10) {
        std::snprintf(text, sizeof text, "%d", value);
        return text;
    }
    auto left = static_cast<std::uint32_t>(value);
    char* at = text + sizeof text;
    *--at = 0;
    do {
        std::uint32_t digit = left % static_cast<std::uint32_t>(radix);
        *--at = static_cast<char>(digit < 10 ? '0' + digit : 'a' + digit - 10);
        left /= static_cast<std::uint32_t>(radix);
    } while (left != 0);
    return at;
}

bool sound_float_format(const char* format) {
    if (!format) return false;
    std::int32_t conversions = 0;
    for (const char* at = format; *at; ++at) {
        if (*at != '%') continue;
        if (at[1] == '%') {
            ++at;
            continue;
        }
        ++at;
        at += std::strspn(at, "-+ #0'");
        std::size_t width = std::strspn(at, "0123456789");
        at += width;
        std::size_t places = 0;
        if (*at == '.') {
            ++at;
            places = std::strspn(at, "0123456789");
            at += places;
        }
        if (width > 2 || places > 2 || !*at || !std::strchr("eEfFgGaA", *at)) return false;
        ++conversions;
    }
    return conversions == 1;
}

std::string formatted_float(const char* format, double value) {
    point_is_a_point numbers;
    number_buffer text;
    std::snprintf(text, sizeof text, format, value);
    remove00(text);
    return text;
}

double spin_value(double value, double step, bool up, double low, double high) {
    if (step == 0.0 || !std::isfinite(step)) return value;
    // The next multiple in that direction; what is a multiple but for rounding counts as one.
    double steps =
        up ? std::floor(value / step + 1.0E-7) + 1.0 : std::ceil(value / step - 1.0E-7) - 1.0;
    double next = steps * step;
    if (!std::isfinite(next)) return value;
    if (next > high) next = high;
    if (next < low) next = low;
    return next;
}

bool is_blank_text(const char* text) {
    return text[std::strspn(text, " \t\r\n")] == 0;
}

bool undef_int_check(std::int32_t* variable, const char* code_text, std::int32_t value) {
    if (!options().undefined_tests || !variable || *variable != undefined_integer) return false;
    quillpan_error("?A variable for %s has not been given an initial value", code_text);
    *variable = value;
    return true;
}

bool undef_double_check(double* variable, const char* code_text, double value) {
    if (!options().undefined_tests || !variable) return false;
    std::int64_t bits;
    std::memcpy(&bits, variable, sizeof bits);
    if (bits != undefined_double) return false;
    quillpan_error("?A variable for %s has not been given an initial value", code_text);
    *variable = value;
    return true;
}

void copy_from_fstring(char* target, const char* source, std::int32_t length) {
    if (length < 0) length = 0;
    while (length > 0 && (source[length - 1] == ' ' || source[length - 1] == 0)) --length;
    std::memcpy(target, source, static_cast<std::size_t>(length));
    target[length] = 0;
}

void copy_to_fstring(char* target, std::int32_t length, const char* source) {
    if (length <= 0) return;
    std::size_t room = static_cast<std::size_t>(length);
    std::size_t used = strnlen(source, room);
    std::memcpy(target, source, used);
    std::memset(target + used, ' ', room - used);
}

}  // namespace tarn::winio
