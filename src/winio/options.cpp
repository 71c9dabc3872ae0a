// Reading option words, their values, and colours.
#include "winio/options.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/base/constants.h"
#include "platform/gdi/theme.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::size_t longest_word = 75;

bool ends_word(char c) {
    return c == 0 || c == ',' || c == ' ' || c == ']';
}

void skip_blanks(const char*& cursor) {
    while (*cursor == ' ') ++cursor;
}

std::string read_word(const char*& cursor) {
    std::string word;
    while (!ends_word(*cursor)) {
        char c = *cursor++;
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        if (c == '-') c = '_';
        if (word.size() < longest_word) word.push_back(c);
        if (c == '=') break;
    }
    return word;
}

void read_value(const char*& cursor) {
    std::string& value = option_value();
    value.clear();
    skip_blanks(cursor);
    if (*cursor == '\'' || *cursor == '"') {
        const char quote = *cursor++;
        const char* end = std::strchr(cursor, quote);
        if (!end) {
            quillpan_error("Unterminated quoted string in option parameter");
            cursor += std::strlen(cursor);
            return;
        }
        value.assign(cursor, end);
        cursor = end + 1;
    } else {
        while (!ends_word(*cursor)) value.push_back(*cursor++);
    }
    while (!value.empty() && value.back() == ' ') value.pop_back();
}

std::int32_t find_word(const std::string& word, const char* const* words) {
    for (std::int32_t i = 0; words && words[i]; ++i) {
        std::string_view known = words[i];
        // %mb's ILC_bits= is the one word with capitals.
        if (known.size() == word.size() && strncasecmp(known.data(), word.data(), word.size()) == 0)
            return i + 1;
    }
    return 0;
}

}  // namespace

std::string& option_value() {
    static auto* value = new std::string;
    return *value;
}

std::int32_t option_integer() {
    return std::atoi(option_value().c_str());
}

std::int32_t get_format_option(const char*& cursor, const char* const* words, const char* code_name,
                               bool fatal) {
    std::string word;
    while (*cursor) {
        if (*cursor++ == ']') return 0;
        skip_blanks(cursor);
        if (*cursor == ']') {
            ++cursor;
            return 0;
        }
        word = read_word(cursor);
        if (!word.empty()) break;  // two commas: nothing between them
    }
    if (word.empty()) {
        quillpan_error("A %s option list has not been terminated with a closing square bracket",
                       code_name);
        return 0;
    }
    if (word.back() == '=') read_value(cursor);
    // The next word may follow behind a blank alone, which is then its separator.
    const char* behind = cursor;
    skip_blanks(cursor);
    if (cursor != behind && *cursor != ',' && *cursor != ']') --cursor;
    if (const std::int32_t position = find_word(word, words); position != 0) return position;
    const char* shown = word.c_str() + (word.front() == '_' ? 1 : 0);
    if (fatal) {
        quillpan_error("[%s] is an invalid %s option", shown, code_name);
        return 0;
    }
    quillpan_error("?[%s] is an invalid %s option", shown, code_name);
    return -1;
}

word get_option_WPARAM() {
    long long number = 0;
    return std::sscanf(option_value().c_str(), "%lld", &number) == 1 ? static_cast<word>(number)
                                                                     : 0;
}

void extend_option_value(const char*& cursor) {
    std::string& value = option_value();
    while (*cursor && std::strchr(",0123456789 -.", *cursor)) value.push_back(*cursor++);
    if (*cursor == ')') value.push_back(*cursor++);
}

// ---- Colours -----------------------------------------------------------------------------------
namespace {

constexpr const char* colour_names =
    "SCROLLBAR BACKGROUND ACTIVECAPTION INACTIVECAPTION MENU WINDOW WINDOWFRAME MENUTEXT "
    "WINDOWTEXT CAPTIONTEXT ACTIVEBORDER INACTIVEBORDER APPWORKSPACE HIGHLIGHT HIGHLIGHTTEXT "
    "BTNFACE BTNSHADOW GRAYTEXT BTNTEXT INACTIVECAPTIONTEXT BUTTON RED GREEN BLUE YELLOW WHITE "
    "GRAY GREY BLACK ";
constexpr std::int32_t system_colours = 20;
constexpr COLORREF fixed_colours[] = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF,
                                      0xFFFFFF, 0xC0C0C0, 0xC0C0C0, 0};

// Position of a name, from 0; -1 for none. No two names are equal.
std::int32_t colour_position(std::string_view name) {
    std::int32_t at = 0;
    for (std::string_view left = colour_names; !left.empty(); ++at) {
        const std::size_t blank = left.find(' ');
        if (left.substr(0, blank) == name) return at;
        left.remove_prefix(blank + 1);
    }
    return -1;
}

COLORREF exchange_red_and_blue(std::uint32_t colour) {
    return (colour & 0x00FF00) | (colour & 0xFF) << 16 | (colour >> 16 & 0xFF);
}

COLORREF colour_of(const std::string& text) {
    if (!text.empty() && text[0] == '#') {
        return exchange_red_and_blue(
            static_cast<std::uint32_t>(std::strtoul(text.c_str() + 1, nullptr, 16)));
    }
    const std::int32_t at = colour_position(text);
    if (at < 0) {
        quillpan_error("?The colour %s is not recognised", text.c_str());
        return no_colour;
    }
    if (at < system_colours) return platform::GetSysColor(at);
    return at == system_colours ? dialog_colour() : fixed_colours[at - system_colours - 1];
}

COLORREF colour_named(std::string_view name) {
    std::string text(name);
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return colour_of(text);
}

}  // namespace

COLORREF get_user_colour(const char*& cursor) {
    const char* end = std::strchr(cursor, ']');
    if (*cursor != '[' || !end) {
        quillpan_error("?Invalid colour specification");
        return no_colour;
    }
    const std::string_view name(cursor + 1, static_cast<std::size_t>(end - cursor - 1));
    cursor = end + 1;
    return colour_named(name);
}

COLORREF get_quillpan_colour(const char* name) {
    // As a specification in a format: it ends at a bracket.
    const std::string_view text = name ? name : "";
    return colour_named(text.substr(0, text.find(']')));
}

COLORREF get_option_colour() {
    return get_quillpan_colour(option_value().c_str());
}

COLORREF user_colour(code_call& call) {
    if (*call.format == '[') return get_user_colour(call.format);
    return static_cast<COLORREF>(user_integer(call.arguments));
}

// ---- Brackets and numbers ----------------------------------------------------------------------
bool check_sq_bra(const char* text, const char* code_name) {
    std::int32_t open = 0;
    for (const char* at = text; *at && open >= 0; ++at) {
        if (*at == '%') {
            if (at[1] != '%') break;
            ++at;
        }
        open += *at == '[';
        open -= *at == ']';
    }
    if (open == 0) return true;
    quillpan_error("Square brackets not paired in %s format", code_name);
    return false;
}

bool get_float(const char*& cursor, double& result) {
    if (*cursor != '[' || std::isdigit(static_cast<unsigned char>(cursor[1])) == 0) return false;
    const std::size_t length = std::strspn(cursor + 1, "0123456789.eE");
    if (cursor[1 + length] != ']') return false;
    const std::string text(cursor + 1, length);
    const double value = std::strtod(text.c_str(), nullptr);
    if (!(value > 0.1 && value < 10.0)) return false;
    result = value;
    cursor += length + 2;
    return true;
}

}  // namespace tarn::winio
