// %cd: a file dialog described by options, over one call or several.
#pragma once

#include <cstdint>
#include <string>

#include "winio/builder.h"

namespace tarn::winio {

struct common_dialog {
    HWND owner;
    std::string title, initial_folder;
    std::string filter;  // pairs of name and pattern, each ended by a zero
    char* file;          // the program's variables
    char* short_file;
    char* root_folder;
    std::int32_t file_length, short_file_length, root_length;
    std::uint32_t flags;
    std::int32_t most_files;
    std::int32_t* item_selected;
    bool saving, file_read;
    bool fortran;  // the variables are CHARACTER, of those lengths
};
// Shows the dialog and frees the block. 1: a file was chosen, 0: none.
std::int32_t CallCommonDialog(common_dialog* dialog);
// The result of a call that goes on: the options of a dialog that is being described.
std::int32_t continued_dialog(std::int32_t otherwise);

}  // namespace tarn::winio
