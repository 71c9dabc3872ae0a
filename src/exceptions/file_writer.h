// Writes text to a descriptor, or into memory, with no heap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "traceback/text_buffer.h"

namespace tarn::exceptions {

class FileWriter {
  public:
    explicit FileWriter(int descriptor) : descriptor_(descriptor) {}
    explicit FileWriter(traceback::TextBuffer& memory) : memory_(&memory) {}
    ~FileWriter() { flush(); }
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    FileWriter& add(std::string_view text);
    FileWriter& decimal(std::int64_t value);
    FileWriter& hexadecimal(std::uint64_t value, unsigned least_digits);
    // In quotes. Bytes that are no UTF-8 become the replacement character.
    FileWriter& json_text(std::string_view text);
    // Everything has been written; false where the system refused some of it.
    bool flush();

  private:
    int descriptor_ = -1;
    traceback::TextBuffer* memory_ = nullptr;
    bool good_ = true;
    std::size_t length_ = 0;
    char buffer_[4096];
};

}  // namespace tarn::exceptions
