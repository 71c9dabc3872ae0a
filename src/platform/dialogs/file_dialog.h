// The dialogs in which a user chooses files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/base/types.h"

namespace tarn::platform {

// Not an enumeration: programs give them as one number.
inline constexpr DWORD OFN_READONLY = 1;  // in and out: the check box
inline constexpr DWORD OFN_OVERWRITEPROMPT = 2;
inline constexpr DWORD OFN_HIDEREADONLY = 4;
inline constexpr DWORD OFN_ALLOWMULTISELECT = 0x200;
inline constexpr DWORD OFN_PATHMUSTEXIST = 0x800;
inline constexpr DWORD OFN_FILEMUSTEXIST = 0x1000;
inline constexpr DWORD OFN_CREATEPROMPT = 0x2000;

// Texts are UTF-8; names of files are bytes, as the system knows them.
struct OPENFILENAME {
    HWND hwndOwner{};
    std::string lpstrFilter;         // pairs of name and patterns, each ended by a zero
    std::uint32_t nFilterIndex = 1;  // from 1: the pair to begin with, and the one at the end
    std::string lpstrFile;           // what stands in the name field first; a path leads there
    std::string lpstrInitialDir;     // none: where the last dialog was, then the current folder
    std::string lpstrTitle;          // none: "Open", "Save as"
    DWORD Flags = 0;
    std::vector<std::string> files;  // chosen: absolute paths
};
// False: nothing was chosen. On a display that nobody watches nobody can choose.
bool GetOpenFileNameA(OPENFILENAME& request);
bool GetSaveFileNameA(OPENFILENAME& request);

// Why the last one gave nothing: 0 when the user didn't want to.
inline constexpr DWORD CDERR_DIALOGFAILURE = 0xFFFF;
inline constexpr DWORD FNERR_BUFFERTOOSMALL = 0x3003;
DWORD CommDlgExtendedError();
void set_extended_error(DWORD error);  // by the room that hands the names on

}  // namespace tarn::platform
