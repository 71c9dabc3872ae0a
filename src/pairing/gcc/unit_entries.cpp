// The older routines on units: FLUSH, FGET, FPUT, FGETC, FPUTC, FSEEK, FTELL, FNUM, ISATTY and
// TTYNAM, as functions and as subroutines, and the kinds of their results.
#include <cstdlib>
#include <cstring>

#include "fio/gnu/options.h"
#include "fio/gnu/unit_bytes.h"
#include "fio/unit.h"
#include "frame/link_name.h"
#include "pairing/gcc/system_arguments.h"

namespace tarn::gcc {
namespace {

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

}  // extern "C"
}  // namespace tarn::gcc
