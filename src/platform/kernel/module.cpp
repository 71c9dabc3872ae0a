#include "platform/kernel/module.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <string_view>
#include <unistd.h>

namespace tarn::platform {
namespace {

struct Search {
    std::string_view name;
    const char* path = nullptr;
};

std::string_view without_folder(std::string_view path) {
    std::size_t slash = path.find_last_of('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// `libm.so.6` answers to libm.so.6, libm and m.
bool answers_to(std::string_view file, std::string_view name) {
    if (file == name) return true;
    std::string_view stem = file.substr(0, file.find(".so"));
    if (stem == name) return true;
    return stem.starts_with("lib") && stem.substr(3) == name;
}

int look_at(dl_phdr_info* info, std::size_t, void* data) {
    auto* search = static_cast<Search*>(data);
    if (!info->dlpi_name || !answers_to(without_folder(info->dlpi_name), search->name)) return 0;
    search->path = info->dlpi_name;
    return 1;
}

}  // namespace

void* module_handle(const char* name) {
    if (!name) return dlopen(nullptr, RTLD_LAZY);
    Search search{name};
    dl_iterate_phdr(look_at, &search);
    if (search.path) return dlopen(search.path, RTLD_LAZY | RTLD_NOLOAD);
    if (without_folder(program_path()) == name) return dlopen(nullptr, RTLD_LAZY);
    return nullptr;
}

void* load_library(const char* path) {
    return dlopen(path, RTLD_LAZY | RTLD_LOCAL);
}

void* procedure_address(void* module, const char* name) {
    return dlsym(module, name);
}

const std::string& program_path() {
    // Kept for good: exit routines ask for it as late as the library's own destructor.
    static std::string* path = [] {
        auto* result = new std::string(256, '\0');
        for (;;) {
            ssize_t length = readlink("/proc/self/exe", result->data(), result->size());
            if (length < 0) {
                result->assign(program_invocation_name);
                return result;
            }
            if (static_cast<std::size_t>(length) < result->size()) {
                result->resize(static_cast<std::size_t>(length));
                return result;
            }
            result->resize(result->size() * 2);
        }
    }();
    return *path;
}

}  // namespace tarn::platform
