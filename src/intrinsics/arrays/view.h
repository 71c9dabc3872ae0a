// An array as every routine of this folder sees it, whoever described it: the address of the first
// element and, for each dimension, its extent and the bytes from one element to the next.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::arrays {

using Index = std::ptrdiff_t;

inline constexpr int max_rank = 15;

struct Dimension {
    Index extent;
    Index stride;  // bytes; negative, zero and overlapping strides are fine

    Dimension() = default;
    Dimension(Index n, Index step) : extent(n), stride(step) {}
    // Word by word, as it was made: a copy by one wide move would wait for both words.
    Dimension(const Dimension& other) : extent(other.extent), stride(other.stride) {}
    Dimension& operator=(const Dimension& other) {
        extent = other.extent;
        stride = other.stride;
        return *this;
    }
};

struct View {
    std::byte* base = nullptr;
    Index element = 0;  // bytes of an element
    int rank = 0;
    Dimension dims[max_rank];

    View() = default;
    // Most arrays have few dimensions: the others aren't copied.
    View(const View& other) : base(other.base), element(other.element), rank(other.rank) {
        for (int d = 0; d < rank; ++d) dims[d] = other.dims[d];
    }
    View& operator=(const View& other) {
        base = other.base;
        element = other.element;
        rank = other.rank;
        for (int d = 0; d < rank; ++d) dims[d] = other.dims[d];
        return *this;
    }

    Index count() const {
        Index product = 1;
        for (int d = 0; d < rank; ++d) product *= dims[d].extent;
        return product;
    }
};

// Gives `view` the strides of elements that stand one behind the other, first dimension fastest.
inline void make_contiguous(View& view) {
    Index step = view.element;
    for (int d = 0; d < view.rank; ++d) {
        view.dims[d].stride = step;
        step *= view.dims[d].extent;
    }
}

inline bool is_contiguous(const View& view) {
    Index step = view.element;
    for (int d = 0; d < view.rank; ++d) {
        if (view.dims[d].extent != 1 && view.dims[d].stride != step) return false;
        step *= view.dims[d].extent;
    }
    return true;
}

// The same elements from the last to the first.
inline View reversed(View view) {
    for (int d = 0; d < view.rank; ++d) {
        Dimension& dim = view.dims[d];
        if (dim.extent > 0) view.base += (dim.extent - 1) * dim.stride;
        dim.stride = -dim.stride;
    }
    return view;
}

// `view` without dimension `dim`.
inline View without(const View& view, int dim) {
    View rest;
    rest.base = view.base;
    rest.element = view.element;
    for (int d = 0; d < view.rank; ++d)
        if (d != dim) rest.dims[rest.rank++] = view.dims[d];
    return rest;
}

// What makes an element of a mask true.
enum class Truth : std::uint8_t {
    low_byte,     // its lowest byte isn't zero
    byte_is_one,  // its lowest byte is exactly 1
    whole,        // it isn't zero
};

struct Mask {
    View view;
    Truth truth = Truth::low_byte;
};

inline Mask reversed(Mask mask) {
    mask.view = reversed(mask.view);
    return mask;
}

// Stores an integer of 1, 2, 4, 8 or 16 bytes.
inline void store_integer(std::byte* to, Index size, std::int64_t value) {
    switch (size) {
        case 1:
            *reinterpret_cast<std::int8_t*>(to) = static_cast<std::int8_t>(value);
            return;
        case 2:
            *reinterpret_cast<std::int16_t*>(to) = static_cast<std::int16_t>(value);
            return;
        case 4:
            *reinterpret_cast<std::int32_t*>(to) = static_cast<std::int32_t>(value);
            return;
        case 16:
            *reinterpret_cast<__int128*>(to) = value;
            return;
        default:
            *reinterpret_cast<std::int64_t*>(to) = value;
            return;
    }
}

}  // namespace tarn::arrays
