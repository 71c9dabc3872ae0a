// Real items, output: F, E, D, G, EN and ES editing, and their list-directed form.
#include "fio/native/real_edit.h"

#include <cmath>
#include <limits>

#include "fio/native/field.h"
#include "fio/number/decimal.h"

namespace tarn::fio::native {
namespace {

constexpr unsigned char undefined_byte = 0x80;

template <typename T>
T load(const void* item) {
    T value;
    std::memcpy(&value, item, sizeof value);
    return value;
}

bool all_undefined(const void* item, std::int32_t size) {
    const auto* bytes = static_cast<const unsigned char*>(item);
    return std::all_of(bytes, bytes + size, [](unsigned char b) { return b == undefined_byte; });
}

// How one value is to stand in its field.
struct RealEdit {
    std::int32_t code = 0;
    std::int64_t width = 0;  // 0: as wide as the value needs
    std::int64_t tail = 0;   // blanks at the right end, within the width
    std::int64_t d = 0;
    std::int64_t e = absent;
    std::int64_t k = 0;
    std::int32_t size = 0;
    bool list_directed = false;
    bool narrow = false;  // a part of a complex value: no wider than it needs to be
};

constexpr long double huge_value = 1E100;
constexpr long double tiny_value = 1E-100;

// A value whose exponent takes three digits, or a zero.
bool has_wide_exponent(long double magnitude) {
    return magnitude >= huge_value || magnitude <= tiny_value;
}

// ---- Layout ----

// The digits of a value with their place, and the exponent part if there is one.
struct Layout {
    const NativeDigits* digits = nullptr;
    std::int64_t shown = 0;  // digits, zeros behind the point included
    std::int64_t point = 0;  // so many of them before the point; zeros behind it when negative
    // The exponent part: a letter and a sign, or the sign alone, and the digits.
    char exponent_head[2];
    std::int64_t head_length = 0;
    char exponent[20];
    std::int64_t exponent_length = 0;
    std::int64_t exponent_digits = 0;  // with zeros in front
    char sign = '\0';

    std::int64_t without_sign() const { return shown + 1 + head_length + exponent_digits; }
    std::int64_t needed() const { return without_sign() + (sign != '\0' ? 1 : 0); }
};

char* put_digits(char* out, const NativeDigits& digits, std::int64_t from, std::int64_t to) {
    const std::int64_t there =
        std::clamp(static_cast<std::int64_t>(digits.count), from, std::max(from, to));
    std::memcpy(out, digits.digits + from, static_cast<std::size_t>(there - from));
    std::memset(out + (there - from), '0', static_cast<std::size_t>(to - there));
    return out + (to - from);
}

// Right-justified in front of `end`. `spare`: a column is left for a zero before the point.
void put_layout(const Layout& layout, char* end, bool spare) {
    char* first = end - layout.without_sign();
    char* out = first;
    if (layout.point < 1) {
        const std::int64_t zeros = std::min(-layout.point, layout.shown);
        *out++ = '.';
        std::memset(out, '0', static_cast<std::size_t>(zeros));
        out = put_digits(out + zeros, *layout.digits, 0, layout.shown - zeros);
        if (spare) *--first = '0';
    } else {
        out = put_digits(out, *layout.digits, 0, layout.point);
        *out++ = '.';
        out = put_digits(out, *layout.digits, layout.point, layout.shown);
    }
    std::memcpy(out, layout.exponent_head, static_cast<std::size_t>(layout.head_length));
    out += layout.head_length;
    const std::int64_t zeros = layout.exponent_digits - layout.exponent_length;
    std::memset(out, '0', static_cast<std::size_t>(zeros));
    std::memcpy(out + zeros, layout.exponent, static_cast<std::size_t>(layout.exponent_length));
    if (layout.sign != '\0') *--first = layout.sign;
}

bool put_field(IO_type& io, const RealEdit& edit, const Layout& layout) {
    const std::int64_t needed = layout.needed();
    const bool lone_point = layout.point < 1;
    std::int64_t width = edit.width;
    std::int64_t tail = edit.tail;
    if (width == 0 || edit.narrow) {
        // Every F form has a digit before the point.
        width = needed + (lone_point && edit.code == op_F ? 1 : 0);
        tail = 0;
    }
    if (!reserve_field(io, width)) return false;
    const std::int64_t room = width - tail;
    if (needed > room) {
        put_asterisks(io, width);
    } else {
        std::memset(io.record_cursor, ' ', static_cast<std::size_t>(width));
        put_layout(layout, io.record_cursor + room, lone_point && needed < room);
    }
    pass_output(io, width);
    return true;
}

bool put_overflow(IO_type& io, const RealEdit& edit) {
    if (!reserve_field(io, edit.width)) return false;
    put_asterisks(io, edit.width);
    pass_output(io, edit.width);
    return true;
}

// ---- F form ----

char sign_of(const IO_type& io, bool negative) {
    return negative ? '-' : io.edit.sign_mode > 0 ? '+' : '\0';
}

std::int32_t as_count(std::int64_t n) {
    constexpr std::int64_t most = 1 << 30;
    return static_cast<std::int32_t>(std::clamp(n, -most, most));
}

bool write_fixed(IO_type& io, const RealEdit& edit, long double value) {
    char room[max_native_digits];
    const NativeDigits digits = native_digits(value, as_count(-edit.d), room);
    const std::int64_t x = digits.point;
    Layout layout;
    layout.digits = &digits;
    layout.shown = edit.d + std::max<std::int64_t>(x, 0);
    layout.point = x;
    // A negative value of which no digit is left has no sign.
    layout.sign = sign_of(io, value < 0 && x + layout.shown >= 1);
    return put_field(io, edit, layout);
}

// ---- E form ----

// The exponent part; false: it needs more digits than it is given.
bool put_exponent(Layout& layout, const RealEdit& edit, std::int64_t exponent) {
    const std::int64_t magnitude = exponent < 0 ? -exponent : exponent;
    char letter = edit.code == op_D ? 'D' : 'E';
    char sign = exponent < 0 ? '-' : '+';
    std::int64_t shown = magnitude;
    std::int64_t digits = 2;
    if (edit.e != absent) {
        digits = edit.e;
    } else if (edit.size >= 8 && magnitude >= 100) {
        digits = 3;
        if (edit.list_directed) {
            digits = magnitude >= 1000 ? 4 : 3;
        } else {
            letter = '\0';
            if (magnitude >= 1000) {
                sign = exponent < 0 ? '=' : '$';
                shown = magnitude / 10;
            }
        }
    }
    if (letter != '\0') layout.exponent_head[layout.head_length++] = letter;
    layout.exponent_head[layout.head_length++] = sign;
    char* const end = layout.exponent + sizeof layout.exponent;
    char* const begin = put_decimal_backwards(static_cast<unsigned long long>(shown), end);
    layout.exponent_length = end - begin;
    std::memmove(layout.exponent, begin, static_cast<std::size_t>(end - begin));
    layout.exponent_digits = digits;
    return layout.exponent_length <= digits;
}

bool write_exponential(IO_type& io, RealEdit edit, long double value, const NativeDigits& digits,
                       std::int64_t n) {
    const std::int64_t exponent = value == 0 ? 0 : digits.point - edit.k;
    const std::int64_t magnitude = exponent < 0 ? -exponent : exponent;
    const bool wide = edit.e == absent && edit.size >= 8;
    if (wide && magnitude >= 1000 && !edit.list_directed && state().ansi_mode && !IO_error(118)) {
        return false;
    }
    if (wide && edit.list_directed && magnitude < 100) edit.tail = 2;
    Layout layout;
    layout.digits = &digits;
    layout.shown = std::max(edit.d, n);
    layout.point = edit.k;
    layout.sign = sign_of(io, value < 0);
    if (!put_exponent(layout, edit, exponent)) return put_overflow(io, edit);
    return put_field(io, edit, layout);
}

// ---- G, EN, ES and the scale factor ----

// The scale factor that puts one to three digits before the point and a multiple of three into
// the exponent, for 0.d1d2... x 10^point.
std::int64_t engineering_scale(std::int64_t point) {
    const std::int64_t rest = (point - 1) % 3;
    return 1 + (rest < 0 ? rest + 3 : rest);
}

std::int64_t digit_count(const RealEdit& edit) {
    if (edit.code == op_EN) return edit.k + edit.d;
    return edit.k < 1 ? edit.k + edit.d : edit.d + 1;
}

bool scale_is_valid(const RealEdit& edit) {
    return edit.k < 1 ? edit.k > -edit.d : edit.k <= edit.d + 1;
}

// G shows what lies from 0.1 up to 10^d in F form.
void choose_general_form(RealEdit& edit, long double value) {
    const long double magnitude = std::fabs(value);
    if (value == 0 && edit.d != 0) {
        edit.k = 0;
        return;
    }
    if (magnitude < static_cast<long double>(0.1) || magnitude >= power_of_ten(edit.d)) {
        edit.code = op_E;
    }
    if (edit.code != op_E || value == 0) edit.k = 0;
}

bool write_general(IO_type& io, RealEdit edit, long double value, const NativeDigits& digits) {
    const std::int64_t place = value == 0 ? 1 : digits.point - edit.k;
    if (place < 0 || place > edit.d) {
        return write_exponential(io, edit, value, digits, digit_count(edit));
    }
    edit.tail = edit.e == absent ? 4 : edit.e + 2;
    edit.d -= place;
    edit.code = op_F;
    return write_fixed(io, edit, value);
}

bool write_scaled(IO_type& io, RealEdit edit, long double value) {
    if (edit.code == op_G) choose_general_form(edit, value);
    if (edit.code == op_ES) edit.k = 1;
    if (edit.code == op_EN) {
        edit.k = value == 0 ? 1 : engineering_scale(decimal_exponent(take_apart(value)) + 1);
    } else if (edit.code != op_ES && !scale_is_valid(edit) && !IO_error(61)) {
        return false;
    }
    char room[max_native_digits];
    std::int64_t n = std::max<std::int64_t>(digit_count(edit), 1);
    NativeDigits digits = native_digits(value, as_count(n), room);
    if (edit.code == op_EN && value != 0 && (digits.point - edit.k) % 3 != 0) {
        // Rounding has made a thousand of it.
        edit.k = 1;
        n = digit_count(edit);
        digits = native_digits(value, as_count(n), room);
    }
    return edit.code == op_G ? write_general(io, edit, value, digits)
                             : write_exponential(io, edit, value, digits, n);
}

// ---- What isn't a number ----

bool write_special(IO_type& io, const RealEdit& edit, const RealValue& real) {
    const bool negative = real.value < 0;
    const std::string_view text = real.kind == RealKind::nan        ? "NaN"
                                  : real.kind != RealKind::infinite ? "?"
                                  : negative                        ? "-Infinity"
                                                                    : "Infinity";
    const auto length = static_cast<std::int64_t>(text.size());
    const bool fits_itself = edit.width == 0 || (edit.narrow && real.kind != RealKind::undefined);
    const std::int64_t width = fits_itself ? length : edit.width;
    if (!reserve_field(io, width)) return false;
    if (real.kind == RealKind::undefined) {
        std::memset(io.record_cursor, '?', static_cast<std::size_t>(width));
    } else {
        const std::int64_t shown = std::min(length, width);
        std::memset(io.record_cursor, ' ', static_cast<std::size_t>(width));
        std::memcpy(io.record_cursor + width - shown, text.data(), static_cast<std::size_t>(shown));
    }
    pass_output(io, width);
    return true;
}

bool write_value(IO_type& io, RealEdit edit, const RealValue& real) {
    if (real.kind != RealKind::finite) return write_special(io, edit, real);
    if (edit.code != op_F) return write_scaled(io, edit, real.value);
    const long double scaled =
        edit.k < 0 ? real.value / power_of_ten(-edit.k) : real.value * power_of_ten(edit.k);
    if (std::isinf(scaled)) {
        return write_special(io, edit, {RealKind::infinite, scaled});
    }
    return write_fixed(io, edit, scaled);
}

// ---- Settings ----

RealEdit list_settings(const IO_type& io, const RealValue& real, std::int32_t size) {
    RealEdit edit;
    edit.code = op_G;
    edit.k = 1;
    edit.size = size;
    edit.list_directed = true;
    edit.narrow = io.edit.complex_part;
    edit.width = size == 4 ? 16 : 27;
    edit.d = size == 4 ? 6 : size == 8 ? 12 : 17;
    if (size != 4 && has_wide_exponent(std::fabs(real.value))) edit.e = 4;
    return edit;
}

// G0.d: a width that any value of the size fits.
void widen_general(RealEdit& edit, const RealValue& real) {
    edit.e = absent;
    edit.width = edit.size == 4 ? 12 : edit.size == 8 ? 21 : 22;
    if (edit.d == 0) edit.d = edit.size == 4 ? 7 : edit.size == 8 ? 16 : 17;
    if (edit.size != 4 && has_wide_exponent(std::fabs(real.value))) {
        edit.e = 3;
        ++edit.width;
    }
    if (real.value < 0) ++edit.width;
}

bool write_edited(IO_type& io, const void* item, std::int32_t size) {
    const EngineState& state = io.edit;
    const RealValue real = load_real(item, size);
    switch (state.edit_code) {
        case op_A:
            return IO_write_numeric_into_char(io, item, size);
        case op_business:
            return BED__RX(&real.value);
        case op_B:
        case op_O:
        case edit_Z: {
            unsigned __int128 bits = 0;
            std::memcpy(&bits, item, static_cast<std::size_t>(size));
            return write_bits_field(io, bits);
        }
        case op_D:
        case op_E:
        case op_F:
        case op_G:
        case op_EN:
        case op_ES:
            break;
        default:
            return Data_Mismatch_Error(state.edit_code, "REAL");
    }
    RealEdit edit;
    edit.code = state.edit_code;
    edit.width = state.field_width;
    edit.d = std::max(state.d, 0);
    edit.e = state.e;
    edit.k = state.scale_factor;
    edit.size = size;
    if (edit.width == 0 && edit.code == op_G) {
        widen_general(edit, real);
    } else if (edit.width == 0 && edit.code != op_F && !IO_error(447)) {
        return false;
    }
    return write_value(io, edit, real);
}

bool write_list(IO_type& io, const void* item, std::int32_t size) {
    const RealValue real = load_real(item, size);
    const RealEdit edit = list_settings(io, real, size);
    return reserve_list_field(io, edit.width) && write_value(io, edit, real);
}

}  // namespace

RealValue load_real(const void* item, std::int32_t size) {
    RealValue real;
    switch (size) {
        case 4:
            real.value = load<float>(item);
            break;
        case 8:
            real.value = load<double>(item);
            break;
        default:
            std::memcpy(&real.value, item, 10);
            break;
    }
    if (all_undefined(item, size)) {
        real = {RealKind::undefined, std::numeric_limits<long double>::quiet_NaN()};
    } else if (std::isinf(real.value)) {
        real.kind = RealKind::infinite;
    } else if (std::isnan(real.value)) {
        real.kind = RealKind::nan;
    }
    return real;
}

void store_real(void* item, std::int32_t size, long double value) {
    if (size == 4) {
        const auto narrow = static_cast<float>(value);
        std::memcpy(item, &narrow, sizeof narrow);
    } else if (size == 8) {
        const auto narrow = static_cast<double>(value);
        std::memcpy(item, &narrow, sizeof narrow);
    } else {
        std::memcpy(item, &value, 10);
    }
}

long double power_of_ten(std::int64_t n) {
    static constexpr long double powers[] = {1E1L,    1E2L,    1E4L,   1E8L,   1E16L,
                                             1E32L,   1E64L,   1E128L, 1E256L, 1E512L,
                                             1E1024L, 1E2048L, 1E4096L};
    constexpr std::int64_t most = 8191;
    auto magnitude = static_cast<std::uint64_t>(std::clamp<std::int64_t>(n, 0, most));
    long double power = 1;
    for (int i = 0; magnitude != 0; ++i, magnitude >>= 1) {
        if ((magnitude & 1U) != 0) power *= powers[i];
    }
    return power;
}

bool R_WSF_main(const void* item, std::int64_t count) {
    IO_type& io = current();
    return transfer_elements(io, static_cast<const char*>(item), count, write_list, write_edited);
}

}  // namespace tarn::fio::native
