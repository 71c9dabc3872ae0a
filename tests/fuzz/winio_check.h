// What the targets of format windows share: a call in check mode, whose arguments all point into
// one block that any code may read as what it likes.
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "winio/scanner.h"

// Font names are looked up in the system's own tables, which it keeps for good.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

namespace tarn::winio {

struct fuzz_arguments {
    static constexpr std::int32_t count = 200;
    // Pointers, integers, doubles and texts alike: zero, but for what the input puts at the front;
    // large enough for any array that a number in a format asks for.
    static constexpr std::size_t size_of_block = 1U << 22;
    static inline unsigned char* const block =
        static_cast<unsigned char*>(std::calloc(1, size_of_block));
    std::array<word, count> words{};
    std::array<std::int32_t, count> lengths{};

    fuzz_arguments(const std::uint8_t* data, std::size_t size) {
        std::memset(block, 0, size_of_block / 2);  // codes may store in what they are given
        std::memcpy(block, data, std::min<std::size_t>(size, 16));
        // Apart, so that what one code stores isn't what another reads.
        constexpr std::int32_t distance = 8192;
        for (std::int32_t i = 0; i < count; ++i) {
            words[i] = reinterpret_cast<word>(block + i * distance);
        }
        for (std::int32_t i = 0; i < count; ++i) lengths[i] = i % 9 - 1;
    }
    argument_source source(bool fortran, std::int32_t given) {
        argument_source from;
        from.words = words.data();
        from.word_count = given;
        from.lengths = lengths.data();
        from.length_count = count;
        from.fortran = fortran;
        return from;
    }
};

inline void check_call(const std::string& format, const char* descriptor, bool fortran,
                       std::int32_t given, fuzz_arguments& arguments) {
    char report[check_report_size];
    winio_check(report, nullptr, false);
    argument_source from = arguments.source(fortran, given);
    winio(format.data(), format.size(), descriptor, from);
    if (strnlen(report, sizeof report) == sizeof report) std::abort();
    winio_check(nullptr, nullptr, false);
    if (window_is_continued() || current_window()) std::abort();
}

}  // namespace tarn::winio
