// The entries of files and processes.

#include <cerrno>

#include "frame/console_lines.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/system/file_list.h"
#include "intrinsics/system/files.h"
#include "intrinsics/system/processes.h"
#include "intrinsics/system/text.h"
#include "platform/kernel/error.h"
#include "tarn/files.h"

namespace tarn::intrinsics {
namespace {

using frame::character;

constexpr std::int16_t error_no_such_drive = 15;
constexpr std::int16_t error_name_too_long = 206;

std::int16_t small(int error) {
    return static_cast<std::int16_t>(error);
}

template <typename Size>
Size fit(std::int64_t value) {
    return sizeof(Size) == sizeof(std::int32_t) ? fit_32_bits(value) : static_cast<Size>(value);
}

template <typename Size>
void describe(const char* name, std::intptr_t length, std::int32_t* mode, std::int32_t* device,
              std::int32_t* links, Size* size, Size* created, Size* accessed, Size* written,
              std::int16_t* error) {
    FileStatus status;
    *error = small(file_status(character(name, length), status));
    if (*error != 0) return;
    *mode = static_cast<std::int32_t>(status.attributes);
    *device = *links = 0;
    *size = fit<Size>(status.size);
    *created = fit<Size>(status.created);
    *accessed = fit<Size>(status.accessed);
    *written = fit<Size>(status.written);
}

template <typename Size>
void tell_size(const char* name, std::intptr_t length, Size* size, std::int16_t* error) {
    FileStatus status;
    *error = small(file_status(character(name, length), status));
    if (*error == 0) *size = fit<Size>(status.size);
}

// The arrays that a list goes into, side by side.
template <typename Size>
struct ListArrays {
    char* names;
    std::int16_t* attributes;
    std::int16_t* dates;
    std::int16_t* times;
    Size* sizes;
    std::intptr_t name_length;
};

template <typename Size>
void list_into(const char* pattern, std::intptr_t length, std::int32_t* count, std::int32_t maximum,
               const ListArrays<Size>& out) {
    const std::vector<ListedFile> files = list_files(character(pattern, length), maximum);
    std::ptrdiff_t at = 0;
    for (const ListedFile& file : files) {
        const DateWords words = date_words(file.status.written);
        give_text(file.path, out.names + at * out.name_length, out.name_length);
        out.attributes[at] = static_cast<std::int16_t>(file.status.attributes);
        out.dates[at] = static_cast<std::int16_t>(words.date);
        out.times[at] = static_cast<std::int16_t>(words.time);
        out.sizes[at] = fit<Size>(file.status.size);
        ++at;
    }
    *count = static_cast<std::int32_t>(files.size());
}

void give_temporary_name(Place place, char* name, std::int16_t* error, std::intptr_t length) {
    int result = 0;
    const std::string path = new_temporary_name(place, result);
    *error = small(result);
    // Half a name would be another file's.
    if (result == 0 && static_cast<std::intptr_t>(path.size()) > length) {
        *error = error_name_too_long;
    }
    give_text(*error == 0 ? std::string_view(path) : std::string_view(), name, length);
}

}  // namespace
}  // namespace tarn::intrinsics

using namespace tarn::intrinsics;

extern "C" {

// ---- Files ----

TARN_EXPORT std::int32_t FILE_EXISTS_h(const char* name, std::intptr_t length) {
    return file_exists(character(name, length)) ? 1 : 0;
}
TARN_EXPORT std::int32_t FEXISTS_h(const char* name, std::intptr_t length) {
    return FILE_EXISTS_h(name, length);
}
TARN_EXPORT void ERASE_h(const char* name, std::int16_t* error, std::intptr_t length) {
    *error = small(erase_file(character(name, length)));
}
TARN_EXPORT void RENAME_h(const char* old_name, const char* new_name, std::int16_t* error,
                          std::intptr_t old_length, std::intptr_t new_length) {
    *error = small(rename_file(character(old_name, old_length), character(new_name, new_length)));
}
TARN_EXPORT void MKDIR_h(const char* name, std::int16_t* error, std::intptr_t length) {
    *error = small(make_folder(character(name, length)));
}
TARN_EXPORT void MKDIR_d(const char* name, std::int16_t* error, std::intptr_t length) {
    MKDIR_h(name, error, length);
}
TARN_EXPORT void ATTACH_h(const char* name, std::int16_t* error, std::intptr_t length) {
    *error = small(enter_folder(character(name, length)));
}
TARN_EXPORT void ATTACH1_h(const char* name, std::int16_t* error, std::intptr_t length) {
    ATTACH_h(name, error, length);
}
TARN_EXPORT void ATTACH_d(const char* name, std::int16_t* error, std::intptr_t length) {
    ATTACH_h(name, error, length);
}
TARN_EXPORT void CHANGE_DRIVE_h(const char*, std::int16_t* error, std::intptr_t) {
    *error = error_no_such_drive;
}
TARN_EXPORT void CHANGE_DRIVE1_h(const char*, std::int16_t* error, std::intptr_t) {
    *error = error_no_such_drive;
}
TARN_EXPORT void CURDIR_h(char* result, std::intptr_t length) {
    give_text(current_folder(), result, length);
}
TARN_EXPORT void CURDIR_d(char* result, std::intptr_t length) {
    CURDIR_h(result, length);
}
TARN_EXPORT void CURRENT_DIR_h(char* result, std::intptr_t length) {
    CURDIR_h(result, length);
}
TARN_EXPORT void CURRENT_DIR_d(char* result, std::intptr_t length) {
    CURDIR_h(result, length);
}
TARN_EXPORT void FILEINFO_h(const char* name, std::int32_t* mode, std::int32_t* device,
                            std::int32_t* links, std::int32_t* size, std::int32_t* created,
                            std::int32_t* accessed, std::int32_t* written, std::int16_t* error,
                            std::intptr_t length) {
    describe(name, length, mode, device, links, size, created, accessed, written, error);
}
TARN_EXPORT void FILEINFO8_h(const char* name, std::int32_t* mode, std::int32_t* device,
                             std::int32_t* links, std::int64_t* size, std::int64_t* created,
                             std::int64_t* accessed, std::int64_t* written, std::int16_t* error,
                             std::intptr_t length) {
    describe(name, length, mode, device, links, size, created, accessed, written, error);
}
TARN_EXPORT void FILE_SIZE_h(const char* name, std::int32_t* size, std::int16_t* error,
                             std::intptr_t length) {
    tell_size(name, length, size, error);
}
TARN_EXPORT void FILE_SIZE8_h(const char* name, std::int64_t* size, std::int16_t* error,
                              std::intptr_t length) {
    tell_size(name, length, size, error);
}
TARN_EXPORT void FILES_h(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                         char* names, std::int16_t* attributes, std::int16_t* dates,
                         std::int16_t* times, std::int32_t* sizes, std::intptr_t pattern_length,
                         std::intptr_t name_length) {
    list_into<std::int32_t>(pattern, pattern_length, count, *maximum,
                            {names, attributes, dates, times, sizes, name_length});
}
TARN_EXPORT void FILES8_h(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                          char* names, std::int16_t* attributes, std::int16_t* dates,
                          std::int16_t* times, std::int64_t* sizes, std::intptr_t pattern_length,
                          std::intptr_t name_length) {
    list_into<std::int64_t>(pattern, pattern_length, count, *maximum,
                            {names, attributes, dates, times, sizes, name_length});
}
TARN_EXPORT void FILES_d(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                         char* names, std::int16_t* attributes, std::int16_t* dates,
                         std::int16_t* times, std::int32_t* sizes, std::intptr_t pattern_length,
                         std::intptr_t name_length) {
    FILES_h(pattern, count, maximum, names, attributes, dates, times, sizes, pattern_length,
            name_length);
}
TARN_EXPORT void GET_FILES_h(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                             char* names, std::int16_t* attributes, std::int16_t* dates,
                             std::int16_t* times, std::int32_t* sizes, std::intptr_t pattern_length,
                             std::intptr_t name_length) {
    FILES_h(pattern, count, maximum, names, attributes, dates, times, sizes, pattern_length,
            name_length);
}
TARN_EXPORT void GET_FILES_d(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                             char* names, std::int16_t* attributes, std::int16_t* dates,
                             std::int16_t* times, std::int32_t* sizes, std::intptr_t pattern_length,
                             std::intptr_t name_length) {
    FILES_h(pattern, count, maximum, names, attributes, dates, times, sizes, pattern_length,
            name_length);
}
TARN_EXPORT void FULL_PATH_NAME_h(char* result, std::intptr_t length, const char* name,
                                  std::intptr_t name_length) {
    give_text(full_path(character(name, name_length)), result, length);
}
TARN_EXPORT void RESOLVE_PATH_NAME_h(char* result, std::intptr_t length, const char* name,
                                     std::intptr_t name_length) {
    FULL_PATH_NAME_h(result, length, name, name_length);
}
TARN_EXPORT void LOCAL_FILE_NAME_h(char* result, std::intptr_t length, const char* name,
                                   std::intptr_t name_length) {
    give_text(local_name(character(name, name_length)), result, length);
}
TARN_EXPORT std::int32_t SET_FILE_ATTRIBUTE_h(const char* name, const std::int32_t* attributes,
                                              std::intptr_t length) {
    return set_file_attributes(character(name, length), static_cast<std::uint32_t>(*attributes));
}
TARN_EXPORT std::int32_t GET_FILE_ATTRIBUTE_h(const char* name, std::int32_t* attributes,
                                              std::intptr_t length) {
    FileStatus status;
    const int error = file_status(character(name, length), status);
    if (error == 0) *attributes = static_cast<std::int32_t>(status.attributes);
    return error;
}
TARN_EXPORT void TEMP_FILE_h(char* name, std::int16_t* error, std::intptr_t length) {
    give_temporary_name(Place::here, name, error, length);
}
TARN_EXPORT void TEMP_PATH_h(char* name, std::int16_t* error, std::intptr_t length) {
    give_temporary_name(Place::temporary_folder, name, error, length);
}
TARN_EXPORT void TEMP_DIR_NAME_h(char* result, std::intptr_t length) {
    give_text(temporary_directory(), result, length);
}
TARN_EXPORT std::int32_t IS_WRITABLE_DIRECTORY_h(const char* directory, std::intptr_t length) {
    return is_writable_directory(character(directory, length)) ? 1 : 0;
}
TARN_EXPORT void DIRENT_h() LINK_NAME("DIRENT#");
void DIRENT_h() {
    tarn::frame::ensure_up();
    tarn::frame::console_line("In DIRENT@ - dummied out at present");
}

// ---- Processes ----

TARN_EXPORT void CISSUE(const char* command, std::int16_t* error, std::intptr_t length) {
    *error = small(run_command(character(command, length)));
}
TARN_EXPORT void CISSUE_h(const char* command, std::int16_t* error, std::intptr_t length) {
    CISSUE(command, error, length);
}
TARN_EXPORT std::int32_t START_PROCESS_h(const char* program, const char* arguments,
                                         std::intptr_t program_length,
                                         std::intptr_t arguments_length) {
    return spawn(Wait::for_end, character(program, program_length),
                 character(arguments, arguments_length));
}
TARN_EXPORT std::int32_t START_PPROCESS_h(const char* program, const char* arguments,
                                          std::intptr_t program_length,
                                          std::intptr_t arguments_length) {
    return spawn(Wait::no, character(program, program_length),
                 character(arguments, arguments_length));
}
TARN_EXPORT int __spawns(int mode, const char* program, const char* arguments) {
    constexpr int waits = 0;
    constexpr int goes_on = 2;
    if (mode != waits && mode != goes_on) return spawn_failed;
    return spawn(mode == waits ? Wait::for_end : Wait::no, program, arguments);
}
TARN_EXPORT int __spawn_process(const char* command, const char*, int wait) {
    const int result = spawn(wait != 0 ? Wait::for_end : Wait::no, command, "");
    return result < 0 ? tarn::platform::platform_error(errno) : 0;
}

}  // extern "C"
