#include "platform/base/resources.h"

#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

#include "platform/kernel/module.h"

namespace tarn::platform {

namespace {

// The file that this code was loaded from. The loader knows a program by the name it was called
// by only, which may be relative to a folder left since.
std::string own_path() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&own_path), &info) == 0 || info.dli_fname == nullptr ||
        info.dli_fname[0] != '/') {
        return program_path();
    }
    return info.dli_fname;
}

std::string find_folder() {
    if (const char* given = std::getenv("TARN_RESOURCES"); given != nullptr && *given != 0) {
        return std::string(given) + '/';
    }
    std::string base = own_path();
    base.resize(base.rfind('/') == std::string::npos ? 0 : base.rfind('/') + 1);
    for (const char* folder : {"tarnlibc/", "../tarnlibc/"}) {
        if (access((base + folder).c_str(), F_OK) == 0) return base + folder;
    }
    return base + "tarnlibc/";
}

}  // namespace

std::string resource_path(const char* name) {
    static const std::string* folder = new std::string(find_folder());
    return *folder + name;
}

}  // namespace tarn::platform
