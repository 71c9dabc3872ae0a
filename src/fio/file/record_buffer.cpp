#include "fio/file/record_buffer.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fio/file/file.h"
#include "fio/file/pipe_guard.h"

namespace tarn::fio {
namespace {

// Large enough that the system calls vanish in the work, small enough to stay in the cache.
constexpr std::size_t first_capacity = std::size_t{1} << 17;

bool ensure_capacity(File& file, std::size_t capacity) {
    if (file.capacity >= capacity) return true;
    std::size_t wanted = file.capacity == 0 ? first_capacity : file.capacity;
    while (wanted < capacity) wanted *= 2;
    void* grown = std::realloc(file.buffer, wanted);
    if (grown == nullptr) return false;
    file.buffer = static_cast<char*>(grown);
    file.capacity = wanted;
    return true;
}

// An empty buffer that stands at the logical position.
void forget_buffer(File& file) {
    file.buffer_position = file.logical_position;
    file.read_index = file.write_index = file.data_count = 0;
    file.dirty = false;
}

bool seek_real(File& file, std::int64_t target, int& err) {
    if (!file.seekable || file.real_position == target) return true;
    if (lseek(file.descriptor, target, SEEK_SET) < 0) {
        err = errno;
        return false;
    }
    file.real_position = target;
    return true;
}

// A descriptor that its owner made non-blocking is waited for: a record is never dropped.
void wait_for_room(int descriptor) {
    pollfd wait{descriptor, POLLOUT, 0};
    poll(&wait, 1, -1);
}

std::size_t write_bytes(File& file, const char* bytes, std::size_t count, int& err) {
    if (file.window != nullptr) {
        window_stream().write(file.window, bytes, count);
        return count;
    }
    const int descriptor = file.descriptor;
    const PipeGuard guard(!file.seekable);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t n = write(descriptor, bytes + done, count - done);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n < 0 && errno == EAGAIN) {
            wait_for_room(descriptor);
        } else if (n < 0 && errno != EINTR) {
            err = errno;
            break;
        }
    }
    return done;
}

// Other processes may have appended in between: the positions move to where the bytes ended up.
void follow_end(File& file) {
    const off_t end = lseek(file.descriptor, 0, SEEK_CUR);
    if (end < 0 || end == file.real_position) return;
    const std::int64_t shift = end - file.real_position;
    file.real_position += shift;
    file.buffer_position += shift;
    file.logical_position += shift;
}

// Half a buffer and more isn't worth a copy.
bool goes_past_buffer(std::size_t count) {
    return count >= first_capacity / 2;
}

// Reads once, whatever interrupts it; 0 at the end of the file or on failure.
std::size_t read_once(File& file, char* bytes, std::size_t count, int& err) {
    for (;;) {
        const ssize_t n = file.window != nullptr ? window_stream().read(file.window, bytes, count)
                                                 : read(file.descriptor, bytes, count);
        if (n >= 0) {
            file.real_position += n;
            if (file.real_position > file.size) file.size = file.real_position;
            return static_cast<std::size_t>(n);
        }
        if (errno == EAGAIN) {
            pollfd wait{file.descriptor, POLLIN, 0};
            poll(&wait, 1, -1);
        } else if (errno != EINTR) {
            err = errno;
            return 0;
        }
    }
}

// Reads behind the valid bytes of the buffer; the number of bytes, 0 at the end or on failure.
std::size_t read_more(File& file, int& err) {
    if (file.terminal) flush_console_output();
    const auto end = file.buffer_position + static_cast<std::int64_t>(file.data_count);
    if (!seek_real(file, end, err)) return 0;
    const std::size_t got =
        read_once(file, file.buffer + file.data_count, file.capacity - file.data_count, err);
    file.data_count += got;
    return got;
}

// Room for reading more behind what is still unread.
bool make_input_room(File& file) {
    if (file.data_count < file.capacity) return true;
    if (file.read_index > 0) {
        file.data_count -= file.read_index;
        std::memmove(file.buffer, file.buffer + file.read_index, file.data_count);
        file.buffer_position += static_cast<std::int64_t>(file.read_index);
        file.read_index = 0;
        return true;
    }
    return ensure_capacity(file, file.capacity + 1);
}

void prepare_input(File& file, int& err) {
    if (!file.dirty && file.read_index < file.data_count) return;
    if (file.dirty) {
        write_out(file, err);
        forget_buffer(file);
    }
    file.write_index = 0;
    if (file.read_index == file.data_count) forget_buffer(file);
    if (!ensure_capacity(file, first_capacity)) err = ENOMEM;
}

}  // namespace

void write_out(File& file, int& err) {
    if (!file.dirty) return;
    int failure = 0;
    std::size_t done = 0;
    if (file.append || seek_real(file, file.buffer_position, failure)) {
        done = write_bytes(file, file.buffer, file.data_count, failure);
    }
    file.real_position += static_cast<std::int64_t>(done);
    file.buffer_position += static_cast<std::int64_t>(done);
    if (file.append && file.seekable) follow_end(file);
    file.data_count -= done;
    // What a full disk refused stays: a later record may find room for it again.
    if (file.data_count > 0) std::memmove(file.buffer, file.buffer + done, file.data_count);
    file.write_index = file.data_count;
    file.dirty = file.data_count > 0;
    if (file.real_position > file.size) file.size = file.real_position;
    if (failure != 0) err = failure;
}

OutputRoom make_place_for_record(File& file, std::size_t need, int& err) {
    if (!file.dirty) {
        forget_buffer(file);
    } else if (file.write_index != file.data_count) {
        // The position was moved inside bytes that wait to be written.
        const std::int64_t position = file.logical_position;
        write_out(file, err);
        file.logical_position = position;
        forget_buffer(file);
    }
    if (file.capacity - file.write_index < need) return grow_record(file, 0, need, err);
    return {file.buffer + file.write_index, file.buffer + file.capacity};
}

OutputRoom grow_record(File& file, std::size_t length, std::size_t need, int& err) {
    if (file.dirty) {
        // Completed records leave; the record in progress slides to the front.
        const std::size_t complete = file.data_count;
        write_out(file, err);
        if (length > 0 && complete > file.data_count) {
            std::memmove(file.buffer + file.data_count, file.buffer + complete, length);
        }
    }
    if (!ensure_capacity(file, file.write_index + length + need)) {
        err = ENOMEM;
        return {};
    }
    return {file.buffer + file.write_index, file.buffer + file.capacity};
}

bool find_record(File& file, InputRecord& record, int& err) {
    prepare_input(file, err);
    if (err != 0) return false;
    std::size_t scanned = file.read_index;
    const char* line_feed = nullptr;
    for (;;) {
        line_feed = static_cast<const char*>(
            std::memchr(file.buffer + scanned, '\n', file.data_count - scanned));
        if (line_feed != nullptr) break;
        const std::size_t unread = file.data_count - file.read_index;
        if (!make_input_room(file)) {
            err = ENOMEM;
            return false;
        }
        scanned = file.read_index + unread;
        if (read_more(file, err) == 0) {
            if (err != 0 || unread == 0) return false;
            break;
        }
    }
    if (line_feed != nullptr) {
        record = line_record(file, line_feed);
    } else {
        const std::size_t length = file.data_count - file.read_index;
        record = {file.buffer + file.read_index, length, length, false};
    }
    return true;
}

std::size_t peek_bytes(File& file, std::size_t count, char*& begin, int& err) {
    prepare_input(file, err);
    if (err != 0) return 0;
    while (file.data_count - file.read_index < count) {
        if (!make_input_room(file)) {
            err = ENOMEM;
            return 0;
        }
        if (read_more(file, err) == 0) break;
    }
    begin = file.buffer + file.read_index;
    const std::size_t have = file.data_count - file.read_index;
    return have < count ? have : count;
}

void put_bytes(File& file, const char* bytes, std::size_t count, int& err) {
    if (!goes_past_buffer(count)) {
        const OutputRoom at = begin_record(file, count, err);
        if (at.begin == nullptr) return;
        std::memcpy(at.begin, bytes, count);
        return end_record(file, count, false, err);
    }
    const std::int64_t position = file.logical_position;
    int failure = 0;
    write_out(file, failure);
    std::size_t done = 0;
    if (failure == 0) {
        file.logical_position = position;
        forget_buffer(file);
        if (file.append || seek_real(file, position, failure)) {
            done = write_bytes(file, bytes, count, failure);
        }
        file.real_position += static_cast<std::int64_t>(done);
        file.logical_position += static_cast<std::int64_t>(done);
        file.buffer_position = file.logical_position;
        if (file.append && file.seekable) follow_end(file);
        if (file.real_position > file.size) file.size = file.real_position;
    }
    if (failure != 0) err = failure;
}

std::size_t take_bytes(File& file, char* bytes, std::size_t count, int& err) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t left = count - done;
        std::size_t ready = file.dirty ? 0 : file.data_count - file.read_index;
        if (ready == 0 && goes_past_buffer(left)) {
            prepare_input(file, err);
            if (err != 0 || !seek_real(file, file.logical_position, err)) break;
            if (file.terminal) flush_console_output();
            const std::size_t got = read_once(file, bytes + done, left, err);
            if (got == 0) break;
            file.logical_position += static_cast<std::int64_t>(got);
            file.buffer_position = file.logical_position;
            done += got;
            continue;
        }
        char* from = nullptr;
        if (ready == 0) ready = peek_bytes(file, 1, from, err);
        if (ready == 0) break;
        ready = std::min(left, file.data_count - file.read_index);
        std::memcpy(bytes + done, file.buffer + file.read_index, ready);
        consume(file, ready);
        done += ready;
    }
    return done;
}

void skip_bytes(File& file, std::int64_t count, int& err) {
    if (file.seekable) return move_to(file, file.logical_position + count, err);
    while (count > 0 && err == 0) {
        char* from = nullptr;
        const std::size_t want = std::min<std::int64_t>(count, first_capacity / 2);
        const std::size_t got = peek_bytes(file, want, from, err);
        if (got == 0) return;
        consume(file, got);
        count -= static_cast<std::int64_t>(got);
    }
}

void overwrite_bytes(File& file, std::int64_t position, const char* bytes, std::size_t count,
                     int& err) {
    const std::int64_t offset = position - file.buffer_position;
    if (file.dirty && offset >= 0 &&
        offset + static_cast<std::int64_t>(count) <= static_cast<std::int64_t>(file.data_count)) {
        std::memcpy(file.buffer + offset, bytes, count);
        return;
    }
    int failure = 0;
    if (offset + static_cast<std::int64_t>(count) > 0) write_out(file, failure);
    while (count > 0 && failure == 0) {
        const ssize_t n = pwrite(file.descriptor, bytes, count, position);
        if (n > 0) {
            bytes += n;
            position += n;
            count -= static_cast<std::size_t>(n);
        } else if (n < 0 && errno != EINTR) {
            failure = errno;
        }
    }
    if (failure != 0) err = failure;
}

void move_to(File& file, std::int64_t target, int& err) {
    if (target == file.logical_position) return;
    if (!file.seekable) return;
    const std::int64_t offset = target - file.buffer_position;
    if (!file.dirty && offset >= 0 && offset <= static_cast<std::int64_t>(file.data_count)) {
        file.read_index = static_cast<std::size_t>(offset);
        file.logical_position = target;
        return;
    }
    write_out(file, err);
    file.logical_position = target;
    forget_buffer(file);
}

void cut_here(File& file, int& err) {
    // Records that others have appended behind ours stay.
    if (!file.seekable || file.append) return;
    struct stat status;
    if (fstat(file.descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return;
    if (status.st_size <= file.logical_position) return;
    write_out(file, err);
    if (ftruncate(file.descriptor, file.logical_position) != 0) {
        err = errno;
        return;
    }
    file.size = file.logical_position;
}

void take_back(File& file, std::int64_t position, int& err) {
    const std::int64_t kept = file.dirty ? position - file.buffer_position : 0;
    file.logical_position = position;
    if (kept > 0) {
        file.data_count = std::min(file.data_count, static_cast<std::size_t>(kept));
        file.write_index = file.data_count;
    } else {
        forget_buffer(file);
    }
    cut_here(file, err);
}

}  // namespace tarn::fio
