// Integer items: I, B, O, Z and G editing, numbers in words, and their list-directed form.
#include "fio/integer_item.h"
#include "fio/native/english_words.h"
#include "fio/native/field.h"
#include "fio/native/list_input.h"
#include "fio/number/decimal.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t list_width = 12;
constexpr std::int32_t list_width_8 = 21;

constexpr std::int32_t bad_character = 52;
constexpr std::int32_t out_of_range = 53;

std::int64_t load_signed(const void* item, std::int32_t size) {
    return static_cast<std::int64_t>(load_integer(static_cast<const char*>(item), size));
}

// ---- Output ----

struct Digits {
    const char* begin;
    std::int64_t count;
    char sign;  // or '\0'
};

// The digits at the right end of the field, with zeros in front to make up m of them.
bool put_digits(IO_type& io, const Digits& digits, std::int64_t width, std::int32_t m) {
    const std::int64_t shown = std::max<std::int64_t>(m, digits.count);
    const std::int64_t needed = shown + (digits.sign != '\0' ? 1 : 0);
    if (width == 0) width = std::max<std::int64_t>(needed, 1);
    if (!reserve_field(io, width)) return false;
    char* const begin = io.record_cursor;
    char* const end = begin + width;
    if (needed > width) {
        put_asterisks(io, width);
    } else {
        std::memset(begin, ' ', static_cast<std::size_t>(width));
        std::memset(end - shown, '0', static_cast<std::size_t>(shown));
        std::memcpy(end - digits.count, digits.begin, static_cast<std::size_t>(digits.count));
        if (digits.sign != '\0') end[-needed] = digits.sign;
    }
    pass_output(io, width);
    return true;
}

bool write_decimal(IO_type& io, std::int64_t value, std::int64_t width, std::int32_t m) {
    char room[24];
    char* const end = room + sizeof room;
    if (value == 0 && m == 0) return put_digits(io, {end, 0, '\0'}, width, m);
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) magnitude = 0 - magnitude;
    const char* const begin =
        put_decimal_backwards(static_cast<unsigned long long>(magnitude), end);
    const char sign = value < 0 ? '-' : io.edit.sign_mode > 0 ? '+' : '\0';
    return put_digits(io, {begin, end - begin, sign}, width, m);
}

bool check_digit_count(const EngineState& edit, std::int32_t message) {
    return edit.field_width == 0 || edit.m <= edit.field_width || IO_error(message);
}

bool write_edited(IO_type& io, const void* item, std::int32_t size) {
    const EngineState& edit = io.edit;
    const std::int64_t value = load_signed(item, size);
    switch (edit.edit_code) {
        case op_I:
        case op_G:
            if (!check_digit_count(edit, 54)) return false;
            return write_decimal(io, value, edit.field_width, edit.m);
        case op_B:
        case op_O:
        case edit_Z: {
            if (!check_digit_count(edit, 55)) return false;
            const std::uint64_t all = ~std::uint64_t{0} >> (64 - 8 * size);
            return write_bits_field(io, static_cast<std::uint64_t>(value) & all);
        }
        case op_A:
            return IO_write_numeric_into_char(io, item, size);
        case op_words_capital:
        case op_words_small:
        case op_words_title:
            return IO_handle_ITx_format(io, value);
        case op_business: {
            if (size == 8) {
                const auto wide = static_cast<long double>(value);
                return BED__RX(&wide);
            }
            const auto narrow = static_cast<std::int32_t>(value);
            return BED__I(&narrow);
        }
        default:
            return Data_Mismatch_Error(edit.edit_code, "INTEGER");
    }
}

// ---- Input ----

// An integer as it is read, within the range of 64 bits.
struct Reading {
    std::uint64_t magnitude = 0;
    bool negative = false;
    bool overflow = false;

    void add_digit(char digit, std::uint64_t most) {
        const auto d = static_cast<std::uint64_t>(digit - '0');
        if (magnitude > (most - d) / 10) {
            overflow = true;
        } else {
            magnitude = magnitude * 10 + d;
        }
    }
    std::int64_t value() const {
        return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
    }
};

bool read_decimal(IO_type& io, std::int64_t width, std::int32_t size, Reading& out) {
    InputField field = input_field(io, width);
    const std::uint64_t most = size == 8 ? std::uint64_t{1} << 63 : std::uint64_t{1} << 31;
    bool any_digit = false;
    bool any_sign = false;
    bool comma = false;
    while (!field.at_end() && !comma) {
        const char c = field.take();
        if (ends_field(c)) {
            comma = true;
        } else if (is_digit(c)) {
            out.add_digit(c, most);
            any_digit = true;
        } else if (c == ' ') {
            if (any_digit && !io.blank_null) out.add_digit('0', most);
        } else if ((c == '+' || c == '-') && !any_digit && !any_sign) {
            any_sign = true;
            out.negative = c == '-';
        } else if (!IO_error(bad_character)) {
            io.record_cursor += field.next - field.begin;
            return false;
        }
    }
    if (any_sign && !any_digit && !IO_error(bad_character)) return false;
    if (!out.negative && out.magnitude == most) out.overflow = true;
    if (!pass_input(io, field, width, comma)) return false;
    return !out.overflow || IO_error(out_of_range);
}

bool store(void* item, std::int32_t size, std::int64_t value) {
    switch (size) {
        case 1: {
            if (value != static_cast<std::int8_t>(value) && !IO_error(out_of_range)) return false;
            const auto narrow = static_cast<std::int8_t>(value);
            std::memcpy(item, &narrow, sizeof narrow);
            return true;
        }
        case 2: {
            if (value != static_cast<std::int16_t>(value) && !IO_error(out_of_range)) return false;
            const auto narrow = static_cast<std::int16_t>(value);
            std::memcpy(item, &narrow, sizeof narrow);
            return true;
        }
        case 4: {
            const auto narrow = static_cast<std::int32_t>(value);
            std::memcpy(item, &narrow, sizeof narrow);
            return true;
        }
        default:
            std::memcpy(item, &value, sizeof value);
            return true;
    }
}

bool read_bits(IO_type& io, void* item, std::int32_t size) {
    unsigned __int128 bits = 0;
    if (!IO_read_bin_oct_hex(io, size, bits)) return false;
    // Little-endian: the low bytes are the item.
    std::memcpy(item, &bits, static_cast<std::size_t>(size));
    return true;
}

bool read_field(IO_type& io, void* item, std::int32_t size) {
    Reading reading;
    if (!read_decimal(io, io.edit.field_width, size, reading)) return false;
    return store(item, size, reading.value());
}

bool read_edited(IO_type& io, void* item, std::int32_t size) {
    const EngineState& edit = io.edit;
    if (edit.edit_code == op_A) return IO_read_char_into_numeric(io, item, size);
    if (edit.field_width == 0 && !IO_error(409)) return false;
    switch (edit.edit_code) {
        case op_I:
        case op_G:
            return read_field(io, item, size);
        case op_B:
        case op_O:
        case edit_Z:
            return read_bits(io, item, size);
        default:
            return Data_Mismatch_Error(edit.edit_code, "INTEGER");
    }
}

bool write_list(IO_type& io, const void* item, std::int32_t size) {
    const std::int32_t width = size == 8 ? list_width_8 : list_width;
    return reserve_list_field(io, width) &&
           write_decimal(io, load_signed(item, size), width, absent);
}

bool read_list(IO_type& io, void* item, std::int32_t size) {
    if (!IO_process_list_directed_input()) return false;
    bool done = false;
    if (!settle_list_value(io, item, done)) return false;
    if (done) return true;
    return io.edit.value_kind == ValueKind::constant ? read_bits(io, item, size)
                                                     : read_field(io, item, size);
}

}  // namespace

bool write_bits_field(IO_type& io, unsigned __int128 bits) {
    const std::int32_t code = io.edit.edit_code;
    const unsigned shift = code == op_B ? 1 : code == op_O ? 3 : 4;
    const unsigned mask = (1U << shift) - 1;
    char room[128];
    char* const end = room + sizeof room;
    char* begin = end;
    if (bits != 0 || io.edit.m != 0) {
        do {
            *--begin = "0123456789ABCDEF"[static_cast<unsigned>(bits) & mask];
            bits >>= shift;
        } while (bits != 0);
    }
    return put_digits(io, {begin, end - begin, '\0'}, io.edit.field_width, io.edit.m);
}

bool IO_handle_ITx_format(IO_type& io, std::int64_t value) {
    if (state().ansi_mode && !IO_error(145)) return false;
    char words[words_room];
    std::size_t length = english_words(value, words);
    std::int64_t width = io.edit.field_width;
    if (width == 0) width = static_cast<std::int64_t>(std::min(length, words_room));
    if (!reserve_field(io, width)) return false;
    if (length > words_room || length > static_cast<std::size_t>(width)) {
        std::memset(words, '*', words_room);
        length = std::min(words_room, static_cast<std::size_t>(width));
    }
    const std::size_t kept = io.edit.edit_code == op_words_capital ? length
                             : io.edit.edit_code == op_words_title ? 1
                                                                   : 0;
    for (std::size_t i = kept; i < length; ++i) {
        if (words[i] >= 'A' && words[i] <= 'Z') words[i] = static_cast<char>(words[i] - 'A' + 'a');
    }
    std::memset(io.record_cursor, ' ', static_cast<std::size_t>(width));
    std::memcpy(io.record_cursor, words, length);
    pass_output(io, width);
    return true;
}

bool IO_read_bin_oct_hex(IO_type& io, std::int64_t size, unsigned __int128& value) {
    const std::int64_t width = io.edit.field_width;
    const std::int32_t code = io.edit.edit_code;
    const unsigned shift = code == op_B ? 1 : code == op_O ? 3 : 4;
    InputField field = input_field(io, width);
    const unsigned __int128 most = ~static_cast<unsigned __int128>(0) >> (128 - 8 * size);
    bool comma = false;
    value = 0;
    while (!field.at_end() && !comma) {
        const char c = fold(field.take());
        if (c == ' ') continue;
        if (ends_field(c)) {
            comma = true;
            continue;
        }
        const unsigned digit = is_digit(c)            ? static_cast<unsigned>(c - '0')
                               : c >= 'A' && c <= 'F' ? static_cast<unsigned>(c - 'A') + 10
                                                      : 16;
        if (digit >> shift != 0) {
            if (IO_error(51)) continue;
            io.record_cursor += field.next - field.begin;
            return false;
        }
        if (value > (most >> shift)) {
            if (!IO_error(out_of_range)) return false;
            value = 0;
        }
        value = value << shift | digit;
    }
    return pass_input(io, field, width, comma);
}

bool I_WSF_main(const void* item, std::int64_t count) {
    IO_type& io = current();
    return transfer_elements(io, static_cast<const char*>(item), count, write_list, write_edited);
}

bool I_RSF_main(void* item, std::int64_t count) {
    IO_type& io = current();
    return transfer_elements(io, static_cast<char*>(item), count, read_list, read_edited);
}

}  // namespace tarn::fio::native
