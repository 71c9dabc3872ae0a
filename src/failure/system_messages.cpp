#include "failure/system_messages.h"

#include <cstdint>
#include <cstring>

#include "frame/console_lines.h"
#include "frame/end.h"
#include "frame/link_name.h"
#include "frame/state.h"

namespace tarn::failure {
namespace {

void print_system_error(int code, std::string_view text) {
    if (code == 0) return;
    frame::ensure_up();
    std::string line(frame::trimmed(text));
    if (line.empty()) {
        line = "System error (" + std::to_string(code) + ")";
    }
    line.append(": ");
    frame::console_line(line.append(code == -1 ? "ORVAL library error." : system_text(code)));
}

}  // namespace

std::string system_text(int code) {
    char buffer[256];
    return strerror_r(code, buffer, sizeof buffer);
}

void copy_padded(std::string_view from, char* to, std::ptrdiff_t length) {
    if (length <= 0) return;
    std::size_t room = static_cast<std::size_t>(length);
    std::size_t count = from.copy(to, room);
    std::memset(to + count, ' ', room - count);
}

}  // namespace tarn::failure

using namespace tarn::failure;
using tarn::frame::character;

extern "C" {

TARN_EXPORT void UNIX_ERROR_MESSAGE_h(const std::int16_t* code, char* text, std::ptrdiff_t length)
    LINK_NAME("UNIX_ERROR_MESSAGE#");
void UNIX_ERROR_MESSAGE_h(const std::int16_t* code, char* text, std::ptrdiff_t length) {
    copy_padded(system_text(*code), text, length);
}
TARN_EXPORT void DOS_ERROR_MESSAGE_h(const std::int16_t* code, char* text, std::ptrdiff_t length)
    LINK_NAME("DOS_ERROR_MESSAGE#");
void DOS_ERROR_MESSAGE_h(const std::int16_t* code, char* text, std::ptrdiff_t length) {
    copy_padded(system_text(*code), text, length);
}

TARN_EXPORT void PRERR_h(const std::int16_t* code, const char* text, std::ptrdiff_t length)
    LINK_NAME("PRERR#");
void PRERR_h(const std::int16_t* code, const char* text, std::ptrdiff_t length) {
    print_system_error(*code, character(text, length));
}

TARN_EXPORT void UNIXERR_h(const std::int16_t* code, const char* text, std::ptrdiff_t length)
    LINK_NAME("UNIXERR#");
void UNIXERR_h(const std::int16_t* code, const char* text, std::ptrdiff_t length) {
    if (*code == 0) return;
    print_system_error(*code, character(text, length));
    tarn::frame::exit_fortran(1);
}

TARN_EXPORT void DOSERR_h(const std::int16_t* code) LINK_NAME("DOSERR#");
void DOSERR_h(const std::int16_t* code) {
    if (*code == 0) return;
    tarn::frame::ensure_up();
    tarn::frame::console_line(system_text(*code));
    tarn::frame::exit_fortran(*code);
}

// Nothing reads the switch any more.
TARN_EXPORT void DUMP_CORE_ON_ERROR_h() LINK_NAME("DUMP_CORE_ON_ERROR#");
void DUMP_CORE_ON_ERROR_h() {}
}
