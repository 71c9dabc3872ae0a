#include "fio/gnu/edit_in.h"

#include "fio/gnu/edit_in_quick.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_character{52, iostat_read_value};
constexpr Fault blank_logical{70, iostat_read_value};
constexpr Fault out_of_range{53, iostat_read_overflow};

FieldResult fault_at(Fault fault, const char* field, const char* at) {
    return {fault, static_cast<std::size_t>(at - field)};
}

// The value of a digit of any base up to 16; 16 and above: no digit.
constexpr unsigned digit_value(char c) {
    if (is_decimal_digit(c)) return static_cast<unsigned>(c - '0');
    const char letter = lower_case(c);
    return letter >= 'a' && letter <= 'f' ? static_cast<unsigned>(letter - 'a' + 10) : 16;
}

struct Magnitude {
    UInt128 value = 0;
    bool negative = false;
    FieldResult result;
};

// The long way for an integer of any base: blanks may stand anywhere, and are zeros behind the
// sign under BZ. `limit` is the largest magnitude; a negative one may reach `negative_limit`.
Magnitude scan_integer(const char* field, const char* end, unsigned base, UInt128 limit,
                       UInt128 negative_limit, bool blank_is_zero) {
    Magnitude found;
    const char* at = skip_blanks(field, end);
    if (at == end) return found;
    if (*at == '-' || *at == '+') {
        found.negative = *at++ == '-';
        if (at == end) {
            found.result = fault_at(bad_character, field, at - 1);
            return found;
        }
        if (found.negative) limit = negative_limit;
    }
    for (; at < end; ++at) {
        unsigned digit = 0;
        if (*at == ' ') {
            if (!blank_is_zero) continue;
        } else {
            digit = digit_value(*at);
            if (digit >= base) {
                found.result = fault_at(bad_character, field, at);
                return found;
            }
        }
        if (found.value > (limit - digit) / base) {
            found.result = fault_at(out_of_range, field, at);
            return found;
        }
        found.value = found.value * base + digit;
    }
    return found;
}

}  // namespace

std::size_t field_end(const char* begin, std::size_t width, const EditModes& modes) {
    if (modes.decimal == DecimalMark::comma) return width;
    constexpr std::uint64_t ones = 0x0101010101010101U;
    std::size_t at = 0;
    for (; width - at >= 8; at += 8) {
        const std::uint64_t others = load_eight(begin + at) ^ (ones * ',');
        const std::uint64_t commas = (others - ones) & ~others & (ones * 0x80);
        if (commas != 0) return at + static_cast<std::size_t>(std::countr_zero(commas)) / 8;
    }
    while (at < width && begin[at] != ',') ++at;
    return at;
}

FieldResult get_integer(const char* field, std::size_t width, void* item, int kind,
                        const EditModes& modes) {
    const char* const end = field + width;
    const bool narrow = width != 0 && width <= NumberWindow::widest;
    if (narrow && quick_get_integer(field, static_cast<int>(width), end, item, kind, modes)) {
        return {};
    }
    const UInt128 greatest = greatest_integer(kind);
    const Magnitude found =
        scan_integer(field, end, 10, greatest, greatest + 1, modes.blank == Blank::zero);
    if (found.result.fault.number != 0) return found.result;
    store_integer(item, kind, found.negative ? -found.value : found.value);
    return {};
}

FieldResult get_bits(const char* field, std::size_t width, int base, void* item, std::size_t size,
                     const EditModes& modes) {
    const UInt128 most = size >= 16 ? ~UInt128{0} : (UInt128{1} << (8 * size)) - 1;
    const Magnitude found = scan_integer(field, field + width, static_cast<unsigned>(base), most,
                                         most, modes.blank == Blank::zero);
    if (found.result.fault.number != 0) return found.result;
    const UInt128 value = found.negative ? -found.value : found.value;
    if (size <= 16) {
        std::memcpy(item, &value, size);
    } else {
        std::memcpy(item, &value, 16);
        std::memset(static_cast<char*>(item) + 16, 0, size - 16);
    }
    return {};
}

FieldResult get_logical(const char* field, std::size_t width, void* item, int kind) {
    const char* const end = field + width;
    const char* at = skip_blanks(field, end);
    if (at == end) return {blank_logical, 0};
    if (*at == '.') ++at;
    const char letter = at < end ? lower_case(*at) : '\0';
    if (letter != 't' && letter != 'f')
        return fault_at(bad_character, field, at < end ? at : at - 1);
    store_integer(item, kind, letter == 't' ? 1 : 0);
    return {};
}

}  // namespace tarn::fio
