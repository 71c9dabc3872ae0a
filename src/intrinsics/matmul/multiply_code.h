// The body of `multiply`, for the files that compile it.
#pragma once

#include <atomic>
#include <xmmintrin.h>

#include "frame/cores.h"
#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/matmul/blocks.h"
#include "intrinsics/matmul/small.h"
#include "platform/kernel/workers.h"

namespace tarn::matmul {

// ---- A matrix and a vector ----

// y := a x, column after column.
template <class T>
struct AddColumns {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(T* y, const T* a, Index column_step, const T* x,
                                                  Index x_step, Index rows, Index columns) {
        for (Index i = 0; i < rows; ++i) y[i] = 0;
        Index p = 0;
        for (; p + 4 <= columns; p += 4) {
            const T* const c0 = a + p * column_step;
            const T* const c1 = c0 + column_step;
            const T* const c2 = c1 + column_step;
            const T* const c3 = c2 + column_step;
            const T x0 = x[p * x_step];
            const T x1 = x[(p + 1) * x_step];
            const T x2 = x[(p + 2) * x_step];
            const T x3 = x[(p + 3) * x_step];
            for (Index i = 0; i < rows; ++i)
                y[i] += (c0[i] * x0 + c1[i] * x1) + (c2[i] * x2 + c3[i] * x3);
        }
        for (; p < columns; ++p) {
            const T factor = x[p * x_step];
            for (Index i = 0; i < rows; ++i) y[i] += a[p * column_step + i] * factor;
        }
    }
};

// y := a x, row after row; the elements of a row and of x lie together.
template <class T>
struct DotRows {
    static constexpr bool has_vectors = true;
    [[gnu::always_inline]] static inline void run(T* y, Index y_step, const T* a, Index row_step,
                                                  const T* x, Index rows, Index columns) {
        constexpr Index lanes = 128 / sizeof(T);
        for (Index i = 0; i < rows; ++i) {
            const T* const row = a + i * row_step;
            T sum[lanes] = {};
            Index p = 0;
            for (; p + lanes <= columns; p += lanes)
                for (Index l = 0; l < lanes; ++l) sum[l] += row[p + l] * x[p + l];
            T total = 0;
            for (; p < columns; ++p) total += row[p] * x[p];
            for (Index l = 0; l < lanes; ++l) total += sum[l];
            y[i * y_step] = total;
        }
    }
};

// Whether the product was one of a matrix and a column that lie well, and is done.
template <class T>
bool multiply_vector(const Matrix<const T>& a, const Matrix<const T>& x, const Matrix<T>& y) {
    if (a.row_step == 1 && (y.row_step == 1 || y.rows == 1)) {
        arrays::dispatch<AddColumns<T>>(y.base, a.base, a.column_step, x.base, x.row_step, a.rows,
                                        a.columns);
        return true;
    }
    if (a.column_step == 1 && (x.row_step == 1 || x.rows == 1)) {
        arrays::dispatch<DotRows<T>>(y.base, y.row_step, a.base, a.row_step, x.base, a.rows,
                                     a.columns);
        return true;
    }
    return false;
}

// ---- Several threads ----

// A product is worth a second thread from about half a millisecond.
inline constexpr double worth_sharing = 1e7;

inline int threads_for(Index rows, Index inner, Index columns) {
    const int most = frame::max_cores();
    if (most < 2) return 1;
    const double steps = static_cast<double>(rows) * static_cast<double>(inner);
    if (steps * static_cast<double>(columns) < worth_sharing) return 1;
    // A trap must come to the thread that asked for it.
    constexpr unsigned all_masked = 0x1F80;
    return (_mm_getcsr() & all_masked) == all_masked ? most : 1;
}

// Does blocks(a, b, c) for parts of c, whole tiles of columns or else of rows. What an element is
// made of doesn't depend on the part, so that the product is the same on any number of threads.
template <class Kernel, class T, class Blocks>
bool multiply_in_parts(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c,
                       Blocks blocks) {
    const int threads = threads_for(c.rows, a.columns, c.columns);
    if (threads < 2) return blocks(a, b, c);
    constexpr int parts_a_thread = 2;
    const Index wanted = Index{threads} * parts_a_thread;
    struct Job {
        const Matrix<const T>& a;
        const Matrix<const T>& b;
        const Matrix<T>& c;
        Blocks blocks;
        bool by_columns;
        Index length;
        std::atomic<bool> done{true};

        void part(Index first) {
            const Index rows = by_columns ? c.rows : std::min(length, c.rows - first);
            const Index columns = by_columns ? std::min(length, c.columns - first) : c.columns;
            const Index row = by_columns ? 0 : first;
            const Index column = by_columns ? first : 0;
            const Matrix<T> own = {c.base + row * c.row_step + column * c.column_step, rows,
                                   columns, c.row_step, c.column_step};
            if (!blocks(block_of(a, row, rows, 0, a.columns),
                        block_of(b, 0, b.rows, column, columns), own))
                done.store(false, std::memory_order_relaxed);
        }
    };
    Job job{a, b, c, blocks, c.columns >= wanted * Kernel::columns, 0};
    const Index extent = job.by_columns ? c.columns : c.rows;
    const Index step = job.by_columns ? Kernel::columns : Kernel::rows;
    job.length = round_up((extent + wanted - 1) / wanted, step);
    platform::run_parts(
        static_cast<int>((extent + job.length - 1) / job.length), threads,
        [](void* context, int i) {
            auto& mine = *static_cast<Job*>(context);
            mine.part(i * mine.length);
        },
        &job);
    return job.done.load(std::memory_order_relaxed);
}

// ---- The choice ----

template <class Level, class Kernel>
struct InBlocks {
    template <class T>
    static bool run(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
        return multiply_in_parts<Kernel>(a, b, c, [](const auto& x, const auto& y, const auto& z) {
            if constexpr (arrays::is_complex<T>) {
                return multiply_complex_in_blocks<Level, Kernel>(x, y, z);
            } else {
                return multiply_in_blocks<Level, Kernel>(x, y, z);
            }
        });
    }
};

inline constexpr Index small_size = 32 * 32 * 32;

template <class T>
void multiply_real(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
    using W = Working<T>;
    if constexpr (std::is_same_v<T, W>) {
        if (c.columns == 1 && multiply_vector(a, b, c)) return;
        if (c.rows == 1 && multiply_vector(b.transposed(), a.transposed(), c.transposed())) return;
        if (a.columns <= small_inner && c.rows * c.columns * a.columns <= small_size) {
            switch (platform::vector_level()) {
                case platform::VectorLevel::avx512:
                case platform::VectorLevel::avx2:
                    if constexpr (sizeof(T) >= 4)
                        if (c.row_step == 1 && multiply_small_any(a, b, c)) return;
                    // Four rows at least; half a vector will do for the narrow types.
                    return multiply_small<Avx2, SmallTile<T, sizeof(T) < 8 ? 16 : 32, 1>,
                                          SmallTile<T, 32, 1>, SmallTile<T, 32, 2>>(a, b, c);
                default:
                    return multiply_small<Sse2, SmallTile<T, 16, 1>, SmallTile<T, 16, 1>,
                                          SmallTile<T, 16, 2>>(a, b, c);
            }
        }
    }
    bool done = false;
    switch (platform::vector_level()) {
        case platform::VectorLevel::avx512:
            done = InBlocks<Avx512, Tile<W, 64, 3, 8, true>>::run(a, b, c);
            break;
        case platform::VectorLevel::avx2:
            done = InBlocks<Avx2, Tile<W, 32, 2, 6, true>>::run(a, b, c);
            break;
        default:
            done = InBlocks<Sse2, Tile<W, 16, 2, 4, true>>::run(a, b, c);
    }
    if (!done) multiply_plainly(a, b, c);
}

template <class T>
void multiply_complex(const Matrix<const Complex<T>>& a, const Matrix<const Complex<T>>& b,
                      const Matrix<Complex<T>>& c) {
    bool done = false;
    if (c.rows * c.columns * a.columns <= small_size) {
        if (platform::vector_level() >= platform::VectorLevel::avx2) {
            if (c.row_step == 1 && multiply_small_any(a, b, c)) return;
        } else if (a.row_step == 1 && c.rows >= 16 / static_cast<Index>(sizeof(T))) {
            return multiply_small_complex<Sse2, SmallTile<T, 16, 2>>(a, b, c);
        }
    }
    switch (platform::vector_level()) {
        case platform::VectorLevel::avx512:
            done = InBlocks<Avx512, ComplexTile<T, 64, 2, 6>>::run(a, b, c);
            break;
        case platform::VectorLevel::avx2:
            done = InBlocks<Avx2, ComplexTile<T, 32, 1, 6>>::run(a, b, c);
            break;
        default:
            done = InBlocks<Sse2, ComplexTile<T, 16, 1, 4>>::run(a, b, c);
    }
    if (!done) multiply_plainly(a, b, c);
}

template <class T>
void multiply(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
    if (c.rows <= 0 || c.columns <= 0) return;
    if (a.columns <= 0) return clear(c);
    if (c.row_step != 1 && c.column_step == 1)
        return multiply(b.transposed(), a.transposed(), c.transposed());
    if constexpr (std::is_same_v<T, Complex<float>> || std::is_same_v<T, Complex<double>>) {
        multiply_complex(a, b, c);
    } else if constexpr (sizeof(T) <= 8 && !arrays::is_complex<T>) {
        multiply_real(a, b, c);
    } else {
        multiply_plainly(a, b, c);
    }
}

#define TARN_MULTIPLY(T) \
    template void multiply(const Matrix<const T>&, const Matrix<const T>&, const Matrix<T>&);

}  // namespace tarn::matmul
