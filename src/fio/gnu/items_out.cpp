#include <algorithm>

#include "fio/gnu/edit_out.h"
#include "fio/gnu/format_run.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/items.h"
#include "fio/gnu/records.h"
#include "fio/gnu/utf8.h"
#include "fio/number/integer_digits.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_scale_factor{61, iostat_format};

FieldEdit field_of(const FormatNode& node) {
    return {node.edit, node.w, node.d, node.e};
}

// A value that fits a word, in a field of `width` columns at the end of what the record holds so
// far: a block of blanks, then the digits. False: the general road has to do it.
bool put_quick_integer(Statement& s, std::int64_t value, std::int32_t width) {
    constexpr std::int32_t widest = 32;
    if (width > widest || s.limit - s.cursor < widest || s.cursor < s.high) return false;
    const bool negative = value < 0;
    const std::uint64_t magnitude =
        negative ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    char* const end = s.cursor + width;
    int length = 0;
    if (magnitude < 100'000'000 && width >= 8) {
        // All eight digits at once; blanks take the place of the leading zeros.
        const std::uint64_t digits = eight_digits(static_cast<std::uint32_t>(magnitude));
        const int zeros = __builtin_ctzll(digits | std::uint64_t{1} << 56) / 8;
        length = 8 - zeros;
        if (length + (negative ? 1 : 0) > width) return false;
        const std::uint64_t leading = (std::uint64_t{1} << (8 * zeros)) - 1;
        const std::uint64_t text =
            digits + 0x3030'3030'3030'3030 - (leading & 0x1010'1010'1010'1010);
        std::memset(s.cursor, ' ', widest);
        std::memcpy(end - 8, &text, 8);
    } else {
        length = decimal_length(magnitude);
        if (length + (negative ? 1 : 0) > width) return false;
        std::memset(s.cursor, ' ', widest);
        put_digits(end - length, magnitude, length);
    }
    if (negative) end[-length - 1] = '-';
    s.cursor = s.high = end;
    return true;
}

bool put_quick_integer(Statement& s, const FormatNode& node, const char* item, int kind) {
    if (kind > 8 || node.w <= 0 || node.d >= 0 || s.modes.sign == SignMode::plus) return false;
    return put_quick_integer(s, static_cast<std::int64_t>(load_integer(item, kind)), node.w);
}

// A field as wide as its value asks. Where the room at hand might not hold the widest that it could
// become, it is made aside first: only what it really takes has to fit the record.
template <class Put>
void write_minimal(Statement& s, std::size_t bound, Put put) {
    const bool fits = s.limit - s.cursor >= static_cast<std::ptrdiff_t>(bound);
    char* field = fits ? s.cursor : scratch_room(s, bound);
    if (field == nullptr) return;
    char* end = put(field);
    if (end == nullptr) return fail(s, bad_scale_factor);
    if (fits) return filled(s, end);
    const auto length = static_cast<std::size_t>(end - field);
    char* at = room(s, length);
    if (at == nullptr) return;
    if (at != field) std::memcpy(at, field, length);
    filled(s, at + length);
}

// A field of the descriptor's width, or of minimal width.
template <class Put, class Bound>
void write_field(Statement& s, const FormatNode& node, Bound bound, Put put) {
    if (node.w <= 0) return write_minimal(s, bound(), put);
    char* at = room(s, static_cast<std::size_t>(node.w));
    if (at == nullptr) return;
    char* end = put(at);
    if (end == nullptr) return fail(s, bad_scale_factor);
    filled(s, end);
}

void write_integer(Statement& s, const FormatNode& node, const char* item, int kind) {
    if (put_quick_integer(s, node, item, kind)) return;
    const FieldEdit edit = field_of(node);
    write_field(
        s, node, [&] { return integer_field_bound(edit, kind); },
        [&](char* out) { return put_integer(out, load_integer(item, kind), kind, edit, s.modes); });
}

void write_bits(Statement& s, const FormatNode& node, const char* item, std::size_t size) {
    const FieldEdit edit = field_of(node);
    write_field(
        s, node, [&] { return bits_field_bound(edit, size); },
        [&](char* out) { return put_bits(out, item, size, edit); });
}

void write_real(Statement& s, const FormatNode& node, const char* item, int kind) {
    const FieldEdit edit = field_of(node);
    write_field(
        s, node, [&] { return real_field_bound(edit, item, kind, s.modes); },
        [&](char* out) { return put_real(out, item, kind, edit, s.modes); });
}

void write_logical(Statement& s, const FormatNode& node, const char* item, int kind) {
    FieldEdit edit = field_of(node);
    if (edit.w <= 0) edit.w = 1;
    char* at = room(s, edit.w);
    if (at != nullptr) filled(s, put_logical(at, load_integer(item, kind) != 0, edit));
}

// Characters of 4 bytes on a record of bytes, as gfortran's programs know it: a narrow field
// doesn't cut the value, and on a UTF-8 file the blanks of a wide one replace as many of its first
// characters.
void write_wide_character(Statement& s, std::size_t width, const char* item, std::size_t length) {
    const std::size_t blanks = width > length ? width - length : 0;
    const std::size_t lost = s.utf8 ? std::min(blanks, length) : 0;
    if (blanks > 0) put_blanks(s, blanks);
    put_characters(s, item + 4 * lost, 4, length - lost);
}

// A: the value right-justified in w characters, or its leftmost w. An item of another type goes
// out byte by byte as it lies in memory.
void write_character(Statement& s, const FormatNode& node, const char* item, int kind,
                     std::size_t length) {
    const std::size_t width = node.w < 0 ? length : static_cast<std::size_t>(node.w);
    if (kind == 4 && !s.wide) return write_wide_character(s, width, item, length);
    if (width > length) put_blanks(s, width - length);
    put_characters(s, item, kind, std::min(width, length));
}

}  // namespace

void write_item(Statement& s, ItemType type, const char* item, int kind, std::size_t size) {
    const FormatNode* node = next_data_edit(s);
    if (node == nullptr) return;
    ++s.items;
    switch (node->edit) {
        case Edit::I:
            if (type != ItemType::integer) return fail_mismatch(s, *node, type);
            return write_integer(s, *node, item, kind);
        case Edit::B:
        case Edit::O:
        case Edit::Z:
            return write_bits(s, *node, item, static_cast<std::size_t>(kind));
        case Edit::L:
            return write_logical(s, *node, item, kind);
        case Edit::A:
            if (type == ItemType::character) return write_character(s, *node, item, kind, size);
            return write_character(s, *node, item, 1, size);
        case Edit::G:
            if (type == ItemType::integer) return write_integer(s, *node, item, kind);
            if (type == ItemType::logical) return write_logical(s, *node, item, kind);
            if (type == ItemType::character) {
                FormatNode text = *node;
                if (text.w == 0) text.w = absent;
                return write_character(s, text, item, kind, size);
            }
            return write_real(s, *node, item, kind);
        case Edit::DT:
            return fail_mismatch(s, *node, type);
        default:
            if (type != ItemType::real) return fail_mismatch(s, *node, type);
            return write_real(s, *node, item, kind);
    }
}

namespace {

std::size_t utf8_length(const char* text, std::size_t length) {
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < length; ++i) bytes += utf8_size(get_wide(text + 4 * i));
    return bytes;
}

// Characters of 4 bytes on a record of bytes: UTF-8 where the unit says so, else what fits a byte.
void put_wide_characters(Statement& s, const char* text, std::size_t length) {
    if (!s.utf8) {
        char* at = room(s, length);
        if (at == nullptr) return;
        for (std::size_t i = 0; i < length; ++i) {
            const char32_t code = get_wide(text + 4 * i);
            at[i] = code > 255 ? '?' : static_cast<char>(code);
        }
        filled(s, at + length);
        return;
    }
    char* at = room(s, utf8_length(text, length));
    if (at == nullptr) return;
    for (std::size_t i = 0; i < length; ++i) at += put_utf8(get_wide(text + 4 * i), at);
    filled(s, at);
}

}  // namespace

void put_blanks(Statement& s, std::size_t count) {
    char* at = room(s, count);
    if (at == nullptr) return;
    std::memset(at, ' ', count);
    filled(s, at + count);
}

void put_characters(Statement& s, const char* text, int kind, std::size_t length) {
    if (length == 0) return;
    if (kind == 4 && s.wide) {
        if (room(s, length) == nullptr) return;
        std::memcpy(s.cursor, text, 4 * length);
        s.cursor += 4 * length;
        if (s.cursor > s.high) s.high = s.cursor;
        return;
    }
    if (kind == 4) return put_wide_characters(s, text, length);
    char* at = room(s, length);
    if (at == nullptr) return;
    std::memcpy(at, text, length);
    filled(s, at + length);
}

void write_formatted(Statement& s, ItemType type, const char* items, int kind, std::size_t size,
                     std::ptrdiff_t stride, std::size_t count) {
    if (type == ItemType::complex) {
        const std::size_t part = real_size(kind);
        for (; count > 0 && !s.failed; --count, items += stride) {
            write_item(s, ItemType::real, items, kind, part);
            if (!s.failed) write_item(s, ItemType::real, items + part, kind, part);
        }
        return;
    }
    for (; count > 0 && !s.failed; --count, items += stride) write_item(s, type, items, kind, size);
}

}  // namespace tarn::fio
