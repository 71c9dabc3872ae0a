// A text of limited length that is put together with no heap; what doesn't fit is left out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn::traceback {

class TextBuffer {
  public:
    TextBuffer(char* room, std::size_t size) : room_(room), size_(size) {}

    TextBuffer& add(std::string_view text);
    TextBuffer& decimal(std::uint64_t value);
    TextBuffer& hexadecimal(std::uint64_t value, unsigned least_digits);
    std::string_view text() const { return {room_, length_}; }
    bool full() const { return length_ == size_; }

  private:
    char* room_;
    std::size_t size_;
    std::size_t length_ = 0;
};

}  // namespace tarn::traceback
