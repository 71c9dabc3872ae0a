#include "pairing/gcc/program_errors.h"

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "failure/failure.h"
#include "fio/gnu/fault.h"
#include "frame/link_name.h"
#include "pairing/gcc/data_block.h"
#include "pairing/gcc/unit_blocks.h"

namespace tarn::gcc {
namespace {

constexpr int run_time_error = 381;

// The compiler's texts, told apart by a part that their arguments don't reach.
struct Row {
    std::string_view part;
    int number;
};
constexpr Row rows[] = {
    {"of dimension", 11},  // Index ... of dimension ... of array ... below or above
    {"Substring out of bounds: upper bound", 17},
    {"Substring out of bounds: lower bound", 12},
    {"Substring out of bounds", 12},
    {"already allocated variable", 432},
    {"Attempt to allocate an allocated object", 432},
    {"Attempt to DEALLOCATE unallocated", 407},
    {"Attempt to deallocate an unallocated object", 407},
    {"amount of memory to allocate", 408},
    {"Memory allocation failed", 408},
    {"Out of memory", 408},
    {"Error allocating", 408},
    {"Recursive call to nonrecursive procedure", 18},
    {"DO step is zero", 7},
    {"DO step value is zero", 7},
    {"Step of zero", 7},
    {"is not associated", 420},
    {" in intrinsic ", 357},
    {"NCOPIES of REPEAT", 357},
    {"Array reference out of bounds", 388},  // the dimension that UBOUND and its like are asked for
    {"has extent", 389},
    {"Different CHARACTER lengths", 4},
    {"Array bound mismatch", 389},
    {"Incorrect extent", 389},
    {"Incorrect size", 389},
    {"rank mismatch", 389},
    {"Unequal character lengths", 4},
    {"Actual string length", 426},
    {"character length mismatch", 4},
    {"Loop variable has been modified", 431},
    {"Assigned label is not a target label", 5},
    {"Fortran pointer", 392},
};

int number_of_errno(int errno_value) {
    switch (errno_value) {
        case ENOMEM:
            return 408;
        case ENOSPC:
        case EDQUOT:
            return 117;
        case EMFILE:
        case ENFILE:
            return 116;
        default:
            return run_time_error;
    }
}

// The compiler counts its own copies of a variable: 'a.0' is `a` in the source.
void drop_copy_numbers(std::string& text) {
    for (std::size_t end = text.find('\''); end != text.npos; end = text.find('\'', end + 1)) {
        std::size_t dot = end;
        while (dot > 0 && text[dot - 1] >= '0' && text[dot - 1] <= '9') --dot;
        if (dot == end || dot < 2 || text[dot - 1] != '.') continue;
        text.erase(dot - 1, end - dot + 1);
        end = dot - 1;
    }
}

std::string formatted(const char* format, va_list arguments) {
    char room[2048];
    std::vsnprintf(room, sizeof room, format, arguments);
    std::string text = room;
    drop_copy_numbers(text);
    return text;
}

void append_line(std::string& lines, std::string_view text) {
    while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    if (!text.empty()) lines.append("    ").append(text).append("\n");
}

// "At line 9 of file name", of a call that the compiler may have made one of several.
void remember_place(const char* where) {
    int line = 0;
    int name = 0;
    if (std::sscanf(where, "At line %d of file %n", &line, &name) == 1 && name > 0)
        failure::set_statement(where + name, line);
}

[[noreturn]] void fail_with(int number, std::string_view text, const char* where) {
    std::string lines;
    append_line(lines, text);
    if (where) {
        append_line(lines, where);
        remember_place(where);
    }
    failure::fail(number, lines);
}

[[noreturn]] void system_failure(int errno_value, std::string_view text, const char* where) {
    std::string said(text);
    if (errno_value != 0) said.append(": ").append(std::strerror(errno_value));
    fail_with(number_of_errno(errno_value), said, where);
}

int number_of_family(int family) {
    switch (family) {
        case fio::iostat_end:
            return 57;
        case fio::iostat_eor:
            return 215;
        case fio::iostat_bad_unit:
            return 60;
        case fio::iostat_allocation:
            return 408;
        default:
            return 156;
    }
}

}  // namespace

int catalogue_number(std::string_view text) {
    for (const Row& row : rows) {
        if (text.find(row.part) != text.npos) return row.number;
    }
    return run_time_error;
}

}  // namespace tarn::gcc

using namespace tarn::gcc;
namespace fio = tarn::fio;

extern "C" {

[[noreturn, gnu::format(printf, 1, 2)]] TARN_EXPORT void _gfortran_runtime_error(const char* format,
                                                                                 ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = formatted(format, arguments);
    va_end(arguments);
    fail_with(catalogue_number(text), text, nullptr);
}

[[noreturn, gnu::format(printf, 2, 3)]] TARN_EXPORT void _gfortran_runtime_error_at(
    const char* where, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = formatted(format, arguments);
    va_end(arguments);
    fail_with(catalogue_number(text), text, where);
}

[[gnu::format(printf, 2, 3)]] TARN_EXPORT void _gfortran_runtime_warning_at(const char* where,
                                                                            const char* format,
                                                                            ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = formatted(format, arguments);
    va_end(arguments);
    text.push_back('\n');
    append_line(text, where);
    tarn::failure::warn(text);
}

[[noreturn]] TARN_EXPORT void _gfortran_os_error(const char* message) {
    system_failure(errno, message, nullptr);
}

[[noreturn, gnu::format(printf, 2, 3)]] TARN_EXPORT void _gfortran_os_error_at(const char* where,
                                                                               const char* format,
                                                                               ...) {
    int errno_value = errno;
    va_list arguments;
    va_start(arguments, format);
    std::string text = formatted(format, arguments);
    va_end(arguments);
    system_failure(errno_value, text, where);
}

// A fault that the compiled code finds in a statement before it starts it.
TARN_EXPORT void _gfortran_generate_error(void* block, int family, const char* message) {
    auto& head = *static_cast<CommonBlock*>(block);
    fio::Caller caller;
    caller.source_file = head.source_file;
    caller.line = head.line;
    bool catches_all = (head.flags & has_iostat) != 0;
    if (catches_all) caller.iostat = head.iostat;
    if ((head.flags & has_iomsg) != 0) {
        caller.iomsg = head.iomsg;
        caller.iomsg_length = head.iomsg_length;
    }
    caller.catches_error = catches_all || (head.flags & has_err) != 0;
    caller.catches_end = catches_all || (head.flags & has_end) != 0;
    caller.catches_eor = catches_all || (head.flags & has_eor) != 0;
    caller.outcome = static_cast<fio::Outcome>(head.flags & outcome_mask);
    fio::raise_fault(caller, {number_of_family(family), family}, message ? message : "");
    head.flags = (head.flags & ~outcome_mask) | static_cast<std::uint32_t>(caller.outcome);
}
}
