// Real items, input.
#include <cmath>
#include <limits>

#include "fio/native/field.h"
#include "fio/native/list_input.h"
#include "fio/native/real_edit.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t bad_character = 52;
constexpr std::int32_t out_of_range = 53;
constexpr std::int32_t bad_exponent = 452;

// A real number on its way in. The arithmetic is that of the extended format throughout: a
// REAL*4 is rounded once, from there.
struct Reading {
    long double mantissa = 0;
    std::int64_t fraction_digits = 0;
    std::int64_t exponent = 0;
    bool negative = false;
    bool negative_exponent = false;
    bool started = false;
    bool has_point = false;
    bool has_exponent = false;
    bool has_exponent_sign = false;
    bool has_exponent_digit = false;
    bool has_sign = false;
    bool has_digit = false;

    void add_digit(int digit) {
        started = true;
        if (has_exponent) {
            constexpr std::int64_t enough = 1000000;
            has_exponent_digit = true;
            exponent = std::min(exponent * 10 + digit, enough);
            return;
        }
        has_digit = true;
        mantissa = mantissa * 10 + digit;
        if (has_point) ++fraction_digits;
    }
    bool add_sign(char c) {
        if (!started) {
            if (has_sign) return false;
            has_sign = true;
            started = true;
            negative = c == '-';
            return true;
        }
        // Behind a sign and nothing else a second one is one too many.
        if (!has_exponent && !has_digit && !has_point) return false;
        if (has_exponent_sign || has_exponent_digit) return false;
        has_exponent = has_exponent_sign = true;
        negative_exponent = c == '-';
        return true;
    }
    bool add_point() {
        if (has_point || has_exponent) return false;
        started = has_point = true;
        return true;
    }
    bool add_letter() {
        if (has_exponent) return false;
        started = has_exponent = true;
        return true;
    }
};

// False: the character can't stand here.
bool accept(Reading& reading, char c, bool blank_null) {
    if (is_digit(c)) {
        reading.add_digit(c - '0');
        return true;
    }
    switch (fold(c)) {
        case ' ':
            if (reading.started && !blank_null) reading.add_digit(0);
            return true;
        case '+':
        case '-':
            return reading.add_sign(c);
        case '.':
            return reading.add_point();
        case 'E':
        case 'D':
            return reading.add_letter();
        default:
            return false;
    }
}

bool check_exponent(const Reading& reading, std::int32_t size) {
    const std::int64_t most = size == 4 ? 125 : size == 8 ? 1021 : 16381;
    const std::int64_t limit = reading.negative_exponent ? most : most + 3;
    return reading.exponent <= limit || IO_error(bad_exponent);
}

long double value_of(const Reading& reading, std::int64_t d, std::int64_t k) {
    static constexpr long double small_powers[] = {1E0L,  1E1L,  1E2L,  1E3L, 1E4L,  1E5L,
                                                   1E6L,  1E7L,  1E8L,  1E9L, 1E10L, 1E11L,
                                                   1E12L, 1E13L, 1E14L, 1E15L};
    std::int64_t power = reading.has_point ? reading.fraction_digits : d;
    if (!reading.has_exponent) power += k;
    power -= reading.negative_exponent ? -reading.exponent : reading.exponent;
    long double value = reading.mantissa;
    // Beyond this nothing is left to scale.
    constexpr std::int64_t far = 50000;
    power = std::clamp(power, -far, far);
    for (; power < -15; power += 16) value *= 1E16L;
    for (; power > 15; power -= 16) value /= 1E16L;
    if (power < 0) {
        value *= small_powers[-power];
    } else {
        value /= small_powers[power];
    }
    return reading.negative ? -value : value;
}

bool in_range(long double value, std::int32_t size) {
    const long double magnitude = std::fabs(value);
    switch (size) {
        case 4:
            return magnitude <= std::numeric_limits<float>::max();
        case 8:
            return magnitude <= std::numeric_limits<double>::max();
        default:
            return !std::isinf(magnitude);
    }
}

bool read_field(IO_type& io, void* item, std::int32_t size, std::int64_t d, std::int64_t k) {
    const std::int64_t width = io.edit.field_width;
    InputField field = input_field(io, width);
    Reading reading;
    bool comma = false;
    while (!field.at_end() && !comma) {
        const char c = field.take();
        if (ends_field(c)) {
            comma = true;
        } else if (!accept(reading, c, io.blank_null) && !IO_error(bad_character)) {
            io.record_cursor += field.next - field.begin;
            return false;
        }
    }
    if (!check_exponent(reading, size)) return false;
    const long double value = value_of(reading, d, k);
    if (!in_range(value, size) && !IO_error(out_of_range)) return false;
    store_real(item, size, value);
    return pass_input(io, field, width, comma);
}

bool read_edited(IO_type& io, void* item, std::int32_t size) {
    const EngineState& edit = io.edit;
    switch (edit.edit_code) {
        case op_A:
            return IO_read_char_into_numeric(io, item, size);
        case op_D:
        case op_E:
        case op_F:
        case op_G:
        case op_EN:
        case op_ES:
            return read_field(io, item, size, std::max(edit.d, 0), edit.scale_factor);
        default:
            return Data_Mismatch_Error(edit.edit_code, "REAL");
    }
}

bool read_list(IO_type& io, void* item, std::int32_t size) {
    if (!IO_process_list_directed_input()) return false;
    bool done = false;
    if (!settle_list_value(io, item, done)) return false;
    if (done) return true;
    if (io.edit.value_kind != ValueKind::constant) return read_field(io, item, size, 0, 0);
    unsigned __int128 bits = 0;
    if (!IO_read_bin_oct_hex(io, 8, bits)) return false;
    store_real(item, size, static_cast<long double>(static_cast<std::int64_t>(bits)));
    return true;
}

}  // namespace

bool R_RSF_main(void* item, std::int64_t count) {
    IO_type& io = current();
    return transfer_elements(io, static_cast<char*>(item), count, read_list, read_edited);
}

}  // namespace tarn::fio::native
