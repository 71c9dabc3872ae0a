// Fortran handles as gfortran calls them: `name@` arrives as `name__`, every argument by reference,
// the lengths of CHARACTER arguments by value behind the last.
#include <cstdint>

#include "frame/link_name.h"
#include "tarn/handles.h"

namespace {

// A buffer of any type: where it is CHARACTER, its length comes behind the other arguments and
// nobody reads it.
using Buffer = void*;
using ConstBuffer = const void*;

std::intptr_t signed_length(std::size_t length) {
    return static_cast<std::intptr_t>(length);
}

}  // namespace

extern "C" {

TARN_EXPORT void openr__(const char* name, std::int16_t* handle, std::int16_t* error,
                         std::size_t length) {
    OPENR_h(name, handle, error, signed_length(length));
}
TARN_EXPORT void openw__(const char* name, std::int16_t* handle, std::int16_t* error,
                         std::size_t length) {
    OPENW_h(name, handle, error, signed_length(length));
}
TARN_EXPORT void openrw__(const char* name, std::int16_t* handle, std::int16_t* error,
                          std::size_t length) {
    OPENRW_h(name, handle, error, signed_length(length));
}
TARN_EXPORT void openf__(const char* name, const std::int16_t* mode, std::int16_t* handle,
                         std::int16_t* error, std::size_t length) {
    OPENF_h(name, mode, handle, error, signed_length(length));
}
TARN_EXPORT void closef__(const std::int16_t* handle, std::int16_t* error) {
    CLOSEF_h(handle, error);
}
TARN_EXPORT void closefd__(const std::int16_t* handle, std::int16_t* error) {
    CLOSEFD_h(handle, error);
}

TARN_EXPORT void readf__(Buffer buffer, const std::int16_t* handle, const std::int32_t* count,
                         std::int32_t* bytes_read, std::int16_t* error) {
    READF_h(buffer, handle, count, bytes_read, error);
}
TARN_EXPORT void readfa__(char* text, const std::int16_t* handle, std::int32_t* characters_read,
                          std::int16_t* error, std::size_t length) {
    READFA_h(text, handle, characters_read, error, signed_length(length));
}
TARN_EXPORT void readfa1__(Buffer text, const std::int32_t* length, const std::int16_t* handle,
                           std::int32_t* characters_read, std::int16_t* error) {
    READFA1_h(static_cast<char*>(text), length, handle, characters_read, error);
}
TARN_EXPORT void writef__(ConstBuffer buffer, const std::int16_t* handle, const std::int32_t* count,
                          std::int16_t* error) {
    WRITEF_h(buffer, handle, count, error);
}
TARN_EXPORT void writefa__(const char* text, const std::int16_t* handle, std::int16_t* error,
                           std::size_t length) {
    WRITEFA_h(text, handle, error, signed_length(length));
}
TARN_EXPORT void writefa1__(ConstBuffer text, const std::int32_t* length,
                            const std::int16_t* handle, std::int16_t* error) {
    WRITEFA1_h(static_cast<const char*>(text), length, handle, error);
}

TARN_EXPORT void rfpos__(const std::int16_t* handle, std::int32_t* position, std::int16_t* error) {
    RFPOS_h(handle, position, error);
}
TARN_EXPORT void rfposlong__(const std::int16_t* handle, std::int64_t* position,
                             std::int16_t* error) {
    RFPOSLONG_h(handle, position, error);
}
TARN_EXPORT void fpos__(const std::int16_t* handle, const std::int32_t* position,
                        std::int32_t* new_position, std::int16_t* error) {
    FPOS_h(handle, position, new_position, error);
}
TARN_EXPORT void fposlong__(const std::int16_t* handle, const std::int64_t* position,
                            std::int64_t* new_position, std::int16_t* error) {
    FPOSLONG_h(handle, position, new_position, error);
}
TARN_EXPORT void move_to_eof__(const std::int16_t* handle, std::int32_t* position,
                               std::int16_t* error) {
    MOVE_TO_EOF_h(handle, position, error);
}
TARN_EXPORT void fpos_eof__(const std::int16_t*, std::int32_t*, std::int16_t*)
    TARN_ALIAS(move_to_eof__);
TARN_EXPORT void move_to_eoflong__(const std::int16_t* handle, std::int64_t* position,
                                   std::int16_t* error) {
    MOVE_TO_EOFLONG_h(handle, position, error);
}
TARN_EXPORT void fpos_eoflong__(const std::int16_t*, std::int64_t*, std::int16_t*)
    TARN_ALIAS(move_to_eoflong__);
TARN_EXPORT void empty__(const std::int16_t* handle, std::int16_t* error) {
    EMPTY_h(handle, error);
}
TARN_EXPORT void file_truncate__(const std::int16_t* handle, std::int16_t* error) {
    FILE_TRUNCATE_h(handle, error);
}

TARN_EXPORT void read_tabs1__(const std::int16_t* handle) {
    READ_TABS1_h(handle);
}
TARN_EXPORT std::int32_t translate_fortran_handle__(const std::int16_t* handle) {
    return TRANSLATE_FORTRAN_HANDLE_h(handle);
}
// `error` may be absent.
TARN_EXPORT void flush_fortran_handle__(const std::int16_t* handle, std::int16_t* error) {
    const std::int32_t result = FLUSH_FORTRAN_HANDLE_h(handle);
    if (error != nullptr) *error = static_cast<std::int16_t>(result);
}
TARN_EXPORT void get_handle__(const char* path, std::int16_t* handle, std::size_t length) {
    GET_HANDLE_h(path, handle, signed_length(length));
}
TARN_EXPORT void get_path__(const std::int16_t* handle, char* text, std::size_t length) {
    GET_PATH_h(handle, text, signed_length(length));
}

}  // extern "C"
