// The entries of Fortran handles.
#include <cstring>

#include "fio/handles/handles.h"
#include "frame/console_lines.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "tarn/handles.h"

namespace tarn::fio::handles {
namespace {

constexpr std::int16_t not_found = -1;  // 65535 to those who read it without a sign

std::int16_t small(int error) {
    return static_cast<std::int16_t>(error);
}

using Opener = Number (*)(std::string_view name, int mode, int& error);

void open_named(Opener opener, const char* name, std::ptrdiff_t length, int mode,
                std::int16_t* handle, std::int16_t* error) {
    frame::ensure_up();
    int result = 0;
    *handle = opener(frame::character(name, length), mode, result);
    *error = small(result);
}

// A position in the width of the caller's variable, which stays as it was after an error.
template <typename Integer, typename Routine>
int with_position(Routine routine, Integer* out) {
    std::int64_t position = 0;
    const int error = routine(position);
    if (error == 0) *out = static_cast<Integer>(position);
    return error;
}

template <typename Integer>
std::int16_t read_position(std::int16_t handle, Integer* out) {
    return small(with_position([&](std::int64_t& at) { return position(handle, at); }, out));
}

template <typename Integer>
std::int16_t move_to_end(std::int16_t handle, Integer* out) {
    return small(with_position([&](std::int64_t& at) { return seek_to_end(handle, at); }, out));
}

std::int16_t read_text_line(char* text, std::int64_t capacity, std::int16_t handle,
                            std::int32_t* length) {
    std::int64_t stored = 0;
    const int error = read_line(handle, text, capacity, stored);
    *length = static_cast<std::int32_t>(stored);
    return small(error);
}

}  // namespace
}  // namespace tarn::fio::handles

using namespace tarn::fio;
using namespace tarn::fio::handles;

extern "C" {

// ---- Opening and closing ----

TARN_EXPORT void OPENR_h(const char* name, std::int16_t* handle, std::int16_t* error,
                         std::intptr_t length) {
    open_named(handles::open, name, length, mode_word_openr, handle, error);
}
TARN_EXPORT void OPENW_h(const char* name, std::int16_t* handle, std::int16_t* error,
                         std::intptr_t length) {
    open_named(handles::open, name, length, mode_word_openw, handle, error);
}
TARN_EXPORT void OPENRW_h(const char* name, std::int16_t* handle, std::int16_t* error,
                          std::intptr_t length) {
    open_named(handles::open, name, length, mode_word_openrw, handle, error);
}
TARN_EXPORT void OPENF_h(const char* name, const std::int16_t* mode, std::int16_t* handle,
                         std::int16_t* error, std::intptr_t length) {
    open_named(open_shared, name, length, *mode, handle, error);
}
TARN_EXPORT void CLOSEF_h(const std::int16_t* handle, std::int16_t* error) {
    *error = small(handles::close(*handle, false));
}
TARN_EXPORT void CLOSEFD_h(const std::int16_t* handle, std::int16_t* error) {
    *error = small(handles::close(*handle, true));
}

// ---- Bytes and lines ----

TARN_EXPORT void READF_h(void* buffer, const std::int16_t* handle, const std::int32_t* count,
                         std::int32_t* bytes_read, std::int16_t* error) {
    std::int64_t done = 0;
    *error = small(handles::read(*handle, static_cast<char*>(buffer), *count, done));
    *bytes_read = static_cast<std::int32_t>(done);
}
TARN_EXPORT void READFA_h(char* text, const std::int16_t* handle, std::int32_t* characters_read,
                          std::int16_t* error, std::intptr_t length) {
    *error = read_text_line(text, length, *handle, characters_read);
}
TARN_EXPORT void READFA1_h(char* text, const std::int32_t* length, const std::int16_t* handle,
                           std::int32_t* characters_read, std::int16_t* error) {
    *error = read_text_line(text, *length, *handle, characters_read);
}
TARN_EXPORT void WRITEF_h(const void* buffer, const std::int16_t* handle, const std::int32_t* count,
                          std::int16_t* error) {
    *error = small(handles::write(*handle, static_cast<const char*>(buffer), *count));
}
TARN_EXPORT void WRITEFA_h(const char* text, const std::int16_t* handle, std::int16_t* error,
                           std::intptr_t length) {
    *error = small(write_line(*handle, text, length));
}
TARN_EXPORT void WRITEFA1_h(const char* text, const std::int32_t* length,
                            const std::int16_t* handle, std::int16_t* error) {
    *error = small(write_line(*handle, text, *length));
}

// ---- Positions ----

TARN_EXPORT void RFPOS_h(const std::int16_t* handle, std::int32_t* position, std::int16_t* error) {
    *error = read_position(*handle, position);
}
TARN_EXPORT void RFPOSLONG_h(const std::int16_t* handle, std::int64_t* position,
                             std::int16_t* error) {
    *error = read_position(*handle, position);
}
TARN_EXPORT void FPOS_h(const std::int16_t* handle, const std::int32_t* position,
                        std::int32_t* new_position, std::int16_t* error) {
    *error = small(with_position([&](std::int64_t& at) { return seek32(*handle, *position, at); },
                                 new_position));
}
TARN_EXPORT void FPOSLONG_h(const std::int16_t* handle, const std::int64_t* position,
                            std::int64_t* new_position, std::int16_t* error) {
    *error = small(with_position([&](std::int64_t& at) { return seek(*handle, *position, at); },
                                 new_position));
}
TARN_EXPORT void MOVE_TO_EOF_h(const std::int16_t* handle, std::int32_t* position,
                               std::int16_t* error) {
    *error = move_to_end(*handle, position);
}
TARN_EXPORT void FPOS_EOF_h(const std::int16_t* handle, std::int32_t* position,
                            std::int16_t* error) {
    *error = move_to_end(*handle, position);
}
TARN_EXPORT void MOVE_TO_EOFLONG_h(const std::int16_t* handle, std::int64_t* position,
                                   std::int16_t* error) {
    *error = move_to_end(*handle, position);
}
TARN_EXPORT void FPOS_EOFLONG_h(const std::int16_t* handle, std::int64_t* position,
                                std::int16_t* error) {
    *error = move_to_end(*handle, position);
}
TARN_EXPORT void EMPTY_h(const std::int16_t* handle, std::int16_t* error) {
    *error = small(make_empty(*handle));
}
TARN_EXPORT void FILE_TRUNCATE_h(const std::int16_t* handle, std::int16_t* error) {
    *error = small(handles::truncate(*handle));
}

// ---- What a handle stands for ----

TARN_EXPORT void READ_TABS1_h(const std::int16_t* handle) {
    keep_tabs(*handle);
}
TARN_EXPORT std::int32_t TRANSLATE_FORTRAN_HANDLE_h(const std::int16_t* handle) {
    return descriptor_of(*handle);
}
TARN_EXPORT std::int32_t FLUSH_FORTRAN_HANDLE_h(const std::int16_t* handle) {
    return flush(*handle);
}
TARN_EXPORT void GET_HANDLE_h(const char* path, std::int16_t* handle, std::intptr_t length) {
    const Number found = find(tarn::frame::character(path, length));
    *handle = found != none ? found : not_found;
}
TARN_EXPORT void GET_PATH_h(const std::int16_t* handle, char* text, std::intptr_t length) {
    if (length <= 0) return;
    const std::string* path = path_of(*handle);
    std::size_t count = 0;
    if (path != nullptr) count = path->copy(text, static_cast<std::size_t>(length));
    std::memset(text + count, ' ', static_cast<std::size_t>(length) - count);
}

// ---- From C, with values ----

TARN_EXPORT std::int16_t __fortran_open(const char* name, int mode, std::int16_t* error) {
    std::int16_t handle = none;
    open_named(handles::open, name, static_cast<std::ptrdiff_t>(std::strlen(name)), mode, &handle,
               error);
    return handle;
}
TARN_EXPORT std::int16_t __fortran_share_open(const char* name, int mode, std::int16_t* error) {
    std::int16_t handle = none;
    open_named(open_shared, name, static_cast<std::ptrdiff_t>(std::strlen(name)), mode, &handle,
               error);
    return handle;
}
TARN_EXPORT int __fortran_closef(std::int16_t handle, int remove) {
    return handles::close(handle, remove != 0);
}
TARN_EXPORT std::int16_t __allocate_fortran_handle(int descriptor, int mode) {
    tarn::frame::ensure_up();
    return adopt(descriptor, mode);
}
TARN_EXPORT int __translate_fortran_handle(std::int16_t handle) {
    return descriptor_of(handle);
}
TARN_EXPORT int __flush_fortran_handle(std::int16_t handle) {
    return flush(handle);
}
TARN_EXPORT int __unbuffer_handle(std::int16_t handle) {
    return unbuffer(handle);
}
TARN_EXPORT int __is_repositionable(std::int16_t handle) {
    return is_repositionable(handle) ? 1 : 0;
}
TARN_EXPORT std::int16_t __find_handle_from_path(const char* path) {
    return find(path);
}
TARN_EXPORT const char* __find_path_from_handle(std::int16_t handle, std::int32_t* length) {
    const std::string* path = path_of(handle);
    *length = path != nullptr ? static_cast<std::int32_t>(path->size()) : -1;
    return path != nullptr ? path->c_str() : nullptr;
}
TARN_EXPORT void __flush_fortran_io() {
    finish();
}
TARN_EXPORT void __init_f95_io() {
    set_buffered_default();
}

}  // extern "C"
