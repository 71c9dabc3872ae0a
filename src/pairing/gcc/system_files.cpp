// gfortran's intrinsics on files by their names: STAT, ACCESS, CHMOD, LINK, RENAME, UNLINK ... as
// functions and as subroutines. A result of 0 is success, others are numbers of the system's
// errors.
#include <algorithm>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

#include "fio/gnu/unit_bytes.h"
#include "fio/unit.h"
#include "frame/link_name.h"
#include "intrinsics/system/file_mode.h"
#include "pairing/gcc/array_descriptor.h"
#include "pairing/gcc/system_arguments.h"

namespace tarn::gcc {
namespace {

constexpr std::int64_t stat_values = 13;

// The thirteen values in their order.
template <class Integer>
void describe(const struct stat& about, const Vector& values) {
    const std::int64_t row[stat_values] = {
        static_cast<std::int64_t>(about.st_dev),
        static_cast<std::int64_t>(about.st_ino),
        static_cast<std::int64_t>(about.st_mode),
        static_cast<std::int64_t>(about.st_nlink),
        static_cast<std::int64_t>(about.st_uid),
        static_cast<std::int64_t>(about.st_gid),
        static_cast<std::int64_t>(about.st_rdev),
        about.st_size,
        about.st_atime,
        about.st_mtime,
        about.st_ctime,
        about.st_blksize,
        about.st_blocks,
    };
    auto* element = static_cast<Integer*>(values.base);
    for (const std::int64_t value : row) {
        *element = static_cast<Integer>(value);
        element += values.stride;
    }
}

void require_room(const Vector& values, const char* intrinsic) {
    const std::int64_t extent = values.upper_bound - values.lower_bound + 1;
    if (extent >= stat_values) return;
    array_failure(wrong_shape, "VALUES of %s has %td elements, and needs %td", intrinsic,
                  std::max<std::int64_t>(extent, 0), stat_values);
}

struct StatCall {
    int (*call)(const char* path, struct stat* about);
    const char* intrinsic;
};

template <class Integer>
Integer describe_name(StatCall stat_call, const char* name, const Vector& values,
                      std::size_t length) {
    require_room(values, stat_call.intrinsic);
    struct stat about {};
    const int error =
        with_name(name, length, [&](const char* path) { return stat_call.call(path, &about); });
    if (error == 0) describe<Integer>(about, values);
    return error;
}

template <class Integer>
Integer describe_unit(std::int32_t unit, const Vector& values) {
    require_room(values, "FSTAT");
    const int descriptor = fio::descriptor_of_unit(unit);
    if (descriptor < 0) return EBADF;
    struct stat about {};
    if (::fstat(descriptor, &about) != 0) return static_cast<Integer>(errno);
    describe<Integer>(about, values);
    return 0;
}

// -1: a letter that is no mode.
int access_file(const char* name, const char* letters, std::size_t length, std::size_t count) {
    int mode = F_OK;
    for (const char letter : std::string_view(letters, count)) {
        switch (letter) {
            case ' ':
                break;
            case 'r':
            case 'R':
                mode |= R_OK;
                break;
            case 'w':
            case 'W':
                mode |= W_OK;
                break;
            case 'x':
            case 'X':
                mode |= X_OK;
                break;
            default:
                return -1;
        }
    }
    return with_name(name, length, [&](const char* path) { return ::access(path, mode); });
}

mode_t process_mask() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

// -1 where the file refuses, 1 for a text that is no mode and for a change of a file that isn't
// there.
int change_mode(const char* name, const char* text, std::size_t length, std::size_t text_length) {
    constexpr int no_mode = 1;
    std::string_view mode(text, text_length);
    while (!mode.empty() && mode.back() == ' ') mode.remove_suffix(1);
    if (mode.empty()) return no_mode;
    int result = -1;
    with_name(name, length, [&](const char* path) {
        intrinsics::ModeBefore before;
        if (!intrinsics::is_octal_mode(mode)) {
            struct stat about {};
            if (::stat(path, &about) != 0) return result = no_mode;
            before = {about.st_mode, process_mask()};
        }
        const auto changed = intrinsics::changed_mode(mode, before);
        result = changed ? ::chmod(path, *changed) : no_mode;
        return result;
    });
    return result;
}

int link_files(const char* from, const char* to, std::size_t length, std::size_t to_length) {
    return with_names(from, length, to, to_length, ::link);
}
int link_by_name(const char* from, const char* to, std::size_t length, std::size_t to_length) {
    return with_names(from, length, to, to_length, ::symlink);
}
int rename_file(const char* from, const char* to, std::size_t length, std::size_t to_length) {
    return with_names(from, length, to, to_length, std::rename);
}
int unlink_file(const char* name, std::size_t length) {
    return with_name(name, length, ::unlink);
}

constexpr StatCall status_of = {::stat, "STAT"};
constexpr StatCall status_of_link = {::lstat, "LSTAT"};

template <class Integer>
Integer set_mask(const Integer* mask) {
    return static_cast<Integer>(::umask(static_cast<mode_t>(*mask)));
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {
TARN_EXPORT std::int32_t _gfortran_stat_i4(const char* name, const Vector* values,
                                           std::size_t length) {
    return describe_name<std::int32_t>(status_of, name, *values, length);
}
TARN_EXPORT void _gfortran_stat_i4_sub(const char* name, const Vector* values, std::int32_t* status,
                                       std::size_t length) {
    store(status, describe_name<std::int32_t>(status_of, name, *values, length));
}
TARN_EXPORT std::int64_t _gfortran_stat_i8(const char* name, const Vector* values,
                                           std::size_t length) {
    return describe_name<std::int64_t>(status_of, name, *values, length);
}
TARN_EXPORT void _gfortran_stat_i8_sub(const char* name, const Vector* values, std::int64_t* status,
                                       std::size_t length) {
    store(status, describe_name<std::int64_t>(status_of, name, *values, length));
}
TARN_EXPORT std::int32_t _gfortran_lstat_i4(const char* name, const Vector* values,
                                            std::size_t length) {
    return describe_name<std::int32_t>(status_of_link, name, *values, length);
}
TARN_EXPORT void _gfortran_lstat_i4_sub(const char* name, const Vector* values,
                                        std::int32_t* status, std::size_t length) {
    store(status, describe_name<std::int32_t>(status_of_link, name, *values, length));
}
TARN_EXPORT std::int64_t _gfortran_lstat_i8(const char* name, const Vector* values,
                                            std::size_t length) {
    return describe_name<std::int64_t>(status_of_link, name, *values, length);
}
TARN_EXPORT void _gfortran_lstat_i8_sub(const char* name, const Vector* values,
                                        std::int64_t* status, std::size_t length) {
    store(status, describe_name<std::int64_t>(status_of_link, name, *values, length));
}
TARN_EXPORT std::int32_t _gfortran_fstat_i4(const std::int32_t* unit, const Vector* values) {
    return describe_unit<std::int32_t>(static_cast<std::int32_t>(*unit), *values);
}
TARN_EXPORT void _gfortran_fstat_i4_sub(const std::int32_t* unit, const Vector* values,
                                        std::int32_t* status) {
    store(status, describe_unit<std::int32_t>(static_cast<std::int32_t>(*unit), *values));
}
TARN_EXPORT std::int64_t _gfortran_fstat_i8(const std::int64_t* unit, const Vector* values) {
    return describe_unit<std::int64_t>(static_cast<std::int32_t>(*unit), *values);
}
TARN_EXPORT void _gfortran_fstat_i8_sub(const std::int64_t* unit, const Vector* values,
                                        std::int64_t* status) {
    store(status, describe_unit<std::int64_t>(static_cast<std::int32_t>(*unit), *values));
}

TARN_EXPORT int _gfortran_access_func(const char* name, const char* mode, std::size_t length,
                                      std::size_t mode_length) {
    return access_file(name, mode, length, mode_length);
}

TARN_EXPORT int _gfortran_chmod_func(const char* name, const char* mode, std::size_t length,
                                     std::size_t mode_length) {
    return change_mode(name, mode, length, mode_length);
}
TARN_EXPORT void _gfortran_chmod_i4_sub(const char* name, const char* mode, std::int32_t* status,
                                        std::size_t length, std::size_t mode_length) {
    store(status, change_mode(name, mode, length, mode_length));
}
TARN_EXPORT void _gfortran_chmod_i8_sub(const char* name, const char* mode, std::int64_t* status,
                                        std::size_t length, std::size_t mode_length) {
    store(status, change_mode(name, mode, length, mode_length));
}
TARN_EXPORT std::int32_t _gfortran_link_i4(const char* from, const char* to, std::size_t length,
                                           std::size_t to_length) {
    return link_files(from, to, length, to_length);
}
TARN_EXPORT void _gfortran_link_i4_sub(const char* from, const char* to, std::int32_t* status,
                                       std::size_t length, std::size_t to_length) {
    store(status, link_files(from, to, length, to_length));
}
TARN_EXPORT std::int64_t _gfortran_link_i8(const char* from, const char* to, std::size_t length,
                                           std::size_t to_length) {
    return link_files(from, to, length, to_length);
}
TARN_EXPORT void _gfortran_link_i8_sub(const char* from, const char* to, std::int64_t* status,
                                       std::size_t length, std::size_t to_length) {
    store(status, link_files(from, to, length, to_length));
}
TARN_EXPORT std::int32_t _gfortran_symlnk_i4(const char* from, const char* to, std::size_t length,
                                             std::size_t to_length) {
    return link_by_name(from, to, length, to_length);
}
TARN_EXPORT void _gfortran_symlnk_i4_sub(const char* from, const char* to, std::int32_t* status,
                                         std::size_t length, std::size_t to_length) {
    store(status, link_by_name(from, to, length, to_length));
}
TARN_EXPORT std::int64_t _gfortran_symlnk_i8(const char* from, const char* to, std::size_t length,
                                             std::size_t to_length) {
    return link_by_name(from, to, length, to_length);
}
TARN_EXPORT void _gfortran_symlnk_i8_sub(const char* from, const char* to, std::int64_t* status,
                                         std::size_t length, std::size_t to_length) {
    store(status, link_by_name(from, to, length, to_length));
}
TARN_EXPORT std::int32_t _gfortran_rename_i4(const char* from, const char* to, std::size_t length,
                                             std::size_t to_length) {
    return rename_file(from, to, length, to_length);
}
TARN_EXPORT void _gfortran_rename_i4_sub(const char* from, const char* to, std::int32_t* status,
                                         std::size_t length, std::size_t to_length) {
    store(status, rename_file(from, to, length, to_length));
}
TARN_EXPORT std::int64_t _gfortran_rename_i8(const char* from, const char* to, std::size_t length,
                                             std::size_t to_length) {
    return rename_file(from, to, length, to_length);
}
TARN_EXPORT void _gfortran_rename_i8_sub(const char* from, const char* to, std::int64_t* status,
                                         std::size_t length, std::size_t to_length) {
    store(status, rename_file(from, to, length, to_length));
}

TARN_EXPORT int _gfortran_unlink(const char* name, std::size_t length) {
    return unlink_file(name, length);
}
TARN_EXPORT void _gfortran_unlink_i4_sub(const char* name, std::int32_t* status,
                                         std::size_t length) {
    store(status, unlink_file(name, length));
}
TARN_EXPORT void _gfortran_unlink_i8_sub(const char* name, std::int64_t* status,
                                         std::size_t length) {
    store(status, unlink_file(name, length));
}

TARN_EXPORT std::int32_t _gfortran_umask_i4(const std::int32_t* mask) {
    return set_mask(mask);
}
TARN_EXPORT std::int64_t _gfortran_umask_i8(const std::int64_t* mask) {
    return set_mask(mask);
}
TARN_EXPORT void _gfortran_umask_i4_sub(const std::int32_t* mask, std::int32_t* before) {
    store(before, set_mask(mask));
}
TARN_EXPORT void _gfortran_umask_i8_sub(const std::int64_t* mask, std::int64_t* before) {
    store(before, set_mask(mask));
}

}  // extern "C"
