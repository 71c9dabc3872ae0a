// Lists of files by a pattern.
//
// In a pattern's last part `*` stands for any characters and `?` for one; `*.*`, which programs
// from elsewhere write for all files, means them all. A name that begins with a dot is listed only
// where the pattern begins with one, "." and ".." never. The list is in the order of the names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "intrinsics/system/files.h"

namespace tarn::intrinsics {

struct ListedFile {
    std::string path;  // in full
    FileStatus status;
};

bool has_wildcard(std::string_view pattern);
bool matches(std::string_view pattern, std::string_view name);
bool matches_anything(std::string_view pattern);
// At most `maximum` files. One that goes while it is being listed isn't.
std::vector<ListedFile> list_files(std::string_view pattern, std::int64_t maximum);

// Local date and time in two words of 16 bits, as directories of old had them: year since 1980,
// month, day; hour, minute, half the seconds. Both 0, with errno set, for a year they don't reach.
struct DateWords {
    std::uint16_t date = 0;
    std::uint16_t time = 0;
};
DateWords date_words(std::int64_t seconds);

}  // namespace tarn::intrinsics
