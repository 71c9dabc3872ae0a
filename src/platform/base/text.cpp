#include "platform/base/text.h"

#include <cstring>

namespace tarn::platform {

namespace {

constexpr char32_t replacement = 0xFFFD;

// What the code page has at 0x80 to 0x9F. Its five holes are the control characters of their
// own numbers, so that every byte survives the way to Unicode and back.
constexpr char16_t page_1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t from_page(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? page_1252[byte - 0x80] : byte;
}

char to_page(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code < 0x100)) return static_cast<char>(code);
    for (int i = 0; i < 32; ++i) {
        if (page_1252[i] == code) return static_cast<char>(0x80 + i);
    }
    return '?';
}

bool is_continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

char32_t next_wide(std::u16string_view wide, std::size_t& at) {
    const char16_t unit = wide[at++];
    if (unit < 0xD800 || unit > 0xDFFF) return unit;
    const bool pair = unit < 0xDC00 && at < wide.size() && (wide[at] & 0xFC00) == 0xDC00;
    if (!pair) return replacement;
    return 0x10000 + ((unit & 0x3FFu) << 10) + (wide[at++] & 0x3FFu);
}

void append_wide(std::u16string& wide, char32_t code) {
    if (code < 0x10000) {
        wide.push_back(static_cast<char16_t>(code));
        return;
    }
    wide.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
    wide.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
}

// Hands over a converted text by the platform's rules for sizes.
template <typename Char>
std::int32_t deliver(const std::basic_string<Char>& text, Char* target, std::int32_t size) {
    if (text.size() > INT32_MAX) return 0;
    const auto length = static_cast<std::int32_t>(text.size());
    if (size == 0) return length;
    if (size < length || target == nullptr) return 0;
    std::memcpy(target, text.data(), text.size() * sizeof(Char));
    return length;
}

// The text that `length` tells of: a terminated one is converted with its terminator.
template <typename Char>
std::basic_string_view<Char> source_text(const Char* source, std::int32_t length) {
    if (length >= 0) return {source, static_cast<std::size_t>(length)};
    return {source, std::char_traits<Char>::length(source) + 1};
}

}  // namespace

void append_utf8(std::string& text, char32_t code) {
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = replacement;
    if (code < 0x80) {
        text.push_back(static_cast<char>(code));
        return;
    }
    if (code < 0x800) {
        text.push_back(static_cast<char>(0xC0 | code >> 6));
    } else {
        if (code < 0x10000) {
            text.push_back(static_cast<char>(0xE0 | code >> 12));
        } else {
            text.push_back(static_cast<char>(0xF0 | code >> 18));
            text.push_back(static_cast<char>(0x80 | (code >> 12 & 0x3F)));
        }
        text.push_back(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
    }
    text.push_back(static_cast<char>(0x80 | (code & 0x3F)));
}

char32_t next_code_point(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80) return lead;
    // The bits of the lead, how many bytes follow, and the least code that needs so many.
    char32_t code = 0, least = 0;
    std::size_t more = 0;
    if (lead >= 0xC2 && lead < 0xE0) {
        code = lead & 0x1F, more = 1, least = 0x80;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        code = lead & 0x0F, more = 2, least = 0x800;
    } else if (lead >= 0xF0 && lead < 0xF5) {
        code = lead & 0x07, more = 3, least = 0x10000;
    } else {
        return replacement;
    }
    if (text.size() - at < more) return replacement;
    for (std::size_t i = 0; i < more; ++i) {
        if (!is_continuation(text[at + i])) return replacement;
        code = code << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    }
    if (code < least || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return replacement;
    at += more;
    return code;
}

std::string utf8_from_page(std::string_view page) {
    std::string text;
    text.reserve(page.size());
    for (const char byte : page) append_utf8(text, from_page(static_cast<unsigned char>(byte)));
    return text;
}

std::string page_from_utf8(std::string_view utf8) {
    std::string page;
    page.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) page.push_back(to_page(next_code_point(utf8, at)));
    return page;
}

std::string utf8_from_wide(std::u16string_view wide) {
    std::string text;
    text.reserve(wide.size());
    for (std::size_t at = 0; at < wide.size();) append_utf8(text, next_wide(wide, at));
    return text;
}

std::u16string wide_from_utf8(std::string_view utf8) {
    std::u16string wide;
    wide.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) append_wide(wide, next_code_point(utf8, at));
    return wide;
}

std::int32_t MultiByteToWideChar(std::uint32_t page, const char* source, std::int32_t length,
                                 char16_t* target, std::int32_t size) {
    if (source == nullptr || length == 0 || length < -1 || size < 0) return 0;
    const std::string_view text = source_text(source, length);
    return deliver(wide_from_utf8(page == CP_UTF8 ? std::string(text) : utf8_from_page(text)),
                   target, size);
}

std::int32_t WideCharToMultiByte(std::uint32_t page, const char16_t* source, std::int32_t length,
                                 char* target, std::int32_t size) {
    if (source == nullptr || length == 0 || length < -1 || size < 0) return 0;
    const std::string utf8 = utf8_from_wide(source_text(source, length));
    return deliver(page == CP_UTF8 ? utf8 : page_from_utf8(utf8), target, size);
}

}  // namespace tarn::platform
