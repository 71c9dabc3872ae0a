// The library's threads as gfortran calls them: `name@` arrives as `name__`.
#include <cstdint>

#include "frame/link_name.h"
#include "tarn/threads.h"

extern "C" {
TARN_EXPORT std::int32_t set_max_cores__(const std::int32_t* count) {
    return SET_MAX_CORES_h(count);
}
}
