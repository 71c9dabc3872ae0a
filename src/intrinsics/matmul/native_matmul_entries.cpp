// MATMUL as compiled code calls it: contiguous matrices, and for each element of the result one dot
// product in 80 bits that is rounded once. How the additions are grouped depends on the processor,
// as it always has: in fours on the fifth family, in twos on others.
#include <atomic>
#include <cpuid.h>

#include "frame/link_name.h"
#include "intrinsics/arrays/elements.h"
#include "intrinsics/arrays/native_call.h"

namespace tarn::matmul {
namespace {

using arrays::Complex;
using arrays::Index;
using arrays::Real10;
using arrays::Word;

template <class T>
using DotProduct = Real10 (*)(const T* a, Index a_step, const T* b, Index n);

// `ways` sums side by side, which come together at the end.
template <class T, int ways>
Real10 dot_product(const T* a, Index a_step, const T* b, Index n) {
    Real10 sum[ways] = {};
    Index p = 0;
    for (; p + ways <= n; p += ways)
        for (int w = 0; w < ways; ++w)
            sum[w] += static_cast<Real10>(a[(p + w) * a_step]) * static_cast<Real10>(b[p + w]);
    for (; p < n; ++p) sum[0] += static_cast<Real10>(a[p * a_step]) * static_cast<Real10>(b[p]);
    Real10 total = sum[0];
    for (int w = 1; w < ways; ++w) total += sum[w];
    return total;
}

int processor_family() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0) return 0;
    return static_cast<int>(a >> 8 & 0xF);
}

// The form that suits the processor, chosen once.
template <class T>
DotProduct<T> chosen_dot_product() {
    static constinit std::atomic<DotProduct<T>> chosen{nullptr};
    DotProduct<T> routine = chosen.load(std::memory_order_relaxed);
    if (routine == nullptr) {
        routine = processor_family() == 5 ? dot_product<T, 4> : dot_product<T, 2>;
        chosen.store(routine, std::memory_order_relaxed);
    }
    return routine;
}

// Extents as compiled code gives them, one less than they are.
struct Shape {
    Index rows;
    Index inner;
    Index columns;

    Shape(Word a_rows, Word a_columns, Word b_rows, Word b_columns)
        : rows(a_rows + 1), inner(a_columns + 1), columns(b_columns + 1) {
        constexpr int shapes_differ = 417;
        if (a_columns != b_rows) arrays::native_fail(shapes_differ);
    }
};

template <class T>
void multiply_native(const T* a, const T* b, Shape shape, T* result) {
    const DotProduct<T> dot = chosen_dot_product<T>();
    for (Index j = 0; j < shape.columns; ++j)
        for (Index i = 0; i < shape.rows; ++i)
            *result++ = static_cast<T>(dot(a + i, shape.rows, b + j * shape.inner, shape.inner));
}

template <class T>
void multiply_native(const Complex<T>* a, const Complex<T>* b, Shape shape, Complex<T>* result) {
    for (Index j = 0; j < shape.columns; ++j) {
        for (Index i = 0; i < shape.rows; ++i) {
            Real10 re = 0;
            Real10 im = 0;
            for (Index p = 0; p < shape.inner; ++p) {
                const Complex<T> x = a[i + p * shape.rows];
                const Complex<T> y = b[p + j * shape.inner];
                re += static_cast<Real10>(x.re) * y.re - static_cast<Real10>(x.im) * y.im;
                im += static_cast<Real10>(x.im) * y.re + static_cast<Real10>(x.re) * y.im;
            }
            *result++ = {static_cast<T>(re), static_cast<T>(im)};
        }
    }
}

}  // namespace
}  // namespace tarn::matmul

using tarn::arrays::Complex;
using tarn::arrays::Real10;
using tarn::arrays::Word;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

#define TARN_MATMUL(type, T)                                                                 \
    TARN_EXPORT void MATMUL##type##_h(const T* a, const T* b, Word a_rows, Word a_columns,   \
                                      Word b_rows, Word b_columns, T* result)                \
        LINK_NAME("MATMUL" #type "#");                                                       \
    void MATMUL##type##_h(const T* a, const T* b, Word a_rows, Word a_columns, Word b_rows,  \
                          Word b_columns, T* result) {                                       \
        tarn::matmul::multiply_native(a, b, {a_rows, a_columns, b_rows, b_columns}, result); \
    }
TARN_MATMUL(R4, float)
TARN_MATMUL(R8, double)
TARN_MATMUL(RX, Real10)
TARN_MATMUL(C8, Complex<float>)
TARN_MATMUL(CD, Complex<double>)
TARN_MATMUL(CX, Complex<Real10>)
#undef TARN_MATMUL
}
// NOLINTEND(bugprone-macro-parentheses)
