// Names of files.
#pragma once

#include <string>
#include <string_view>

namespace tarn::fio {

// The name from the root, with "." and doubled slashes taken out, and "name/.." where that leads
// to the same place. Symbolic links stay as they are.
std::string full_path_name(std::string_view name);

// The first writable folder for temporary files, found once; "." when there is none.
const std::string& temporary_folder();

}  // namespace tarn::fio
