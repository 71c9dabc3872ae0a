#include "fio/gnu/edit_out_quick.h"

#include <array>
#include <cstring>

#include "fio/gnu/edit_out_blanks.h"
#include "fio/gnu/edit_out_figures.h"
#include "fio/gnu/edit_out_general.h"
#include "fio/gnu/options.h"
#include "fio/number/quick_decimal.h"

namespace tarn::fio {

namespace {

// The field that the number goes into; see Field in edit_out_real.cpp.
struct QuickField {
    int w = 0;
    int e = absent;
    int tail = 0;  // blanks behind the number
    bool minimal = false;
    int usual = 0;
    char mark = '.';
    char sign = 0;
};

struct QuickReal {
    bool negative = false;
    bool zero = false;
    NormalReal normal;
};

// Takes a finite value apart.
template <typename Real>
bool load(const void* item, QuickReal& real) {
    constexpr bool is_double = sizeof(Real) == 8;
    using Bits = std::conditional_t<is_double, std::uint64_t, std::uint32_t>;
    constexpr int fraction_bits = is_double ? 52 : 23;
    constexpr int top_exponent = is_double ? 0x7FF : 0xFF;
    constexpr int bias = top_exponent / 2 + fraction_bits;
    Bits bits;
    std::memcpy(&bits, item, sizeof bits);
    real.negative = bits >> (8 * sizeof bits - 1) != 0;
    const int exponent = static_cast<int>(bits >> fraction_bits) & top_exponent;
    const std::uint64_t fraction = bits & ((Bits{1} << fraction_bits) - 1);
    if (exponent == top_exponent) return false;
    if (exponent != 0) {
        constexpr int up = 63 - fraction_bits;
        real.normal = {(fraction | std::uint64_t{1} << fraction_bits) << up, exponent - bias - up};
    } else if (fraction == 0) {
        real.zero = true;
    } else {
        real.normal = normalized(fraction, 1 - bias);
    }
    return true;
}

// Division by a power of ten: a multiplication by 2^(64 + shift) / 10^k, rounded up, which is right
// for dividends below 2^63.
struct Divisor {
    std::uint64_t factor = 0;
    int shift = 0;
};

constexpr std::array<Divisor, 19> divisors = [] {
    std::array<Divisor, 19> table{};
    for (std::size_t k = 1; k < table.size(); ++k) {
        const std::uint64_t power = powers_of_ten[k];
        const int shift = 63 - __builtin_clzll(power);
        const auto dividend = static_cast<unsigned __int128>(1) << (64 + shift);
        table[k] = {static_cast<std::uint64_t>(dividend / power) + 1, shift};
    }
    return table;
}();

inline std::uint64_t divide(std::uint64_t dividend, int k) {
    if (k == 0) return dividend;
    const Divisor& divisor = divisors[static_cast<std::size_t>(k)];
    const auto product = static_cast<unsigned __int128>(dividend) * divisor.factor;
    return static_cast<std::uint64_t>(product >> 64) >> divisor.shift;
}

char* put_stars(char* out, int count) {
    std::memset(out, '*', static_cast<std::size_t>(count));
    return out + count;
}

// A field with a number of `needed` columns, sign included; `body` writes its characters from the
// first digit or the point on. `before`: digits stand before the point, `bare`: none stand behind.
template <typename Body>
[[gnu::always_inline]] inline char* put_field(char* out, const QuickField& field, int needed,
                                              bool before, bool bare, Body body) {
    int w = field.w;
    if (w <= 0) {
        const bool zero = !before && (field.minimal ? needed < field.usual : bare);
        w = needed + (zero ? 1 : 0);
    }
    int blanks = w - needed;
    if (blanks < 0 || w == 1 || (w == 2 && field.sign != 0)) return put_stars(out, w + field.tail);
    const bool leading_zero = !before && blanks > 0;
    blanks -= leading_zero ? 1 : 0;
    out = put_blanks(out, blanks);
    *out = field.sign;
    out += field.sign != 0 ? 1 : 0;
    *out = '0';
    out += leading_zero ? 1 : 0;
    out = body(out);
    return put_blanks(out, field.tail);
}

// digits x 10^-d, with d decimals.
[[gnu::always_inline]] inline char* put_fixed(char* out, std::uint64_t digits, int d,
                                              const QuickField& field) {
    const std::uint64_t whole = divide(digits, d);
    const std::uint64_t fraction = digits - whole * powers_of_ten[static_cast<std::size_t>(d)];
    const int before = whole == 0 ? 0 : decimal_length(whole);
    const int needed = before + 1 + d + (field.sign != 0 ? 1 : 0);
    return put_field(out, field, needed, before != 0, d == 0, [&](char* at) {
        if (before != 0) put_digits(at, whole, before);
        at += before;
        *at++ = field.mark;
        if (d != 0) put_digits(at, fraction, d);
        return at + d;
    });
}

struct QuickExponent {
    int digits = 0;
    int width = 0;
    bool letter = true;
};

// False when the exponent doesn't fit.
bool shape_exponent(int exponent, const QuickField& field, QuickExponent& shape) {
    if (field.minimal && exponent == 0) return true;
    const int magnitude = exponent < 0 ? -exponent : exponent;
    int digits = magnitude < 10 ? 1 : magnitude < 100 ? 2 : 3;
    if (field.e > 0) {
        if (digits > field.e) return false;
        digits = field.e;
    } else if (field.e < 0 && !field.minimal) {
        shape.letter = digits < 3;
        digits = digits < 3 ? 2 : 3;
    }
    shape.digits = digits;
    shape.width = digits + (shape.letter ? 2 : 1);
    return true;
}

char* put_exponent(char* out, int exponent, char letter, const QuickExponent& shape) {
    if (shape.width == 0) return out;
    *out = letter;
    out += shape.letter ? 1 : 0;
    *out++ = exponent < 0 ? '-' : '+';
    auto magnitude = static_cast<std::uint32_t>(exponent < 0 ? -exponent : exponent);
    if (shape.digits == 2) {
        put_pair(out, magnitude);
        return out + 2;
    }
    for (int i = shape.digits; i-- != 0; magnitude /= 10) {
        out[i] = static_cast<char>('0' + magnitude % 10);
    }
    return out + shape.digits;
}

// `count` digits with the exponent, the point behind the first (`scale` 1) or before it (0).
// False when the general road has to decide.
[[gnu::always_inline]] inline char* put_exponential(char* out, const QuickReal& real, int count,
                                                    int scale, char letter,
                                                    const QuickField& field) {
    if (count < 1 || count > most_quick_digits) return nullptr;
    QuickDigits number{0, scale};
    if (!real.zero && !quick_significant(real.normal, count, number)) return nullptr;
    const int exponent = number.point - scale;
    QuickExponent shape;
    if (!shape_exponent(exponent, field, shape)) return nullptr;
    const int needed = count + 1 + shape.width + (field.sign != 0 ? 1 : 0);
    return put_field(out, field, needed, scale != 0, false, [&](char* at) {
        put_digits(at + 1, number.digits, count);
        if (scale != 0) {
            at[0] = at[1];
            ++at;
        }
        *at = field.mark;
        return put_exponent(at + 1 + count - scale, exponent, letter, shape);
    });
}

// What is asked for, with the defaults of the kind filled in. `chosen`: d was given by the
// program.
struct QuickRequest {
    Edit edit = Edit::G;
    int d = 0;
    int scale = 0;
    bool chosen = true;
};

[[gnu::always_inline]] inline char* put(char* out, const void* item, int kind, QuickRequest request,
                                        QuickField field, const EditModes& modes) {
    QuickReal real;
    if (!(kind == 8 ? load<double>(item, real) : load<float>(item, real))) return nullptr;
    // A zero's sign may be unwanted, and what will be shown isn't known yet.
    if (real.negative && !gnu_options().sign_zero) return nullptr;
    field.mark = modes.decimal == DecimalMark::comma ? ',' : '.';
    field.sign = real.negative ? '-' : modes.sign == SignMode::plus ? '+' : '\0';
    int decimals = request.d;
    bool fixed = request.edit == Edit::F;
    if (request.edit == Edit::G) {
        const int most = kind == 8 ? most_quick_digits : General<float>::most;
        if (decimals < 1 || decimals > most) return nullptr;
        int before = 1;
        if (!real.zero) {
            const int point = quick_point(real.normal);
            before =
                kind == 8
                    ? General<double>::digits_before(load_magnitude<double>(item), point, decimals)
                    : General<float>::digits_before(load_magnitude<float>(item), point, decimals);
        }
        fixed = before >= 0;
        if (fixed) {
            decimals -= before;
            request.scale = 0;
            if (!field.minimal) {
                field.tail = field.e <= 0 ? 4 : field.e + 2;
                if (field.tail >= field.w) field.tail = field.w - 1;
                field.w -= field.tail;
            }
        } else if (!request.chosen) {
            decimals -= request.scale > 0 ? 1 : 0;
        }
    } else if (request.edit == Edit::ES) {
        request.scale = 1;
    }
    if (fixed) {
        if (request.scale != 0 || decimals > most_quick_digits) return nullptr;
        std::uint64_t digits = 0;
        if (!real.zero && !quick_fraction(real.normal, decimals, digits)) return nullptr;
        return put_fixed(out, digits, decimals, field);
    }
    if (request.scale != 0 && request.scale != 1) return nullptr;
    return put_exponential(out, real, decimals + request.scale, request.scale,
                           request.edit == Edit::D ? 'D' : 'E', field);
}

bool quick(int kind, const EditModes& modes) {
    return kind <= 8 && !rounds_text(modes.round);
}

}  // namespace

char* quick_put_real(char* out, const void* value, int kind, const FieldEdit& edit,
                     const EditModes& modes) {
    if (!quick(kind, modes) || edit.edit == Edit::EN || edit.edit == Edit::EX) return nullptr;
    QuickField field;
    field.w = edit.w > 0 ? edit.w : 0;
    field.e = edit.e;
    QuickRequest request{edit.edit, edit.d > 0 ? edit.d : 0, modes.scale, true};
    if (field.w == 0 && edit.edit != Edit::F) {
        field.minimal = true;
        field.usual = usual_width(kind);
        if (request.d == 0) {
            request.d = default_digits(kind);
            request.chosen = false;
        }
    }
    return put(out, value, kind, request, field, modes);
}

char* quick_put_list_real(char* out, const void* value, int kind, const EditModes& modes) {
    if (!quick(kind, modes)) return nullptr;
    QuickField field;
    field.w = usual_width(kind);
    field.e = kind == 8 ? 3 : 2;
    return put(out, value, kind, {Edit::G, default_digits(kind), 1, false}, field, modes);
}

}  // namespace tarn::fio
