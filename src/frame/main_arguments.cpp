#include "frame/main_arguments.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "frame/hooks.h"
#include "frame/link_name.h"
#include "platform/kernel/system.h"

namespace tarn::frame {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

std::string full_path(const std::string& path) {
    char buffer[PATH_MAX];
    if (access(path.c_str(), F_OK) != 0 || !realpath(path.c_str(), buffer)) return {};
    return buffer;
}

}  // namespace

std::vector<std::string> split_command_line(std::string_view line) {
    std::vector<std::string> arguments;
    std::size_t at = 0;
    for (;;) {
        while (at < line.size() && is_blank(line[at])) ++at;
        if (at == line.size()) return arguments;
        std::size_t begin = at;
        if (line[at] == '/') ++at;
        char quote = 0;
        for (; at < line.size(); ++at) {
            char c = line[at];
            if (quote) {
                if (c == quote) quote = 0;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (is_blank(c) || c == '/') {
                break;
            }
        }
        arguments.emplace_back(line.substr(begin, at - begin));
    }
}

std::string join_command_line(int count, char* const* values) {
    std::string line;
    for (int i = 0; i < count; ++i) {
        std::string_view value = values[i];
        bool quoted = i == 0 || value.empty() || value.find_first_of(" \t") != value.npos;
        // A text with the quotation mark in it takes the other one.
        char mark = value.find('"') == value.npos ? '"' : '\'';
        if (i > 0) line.push_back(' ');
        if (quoted) line.push_back(mark);
        line.append(value);
        if (quoted) line.push_back(mark);
    }
    return line;
}

std::string search_program(const std::string& name) {
    if (name.empty()) return {};
    if (name.find('/') != std::string::npos) return full_path(name);
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "";
    while (!rest.empty()) {
        std::size_t colon = rest.find(':');
        std::string folder(rest.substr(0, colon));
        rest.remove_prefix(colon == rest.npos ? rest.size() : colon + 1);
        std::string found = full_path((folder.empty() ? "." : folder) + "/" + name);
        if (!found.empty() && access(found.c_str(), X_OK) == 0) return found;
    }
    return full_path("./" + name);
}

}  // namespace tarn::frame

using namespace tarn::frame;

extern "C" TARN_EXPORT const char* __get_main_arguments(int* argc, char*** argv) {
    attach();
    static std::string* raw = nullptr;
    if (!raw) {
        tarn::platform::Arguments given = tarn::platform::process_arguments();
        raw = new std::string(join_command_line(given.count, given.values));
    }
    std::vector<std::string> arguments = split_command_line(*raw);
    if (!arguments.empty()) {
        std::string& program = arguments.front();
        if (program.size() >= 2 && (program.front() == '"' || program.front() == '\'')) {
            program = program.substr(1, program.size() - 2);
        }
        program = search_program(program);
        if (program.empty() && hooks().fail) hooks().fail(328);
    }
    *argc = static_cast<int>(arguments.size());
    *argv = static_cast<char**>(std::malloc((arguments.size() + 1) * sizeof(char*)));
    if (!*argv) {
        *argc = 0;
        return raw->c_str();
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) (*argv)[i] = strdup(arguments[i].c_str());
    (*argv)[arguments.size()] = nullptr;
    return raw->c_str();
}
