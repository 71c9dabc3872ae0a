#include "intrinsics/arrays/runs.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>

#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/sizes.h"

namespace tarn::arrays {
namespace {

template <Index size>
[[gnu::always_inline]] inline void move(std::byte* to, const std::byte* from) {
    __builtin_memcpy(to, from, size);
}

// ---- Flags ----

template <class Word>
struct DenseFlags {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(Flag* flags, const std::byte* mask, Index n,
                                                  Truth truth) {
        const auto word = [&](Index i) {
            Word w;
            __builtin_memcpy(&w, mask + i * sizeof(Word), sizeof w);
            return w;
        };
        constexpr Word low = 0xFF;
        switch (truth) {
            case Truth::low_byte:
                for (Index i = 0; i < n; ++i) flags[i] = (word(i) & low) != 0;
                return;
            case Truth::byte_is_one:
                for (Index i = 0; i < n; ++i) flags[i] = (word(i) & low) == 1;
                return;
            case Truth::whole:
                for (Index i = 0; i < n; ++i) flags[i] = word(i) != 0;
                return;
        }
    }
};

// How many of n words are true, with no flags in between; every word counts, or every second.
template <class Word, Index step>
struct DenseCount {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline Index run(const std::byte* mask, Index n, Word low,
                                                   bool exactly_one) {
        Index total = 0;
        while (n > 0) {
            const Index part = std::min<Index>(n, sizeof(Word) == 1 ? 255 : 1 << 15);
            Word sum = 0;
            if (exactly_one) {
                for (Index i = 0; i < part; ++i) sum += (word(mask, i) & low) == 1;
            } else {
                for (Index i = 0; i < part; ++i) sum += (word(mask, i) & low) != 0;
            }
            total += static_cast<Index>(sum);
            mask += part * step * static_cast<Index>(sizeof(Word));
            n -= part;
        }
        return total;
    }
    [[gnu::always_inline]] static inline Word word(const std::byte* mask, Index i) {
        Word w;
        __builtin_memcpy(&w, mask + i * step * static_cast<Index>(sizeof(Word)), sizeof w);
        return w;
    }
};

// The same for rows of words, or of words of which every second counts.
template <class Word, class Half>
struct CountRows {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(Index* counts, const std::byte* mask, Index step,
                                                  Index rows, Index n, Word low, bool exactly_one) {
        for (Index r = 0; r < rows; ++r) {
            const std::byte* const row = mask + r * step;
            if constexpr (sizeof(Half) == sizeof(Word)) {
                counts[r] = DenseCount<Word, 1>::run(row, n, low, exactly_one);
            } else {
                // Behind the last there may be nothing to read.
                Half last;
                __builtin_memcpy(&last, row + (n - 1) * static_cast<Index>(sizeof(Word)),
                                 sizeof last);
                last = static_cast<Half>(last & low);
                counts[r] = DenseCount<Word, 1>::run(row, n - 1, low, exactly_one) +
                            (exactly_one ? last == 1 : last != 0);
            }
        }
    }
};

template <class Word>
Index count_dense(const std::byte* mask, Index stride, Index n, Truth truth) {
    const Word low = truth == Truth::whole ? static_cast<Word>(~Word{0}) : Word{0xFF};
    const bool exactly_one = truth == Truth::byte_is_one;
    if (stride == static_cast<Index>(sizeof(Word)))
        return dispatch<DenseCount<Word, 1>>(mask, n, low, exactly_one);
    return dispatch<DenseCount<Word, 2>>(mask, n, low, exactly_one);
}

// Every second word of `Half`: the lower halves of words twice as wide, which need no moving about.
// Behind the last there may be nothing to read.
template <class Half, class Word>
Index count_every_second(const std::byte* mask, Index n, Truth truth) {
    if (n <= 0) return 0;
    const Word low = truth == Truth::whole ? Word{static_cast<Half>(~Half{0})} : Word{0xFF};
    const std::byte* const last = mask + (n - 1) * static_cast<Index>(sizeof(Word));
    return dispatch<DenseCount<Word, 1>>(mask, n - 1, low, truth == Truth::byte_is_one) +
           (is_true(last, sizeof(Half), truth) ? 1 : 0);
}

// Every second word, as sections with a stride of 2 have them.
template <class Word>
struct EverySecond {
    static constexpr bool has_vectors = true;
    using Aliased [[gnu::may_alias, gnu::aligned(1)]] = Word;
    [[gnu::always_inline]] static inline void run(std::byte* to, const std::byte* from, Index n) {
        auto* const t = reinterpret_cast<Aliased*>(to);
        const auto* const f = reinterpret_cast<const Aliased*>(from);
        for (Index i = 0; i < n; ++i) t[i] = f[2 * i];
    }
};

bool copy_every_second(std::byte* to, const std::byte* from, Index n, Index element) {
    // The last element alone: the word behind it may not be there to be read.
    if (n < 2) return false;
    switch (element) {
        case 1:
            dispatch<EverySecond<std::uint8_t>>(to, from, n - 1);
            break;
        case 2:
            dispatch<EverySecond<std::uint16_t>>(to, from, n - 1);
            break;
        case 4:
            dispatch<EverySecond<std::uint32_t>>(to, from, n - 1);
            break;
        case 8:
            dispatch<EverySecond<std::uint64_t>>(to, from, n - 1);
            break;
        default:
            return false;
    }
    std::memcpy(to + (n - 1) * element, from + 2 * (n - 1) * element,
                static_cast<std::size_t>(element));
    return true;
}

// ---- Compaction ----

template <Index size>
Index compact_plainly(std::byte* to, Index room, const std::byte* from, const Flag* flags,
                      Index n) {
    // Each element is stored and only kept if its flag says so; the store behind the last place
    // would be one too many.
    Index kept = 0;
    Index i = 0;
    for (; i < n && kept < room; ++i) {
        move<size>(to + kept * size, from + i * size);
        kept += flags[i];
    }
    return kept;
}

// The same from elements and mask elements at any strides; there is room for all n.
template <Index size>
Index compact_apart_of(std::byte* to, const std::byte* from, Index stride, const std::byte* mask,
                       Index mask_stride, Index n) {
    Index kept = 0;
    for (Index i = 0; i < n; ++i) {
        move<size>(to + kept * size, from + i * stride);
        kept += mask[i * mask_stride] != std::byte{0};
    }
    return kept;
}

// For each set of 8 flags the places of those that are set, as an index for a permutation.
constexpr std::array<std::array<std::uint8_t, 8>, 256> make_places() {
    std::array<std::array<std::uint8_t, 8>, 256> table{};
    for (unsigned bits = 0; bits < 256; ++bits) {
        unsigned at = 0;
        for (std::uint8_t place = 0; place < 8; ++place)
            if ((bits >> place & 1) != 0) table[bits][at++] = place;
    }
    return table;
}
constexpr std::array<std::array<std::uint8_t, 8>, 256> places = make_places();

// The same for 4 elements of 8 bytes, as pairs of words.
constexpr std::array<std::array<std::uint8_t, 8>, 16> make_pair_places() {
    std::array<std::array<std::uint8_t, 8>, 16> table{};
    for (unsigned bits = 0; bits < 16; ++bits) {
        unsigned at = 0;
        for (std::uint8_t place = 0; place < 4; ++place) {
            if ((bits >> place & 1) == 0) continue;
            table[bits][at++] = static_cast<std::uint8_t>(2 * place);
            table[bits][at++] = static_cast<std::uint8_t>(2 * place + 1);
        }
    }
    return table;
}
constexpr std::array<std::array<std::uint8_t, 8>, 16> pair_places = make_pair_places();

// 32 bytes at a time. What stands behind the kept elements of a group is overwritten by the next.
template <Index size>
[[gnu::target("avx2,popcnt")]] Index compact_avx2(std::byte* to, Index room, const std::byte* from,
                                                  const Flag* flags, Index n) {
    constexpr Index lanes = 32 / size;
    Index kept = 0;
    Index i = 0;
    for (; i + 8 <= n && kept + 8 <= room; i += 8) {
        const __m128i set = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(flags + i));
        const auto bits = static_cast<unsigned>(_mm_movemask_epi8(_mm_slli_epi16(set, 7)) & 0xFF);
        for (Index half = 0; half < 8; half += lanes) {
            const unsigned group = bits >> half & ((1u << lanes) - 1);
            const auto* const row = size == 4 ? places[group].data() : pair_places[group].data();
            const __m256i order =
                _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row)));
            const __m256i all =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + (i + half) * size));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + kept * size),
                                _mm256_permutevar8x32_epi32(all, order));
            kept += std::popcount(group);
        }
    }
    return kept +
           compact_plainly<size>(to + kept * size, room - kept, from + i * size, flags + i, n - i);
}

}  // namespace

void copy_run(std::byte* to, Index to_stride, const std::byte* from, Index from_stride, Index n,
              Index element) {
    if (n <= 0) return;
    if (to_stride == element && from_stride == element) {
        std::memcpy(to, from, static_cast<std::size_t>(n * element));
        return;
    }
    constexpr Index few = 8;
    if (to_stride == element && from_stride == 2 * element && n > few &&
        copy_every_second(to, from, n, element))
        return;
    const bool done = with_size(element, [&]<Index size>() {
        if (to_stride == size) {
            for (Index i = 0; i < n; ++i) move<size>(to + i * size, from + i * from_stride);
        } else if (from_stride == size) {
            for (Index i = 0; i < n; ++i) move<size>(to + i * to_stride, from + i * size);
        } else {
            for (Index i = 0; i < n; ++i) move<size>(to + i * to_stride, from + i * from_stride);
        }
    });
    if (done) return;
    for (Index i = 0; i < n; ++i)
        std::memcpy(to + i * to_stride, from + i * from_stride, static_cast<std::size_t>(element));
}

void fill_run(std::byte* to, Index to_stride, const std::byte* value, Index n, Index element) {
    if (n <= 0) return;
    const bool done = with_size(element, [&]<Index size>() {
        struct Element {
            std::byte bytes[size];
        } one;
        __builtin_memcpy(&one, value, size);
        if (to_stride == size) {
            for (Index i = 0; i < n; ++i) __builtin_memcpy(to + i * size, &one, size);
        } else {
            for (Index i = 0; i < n; ++i) __builtin_memcpy(to + i * to_stride, &one, size);
        }
    });
    if (done) return;
    for (Index i = 0; i < n; ++i)
        std::memcpy(to + i * to_stride, value, static_cast<std::size_t>(element));
}

namespace {

template <Index size, Index copies>
void repeat_few(std::byte* to, Index to_stride, Index copy_stride, const std::byte* from,
                Index from_stride, Index n) {
    struct Element {
        std::byte bytes[size];
    };
    for (Index i = 0; i < n; ++i) {
        Element one;
        __builtin_memcpy(&one, from + i * from_stride, size);
        for (Index c = 0; c < copies; ++c)
            __builtin_memcpy(to + i * to_stride + c * copy_stride, &one, size);
    }
}

// Each word twice, everything dense.
template <class Word>
struct Twice {
    static constexpr bool has_vectors = true;
    using Aliased [[gnu::may_alias, gnu::aligned(1)]] = Word;
    [[gnu::always_inline]] static inline void run(std::byte* to, const std::byte* from, Index n) {
        auto* const t = reinterpret_cast<Aliased*>(to);
        const auto* const f = reinterpret_cast<const Aliased*>(from);
        for (Index i = 0; i < n; ++i) {
            t[2 * i] = f[i];
            t[2 * i + 1] = f[i];
        }
    }
};

bool repeat_twice(std::byte* to, const std::byte* from, Index n, Index element) {
    switch (element) {
        case 1:
            dispatch<Twice<std::uint8_t>>(to, from, n);
            return true;
        case 2:
            dispatch<Twice<std::uint16_t>>(to, from, n);
            return true;
        case 4:
            dispatch<Twice<std::uint32_t>>(to, from, n);
            return true;
        case 8:
            dispatch<Twice<std::uint64_t>>(to, from, n);
            return true;
        default:
            return false;
    }
}

// Each element many times, the copies of one side by side.
template <Index size>
void repeat_many(std::byte* to, Index to_stride, Index copies, const std::byte* from,
                 Index from_stride, Index n) {
    for (Index i = 0; i < n; ++i)
        fill_run(to + i * to_stride, size, from + i * from_stride, copies, size);
}

}  // namespace

void repeat_run(std::byte* to, Index to_stride, Index copy_stride, Index copies,
                const std::byte* from, Index from_stride, Index n, Index element) {
    if (copies == 2 && copy_stride == element && to_stride == 2 * element &&
        from_stride == element && repeat_twice(to, from, n, element))
        return;
    const bool done = with_size(element, [&]<Index size>() {
        if (copies == 2)
            return repeat_few<size, 2>(to, to_stride, copy_stride, from, from_stride, n);
        if (copies == 3)
            return repeat_few<size, 3>(to, to_stride, copy_stride, from, from_stride, n);
        if (copy_stride == size && copies >= 8)
            return repeat_many<size>(to, to_stride, copies, from, from_stride, n);
        struct Element {
            std::byte bytes[size];
        } one;
        for (Index i = 0; i < n; ++i) {
            __builtin_memcpy(&one, from + i * from_stride, size);
            std::byte* const at = to + i * to_stride;
            for (Index c = 0; c < copies; ++c) __builtin_memcpy(at + c * copy_stride, &one, size);
        }
    });
    if (done) return;
    for (Index i = 0; i < n; ++i)
        for (Index c = 0; c < copies; ++c)
            std::memcpy(to + i * to_stride + c * copy_stride, from + i * from_stride,
                        static_cast<std::size_t>(element));
}

bool is_true(const std::byte* mask, Index size, Truth truth) {
    switch (truth) {
        case Truth::low_byte:
            return mask[0] != std::byte{0};
        case Truth::byte_is_one:
            return mask[0] == std::byte{1};
        case Truth::whole:
            break;
    }
    for (Index b = 0; b < size; ++b)
        if (mask[b] != std::byte{0}) return true;
    return false;
}

void load_flags(Flag* flags, const std::byte* mask, Index stride, Index n, Index size,
                Truth truth) {
    constexpr Index few = 8;
    if (n <= few) {
        for (Index i = 0; i < n; ++i) flags[i] = is_true(mask + i * stride, size, truth);
        return;
    }
    if (stride == size) {
        switch (size) {
            case 1:
                dispatch<DenseFlags<std::uint8_t>>(flags, mask, n, truth);
                return;
            case 2:
                dispatch<DenseFlags<std::uint16_t>>(flags, mask, n, truth);
                return;
            case 4:
                dispatch<DenseFlags<std::uint32_t>>(flags, mask, n, truth);
                return;
            case 8:
                dispatch<DenseFlags<std::uint64_t>>(flags, mask, n, truth);
                return;
            default:
                break;
        }
    }
    if (stride == 2 * size && size <= 8) {
        constexpr Index chunk = 256;
        std::byte dense[chunk * 8];
        for (Index first = 0; first < n; first += chunk) {
            const Index m = std::min(chunk, n - first);
            copy_run(dense, size, mask + first * stride, stride, m, size);
            load_flags(flags + first, dense, size, m, size, truth);
        }
        return;
    }
    if (truth == Truth::whole && size > 1) {
        for (Index i = 0; i < n; ++i) {
            unsigned any = 0;
            for (Index b = 0; b < size; ++b) any |= std::to_integer<unsigned>(mask[i * stride + b]);
            flags[i] = any != 0;
        }
        return;
    }
    if (truth == Truth::byte_is_one) {
        for (Index i = 0; i < n; ++i) flags[i] = mask[i * stride] == std::byte{1};
        return;
    }
    for (Index i = 0; i < n; ++i) flags[i] = mask[i * stride] != std::byte{0};
}

Index sum_of(const Flag* flags, Index n) {
    __m128i sums = _mm_setzero_si128();
    Index i = 0;
    for (; i + 16 <= n; i += 16)
        sums = _mm_add_epi64(
            sums, _mm_sad_epu8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(flags + i)),
                               _mm_setzero_si128()));
    Index total = _mm_cvtsi128_si64(_mm_add_epi64(sums, _mm_unpackhi_epi64(sums, sums)));
    for (; i < n; ++i) total += flags[i];
    return total;
}

Index count_true(const std::byte* mask, Index stride, Index n, Index size, Truth truth) {
    // So few aren't worth the way to anything quicker.
    constexpr Index few = 16;
    if (n <= few && truth == Truth::low_byte) {
        Index total = 0;
        for (Index i = 0; i < n; ++i) total += mask[i * stride] != std::byte{0};
        return total;
    }
    if (stride == 2 * size) {
        if (size == 1) return count_every_second<std::uint8_t, std::uint16_t>(mask, n, truth);
        if (size == 2) return count_every_second<std::uint16_t, std::uint32_t>(mask, n, truth);
        if (size == 4) return count_every_second<std::uint32_t, std::uint64_t>(mask, n, truth);
    }
    if (stride == size || stride == 2 * size) {
        switch (size) {
            case 1:
                return count_dense<std::uint8_t>(mask, stride, n, truth);
            case 2:
                return count_dense<std::uint16_t>(mask, stride, n, truth);
            case 4:
                return count_dense<std::uint32_t>(mask, stride, n, truth);
            case 8:
                return count_dense<std::uint64_t>(mask, stride, n, truth);
            default:
                break;
        }
    }
    Index total = 0;
    if (truth == Truth::low_byte) {
        for (Index i = 0; i < n; ++i) total += mask[i * stride] != std::byte{0};
        return total;
    }
    constexpr Index chunk = 1024;
    Flag flags[chunk];
    for (Index first = 0; first < n; first += chunk) {
        const Index m = std::min(chunk, n - first);
        load_flags(flags, mask + first * stride, stride, m, size, truth);
        total += sum_of(flags, m);
    }
    return total;
}

void count_rows(Index* counts, const std::byte* mask, Index step, Index rows, Index stride, Index n,
                Index size, Truth truth) {
    const bool exactly_one = truth == Truth::byte_is_one;
    const auto count = [&]<class Word, class Half>(Word, Half) {
        const Word low = truth == Truth::whole ? Word{static_cast<Half>(~Half{0})} : Word{0xFF};
        dispatch<CountRows<Word, Half>>(counts, mask, step, rows, n, low, exactly_one);
    };
    constexpr Index few = 16;
    const Index shape = n <= few ? 0 : 16 * size + stride;
    switch (shape) {
        case 16 * 1 + 1:
            return count(std::uint8_t{}, std::uint8_t{});
        case 16 * 4 + 4:
            return count(std::uint32_t{}, std::uint32_t{});
        case 16 * 8 + 8:
            return count(std::uint64_t{}, std::uint64_t{});
        case 16 * 4 + 8:
            return count(std::uint64_t{}, std::uint32_t{});
        default:
            for (Index r = 0; r < rows; ++r)
                counts[r] = count_true(mask + r * step, stride, n, size, truth);
    }
}

Index compact(std::byte* to, Index room, const std::byte* from, const Flag* flags, Index n,
              Index element) {
    if (platform::vector_level() >= platform::VectorLevel::avx2) {
        if (element == 4) return compact_avx2<4>(to, room, from, flags, n);
        if (element == 8) return compact_avx2<8>(to, room, from, flags, n);
    }
    Index kept = 0;
    const bool done = with_size(
        element, [&]<Index size>() { kept = compact_plainly<size>(to, room, from, flags, n); });
    if (done) return kept;
    for (Index i = 0; i < n && kept < room; ++i) {
        if (flags[i] == 0) continue;
        std::memcpy(to + kept * element, from + i * element, static_cast<std::size_t>(element));
        ++kept;
    }
    return kept;
}

Index compact_apart(std::byte* to, const std::byte* from, Index stride, const std::byte* mask,
                    Index mask_stride, Index n, Index element) {
    Index kept = -1;
    with_size(element, [&]<Index size>() {
        kept = compact_apart_of<size>(to, from, stride, mask, mask_stride, n);
    });
    return kept;
}

namespace {

template <Index size>
const std::byte* expand_plainly(std::byte* to, Index to_stride, const std::byte* vector,
                                Index stride, const std::byte* field, Index field_stride,
                                const Flag* flags, Index n) {
    for (Index i = 0; i < n; ++i) {
        // A choice of addresses, not of roads: masks are mostly unforeseeable.
        const auto chosen = -static_cast<std::uintptr_t>(flags[i]);
        const auto address = (reinterpret_cast<std::uintptr_t>(vector) & chosen) |
                             (reinterpret_cast<std::uintptr_t>(field) & ~chosen);
        __builtin_memcpy(to, reinterpret_cast<const std::byte*>(address), size);
        vector += stride & static_cast<Index>(chosen);
        field += field_stride;
        to += to_stride;
    }
    return vector;
}

// For each set of 8 flags how many of those before a place are set: where a vector's element that
// belongs there comes from.
constexpr std::array<std::array<std::uint8_t, 8>, 256> make_ranks() {
    std::array<std::array<std::uint8_t, 8>, 256> table{};
    for (unsigned bits = 0; bits < 256; ++bits) {
        std::uint8_t met = 0;
        for (unsigned place = 0; place < 8; ++place) {
            table[bits][place] = met;
            met = static_cast<std::uint8_t>(met + (bits >> place & 1));
        }
    }
    return table;
}
constexpr std::array<std::array<std::uint8_t, 8>, 256> ranks = make_ranks();

// The same for 4 elements of 8 bytes, as pairs of words.
constexpr std::array<std::array<std::uint8_t, 8>, 16> make_pair_ranks() {
    std::array<std::array<std::uint8_t, 8>, 16> table{};
    for (unsigned bits = 0; bits < 16; ++bits) {
        for (unsigned word = 0; word < 8; ++word)
            table[bits][word] = static_cast<std::uint8_t>(2 * ranks[bits][word / 2] + word % 2);
    }
    return table;
}
constexpr std::array<std::array<std::uint8_t, 8>, 16> pair_ranks = make_pair_ranks();

// Dense elements, 8 at a time; 8 of the vector must be there to be read. Says how many are done.
template <Index size>
[[gnu::target("avx2,popcnt")]] Index expand_avx2(std::byte* to, const std::byte*& vector,
                                                 Index left, const std::byte* field,
                                                 Index field_stride, const Flag* flags, Index n) {
    constexpr Index lanes = 32 / size;
    const __m256i one_field =
        size == 4 ? _mm256_set1_epi32(*reinterpret_cast<const std::int32_t*>(field))
                  : _mm256_set1_epi64x(*reinterpret_cast<const std::int64_t*>(field));
    Index i = 0;
    for (; i + 8 <= n && left >= 8; i += 8) {
        const __m128i set = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(flags + i));
        const auto bits = static_cast<unsigned>(_mm_movemask_epi8(_mm_slli_epi16(set, 7)) & 0xFF);
        for (Index half = 0; half < 8; half += lanes) {
            const unsigned group = bits >> half & ((1u << lanes) - 1);
            const auto* const row = size == 4 ? ranks[group].data() : pair_ranks[group].data();
            const __m256i order =
                _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row)));
            const __m256i chosen = _mm256_permutevar8x32_epi32(
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(vector)), order);
            const __m128i half_set = _mm_srl_epi64(set, _mm_cvtsi64_si128(8 * half));
            const __m256i wanted =
                size == 4 ? _mm256_cvtepi8_epi32(_mm_sub_epi8(_mm_setzero_si128(), half_set))
                          : _mm256_cvtepi8_epi64(_mm_sub_epi8(_mm_setzero_si128(), half_set));
            const __m256i other = field_stride == 0
                                      ? one_field
                                      : _mm256_loadu_si256(reinterpret_cast<const __m256i*>(
                                            field + (i + half) * size));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + (i + half) * size),
                                _mm256_blendv_epi8(other, chosen, wanted));
            const auto taken = std::popcount(group);
            vector += taken * size;
            left -= taken;
        }
    }
    return i;
}

}  // namespace

void expand(std::byte* to, Index to_stride, const std::byte*& vector, Index stride, Index left,
            const std::byte* field, Index field_stride, const Flag* flags, Index n, Index element) {
    Index done = 0;
    if (n > 0 && (element == 4 || element == 8) && to_stride == element && stride == element &&
        (field_stride == element || field_stride == 0) &&
        platform::vector_level() >= platform::VectorLevel::avx2)
        done = element == 4 ? expand_avx2<4>(to, vector, left, field, field_stride, flags, n)
                            : expand_avx2<8>(to, vector, left, field, field_stride, flags, n);
    to += done * to_stride;
    field += done * field_stride;
    flags += done;
    n -= done;
    const bool known = with_size(element, [&]<Index size>() {
        vector = expand_plainly<size>(to, to_stride, vector, stride, field, field_stride, flags, n);
    });
    for (Index i = 0; i < n && !known; ++i) {
        std::memcpy(to, flags[i] != 0 ? vector : field, static_cast<std::size_t>(element));
        if (flags[i] != 0) vector += stride;
        field += field_stride;
        to += to_stride;
    }
}

}  // namespace tarn::arrays
