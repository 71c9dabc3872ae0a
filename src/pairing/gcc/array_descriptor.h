// gfortran's array descriptors as the array routines see them, and the results that they ask for.
#pragma once

#include "fio/gnu/options.h"
#include "intrinsics/arrays/view.h"
#include "pairing/gcc/data_block.h"

namespace tarn::gcc {

using arrays::Index;
using arrays::Mask;
using arrays::View;

// LOGICAL*4 by value or by reference.
using Logical = std::int32_t;

inline View view_of(const ArrayDescriptor& array, Index element) {
    View view;
    view.base = reinterpret_cast<std::byte*>(array.base);
    view.element = element;
    view.rank = static_cast<unsigned char>(array.rank);
    for (int d = 0; d < view.rank; ++d)
        view.dims[d] = {array.dimension[d].extent(), array.dimension[d].stride * element};
    return view;
}

// An optional mask, of any logical kind. A scalar one that is false hides every element.
class GivenMask {
  public:
    GivenMask() = default;
    explicit GivenMask(const ArrayDescriptor* mask);
    GivenMask(const Logical* scalar, const View& array);
    const Mask* get() const { return present_ ? &mask_ : nullptr; }

  private:
    Mask mask_;
    bool present_ = false;
};

// DIM from 0; fails where there is no such dimension.
int dim_of(Index dim, int rank, const char* intrinsic);

// The storage of a result with the extents of `shape`. A descriptor without storage gets it from
// malloc, as compiled code frees it; one with storage is compared when the program asked for
// checks.
View checked_result_for(ArrayDescriptor& result, const View& shape, Index element,
                        const char* intrinsic);
// Storage for a result that has none; extents from 0 up.
View make_result(ArrayDescriptor& result, const View& shape, Index element, const char* intrinsic);
void allocate_result(ArrayDescriptor& result, int rank, const Index* extents, Index element,
                     const char* intrinsic);

inline bool checks_bounds() {
    return fio::gnu_options().bounds_check;
}

inline View result_for(ArrayDescriptor& result, const View& shape, Index element,
                       const char* intrinsic) {
    if (result.base == nullptr) return make_result(result, shape, element, intrinsic);
    if (result.rank == shape.rank && !checks_bounds()) return view_of(result, element);
    return checked_result_for(result, shape, element, intrinsic);
}

// `result_for` a reduction of `array` along `dim`. Its result has an oddity when it is empty: the
// first extent of storage that is made is 0 then, whatever it should be.
View reduced_result_for(ArrayDescriptor& result, const View& array, int dim, Index element,
                        const char* intrinsic);

// Fails where an argument's extents aren't those of `shape`, when the program asked for checks.
void check_shape(const View& argument, const View& shape, const char* what, const char* intrinsic);
// The same whether it asked or not.
void require_shape(const View& argument, const View& shape, const char* what,
                   const char* intrinsic);

// Failures: the catalogue's sentence, then what was found.
[[noreturn, gnu::format(printf, 2, 3)]] void array_failure(int number, const char* format, ...);

inline constexpr int wrong_rank = 174;
inline constexpr int wrong_dim = 388;
inline constexpr int wrong_shape = 389;

}  // namespace tarn::gcc
