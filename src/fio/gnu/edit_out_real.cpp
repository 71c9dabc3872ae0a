#include <algorithm>
#include <cstring>
#include <string_view>

#include "fio/gnu/edit_out_figures.h"
#include "fio/gnu/edit_out_general.h"
#include "fio/gnu/edit_out_hexadecimal.h"
#include "fio/gnu/edit_out_quick.h"
#include "fio/gnu/options.h"

namespace tarn::fio {

namespace {

char* put_blanks(char* out, std::int64_t count) {
    if (count <= 0) return out;
    std::memset(out, ' ', static_cast<std::size_t>(count));
    return out + count;
}

char* put_stars(char* out, std::int64_t count) {
    if (count <= 0) return out;
    std::memset(out, '*', static_cast<std::size_t>(count));
    return out + count;
}

// The sign that stands before a number, or 0.
char sign_of(bool negative, SignMode mode) {
    if (negative) return '-';
    return mode == SignMode::plus ? '+' : '\0';
}

char mark_of(const EditModes& modes) {
    return modes.decimal == DecimalMark::comma ? ',' : '.';
}

// The field that a number is put into.
struct Field {
    std::int64_t w = 0;  // 0: as wide as the number needs
    std::int32_t e = absent;
    std::int32_t trailing_blanks = 0;
    // As short as can be: no blanks, a zero exponent left out, but the zero before the point shown.
    bool minimal = false;
    std::int32_t usual = 0;  // minimal: the width up to which the zero before the point is shown
    bool general = false;    // G asked for it
};

// The exponent of a field: letter or not, sign, digits.
struct ExponentShape {
    bool letter = true;
    std::int32_t digits = 0;
    std::int32_t width = 0;  // -1: the exponent doesn't fit
};

int digits_of_exponent(std::int32_t exponent) {
    const std::int32_t magnitude = exponent < 0 ? -exponent : exponent;
    return magnitude < 10      ? 1
           : magnitude < 100   ? 2
           : magnitude < 1000  ? 3
           : magnitude < 10000 ? 4
                               : 5;
}

ExponentShape exponent_shape(const Figures& figures, const Field& field) {
    ExponentShape shape;
    if (figures.letter == 0 || (field.minimal && figures.exponent == 0)) return shape;
    shape.digits = digits_of_exponent(figures.exponent);
    if (field.e > 0) {
        if (shape.digits > field.e) {
            shape.width = -1;
            return shape;
        }
        shape.digits = field.e;
    } else if (field.e < 0 && !field.minimal) {
        if (shape.digits > 3) {
            shape.width = -1;
            return shape;
        }
        shape.letter = shape.digits < 3;
        shape.digits = std::max(shape.digits, 2);
    }
    shape.width = shape.digits + (shape.letter ? 2 : 1);
    return shape;
}

char* put_exponent(char* out, const Figures& figures, const ExponentShape& shape) {
    if (shape.width == 0) return out;
    if (shape.letter) *out++ = figures.letter;
    *out++ = figures.exponent < 0 ? '-' : '+';
    char* const end = out + shape.digits;
    std::int32_t magnitude = figures.exponent < 0 ? -figures.exponent : figures.exponent;
    for (char* at = end; at != out; magnitude /= 10)
        *--at = static_cast<char>('0' + magnitude % 10);
    return end;
}

// `count` digits from `first` on, zeros where they end.
char* put_figures(char* out, const Figures& figures, std::int64_t first, std::int64_t count) {
    const auto made = static_cast<std::int64_t>(figures.made);
    const std::int64_t there = std::clamp(made - first, std::int64_t{0}, count);
    if (there != 0) std::memcpy(out, figures.digits + first, static_cast<std::size_t>(there));
    out += there;
    if (there != count) std::memset(out, '0', static_cast<std::size_t>(count - there));
    return out + (count - there);
}

// Whether a field that is as wide as its number needs has a zero before the point.
bool shows_leading_zero(const Figures& figures, const Field& field, std::int64_t needed,
                        char sign) {
    if (field.minimal) return needed < field.usual;
    // A point alone doesn't make a number; with a sign it only does so for a zero.
    return figures.zeros + figures.after == 0 && (sign == 0 || !figures.cut_unseen);
}

bool shows_zero(const Figures& figures) {
    const auto shown = static_cast<std::size_t>(figures.before + figures.after);
    const std::string_view digits(figures.digits, std::min(figures.made, shown));
    return digits.find_first_not_of('0') == digits.npos;
}

char* put_number(char* out, const Figures& figures, const Field& field, bool negative,
                 const EditModes& modes) {
    if (negative && !gnu_options().sign_zero && shows_zero(figures)) negative = false;
    const char sign = sign_of(negative, modes.sign);
    const ExponentShape exponent = exponent_shape(figures, field);
    const std::int64_t needed =
        figures.before + figures.zeros + figures.after + exponent.width + 1 + (sign != 0 ? 1 : 0);
    std::int64_t w = field.w;
    if (w <= 0) {
        w = needed +
            (figures.before == 0 && shows_leading_zero(figures, field, needed, sign) ? 1 : 0);
    }
    std::int64_t blanks = w - needed;
    if (blanks < 0 || exponent.width < 0 || w == 1 || (w == 2 && sign != 0)) {
        return put_stars(out, w + field.trailing_blanks);
    }
    bool leading_zero = false;
    if (figures.before == 0 && blanks > 0) {
        leading_zero = true;
        --blanks;
    }
    if (!field.minimal) out = put_blanks(out, blanks);
    if (sign != 0) *out++ = sign;
    if (leading_zero) *out++ = '0';
    out = put_figures(out, figures, 0, figures.before);
    *out++ = mark_of(modes);
    std::memset(out, '0', static_cast<std::size_t>(figures.zeros));
    out += figures.zeros;
    out = put_figures(out, figures, figures.before, figures.after);
    out = put_exponent(out, figures, exponent);
    return put_blanks(out, field.trailing_blanks);
}

char* put_text(char* out, std::string_view text) {
    for (const char character : text) *out++ = character;
    return out;
}

// Infinity and not-a-number.
char* put_special(char* out, const BinaryReal& value, std::int64_t w, const EditModes& modes) {
    const char sign = sign_of(value.negative, modes.sign);
    if (value.kind == RealClass::nan) {
        if (w == 0) w = 3;
        if (w < 3) return put_stars(out, w);
        out = put_blanks(out, w - 3);
        return put_text(out, "NaN");
    }
    if (w == 0) w = sign != 0 ? 4 : 3;
    if (w < 3 || (w == 3 && value.negative)) return put_stars(out, w);
    const std::int64_t signs = sign != 0 && w > 3 ? 1 : 0;
    const std::string_view name = w - signs >= 8 ? "Infinity" : "Inf";
    out = put_blanks(out, w - signs - static_cast<std::int64_t>(name.size()));
    if (signs != 0) *out++ = sign;
    return put_text(out, name);
}

// The digits before the point of a G field, or -1 where it shows the exponent.
template <typename Real>
std::int64_t general_digits(const void* item, const BinaryReal& value, std::int64_t d,
                            Rounding round) {
    if (d == 0) return -1;
    if (value.significand == 0) return 1;
    Real r = 0.5;
    if (round == Rounding::zero) r = 0;
    if (round == Rounding::up) r = value.negative ? 0 : 1;
    if (round == Rounding::down) r = value.negative ? 1 : 0;
    const Real magnitude = load_magnitude<Real>(item);
    if (d > General<Real>::most) return General<Real>::digits_before_slowly(magnitude, d, r);
    const int digits = static_cast<int>(d);
    const Real scale = 1 - r / General<Real>::tens[static_cast<std::size_t>(digits)];
    return General<Real>::digits_before(magnitude, decimal_exponent(value) + 1, digits, r, scale);
}

std::int64_t general_digits(const void* item, int kind, const BinaryReal& value, std::int64_t d,
                            Rounding round) {
    switch (kind) {
        case 4:
            return general_digits<float>(item, value, d, round);
        case 8:
            return general_digits<double>(item, value, d, round);
        case 10:
            return general_digits<long double>(item, value, d, round);
        default:
            return general_digits<__float128>(item, value, d, round);
    }
}

bool scale_fits(std::int64_t d, std::int64_t scale) {
    return scale > -d && scale < d + 2;
}

// The descriptor with what the kind gives where it leaves d and e open, and the field for it.
struct Request {
    Edit edit = Edit::G;
    std::int64_t d = 0;
    std::int64_t scale = 0;
    Field field;
};

// In a field of six columns gfortran's run-time reads back no more than three digits of the
// exponent, and shows those where asterisks belong.
void cut_exponent(Figures& figures, Edit edit, const Field& field) {
    if (field.w != 6 || field.general) return;
    const std::int32_t place = static_cast<std::int32_t>(figures.before) - 1;
    const std::int32_t leading = figures.exponent + place;
    if (leading < 1000 && leading > -1000) return;
    if (edit == Edit::EN) {
        figures.before = above_three(leading / 10) + 1;
        figures.exponent = leading / 10 - static_cast<std::int32_t>(figures.before) + 1;
    } else {
        figures.exponent = leading / 10 - place;
    }
}

char* put_finite(char* out, const BinaryReal& value, const void* item, int kind,
                 const Request& request, const EditModes& modes) {
    char buffer[figures_room];
    Figures figures;
    if (request.edit == Edit::F) {
        figures = fixed_figures(value, kind, request.d, request.scale, modes.round, buffer);
    } else {
        if ((request.edit == Edit::E || request.edit == Edit::D) &&
            !scale_fits(request.d, request.scale)) {
            return nullptr;
        }
        figures = exponent_figures(value, item, kind, request.edit, request.d, request.scale,
                                   modes.round, buffer);
        cut_exponent(figures, request.edit, request.field);
    }
    return put_number(out, figures, request.field, value.negative, modes);
}

// `minimal`: in as few columns as it takes. `chosen`: the number of digits was given by the
// program, and not by the kind.
char* put_edited(char* out, const void* item, int kind, const FieldEdit& edit, bool minimal,
                 bool chosen, const EditModes& modes) {
    const BinaryReal value = take_apart(item, kind);
    const std::int32_t w = std::max(edit.w, 0);
    if (value.kind != RealClass::finite) return put_special(out, value, minimal ? 0 : w, modes);
    if (edit.edit == Edit::EX) return put_hexadecimal(out, value, edit, modes);
    Request request{edit.edit, edit.d, modes.scale, {w, edit.e, 0, minimal, usual_width(kind)}};
    if (minimal && edit.d <= 0) {
        request.d = default_digits(kind);
        chosen = false;
    }
    if (request.d < 0) request.d = 0;
    if (edit.edit == Edit::G) {
        request.field.general = true;
        const std::int64_t before = general_digits(item, kind, value, request.d, modes.round);
        if (before >= 0) {
            std::int32_t tail = edit.e <= 0 ? 4 : edit.e + 2;
            if (tail >= w) tail = w - 1;
            if (minimal) tail = 0;
            request.edit = Edit::F;
            request.d -= before;
            request.scale = 0;
            request.field.w = minimal ? 0 : w - tail;
            request.field.trailing_blanks = tail;
        } else {
            request.edit = Edit::E;
            if (!chosen && modes.scale > 0) --request.d;
        }
    }
    return put_finite(out, value, item, kind, request, modes);
}

// The edit descriptor of a REAL in list-directed output, under a scale factor of 1.
FieldEdit list_edit(int kind) {
    switch (kind) {
        case 4:
            return {Edit::G, usual_width(kind), default_digits(kind), 2};
        case 8:
            return {Edit::G, usual_width(kind), default_digits(kind), 3};
        default:
            return {Edit::G, usual_width(kind), default_digits(kind), 4};
    }
}

}  // namespace

char* put_list_real(char* out, const void* value, int kind, const EditModes& modes) {
    if (char* end = quick_put_list_real(out, value, kind, modes)) return end;
    EditModes list_modes = modes;
    list_modes.scale = 1;
    return put_edited(out, value, kind, list_edit(kind), false, false, list_modes);
}

char* put_list_complex(char* out, const void* value, int kind, const EditModes& modes) {
    EditModes list_modes = modes;
    list_modes.scale = 1;
    const FieldEdit edit = list_edit(kind);
    const std::size_t size = kind == 10 ? 16 : static_cast<std::size_t>(kind);
    // The parts stand without blanks, the whole at the right end of the width of two of them.
    char text[list_item_bound];
    char* end = text;
    *end++ = '(';
    end = put_edited(end, value, kind, edit, true, true, list_modes);
    *end++ = modes.decimal == DecimalMark::comma ? ';' : ',';
    end =
        put_edited(end, static_cast<const char*>(value) + size, kind, edit, true, true, list_modes);
    *end++ = ')';
    out = put_blanks(out, 2 * edit.w + 3 - (end - text));
    const auto length = static_cast<std::size_t>(end - text);
    std::memcpy(out, text, length);
    return out + length;
}

std::size_t real_field_bound(const FieldEdit& edit, const void* value, int kind,
                             const EditModes& modes) {
    if (edit.w > 0) return static_cast<std::size_t>(edit.w);
    if (edit.edit == Edit::EX) return hexadecimal_field_bound(edit);
    const auto d = static_cast<std::int64_t>(std::max(edit.d, default_digits(kind)));
    const auto e = static_cast<std::int64_t>(std::max(edit.e, 5));
    // Sign, leading zero, point, exponent letter and sign.
    std::int64_t bound = d + e + 8;
    if (edit.edit == Edit::F) {
        const BinaryReal real = take_apart(value, kind);
        if (real.kind == RealClass::finite && real.significand != 0) {
            bound +=
                std::max<std::int64_t>(0, std::int64_t{decimal_exponent(real)} + 2 + modes.scale);
        }
    } else {
        bound += std::abs(std::int64_t{modes.scale});
    }
    return static_cast<std::size_t>(bound);
}

char* put_real(char* out, const void* value, int kind, const FieldEdit& edit,
               const EditModes& modes) {
    if (char* end = quick_put_real(out, value, kind, edit, modes)) return end;
    const bool minimal = edit.w <= 0 && edit.edit != Edit::F;
    return put_edited(out, value, kind, edit, minimal, true, modes);
}

}  // namespace tarn::fio
