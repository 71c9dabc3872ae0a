// Texts between Fortran and C.
#include <algorithm>
#include <cstring>

#include "frame/console_lines.h"
#include "frame/link_name.h"
#include "intrinsics/system/text.h"
#include "tarn/files.h"

using namespace tarn::intrinsics;
using tarn::frame::character;
using tarn::frame::trimmed;

extern "C" {

TARN_EXPORT void MAKE_CSTRING_h(const char* text, char* buffer, std::intptr_t length) {
    const std::string_view kept = trimmed(character(text, length));
    std::memcpy(buffer, kept.data(), kept.size());
    buffer[kept.size()] = 0;
}
TARN_EXPORT void FSTRCPY(char* buffer, std::intptr_t size, const char* text, std::intptr_t length) {
    if (size <= 0) return;
    const std::string_view whole = trimmed(character(text, length));
    const std::string_view kept = whole.substr(0, static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, kept.data(), kept.size());
    buffer[kept.size()] = 0;
}
TARN_EXPORT void GET_CSTRING_h(char* text, const char* string, std::intptr_t length) {
    give_text(string, text, length);
}
TARN_EXPORT void RETURNED_CSTRING_h(char* text, const char* string, std::intptr_t length) {
    give_text(string, text, length);
}

}  // extern "C"
