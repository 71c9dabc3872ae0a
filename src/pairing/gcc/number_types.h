// The number types by the names that gfortran's entries have them in their own.
#pragma once

#include <cstdint>

namespace tarn::gcc {

using i4 = std::int32_t;
using i8 = std::int64_t;
using i16 = __int128;
using r4 = float;
using r8 = double;
using r10 = long double;
using r16 = __float128;
// The compiler's own complex types are returned as compiled code expects them.
using c4 = __complex__ float;
using c8 = __complex__ double;
using c10 = __complex__ long double;
typedef __complex__ float c16 __attribute__((mode(TC)));  // NOLINT: `using` takes no mode

}  // namespace tarn::gcc
