// How many processors the library's own threads may use.
#pragma once

#include <cstdint>

namespace tarn::frame {

// What SET_MAX_CORES# was told; 0 if it wasn't called.
std::int32_t max_cores();
// A count from 1 to the number of processors; any other means all of them. The count that it is
// now.
std::int32_t set_max_cores(std::int32_t count);

}  // namespace tarn::frame
