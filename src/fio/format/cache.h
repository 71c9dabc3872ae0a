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
    FormatProgram program;
    std::uint32_t users = 0;  // running statements
    std::uint64_t last_use = 0;
    bool filled = false;
};

class FormatCache {
  public:
    ~FormatCache();

    // The format of this text, parsed if it hasn't been; null with `error` filled when it is
    // wrong. Give it back with `release`.
    CachedFormat* acquire(const char* text, std::size_t length, FormatError& error);
    static void release(CachedFormat* format);

  private:
    static constexpr std::size_t sets = 64;
    static constexpr std::size_t ways = 4;

    CachedFormat* place_for(std::uint64_t hash);

    CachedFormat* slots_[sets * ways] = {};
    std::uint64_t clock_ = 0;
};

}  // namespace tarn::fio
