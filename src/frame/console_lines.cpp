#include "frame/console_lines.h"

#include "platform/kernel/console.h"

namespace tarn::frame {

void console_text(std::string_view text) {
    platform::write_output(text);
}

void console_line(std::string_view text) {
    std::string line(text);
    line.push_back('\n');
    platform::write_output(line);
}

bool console_read_line(std::string& line, std::size_t limit) {
    if (!platform::read_input_line(line)) return false;
    if (line.size() > limit) line.resize(limit);
    return true;
}

std::string_view trimmed(std::string_view text) {
    std::size_t last = text.find_last_not_of(' ');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string_view character(const char* text, std::ptrdiff_t length) {
    if (!text || length <= 0) return {};
    return {text, static_cast<std::size_t>(length)};
}

}  // namespace tarn::frame
