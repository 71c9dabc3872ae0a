// Products in blocks.
//
// A block of a (some rows, a part of the inner dimension) is copied into panels as high as a tile,
// and stays in the second-level cache; so is a wide block of b, in panels as wide as a tile, for
// the third. Strides matter to the copies only.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <type_traits>

#include "intrinsics/matmul/multiply.h"

namespace tarn::matmul {

// What an element is while it is multiplied. There are no products of bytes in vectors.
template <class T>
struct WorkingOf {
    using Type = T;
};
template <>
struct WorkingOf<std::uint8_t> {
    using Type = std::uint16_t;
};
template <class T>
using Working = typename WorkingOf<T>::Type;

// Room for copies. The last one given back is kept for the next product, since new pages from the
// system cost as much as a product of middling size.
class Workspace {
  public:
    explicit Workspace(Index bytes) {
        kept_ = waiting().exchange(nullptr, std::memory_order_acquire);
        if (kept_ != nullptr && kept_->bytes >= bytes) return;
        std::free(kept_);
        const auto size = static_cast<std::size_t>(bytes + 2 * line) / line * line;
        kept_ = static_cast<Header*>(std::aligned_alloc(line, size));
        if (kept_ != nullptr) kept_->bytes = bytes;
    }
    ~Workspace() {
        if (kept_ != nullptr && kept_->bytes <= most_kept)
            kept_ = waiting().exchange(kept_, std::memory_order_acq_rel);
        std::free(kept_);
    }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // Null: there is no storage.
    std::byte* bytes() const {
        return kept_ != nullptr ? reinterpret_cast<std::byte*>(kept_) + line : nullptr;
    }

  private:
    static constexpr Index line = 64;
    static constexpr Index most_kept = Index{16} << 20;
    struct Header {
        Index bytes;
    };
    static std::atomic<Header*>& waiting() {
        static constinit std::atomic<Header*> storage{nullptr};
        return storage;
    }
    Header* kept_;
};

template <class T>
void clear(const Matrix<T>& c) {
    for (Index j = 0; j < c.columns; ++j)
        for (Index i = 0; i < c.rows; ++i) c.base[i * c.row_step + j * c.column_step] = T{};
}

// ---- Plain loops, for types that no vector holds and when there is no storage for copies ----

template <class T>
void multiply_plainly(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
    clear(c);
    for (Index j = 0; j < c.columns; ++j) {
        for (Index p = 0; p < a.columns; ++p) {
            const T factor = b.base[p * b.row_step + j * b.column_step];
            const T* const from = a.base + p * a.column_step;
            T* const to = c.base + j * c.column_step;
            for (Index i = 0; i < c.rows; ++i) {
                T& sum = to[i * c.row_step];
                sum = static_cast<T>(sum + from[i * a.row_step] * factor);
            }
        }
    }
}

// ---- Copies into panels ----

// The columns of `from`, `height` rows of each together. Rows that are missing are copies of the
// last: what is computed with them is computed anyhow, so that it raises no floating-point
// exception that the product doesn't. (Zeros would make NaNs of infinities.)
template <class W, class T>
void pack_panels(W* to, const Matrix<const T>& from, Index height) {
    for (Index first = 0; first < from.rows; first += height) {
        const Index rows = std::min(height, from.rows - first);
        const T* const base = from.base + first * from.row_step;
        if (from.row_step == 1) {
            for (Index p = 0; p < from.columns; ++p)
                for (Index i = 0; i < rows; ++i)
                    to[p * height + i] = static_cast<W>(base[p * from.column_step + i]);
        } else {
            for (Index i = 0; i < rows; ++i)
                for (Index p = 0; p < from.columns; ++p)
                    to[p * height + i] =
                        static_cast<W>(base[i * from.row_step + p * from.column_step]);
        }
        for (Index p = 0; rows < height && p < from.columns; ++p)
            std::fill_n(to + p * height + rows, height - rows, to[p * height + rows - 1]);
        to += height * from.columns;
    }
}

// Complex panels: `apart` puts the real parts of a column before its imaginary ones, otherwise the
// two parts of each value stand together.
template <class T>
void pack_complex_panels(T* to, const Matrix<const Complex<T>>& from, Index height, bool apart) {
    for (Index first = 0; first < from.rows; first += height) {
        const Index rows = std::min(height, from.rows - first);
        const Complex<T>* const base = from.base + first * from.row_step;
        for (Index p = 0; p < from.columns; ++p) {
            T* const column = to + 2 * p * height;
            for (Index i = 0; i < height; ++i) {
                const Index row = std::min(i, rows - 1);
                const Complex<T> value = base[row * from.row_step + p * from.column_step];
                column[apart ? i : 2 * i] = value.re;
                column[apart ? height + i : 2 * i + 1] = value.im;
            }
        }
        to += 2 * height * from.columns;
    }
}

template <class T>
Matrix<const T> block_of(const Matrix<const T>& m, Index row, Index rows, Index column,
                         Index columns) {
    return {m.base + row * m.row_step + column * m.column_step, rows, columns, m.row_step,
            m.column_step};
}

// Blocks of a that fill half of a usual second-level cache, and of b that fill a part of the third.
inline constexpr Index inner_block = 256;
inline constexpr Index row_block_bytes = 384 * 1024;
inline constexpr Index column_block = 3072;

constexpr Index round_up(Index n, Index step) {
    return (n + step - 1) / step * step;
}

// Puts a tile of sums where it belongs.
template <class T, class W>
void store_tile(const W* tile, Index tile_step, const Matrix<T>& c, Index row, Index rows,
                Index column, Index columns, bool add) {
    for (Index j = 0; j < columns; ++j) {
        for (Index i = 0; i < rows; ++i) {
            T& to = c.base[(row + i) * c.row_step + (column + j) * c.column_step];
            const W value = tile[j * tile_step + i];
            to = static_cast<T>(add ? static_cast<W>(to + value) : value);
        }
    }
}

template <class Level, class Kernel, class T>
bool multiply_in_blocks(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c) {
    using W = typename Kernel::Element;
    constexpr Index tile_rows = Kernel::rows;
    constexpr Index tile_columns = Kernel::columns;
    constexpr Index row_block =
        row_block_bytes / (inner_block * static_cast<Index>(sizeof(W))) / tile_rows * tile_rows;
    const Index k_block = std::min(inner_block, a.columns);
    const Index m_block = std::min(row_block, round_up(c.rows, tile_rows));
    const Index n_block = std::min(column_block, round_up(c.columns, tile_columns));
    const Workspace workspace((m_block + n_block) * k_block * static_cast<Index>(sizeof(W)));
    if (workspace.bytes() == nullptr) return false;
    W* const a_panels = reinterpret_cast<W*>(workspace.bytes());
    W* const b_panels = a_panels + m_block * k_block;
    alignas(64) W tile[tile_rows * tile_columns];

    for (Index j0 = 0; j0 < c.columns; j0 += n_block) {
        const Index n = std::min(n_block, c.columns - j0);
        for (Index p0 = 0; p0 < a.columns; p0 += k_block) {
            const Index k = std::min(k_block, a.columns - p0);
            const bool add = p0 > 0;
            pack_panels(b_panels, block_of(b, p0, k, j0, n).transposed(), tile_columns);
            for (Index i0 = 0; i0 < c.rows; i0 += m_block) {
                const Index m = std::min(m_block, c.rows - i0);
                pack_panels(a_panels, block_of(a, i0, m, p0, k), tile_rows);
                for (Index j = 0; j < n; j += tile_columns) {
                    const W* const b_panel = b_panels + j * k;
                    const Index columns = std::min(tile_columns, n - j);
                    for (Index i = 0; i < m; i += tile_rows) {
                        const W* const a_panel = a_panels + i * k;
                        const Index rows = std::min(tile_rows, m - i);
                        if constexpr (std::is_same_v<T, W>) {
                            if (rows == tile_rows && columns == tile_columns && c.row_step == 1) {
                                T* const to = c.base + (i0 + i) + (j0 + j) * c.column_step;
                                Level::template run<Kernel>(k, a_panel, tile_rows, b_panel,
                                                            Index{0}, Index{0}, to, c.column_step,
                                                            add);
                                continue;
                            }
                        }
                        Level::template run<Kernel>(k, a_panel, tile_rows, b_panel, Index{0},
                                                    Index{0}, tile + 0, tile_rows, false);
                        store_tile(tile, tile_rows, c, i0 + i, rows, j0 + j, columns, add);
                    }
                }
            }
        }
    }
    return true;
}

// How a complex product is cut up.
template <class Kernel>
struct ComplexBlocks {
    static constexpr Index tile_rows = Kernel::rows;
    static constexpr Index tile_columns = Kernel::columns;
    static constexpr Index bytes = 2 * sizeof(typename Kernel::Element);
    static constexpr Index row_block =
        row_block_bytes / (inner_block * bytes) / tile_rows * tile_rows;
    Index k, m, n;

    ComplexBlocks(Index rows, Index inner, Index columns)
        : k(std::min(inner_block, inner)),
          m(std::min(row_block, round_up(rows, tile_rows))),
          n(std::min(column_block, round_up(columns, tile_columns))) {}
};

template <class Level, class Kernel, class T>
bool multiply_complex_panels(const Matrix<const Complex<T>>& a, const Matrix<const Complex<T>>& b,
                             const Matrix<Complex<T>>& c, T* a_panels, T* b_panels) {
    constexpr Index tile_rows = Kernel::rows;
    constexpr Index tile_columns = Kernel::columns;
    const ComplexBlocks<Kernel> block(c.rows, a.columns, c.columns);
    alignas(64) T tile[2 * tile_rows * tile_columns];

    for (Index j0 = 0; j0 < c.columns; j0 += block.n) {
        const Index n = std::min(block.n, c.columns - j0);
        for (Index p0 = 0; p0 < a.columns; p0 += block.k) {
            const Index k = std::min(block.k, a.columns - p0);
            pack_complex_panels(b_panels, block_of(b, p0, k, j0, n).transposed(), tile_columns,
                                false);
            for (Index i0 = 0; i0 < c.rows; i0 += block.m) {
                const Index m = std::min(block.m, c.rows - i0);
                pack_complex_panels(a_panels, block_of(a, i0, m, p0, k), tile_rows, true);
                for (Index j = 0; j < n; j += tile_columns) {
                    const Index columns = std::min(tile_columns, n - j);
                    for (Index i = 0; i < m; i += tile_rows) {
                        const Index rows = std::min(tile_rows, m - i);
                        Level::template run<Kernel>(k, static_cast<const T*>(a_panels + 2 * i * k),
                                                    static_cast<const T*>(b_panels + 2 * j * k),
                                                    tile + 0);
                        for (Index y = 0; y < columns; ++y) {
                            Complex<T>* to =
                                c.base + (i0 + i) * c.row_step + (j0 + j + y) * c.column_step;
                            const T* const sums = tile + 2 * tile_rows * y;
                            for (Index x = 0; x < rows; ++x) {
                                const Complex<T> sum{sums[x], sums[tile_rows + x]};
                                *to = p0 > 0 ? *to + sum : sum;
                                to += c.row_step;
                            }
                        }
                    }
                }
            }
        }
    }
    return true;
}

template <class Level, class Kernel, class T>
bool multiply_complex_in_blocks(const Matrix<const Complex<T>>& a,
                                const Matrix<const Complex<T>>& b, const Matrix<Complex<T>>& c) {
    const ComplexBlocks<Kernel> block(c.rows, a.columns, c.columns);
    // Small products find room on the stack.
    constexpr Index stack_room = 4096;
    alignas(64) T near[stack_room];
    const Index a_room = 2 * block.m * block.k;
    const Index b_room = 2 * block.n * block.k;
    if (a_room + b_room <= stack_room)
        return multiply_complex_panels<Level, Kernel>(a, b, c, near, near + a_room);
    const Workspace workspace((a_room + b_room) * static_cast<Index>(sizeof(T)));
    auto* const far = reinterpret_cast<T*>(workspace.bytes());
    if (far == nullptr) return false;
    return multiply_complex_panels<Level, Kernel>(a, b, c, far, far + a_room);
}

}  // namespace tarn::matmul
