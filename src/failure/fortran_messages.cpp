#include "failure/fortran_messages.h"

#include <cstdio>

#include "failure/catalogue.h"
#include "frame/console_lines.h"

namespace tarn::failure {
namespace {

constexpr std::size_t buffer_size = 600;

constexpr std::string_view older_names[16] = {
    "",
    "an integer*2",
    "an integer*4",
    "a real*4",
    "a real*8",
    "a complex*8",
    "a complex*16",
    "a logical*2",
    "a logical*4",
    "a character",
    "",
    "",
    "",
    "",
    "a procedure",
    "a label",
};

constexpr std::string_view newer_names[16] = {
    "",
    "an integer(kind=2)",
    "an integer(kind=3)",
    "a real(kind=1)",
    "a real(kind=2)",
    "a complex(kind=1)",
    "a complex(kind=2)",
    "a logical(kind=2)",
    "a logical(kind=3)",
    "a character",
    "an integer(kind=1)",
    "a logical(kind=1)",
    "",
    "",
    "a procedure",
    "a label",
};

constexpr std::string_view newer_names_from_16[] = {"a TYPE", "a real(kind=3)",
                                                    "a complex(kind=3)"};

// A blank goes when only padding or punctuation is next to it. The one behind "Error:" stays,
// whose colon follows an r.
bool superfluous_blank(char next, const std::string& out) {
    if (next == ' ' || next == ')') return true;
    if (out.size() < 2) return false;
    char last = out.back();
    return last == '(' || last == ',' || (last == ':' && out[out.size() - 2] != 'r');
}

}  // namespace

std::string io_prefix(std::int32_t unit) {
    if (unit == 0) return {};
    if (unit == -1) return "I/O error on internal file:";
    char prefix[48];
    std::snprintf(prefix, sizeof prefix, "I/O error on Fortran unit %3d:", unit);
    return prefix;
}

std::string sentence(int number) {
    return std::string("Error: ").append(fortran_text(number));
}

std::string neaten(std::string_view text, std::string_view error_string) {
    text = text.substr(0, buffer_size);
    std::string out;
    for (std::size_t i = 0; i < text.size() && out.size() < buffer_size; ++i) {
        char c = text[i];
        char next = i + 1 < text.size() ? text[i + 1] : ' ';
        if (c == ' ' && superfluous_blank(next, out)) continue;
        if (c == '%' && next == '1') {
            out.append(frame::trimmed(error_string));
            ++i;
            continue;
        }
        out.push_back(c);
    }
    if (out.size() > buffer_size) out.resize(buffer_size);
    return out;
}

std::string_view older_type_name(std::uint8_t type) {
    return older_names[type & 15];
}

std::string_view newer_type_name(std::uint8_t& type) {
    if (type < 16) return newer_names[type];
    type &= 15;
    constexpr std::size_t count = sizeof newer_names_from_16 / sizeof *newer_names_from_16;
    return type < count ? newer_names_from_16[type] : std::string_view();
}

std::string call_mismatch(const CallMismatch& mismatch, bool newer_names) {
    auto type_name = [&](std::uint8_t type) {
        return std::string(newer_names ? newer_type_name(type) : older_type_name(type));
    };
    auto routine_name = [&](std::uint8_t type) {
        bool subroutine = newer_names ? type == 0 : (type & 15) == 0;
        return subroutine ? "a subroutine" : type_name(type) + " function";
    };
    if (mismatch.caller_count != mismatch.routine_count) {
        return "Error: Attempt to call a routine with " +
               std::to_string(mismatch.caller_count - 1) + " arguments when " +
               std::to_string(mismatch.routine_count - 1) + " were expected";
    }
    if (mismatch.position == 0) {
        return "Error: Attempt to call " + routine_name(mismatch.routine) + " as if it were " +
               routine_name(mismatch.caller);
    }
    return "Error: Attempt to call a routine with argument number " +
           std::to_string(mismatch.position) + " as " + type_name(mismatch.caller) + " when " +
           type_name(mismatch.routine) + " was expected";
}

}  // namespace tarn::failure
