#include "intrinsics/arrays/runs.h"

#include <algorithm>
#include <cstring>
#include <immintrin.h>

#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/sizes.h"

namespace tarn::arrays {
namespace {

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
    with_element_size(element,
                      [&](auto size) { size.copy_apart(to, to_stride, from, from_stride, n); });
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

// The first copies of some elements, then the second ones: so few that all stay near.
template <Index size>
void repeat_in_turns(std::byte* to, Index to_stride, Index copy_stride, Index copies,
                     const std::byte* from, Index from_stride, Index n) {
    constexpr Index together = 64;
    for (Index first = 0; first < n; first += together) {
        const Index m = std::min(together, n - first);
        for (Index c = 0; c < copies; ++c) {
            std::byte* const t = to + first * to_stride + c * copy_stride;
            const std::byte* const f = from + first * from_stride;
            for (Index i = 0; i < m; ++i)
                move_element<size>(t + i * to_stride, f + i * from_stride);
        }
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
        repeat_in_turns<size>(to, to_stride, copy_stride, copies, from, from_stride, n);
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

}  // namespace tarn::arrays
