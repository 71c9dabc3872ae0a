// The chain of calls that led to a place, as a reader wants it: no frames of the library or of
// start-up code, recursion in one line, and an end even where a million frames stand.
#pragma once

#include <cstddef>
#include <cstdint>

#include "traceback/location.h"
#include "traceback/registers.h"

namespace tarn::traceback {

struct CallerLine {
    Location location;
    // Behind this line, the last `pattern` lines come `times` more. 0: they don't.
    std::uint32_t pattern = 0;
    std::uint64_t times = 0;
};

class Callers {
  public:
    static constexpr std::size_t most_first = 160;  // lines from the innermost call outward
    static constexpr std::size_t most_last = 40;    // and, of more than that, from the outermost

    void clear();
    void add(const Location& location);

    // The line of the first, where its file is the one that is meant.
    void correct_first(std::string_view file, std::uint32_t line);

    std::size_t count() const {
        return first_count_ + (total_last_ < most_last ? total_last_ : most_last);
    }
    const CallerLine& line(std::size_t index) const;
    // Lines between the first and the last that weren't kept, and where they are missing.
    std::uint64_t left_out() const { return total_last_ > most_last ? total_last_ - most_last : 0; }
    std::size_t left_out_before() const { return first_count_; }
    // Calls altogether, with the repeated ones.
    std::uint64_t total() const { return total_; }
    // Whether a loaded file of the program's has no map, so that its lines aren't known.
    bool lacks_lines() const { return lacks_lines_; }

  private:
    static constexpr std::uint32_t longest_pattern = 8;

    bool fold();

    CallerLine first_[most_first];
    CallerLine last_[most_last];  // a ring
    std::size_t first_count_ = 0;
    std::uint64_t total_last_ = 0;
    std::uint64_t total_ = 0;
    bool lacks_lines_ = false;
};

// What stood at a place: a call of ours, an instruction that faulted, or a routine of the system's
// that the program called to end itself, whose own calls are of no interest.
enum class Place : std::uint8_t { call, fault, signal };

// Fills the list from a signal's or a call's registers.
void collect(const Registers& registers, Place place, Callers& callers);

}  // namespace tarn::traceback
