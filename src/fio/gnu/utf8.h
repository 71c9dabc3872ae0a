// UTF-8, one character at a time.
#pragma once

#include <cstddef>

namespace tarn::fio {

constexpr std::size_t utf8_size(char32_t code) {
    if (code < 0x80) return 1;
    if (code < 0x800) return 2;
    return code < 0x10000 ? 3 : 4;
}

// Writes the bytes of a character; their number.
inline std::size_t put_utf8(char32_t code, char* out) {
    const std::size_t size = utf8_size(code);
    if (size == 1) {
        out[0] = static_cast<char>(code);
        return 1;
    }
    constexpr unsigned char lead[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (std::size_t i = size - 1; i > 0; --i, code >>= 6) {
        out[i] = static_cast<char>(0x80 | (code & 0x3F));
    }
    out[0] = static_cast<char>(lead[size] | (code & (0x7FU >> size)));
    return size;
}

// The character at `at`, which lies before `end`; `size` becomes the number of its bytes. A byte
// that begins no character of the encoding counts as one character, '?'.
inline char32_t get_utf8(const char* at, const char* end, std::size_t& size) {
    const auto lead = static_cast<unsigned char>(*at);
    size = 1;
    if (lead < 0x80) return lead;
    std::size_t wanted = 0;
    char32_t code = 0;
    if ((lead & 0xE0) == 0xC0) {
        wanted = 2;
        code = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        wanted = 3;
        code = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        wanted = 4;
        code = lead & 0x07;
    }
    if (wanted == 0 || static_cast<std::size_t>(end - at) < wanted) return U'?';
    for (std::size_t i = 1; i < wanted; ++i) {
        const auto next = static_cast<unsigned char>(at[i]);
        if ((next & 0xC0) != 0x80) return U'?';
        code = (code << 6) | (next & 0x3F);
    }
    size = wanted;
    return code;
}

}  // namespace tarn::fio
