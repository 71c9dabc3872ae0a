#include "fio/native/namelist_value.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "fio/native/field.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t bad_character = 52;
constexpr std::int32_t overflow = 53;
constexpr std::int32_t digits_expected = 77;
constexpr std::int32_t syntax_error = 202;

bool is_quote(char c) {
    return c == '\'' || c == '"';
}

bool at_digit(const NamelistInput& in) {
    return !in.exhausted() && is_digit(*in.cursor());
}

// An optional sign; true: it is a minus.
bool take_sign(NamelistInput& in) {
    const bool negative = in.stands('-');
    if (negative || in.stands('+')) in.pass();
    return negative;
}

// Digits beyond the type's range are lost at its upper end, as in any arithmetic of its width.
template <typename T>
bool take_integer(T& value) {
    NamelistInput in(current());
    const bool negative = take_sign(in);
    value = 0;
    if (!at_digit(in)) return IO_error(digits_expected);
    std::uint64_t magnitude = 0;
    for (; at_digit(in); in.pass()) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(*in.cursor() - '0');
    }
    value = static_cast<T>(negative ? 0 - magnitude : magnitude);
    return true;
}

template <typename T>
void store(char* address, T value) {
    std::memcpy(address, &value, sizeof value);
}

// INTEGER*1 and INTEGER*2.
template <typename T>
bool read_small_integer(char* address) {
    std::int64_t value = 0;
    if (!get_integer8(value)) return false;
    const bool fits =
        value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max();
    if (!fits) return IO_error(overflow);
    store(address, static_cast<T>(value));
    return true;
}

bool read_INTEGER_4(char* address) {
    std::int32_t value = 0;
    if (!get_integer(value)) return false;
    store(address, value);
    return true;
}

bool read_INTEGER_8(char* address) {
    std::int64_t value = 0;
    if (!get_integer8(value)) return false;
    store(address, value);
    return true;
}

template <typename T>
bool read_logical(NamelistInput& in, char* address) {
    if (in.stands('.')) in.pass();
    if (in.exhausted()) return IO_error(bad_character);
    const char letter = fold(*in.cursor());
    if (letter != 'T' && letter != 'F' && !IO_error(syntax_error)) return false;
    store(address, static_cast<T>(letter == 'T' ? 1 : 0));
    while (!in.exhausted() && !in.stands(' ') && !in.stands(',') && !in.stands('/')) in.pass();
    return true;
}

// The scale is applied in steps of 16 powers of ten, the rest by one power.
long double scaled(long double value, std::int64_t scale) {
    constexpr std::int64_t step = 16;
    constexpr long double step_power = 1e16L;
    for (; scale <= -step; scale += step) value *= step_power;
    for (; scale >= step; scale -= step) value /= step_power;
    long double power = 1;
    for (std::int64_t i = scale < 0 ? -scale : scale; i > 0; --i) power *= 10;
    return scale > 0 ? value / power : value * power;
}

// An exponent beyond every range is only that.
std::int64_t far_exponent(std::int64_t exponent) {
    constexpr std::int64_t far = 20000;
    return std::clamp(exponent, -far, far);
}

bool read_REAL(NamelistInput& in, long double& value) {
    const bool negative = take_sign(in);
    long double accumulator = 0;
    std::int64_t fraction = 0;
    const bool whole = at_digit(in);
    for (; at_digit(in); in.pass()) accumulator = accumulator * 10 + (*in.cursor() - '0');
    if (in.stands('.')) {
        in.pass();
        if (!whole && !at_digit(in)) return IO_error(bad_character);
        for (; at_digit(in); in.pass(), ++fraction) {
            accumulator = accumulator * 10 + (*in.cursor() - '0');
        }
    } else if (!whole) {
        return IO_error(digits_expected);
    }
    std::int64_t exponent = 0;
    const char letter = in.exhausted() ? ' ' : fold(*in.cursor());
    if (letter == 'E' || letter == 'D') {
        in.pass();
        if (!get_integer8(exponent)) return false;
    }
    value = scaled(accumulator, fraction - far_exponent(exponent));
    if (negative) value = -value;
    return true;
}

void store_real(char* address, long double value, int size) {
    switch (size) {
        case 4:
            return store(address, static_cast<float>(value));
        case 8:
            return store(address, static_cast<double>(value));
        default:
            return store(address, value);
    }
}

bool read_real_item(NamelistInput& in, char* address, int size) {
    long double value = 0;
    if (!read_REAL(in, value)) return false;
    store_real(address, value, size);
    return true;
}

bool take_mark(NamelistInput& in, char mark, std::int32_t message) {
    if (!in.stands(mark)) return IO_error(message);
    in.pass();
    return true;
}

bool read_complex(NamelistInput& in, char* address, int size) {
    long double real = 0;
    long double imaginary = 0;
    const bool read = take_mark(in, '(', bad_character) && in.skip_space() && read_REAL(in, real) &&
                      in.skip_space() && take_mark(in, ',', syntax_error) && in.skip_space() &&
                      read_REAL(in, imaginary) && in.skip_space() &&
                      take_mark(in, ')', syntax_error);
    if (!read) return false;
    store_real(address, real, size);
    store_real(address + (size == 10 ? static_cast<int>(sizeof real) : size), imaginary, size);
    return true;
}

// A text between delimiters, over the ends of records; what is left of the variable is blank.
bool read_CHARACTER(NamelistInput& in, char* address, std::int64_t length) {
    if (in.exhausted() || !is_quote(*in.cursor())) return IO_error(bad_character);
    const char delimiter = *in.cursor();
    in.pass();
    std::int64_t stored = 0;
    for (;;) {
        if (in.exhausted()) {
            if (!in.skip_space()) return false;
            if (in.exhausted()) break;
        }
        const char c = *in.cursor();
        in.pass();
        if (c == delimiter) {
            if (in.in_structure || !in.stands(delimiter)) break;
            in.pass();
        }
        if (stored < length) address[stored++] = c;
    }
    if (stored < length)
        std::memset(address + stored, ' ', static_cast<std::size_t>(length - stored));
    return true;
}

}  // namespace

bool get_integer(std::int32_t& value) {
    return take_integer(value);
}

bool get_integer8(std::int64_t& value) {
    return take_integer(value);
}

const char* NamelistInput::first_text() const {
    const char* at = io_.record_start;
    while (at <= io_.record_last && (*at == ' ' || *at == '\r' || *at == '\n')) ++at;
    return at;
}

bool NamelistInput::next_record(bool& ended) {
    io_.record_start = io_.record_cursor = io_.high_water = io_.buffer_start;
    io_.record_end = io_.record_start + io_.record_length - 1;
    io_.record_last = io_.record_end;
    if (!RSF3__()) return false;
    ended = io_.end_of_input;
    if (ended) io_.record_last = io_.record_start - 1;
    return true;
}

bool NamelistInput::skip_space() {
    for (;;) {
        while (!exhausted() && (stands(' ') || stands('\r') || stands('\n'))) pass();
        if (!exhausted() && !stands('!')) return true;
        if (io_.end_of_input) return IO_error(syntax_error);
        bool ended = false;
        if (!next_record(ended)) return false;
        if (ended) return IO_error(syntax_error);
    }
}

bool read_namelist_value(NamelistInput& in, NamelistType type, char* address, std::int64_t length,
                         std::int64_t first, std::int64_t last) {
    switch (type) {
        case NamelistType::integer1:
            return read_small_integer<std::int8_t>(address);
        case NamelistType::integer2:
            return read_small_integer<std::int16_t>(address);
        case NamelistType::integer4:
            return read_INTEGER_4(address);
        case NamelistType::integer8:
            return read_INTEGER_8(address);
        case NamelistType::real4:
            return read_real_item(in, address, 4);
        case NamelistType::real8:
            return read_real_item(in, address, 8);
        case NamelistType::real10:
            return read_real_item(in, address, 10);
        case NamelistType::complex8:
            return read_complex(in, address, 4);
        case NamelistType::complex16:
            return read_complex(in, address, 8);
        case NamelistType::complex20:
            return read_complex(in, address, 10);
        case NamelistType::logical1:
            return read_logical<std::int8_t>(in, address);
        case NamelistType::logical2:
            return read_logical<std::int16_t>(in, address);
        case NamelistType::logical4:
            return read_logical<std::int32_t>(in, address);
        case NamelistType::character:
            last = std::min(last, length);
            return read_CHARACTER(in, address + first - 1, last - first + 1);
        default:
            return true;
    }
}

}  // namespace tarn::fio::native
