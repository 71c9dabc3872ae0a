// Files that the library brings along: they stand in the folder `tarnlibc` beside it.
#pragma once

#include <string>

namespace tarn::platform {

// The path of a file there, "fonts/LiberationSans-Regular.ttf" say: in the folder that
// TARN_RESOURCES names when it is set, else beside the library (or program) that holds this code,
// else one folder above that. Whether the file exists only opening it tells.
std::string resource_path(const char* name);

}  // namespace tarn::platform
