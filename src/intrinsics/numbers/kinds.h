// The kinds that SELECTED_INT_KIND and SELECTED_REAL_KIND give: small numbers from 1, or sizes in
// bytes. Negative: there is none.
#pragma once

#include <cstdint>

namespace tarn::intrinsics::numbers {

// 1, 2 and 3 for INTEGER*1, *2 and *4; INTEGER*8 isn't known to the oldest form.
inline std::int32_t selected_int_kind(std::int32_t range) {
    if (range < 3) return 1;
    if (range < 5) return 2;
    return range < 10 ? 3 : -1;
}
inline std::int32_t selected_int_kind_wide(std::int32_t range) {
    return range >= 10 && range <= 18 ? 4 : selected_int_kind(range);
}
inline std::int32_t selected_int_size(std::int32_t range) {
    const std::int32_t kind = selected_int_kind_wide(range);
    return kind < 0 ? kind : 1 << (kind - 1);
}

// `extended` is what REAL*10 is called.
inline std::int32_t selected_real_kind(std::int32_t precision, std::int32_t range,
                                       std::int32_t extended = 3) {
    constexpr std::int32_t none = 0;
    const auto kind = [&](std::int32_t value, std::int32_t single, std::int32_t longer,
                          std::int32_t longest) {
        if (value < single) return 1;
        if (value < longer) return 2;
        return value < longest ? extended : none;
    };
    const std::int32_t by_precision = kind(precision, 7, 16, 19);
    const std::int32_t by_range = kind(range, 38, 308, 4932);
    if (by_precision == none) return by_range == none ? -3 : -1;
    if (by_range == none) return -2;
    return by_precision > by_range ? by_precision : by_range;
}
inline std::int32_t selected_real_size(std::int32_t precision, std::int32_t range) {
    constexpr std::int32_t sizes[] = {4, 8, 10};
    const std::int32_t kind = selected_real_kind(precision, range);
    return kind < 0 ? kind : sizes[kind - 1];
}

}  // namespace tarn::intrinsics::numbers
