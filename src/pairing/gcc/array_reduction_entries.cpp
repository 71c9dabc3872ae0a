// gfortran's reductions along a dimension, but for characters.
#include "frame/link_name.h"
#include "intrinsics/arrays/extremes.h"
#include "intrinsics/arrays/fold.h"
#include "intrinsics/arrays/logical.h"
#include "pairing/gcc/array_reduction.h"
#include "pairing/gcc/array_types.h"

namespace tarn::gcc {
namespace {

using arrays::Block;
using arrays::Flag;
using arrays::LogicalReduction;
using arrays::Reduction;
using arrays::Rows;
using arrays::Run;

// IALL as gfortran's run-time has it: without an element, or with a scalar mask that is false, it
// is 0 and not all bits.
template <class T>
class GnuIall final : public Reduction {
  public:
    void rows(const Rows& rows) const override {
        if (rows.first.n > 0 && !is_hidden(rows.first)) return all_.rows(rows);
        for_each_row(rows, [](const Run&, std::byte* to) { *reinterpret_cast<T*>(to) = 0; });
    }
    void begin(Block& block, Index n) const override { all_.begin(block, n); }
    void step(Block& block, const std::byte* x, const Flag* flags, Index n,
              Index k) const override {
        all_.step(block, x, flags, n, k);
    }
    void end(Block& block, Index n, Run run, Index step, Index mask_step, std::byte* to,
             Index to_step) const override {
        all_.end(block, n, run, step, mask_step, to, to_step);
        if (run.n > 0 && !is_hidden(run)) return;
        for (Index i = 0; i < n; ++i) *reinterpret_cast<T*>(to + i * to_step) = 0;
    }

  private:
    // The one place a scalar mask stands at.
    static bool is_hidden(const Run& run) { return run.mask != nullptr && run.mask_stride == 0; }

    arrays::Fold<arrays::And, T> all_;
};

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;
using namespace tarn::arrays;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

// Each in three forms: without a mask, with an array and with a scalar for it.
#define TARN_REDUCTION(entry, type, T, name, ...)                                                  \
    TARN_EXPORT void _gfortran_##entry##_##type(ArrayDescriptor* to, const ArrayDescriptor* from,  \
                                                const Index* dim) {                                \
        reduce(__VA_ARGS__(), {*to, *from, nullptr, *dim, sizeof(T), sizeof(T), name});            \
    }                                                                                              \
    TARN_EXPORT void _gfortran_m##entry##_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                                 const Index* dim, const ArrayDescriptor* mask) {  \
        reduce(__VA_ARGS__(), {*to, *from, mask, *dim, sizeof(T), sizeof(T), name});               \
    }                                                                                              \
    TARN_EXPORT void _gfortran_s##entry##_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                                 const Index* dim, const Logical* mask) {          \
        reduce_if(mask, __VA_ARGS__(), {*to, *from, nullptr, *dim, sizeof(T), sizeof(T), name});   \
    }

#define TARN_SUMS(type, T)                            \
    TARN_REDUCTION(sum, type, T, "SUM", Fold<Add, T>) \
    TARN_REDUCTION(product, type, T, "PRODUCT", Fold<Multiply, T>)
TARN_GNU_NUMBERS(TARN_SUMS)

#define TARN_EXTREMES(type, T)                                         \
    TARN_REDUCTION(maxval, type, T, "MAXVAL", Extreme<T, true, false>) \
    TARN_REDUCTION(minval, type, T, "MINVAL", Extreme<T, false, false>)
TARN_GNU_ORDERED(TARN_EXTREMES)

#define TARN_BITS(type, T)                             \
    TARN_REDUCTION(iall, type, T, "IALL", GnuIall<T>)  \
    TARN_REDUCTION(iany, type, T, "IANY", Fold<Or, T>) \
    TARN_REDUCTION(iparity, type, T, "IPARITY", Fold<Xor, T>)
TARN_GNU_INTEGERS(TARN_BITS)

#define TARN_NORM(type, T)                                                                    \
    TARN_EXPORT void _gfortran_norm2_##type(ArrayDescriptor* to, const ArrayDescriptor* from, \
                                            const Index* dim) {                               \
        reduce(Norm<T>(), {*to, *from, nullptr, *dim, sizeof(T), sizeof(T), "NORM2"});        \
    }
TARN_GNU_REALS(TARN_NORM)

#define TARN_LOGICAL(entry, size, what, name)                                                      \
    TARN_EXPORT void _gfortran_##entry(ArrayDescriptor* to, const ArrayDescriptor* from,           \
                                       const Index* dim) {                                         \
        reduce(LogicalRows(LogicalReduction::what, Truth::low_byte, size),                         \
               {*to, *from, nullptr, *dim, static_cast<Index>(from->element_length), size, name}); \
    }
#define TARN_LOGICALS(size)                              \
    TARN_LOGICAL(count_##size##_l, size, count, "COUNT") \
    TARN_LOGICAL(any_l##size, size, any, "ANY")          \
    TARN_LOGICAL(all_l##size, size, all, "ALL")          \
    TARN_LOGICAL(parity_l##size, size, parity, "PARITY")
TARN_LOGICALS(1)
TARN_LOGICALS(2)
TARN_LOGICALS(4)
TARN_LOGICALS(8)
TARN_LOGICALS(16)
}
// NOLINTEND(bugprone-macro-parentheses)
