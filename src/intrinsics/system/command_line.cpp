#include "intrinsics/system/command_line.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <ctime>

#include "fio/file/names.h"
#include "frame/state.h"

namespace tarn::intrinsics {

std::int32_t argument_count() {
    frame::ensure_up();
    const int count = frame::state().argument_count;
    return count > 0 ? count - 1 : 0;
}

bool find_argument(std::int64_t number, std::string_view& text) {
    frame::ensure_up();
    const frame::State& state = frame::state();
    text = {};
    if (number < 0 || number >= state.argument_count) return false;
    text = state.arguments[number];
    return true;
}

bool next_argument(std::string_view& text) {
    frame::ensure_up();
    int& next = frame::state().next_argument;
    if (!find_argument(next, text)) return false;
    ++next;
    return true;
}

void restart_arguments() {
    frame::ensure_up();
    frame::state().next_argument = 1;
}

std::string command_line() {
    std::string line;
    std::string_view text;
    for (std::int64_t number = 0; find_argument(number, text); ++number) {
        if (number > 0) line.push_back(' ');
        const bool quoted = text.empty() || text.find_first_of(" \t") != text.npos;
        const char mark = text.find('"') == text.npos ? '"' : '\'';
        if (quoted) line.push_back(mark);
        line.append(text);
        if (quoted) line.push_back(mark);
    }
    return line;
}

bool whole_number(std::string_view text, std::int32_t& value) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    const char* end = text.data() + text.size();
    std::int32_t read = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, read);
    if (error != std::errc() || stop != end) return false;
    value = read;
    return true;
}

bool find_variable(std::string_view given, std::string_view& value) {
    const std::string name(given);
    const char* found =
        name.empty() || name.find('\0') != name.npos ? nullptr : std::getenv(name.c_str());
    value = found != nullptr ? std::string_view(found) : std::string_view();
    return found != nullptr;
}

int put_variable(std::string_view definition) {
    std::string text;
    const bool clean = fio::clean_name(definition, text);
    const std::size_t equals = text.find('=');
    if (!clean || equals == 0 || equals == std::string::npos) return EINVAL;
    const std::string name = text.substr(0, equals);
    const char* value = text.c_str() + equals + 1;
    const int result = *value != '\0' ? ::setenv(name.c_str(), value, 1) : ::unsetenv(name.c_str());
    if (result != 0) return errno;
    // The C library looks at the zone once.
    if (name == "TZ") ::tzset();
    return 0;
}

}  // namespace tarn::intrinsics
