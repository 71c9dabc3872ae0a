#include "platform/kernel/error.h"

#include <cerrno>

namespace tarn::platform {
namespace {

struct Row {
    int errno_value;
    int number;
    std::string_view text;
};

constexpr Row table[] = {
    {ENOENT, 2, "The system cannot find the file specified."},
    {ENOTDIR, 3, "The system cannot find the path specified."},
    {EMFILE, 4, "The system cannot open the file."},
    {ENFILE, 4, "The system cannot open the file."},
    {EACCES, 5, "Access is denied."},
    {EPERM, 5, "Access is denied."},
    {EISDIR, 5, "Access is denied."},
    {EROFS, 19, "The media is write protected."},
    {EBADF, 6, "The handle is invalid."},
    {ENOMEM, 8, "Not enough memory resources are available to process this command."},
    {EXDEV, 17, "The system cannot move the file to a different disk drive."},
    {EIO, 29, "The system cannot write to the specified device."},
    {EAGAIN, 32, "The process cannot access the file because it is being used by another process."},
    {ETXTBSY, 32, "The process cannot access the file because it is being used by another process."},
    {EBUSY, 32, "The process cannot access the file because it is being used by another process."},
    {ENOSPC, 39, "The disk is full."},
    {EDQUOT, 39, "The disk is full."},
    {EFBIG, 39, "The disk is full."},
    {EINVAL, 87, "The parameter is incorrect."},
    {EPIPE, 109, "The pipe has been ended."},
    {ENOTEMPTY, 145, "The directory is not empty."},
    {EEXIST, 183, "Cannot create a file when that file already exists."},
    {ENAMETOOLONG, 206, "The filename or extension is too long."},
    {ELOOP, 1921, "The name of the file cannot be resolved by the system."},
};

}  // namespace

int platform_error(int errno_value) {
    if (errno_value == 0) return 0;
    for (const Row& row : table) {
        if (row.errno_value == errno_value) return row.number;
    }
    return 31;
}

std::string_view platform_error_text(int number) {
    for (const Row& row : table) {
        if (row.number == number) return row.text;
    }
    return number == 31 ? "A device attached to the system is not functioning." : "Unknown error";
}

}  // namespace tarn::platform
