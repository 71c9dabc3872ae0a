// tarnmap: adds the map of routines and lines to a linked program or shared library, so that a
// failure can name them without debug information being there.
//
// usage: tarnmap FILE            reads FILE's debug information and adds the section to it
//        tarnmap --print FILE    writes what the section would hold
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "program_map.h"
#include "traceback/map_format.h"

namespace {

using tarn::map::ProgramMap;

void print(const ProgramMap& map) {
    for (const auto& each : map.routines)
        std::printf("%012lx-%012lx %s\n", each.start, each.end, each.name.c_str());
    for (const auto& each : map.inlined) {
        std::printf("%012lx-%012lx %*s%s, called at %s:%u\n", each.start, each.end,
                    static_cast<int>(2 * each.depth), "", each.name.c_str(), each.call_file.c_str(),
                    each.call_line);
    }
    for (const auto& each : map.lines)
        std::printf("%012lx %s:%u\n", each.start, map.files[each.file].c_str(), each.line);
}

struct TemporaryFile {
    std::string path;
    explicit TemporaryFile(const std::string& beside) : path(beside + ".tarnmap-XXXXXX") {
        const int descriptor = mkstemp(path.data());
        if (descriptor < 0) throw std::runtime_error(path + ": " + std::strerror(errno));
        close(descriptor);
    }
    ~TemporaryFile() { unlink(path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
};

void run(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments[0], arguments.data());
        std::fprintf(stderr, "tarnmap: %s: %s\n", arguments[0], std::strerror(errno));
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error(words[0] + " didn't do its work");
}

// The program is replaced by one rename: an interrupted tarnmap leaves the old one whole.
void add_section(const std::string& program, const std::string& section) {
    const TemporaryFile content(program), result(program);
    std::ofstream out(content.path, std::ios::binary);
    out.write(section.data(), static_cast<std::streamsize>(section.size()));
    out.close();
    if (!out) throw std::runtime_error(content.path + ": " + std::strerror(errno));
    const std::string name = tarn::traceback::map_section;
    run({"objcopy", "--remove-section", name, "--add-section", name + "=" + content.path,
         "--set-section-flags", name + "=contents,readonly", program, result.path});
    std::filesystem::permissions(result.path, std::filesystem::status(program).permissions());
    std::filesystem::rename(result.path, program);
}

}  // namespace

int main(int count, char** words) {
    const bool only_print = count == 3 && std::strcmp(words[1], "--print") == 0;
    if (count != 2 && !only_print) {
        std::fputs("usage: tarnmap [--print] FILE\n", stderr);
        return 2;
    }
    try {
        const std::string program = words[count - 1];
        ProgramMap map = tarn::map::read_program(program);
        tarn::map::put_in_order(map);
        if (only_print)
            print(map);
        else
            add_section(program, tarn::map::packed(map));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tarnmap: %s\n", failure.what());
        return 1;
    }
    return 0;
}
