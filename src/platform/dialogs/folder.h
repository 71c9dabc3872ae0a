// Folders as a file dialog shows them: what lies in one, which names a filter lets through, and
// which file a typed name means. Names are bytes, as the system keeps them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

struct FolderEntry {
    std::string name;
    bool folder;
};

// Folders first, then the files that `patterns` lets through, each in the order of their names,
// with numbers in them counted as numbers. False, with errno set: it can't be read.
bool read_folder(const std::string& path, std::string_view patterns, bool hidden,
                 std::vector<FolderEntry>& entries);

// "*.dat;*.txt": one of the patterns fits, whatever the case of its letters. "*.*" and nothing at
// all fit every name, with a dot in it or not.
bool fits_patterns(std::string_view name, std::string_view patterns);
bool has_wildcard(std::string_view name);

// The absolute path of what was typed in a folder: "~" is the home folder, "." and ".." are worked
// out where they stand.
std::string absolute_path(std::string_view folder, std::string_view typed);
std::string folder_of(std::string_view path);  // "/" for the root itself
std::string name_of(std::string_view path);

// "one" "two": several names; a text without quotes is one name.
std::vector<std::string> split_names(std::string_view typed);

std::string home_folder();
bool is_folder(const std::string& path);

}  // namespace tarn::platform
