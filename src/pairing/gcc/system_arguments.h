// How gfortran's system intrinsics pass their arguments: texts without what fills a variable up,
// results that may be left out.
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "fio/file/names.h"

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

// What a call of the system with a file's name gives: 0, or errno. A name with a zero byte in it is
// no file's.
template <class Call>
int with_name(const char* name, std::size_t length, Call call) {
    std::string path;
    if (!fio::clean_name({name, length}, path)) return errno = EINVAL;
    return call(path.c_str()) == 0 ? 0 : errno;
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
