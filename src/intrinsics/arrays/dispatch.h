// Loops compiled for several levels of the processor.
#pragma once

#include "platform/kernel/cpu.h"

namespace tarn::arrays {

// Runs Kernel::run(arguments) compiled for the best instructions there are. The body is written
// once, for any processor, and must be always_inline. No fused multiply-add: what these kernels
// compute is the same everywhere. A kernel whose elements no vector holds says !has_vectors.
template <class Kernel, class... Arguments>
[[gnu::target("avx2"), gnu::noinline]] auto run_with_avx2(Arguments... arguments) {
    return Kernel::run(arguments...);
}
template <class Kernel, class... Arguments>
[[gnu::noinline]] auto run_with_sse2(Arguments... arguments) {
    return Kernel::run(arguments...);
}
template <class Kernel, class... Arguments>
auto dispatch(Arguments... arguments) {
    if constexpr (!Kernel::has_vectors) return Kernel::run(arguments...);
    return platform::vector_level() >= platform::VectorLevel::avx2
               ? run_with_avx2<Kernel>(arguments...)
               : run_with_sse2<Kernel>(arguments...);
}

}  // namespace tarn::arrays
