#include "traceback/text_buffer.h"

#include <algorithm>
#include <cstring>

namespace tarn::traceback {

TextBuffer& TextBuffer::add(std::string_view text) {
    const std::size_t part = std::min(text.size(), size_ - length_);
    std::memcpy(room_ + length_, text.data(), part);
    length_ += part;
    return *this;
}

TextBuffer& TextBuffer::decimal(std::uint64_t value) {
    char digits[20];
    std::size_t at = sizeof digits;
    do {
        digits[--at] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    return add({digits + at, sizeof digits - at});
}

TextBuffer& TextBuffer::hexadecimal(std::uint64_t value, unsigned least_digits) {
    char digits[16];
    std::size_t at = sizeof digits;
    do {
        digits[--at] = "0123456789abcdef"[value & 15];
        value >>= 4;
    } while (at > 0 && (value != 0 || sizeof digits - at < least_digits));
    return add({digits + at, sizeof digits - at});
}

}  // namespace tarn::traceback
