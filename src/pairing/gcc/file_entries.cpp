// Files, the command line and processes as gfortran calls them: `name@` arrives as `name__`, every
// argument by reference, the lengths of CHARACTER arguments by value behind the last; a CHARACTER
// result comes first, with its length. An optional argument that is absent is null.
#include <cstdint>

#include "frame/link_name.h"
#include "tarn/files.h"

namespace {

std::intptr_t signed_length(std::size_t length) {
    return static_cast<std::intptr_t>(length);
}

void give_error(std::int16_t* error, std::int32_t result) {
    if (error != nullptr) *error = static_cast<std::int16_t>(result);
}

}  // namespace

extern "C" {

// ---- The command line and the environment ----

TARN_EXPORT std::int32_t cmnargs__() {
    return IARGC();
}
TARN_EXPORT void getarg__(const std::int32_t* number, char* text, std::size_t length) {
    GETARG(number, text, signed_length(length));
}
TARN_EXPORT std::int32_t lenarg__(const std::int32_t* number) {
    return LENARG_h(number);
}
TARN_EXPORT void cmnam__(char* result, std::size_t length) {
    CMNAM_h(result, signed_length(length));
}
TARN_EXPORT void cmnamr__() {
    CMNAMR_h();
}
TARN_EXPORT void cmprognm__(char* result, std::size_t length) {
    CMPROGNM_h(result, signed_length(length));
}
TARN_EXPORT void cmnum__(std::int32_t* value, std::int16_t* error) {
    CMNUM_h(value, error);
}
TARN_EXPORT void command_line__(char* text, std::size_t length) {
    COMMAND_LINE_h(text, signed_length(length));
}
TARN_EXPORT void command_line2__(char* text, std::size_t length) TARN_ALIAS(command_line__);
TARN_EXPORT std::int32_t len_cmline__() {
    return LEN_CMLINE_h();
}
TARN_EXPORT void getcl__(char* text, std::size_t length) {
    GETCL_h(text, signed_length(length));
}
TARN_EXPORT void getcl1__(char* text, std::int32_t* characters_read, std::size_t length) {
    GETCL1_h(text, characters_read, signed_length(length));
}
TARN_EXPORT void getenv__(char* result, std::size_t length, const char* name,
                          std::size_t name_length) {
    GETENV_h(result, signed_length(length), name, signed_length(name_length));
}
TARN_EXPORT void dosparam__(const char* name, char* value, std::size_t name_length,
                            std::size_t length) {
    DOSPARAM_h(name, value, signed_length(name_length), signed_length(length));
}
TARN_EXPORT void getenviron__(const char* name, char* value, std::size_t name_length,
                              std::size_t length) TARN_ALIAS(dosparam__);
TARN_EXPORT void putenv__(const char* definition, std::int16_t* error, std::size_t length) {
    give_error(error, PUTENV_h(definition, signed_length(length)));
}

// ---- Files ----

TARN_EXPORT std::int32_t file_exists__(const char* name, std::size_t length) {
    return FILE_EXISTS_h(name, signed_length(length));
}
TARN_EXPORT std::int32_t fexists__(const char* name, std::size_t length) TARN_ALIAS(file_exists__);
TARN_EXPORT void erase__(const char* name, std::int16_t* error, std::size_t length) {
    ERASE_h(name, error, signed_length(length));
}
TARN_EXPORT void rename__(const char* old_name, const char* new_name, std::int16_t* error,
                          std::size_t old_length, std::size_t new_length) {
    RENAME_h(old_name, new_name, error, signed_length(old_length), signed_length(new_length));
}
TARN_EXPORT void mkdir__(const char* name, std::int16_t* error, std::size_t length) {
    MKDIR_h(name, error, signed_length(length));
}
TARN_EXPORT void attach__(const char* name, std::int16_t* error, std::size_t length) {
    ATTACH_h(name, error, signed_length(length));
}
TARN_EXPORT void attach1__(const char* name, std::int16_t* error, std::size_t length)
    TARN_ALIAS(attach__);
TARN_EXPORT void change_drive__(const char* drive, std::int16_t* error, std::size_t length) {
    CHANGE_DRIVE_h(drive, error, signed_length(length));
}
TARN_EXPORT void change_drive1__(const char* drive, std::int16_t* error, std::size_t length)
    TARN_ALIAS(change_drive__);
TARN_EXPORT void curdir__(char* result, std::size_t length) {
    CURDIR_h(result, signed_length(length));
}
TARN_EXPORT void current_dir__(char* result, std::size_t length) TARN_ALIAS(curdir__);
TARN_EXPORT void fileinfo__(const char* name, std::int32_t* mode, std::int32_t* device,
                            std::int32_t* links, std::int32_t* size, std::int32_t* created,
                            std::int32_t* accessed, std::int32_t* written, std::int16_t* error,
                            std::size_t length) {
    FILEINFO_h(name, mode, device, links, size, created, accessed, written, error,
               signed_length(length));
}
TARN_EXPORT void fileinfo8__(const char* name, std::int32_t* mode, std::int32_t* device,
                             std::int32_t* links, std::int64_t* size, std::int64_t* created,
                             std::int64_t* accessed, std::int64_t* written, std::int16_t* error,
                             std::size_t length) {
    FILEINFO8_h(name, mode, device, links, size, created, accessed, written, error,
                signed_length(length));
}
TARN_EXPORT void file_size__(const char* name, std::int32_t* size, std::int16_t* error,
                             std::size_t length) {
    FILE_SIZE_h(name, size, error, signed_length(length));
}
TARN_EXPORT void file_size8__(const char* name, std::int64_t* size, std::int16_t* error,
                              std::size_t length) {
    FILE_SIZE8_h(name, size, error, signed_length(length));
}
TARN_EXPORT void files__(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                         char* names, std::int16_t* attributes, std::int16_t* dates,
                         std::int16_t* times, std::int32_t* sizes, std::size_t pattern_length,
                         std::size_t name_length) {
    FILES_h(pattern, count, maximum, names, attributes, dates, times, sizes,
            signed_length(pattern_length), signed_length(name_length));
}
TARN_EXPORT void get_files__(const char*, std::int32_t*, const std::int32_t*, char*, std::int16_t*,
                             std::int16_t*, std::int16_t*, std::int32_t*, std::size_t, std::size_t)
    TARN_ALIAS(files__);
TARN_EXPORT void files8__(const char* pattern, std::int32_t* count, const std::int32_t* maximum,
                          char* names, std::int16_t* attributes, std::int16_t* dates,
                          std::int16_t* times, std::int64_t* sizes, std::size_t pattern_length,
                          std::size_t name_length) {
    FILES8_h(pattern, count, maximum, names, attributes, dates, times, sizes,
             signed_length(pattern_length), signed_length(name_length));
}
TARN_EXPORT void full_path_name__(char* result, std::size_t length, const char* name,
                                  std::size_t name_length) {
    FULL_PATH_NAME_h(result, signed_length(length), name, signed_length(name_length));
}
TARN_EXPORT void resolve_path_name__(char*, std::size_t, const char*, std::size_t)
    TARN_ALIAS(full_path_name__);
TARN_EXPORT void local_file_name__(char* result, std::size_t length, const char* name,
                                   std::size_t name_length) {
    LOCAL_FILE_NAME_h(result, signed_length(length), name, signed_length(name_length));
}
TARN_EXPORT void set_file_attribute__(const char* name, const std::int32_t* attributes,
                                      std::int16_t* error, std::size_t length) {
    give_error(error, SET_FILE_ATTRIBUTE_h(name, attributes, signed_length(length)));
}
TARN_EXPORT void get_file_attribute__(const char* name, std::int32_t* attributes,
                                      std::int16_t* error, std::size_t length) {
    give_error(error, GET_FILE_ATTRIBUTE_h(name, attributes, signed_length(length)));
}
TARN_EXPORT void temp_file__(char* name, std::int16_t* error, std::size_t length) {
    TEMP_FILE_h(name, error, signed_length(length));
}
TARN_EXPORT void temp_path__(char* name, std::int16_t* error, std::size_t length) {
    TEMP_PATH_h(name, error, signed_length(length));
}
TARN_EXPORT void temp_dir_name__(char* result, std::size_t length) {
    TEMP_DIR_NAME_h(result, signed_length(length));
}
TARN_EXPORT std::int32_t is_writable_directory__(const char* directory, std::size_t length) {
    return IS_WRITABLE_DIRECTORY_h(directory, signed_length(length));
}

// ---- Other programs ----

TARN_EXPORT void cissue__(const char* command, std::int16_t* error, std::size_t length) {
    CISSUE(command, error, signed_length(length));
}
TARN_EXPORT std::int32_t start_process__(const char* program, const char* arguments,
                                         std::size_t program_length, std::size_t arguments_length) {
    return START_PROCESS_h(program, arguments, signed_length(program_length),
                           signed_length(arguments_length));
}
TARN_EXPORT std::int32_t start_pprocess__(const char* program, const char* arguments,
                                          std::size_t program_length,
                                          std::size_t arguments_length) {
    return START_PPROCESS_h(program, arguments, signed_length(program_length),
                            signed_length(arguments_length));
}

}  // extern "C"
