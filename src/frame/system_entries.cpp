// Who the operating system is; configuration; other odd services of the frame.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "frame/console_lines.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/records.h"
#include "frame/state.h"
#include "platform/kernel/config.h"
#include "platform/kernel/debug_output.h"
#include "platform/kernel/module.h"
#include "platform/kernel/system.h"

using namespace tarn::frame;
namespace platform = tarn::platform;

namespace {

constexpr const char* common_key = "Software\\Tarnick\\Common";
constexpr std::size_t config_buffer_size = 32768;
constexpr std::size_t monwt_size = 1000000;

struct Version {
    std::int32_t platform, major, minor, build;
};

Version version_from_word(std::uint32_t word) {
    Version version;
    version.platform = (word & 0x80000000U) != 0 ? 3 : 2;
    version.major = static_cast<std::int32_t>(word & 0xFF);
    version.minor = static_cast<std::int32_t>(word >> 8 & 0xFF);
    version.build = static_cast<std::int32_t>(word >> 16 & 0x7FFF);
    if (version.platform == 3 && version.major == 4) version.platform = 4;
    return version;
}

// The file name of a path, without the suffix of a shared library.
std::string module_name(const std::string& path) {
    std::string name = path.substr(path.find_last_of("/\\") + 1);
    for (const char* suffix : {".dll", ".DLL", ".so"}) {
        if (name.ends_with(suffix)) return name.substr(0, name.find_last_of('.'));
    }
    return name;
}

}  // namespace

extern "C" {

TARN_EXPORT std::int32_t ISWINDOWSNT() {
    return state().is_nt ? 1 : 0;
}

TARN_EXPORT std::int32_t __getosinfo(std::int32_t* platform, std::int32_t* major,
                                     std::int32_t* minor, std::int32_t* build) {
    Version version = version_from_word(platform::version_word());
    *platform = version.platform;
    *major = version.major;
    *minor = version.minor;
    *build = version.build;
    return version.platform;
}
TARN_EXPORT std::int32_t GET_OS_INFO_h(std::int32_t*, std::int32_t*, std::int32_t*, std::int32_t*)
    LINK_NAME("GET_OS_INFO#") TARN_ALIAS(__getosinfo);

TARN_EXPORT std::int32_t __get_os_info(SystemInfo* info) {
    Version version = version_from_word(platform::version_word());
    if (info) {
        *info = {};
        info->platform = static_cast<std::uint16_t>(version.platform);
        info->major = static_cast<std::uint16_t>(version.major);
        info->minor = static_cast<std::uint16_t>(version.minor);
        info->build = static_cast<std::uint32_t>(version.build);
    }
    return version.platform;
}

TARN_EXPORT std::int32_t __get_os_ver(std::int32_t* platform, std::int32_t* major,
                                      std::int32_t* minor) {
    if (platform) *platform = static_cast<std::int32_t>(platform::system_version.platform);
    if (major) *major = static_cast<std::int32_t>(platform::system_version.major);
    if (minor) *minor = static_cast<std::int32_t>(platform::system_version.minor);
    return static_cast<std::int32_t>(platform::system_version.platform);
}
TARN_EXPORT std::int32_t __get_os_build() {
    return static_cast<std::int32_t>(platform::system_version.build);
}

// The user's configuration wins over the environment. The result stays good until the next call.
TARN_EXPORT const char* ReadRegAndEnv(const char* key, const char* name) {
    static char buffer[config_buffer_size];
    if (auto value = platform::config_value(key, name)) {
        std::size_t length = value->copy(buffer, config_buffer_size - 1);
        buffer[length] = '\0';
        return buffer;
    }
    return std::getenv(name);
}
TARN_EXPORT const char* read_config_key(const char* name) {
    return ReadRegAndEnv(common_key, name);
}

TARN_EXPORT void* find_entry_point(const char* path, const char* routine) {
    void* module = platform::module_handle(module_name(path).c_str());
    if (!module) module = platform::load_library(path);
    return module ? platform::procedure_address(module, routine) : nullptr;
}

TARN_EXPORT void* allocate_monwt_block() {
    static std::int32_t* block = nullptr;
    if (block) return block;
    block = static_cast<std::int32_t*>(std::calloc(1, monwt_size));
    if (!block) return nullptr;
    block[10] = 1002;
    block[15] = 1;
    char line[64];
    std::snprintf(line, sizeof line, "DNET_MONWT_BUFFER %lX",
                  reinterpret_cast<unsigned long>(block));
    platform::debug_output(line);
    return block;
}

TARN_EXPORT void int_3_break() {
    console_text("INT 3 break\n");
    __asm__ volatile("int3");
}

TARN_EXPORT void __EntryExitfailure() {
    attach();
    hooks().fail_with_text(359,
                           "Failed to return from ENTRY routine\n.Stack is possibly corrupted\n.");
    std::abort();
}
}
