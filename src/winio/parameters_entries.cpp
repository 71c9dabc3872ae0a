#include <algorithm>
#include <cstring>

#include "frame/link_name.h"
#include "winio/callbacks.h"

using namespace tarn::winio;

namespace {

// A Fortran name: cut at 99 characters, trailing blanks ignored.
struct fortran_name {
    char text[100];
    fortran_name(const char* from, std::intptr_t length) {
        auto used = static_cast<std::size_t>(std::clamp<std::intptr_t>(length, 0, 99));
        while (used > 0 && from[used - 1] == ' ') --used;
        std::memcpy(text, from, used);
        text[used] = 0;
    }
};

}  // namespace

extern "C" {

TARN_EXPORT std::intptr_t __quillpan_info(const char* name) {
    return quillpan_info(name);
}
TARN_EXPORT const char* __quillpan_string(const char* name) {
    return quillpan_string(name);
}
TARN_EXPORT void __quillpan_string1(char* buffer, const char* name, std::int32_t size) {
    const char* text = quillpan_string(name);
    if (!buffer || size < 1) return;
    const std::size_t count = std::min(std::strlen(text), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text, count);
    buffer[count] = 0;
}
TARN_EXPORT double __quillpan_float(const char* name) {
    return quillpan_float(name);
}
TARN_EXPORT void __set_quillpan_info(const char* name, std::intptr_t value) {
    set_quillpan_info(name, value);
}
TARN_EXPORT void __set_quillpan_string(const char* name, const char* text) {
    set_quillpan_string(name, text);
}
TARN_EXPORT void __set_quillpan_float(const char* name, double value) {
    set_quillpan_float(name, value);
}
TARN_EXPORT void __quillpan_option(const char* text) {
    set_quillpan_option(text);
}

TARN_EXPORT std::intptr_t QUILLPAN_INFO_h(const char* name, std::intptr_t length)
    LINK_NAME("QUILLPAN_INFO#");
std::intptr_t QUILLPAN_INFO_h(const char* name, std::intptr_t length) {
    return quillpan_info(fortran_name(name, length).text);
}

TARN_EXPORT void QUILLPAN_STRING_h(char* result, std::intptr_t result_length, const char* name,
                                   std::intptr_t length) LINK_NAME("QUILLPAN_STRING#");
void QUILLPAN_STRING_h(char* result, std::intptr_t result_length, const char* name,
                       std::intptr_t length) {
    const char* text = quillpan_string(fortran_name(name, length).text);
    const auto room = static_cast<std::size_t>(std::max<std::intptr_t>(result_length, 0));
    const std::size_t used = std::min(std::strlen(text), room);
    std::memcpy(result, text, used);
    std::memset(result + used, ' ', room - used);
}

TARN_EXPORT void GET_MOUSE_INFO_h(std::int32_t* x, std::int32_t* y, std::int32_t* flags)
    LINK_NAME("GET_MOUSE_INFO#");
void GET_MOUSE_INFO_h(std::int32_t* x, std::int32_t* y, std::int32_t* flags) {
    initialise_quillpan_plus();
    const parameter_set& now = callbacks().context;
    if (x) *x = now.graphics_mouse_x;
    if (y) *y = now.graphics_mouse_y;
    if (flags) *flags = now.graphics_mouse_flags;
}
}
