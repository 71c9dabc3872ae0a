// The command line of a gfortran program.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/fortran_start.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/system/command_line.h"

namespace tarn::gcc {
namespace {

using intrinsics::find_argument;

constexpr int truncated = -1;
constexpr int failed = 42;

// Blank-padded into a CHARACTER argument; an absent one is null.
void store(std::string_view text, char* value, std::size_t value_length) {
    if (!value) return;
    std::size_t count = text.copy(value, value_length);
    std::memset(value + count, ' ', value_length - count);
}

template <typename Integer>
void answer(std::string_view text, bool found, char* value, std::size_t value_length,
            Integer* length, Integer* status) {
    store(text, value, value_length);
    if (length) *length = static_cast<Integer>(text.size());
    if (!status) return;
    if (!found || (value && value_length == 0)) {
        *status = failed;
    } else {
        *status = value && text.size() > value_length ? truncated : 0;
    }
}

template <typename Integer>
void get_argument(const Integer* number, char* value, Integer* length, Integer* status,
                  std::size_t value_length) {
    std::string_view text;
    bool found = find_argument(*number, text);
    answer(text, found, value, value_length, length, status);
}

template <typename Integer>
void get_command(char* value, Integer* length, Integer* status, std::size_t value_length) {
    frame::ensure_up();
    const frame::State& state = frame::state();
    std::string line;
    for (int i = 0; i < state.argument_count; ++i) {
        if (i > 0) line.push_back(' ');
        line.append(state.arguments[i]);
    }
    answer(line, true, value, value_length, length, status);
}

template <typename Integer>
void old_argument(const Integer* number, char* value, std::size_t value_length) {
    std::string_view text;
    find_argument(*number, text);
    store(text, value, value_length);
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT void _gfortran_set_args(int count, char** values) {
    tarn::frame::ensure_up();
    tarn::frame::set_arguments(count, values);
}

TARN_EXPORT void _gfortran_get_command_argument_i4(const std::int32_t* number, char* value,
                                                   std::int32_t* length, std::int32_t* status,
                                                   std::size_t value_length) {
    get_argument(number, value, length, status, value_length);
}
TARN_EXPORT void _gfortran_get_command_argument_i8(const std::int64_t* number, char* value,
                                                   std::int64_t* length, std::int64_t* status,
                                                   std::size_t value_length) {
    get_argument(number, value, length, status, value_length);
}

TARN_EXPORT void _gfortran_get_command_i4(char* value, std::int32_t* length, std::int32_t* status,
                                          std::size_t value_length) {
    get_command(value, length, status, value_length);
}
TARN_EXPORT void _gfortran_get_command_i8(char* value, std::int64_t* length, std::int64_t* status,
                                          std::size_t value_length) {
    get_command(value, length, status, value_length);
}

TARN_EXPORT void _gfortran_getarg_i4(const std::int32_t* number, char* value,
                                     std::size_t value_length) {
    old_argument(number, value, value_length);
}
TARN_EXPORT void _gfortran_getarg_i8(const std::int64_t* number, char* value,
                                     std::size_t value_length) {
    old_argument(number, value, value_length);
}

// IARGC and COMMAND_ARGUMENT_COUNT both come here.
TARN_EXPORT std::int32_t _gfortran_iargc() {
    tarn::frame::ensure_up();
    int count = tarn::frame::state().argument_count;
    return count > 0 ? count - 1 : 0;
}
}
