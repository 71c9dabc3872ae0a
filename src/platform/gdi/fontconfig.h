// The desktop's fonts, asked only for names and characters that our own family lacks: the library
// is loaded by the first such question.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

struct FontWish {
    std::string_view family;
    bool bold, italic;
    char32_t code;    // that the font must show; 0: any
    bool exact_name;  // no substitute for another name
};
struct FontFile {
    std::string path, family;
    std::int32_t index = 0;
};
bool fontconfig_match(const FontWish& wish, FontFile& file);
std::vector<std::string> fontconfig_families();

}  // namespace tarn::platform
