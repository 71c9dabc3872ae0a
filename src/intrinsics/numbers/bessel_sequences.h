// Bessel functions of consecutive orders, by their recurrence, for gfortran's programs.
#pragma once

#include <cstdint>
#include <type_traits>

#include "intrinsics/numbers/wide_functions.h"

namespace tarn::intrinsics::numbers {

// `store(index, value)` for orders from `first` to `last`. The recurrence runs down, where its
// errors fade, from the highest order that the working type can hold. A value much smaller than its
// neighbour lies beside a zero, and is computed by itself with more bits.
template <class Wide, class Store>
void bessel_j_sequence(std::int32_t first, std::int32_t last, Wide x, Store store) {
    const auto put = [&](std::int64_t order, Wide value) { store(order - first, value); };
    std::int64_t order = last;
    const auto direct = [&](std::int64_t n) { return bessel_j_of(static_cast<int>(n), x); };
    if (x == 0 || first < 0 || !(absolute_value(x) > static_cast<Wide>(1e-300L))) {
        for (; order >= first; --order) put(order, direct(order));
        return;
    }
    Wide above = 0;
    while (order >= first && (above = direct(order)) == 0) put(order--, above);
    if (order < first) return;
    put(order--, above);
    if (order < first) return;
    Wide value = direct(order);
    put(order, value);
    const Wide twice_inverse = 2 / x;
    while (--order >= first) {
        const Wide below = static_cast<Wide>(order + 1) * twice_inverse * value - above;
        above = value;
        value = below;
        const bool beside_zero = absolute_value(value) < absolute_value(above) / 128;
        if (std::is_same_v<Wide, Real10> && beside_zero) {
            put(order,
                static_cast<Wide>(bessel_j_of(static_cast<int>(order), static_cast<Real16>(x))));
        } else {
            put(order, value);
        }
    }
}

// Upwards, where the values grow; once they are infinite they stay so. At 0 all are, which is no
// division by zero for gfortran's programs.
template <class Wide, class Store>
void bessel_y_sequence(std::int32_t first, std::int32_t last, Wide x, Store store) {
    const auto direct = [&](std::int64_t n) { return bessel_y_of(static_cast<int>(n), x); };
    Wide below = 0;
    Wide value = 0;
    const Wide twice_inverse = x == 0 ? x : 2 / x;
    for (std::int64_t order = first; order <= last; ++order) {
        Wide next;
        if (x == 0) {
            next = -std::numeric_limits<Real10>::infinity();
        } else if (order < std::int64_t{first} + 2 || order < 2) {
            next = direct(order);
        } else if (absolute_value(value) > std::numeric_limits<Real10>::max()) {
            next = value;
        } else {
            next = static_cast<Wide>(order - 1) * twice_inverse * value - below;
        }
        below = value;
        value = next;
        const bool beside_zero = absolute_value(value) < absolute_value(below) / 128;
        if (std::is_same_v<Wide, Real10> && beside_zero)
            next = static_cast<Wide>(bessel_y_of(static_cast<int>(order), static_cast<Real16>(x)));
        store(order - first, next);
    }
}

}  // namespace tarn::intrinsics::numbers
