// gfortran's MATMUL. Its last three arguments are for a BLAS to be called instead; ours is as fast.
#include <type_traits>

#include "frame/link_name.h"
#include "intrinsics/matmul/multiply.h"
#include "pairing/gcc/array_descriptor.h"
#include "pairing/gcc/array_types.h"

namespace tarn::gcc {
namespace {

using matmul::LogicalMatrix;
using matmul::Matrix;

// A factor or the result as a matrix, steps in elements. Small products are common, so that nothing
// bigger is made of a descriptor on the way.
struct Plane {
    char* base;
    Index rows;
    Index columns;
    Index row_step;
    Index column_step;
};

// A vector is a row or a column of a matrix.
Plane plane_of(const ArrayDescriptor& array, bool vector_is_row) {
    const Dimension& first = array.dimension[0];
    if (array.rank == 1) {
        if (vector_is_row) return {array.base, 1, first.extent(), 1, first.stride};
        return {array.base, first.extent(), 1, first.stride, 1};
    }
    const Dimension& second = array.dimension[1];
    return {array.base, first.extent(), second.extent(), first.stride, second.stride};
}

struct Product {
    Plane a;
    Plane b;
    Plane c;
};

Product product_of(ArrayDescriptor& to, const ArrayDescriptor& left, const ArrayDescriptor& right,
                   Index element) {
    constexpr int shapes_differ = 417;
    Product product;
    product.a = plane_of(left, true);
    product.b = plane_of(right, false);
    if (product.a.columns != product.b.rows)
        array_failure(shapes_differ, "The factors of MATMUL have %td columns and %td rows",
                      product.a.columns, product.b.rows);
    Index extents[2];
    int rank = 0;
    if (left.rank == 2) extents[rank++] = product.a.rows;
    if (right.rank == 2) extents[rank++] = product.b.columns;
    if (to.base == nullptr) {
        allocate_result(to, rank, extents, element, "MATMUL");
    } else if (checks_bounds()) {
        View shape;
        shape.rank = rank;
        for (int d = 0; d < rank; ++d) shape.dims[d].extent = extents[d];
        check_shape(view_of(to, element), shape, "result", "MATMUL");
    }
    product.c = plane_of(to, left.rank == 1);
    return product;
}

template <class T>
Matrix<T> matrix_of(const Plane& plane) {
    return {reinterpret_cast<T*>(plane.base), plane.rows, plane.columns, plane.row_step,
            plane.column_step};
}

template <class Type>
void multiply_entry(ArrayDescriptor& to, const ArrayDescriptor& left,
                    const ArrayDescriptor& right) {
    using T = arrays::Wrapping<Type>;
    const Product product = product_of(to, left, right, sizeof(T));
    matmul::multiply<T>(matrix_of<const T>(product.a), matrix_of<const T>(product.b),
                        matrix_of<T>(product.c));
}

LogicalMatrix logical_of(const Plane& plane, Index element) {
    return {reinterpret_cast<std::byte*>(plane.base),
            element,
            plane.rows,
            plane.columns,
            plane.row_step * element,
            plane.column_step * element};
}

void multiply_logical_entry(ArrayDescriptor& to, const ArrayDescriptor& left,
                            const ArrayDescriptor& right, Index size) {
    const Product product = product_of(to, left, right, size);
    multiply_logical(logical_of(product.a, static_cast<Index>(left.element_length)),
                     logical_of(product.b, static_cast<Index>(right.element_length)),
                     logical_of(product.c, size));
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

#define TARN_MATMUL(type, T)                                                                   \
    TARN_EXPORT void _gfortran_matmul_##type(ArrayDescriptor* to, const ArrayDescriptor* left, \
                                             const ArrayDescriptor* right, int, int, void*) {  \
        multiply_entry<T>(*to, *left, *right);                                                 \
    }
TARN_GNU_NUMBERS(TARN_MATMUL)

#define TARN_LOGICAL_MATMUL(size)                                                               \
    TARN_EXPORT void _gfortran_matmul_l##size(ArrayDescriptor* to, const ArrayDescriptor* left, \
                                              const ArrayDescriptor* right) {                   \
        multiply_logical_entry(*to, *left, *right, size);                                       \
    }
TARN_LOGICAL_MATMUL(4)
TARN_LOGICAL_MATMUL(8)
TARN_LOGICAL_MATMUL(16)
}
// NOLINTEND(bugprone-macro-parentheses)
