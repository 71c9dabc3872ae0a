// The library's routines on characters as gfortran calls them: `name@` arrives as `name__`, the
// lengths of CHARACTER arguments by value behind the last, a CHARACTER result as an address and a
// length in front.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "frame/link_name.h"
#include "tarn/characters.h"

namespace {

std::intptr_t length_of(std::size_t length) {
    return static_cast<std::intptr_t>(length);
}

// A default INTEGER as the 16-bit argument that the library has there.
std::int16_t narrowed(std::int32_t value) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<std::int32_t>(value, Limits::min(), Limits::max()));
}

}  // namespace

extern "C" {

TARN_EXPORT void upcase__(char* text, std::size_t length) {
    UPCASE_h(text, length_of(length));
}
TARN_EXPORT void lcase__(char* text, std::size_t length) {
    LCASE_h(text, length_of(length));
}
TARN_EXPORT void trim__(char* text, std::size_t length) {
    TRIM_h(text, length_of(length));
}
TARN_EXPORT void trimr__(char* text, std::size_t length) {
    TRIMR_h(text, length_of(length));
}
TARN_EXPORT void centre__(char* result, std::size_t room, const char* source,
                          const std::int32_t* width, std::size_t length) {
    const std::int16_t columns = narrowed(*width);
    CENTRE_h(result, length_of(room), source, &columns, length_of(length));
}
TARN_EXPORT void char_fill__(char* text, const char* value, std::size_t length, std::size_t) {
    CHAR_FILL_h(text, value, length_of(length));
}
TARN_EXPORT std::int32_t nonblk__(const char* text, std::size_t length) {
    return NONBLK_h(text, length_of(length));
}
TARN_EXPORT void append_string__(char* text, const char* addition, std::size_t length,
                                 std::size_t addition_length) {
    APPEND_STRING_h(text, addition, length_of(length), length_of(addition_length));
}
TARN_EXPORT void cnum__(char* result, std::size_t room, const std::int32_t* value) {
    CNUM_h(result, length_of(room), value);
}
TARN_EXPORT void sayint__(char* result, std::size_t room, const std::int32_t* value) {
    SAYINT_h(result, length_of(room), value);
}
TARN_EXPORT void isort__(std::int32_t* index, const std::int32_t* values,
                         const std::int32_t* count) {
    ISORT_h(index, values, count);
}
TARN_EXPORT void rsort__(std::int32_t* index, const float* values, const std::int32_t* count) {
    RSORT_h(index, values, count);
}
TARN_EXPORT void dsort__(std::int32_t* index, const double* values, const std::int32_t* count) {
    DSORT_h(index, values, count);
}
TARN_EXPORT void chsort__(std::int32_t* index, const char* values, const std::int32_t* count,
                          std::size_t length) {
    CHSORT_h(index, values, count, length_of(length));
}
TARN_EXPORT void chseek__(const char* key, const char* values, const std::int32_t* count,
                          std::int32_t* position, std::size_t key_length, std::size_t length) {
    CHSEEK_h(key, values, count, position, length_of(key_length), length_of(length));
}
}
