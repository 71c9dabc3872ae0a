// Words of the native dialect on the console: what COUA#, COU# and GETCL# do.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::frame {

void console_text(std::string_view text);                      // as it stands
void console_line(std::string_view text);                      // and a new line
bool console_read_line(std::string& line, std::size_t limit);  // false at the end of the input

// Without its trailing blanks.
std::string_view trimmed(std::string_view text);
// A CHARACTER argument: its address and length as compiled code passes them.
std::string_view character(const char* text, std::ptrdiff_t length);

}  // namespace tarn::frame
