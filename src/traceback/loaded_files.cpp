#include "traceback/loaded_files.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::traceback {
namespace {

struct Files {
    static constexpr std::size_t most = 64;
    LoadedFile all[most];
    std::size_t count = 0;
};
constinit Files the_files;

int open_module(const Module& module) {
    if (module.path[0] != 0) return open(module.path, O_RDONLY | O_CLOEXEC);
    const int own = open("/proc/self/exe", O_RDONLY | O_CLOEXEC);  // even when it was deleted
    if (own >= 0) return own;
    const auto* name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return name != nullptr ? open(name, O_RDONLY | O_CLOEXEC) : -1;
}

Bytes map_file(const Module& module) {
    const int descriptor = open_module(module);
    if (descriptor < 0) return {};
    Bytes content;
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
        const auto size = static_cast<std::size_t>(status.st_size);
        void* data = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
        if (data != MAP_FAILED) content = {static_cast<const char*>(data), size};
    }
    close(descriptor);
    return content;
}

// A file that was replaced while the program runs tells lies. Its headers and its build's mark
// stand at its beginning, which is in memory too.
bool is_what_was_loaded(const Module& module, Bytes content) {
    constexpr std::size_t telling = 1024;
    const std::size_t size =
        std::min({telling, content.size, std::size_t{module.end - module.start}});
    return size > 0 &&
           std::memcmp(reinterpret_cast<const void*>(module.start), content.data, size) == 0;
}

void unmap(Bytes content) {
    if (content.data != nullptr) munmap(const_cast<char*>(content.data), content.size);
}

}  // namespace

const LoadedFile* file_at(std::uintptr_t address) {
    Files& files = the_files;
    for (std::size_t i = 0; i < files.count; ++i) {
        const Module& module = files.all[i].module;
        if (address >= module.start && address < module.end) return &files.all[i];
    }
    Module module;
    if (!find_module(address, module)) return nullptr;
    if (files.count == Files::most) close_files();
    LoadedFile& file = files.all[files.count++];
    file = {};
    file.module = module;
    Bytes content = map_file(module);
    if (content.data == nullptr) return &file;
    if (!is_what_was_loaded(module, content)) {
        unmap(content);
        return &file;
    }
    file.content = content;
    file.has_map = file.map.open(find_section(content, map_section));
    return &file;
}

void close_files() {
    for (std::size_t i = 0; i < the_files.count; ++i) unmap(the_files.all[i].content);
    the_files.count = 0;
}

}  // namespace tarn::traceback
