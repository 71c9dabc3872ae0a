// gfortran's intrinsics that ask about the process and where it runs: the environment, the current
// folder, who and where, and the last error of the system.
#include <cstdio>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "pairing/gcc/system_arguments.h"

namespace tarn::gcc {
namespace {

constexpr int run_time_error = 381;
constexpr int truncated = -1;
constexpr int no_such_variable = 1;

const char* variable(std::string_view name, bool trimmed) {
    while (trimmed && !name.empty() && name.back() == ' ') name.remove_suffix(1);
    return std::getenv(std::string(name).c_str());
}

template <class Integer>
void get_environment_variable(const char* name, char* value, Integer* length, Integer* status,
                              const std::int32_t* trim_name, std::size_t name_length,
                              std::size_t value_length) {
    if (name_length == 0) {
        frame::ensure_up();
        failure::fail_sentence(run_time_error,
                               "GET_ENVIRONMENT_VARIABLE was given a name of no characters", {});
    }
    const char* found = variable({name, name_length}, trim_name == nullptr || *trim_name != 0);
    const std::string_view text = found != nullptr ? found : "";
    store_text(text, value, value_length);
    store(length, static_cast<std::int64_t>(text.size()));
    if (found == nullptr) return store(status, no_such_variable);
    store(status, value != nullptr && text.size() > value_length ? truncated : 0);
}

// Blank, with an error, where the name is too long.
int current_folder(char* text, std::size_t length) {
    if (length == 0) return errno = EINVAL;
    char* path = ::getcwd(nullptr, 0);
    if (path == nullptr) {
        store_text("", text, length);
        return errno;
    }
    const bool fits = std::strlen(path) <= length;
    store_text(fits ? path : "", text, length);
    std::free(path);
    return fits ? 0 : errno = ERANGE;
}

int enter_folder(const char* name, std::size_t length) {
    return with_name(name, length, ::chdir);
}

int host_name(char* text, std::size_t length) {
    char name[256] = "";
    int error = ::gethostname(name, sizeof name - 1) == 0 ? 0 : errno;
    if (error == 0 && std::strlen(name) > length) error = ENAMETOOLONG;
    store_text(error == 0 ? name : "", text, length);
    return error != 0 ? errno = error : 0;
}

void login_name(char* text, std::size_t length) {
    char room[1024];
    passwd entry{};
    passwd* found = nullptr;
    const bool known = ::getpwuid_r(::geteuid(), &entry, room, sizeof room, &found) == 0;
    store_text(known && found != nullptr ? found->pw_name : "", text, length);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT void _gfortran_get_environment_variable_i4(const char* name, char* value,
                                                       std::int32_t* length, std::int32_t* status,
                                                       const std::int32_t* trim_name,
                                                       std::size_t name_length,
                                                       std::size_t value_length) {
    get_environment_variable(name, value, length, status, trim_name, name_length, value_length);
}
// A LOGICAL tells by its lowest byte, whatever its kind.
TARN_EXPORT void _gfortran_get_environment_variable_i8(const char* name, char* value,
                                                       std::int64_t* length, std::int64_t* status,
                                                       const std::int32_t* trim_name,
                                                       std::size_t name_length,
                                                       std::size_t value_length) {
    get_environment_variable(name, value, length, status, trim_name, name_length, value_length);
}
TARN_EXPORT void _gfortran_getenv(const char* name, char* value, std::size_t name_length,
                                  std::size_t value_length) {
    const char* found = variable({name, name_length}, true);
    store_text(found != nullptr ? found : "", value, value_length);
}

TARN_EXPORT int _gfortran_getcwd(char* path, std::size_t length) {
    return current_folder(path, length);
}
TARN_EXPORT void _gfortran_getcwd_i4_sub(char* path, std::int32_t* status, std::size_t length) {
    store(status, current_folder(path, length));
}
TARN_EXPORT void _gfortran_getcwd_i8_sub(char* path, std::int64_t* status, std::size_t length) {
    store(status, current_folder(path, length));
}

TARN_EXPORT std::int32_t _gfortran_chdir_i4(const char* path, std::size_t length) {
    return enter_folder(path, length);
}
TARN_EXPORT std::int64_t _gfortran_chdir_i8(const char* path, std::size_t length) {
    return enter_folder(path, length);
}
TARN_EXPORT void _gfortran_chdir_i4_sub(const char* path, std::int32_t* status,
                                        std::size_t length) {
    store(status, enter_folder(path, length));
}
TARN_EXPORT void _gfortran_chdir_i8_sub(const char* path, std::int64_t* status,
                                        std::size_t length) {
    store(status, enter_folder(path, length));
}

TARN_EXPORT int _gfortran_hostnm(char* name, std::size_t length) {
    return host_name(name, length);
}
TARN_EXPORT void _gfortran_hostnm_i4_sub(char* name, std::int32_t* status, std::size_t length) {
    store(status, host_name(name, length));
}
TARN_EXPORT void _gfortran_hostnm_i8_sub(char* name, std::int64_t* status, std::size_t length) {
    store(status, host_name(name, length));
}

TARN_EXPORT void _gfortran_getlog(char* name, std::size_t length) {
    login_name(name, length);
}
TARN_EXPORT int _gfortran_getpid() {
    return ::getpid();
}
TARN_EXPORT int _gfortran_getuid() {
    return static_cast<int>(::getuid());
}
TARN_EXPORT int _gfortran_getgid() {
    return static_cast<int>(::getgid());
}

TARN_EXPORT std::int32_t _gfortran_ierrno_i4() {
    return errno;
}
TARN_EXPORT std::int64_t _gfortran_ierrno_i8() {
    return errno;
}
TARN_EXPORT void _gfortran_gerror(char* text, std::size_t length) {
    store_text(std::strerror(errno), text, length);
}
TARN_EXPORT void _gfortran_perror_sub(const char* text, std::size_t length) {
    const int error = errno;
    std::string prefix(text, length);
    prefix.erase(prefix.find_last_not_of(' ') + 1);
    errno = error;
    std::perror(prefix.c_str());
}

}  // extern "C"
