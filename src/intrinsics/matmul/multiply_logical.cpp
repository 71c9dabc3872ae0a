// Products of LOGICAL matrices: rows and columns as bits, so that a pair of them is compared 64
// elements at a time.
#include <algorithm>
#include <cstdlib>
#include <memory>

#include "intrinsics/arrays/runs.h"
#include "intrinsics/matmul/multiply.h"

namespace tarn::matmul {
namespace {

using arrays::Flag;
using arrays::Truth;

constexpr Index word_bits = 64;

void load_bits(std::uint64_t* bits, const std::byte* from, Index step, Index n, Index element) {
    Flag flags[word_bits];
    for (Index first = 0; first < n; first += word_bits) {
        const Index m = std::min(word_bits, n - first);
        arrays::load_flags(flags, from + first * step, step, m, element, Truth::low_byte);
        std::uint64_t word = 0;
        for (Index i = 0; i < m; ++i) word |= std::uint64_t{flags[i]} << i;
        *bits++ = word;
    }
}

bool meet(const std::uint64_t* a, const std::uint64_t* b, Index words) {
    std::uint64_t both = 0;
    for (Index i = 0; i < words && both == 0; ++i) both = a[i] & b[i];
    return both != 0;
}

// Without storage for bits: element by element.
bool meet_plainly(const LogicalMatrix& a, const LogicalMatrix& b, Index i, Index j) {
    for (Index p = 0; p < a.columns; ++p) {
        const std::byte left = a.base[i * a.row_step + p * a.column_step];
        const std::byte right = b.base[p * b.row_step + j * b.column_step];
        if (left != std::byte{0} && right != std::byte{0}) return true;
    }
    return false;
}

struct Free {
    void operator()(std::uint64_t* storage) const { std::free(storage); }
};

}  // namespace

void multiply_logical(const LogicalMatrix& a, const LogicalMatrix& b, const LogicalMatrix& c) {
    if (c.rows <= 0 || c.columns <= 0) return;
    const Index words = (std::max<Index>(a.columns, 0) + word_bits - 1) / word_bits;
    // Rows of a, and behind them one column of b.
    constexpr Index stack_words = 1024;
    std::uint64_t near[stack_words];
    std::unique_ptr<std::uint64_t, Free> far;
    std::uint64_t* rows = near;
    const Index wanted = (a.rows + 1) * words;
    if (wanted > stack_words) {
        far.reset(static_cast<std::uint64_t*>(
            std::malloc(static_cast<std::size_t>(wanted) * sizeof(std::uint64_t))));
        rows = far.get();
    }
    if (rows != nullptr)
        for (Index i = 0; i < a.rows; ++i)
            load_bits(rows + i * words, a.base + i * a.row_step, a.column_step, a.columns,
                      a.element);
    for (Index j = 0; j < c.columns; ++j) {
        std::uint64_t* const column = rows != nullptr ? rows + a.rows * words : nullptr;
        if (column != nullptr)
            load_bits(column, b.base + j * b.column_step, b.row_step, b.rows, b.element);
        for (Index i = 0; i < c.rows; ++i) {
            const bool value = column != nullptr ? meet(rows + i * words, column, words)
                                                 : meet_plainly(a, b, i, j);
            arrays::store_integer(c.base + i * c.row_step + j * c.column_step, c.element, value);
        }
    }
}

}  // namespace tarn::matmul
