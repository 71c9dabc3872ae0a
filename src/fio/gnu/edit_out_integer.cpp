#include <algorithm>
#include <cstring>

#include "fio/gnu/edit_out.h"
#include "fio/gnu/edit_out_blanks.h"
#include "fio/number/decimal.h"
#include "fio/number/integer_digits.h"

namespace tarn::fio {

namespace {

char* fill(char* out, char character, std::int64_t count) {
    if (count <= 0) return out;
    std::memset(out, character, static_cast<std::size_t>(count));
    return out + count;
}

// Digits at the right end of a field, with zeros before them up to m and a sign before those.
// w is 0 for a field of just the width needed.
char* put_whole(char* out, const char* digits, std::int64_t length, char sign, std::int64_t w,
                std::int64_t m) {
    const std::int64_t zeros = std::max(m - length, std::int64_t{0});
    const std::int64_t needed = length + zeros + (sign != 0 ? 1 : 0);
    if (w <= 0) w = needed;
    if (needed > w) return fill(out, '*', w);
    out = fill(out, ' ', w - needed);
    if (sign != 0) *out++ = sign;
    out = fill(out, '0', zeros);
    std::memcpy(out, digits, static_cast<std::size_t>(length));
    return out + length;
}

// The digits of a magnitude in a buffer of 40 characters, right-justified.
char* put_magnitude(UInt128 magnitude, char* end) {
    if (magnitude >> 64 == 0) {
        return put_decimal_backwards(static_cast<unsigned long long>(magnitude), end);
    }
    return put_decimal_backwards(magnitude, end);
}

constexpr std::size_t decimal_room = 40;

// The digits of a value of 64 bits, straight into the field.
char* put_short(char* out, std::uint64_t magnitude, char sign, int w) {
    const int length = decimal_length(magnitude);
    const int needed = length + (sign != 0 ? 1 : 0);
    if (w <= 0) w = needed;
    if (needed > w) return fill(out, '*', w);
    out = put_blanks(out, w - needed);
    if (sign != 0) *out++ = sign;
    put_digits(out, magnitude, length);
    return out + length;
}

char sign_of(bool negative, SignMode mode) {
    if (negative) return '-';
    return mode == SignMode::plus ? '+' : '\0';
}

// Whether Bw.0 and the like leave the field blank: gfortran's run-time looks at the low 32 bits.
bool is_blank_zero(const unsigned char* bytes, std::size_t size) {
    return std::all_of(bytes, bytes + std::min<std::size_t>(size, 4),
                       [](unsigned char byte) { return byte == 0; });
}

}  // namespace

char* put_integer(char* out, Int128 value, int, const FieldEdit& edit, const EditModes& modes) {
    if (value == 0 && edit.d == 0 && edit.edit == Edit::I) {
        return fill(out, ' ', std::max(edit.w, 1));
    }
    const bool negative = value < 0;
    const UInt128 magnitude = negative ? -static_cast<UInt128>(value) : static_cast<UInt128>(value);
    const char sign = sign_of(negative, modes.sign);
    if (magnitude >> 64 == 0 && edit.d <= 0) {
        return put_short(out, static_cast<std::uint64_t>(magnitude), sign, edit.w);
    }
    char buffer[decimal_room];
    char* const end = buffer + sizeof buffer;
    const char* digits = put_magnitude(magnitude, end);
    return put_whole(out, digits, end - digits, sign, edit.w,
                     edit.edit == Edit::I ? edit.d : absent);
}

std::size_t integer_field_bound(const FieldEdit& edit, int) {
    if (edit.w > 0) return static_cast<std::size_t>(edit.w);
    return static_cast<std::size_t>(std::max(edit.d, 0)) + decimal_room + 1;
}

char* put_bits(char* out, const void* value, std::size_t size, const FieldEdit& edit) {
    const auto* const bytes = static_cast<const unsigned char*>(value);
    const int shift = edit.edit == Edit::B ? 1 : edit.edit == Edit::O ? 3 : 4;
    char buffer[8 * 16];
    char* const end = buffer + sizeof buffer;
    char* first = end;
    // The digits from the right; those of octal lie across bytes.
    unsigned bits = 0;
    int held = 0;
    for (std::size_t i = 0; i < size; ++i) {
        bits |= static_cast<unsigned>(bytes[i]) << held;
        held += 8;
        const bool last = i + 1 == size;
        while (held >= shift || (last && held > 0)) {
            *--first = "0123456789ABCDEF"[bits & ((1U << shift) - 1)];
            bits >>= shift;
            held -= shift;
        }
    }
    while (first != end && *first == '0') ++first;
    if (edit.d == 0 && is_blank_zero(bytes, size)) return fill(out, ' ', std::max(edit.w, 1));
    if (first == end) *--first = '0';
    return put_whole(out, first, end - first, '\0', edit.w, edit.d);
}

std::size_t bits_field_bound(const FieldEdit& edit, std::size_t size) {
    if (edit.w > 0) return static_cast<std::size_t>(edit.w);
    return std::max(static_cast<std::size_t>(std::max(edit.d, 0)), 8 * size);
}

char* put_logical(char* out, bool value, const FieldEdit& edit) {
    out = fill(out, ' ', edit.w - 1);
    *out = value ? 'T' : 'F';
    return out + 1;
}

char* put_list_integer(char* out, Int128 value, int kind, const EditModes& modes) {
    const bool negative = value < 0;
    const UInt128 magnitude = negative ? -static_cast<UInt128>(value) : static_cast<UInt128>(value);
    const char sign = sign_of(negative, modes.sign);
    if (kind <= 8) {
        return put_short(
            out, static_cast<std::uint64_t>(magnitude), sign,
            std::max(list_integer_width(kind),
                     decimal_length(static_cast<std::uint64_t>(magnitude)) + (sign != 0 ? 1 : 0)));
    }
    char buffer[decimal_room];
    char* const end = buffer + sizeof buffer;
    const char* digits = put_magnitude(magnitude, end);
    const std::int64_t needed = end - digits + (sign != 0 ? 1 : 0);
    return put_whole(out, digits, end - digits, sign,
                     std::max<std::int64_t>(list_integer_width(kind), needed), absent);
}

char* put_list_logical(char* out, bool value, int) {
    *out = value ? 'T' : 'F';
    return out + 1;
}

}  // namespace tarn::fio
