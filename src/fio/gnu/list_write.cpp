#include "fio/gnu/edit_out_quick.h"
#include "fio/gnu/internal_file.h"
#include "fio/gnu/items.h"
#include "fio/gnu/options.h"
#include "fio/gnu/records.h"

namespace tarn::fio {
namespace {

void put_list_characters(Statement& s, const char* text, int kind, std::size_t length) {
    switch (s.modes.delim) {
        case Delim::none:
            return put_characters(s, text, kind, length);
        case Delim::apostrophe:
            return put_delimited(s, text, kind, length, '\'');
        case Delim::quote:
            return put_delimited(s, text, kind, length, '"');
    }
}

}  // namespace

// The first item stands one column in; two character values in a row have nothing between them.
void put_list_separator(Statement& s, bool character) {
    const bool first = !s.list_begun;
    const bool joined = character && s.list_after_character && s.modes.delim == Delim::none;
    s.list_begun = true;
    s.list_after_character = character;
    if (first) return put_byte(s, ' ');
    if (joined) return;
    const std::string& separator = gnu_options().list_separator;
    if (separator.size() == 1) return put_byte(s, separator[0]);
    put_text(s, separator);
}

namespace {

// The numeric fields are made aside where the record might have no room for the widest of them.
template <class Put>
void put_field(Statement& s, Put put) {
    if (s.limit - s.cursor >= static_cast<std::ptrdiff_t>(list_item_bound)) {
        filled(s, put(s.cursor));
        return;
    }
    char field[list_item_bound];
    const auto length = static_cast<std::size_t>(put(field) - field);
    put_characters(s, field, 1, length);
}

// The quick roads put a number at the end of what the record holds; false: nothing has happened.
bool has_quick_room(const Statement& s) {
    return s.limit - s.cursor >= static_cast<std::ptrdiff_t>(list_item_bound) && s.cursor >= s.high;
}

bool put_quick_integer(Statement& s, const char* item, int kind) {
    if (!has_quick_room(s) || kind > 8 || s.modes.sign == SignMode::plus) return false;
    char* const end = quick_put_integer(s.cursor, load_word(item, kind), list_integer_width(kind));
    if (end == nullptr) return false;
    s.cursor = s.high = end;
    return true;
}

bool put_quick_real(Statement& s, const char* item, int kind) {
    if (!has_quick_room(s)) return false;
    char* const end = quick_put_list_real(s.cursor, item, kind, s.modes);
    if (end == nullptr) return false;
    s.cursor = s.high = end;
    return true;
}

[[gnu::noinline]] void put_any_item(Statement& s, ItemType type, const char* item, int kind,
                                    std::size_t size) {
    switch (type) {
        case ItemType::integer:
            return put_field(s, [&](char* out) {
                return put_list_integer(out, load_integer(item, kind), kind, s.modes);
            });
        case ItemType::logical:
            return put_field(s, [&](char* out) {
                return put_list_logical(out, load_integer(item, kind) != 0, kind);
            });
        case ItemType::real:
            return put_field(s, [&](char* out) { return put_list_real(out, item, kind, s.modes); });
        case ItemType::complex:
            return put_field(s,
                             [&](char* out) { return put_list_complex(out, item, kind, s.modes); });
        case ItemType::character:
            return put_list_characters(s, item, kind, size);
    }
}

}  // namespace

void put_byte(Statement& s, char byte) {
    if (s.failed) return;
    char* at = room(s, 1);
    if (at == nullptr) return;
    *at = byte;
    filled(s, at + 1);
}

void put_text(Statement& s, std::string_view text) {
    if (s.failed) return;
    put_characters(s, text.data(), 1, text.size());
}

void put_delimited(Statement& s, const char* text, int kind, std::size_t length, char delimiter) {
    put_byte(s, delimiter);
    std::size_t from = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const char32_t code =
            kind == 4 ? get_wide(text + 4 * i) : static_cast<unsigned char>(text[i]);
        if (code != static_cast<unsigned char>(delimiter)) continue;
        put_characters(s, text + from * kind, kind, i + 1 - from);
        put_byte(s, delimiter);
        from = i + 1;
    }
    put_characters(s, text + from * kind, kind, length - from);
    put_byte(s, delimiter);
}

void write_list_item(Statement& s, ItemType type, void* at, int kind, std::size_t size) {
    if (s.failed) return;
    put_list_separator(s, type == ItemType::character);
    if (s.failed) return;
    ++s.items;
    const auto* const item = static_cast<const char*>(at);
    if (type == ItemType::real && put_quick_real(s, item, kind)) return;
    if (type == ItemType::integer && put_quick_integer(s, item, kind)) return;
    put_any_item(s, type, item, kind, size);
}

void write_list(Statement& s, ItemType type, char* items, int kind, std::size_t size,
                std::ptrdiff_t stride, std::size_t count) {
    for (; count > 0; --count, items += stride) write_list_item(s, type, items, kind, size);
}

}  // namespace tarn::fio
