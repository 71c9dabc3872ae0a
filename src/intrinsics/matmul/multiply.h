// Products of matrices whose elements lie at any stride.
#pragma once

#include "intrinsics/arrays/elements.h"
#include "intrinsics/arrays/view.h"

namespace tarn::matmul {

using arrays::Complex;
using arrays::Index;

// Element (row, column) stands at base + row * row_step + column * column_step; steps in elements,
// of either sign.
template <class T>
struct Matrix {
    T* base;
    Index rows;
    Index columns;
    Index row_step;
    Index column_step;

    Matrix transposed() const { return {base, columns, rows, column_step, row_step}; }
};

// c := a b. The order of additions is the library's own, so that REAL results differ in the last
// bits from those of plain loops; integers wrap. Any type of elements.h.
template <class T>
void multiply(const Matrix<const T>& a, const Matrix<const T>& b, const Matrix<T>& c);

// The same for LOGICALs of any size: an element of c is true when some pair of elements is. `size`
// is the bytes of c's elements; steps are in bytes here.
struct LogicalMatrix {
    std::byte* base;
    Index element;
    Index rows;
    Index columns;
    Index row_step;
    Index column_step;
};
void multiply_logical(const LogicalMatrix& a, const LogicalMatrix& b, const LogicalMatrix& c);

}  // namespace tarn::matmul
