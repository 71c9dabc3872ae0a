// Formats that have been parsed, kept by their text.
//
// gfortran hands every format over as text, each time the statement runs. A statement in a loop
// finds its format here and pays one hash of the text and one comparison. Each thread has a cache
// of its own, of bounded size; a format in use by a running statement is never thrown out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "fio/format/program.h"

namespace tarn::fio {

struct CachedFormat {
    std::uint64_t hash = 0;
    std::string text;
    FormatRules rules;
    FormatProgram program;
    std::uint32_t users = 0;  // running statements
    std::uint64_t last_use = 0;
    bool filled = false;
};

class FormatCache {
  public:
    ~FormatCache();

    // The format of this text by these rules, parsed if it hasn't been; null when it is wrong, and
    // `error` says why. Give it back with `release`.
    CachedFormat* acquire(const char* text, std::size_t length, FormatRules rules);
    const FormatError& error() const { return error_; }
    static void release(CachedFormat* format) {
        if (--format->users == 0 && !format->filled) drop(format);
    }

  private:
    static constexpr std::size_t sets = 64;
    static constexpr std::size_t ways = 4;

    static void drop(CachedFormat* format);
    CachedFormat* place_for(std::uint64_t hash);
    CachedFormat* parse(const char* text, std::size_t length, FormatRules rules,
                        std::uint64_t hash);

    CachedFormat* slots_[sets * ways] = {};
    std::uint64_t clock_ = 0;
    FormatError error_;
};

}  // namespace tarn::fio
