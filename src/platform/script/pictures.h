// Windows as PNG files, and their controls as text.
#pragma once

#include <string>

#include "platform/base/types.h"

namespace tarn::platform {

// False: `why_not` says what went wrong.
bool save_picture(HWND top, const std::string& path, std::string& why_not);
bool write_tree(HWND top, const std::string& path, bool append, std::string& why_not);

// The accessibility tree of a window: a line each for the window and its controls, indented:
//     role "name" = "value" states [code name] #number x,y width x height
// Places are logical and count from the window's client area.
std::string tree_of(HWND top);
// A title as part of a file's name: what files don't like becomes `_`.
std::string file_name_of(const std::string& title);

}  // namespace tarn::platform
