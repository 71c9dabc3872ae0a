// Routines and lines of one loaded file: from its map section, or where it has none from its
// symbols. Reads the file, trusts nothing in it, and needs no heap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "traceback/map_format.h"

namespace tarn::traceback {

// A part of a file's content.
struct Bytes {
    const char* data = nullptr;
    std::size_t size = 0;

    // Null where the part doesn't lie within.
    const char* part(std::uint64_t offset, std::uint64_t length) const {
        return offset <= size && length <= size - offset ? data + offset : nullptr;
    }
    // The text at an offset, up to a zero; empty where that doesn't lie within.
    std::string_view text(std::uint64_t offset) const;
};

// A section of an ELF file by its name, or of a kind; empty where there is none.
Bytes find_section(Bytes file, std::string_view name);

class RoutineMap {
  public:
    // False for a section that is cut short or contradicts itself.
    bool open(Bytes section);

    const MapRoutine* routine_at(std::uint64_t address) const;
    // Line 0 where none is known.
    MapLine line_at(std::uint64_t address) const;
    // The calls that were inlined at an address, outermost first: how many of them, at most `most`.
    std::size_t inlines_at(const MapRoutine& routine, std::uint64_t address,
                           const MapInline** found, std::size_t most) const;
    std::string_view name(std::uint32_t offset) const { return names_.text(offset); }
    std::string_view file(std::uint32_t index) const;
    std::uint32_t routine_count() const { return header_->routine_count; }
    const MapRoutine* routine(std::uint32_t index) const { return &routines_[index]; }
    std::uint64_t start_of(const MapRoutine& routine) const { return header_->low + routine.start; }

  private:
    bool relative(std::uint64_t address, std::uint32_t& place) const;

    const MapHeader* header_ = nullptr;
    const MapRoutine* routines_ = nullptr;
    const MapInline* inlines_ = nullptr;
    const MapLine* lines_ = nullptr;
    const MapFile* files_ = nullptr;
    Bytes names_;
};

struct Symbol {
    std::string_view name;
    std::uint64_t start = 0;
};

// The function symbol that holds an address as the file was linked.
bool find_symbol(Bytes file, std::uint64_t address, Symbol& symbol);

}  // namespace tarn::traceback
