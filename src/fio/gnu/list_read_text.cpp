// CHARACTER values of list-directed input: quoted, over any number of records, or a bare word.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "fio/gnu/list_scan.h"
#include "fio/gnu/utf8.h"

namespace tarn::fio {
namespace {

constexpr Fault no_storage{113, iostat_allocation};

void put_wide(char* item, std::size_t index, char32_t code) {
    std::memcpy(item + 4 * index, &code, 4);
}

// The characters of UTF-8 text, one by one.
void give_decoded(char* item, int kind, std::size_t size, std::string_view text, bool in_file) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < size; ++i) {
        char32_t code = U' ';
        if (at < end) {
            std::size_t bytes = 0;
            code = get_utf8(at, end, in_file, bytes);
            at += bytes;
        }
        if (kind == 4) {
            put_wide(item, i, code);
        } else {
            item[i] = code > 255 ? '?' : static_cast<char>(code);
        }
    }
}

void give_text(const Statement& s, char* item, int kind, std::size_t size, std::string_view text) {
    if (s.utf8 || s.wide) return give_decoded(item, kind, size, text, !s.internal);
    const std::size_t count = std::min(size, text.size());
    if (kind == 1) {
        if (count != 0) std::memcpy(item, text.data(), count);
        std::memset(item + count, ' ', size - count);
        return;
    }
    for (std::size_t i = 0; i < size; ++i) {
        put_wide(item, i, i < count ? static_cast<unsigned char>(text[i]) : U' ');
    }
}

// Adds to the text kept in the statement; false when there is no storage for it (reported).
bool keep_text(Statement& s, std::string_view piece) {
    ListState& list = s.list;
    if (s.saved_capacity - list.saved_length < piece.size()) {
        const std::size_t capacity =
            std::max<std::size_t>(2 * s.saved_capacity, list.saved_length + piece.size() + 200);
        char* const grown = static_cast<char*>(std::realloc(s.saved_text, capacity));
        if (grown == nullptr) {
            fail(s, no_storage);
            return false;
        }
        s.saved_text = grown;
        s.saved_capacity = capacity;
    }
    if (!piece.empty()) std::memcpy(s.saved_text + list.saved_length, piece.data(), piece.size());
    list.saved_length += piece.size();
    return true;
}

// The next record of a quoted value that goes on; false when the file has no more.
bool next_quoted_record(Statement& s) {
    s.list.record_passed = !try_next_input_record(s);
    s.list.at_line_end = s.list.record_passed;
    return !s.list.record_passed;
}

// Up to the closing quote, into the statement's kept text. Doubled quotes are one; the ends of
// lines count for nothing. The end of the file closes the value as well.
bool keep_quoted(Statement& s, char quote) {
    for (;;) {
        const char* stop = s.cursor;
        while (stop < s.limit && *stop != quote && *stop != '\r' && *stop != '\n') ++stop;
        if (!keep_text(s, {s.cursor, static_cast<std::size_t>(stop - s.cursor)})) return false;
        s.cursor += stop - s.cursor;
        if (s.cursor == s.limit) {
            if (!next_quoted_record(s)) return !s.failed;
            continue;
        }
        if (*s.cursor++ != quote) continue;
        if (s.cursor == s.limit || *s.cursor != quote) return true;
        ++s.cursor;
        if (!keep_text(s, {&quote, 1})) return false;
    }
}

// Behind a value: something that separates has to stand there.
bool ended_by_separator(Statement& s) {
    if (s.list.record_passed) return true;
    if (at_list_separator(s)) {
        pass_separator(s);
        return true;
    }
    const char* const end = token_end(s.cursor, s.limit, '\0');
    fail_value(s, bad_list_value, {s.cursor, static_cast<std::size_t>(end - s.cursor)});
    return false;
}

void read_quoted(Statement& s, char* item, int kind, std::size_t size) {
    if (!keep_quoted_text(s) || !ended_by_separator(s)) return;
    s.list.saved_type = ItemType::character;
    give_saved_text(s, item, kind, size);
}

}  // namespace

void read_list_text(Statement& s, char* item, int kind, std::size_t size) {
    if (*s.cursor == '\'' || *s.cursor == '"') return read_quoted(s, item, kind, size);
    const char* const begin = s.cursor;
    const char* const end = token_end(begin, s.limit, '\0');
    const std::string_view word(begin, static_cast<std::size_t>(end - begin));
    give_text(s, item, kind, size, word);
    if (s.list.repeat > 1) {
        s.list.saved_type = ItemType::character;
        s.list.saved_length = 0;
        if (!keep_text(s, word)) return;
    }
    s.cursor += word.size();
    pass_separator(s);
}

bool keep_quoted_text(Statement& s) {
    const char quote = *s.cursor++;
    s.list.saved_length = 0;
    return keep_quoted(s, quote);
}

bool keep_bare_text(Statement& s, std::string_view text) {
    s.list.saved_length = 0;
    if (!keep_text(s, text)) return false;
    s.cursor += text.size();
    return true;
}

void give_saved_text(Statement& s, char* item, int kind, std::size_t size) {
    give_text(s, item, kind, size, {s.saved_text, s.list.saved_length});
}

}  // namespace tarn::fio
