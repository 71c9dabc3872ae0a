// Products in blocks.
//
// A block of a (some rows, a part of the inner dimension) is copied into panels as high as a tile,
// and stays in the second-level cache; so is a wide block of b, in panels as wide as a tile, for
// the third. Strides matter to the copies only. Small products are not worth the copies: their
// tiles read a and b where they are.
#include "intrinsics/matmul/multiply.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "frame/cores.h"
#include "intrinsics/arrays/dispatch.h"
#include "intrinsics/arrays/runs.h"
#include "intrinsics/matmul/tiles.h"
#include "platform/kernel/workers.h"

namespace tarn::matmul {
namespace {

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

// The columns of `from`, `height` rows of each together; rows that are missing are zeros.
template <class W, class T>
void pack_panels(W* to, const Matrix<const T>& from, Index height) {
    for (Index first = 0; first < from.rows; first += height) {
        const Index rows = std::min(height, from.rows - first);
        const T* const base = from.base + first * from.row_step;
        if (rows < height)
            std::memset(to, 0, sizeof(W) * static_cast<std::size_t>(height * from.columns));
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
        if (rows < height)
            std::memset(to, 0, sizeof(T) * static_cast<std::size_t>(2 * height * from.columns));
        for (Index p = 0; p < from.columns; ++p) {
            T* const column = to + 2 * p * height;
            for (Index i = 0; i < rows; ++i) {
                const Complex<T> value = base[i * from.row_step + p * from.column_step];
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
constexpr Index inner_block = 256;
constexpr Index row_block_bytes = 384 * 1024;
constexpr Index column_block = 3072;

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

// ---- Small products: no copies but of rows that fill no tile ----

constexpr Index small_inner = 64;

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
constexpr double worth_sharing = 1e7;

int threads_for(Index rows, Index inner, Index columns) {
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

constexpr Index small_size = 32 * 32 * 32;

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

}  // namespace

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
TARN_MULTIPLY(std::uint8_t)
TARN_MULTIPLY(std::uint16_t)
TARN_MULTIPLY(std::uint32_t)
TARN_MULTIPLY(std::uint64_t)
TARN_MULTIPLY(unsigned __int128)
TARN_MULTIPLY(float)
TARN_MULTIPLY(double)
TARN_MULTIPLY(arrays::Real10)
TARN_MULTIPLY(arrays::Real16)
TARN_MULTIPLY(Complex<float>)
TARN_MULTIPLY(Complex<double>)
TARN_MULTIPLY(Complex<arrays::Real10>)
TARN_MULTIPLY(Complex<arrays::Real16>)

}  // namespace tarn::matmul
