// The sizes that elements mostly have, as constants.
#pragma once

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

// Calls work.operator()<size>() for the sizes that elements mostly have; false for another.
template <class Work>
[[gnu::always_inline]] inline bool with_size(Index element, Work&& work) {
    switch (element) {
        case 1:
            work.template operator()<1>();
            return true;
        case 2:
            work.template operator()<2>();
            return true;
        case 4:
            work.template operator()<4>();
            return true;
        case 8:
            work.template operator()<8>();
            return true;
        case 16:
            work.template operator()<16>();
            return true;
        default:
            return false;
    }
}

}  // namespace tarn::arrays
