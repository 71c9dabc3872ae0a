// How gfortran's system intrinsics pass their arguments: texts without what fills a variable up,
// results that may be left out.
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tarn::gcc {

template <class Integer>
void store(Integer* variable, std::int64_t value) {
    if (variable != nullptr) *variable = static_cast<Integer>(value);
}

inline void store_text(std::string_view text, char* variable, std::size_t length) {
    if (variable == nullptr) return;
    const std::size_t count = text.copy(variable, length);
    std::memset(variable + count, ' ', length - count);
}

// A text for C: without the blanks that fill a variable up, and up to a zero byte, which ends what
// C code left in one. Other white space may be part of a file's name, as it is in OPEN.
inline std::string c_text(const char* text, std::size_t length) {
    std::string_view kept(text, length);
    kept = kept.substr(0, kept.find('\0'));
    return std::string(kept.substr(0, kept.find_last_not_of(' ') + 1));
}

// What a call of the system with a file's name gives: 0, or errno.
template <class Call>
int with_name(const char* name, std::size_t length, Call call) {
    return call(c_text(name, length).c_str()) == 0 ? 0 : errno;
}

template <class Call>
int with_names(const char* first, std::size_t first_length, const char* second,
               std::size_t second_length, Call call) {
    return with_name(first, first_length, [&](const char* from) {
        return with_name(second, second_length, [&](const char* to) { return call(from, to); });
    });
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

}  // namespace tarn::gcc
