#include "exceptions/file_writer.h"

#include "platform/kernel/console.h"

namespace tarn::exceptions {
namespace {

// How many bytes the character at the start of a text has; 0 for what isn't UTF-8.
std::size_t character_length(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    // Forms that are too long, surrogates, and what lies beyond the last character.
    if (first == 0xE0 && byte(1) < 0xA0) return 0;
    if (first == 0xED && byte(1) >= 0xA0) return 0;
    if (first == 0xF0 && byte(1) < 0x90) return 0;
    if (first == 0xF4 && byte(1) >= 0x90) return 0;
    return length;
}

}  // namespace

FileWriter& FileWriter::add(std::string_view text) {
    while (!text.empty()) {
        if (length_ == sizeof buffer_) flush();
        const std::size_t part = text.copy(buffer_ + length_, sizeof buffer_ - length_);
        length_ += part;
        text.remove_prefix(part);
    }
    return *this;
}

FileWriter& FileWriter::decimal(std::int64_t value) {
    char room[24];
    traceback::TextBuffer text(room, sizeof room);
    if (value < 0) text.add("-");
    const auto size = static_cast<std::uint64_t>(value);
    return add(text.decimal(value < 0 ? 0 - size : size).text());
}

FileWriter& FileWriter::hexadecimal(std::uint64_t value, unsigned least_digits) {
    char room[24];
    traceback::TextBuffer text(room, sizeof room);
    return add(text.hexadecimal(value, least_digits).text());
}

FileWriter& FileWriter::json_text(std::string_view text) {
    add("\"");
    while (!text.empty()) {
        const std::size_t length = character_length(text);
        const char first = text[0];
        if (length == 0) {
            add("\\ufffd");
        } else if (first == '\n') {
            add("\\n");
        } else if (static_cast<unsigned char>(first) < 0x20) {
            add("\\u").hexadecimal(static_cast<unsigned char>(first), 4);
        } else {
            if (first == '"' || first == '\\') add("\\");
            add(text.substr(0, length));
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return add("\"");
}

bool FileWriter::flush() {
    if (memory_ != nullptr) {
        memory_->add({buffer_, length_});
    } else if (length_ > 0 && !platform::write_descriptor(descriptor_, {buffer_, length_})) {
        good_ = false;
    }
    length_ = 0;
    return good_;
}

}  // namespace tarn::exceptions
