// Names of files.
#pragma once

#include <string>
#include <string_view>

namespace tarn::fio {

// Empty where it has been removed.
std::string current_folder();

// The name from the root, with "." and doubled slashes taken out, and "name/.." where that leads
// to the same place. Symbolic links stay as they are. As given where the current folder has no name
// that the system takes.
std::string full_path_name(std::string_view name);

// A copy of a name for the system. White space behind a name fills a variable up, and so do zero
// bytes; a zero byte within it would make it another file's name: false.
bool clean_name(std::string_view given, std::string& name);

// Removes a file's name as unlink does. A device stays where it is: root may remove /dev/null, and
// what a program writes there to be rid of it isn't a file that its CLOSE is meant to delete.
int remove_file(const char* name);

// A folder in which files can be made.
bool is_writable_folder(const char* name);
// The first writable folder for temporary files; empty when there is none.
std::string find_temporary_folder();
// The same, found once; "." when there is none.
const std::string& temporary_folder();
// The next name of the process's one row F$000001.tmp, F$000002.tmp ..., which scratch files
// share; empty after the last.
std::string next_temporary_name();

}  // namespace tarn::fio
