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
    {ENOENT, 2, "There is no such file."},
    {ENOTDIR, 3, "There is no such path."},
    {EMFILE, 4, "Too many files are open."},
    {ENFILE, 4, "Too many files are open."},
    {EACCES, 5, "Access is denied."},
    {EPERM, 5, "Access is denied."},
    {EISDIR, 5, "Access is denied."},
    {EROFS, 19, "The medium is write-protected."},
    {EBADF, 6, "The handle is not open."},
    {ENOMEM, 8, "There is not enough memory."},
    {EXDEV, 17, "The file cannot be moved to another device."},
    {EIO, 29, "The device failed."},
    {EAGAIN, 32, "The file is in use."},
    {ETXTBSY, 32, "The file is in use."},
    {EBUSY, 32, "The file is in use."},
    {ENOSPC, 39, "The disk is full."},
    {EDQUOT, 39, "The disk is full."},
    {EFBIG, 39, "The disk is full."},
    {EINVAL, 87, "A parameter is wrong."},
    {EPIPE, 109, "Nobody reads the pipe any more."},
    {ENOTEMPTY, 145, "The directory is not empty."},
    {EEXIST, 183, "A file of this name exists already."},
    {ENAMETOOLONG, 206, "The name is too long."},
    {ELOOP, 1921, "The name leads through too many links."},
    // What no errno stands for: numbers that the library gives itself.
    {0, 13, "The data are wrong."},
    {0, 15, "There is no such drive."},
    {0, 18, "There are no more."},
    {0, 50, "That cannot be done here."},
    {0, 112, "The disk is full."},
    {0, 123, "The name is wrong."},
    {0, 131, "The position lies before the start of the file."},
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
    return number == 31 ? "The system reported a failure without a number of its own."
                        : "Unknown error";
}

}  // namespace tarn::platform
