// Small products: not worth the copies of blocks, their tiles read a and b where they are.
#pragma once

#include <algorithm>

#include "intrinsics/matmul/blocks.h"
#include "intrinsics/matmul/tiles.h"

namespace tarn::matmul {

inline constexpr Index small_inner = 64;

// Tiles of so many vectors high that read b where it is, four columns wide or one.
template <class T, int bytes, int height>
struct SmallTile {
    using Wide = Tile<T, bytes, height, 4, false>;
    using Narrow = Tile<T, bytes, height, 1, false>;
    static constexpr Index rows = Wide::rows;
};

// Rows from `row` on, as many as a tile has or there are.
template <class Level, class Kernel, class T>
void small_rows(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c, Index row) {
    constexpr Index tile_rows = Kernel::Wide::rows;
    constexpr Index tile_columns = Kernel::Wide::columns;
    const Index k = a.columns;
    // A last tile that would stand out is put back over its neighbour: what both compute is equal.
    if (c.rows >= tile_rows) row = std::min(row, c.rows - tile_rows);
    const Index rows = std::min(tile_rows, c.rows - row);
    alignas(64) T panel[small_inner * tile_rows];
    alignas(64) T tile[tile_rows * tile_columns];
    const T* from = a.base + row * a.row_step;
    Index a_step = a.column_step;
    if (rows < tile_rows || a.row_step != 1) {
        pack_panels(panel, block_of(a, row, rows, 0, k), tile_rows);
        from = panel;
        a_step = tile_rows;
    }
    const auto fill = [&]<class Shape>(Index j) {
        const T* const columns = b.base + j * b.column_step;
        if (rows == tile_rows && c.row_step == 1) {
            Level::template run<Shape>(k, from, a_step, columns, b.row_step, b.column_step,
                                       c.base + row + j * c.column_step, c.column_step, false);
        } else {
            Level::template run<Shape>(k, from, a_step, columns, b.row_step, b.column_step,
                                       tile + 0, tile_rows, false);
            store_tile(tile, tile_rows, c, row, rows, j, Index{Shape::columns}, false);
        }
    };
    if (c.columns < tile_columns) {
        for (Index j = 0; j < c.columns; ++j) fill.template operator()<typename Kernel::Narrow>(j);
        return;
    }
    for (Index j = 0; j < c.columns; j += tile_columns)
        fill.template operator()<typename Kernel::Wide>(std::min(j, c.columns - tile_columns));
}

// Three heights of tiles: the lowest that holds what is left, or the highest.
template <class Level, class Lowest, class Low, class High, class T>
void multiply_small(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
    for (Index row = 0; row < c.rows;) {
        const Index left = c.rows - row;
        if (left <= Lowest::rows) {
            small_rows<Level, Lowest>(a, b, c, row);
            row += Lowest::rows;
        } else if (left <= Low::rows || c.rows < High::rows) {
            small_rows<Level, Low>(a, b, c, row);
            row += Low::rows;
        } else {
            small_rows<Level, High>(a, b, c, row);
            row += High::rows;
        }
    }
}

// With AVX2, where a's columns and c's lie together: all in one routine, for a call of a tile takes
// as long as its work here. The sums of as many columns as fit are made together, or one column's.
template <bool complex, int height, bool full, class T>
[[gnu::target("avx2,fma"), gnu::always_inline]] inline void small_row(const Matrix<const T>& a,
                                                                      const Matrix<const T>& b,
                                                                      const Matrix<T>& c, Index row,
                                                                      Index rest) {
    constexpr int together = complex ? 2 : 4;
    const T* const from = a.base + row;
    Index j = 0;
    for (; j + together <= c.columns; j += together)
        RestTile<T, complex, height, together, full>::run(
            a.columns, from, a.column_step, b.base + j * b.column_step, b.row_step, b.column_step,
            c.base + row + j * c.column_step, c.column_step, rest);
    for (; j < c.columns; ++j)
        RestTile<T, complex, height, 1, full>::run(
            a.columns, from, a.column_step, b.base + j * b.column_step, b.row_step, b.column_step,
            c.base + row + j * c.column_step, c.column_step, rest);
}

template <bool complex, class T>
[[gnu::target("avx2,fma"), gnu::noinline]] void multiply_small_together(const Matrix<const T>& a,
                                                                        const Matrix<const T>& b,
                                                                        const Matrix<T>& c) {
    constexpr Index lanes = 32 / static_cast<Index>(sizeof(T));
    Index row = 0;
    for (; row + 2 * lanes <= c.rows; row += 2 * lanes)
        small_row<complex, 2, true>(a, b, c, row, lanes);
    const Index left = c.rows - row;
    if (left > lanes) {
        small_row<complex, 2, false>(a, b, c, row, left - lanes);
    } else if (left == lanes) {
        small_row<complex, 1, true>(a, b, c, row, lanes);
    } else if (left > 0) {
        small_row<complex, 1, false>(a, b, c, row, left);
    }
}

// A complex matrix as its parts; rows twice as many.
template <class T>
Matrix<const T> parts_of(const Matrix<const Complex<T>>& m) {
    return {&m.base->re, 2 * m.rows, m.columns, 2 * m.row_step, 2 * m.column_step};
}

// The small product of any a; the columns of one that don't lie together are copied. False: there
// are too many.
template <class T>
bool multiply_small_any(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
    constexpr Index room = 16384 / static_cast<Index>(sizeof(T));
    T copied[room];
    Matrix<const T> together = a;
    if (a.row_step != 1) {
        if (a.rows * a.columns > room) return false;
        for (Index p = 0; p < a.columns; ++p)
            for (Index i = 0; i < a.rows; ++i)
                copied[p * a.rows + i] = a.base[i * a.row_step + p * a.column_step];
        together = {copied, a.rows, a.columns, 1, a.rows};
    }
    if constexpr (arrays::is_complex<T>) {
        using P = decltype(T::re);
        const Matrix<P> parts = {&c.base->re, 2 * c.rows, c.columns, 1, 2 * c.column_step};
        multiply_small_together<true>(parts_of(together), parts_of(b), parts);
    } else {
        multiply_small_together<false>(together, b, c);
    }
    return true;
}

// Small complex products, where a's columns lie together: as real products of the interleaved parts
// of a with the real parts of b, and with its imaginary ones.
template <class Level, class Kernel, class T>
void multiply_small_complex(const Matrix<const Complex<T>>& a, const Matrix<const Complex<T>>& b,
                            const Matrix<Complex<T>>& c) {
    constexpr Index tile_rows = Kernel::rows / 2;
    constexpr Index columns = Kernel::Wide::columns;
    alignas(64) T by_real[Kernel::rows * columns];
    alignas(64) T by_imaginary[Kernel::rows * columns];
    const auto fill = [&]<class Shape>(Index i, Index j) {
        const T* const from = &a.base[i].re;
        const Complex<T>* const value = b.base + j * b.column_step;
        const Index row_step = 2 * b.row_step;
        const Index column_step = 2 * b.column_step;
        Level::template run<Shape>(a.columns, from, 2 * a.column_step, &value->re, row_step,
                                   column_step, by_real + 0, Index{Kernel::rows}, false);
        Level::template run<Shape>(a.columns, from, 2 * a.column_step, &value->im, row_step,
                                   column_step, by_imaginary + 0, Index{Kernel::rows}, false);
        for (Index y = 0; y < Shape::columns; ++y) {
            const T* const re = by_real + y * Kernel::rows;
            const T* const im = by_imaginary + y * Kernel::rows;
            Complex<T>* to = c.base + i * c.row_step + (j + y) * c.column_step;
            for (Index x = 0; x < tile_rows; ++x) {
                *to = {re[2 * x] - im[2 * x + 1], re[2 * x + 1] + im[2 * x]};
                to += c.row_step;
            }
        }
    };
    for (Index row = 0; row < c.rows; row += tile_rows) {
        const Index i = std::min(row, c.rows - tile_rows);
        if (c.columns < columns) {
            for (Index j = 0; j < c.columns; ++j)
                fill.template operator()<typename Kernel::Narrow>(i, j);
            continue;
        }
        for (Index j = 0; j < c.columns; j += columns)
            fill.template operator()<typename Kernel::Wide>(i, std::min(j, c.columns - columns));
    }
}

}  // namespace tarn::matmul
