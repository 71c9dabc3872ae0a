// The entries of the command line and the environment.

#include "frame/console_lines.h"
#include "frame/link_name.h"
#include "intrinsics/system/command_line.h"
#include "intrinsics/system/text.h"
#include "tarn/files.h"

namespace tarn::intrinsics {
namespace {

constexpr std::int16_t error_no_number = 13;    // the argument is none
constexpr std::int16_t error_no_argument = 18;  // all have been taken

constexpr std::int32_t too_short = -1;
constexpr std::int32_t not_there = 1;

std::int32_t length_of_argument(std::int64_t number) {
    std::string_view text;
    find_argument(number, text);
    return static_cast<std::int32_t>(frame::trimmed(text).size());
}

void give_argument(std::int64_t number, char* text, std::intptr_t length) {
    std::string_view value;
    find_argument(number, value);
    give_text(value, text, length);
}

void give_variable(const char* name, std::intptr_t name_length, char* text, std::intptr_t length) {
    std::string_view value;
    find_variable(frame::trimmed(frame::character(name, name_length)), value);
    give_text(value, text, length);
}

}  // namespace
}  // namespace tarn::intrinsics

using namespace tarn::intrinsics;
using tarn::frame::character;
using tarn::frame::trimmed;

extern "C" {

// ---- The command line ----

TARN_EXPORT std::int32_t IARGC() {
    return argument_count();
}
TARN_EXPORT std::int32_t COMMAND_ARGUMENT_COUNT() TARN_ALIAS(IARGC);
TARN_EXPORT std::int32_t CMNARGS_h() {
    return argument_count();
}
TARN_EXPORT void GETARG(const std::int32_t* number, char* text, std::intptr_t length) {
    give_argument(*number, text, length);
}
TARN_EXPORT void GETARG_h(const std::int32_t* number, char* text, std::intptr_t length) {
    give_argument(*number, text, length);
}
TARN_EXPORT std::int32_t LENARG_h(const std::int32_t* number) {
    return length_of_argument(*number);
}
TARN_EXPORT void CMNAM_h(char* result, std::intptr_t length) {
    std::string_view text;
    next_argument(text);
    give_text(text, result, length);
}
TARN_EXPORT void CMNAMR_h() {
    restart_arguments();
}
TARN_EXPORT void CMPROGNM_h(char* result, std::intptr_t length) {
    give_argument(0, result, length);
}
TARN_EXPORT void CMNUM_h(std::int32_t* value, std::int16_t* error) {
    std::string_view text;
    if (!next_argument(text)) {
        *error = error_no_argument;
    } else {
        *error = whole_number(text, *value) ? std::int16_t{0} : error_no_number;
    }
}
TARN_EXPORT void COMMAND_LINE_h(char* text, std::intptr_t length) {
    give_text(command_line(), text, length);
}
TARN_EXPORT void COMMAND_LINE2_h(char* text, std::intptr_t length) {
    give_text(command_line(), text, length);
}
TARN_EXPORT std::int32_t LEN_CMLINE_h() {
    return static_cast<std::int32_t>(command_line().size());
}
TARN_EXPORT void GET_COMMAND(char* command, std::int32_t* length, std::int32_t* status,
                             std::intptr_t room) {
    const std::string line = command_line();
    if (is_present(command)) give_text(line, command, room);
    give(length, static_cast<std::int32_t>(line.size()));
    give(status, std::int32_t{0});
}
TARN_EXPORT void GET_COMMAND_ARGUMENT(const std::int32_t* number, char* value, std::int32_t* length,
                                      std::int32_t* status, std::intptr_t room) {
    const bool known = *number >= 0 && *number <= argument_count();
    const std::int32_t true_length = length_of_argument(*number);
    std::int32_t outcome = known ? 0 : not_there;
    if (known && is_present(value)) {
        if (true_length > room) {
            outcome = too_short;
        } else {
            give_argument(*number, value, room);
        }
    }
    if (known) give(length, true_length);
    give(status, outcome);
}

TARN_EXPORT void GETCL_h(char* text, std::intptr_t length) {
    GETCL1_h(text, nullptr, length);
}
TARN_EXPORT void GETCL1_h(char* text, std::int32_t* characters_read, std::intptr_t length) {
    std::string line;
    const bool found =
        tarn::frame::console_read_line(line, static_cast<std::size_t>(length > 0 ? length : 0));
    give_text(line, text, length);
    give(characters_read, found ? static_cast<std::int32_t>(line.size()) : -1);
}

// ---- The environment ----

TARN_EXPORT void GET_ENVIRONMENT_VARIABLE(const char* name, char* value, std::int32_t* length,
                                          std::int32_t* status, const std::int32_t* trim_name,
                                          std::intptr_t name_length, std::intptr_t room) {
    std::string_view wanted;
    if (!is_present(name)) {
        if (is_present(value)) give_text({}, value, room);
        give(length, std::int32_t{-1});
        give(status, std::int32_t{0});
        return;
    }
    wanted = character(name, name_length);
    if (!is_present(trim_name) || *trim_name != 0) wanted = trimmed(wanted);
    std::string_view found;
    const bool known = find_variable(wanted, found);
    const bool cut = is_present(value) && static_cast<std::intptr_t>(found.size()) > room;
    if (is_present(value)) give_text(found, value, room);
    give(length, static_cast<std::int32_t>(found.size()));
    give(status, !known ? not_there : cut ? too_short : 0);
}
TARN_EXPORT void GETENV_h(char* result, std::intptr_t length, const char* name,
                          std::intptr_t name_length) {
    give_variable(name, name_length, result, length);
}
TARN_EXPORT void GETENV_d(char* result, std::intptr_t length, const char* name,
                          std::intptr_t name_length) {
    give_variable(name, name_length, result, length);
}
TARN_EXPORT void DOSPARAM_h(const char* name, char* value, std::intptr_t name_length,
                            std::intptr_t length) {
    give_variable(name, name_length, value, length);
}
TARN_EXPORT void GETENVIRON_h(const char* name, char* value, std::intptr_t name_length,
                              std::intptr_t length) {
    give_variable(name, name_length, value, length);
}
TARN_EXPORT std::int32_t PUTENV_h(const char* definition, std::intptr_t length) {
    return put_variable(character(definition, length));
}

}  // extern "C"
