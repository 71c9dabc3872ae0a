#include "intrinsics/arrays/native_call.h"

#include "frame/link_name.h"

extern "C" [[noreturn]] void FAIL_h(const std::int16_t* number) LINK_NAME("FAIL#");

namespace tarn::arrays {

void native_fail(int number) {
    const auto given = static_cast<std::int16_t>(number);
    FAIL_h(&given);
}

View native_view(const void* base, Index element, Index rank, const std::int32_t* extents) {
    if (rank < 0 || rank > max_native_rank) native_fail(fail_rank);
    View view;
    view.base = static_cast<std::byte*>(const_cast<void*>(base));
    view.element = element;
    view.rank = static_cast<int>(rank);
    for (int d = 0; d < view.rank; ++d) view.dims[d].extent = extents[d] > 0 ? extents[d] : 0;
    make_contiguous(view);
    return view;
}

Index bytes_of(const View& shape, Index element) {
    constexpr int bad_request = 416;
    Index bytes = element;
    for (int d = 0; d < shape.rank; ++d)
        if (__builtin_mul_overflow(bytes, shape.dims[d].extent, &bytes)) native_fail(bad_request);
    if (bytes >> 47 != 0) native_fail(bad_request);
    return bytes;
}

bool same_extents(const View& a, const View& b) {
    if (a.rank != b.rank) return false;
    for (int d = 0; d < a.rank; ++d)
        if (a.dims[d].extent != b.dims[d].extent) return false;
    return true;
}

void check_base(const ResultDescriptor& result) {
    constexpr int undefined_pointer = 390;
    constexpr int disassociated_pointer = 391;
    constexpr int corrupt_pointer = 392;
    if (result.base >= 0) return;
    if (result.base == undefined_base) native_fail(undefined_pointer);
    if (result.base == disassociated_base) native_fail(disassociated_pointer);
    native_fail(corrupt_pointer);
}

std::byte* make_storage(NativeCall& call, Index bytes) {
    call.wanted = bytes;
    return call.storage;
}

bool open_result(NativeCall& call, ResultDescriptor& result, const View& shape, Index element,
                 View& opened) {
    check_base(result);
    opened = shape;
    opened.element = element;
    make_contiguous(opened);
    if (result.base == 0) {
        std::byte* const storage = make_storage(call, bytes_of(shape, element));
        if (storage == nullptr) return false;
        for (int d = 0; d < shape.rank; ++d) result.extent[d] = shape.dims[d].extent;
        result.base = reinterpret_cast<Word>(storage);
    } else {
        for (int d = 0; d < shape.rank; ++d)
            if (result.extent[d] != shape.dims[d].extent) native_fail(fail_shape);
    }
    opened.base = reinterpret_cast<std::byte*>(result.base);
    return true;
}

}  // namespace tarn::arrays
