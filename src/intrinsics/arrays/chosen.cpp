// Runs of which a mask chooses elements: what PACK and UNPACK do inside.
#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>

#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/runs.h"
#include "intrinsics/arrays/sizes.h"

namespace tarn::arrays {
namespace {

template <Index size>
Index compact_plainly(std::byte* to, Index room, const std::byte* from, const Flag* flags,
                      Index n) {
    // Each element is stored and only kept if its flag says so; the store behind the last place
    // would be one too many.
    Index kept = 0;
    Index i = 0;
    for (; i < n && kept < room; ++i) {
        move_element<size>(to + kept * size, from + i * size);
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
        move_element<size>(to + kept * size, from + i * stride);
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

// Stores those of 32 bytes of elements whose bit is set, and something behind them.
template <Index size>
[[gnu::target("avx2"), gnu::always_inline]] inline void store_chosen(std::byte* to, __m256i all,
                                                                     unsigned bits) {
    const auto* const row = size == 4 ? places[bits].data() : pair_places[bits].data();
    const __m256i order =
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm256_permutevar8x32_epi32(all, order));
}

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
            const __m256i all =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + (i + half) * size));
            store_chosen<size>(to + kept * size, all, group);
            kept += std::popcount(group);
        }
    }
    return kept +
           compact_plainly<size>(to + kept * size, room - kept, from + i * size, flags + i, n - i);
}

// ---- The same of elements and mask elements of which every second counts ----

[[gnu::target("avx2"), gnu::always_inline]] inline __m256i load_32(const std::byte* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

// 32 bytes of elements that lie together, or of every second one.
template <Index size, bool second>
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i load_elements(const std::byte* from) {
    const __m256i low = load_32(from);
    if constexpr (!second) return low;
    const __m256i high = load_32(from + 32);
    const __m256i mixed = size == 4
                              ? _mm256_castps_si256(_mm256_shuffle_ps(
                                    _mm256_castsi256_ps(low), _mm256_castsi256_ps(high), 0x88))
                              : _mm256_unpacklo_epi64(low, high);
    return _mm256_permute4x64_epi64(mixed, 0xD8);
}

// Which of 4 or 8 mask elements of 4 bytes are true, by their low bytes.
template <Index lanes, bool second>
[[gnu::target("avx2"), gnu::always_inline]] inline unsigned load_bits(const std::byte* mask) {
    const __m256i low_bytes = second ? _mm256_set1_epi64x(0xFF) : _mm256_set1_epi32(0xFF);
    const auto hidden = [&](__m256i words) __attribute__((target("avx2"), always_inline)) {
        const __m256i zeros = _mm256_setzero_si256();
        const __m256i bytes = _mm256_and_si256(words, low_bytes);
        return second
                   ? static_cast<unsigned>(
                         _mm256_movemask_pd(_mm256_castsi256_pd(_mm256_cmpeq_epi64(bytes, zeros))))
                   : static_cast<unsigned>(
                         _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(bytes, zeros))));
    };
    constexpr unsigned all = (1u << lanes) - 1;
    if constexpr (second && lanes == 8) {
        return ~(hidden(load_32(mask)) | hidden(load_32(mask + 32)) << 4) & all;
    } else if constexpr (second || lanes == 8) {
        return ~hidden(load_32(mask)) & all;
    } else {
        return ~hidden(_mm256_castsi128_si256(
                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(mask)))) &
               all;
    }
}

template <Index size, bool second, bool second_flag>
[[gnu::target("avx2,popcnt")]] Index compact_seconds(std::byte* to, const std::byte* from,
                                                     const std::byte* mask, Index n) {
    constexpr Index lanes = 32 / size;
    constexpr Index step = second ? 2 * size : size;
    constexpr Index mask_step = second_flag ? 8 : 4;
    Index kept = 0;
    Index i = 0;
    // Behind the last element there may be nothing to read.
    for (; i + lanes < n; i += lanes) {
        const unsigned bits = load_bits<lanes, second_flag>(mask + i * mask_step);
        store_chosen<size>(to + kept * size, load_elements<size, second>(from + i * step), bits);
        kept += std::popcount(bits);
    }
    return kept + compact_apart_of<size>(to + kept * size, from + i * step, step,
                                         mask + i * mask_step, mask_step, n - i);
}

// -1: these lie in another way.
template <Index size>
Index compact_seconds_of(std::byte* to, const std::byte* from, Index stride, const std::byte* mask,
                         Index mask_stride, Index n) {
    if (platform::vector_level() < platform::VectorLevel::avx2) return -1;
    const bool second = stride == 2 * size;
    const bool second_flag = mask_stride == 8;
    if ((!second && stride != size) || (!second_flag && mask_stride != 4)) return -1;
    if (second && second_flag) return compact_seconds<size, true, true>(to, from, mask, n);
    if (second) return compact_seconds<size, true, false>(to, from, mask, n);
    return compact_seconds<size, false, true>(to, from, mask, n);
}

}  // namespace

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
                    Index mask_stride, Index mask_size, Index n, Index element) {
    Index kept = -1;
    if (mask_size == 4 && element == 4)
        kept = compact_seconds_of<4>(to, from, stride, mask, mask_stride, n);
    if (mask_size == 4 && element == 8)
        kept = compact_seconds_of<8>(to, from, stride, mask, mask_stride, n);
    if (kept >= 0) return kept;
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
