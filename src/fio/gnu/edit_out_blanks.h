// Blanks in front of a field's characters.
#pragma once

#include <cstdint>
#include <cstring>

namespace tarn::fio {

// `count` blanks, by stores that may overlap rather than by a call.
[[gnu::always_inline]] inline char* put_blanks(char* out, int count) {
    constexpr std::uint64_t blanks = 0x2020'2020'2020'2020;
    char* const end = out + count;
    if (count >= 8) {
        for (; end - out > 8; out += 8) std::memcpy(out, &blanks, 8);
        std::memcpy(end - 8, &blanks, 8);
    } else if (count >= 4) {
        std::memcpy(out, &blanks, 4);
        std::memcpy(end - 4, &blanks, 4);
    } else if (count >= 2) {
        std::memcpy(out, &blanks, 2);
        std::memcpy(end - 2, &blanks, 2);
    } else if (count == 1) {
        *out = ' ';
    }
    return end;
}

}  // namespace tarn::fio
