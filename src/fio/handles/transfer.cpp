// Reading, writing and moving about in files by their handles.
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <unistd.h>

#include "fio/dialect.h"
#include "fio/handles/table.h"
#include "platform/kernel/error.h"

namespace tarn::fio::handles {
namespace {

constexpr char control_z = 26;

// Others may have moved what a shared handle stands on: ask.
int refresh_position(File& file) {
    int error = 0;
    if (file.shared) file_position(file, error);
    return error;
}

// A shared file is read afresh each time. What can't be sought back is kept.
void forget_what_was_read(File& file) {
    if (file.shared && file.seekable) file_sync(file);
}

// Behind a line's end: what would be dropped at the head of the next line belongs to this one, as
// far as the position tells. A pipe isn't asked for more: whoever writes it may be waiting for us.
int pass_dropped(File& file) {
    for (;;) {
        while (file.read_index < file.data_count) {
            const char c = file.buffer[file.read_index];
            if (c != '\r' && c != control_z) return 0;
            file.read_index++;
            file.logical_position++;
        }
        if (!file.seekable) return 0;
        const std::ptrdiff_t count = file_fill(file);
        if (count <= 0) return count < 0 ? platform::platform_error(errno) : 0;
    }
}

int seek_to(Handle& handle, std::int64_t target, std::int64_t& position) {
    int error = refresh_position(handle.file);
    if (error == 0) file_seek_within(handle.file, target, error);
    position = handle.file.logical_position;
    return own_number(error);
}

}  // namespace

int read(Number number, char* bytes, std::int64_t count, std::int64_t& done) {
    done = 0;
    int error = 0;
    Handle* handle = look_up_for_reading(number, error);
    if (handle == nullptr) return error;
    if (count < 0) return error_wrong_parameter;
    File& file = handle->file;
    error = file_flush(file);
    if (error == 0) error = refresh_position(file);
    if (error != 0 || count == 0) return own_number(error);
    const auto wanted = static_cast<std::size_t>(count);
    const std::size_t got = file.seekable ? file_read(file, bytes, wanted, error)
                                          : file_read_some(file, bytes, wanted, error);
    done = static_cast<std::int64_t>(got);
    return own_number(error);
}

int read_line(Number number, char* text, std::int64_t capacity, std::int64_t& length) {
    length = 0;
    int error = 0;
    Handle* handle = look_up_for_reading(number, error);
    if (handle == nullptr) return error;
    if (capacity < 0) return error_wrong_parameter;
    File& file = handle->file;
    error = file_flush(file);
    if (error == 0) error = refresh_position(file);
    if (error != 0) return own_number(error);
    length = file_read_line(file, native_dialect, text, static_cast<std::size_t>(capacity), error);
    if (error == 0 && length >= 0) error = pass_dropped(file);
    forget_what_was_read(file);
    return error;
}

int write(Number number, const char* bytes, std::int64_t count) {
    int error = 0;
    Handle* handle = look_up_for_writing(number, error, error_wrong_mode);
    if (handle == nullptr) return error;
    if (count < 0) return error_wrong_parameter;
    File& file = handle->file;
    error = refresh_position(file);
    if (error == 0) file_write(file, bytes, static_cast<std::size_t>(count), error);
    return own_number(error);
}

int write_line(Number number, const char* text, std::int64_t length) {
    constexpr std::string_view line_end = "\r\n";
    if (length < 0) return look_up(number) == nullptr ? error_unknown : error_wrong_parameter;
    const auto count = static_cast<std::size_t>(length);
    const std::size_t whole = count + line_end.size();
    // One write, so that lines of several programs don't mix.
    char small[512];
    std::unique_ptr<char[]> large;
    if (whole > sizeof small) {
        large.reset(new (std::nothrow) char[whole]);
        if (large == nullptr) return platform::platform_error(ENOMEM);
    }
    char* line = large != nullptr ? large.get() : small;
    if (count > 0) std::memcpy(line, text, count);
    std::memcpy(line + count, line_end.data(), line_end.size());
    return write(number, line, static_cast<std::int64_t>(whole));
}

int position(Number number, std::int64_t& position) {
    Handle* handle = look_up(number);
    if (handle == nullptr || handle->file.descriptor < 0) return error_unknown;
    File& file = handle->file;
    int error = 0;
    // An unbuffered handle may hold the rest of what a line was taken from.
    const bool ahead = !file.shared && file.read_index < file.data_count;
    position = ahead ? file.logical_position : file_position(file, error);
    return error;
}

int seek(Number number, std::int64_t target, std::int64_t& position) {
    Handle* handle = look_up(number);
    if (handle == nullptr || handle->file.descriptor < 0) return error_unknown;
    if (target < 0) return error_before_start;
    return seek_to(*handle, target, position);
}

int seek32(Number number, std::int32_t target, std::int64_t& position) {
    if (target >= 0) return seek(number, target, position);
    Handle* handle = look_up(number);
    if (handle == nullptr || handle->file.descriptor < 0) return error_unknown;
    const auto place = static_cast<std::int64_t>(static_cast<std::uint32_t>(target));
    if (place > handle->file.size) return error_before_start;
    return seek_to(*handle, place, position);
}

int seek_to_end(Number number, std::int64_t& position) {
    Handle* handle = look_up(number);
    if (handle == nullptr || handle->file.descriptor < 0) return error_unknown;
    int error = 0;
    file_seek_to_end(handle->file, error);
    position = handle->file.logical_position;
    return own_number(error);
}

int make_empty(Number number) {
    int error = 0;
    Handle* handle = look_up_for_writing(number, error, error_unknown);
    if (handle == nullptr) return error;
    handle->file.dirty = false;
    file_truncate(handle->file, 0, error);
    return own_number(error);
}

int truncate(Number number) {
    int error = 0;
    Handle* handle = look_up_for_writing(number, error, error_unknown);
    if (handle == nullptr) return error;
    error = refresh_position(handle->file);
    if (error == 0) file_truncate(handle->file, handle->file.logical_position, error);
    return own_number(error);
}

int flush(Number number) {
    Handle* handle = look_up(number);
    if (handle == nullptr || handle->file.descriptor < 0) return error_unknown;
    File& file = handle->file;
    const int error = file_flush(file);
    if (error != 0 || !file.shared || !file.seekable) return own_number(error);
    // A file system that can't commit has nothing to say against it.
    if (::fdatasync(file.descriptor) == 0 || errno == EINVAL || errno == EROFS) return 0;
    return own_number(platform::platform_error(errno));
}

}  // namespace tarn::fio::handles
