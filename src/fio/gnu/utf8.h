// UTF-8, one character at a time.
#pragma once

#include <cstddef>

namespace tarn::fio {

inline constexpr std::size_t longest_utf8 = 7;

// Values that are no characters have their bytes, too, as gfortran's programs know them.
constexpr std::size_t utf8_size(char32_t code) {
    if (code < 0x80) return 1;
    if (code < 0x800) return 2;
    if (code < 0x10000) return 3;
    if (code < 0x200000) return 4;
    if (code < 0x4000000) return 5;
    return code < 0x80000000 ? 6 : longest_utf8;
}

// Writes the bytes of a character; their number.
inline std::size_t put_utf8(char32_t code, char* out) {
    const std::size_t size = utf8_size(code);
    if (size == 1) {
        out[0] = static_cast<char>(code);
        return 1;
    }
    constexpr unsigned char lead[] = {0, 0, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0x80};
    for (std::size_t i = size - 1; i > 0; --i, code >>= 6) {
        out[i] = static_cast<char>(0x80 | (code & 0x3F));
    }
    out[0] = static_cast<char>(lead[size] | (code & (0x7FU >> size)));
    return size;
}

// The character at `at`, which lies before `end`; `size` becomes the number of its bytes. A byte
// that begins no character of the encoding counts as one character, '?'. So does one that begins
// more bytes than its character takes and, in a file, a half of a pair.
inline char32_t get_utf8(const char* at, const char* end, bool in_file, std::size_t& size) {
    const auto lead = static_cast<unsigned char>(*at);
    size = 1;
    if (lead < 0x80) return lead;
    std::size_t wanted = 2;
    while (wanted < 7 && (lead & (0x80U >> wanted)) != 0) ++wanted;
    if ((lead & 0x40) == 0 || wanted == 7 || static_cast<std::size_t>(end - at) < wanted)
        return U'?';
    char32_t code = lead & (0x7FU >> wanted);
    for (std::size_t i = 1; i < wanted; ++i) {
        const auto next = static_cast<unsigned char>(at[i]);
        if ((next & 0xC0) != 0x80) return U'?';
        code = (code << 6) | (next & 0x3F);
    }
    const bool half = code >= 0xD800 && code < 0xE000;
    if (utf8_size(code) != wanted || (in_file && half)) return U'?';
    size = wanted;
    return code;
}

}  // namespace tarn::fio
