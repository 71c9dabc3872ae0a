// What programs ask of files without opening them.
//
// Names are paths of the system: case counts, a backslash is a character as any other, and there
// are no drives. Each routine says what numbers its error has: those of errno, or the platform's.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::intrinsics {

// Attributes. A file that nobody may write is read-only, one whose name begins with a dot is
// hidden; one with neither, that is no folder, is normal.
inline constexpr std::uint32_t attribute_read_only = 1;
inline constexpr std::uint32_t attribute_hidden = 2;
inline constexpr std::uint32_t attribute_folder = 16;
inline constexpr std::uint32_t attribute_archive = 32;
inline constexpr std::uint32_t attribute_normal = 128;

struct FileStatus {
    std::uint32_t attributes = 0;
    std::int64_t size = 0;
    std::int64_t created = 0;  // all times in seconds since 1970, UTC
    std::int64_t accessed = 0;
    std::int64_t written = 0;
};

// A size or a time for a variable of 32 bits: what doesn't fit is the greatest number.
std::int32_t fit_32_bits(std::int64_t value);

bool file_exists(std::string_view name);  // also a pattern that something matches
int erase_file(std::string_view name);    // errno; an empty folder goes too
int rename_file(std::string_view from, std::string_view to);  // errno; nothing is overwritten
int make_folder(std::string_view name);                       // errno
int enter_folder(std::string_view name);                      // errno
std::string current_folder();
bool is_writable_directory(std::string_view name);

int file_status(std::string_view name, FileStatus& status);  // the platform's number
// Only the read-only attribute can be changed. Another one that the file doesn't have already is
// an error, and nothing is done.
int set_file_attributes(std::string_view name, std::uint32_t attributes);  // the platform's number

// From the root; and relative to the current folder, where the file is somewhere below it.
std::string full_path(std::string_view name);
std::string local_name(std::string_view name);

enum class Place { here, temporary_folder };
// A name that no file has; empty, with error 9, when all have been used.
std::string new_temporary_name(Place place, int& error);
std::string temporary_directory();  // looked for afresh; empty when there is none

}  // namespace tarn::intrinsics
