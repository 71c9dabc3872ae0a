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

// The two factors as matrices: a vector on the left is a row, one on the right a column.
struct Factors {
    View a;
    View b;
    View shape;  // of the result
    bool a_is_row;
    bool b_is_column;
};

void insert_dimension(View& view, int at) {
    if (at == 0) view.dims[1] = view.dims[0];
    view.dims[at] = {1, view.element};
    view.rank = 2;
}

Factors factors_of(const ArrayDescriptor& left, const ArrayDescriptor& right, Index a_element,
                   Index b_element) {
    constexpr int shapes_differ = 417;
    Factors found{
        view_of(left, a_element), view_of(right, b_element), {}, left.rank == 1, right.rank == 1};
    if (found.a_is_row) insert_dimension(found.a, 0);
    if (found.b_is_column) insert_dimension(found.b, 1);
    if (found.a.dims[1].extent != found.b.dims[0].extent)
        array_failure(shapes_differ, "The factors of MATMUL have %td columns and %td rows",
                      found.a.dims[1].extent, found.b.dims[0].extent);
    if (!found.a_is_row) found.shape.dims[found.shape.rank++] = found.a.dims[0];
    if (!found.b_is_column) found.shape.dims[found.shape.rank++] = found.b.dims[1];
    return found;
}

// The result as a matrix.
View result_of(ArrayDescriptor& to, const Factors& factors, Index element) {
    View result = result_for(to, factors.shape, element, "MATMUL");
    if (factors.a_is_row) {
        insert_dimension(result, 0);
    } else if (factors.b_is_column) {
        insert_dimension(result, 1);
    }
    return result;
}

template <class T>
Matrix<T> matrix_of(const View& view) {
    constexpr auto size = static_cast<Index>(sizeof(T));
    return {reinterpret_cast<T*>(view.base), view.dims[0].extent, view.dims[1].extent,
            view.dims[0].stride / size, view.dims[1].stride / size};
}

template <class Type>
void multiply_entry(ArrayDescriptor& to, const ArrayDescriptor& left,
                    const ArrayDescriptor& right) {
    using T = arrays::Wrapping<Type>;
    const Factors factors = factors_of(left, right, sizeof(T), sizeof(T));
    const View result = result_of(to, factors, sizeof(T));
    matmul::multiply<T>(matrix_of<const T>(factors.a), matrix_of<const T>(factors.b),
                        matrix_of<T>(result));
}

LogicalMatrix logical_of(const View& view) {
    return {view.base,           view.element,        view.dims[0].extent,
            view.dims[1].extent, view.dims[0].stride, view.dims[1].stride};
}

void multiply_logical_entry(ArrayDescriptor& to, const ArrayDescriptor& left,
                            const ArrayDescriptor& right, Index size) {
    const Factors factors = factors_of(left, right, static_cast<Index>(left.element_length),
                                       static_cast<Index>(right.element_length));
    const View result = result_of(to, factors, size);
    multiply_logical(logical_of(factors.a), logical_of(factors.b), logical_of(result));
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

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
