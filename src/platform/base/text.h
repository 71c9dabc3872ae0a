// Encodings. Inside the platform layer every text is UTF-8; `A` functions take and give the code
// page (1252), `W` functions UTF-16.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::platform {

inline constexpr std::uint32_t CP_ACP = 0, CP_UTF8 = 65001;

// Broken sequences become U+FFFD, never an error; a code point that the page lacks becomes '?'.
std::string utf8_from_page(std::string_view page);
std::string page_from_utf8(std::string_view utf8);
std::string utf8_from_wide(std::u16string_view wide);
std::u16string wide_from_utf8(std::string_view utf8);
// Appends one code point.
void append_utf8(std::string& text, char32_t code);
// The code point at `at`, which moves behind it; U+FFFD for a broken sequence (one byte is eaten).
char32_t next_code_point(std::string_view text, std::size_t& at);

// The platform's own two, with its rules for lengths: -1 is a terminated source, and a target
// size of 0 asks for the size. 0 is failure (no room).
std::int32_t MultiByteToWideChar(std::uint32_t page, const char* source, std::int32_t length,
                                 char16_t* target, std::int32_t size);
std::int32_t WideCharToMultiByte(std::uint32_t page, const char16_t* source, std::int32_t length,
                                 char* target, std::int32_t size);

}  // namespace tarn::platform
