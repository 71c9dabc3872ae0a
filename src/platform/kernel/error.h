// One table turns the system's errno into the platform error numbers that the library's rules
// name, with their texts.
#pragma once

#include <string_view>

namespace tarn::platform {

// ERROR_FILE_NOT_FOUND (2) for ENOENT, and so on; an errno without a row gives 31.
int platform_error(int errno_value);
// The text of a platform error number; "Unknown error" without a row.
std::string_view platform_error_text(int number);

inline constexpr int error_file_not_found = 2;
inline constexpr int error_path_not_found = 3;
inline constexpr int error_access_denied = 5;
inline constexpr int error_invalid_handle = 6;
inline constexpr int error_sharing_violation = 32;
inline constexpr int error_handle_disk_full = 39;
inline constexpr int error_already_exists = 183;

}  // namespace tarn::platform
