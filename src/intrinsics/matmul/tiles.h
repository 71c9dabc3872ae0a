// The innermost loops of a product: a tile of c that stays in registers while rows of a and columns
// of b stream past.
//
// Each is written once with vectors of some width and compiled for the instructions of a level by
// the runner that it is put into; a multiplication and an addition become one instruction where
// there is one.
#pragma once

#include <immintrin.h>

#include "intrinsics/matmul/multiply.h"

namespace tarn::matmul {

// c(0:rows-1, 0:columns-1) of a tile, column after column, c_step apart, gets the product of `k`
// steps added, or takes it. `a` has a column of the tile at each step, a_step apart. A packed b has
// its values for the columns side by side, another one has them column_step apart and the next
// step's row_step further.
template <class T, int bytes, int height, int width, bool packed>
struct Tile {
    using Element = T;
    using Vector [[gnu::vector_size(bytes)]] = T;
    static constexpr int lanes = bytes / static_cast<int>(sizeof(T));
    static constexpr int rows = height * lanes;
    static constexpr int columns = width;

    [[gnu::always_inline]] static inline void run(Index k, const T* a, Index a_step, const T* b,
                                                  Index row_step, Index column_step, T* c,
                                                  Index c_step, bool add) {
        Vector sum[width][height];
        for (int j = 0; j < width; ++j)
            for (int i = 0; i < height; ++i) sum[j][i] = Vector{};
        if constexpr (packed) {
            // The tile of c comes from memory while the sums are made.
            for (int j = 0; j < width; ++j) {
                __builtin_prefetch(c + j * c_step, 1);
                __builtin_prefetch(c + j * c_step + rows - 1, 1);
            }
        }
#pragma GCC unroll 4
        for (Index p = 0; p < k; ++p) {
            Vector left[height];
            for (int i = 0; i < height; ++i)
                __builtin_memcpy(&left[i], a + i * lanes, sizeof(Vector));
            for (int j = 0; j < width; ++j) {
                const Vector right = b[packed ? j : j * column_step] - Vector{};
                for (int i = 0; i < height; ++i) sum[j][i] += left[i] * right;
            }
            a += a_step;
            b += packed ? width : row_step;
        }
        for (int j = 0; j < width; ++j) {
            for (int i = 0; i < height; ++i) {
                T* const to = c + j * c_step + i * lanes;
                Vector value = sum[j][i];
                if (add) {
                    Vector old;
                    __builtin_memcpy(&old, to, sizeof old);
                    value += old;
                }
                __builtin_memcpy(to, &value, sizeof value);
            }
        }
    }
};

// Parts of a vector of AVX2, by 32-bit words. Masked stores are slow on many processors.
[[gnu::target("avx2,fma"), gnu::always_inline]] inline __m256i mask_of_words(Index words) {
    // A window on ones and zeros.
    alignas(32) static constexpr std::int32_t window[16] = {-1, -1, -1, -1, -1, -1, -1, -1};
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(window + 8 - words));
}
// The places of words of which the first `words` are there, and then of copies of the last `unit`
// of them, a power of 2.
[[gnu::target("avx2,fma"), gnu::always_inline]] inline __m256i places_with_copies(int words,
                                                                                  int unit) {
    const __m256i place = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    const __m256i copy = _mm256_add_epi32(_mm256_set1_epi32(words - unit),
                                          _mm256_and_si256(place, _mm256_set1_epi32(unit - 1)));
    return _mm256_blendv_epi8(copy, place, _mm256_cmpgt_epi32(_mm256_set1_epi32(words), place));
}
template <class Vector>
[[gnu::target("avx2,fma"), gnu::always_inline]] inline void store_words(void* to, Vector value,
                                                                        Index words) {
    auto* at = static_cast<char*>(to);
    __m256i all;
    __builtin_memcpy(&all, &value, sizeof all);
    __m128i half = _mm256_castsi256_si128(all);
    if ((words & 4) != 0) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at), half);
        half = _mm256_extracti128_si256(all, 1);
        at += 16;
    }
    if ((words & 2) != 0) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(at), half);
        half = _mm_unpackhi_epi64(half, half);
        at += 8;
    }
    if ((words & 1) != 0) {
        const int word = _mm_cvtsi128_si32(half);
        __builtin_memcpy(at, &word, sizeof word);
    }
}

// A tile of `height` vectors for AVX2, of whose last only `rest` elements are there unless it is
// `full`; a's column and c's lie together. Nothing beyond them is read or written, and what is
// multiplied in their place is the last of them again, which raises no exception of its own.
//
// Complex numbers go as pairs: the elements of a and c are their parts, one after the other, b
// points to the real part of a value and its steps are in parts.
template <class T, bool complex, int height, int width, bool full>
struct RestTile {
    using Vector [[gnu::vector_size(32)]] = T;
    static constexpr int lanes = 32 / static_cast<int>(sizeof(T));
    static constexpr int in_words = sizeof(T) / 4;
    static constexpr int whole = height - (full ? 0 : 1);
    static constexpr int sums = complex ? 2 : 1;  // by the real part and by the imaginary

    [[gnu::target("avx2,fma"), gnu::always_inline]] static inline void run(
        Index k, const T* a, Index a_step, const T* b, Index row_step, Index column_step, T* c,
        Index c_step, Index rest) {
        const __m256i mask = mask_of_words(rest * in_words);
        const __m256i places =
            places_with_copies(static_cast<int>(rest * in_words), in_words * (complex ? 2 : 1));
        Vector sum[width][sums][height];
        for (int j = 0; j < width; ++j)
            for (int s = 0; s < sums; ++s)
                for (int i = 0; i < height; ++i) sum[j][s][i] = Vector{};
#pragma GCC unroll 2
        for (Index p = 0; p < k; ++p) {
            Vector left[height];
            for (int i = 0; i < whole; ++i)
                __builtin_memcpy(&left[i], a + i * lanes, sizeof(Vector));
            if constexpr (!full) {
                const __m256i last = _mm256_permutevar8x32_epi32(
                    _mm256_maskload_epi32(reinterpret_cast<const int*>(a + whole * lanes), mask),
                    places);
                __builtin_memcpy(&left[whole], &last, sizeof last);
            }
            for (int j = 0; j < width; ++j) {
                for (int s = 0; s < sums; ++s) {
                    const Vector right = b[j * column_step + s] - Vector{};
                    for (int i = 0; i < height; ++i) sum[j][s][i] += left[i] * right;
                }
            }
            a += a_step;
            b += row_step;
        }
        for (int j = 0; j < width; ++j) {
            T* const to = c + j * c_step;
            for (int i = 0; i < height; ++i) {
                const Vector value = total(sum[j], i);
                if (i < whole) {
                    __builtin_memcpy(to + i * lanes, &value, sizeof value);
                } else {
                    store_words(to + i * lanes, value, rest * in_words);
                }
            }
        }
    }

  private:
    [[gnu::target("avx2,fma"), gnu::always_inline]] static inline Vector total(
        const Vector (&sum)[sums][height], int i) {
        if constexpr (!complex) {
            return sum[0][i];
        } else if constexpr (sizeof(T) == 8) {
            return _mm256_addsub_pd(sum[0][i], _mm256_permute_pd(sum[1][i], 5));
        } else {
            return _mm256_addsub_ps(sum[0][i], _mm256_permute_ps(sum[1][i], 0xB1));
        }
    }
};

// The same for complex numbers, whose parts come in vectors of their own: at each step `a` has the
// real parts of a column and then the imaginary ones, `b` the two parts of each value. The tile of
// c has the real parts first, then the imaginary ones.
template <class T, int bytes, int height, int width>
struct ComplexTile {
    using Element = T;
    using Vector [[gnu::vector_size(bytes)]] = T;
    static constexpr int lanes = bytes / static_cast<int>(sizeof(T));
    static constexpr int rows = height * lanes;
    static constexpr int columns = width;

    [[gnu::always_inline]] static inline void run(Index k, const T* a, const T* b, T* c) {
        Vector real[width][height];
        Vector imaginary[width][height];
        for (int j = 0; j < width; ++j)
            for (int i = 0; i < height; ++i) real[j][i] = imaginary[j][i] = Vector{};
        for (Index p = 0; p < k; ++p) {
            Vector re[height];
            Vector im[height];
            for (int i = 0; i < height; ++i) {
                __builtin_memcpy(&re[i], a + i * lanes, sizeof(Vector));
                __builtin_memcpy(&im[i], a + rows + i * lanes, sizeof(Vector));
            }
            for (int j = 0; j < width; ++j) {
                const Vector b_re = b[2 * j] - Vector{};
                const Vector b_im = b[2 * j + 1] - Vector{};
                for (int i = 0; i < height; ++i) {
                    real[j][i] += re[i] * b_re;
                    imaginary[j][i] += im[i] * b_re;
                    real[j][i] -= im[i] * b_im;
                    imaginary[j][i] += re[i] * b_im;
                }
            }
            a += 2 * rows;
            b += 2 * width;
        }
        for (int j = 0; j < width; ++j) {
            for (int i = 0; i < height; ++i) {
                __builtin_memcpy(c + j * 2 * rows + i * lanes, &real[j][i], sizeof(Vector));
                __builtin_memcpy(c + j * 2 * rows + rows + i * lanes, &imaginary[j][i],
                                 sizeof(Vector));
            }
        }
    }
};

// Runners: a tile compiled for a level's instructions.
struct Sse2 {
    template <class Kernel, class... Arguments>
    [[gnu::noinline]] static void run(Arguments... arguments) {
        Kernel::run(arguments...);
    }
};
struct Avx2 {
    template <class Kernel, class... Arguments>
    [[gnu::target("avx2,fma"), gnu::noinline]] static void run(Arguments... arguments) {
        Kernel::run(arguments...);
    }
};
struct Avx512 {
    template <class Kernel, class... Arguments>
    [[gnu::target("avx512f,avx512dq,avx512bw,avx512vl,avx2,fma"), gnu::noinline]] static void run(
        Arguments... arguments) {
        Kernel::run(arguments...);
    }
};

}  // namespace tarn::matmul
