#include "spelling.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cxxabi.h>
#include <fstream>

namespace tarn::map {
namespace {

bool is_name_character(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$';
}

bool equal_folded(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
}

// Where a name stands as a whole word in a text, in any case.
std::size_t find_word(const std::string& text, const std::string& name, std::size_t from = 0) {
    auto start = text.begin() + static_cast<std::ptrdiff_t>(std::min(from, text.size()));
    while (true) {
        start = std::search(start, text.end(), name.begin(), name.end(), equal_folded);
        if (start == text.end()) return std::string::npos;
        const auto at = static_cast<std::size_t>(start - text.begin());
        const std::size_t end = at + name.size();
        if ((at == 0 || !is_name_character(text[at - 1])) &&
            (end == text.size() || !is_name_character(text[end])))
            return at;
        ++start;
    }
}

}  // namespace

const std::vector<std::string>& Spelling::lines_of(const std::string& file) {
    auto [place, is_new] = files_.try_emplace(file);
    if (is_new) {
        std::ifstream source(file);
        constexpr std::size_t most = 2'000'000;
        for (std::string line; place->second.size() < most && std::getline(source, line);)
            place->second.push_back(line);
    }
    return place->second;
}

std::string Spelling::in_line(const std::string& file, int line, const std::string& name) {
    if (line < 1 || name.empty()) return name;
    const std::vector<std::string>& lines = lines_of(file);
    constexpr int continuation = 3;  // lines that a statement's head may go on over
    for (int i = line - 1; i < line - 1 + continuation && i < static_cast<int>(lines.size()); ++i) {
        const std::string& text = lines[static_cast<std::size_t>(i)];
        const std::size_t at = find_word(text, name);
        if (at != std::string::npos) return text.substr(at, name.size());
    }
    return name;
}

std::string Spelling::of_module(const std::string& file, const std::string& name) {
    for (const std::string& text : lines_of(file)) {
        const std::size_t at = find_word(text, "module");
        if (at == std::string::npos || text.find_first_not_of(" \t") != at) continue;
        const std::size_t found = text.find_first_not_of(" \t", at + 6);
        if (found != std::string::npos && find_word(text, name, found) == found)
            return text.substr(found, name.size());
    }
    return name;
}

std::string Spelling::of_program(const std::string& file, int line) {
    const std::vector<std::string>& lines = lines_of(file);
    if (line < 1 || line > static_cast<int>(lines.size())) return {};
    const std::string& text = lines[static_cast<std::size_t>(line - 1)];
    std::size_t at = find_word(text, "program");
    if (at == std::string::npos || text.find_first_not_of(" \t") != at) return {};
    at = std::min(text.find_first_not_of(" \t", at + 7), text.size());
    std::size_t end = at;
    while (end < text.size() && is_name_character(text[end])) ++end;
    return text.substr(at, end - at);
}

// Internal procedures hold no others, so that the nearest CONTAINS is their host's.
int Spelling::contains_before(const std::string& file, int line) {
    const std::vector<std::string>& lines = lines_of(file);
    for (int i = std::min(line - 1, static_cast<int>(lines.size())); i > 0; --i) {
        const std::string& text = lines[static_cast<std::size_t>(i - 1)];
        const std::size_t at = find_word(text, "contains");
        if (at == std::string::npos || text.find_first_not_of(" \t") != at) continue;
        const std::size_t behind = text.find_first_not_of(" \t\r", at + 8);
        if (behind == std::string::npos || text[behind] == '!') return i;
    }
    return 0;
}

std::string module_in_symbol(const std::string& symbol) {
    const std::size_t middle = symbol.find("_MOD_");
    if (symbol.compare(0, 2, "__") != 0 || middle == std::string::npos) return {};
    return symbol.substr(2, middle - 2);
}

std::string demangled(const std::string& symbol) {
    if (symbol.compare(0, 2, "_Z") != 0) return symbol;
    int status = 0;
    char* text = abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status);
    std::string result = text != nullptr ? text : symbol;
    std::free(text);
    return result;
}

std::string readable(const std::string& symbol) {
    if (symbol == "MAIN__") return "main program";
    const std::string module = module_in_symbol(symbol);
    if (module.empty()) return demangled(symbol);
    return module + "::" + symbol.substr(module.size() + 7);
}

}  // namespace tarn::map
