// The searches of vector_search.h, for the widest vectors that the including file is compiled for.
// All of it is local to that file: a routine compiled for AVX2 must never be the one that the
// linker keeps for everybody. For that reason nothing of the standard library is called here.
#pragma once

#include <cstring>
#include <immintrin.h>

#include "intrinsics/characters/vector_search.h"

namespace tarn::intrinsics::vectors {
namespace {

#ifdef __AVX2__
constexpr std::size_t vector_bytes = 32;
#else
constexpr std::size_t vector_bytes = 16;
#endif

template <class Char>
struct Vector {
    static constexpr std::size_t lanes = vector_bytes / sizeof(Char);
    using Value __attribute__((vector_size(vector_bytes))) = Char;

    static Value load(const void* from) {
        Value value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }
    static Value filled(Char c) { return Value{} + c; }
};

// A bit for each byte; the bits of a character are equal.
template <class Mask>
std::uint32_t bits_of(Mask mask) {
#ifdef __AVX2__
    __m256i bytes;
    std::memcpy(&bytes, &mask, sizeof bytes);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
#else
    __m128i bytes;
    std::memcpy(&bytes, &mask, sizeof bytes);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
#endif
}

template <class Char>
std::size_t first_lane(std::uint32_t bits) {
    return static_cast<unsigned>(__builtin_ctz(bits)) / sizeof(Char);
}
template <class Char>
std::size_t last_lane(std::uint32_t bits) {
    return (31U - static_cast<unsigned>(__builtin_clz(bits))) / sizeof(Char);
}

template <class Word>
Word load_word(const void* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// The lowest bytes of a vector from fewer than 16 of storage, read by words that overlap.
inline __m128i load_few(const void* from, std::size_t bytes) {
    const char* const start = static_cast<const char*>(from);
    const char* const end = start + bytes;
    if (bytes >= 8) {
        const auto low = load_word<std::uint64_t>(start);
        const auto high = load_word<std::uint64_t>(end - 8) >> 1 >> (127 - 8 * bytes);
        return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
    }
    std::uint64_t word = 0;
    if (bytes >= 4) {
        word = load_word<std::uint32_t>(start) | std::uint64_t{load_word<std::uint32_t>(end - 4)}
                                                     << (8 * bytes - 32);
    } else if (bytes >= 2) {
        word = load_word<std::uint16_t>(start) | std::uint64_t{load_word<std::uint16_t>(end - 2)}
                                                     << (8 * bytes - 16);
    } else if (bytes == 1) {
        word = load_word<std::uint8_t>(start);
    }
    return _mm_cvtsi64_si128(static_cast<long long>(word));
}

// A vector from the whole of a text that is shorter than one.
template <class Char>
typename Vector<Char>::Value load_short(const Char* text, std::size_t length) {
    typename Vector<Char>::Value value{};
    if constexpr (vector_bytes == 16) {
        const __m128i few = load_few(text, length * sizeof(Char));
        std::memcpy(&value, &few, sizeof value);
    } else {
        std::memcpy(&value, text, length * sizeof(Char));
    }
    return value;
}

// ---- Walking over a text until `test` finds something ----

template <class Char, class Test>
std::size_t walk_short(const Char* text, std::size_t length, const Test& test, From from) {
    const std::uint32_t valid = (1U << (length * sizeof(Char))) - 1;
    const std::uint32_t bits = bits_of(test(load_short(text, length))) & valid;
    if (bits == 0) return none;
    return from == From::start ? first_lane<Char>(bits) : last_lane<Char>(bits);
}

template <class Char, class Test>
std::size_t walk_forward(const Char* text, std::size_t length, const Test& test) {
    using V = Vector<Char>;
    constexpr std::size_t lanes = V::lanes;
    if (length < lanes) return length == 0 ? none : walk_short(text, length, test, From::start);
    std::size_t at = 0;
    // Four at a time while nothing is found; then one after the other from where it is.
    for (; at + 4 * lanes <= length; at += 4 * lanes) {
        const auto any = test(V::load(text + at)) | test(V::load(text + at + lanes)) |
                         test(V::load(text + at + 2 * lanes)) |
                         test(V::load(text + at + 3 * lanes));
        if (bits_of(any) != 0) break;
    }
    for (; at + lanes <= length; at += lanes) {
        const std::uint32_t bits = bits_of(test(V::load(text + at)));
        if (bits != 0) return at + first_lane<Char>(bits);
    }
    if (at == length) return none;
    at = length - lanes;
    const std::uint32_t bits = bits_of(test(V::load(text + at)));
    return bits == 0 ? none : at + first_lane<Char>(bits);
}

template <class Char, class Test>
std::size_t walk_backward(const Char* text, std::size_t length, const Test& test) {
    using V = Vector<Char>;
    constexpr std::size_t lanes = V::lanes;
    if (length < lanes) return length == 0 ? none : walk_short(text, length, test, From::end);
    std::size_t end = length;
    for (; end >= 4 * lanes; end -= 4 * lanes) {
        const Char* const last = text + end;
        const auto any = test(V::load(last - lanes)) | test(V::load(last - 2 * lanes)) |
                         test(V::load(last - 3 * lanes)) | test(V::load(last - 4 * lanes));
        if (bits_of(any) != 0) break;
    }
    for (; end >= lanes; end -= lanes) {
        const std::uint32_t bits = bits_of(test(V::load(text + end - lanes)));
        if (bits != 0) return end - lanes + last_lane<Char>(bits);
    }
    if (end == 0) return none;
    const std::uint32_t bits = bits_of(test(V::load(text)));
    return bits == 0 ? none : last_lane<Char>(bits);
}

template <class Char, class Test>
std::size_t walk(const Char* text, std::size_t length, const Test& test, From from) {
    return from == From::start ? walk_forward(text, length, test)
                               : walk_backward(text, length, test);
}

// ---- Other than one character ----

template <class Char>
std::size_t other_than(const Char* text, std::size_t length, Char c, From from) {
    using Value = typename Vector<Char>::Value;
    const Value wanted = Vector<Char>::filled(c);
    return walk(
        text, length, [&](Value value) { return value != wanted; }, from);
}

// ---- The first difference ----

template <class Char>
std::size_t difference(const Char* one, const Char* two, std::size_t length) {
    using V = Vector<Char>;
    constexpr std::size_t lanes = V::lanes;
    if (length < lanes) {
        for (std::size_t at = 0; at < length; ++at)
            if (one[at] != two[at]) return at;
        return none;
    }
    std::size_t at = 0;
    const auto differ = [&](std::size_t i) {
        return V::load(one + at + i) != V::load(two + at + i);
    };
    for (; at + 4 * lanes < length; at += 4 * lanes) {
        const auto any = (differ(0) | differ(lanes)) | (differ(2 * lanes) | differ(3 * lanes));
        if (bits_of(any) != 0) break;
    }
    for (;; at += lanes) {
        if (at + lanes > length) at = length - lanes;
        const std::uint32_t bits = bits_of(differ(0));
        if (bits != 0) return at + first_lane<Char>(bits);
        if (at + lanes == length) return none;
    }
}

// ---- Characters of a set ----

template <bool stranger, class Mask>
Mask select(Mask members) {
    if constexpr (stranger) return ~members;
    return members;
}

// A set of a few characters, each compared with everything. Short ones are filled up with their
// first, so that `count` is known to the compiler.
template <class Char, std::size_t count, bool stranger>
std::size_t walk_few(const Char* text, std::size_t length, const Char* set, std::size_t set_count,
                     From from) {
    using Value = typename Vector<Char>::Value;
    Value members[count];
    for (std::size_t i = 0; i < count; ++i)
        members[i] = Vector<Char>::filled(set[i < set_count ? i : 0]);
    return walk(
        text, length,
        [&](Value value) {
            auto found = value == members[0];
            for (std::size_t i = 1; i < count; ++i) found |= value == members[i];
            return select<stranger>(found);
        },
        from);
}

// Any number of characters, one after the other. A table knows the low ones.
template <class Char, bool stranger>
std::size_t walk_table(const Char* text, std::size_t length, const Char* set, std::size_t set_count,
                       From from) {
    constexpr Char low_ones = 0xFF;
    bool held[256] = {};
    bool high_ones = false;
    for (std::size_t i = 0; i < set_count; ++i) {
        if (set[i] <= low_ones) {
            held[set[i]] = true;
        } else {
            high_ones = true;
        }
    }
    const auto member = [&](Char c) {
        if (c <= low_ones) return held[c];
        for (std::size_t i = 0; high_ones && i < set_count; ++i)
            if (set[i] == c) return true;
        return false;
    };
    if (from == From::start) {
        for (std::size_t at = 0; at < length; ++at)
            if (member(text[at]) != stranger) return at;
    } else {
        for (std::size_t at = length; at > 0; --at)
            if (member(text[at - 1]) != stranger) return at - 1;
    }
    return none;
}

#ifdef __AVX2__
// Any set of bytes by three look-ups of 16: row `low four bits` of a table of bits, the bit being
// the high four bits, in two halves (W. Mula's universal method for sets of bytes).
template <bool stranger>
std::size_t walk_bits(const std::uint8_t* text, std::size_t length, const std::uint8_t* set,
                      std::size_t set_count, From from) {
    using Value = Vector<std::uint8_t>::Value;
    std::uint8_t rows[2][16] = {};
    for (std::size_t i = 0; i < set_count; ++i)
        rows[set[i] >> 7][set[i] & 15] |= static_cast<std::uint8_t>(1 << ((set[i] >> 4) & 7));
    const auto row = [&](int half) {
        return _mm256_broadcastsi128_si256(load_word<__m128i>(rows[half]));
    };
    const __m256i lower = row(0);
    const __m256i upper = row(1);
    const __m256i bit_of = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128));
    const __m256i low_bits = _mm256_set1_epi8(15);
    return walk(
        text, length,
        [&](Value value) {
            const __m256i c = load_word<__m256i>(&value);
            const __m256i low = _mm256_and_si256(c, low_bits);
            const __m256i high = _mm256_and_si256(_mm256_srli_epi16(c, 4), low_bits);
            const __m256i bit = _mm256_shuffle_epi8(bit_of, high);
            const __m256i held = _mm256_blendv_epi8(_mm256_shuffle_epi8(lower, low),
                                                    _mm256_shuffle_epi8(upper, low), c);
            const __m256i found = _mm256_cmpeq_epi8(_mm256_and_si256(held, bit), bit);
            return select<stranger>(load_word<Value>(&found));
        },
        from);
}
#endif

template <class Char, bool stranger>
std::size_t of_set(const Char* text, std::size_t length, const Char* set, std::size_t count,
                   From from) {
    if (count == 1) return walk_few<Char, 1, stranger>(text, length, set, count, from);
    if (count <= 4) return walk_few<Char, 4, stranger>(text, length, set, count, from);
#ifdef __AVX2__
    if constexpr (sizeof(Char) == 1) return walk_bits<stranger>(text, length, set, count, from);
#endif
    if (count <= 8) return walk_few<Char, 8, stranger>(text, length, set, count, from);
    if (count <= 16) return walk_few<Char, 16, stranger>(text, length, set, count, from);
    return walk_table<Char, stranger>(text, length, set, count, from);
}

template <class Char>
std::size_t of_set(const Char* text, std::size_t length, const Char* set, std::size_t count,
                   Stop stop, From from) {
    return stop == Stop::at_member ? of_set<Char, false>(text, length, set, count, from)
                                   : of_set<Char, true>(text, length, set, count, from);
}

// ---- A part of a text ----

// Looks at the places where the part's first and last character stand. A text that is full of
// such places would cost lengths multiplied: once they have cost more than the text is long, the
// search that can't do so takes over.
template <class Char>
class PartSearch {
  public:
    PartSearch(const Char* text, std::size_t length, const Char* part, std::size_t part_length,
               From from)
        : text_(text),
          length_(length),
          part_(part),
          part_length_(part_length),
          places_(length - part_length + 1),
          from_(from),
          patience_(4 * length + 1024),
          first_(V::filled(part[0])),
          last_(V::filled(part[part_length - 1])) {}

    std::size_t run() {
        if (places_ < V::lanes) return few_places();
        return from_ == From::start ? forward() : backward();
    }

  private:
    using V = Vector<Char>;
    static constexpr std::size_t bits_per_lane = sizeof(Char);

    std::uint32_t candidates(std::size_t at) const {
        return bits_of((V::load(text_ + at) == first_) &
                       (V::load(text_ + at + part_length_ - 1) == last_));
    }
    bool is_at(std::size_t at) {
        if (part_length_ <= 2) return true;
        const std::size_t bytes = (part_length_ - 2) * sizeof(Char);
        patience_ -= patience_ < bytes ? patience_ : bytes;
        return std::memcmp(text_ + at + 1, part_ + 1, bytes) == 0;
    }
    std::size_t few_places() {
        const Char first = part_[0];
        const Char last = part_[part_length_ - 1];
        for (std::size_t i = 0; i < places_; ++i) {
            const std::size_t at = from_ == From::start ? i : places_ - 1 - i;
            if (text_[at] == first && text_[at + part_length_ - 1] == last && is_at(at)) return at;
        }
        return none;
    }
    std::size_t first_in(std::size_t at) {
        for (std::uint32_t bits = candidates(at); bits != 0;) {
            const std::size_t lane = first_lane<Char>(bits);
            if (is_at(at + lane)) return at + lane;
            bits &= ~(((1U << bits_per_lane) - 1) << (lane * bits_per_lane));
        }
        return none;
    }
    std::size_t last_in(std::size_t at) {
        for (std::uint32_t bits = candidates(at); bits != 0;) {
            const std::size_t lane = last_lane<Char>(bits);
            if (is_at(at + lane)) return at + lane;
            bits &= ~(((1U << bits_per_lane) - 1) << (lane * bits_per_lane));
        }
        return none;
    }
    std::size_t forward() {
        for (std::size_t at = 0;; at += V::lanes) {
            if (at + V::lanes > places_) at = places_ - V::lanes;
            const std::size_t found = first_in(at);
            if (found != none || at + V::lanes == places_) return found;
            if (patience_ == 0) {
                const std::size_t rest =
                    find_part_linear(text_ + at, length_ - at, part_, part_length_, From::start);
                return rest == none ? none : at + rest;
            }
        }
    }
    std::size_t backward() {
        for (std::size_t end = places_;; end -= V::lanes) {
            if (end < V::lanes) end = V::lanes;
            const std::size_t found = last_in(end - V::lanes);
            if (found != none || end == V::lanes) return found;
            if (patience_ == 0)
                return find_part_linear(text_, end + part_length_ - 1, part_, part_length_,
                                        From::end);
        }
    }

    const Char* text_;
    std::size_t length_;
    const Char* part_;
    std::size_t part_length_;
    std::size_t places_;
    From from_;
    std::size_t patience_;
    typename V::Value first_;
    typename V::Value last_;
};

template <class Char>
std::size_t find_part(const Char* text, std::size_t length, const Char* part,
                      std::size_t part_length, From from) {
    return PartSearch<Char>(text, length, part, part_length, from).run();
}

}  // namespace
}  // namespace tarn::intrinsics::vectors
