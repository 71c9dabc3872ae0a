#include <algorithm>

#include "fio/gnu/edit_out.h"
#include "fio/gnu/edit_out_quick.h"
#include "fio/gnu/format_run.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/items.h"
#include "fio/gnu/records.h"
#include "fio/gnu/utf8.h"

namespace tarn::fio {
namespace {

constexpr Fault bad_scale_factor{61, iostat_format};

// The routines that write an item of one type stay out of those that choose among them, and the
// general road of integers and of reals out of the quick one: what runs in loops then goes by jumps
// and saves no registers.

// A value that fits a word, in a field of fixed width at the end of what the record holds so far.
// False: the general road has to do it.
bool put_quick_integer(Statement& s, const FormatNode& node, const char* item, int kind) {
    const bool quick = node.w > 0 && node.w <= widest_quick_integer && node.d < 0 && kind <= 8 &&
                       s.modes.sign != SignMode::plus && s.cursor >= s.high &&
                       s.limit - s.cursor >= widest_quick_integer;
    if (!quick) return false;
    char* const end = quick_put_integer(s.cursor, load_word(item, kind), node.w);
    if (end == nullptr) return false;
    s.cursor = s.high = end;
    return true;
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

[[gnu::noinline]] void write_any_integer(Statement& s, const FormatNode& node, const char* item,
                                         int kind) {
    write_field(
        s, node, [&] { return integer_field_bound(node, kind); },
        [&](char* out) { return put_integer(out, load_integer(item, kind), kind, node, s.modes); });
}

[[gnu::noinline]] void write_integer(Statement& s, const FormatNode& node, const char* item,
                                     int kind) {
    if (!put_quick_integer(s, node, item, kind)) write_any_integer(s, node, item, kind);
}

[[gnu::noinline]] void write_bits(Statement& s, const FormatNode& node, const char* item,
                                  std::size_t size) {
    write_field(
        s, node, [&] { return bits_field_bound(node, size); },
        [&](char* out) { return put_bits(out, item, size, node); });
}

[[gnu::noinline]] void write_any_real(Statement& s, const FormatNode& node, const char* item,
                                      int kind) {
    write_field(
        s, node, [&] { return real_field_bound(node, item, kind, s.modes); },
        [&](char* out) { return put_real(out, item, kind, node, s.modes); });
}

[[gnu::noinline]] void write_real(Statement& s, const FormatNode& node, const char* item,
                                  int kind) {
    if (node.w > 0 && s.limit - s.cursor >= node.w && !s.wide) {
        char* const end = quick_put_real(s.cursor, item, kind, node, s.modes);
        if (end != nullptr) return filled(s, end);
    }
    write_any_real(s, node, item, kind);
}

[[gnu::noinline]] void write_logical(Statement& s, const FormatNode& node, const char* item,
                                     int kind) {
    FieldEdit edit = node;
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
[[gnu::noinline]] void write_character(Statement& s, const FormatNode& node, const char* item,
                                       int kind, std::size_t length) {
    const std::size_t width = node.w < 0 ? length : static_cast<std::size_t>(node.w);
    if (kind == 4 && !s.wide) return write_wide_character(s, width, item, length);
    if (width > length) put_blanks(s, width - length);
    put_characters(s, item, kind, std::min(width, length));
}

// G of a CHARACTER: A, and G0 is A without a width.
[[gnu::noinline]] void write_general_character(Statement& s, const FormatNode& node,
                                               const char* item, int kind, std::size_t length) {
    FormatNode text = node;
    if (text.w == 0) text.w = absent;
    write_character(s, text, item, kind, length);
}

[[gnu::noinline]] void write_with_natural_width(Statement& s, const FormatNode& node, ItemType type,
                                                const char* item, int kind, std::size_t size);

void write_through(Statement& s, const FormatNode& node, ItemType type, const char* item, int kind,
                   std::size_t size) {
    if (lacks_width(s, node, type)) [[unlikely]] {
        return write_with_natural_width(s, node, type, item, kind, size);
    }
    ++s.items;
    switch (node.edit) {
        case Edit::I:
            if (type != ItemType::integer) return fail_mismatch(s, node, type);
            return write_integer(s, node, item, kind);
        case Edit::B:
        case Edit::O:
        case Edit::Z:
            if (are_bits_refused(type)) return fail_mismatch(s, node, type);
            return write_bits(s, node, item, static_cast<std::size_t>(kind));
        case Edit::L:
            return write_logical(s, node, item, kind);
        case Edit::A:
            if (type == ItemType::character) return write_character(s, node, item, kind, size);
            return write_character(s, node, item, 1, size);
        case Edit::G:
            if (type == ItemType::integer) return write_integer(s, node, item, kind);
            if (type == ItemType::logical) return write_logical(s, node, item, kind);
            if (type == ItemType::character) {
                return write_general_character(s, node, item, kind, size);
            }
            return write_real(s, node, item, kind);
        case Edit::DT:
            return fail_mismatch(s, node, type);
        default:
            if (type != ItemType::real) return fail_mismatch(s, node, type);
            return write_real(s, node, item, kind);
    }
}

void write_with_natural_width(Statement& s, const FormatNode& node, ItemType type, const char* item,
                              int kind, std::size_t size) {
    FormatNode full = node;
    fill_natural_width(full, type == ItemType::integer, kind);
    write_through(s, full, type, item, kind, size);
}

// An item before which control edit descriptors stand.
[[gnu::noinline]] void write_behind_controls(Statement& s, ItemType type, const char* item,
                                             int kind, std::size_t size) {
    const FormatNode* node = run_format(s, true);
    if (node != nullptr) write_through(s, *node, type, item, kind, size);
}

}  // namespace

void write_item(Statement& s, ItemType type, void* at, int kind, std::size_t size) {
    if (s.failed) return;
    const auto* const item = static_cast<const char*>(at);
    const FormatNode* node = data_edit_at_hand(s);
    if (node == nullptr) return write_behind_controls(s, type, item, kind, size);
    write_through(s, *node, type, item, kind, size);
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
    if (length == 0) return write_nothing(s);
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

void write_formatted(Statement& s, ItemType type, char* items, int kind, std::size_t size,
                     std::ptrdiff_t stride, std::size_t count) {
    if (type == ItemType::complex) {
        const std::size_t part = real_size(kind);
        for (; count > 0 && !s.failed; --count, items += stride) {
            write_item(s, ItemType::real, items, kind, part);
            write_item(s, ItemType::real, items + part, kind, part);
        }
        return;
    }
    for (; count > 0 && !s.failed; --count, items += stride) write_item(s, type, items, kind, size);
}

}  // namespace tarn::fio
