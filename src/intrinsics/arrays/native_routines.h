// What the native routines share with their entries.
#pragma once

#include "intrinsics/arrays/native_call.h"

namespace tarn::arrays {

// The subscripts of the element at `place` (from 0, in array element order) into a vector of as
// many integers; zeros for -1.
void store_position(const View& array, Index place, const View& result);

// The extent of the last PACK result.
struct NativeState {
    Word packed_size = 0;
};
NativeState& native_state();

}  // namespace tarn::arrays
