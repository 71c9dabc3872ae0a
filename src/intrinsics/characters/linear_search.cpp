// A search whose time is proportional to the lengths: the two-way algorithm (M. Crochemore and
// D. Perrin, "Two-way string-matching", 1991). It reads a text backwards as it does forwards.
#include <algorithm>

#include "intrinsics/characters/vector_search.h"

namespace tarn::intrinsics {
namespace {

template <class Char, From from>
class Reading {
  public:
    Reading(const Char* text, std::size_t length) : text_(text), length_(length) {}
    std::size_t length() const { return length_; }
    Char operator[](std::size_t at) const {
        return from == From::start ? text_[at] : text_[length_ - 1 - at];
    }

  private:
    const Char* text_;
    std::size_t length_;
};

// The longest suffix of the part in the order of characters or its reverse, and its period.
struct Suffix {
    std::size_t start;
    std::size_t period;
};

template <class Part>
Suffix longest_suffix(const Part& part, bool reverse) {
    // `start` is one before the suffix, so that it begins at "before the first character".
    std::size_t start = none;
    std::size_t at = 0;
    std::size_t matched = 1;
    std::size_t period = 1;
    while (at + matched < part.length()) {
        const auto a = part[at + matched];
        const auto b = part[start + matched];
        if (a == b) {
            if (matched == period) {
                at += period;
                matched = 1;
            } else {
                ++matched;
            }
        } else if ((a < b) != reverse) {
            at += matched;
            matched = 1;
            period = at - start;
        } else {
            start = at++;
            matched = period = 1;
        }
    }
    return {start + 1, period};
}

template <class Part>
bool repeats_with(const Part& part, const Suffix& suffix) {
    if (suffix.start + suffix.period > part.length()) return false;
    for (std::size_t i = 0; i < suffix.start; ++i)
        if (part[i] != part[i + suffix.period]) return false;
    return true;
}

template <class Text>
std::size_t search(const Text& text, const Text& part) {
    const Suffix one = longest_suffix(part, false);
    const Suffix other = longest_suffix(part, true);
    const Suffix split = one.start >= other.start ? one : other;
    const bool periodic = repeats_with(part, split);
    const std::size_t shift =
        periodic ? split.period : std::max(split.start, part.length() - split.start) + 1;
    std::size_t remembered = 0;  // how much of the part's front is known to match
    for (std::size_t at = 0; at + part.length() <= text.length();) {
        std::size_t i = std::max(split.start, remembered);
        while (i < part.length() && part[i] == text[at + i]) ++i;
        if (i < part.length()) {
            at += i - split.start + 1;
            remembered = 0;
            continue;
        }
        i = split.start;
        while (i > remembered && part[i - 1] == text[at + i - 1]) --i;
        if (i <= remembered) return at;
        at += shift;
        remembered = periodic ? part.length() - shift : 0;
    }
    return none;
}

}  // namespace

template <class Char>
std::size_t find_part_linear(const Char* text, std::size_t length, const Char* part,
                             std::size_t part_length, From from) {
    if (from == From::start) {
        using Forward = Reading<Char, From::start>;
        return search(Forward(text, length), Forward(part, part_length));
    }
    using Backward = Reading<Char, From::end>;
    const std::size_t at = search(Backward(text, length), Backward(part, part_length));
    return at == none ? none : length - part_length - at;
}

template std::size_t find_part_linear(const std::uint8_t*, std::size_t, const std::uint8_t*,
                                      std::size_t, From);
template std::size_t find_part_linear(const std::uint32_t*, std::size_t, const std::uint32_t*,
                                      std::size_t, From);

}  // namespace tarn::intrinsics
