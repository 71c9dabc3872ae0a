// The older routines on units: FLUSH, FGET, FPUT, FGETC, FPUTC, FSEEK, FTELL, FNUM, ISATTY, TTYNAM,
// FSTAT, as functions and as subroutines, and the kinds of their results.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

#include "fio/gnu/options.h"
#include "fio/gnu/unit_bytes.h"
#include "fio/unit.h"
#include "frame/link_name.h"

namespace tarn::gcc {
namespace {

template <class Integer>
void store(Integer* variable, std::int64_t value) {
    if (variable != nullptr) *variable = static_cast<Integer>(value);
}

template <class Integer>
void flush(const Integer* unit) {
    if (unit == nullptr) return fio::flush_all_units();
    fio::flush_one_unit(static_cast<std::int32_t>(*unit));
}

// FGET and FPUT are FGETC and FPUTC of the standard units.
int get_from_input(char* text, std::size_t length) {
    return fio::get_byte(fio::gnu_options().stdin_unit, text, length);
}

int put_to_output(const char* text, std::size_t length) {
    return fio::put_byte(fio::gnu_options().stdout_unit, text, length);
}

// An array of rank 1, as far as its elements have to be found.
struct Vector {
    void* base;
    std::int64_t offset;
    std::size_t element_length;
    std::int64_t type;
    std::int64_t span;
    std::int64_t stride;
    std::int64_t lower_bound;
    std::int64_t upper_bound;
};

// The thirteen values of FSTAT in their order.
template <class Integer>
Integer describe(std::int32_t unit, const Vector& values) {
    constexpr std::int64_t count = 13;
    struct stat about;
    const int descriptor = fio::descriptor_of_unit(unit);
    if (descriptor < 0) return EBADF;
    if (values.upper_bound - values.lower_bound + 1 < count) return EINVAL;
    if (::fstat(descriptor, &about) != 0) return static_cast<Integer>(errno);
    const std::int64_t row[count] = {
        static_cast<std::int64_t>(about.st_dev),
        static_cast<std::int64_t>(about.st_ino),
        static_cast<std::int64_t>(about.st_mode),
        static_cast<std::int64_t>(about.st_nlink),
        static_cast<std::int64_t>(about.st_uid),
        static_cast<std::int64_t>(about.st_gid),
        static_cast<std::int64_t>(about.st_rdev),
        about.st_size,
        about.st_atime,
        about.st_mtime,
        about.st_ctime,
        about.st_blksize,
        about.st_blocks,
    };
    auto* element = static_cast<Integer*>(values.base);
    for (const std::int64_t value : row) {
        *element = static_cast<Integer>(value);
        element += values.stride;
    }
    return 0;
}

}  // namespace

extern "C" {

TARN_EXPORT void _gfortran_flush_i4(const std::int32_t* unit) {
    flush(unit);
}
TARN_EXPORT void _gfortran_flush_i8(const std::int64_t* unit) {
    flush(unit);
}

TARN_EXPORT int _gfortran_fgetc(const int* unit, char* text, std::size_t length) {
    return fio::get_byte(*unit, text, length);
}
TARN_EXPORT int _gfortran_fget(char* text, std::size_t length) {
    return get_from_input(text, length);
}
TARN_EXPORT int _gfortran_fputc(const int* unit, const char* text, std::size_t length) {
    return fio::put_byte(*unit, text, length);
}
TARN_EXPORT int _gfortran_fput(const char* text, std::size_t length) {
    return put_to_output(text, length);
}

TARN_EXPORT void _gfortran_fgetc_i1_sub(const int* unit, char* text, std::int8_t* status,
                                        std::size_t length) {
    store(status, fio::get_byte(*unit, text, length));
}
TARN_EXPORT void _gfortran_fgetc_i2_sub(const int* unit, char* text, std::int16_t* status,
                                        std::size_t length) {
    store(status, fio::get_byte(*unit, text, length));
}
TARN_EXPORT void _gfortran_fgetc_i4_sub(const int* unit, char* text, std::int32_t* status,
                                        std::size_t length) {
    store(status, fio::get_byte(*unit, text, length));
}
TARN_EXPORT void _gfortran_fgetc_i8_sub(const int* unit, char* text, std::int64_t* status,
                                        std::size_t length) {
    store(status, fio::get_byte(*unit, text, length));
}

TARN_EXPORT void _gfortran_fget_i1_sub(char* text, std::int8_t* status, std::size_t length) {
    store(status, get_from_input(text, length));
}
TARN_EXPORT void _gfortran_fget_i2_sub(char* text, std::int16_t* status, std::size_t length) {
    store(status, get_from_input(text, length));
}
TARN_EXPORT void _gfortran_fget_i4_sub(char* text, std::int32_t* status, std::size_t length) {
    store(status, get_from_input(text, length));
}
TARN_EXPORT void _gfortran_fget_i8_sub(char* text, std::int64_t* status, std::size_t length) {
    store(status, get_from_input(text, length));
}

TARN_EXPORT void _gfortran_fputc_i1_sub(const int* unit, const char* text, std::int8_t* status,
                                        std::size_t length) {
    store(status, fio::put_byte(*unit, text, length));
}
TARN_EXPORT void _gfortran_fputc_i2_sub(const int* unit, const char* text, std::int16_t* status,
                                        std::size_t length) {
    store(status, fio::put_byte(*unit, text, length));
}
TARN_EXPORT void _gfortran_fputc_i4_sub(const int* unit, const char* text, std::int32_t* status,
                                        std::size_t length) {
    store(status, fio::put_byte(*unit, text, length));
}
TARN_EXPORT void _gfortran_fputc_i8_sub(const int* unit, const char* text, std::int64_t* status,
                                        std::size_t length) {
    store(status, fio::put_byte(*unit, text, length));
}

TARN_EXPORT void _gfortran_fput_i1_sub(const char* text, std::int8_t* status, std::size_t length) {
    store(status, put_to_output(text, length));
}
TARN_EXPORT void _gfortran_fput_i2_sub(const char* text, std::int16_t* status, std::size_t length) {
    store(status, put_to_output(text, length));
}
TARN_EXPORT void _gfortran_fput_i4_sub(const char* text, std::int32_t* status, std::size_t length) {
    store(status, put_to_output(text, length));
}
TARN_EXPORT void _gfortran_fput_i8_sub(const char* text, std::int64_t* status, std::size_t length) {
    store(status, put_to_output(text, length));
}

TARN_EXPORT void _gfortran_fseek_sub(const int* unit, const std::int64_t* offset, const int* whence,
                                     int* status) {
    store(status, fio::seek_unit(*unit, *offset, *whence));
}

TARN_EXPORT std::int64_t _gfortran_ftell(const int* unit) {
    return fio::tell_unit(*unit);
}
TARN_EXPORT void _gfortran_ftell_i1_sub(const int* unit, std::int8_t* offset) {
    store(offset, fio::tell_unit(*unit));
}
TARN_EXPORT void _gfortran_ftell_i2_sub(const int* unit, std::int16_t* offset) {
    store(offset, fio::tell_unit(*unit));
}
TARN_EXPORT void _gfortran_ftell_i4_sub(const int* unit, std::int32_t* offset) {
    store(offset, fio::tell_unit(*unit));
}
TARN_EXPORT void _gfortran_ftell_i8_sub(const int* unit, std::int64_t* offset) {
    store(offset, fio::tell_unit(*unit));
}

TARN_EXPORT std::int32_t _gfortran_fnum_i4(const std::int32_t* unit) {
    return fio::descriptor_of_unit(*unit);
}
TARN_EXPORT std::int64_t _gfortran_fnum_i8(const std::int64_t* unit) {
    return fio::descriptor_of_unit(static_cast<std::int32_t>(*unit));
}

TARN_EXPORT std::int32_t _gfortran_isatty_l4(const int* unit) {
    return fio::unit_is_terminal(*unit) ? 1 : 0;
}
TARN_EXPORT std::int64_t _gfortran_isatty_l8(const int* unit) {
    return fio::unit_is_terminal(*unit) ? 1 : 0;
}

TARN_EXPORT void _gfortran_ttynam_sub(const int* unit, char* name, std::size_t length) {
    fio::terminal_name(*unit, name, length);
}
// The function's result: a text that the program frees, or none of length 0.
TARN_EXPORT void _gfortran_ttynam(char** name, std::size_t* length, int unit) {
    char text[256];
    fio::terminal_name(unit, text, sizeof text);
    std::size_t used = sizeof text;
    while (used > 0 && text[used - 1] == ' ') --used;
    *name = used > 0 ? static_cast<char*>(std::malloc(used)) : nullptr;
    *length = *name != nullptr ? used : 0;
    if (*name != nullptr) std::memcpy(*name, text, used);
}

TARN_EXPORT std::int32_t _gfortran_fstat_i4(const std::int32_t* unit, const Vector* values) {
    return describe<std::int32_t>(*unit, *values);
}
TARN_EXPORT std::int64_t _gfortran_fstat_i8(const std::int64_t* unit, const Vector* values) {
    return describe<std::int64_t>(static_cast<std::int32_t>(*unit), *values);
}
TARN_EXPORT void _gfortran_fstat_i4_sub(const std::int32_t* unit, const Vector* values,
                                        std::int32_t* status) {
    store(status, describe<std::int32_t>(*unit, *values));
}
TARN_EXPORT void _gfortran_fstat_i8_sub(const std::int64_t* unit, const Vector* values,
                                        std::int64_t* status) {
    store(status, describe<std::int64_t>(static_cast<std::int32_t>(*unit), *values));
}

}  // extern "C"
}  // namespace tarn::gcc
