#include "intrinsics/characters/strings.h"

#include <algorithm>
#include <cstring>

#include "intrinsics/characters/vector_search_code.h"
#include "platform/kernel/cpu.h"

namespace tarn::intrinsics {
namespace {

// The forms for wider registers, where they are there and the text is long enough to gain by them.
template <class Char>
const VectorSearch<Char>* wide(std::size_t length) {
    if (length * sizeof(Char) < avx2_minimum) [[likely]]
        return nullptr;
    if (platform::vector_level() < platform::VectorLevel::avx2) return nullptr;
    if constexpr (sizeof(Char) == 1)
        return &avx2_search_1;
    else
        return &avx2_search_4;
}

template <class Char>
void copy(Char* destination, const Char* source, std::size_t length) {
    if (length != 0) std::memcpy(destination, source, length * sizeof(Char));
}

template <class Char>
int compare_common(const Char* one, const Char* two, std::size_t length) {
    if constexpr (sizeof(Char) == 1) {
        return length == 0 ? 0 : std::memcmp(one, two, length);
    } else {
        const auto* const w = wide<Char>(length);
        const std::size_t at =
            w != nullptr ? w->difference(one, two, length) : vectors::difference(one, two, length);
        if (at == none) return 0;
        return one[at] < two[at] ? -1 : 1;
    }
}

// ---- Short values: most of what programs have ----

// How much of a text is looked at here before the general search is called.
constexpr std::size_t short_bytes = 128;
// So few characters are looked at one by one.
constexpr std::size_t loop_limit = 4;

template <class Char>
std::uint32_t nonblank_bits(typename vectors::Vector<Char>::Value value) {
    return vectors::bits_of(value != vectors::Vector<Char>::filled(blank<Char>));
}

// The first character that is no blank.
template <class Char>
std::size_t first_nonblank(const Char* text, std::size_t length) {
    using V = vectors::Vector<Char>;
    constexpr std::size_t lanes = V::lanes;
    if (length <= loop_limit) {
        for (std::size_t at = 0; at < length; ++at)
            if (text[at] != blank<Char>) return at;
        return none;
    }
    if (length < lanes) {
        const std::uint32_t valid = (1U << (length * sizeof(Char))) - 1;
        const std::uint32_t bits = nonblank_bits<Char>(vectors::load_short(text, length)) & valid;
        return bits == 0 ? none : vectors::first_lane<Char>(bits);
    }
    const std::size_t few = std::min(length, short_bytes / sizeof(Char));
    std::size_t at = 0;
    for (; at + lanes <= few; at += lanes) {
        const std::uint32_t bits = nonblank_bits<Char>(V::load(text + at));
        if (bits != 0) return at + vectors::first_lane<Char>(bits);
    }
    if (at == length) return none;
    if (few == length) {
        const std::uint32_t bits = nonblank_bits<Char>(V::load(text + length - lanes));
        return bits == 0 ? none : length - lanes + vectors::first_lane<Char>(bits);
    }
    const std::size_t rest = other_than(text + at, length - at, blank<Char>, From::start);
    return rest == none ? none : at + rest;
}

// How the rest of the longer value compares with blanks.
template <class Char>
int compare_with_blanks(const Char* text, std::size_t length) {
    const std::size_t at = first_nonblank(text, length);
    if (at == none) return 0;
    return text[at] < blank<Char> ? -1 : 1;
}

template <class Char>
bool is_member(Char c, const Char* set, std::size_t count) {
    if (count * sizeof(Char) < 16) return std::find(set, set + count, c) != set + count;
    return vectors::walk_few<Char, 1, false>(set, count, &c, 1, From::start) != none;
}

// A few characters, each looked up in the set: quicker than to make something of the set first.
template <class Char>
std::size_t position_in_few(const Char* text, std::size_t length, const Char* set,
                            std::size_t count, Stop stop, From from) {
    for (std::size_t i = 0; i < length; ++i) {
        const std::size_t at = from == From::start ? i : length - 1 - i;
        if (is_member(text[at], set, count) == (stop == Stop::at_member)) return at + 1;
    }
    return 0;
}

// One character: the system's search is as fast as any.
std::size_t index_of_byte(const std::uint8_t* text, std::size_t length, std::uint8_t c, From from) {
    const void* const found =
        from == From::start ? std::memchr(text, c, length) : memrchr(text, c, length);
    if (found == nullptr) return 0;
    return static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - text) + 1;
}

// A few places, each looked at: quicker than to make something of the part first.
template <class Char>
std::size_t index_in_few(const Char* text, std::size_t places, const Char* part,
                         std::size_t part_length, From from) {
    const Char first = part[0];
    const Char last = part[part_length - 1];
    for (std::size_t i = 0; i < places; ++i) {
        const std::size_t at = from == From::start ? i : places - 1 - i;
        if (text[at] == first && text[at + part_length - 1] == last &&
            std::memcmp(text + at, part, part_length * sizeof(Char)) == 0)
            return at + 1;
    }
    return 0;
}

}  // namespace

template <class Char>
std::size_t other_than(const Char* text, std::size_t length, Char c, From from) {
    const auto* const w = wide<Char>(length);
    if (w != nullptr) return w->other_than(text, length, c, from);
    return vectors::other_than(text, length, c, from);
}

template <class Char>
std::size_t trimmed_behind_blank(const Char* text, std::size_t length) {
    using V = vectors::Vector<Char>;
    constexpr std::size_t lanes = V::lanes;
    if (length <= loop_limit) {
        while (length > 0 && text[length - 1] == blank<Char>) --length;
        return length;
    }
    if (length < lanes) {
        const std::uint32_t valid = (1U << (length * sizeof(Char))) - 1;
        const std::uint32_t bits = nonblank_bits<Char>(vectors::load_short(text, length)) & valid;
        return bits == 0 ? 0 : vectors::last_lane<Char>(bits) + 1;
    }
    const std::size_t limit = length - std::min(length, short_bytes / sizeof(Char));
    std::size_t end = length;
    for (; end >= limit + lanes; end -= lanes) {
        const std::uint32_t bits = nonblank_bits<Char>(V::load(text + end - lanes));
        if (bits != 0) return end - lanes + vectors::last_lane<Char>(bits) + 1;
    }
    if (limit == 0) {
        // What is left over, and something behind it that is blank.
        const std::uint32_t bits = nonblank_bits<Char>(V::load(text));
        return bits == 0 ? 0 : vectors::last_lane<Char>(bits) + 1;
    }
    return other_than(text, end, blank<Char>, From::end) + 1;  // none + 1 is 0
}

template <class Char>
int compare(const Char* one, std::size_t one_length, const Char* two, std::size_t two_length) {
    const int order = compare_common(one, two, std::min(one_length, two_length));
    if (order != 0 || one_length == two_length) return order;
    if (one_length > two_length)
        return compare_with_blanks(one + two_length, one_length - two_length);
    return -compare_with_blanks(two + one_length, two_length - one_length);
}

template <class Char>
std::size_t index_of(const Char* text, std::size_t length, const Char* part,
                     std::size_t part_length, From from) {
    if (part_length == 0) return from == From::start ? 1 : length + 1;
    if (part_length > length) return 0;
    if constexpr (sizeof(Char) == 1)
        if (part_length == 1) return index_of_byte(text, length, *part, from);
    const std::size_t places = length - part_length + 1;
    if (places < 16 / sizeof(Char)) return index_in_few(text, places, part, part_length, from);
    const auto* const w = wide<Char>(length);
    const std::size_t at = w != nullptr ? w->part(text, length, part, part_length, from)
                                        : vectors::find_part(text, length, part, part_length, from);
    return at + 1;
}

template <class Char>
std::size_t position_of_set(const Char* text, std::size_t length, const Char* set,
                            std::size_t count, Stop stop, From from) {
    if (length == 0) return 0;
    if (count == 0) {
        if (stop == Stop::at_member) return 0;
        return from == From::start ? 1 : length;
    }
    if (length * count <= 8 || length <= 2 || (length <= 8 && count > 16))
        return position_in_few(text, length, set, count, stop, from);
    const auto* const w = wide<Char>(length);
    const std::size_t at = w != nullptr ? w->of_set(text, length, set, count, stop, from)
                                        : vectors::of_set(text, length, set, count, stop, from);
    return at + 1;
}

template <class Char>
void fill_blanks(Char* text, std::size_t length) {
    if constexpr (sizeof(Char) == 4) {
        // As memset does it for bytes: the processor's own loop writes whole lines without reading
        // them first.
        constexpr std::size_t long_enough = 1024;
        if (length >= long_enough) {
            __asm__ volatile("rep stosl" : "+D"(text), "+c"(length) : "a"(blank<Char>) : "memory");
            return;
        }
    }
    std::fill_n(text, length, blank<Char>);
}

template <class Char>
void assign(Char* destination, std::size_t room, const Char* source, std::size_t length) {
    const std::size_t count = std::min(room, length);
    if (count != 0) std::memmove(destination, source, count * sizeof(Char));
    fill_blanks(destination + count, room - count);
}

template <class Char>
void adjust_left(Char* result, const Char* text, std::size_t length) {
    if (length != 0 && text[0] != blank<Char>) {
        std::memcpy(result, text, length * sizeof(Char));
        return;
    }
    const std::size_t at = first_nonblank(text, length);
    const std::size_t blanks = at == none ? length : at;
    copy(result, text + blanks, length - blanks);
    fill_blanks(result + (length - blanks), blanks);
}

template <class Char>
void adjust_right(Char* result, const Char* text, std::size_t length) {
    const std::size_t kept = trimmed_length(text, length);
    fill_blanks(result, length - kept);
    copy(result + (length - kept), text, kept);
}

template std::size_t trimmed_behind_blank(const std::uint8_t*, std::size_t);
template std::size_t trimmed_behind_blank(const std::uint32_t*, std::size_t);
template std::size_t other_than(const std::uint8_t*, std::size_t, std::uint8_t, From);
template std::size_t other_than(const std::uint32_t*, std::size_t, std::uint32_t, From);
template int compare(const std::uint8_t*, std::size_t, const std::uint8_t*, std::size_t);
template int compare(const std::uint32_t*, std::size_t, const std::uint32_t*, std::size_t);
template std::size_t index_of(const std::uint8_t*, std::size_t, const std::uint8_t*, std::size_t,
                              From);
template std::size_t index_of(const std::uint32_t*, std::size_t, const std::uint32_t*, std::size_t,
                              From);
template std::size_t position_of_set(const std::uint8_t*, std::size_t, const std::uint8_t*,
                                     std::size_t, Stop, From);
template std::size_t position_of_set(const std::uint32_t*, std::size_t, const std::uint32_t*,
                                     std::size_t, Stop, From);
template void fill_blanks(std::uint8_t*, std::size_t);
template void fill_blanks(std::uint32_t*, std::size_t);
template void assign(std::uint8_t*, std::size_t, const std::uint8_t*, std::size_t);
template void assign(std::uint32_t*, std::size_t, const std::uint32_t*, std::size_t);
template void adjust_left(std::uint8_t*, const std::uint8_t*, std::size_t);
template void adjust_left(std::uint32_t*, const std::uint32_t*, std::size_t);
template void adjust_right(std::uint8_t*, const std::uint8_t*, std::size_t);
template void adjust_right(std::uint32_t*, const std::uint32_t*, std::size_t);

}  // namespace tarn::intrinsics
