#include "frame/preconnection.h"

#include <cctype>

namespace tarn::frame {
namespace {

// The upper-cased first character, taken off; 0 at the end.
char take(std::string_view& text) {
    if (text.empty()) return 0;
    char c = text.front();
    text.remove_prefix(1);
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

bool preconnections_done(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

int next_preconnection(std::string_view& text, Preconnection& entry) {
    char access = take(text);
    if (access != 'R' && access != 'W') return preconnection_bad_text;
    char form = take(text);
    if (form != 'F' && form != 'U') return preconnection_bad_text;
    std::int32_t unit = 0;
    while (!text.empty() && is_digit(text.front())) {
        if (unit < 100) unit = unit * 10 + (text.front() - '0');
        text.remove_prefix(1);
    }
    if (unit < 1 || unit > 99) return preconnection_bad_unit;
    if (take(text) != '\'') return preconnection_bad_text;
    std::size_t end = text.find('\'');
    if (end == std::string_view::npos || end == 0) return preconnection_bad_text;
    entry = {unit, text.substr(0, end), access == 'R', form == 'F'};
    text.remove_prefix(end + 1);
    return 0;
}

}  // namespace tarn::frame
