#include "pairing/gcc/array_descriptor.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "failure/failure.h"

namespace tarn::gcc {

GivenMask::GivenMask(const ArrayDescriptor* mask) {
    if (mask == nullptr) return;
    present_ = true;
    mask_.view = view_of(*mask, static_cast<Index>(mask->element_length));
}

GivenMask::GivenMask(const Logical* scalar, const View& array) {
    static constexpr std::byte hidden{0};
    if (scalar == nullptr || *scalar != 0) return;
    present_ = true;
    mask_.view = array;
    mask_.view.base = const_cast<std::byte*>(&hidden);
    mask_.view.element = 1;
    for (int d = 0; d < array.rank; ++d) mask_.view.dims[d].stride = 0;
}

int dim_of(Index dim, int rank, const char* intrinsic) {
    if (dim < 1 || dim > rank)
        array_failure(wrong_dim, "DIM of %s is %td; it should be between 1 and %d", intrinsic, dim,
                      rank);
    return static_cast<int>(dim) - 1;
}

View checked_result_for(ArrayDescriptor& result, const View& shape, Index element,
                        const char* intrinsic) {
    if (result.rank != shape.rank)
        array_failure(wrong_rank, "The result of %s has rank %d; it should be %d", intrinsic,
                      result.rank, shape.rank);
    const View given = view_of(result, element);
    check_shape(given, shape, "result", intrinsic);
    return given;
}

View make_result(ArrayDescriptor& result, const View& shape, Index element, const char* intrinsic) {
    View made;
    made.element = element;
    made.rank = shape.rank;
    Index elements = 1;
    bool fits = true;
    for (int d = 0; d < shape.rank; ++d) {
        const Index extent = shape.dims[d].extent;
        result.dimension[d] = {elements, 0, extent - 1};
        made.dims[d] = {extent, elements * element};
        fits &= !__builtin_mul_overflow(elements, extent, &elements);
    }
    result.rank = static_cast<std::int8_t>(shape.rank);
    result.offset = 0;
    Index bytes = 0;
    fits &= !__builtin_mul_overflow(elements, element, &bytes);
    constexpr int out_of_storage = 408;
    // Empty results are allocated too.
    void* const storage =
        fits ? std::malloc(bytes > 0 ? static_cast<std::size_t>(bytes) : 1) : nullptr;
    if (storage == nullptr)
        array_failure(out_of_storage, "There is no storage for the result of %s", intrinsic);
    result.base = static_cast<char*>(storage);
    made.base = static_cast<std::byte*>(storage);
    return made;
}

void allocate_result(ArrayDescriptor& result, int rank, const Index* extents, Index element,
                     const char* intrinsic) {
    View shape;
    shape.rank = rank;
    for (int d = 0; d < rank; ++d) shape.dims[d].extent = extents[d];
    make_result(result, shape, element, intrinsic);
}

View reduced_result_for(ArrayDescriptor& result, const View& array, int dim, Index element,
                        const char* intrinsic) {
    if (result.base != nullptr && result.rank == array.rank - 1 && !checks_bounds())
        return view_of(result, element);
    View shape = without(array, dim);
    if (result.base == nullptr && shape.count() == 0) shape.dims[0].extent = 0;
    return result_for(result, shape, element, intrinsic);
}

void check_shape(const View& argument, const View& shape, const char* what, const char* intrinsic) {
    if (checks_bounds()) require_shape(argument, shape, what, intrinsic);
}

void require_shape(const View& argument, const View& shape, const char* what,
                   const char* intrinsic) {
    // Arrays without elements conform in what matters, whatever their other extents.
    if (argument.rank == shape.rank && argument.count() == 0 && shape.count() == 0) return;
    if (argument.rank != shape.rank)
        array_failure(wrong_rank, "The %s of %s has rank %d; it should be %d", what, intrinsic,
                      argument.rank, shape.rank);
    for (int d = 0; d < shape.rank; ++d) {
        if (argument.dims[d].extent == shape.dims[d].extent) continue;
        array_failure(wrong_shape, "The %s of %s has extent %td in dimension %d; it should be %td",
                      what, intrinsic, argument.dims[d].extent, d + 1, shape.dims[d].extent);
    }
}

void array_failure(int number, const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    failure::fail(number, std::string("    ") + text + "\n");
}

}  // namespace tarn::gcc
