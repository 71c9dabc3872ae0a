#include "fio/file/record_buffer.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

#include "fio/file/file.h"
#include "fio/file/pipe_guard.h"
#include "storage/regions.h"

namespace tarn::fio {
namespace {

// What is written in blocks of this size that start at a multiple of it reaches large pages of the
// system's cache; at other places it takes almost half as long again.
constexpr std::size_t block = std::size_t{1} << 16;

bool ensure_capacity(File& file, std::size_t capacity) {
    if (file.capacity >= capacity) return true;
    std::size_t wanted = file.capacity == 0 ? record_buffer_size : file.capacity;
    while (wanted < capacity) wanted *= 2;
    char* grown = buffer_memory(file.buffer, wanted);
    if (grown == nullptr) {
        // A program that has used up its memory can still say so.
        wanted = capacity;
        grown = buffer_memory(file.buffer, wanted);
        if (grown == nullptr) return false;
    }
    file.buffer = grown;
    file.capacity = wanted;
    return true;
}

// An empty buffer that stands at the logical position.
void forget_buffer(File& file) {
    file.buffer_position = file.logical_position;
    file.read_index = file.write_index = file.data_count = 0;
    file.dirty = false;
}

// Whether bytes at `position` lie elsewhere than at the system's pointer, which then stays where it
// is: one call does what moving and transferring would.
bool lies_elsewhere(const File& file, std::int64_t position) {
    return file.seekable && file.real_position != position;
}

// A descriptor that its owner made non-blocking is waited for: a record is never dropped.
void wait_for_room(int descriptor) {
    pollfd wait{descriptor, POLLOUT, 0};
    poll(&wait, 1, -1);
}

// Two runs of bytes that go one behind the other.
class Runs {
  public:
    Runs(const char* first, std::size_t first_count, const char* second = nullptr,
         std::size_t second_count = 0)
        : part_{{const_cast<char*>(first), first_count},
                {const_cast<char*>(second), second_count}} {}
    iovec* begin() { return part_ + (part_[0].iov_len == 0 ? 1 : 0); }
    int count() const { return part_[0].iov_len == 0 || part_[1].iov_len == 0 ? 1 : 2; }
    std::size_t left() const { return part_[0].iov_len + part_[1].iov_len; }
    void advance(std::size_t done) {
        for (iovec& part : part_) {
            const std::size_t some = std::min(done, part.iov_len);
            part.iov_base = static_cast<char*>(part.iov_base) + some;
            part.iov_len -= some;
            done -= some;
        }
    }

  private:
    iovec part_[2];
};

// One transfer of all runs that are left, at the descriptor's own place where `elsewhere` is null.
// A single run goes without a list, which the system would have to fetch and check.
ssize_t write_once(int descriptor, Runs& runs, const off_t* elsewhere) {
    iovec* const from = runs.begin();
    if (runs.count() == 1) {
        return elsewhere != nullptr ? pwrite(descriptor, from->iov_base, from->iov_len, *elsewhere)
                                    : write(descriptor, from->iov_base, from->iov_len);
    }
    return elsewhere != nullptr ? pwritev(descriptor, from, runs.count(), *elsewhere)
                                : writev(descriptor, from, runs.count());
}

ssize_t read_once(int descriptor, Runs& runs, const off_t* elsewhere) {
    iovec* const to = runs.begin();
    if (runs.count() == 1) {
        return elsewhere != nullptr ? pread(descriptor, to->iov_base, to->iov_len, *elsewhere)
                                    : read(descriptor, to->iov_base, to->iov_len);
    }
    return elsewhere != nullptr ? preadv(descriptor, to, runs.count(), *elsewhere)
                                : readv(descriptor, to, runs.count());
}

std::size_t write_to_window(const File& file, Runs runs) {
    const std::size_t count = runs.left();
    for (; runs.left() > 0; runs.advance(runs.begin()->iov_len)) {
        const iovec& run = *runs.begin();
        window_stream().write(file.window, static_cast<const char*>(run.iov_base), run.iov_len);
    }
    return count;
}

// Writes at `position`, or at the end of a file that is appended to; the number of bytes written.
std::size_t write_at(File& file, std::int64_t position, Runs runs, int& err) {
    if (file.window != nullptr) return write_to_window(file, runs);
    const int descriptor = file.descriptor;
    const PipeGuard guard(!file.seekable);
    const bool elsewhere = !file.append && lies_elsewhere(file, position);
    std::size_t done = 0;
    while (runs.left() > 0) {
        const off_t at = position + static_cast<std::int64_t>(done);
        const ssize_t n = write_once(descriptor, runs, elsewhere ? &at : nullptr);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
            runs.advance(static_cast<std::size_t>(n));
        } else if (n < 0 && errno == EAGAIN) {
            wait_for_room(descriptor);
        } else if (n < 0 && errno != EINTR) {
            err = errno;
            break;
        }
    }
    const auto end = position + static_cast<std::int64_t>(done);
    if (!elsewhere) file.real_position += static_cast<std::int64_t>(done);
    file.size = std::max(file.size, end);
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
    file.size = std::max(file.size, file.real_position);
}

// Half a buffer and more isn't worth a copy.
constexpr std::size_t read_ahead = 4096;
bool goes_past_buffer(std::size_t count) {
    return count >= record_buffer_size / 2;
}

// An item may lie in storage of which the system hasn't given all pages yet.
bool grow_runs(Runs runs) {
    bool changed = false;
    for (int i = 0; i < runs.count(); ++i) {
        const iovec& run = runs.begin()[i];
        changed |= storage::grow_for_system(run.iov_base, run.iov_len);
    }
    return changed;
}

// Once a writer has sent something: who opened the pipe for reading alone before that would be at
// its end at once.
void become_reader(File& file) {
    file.undecided_pipe = false;
    pollfd wait{file.descriptor, POLLIN, 0};
    while (poll(&wait, 1, -1) < 0 && errno == EINTR) {
    }
    const std::string name = "/proc/self/fd/" + std::to_string(file.descriptor);
    const int reader = open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (reader < 0) return;
    fcntl(reader, F_SETFL, fcntl(reader, F_GETFL) & ~O_NONBLOCK);
    dup3(reader, file.descriptor, O_CLOEXEC);
    close(reader);
}

// Reads once, whatever interrupts it, into the one and then the other run; 0 at the end of the file
// or on failure.
std::size_t read_at(File& file, std::int64_t position, Runs runs, int& err) {
    if (file.undecided_pipe) become_reader(file);
    const bool elsewhere = lies_elsewhere(file, position);
    for (bool grown = false;;) {
        ssize_t n = 0;
        if (file.window != nullptr) {
            const iovec& to = *runs.begin();
            n = window_stream().read(file.window, static_cast<char*>(to.iov_base), to.iov_len);
        } else {
            n = read_once(file.descriptor, runs, elsewhere ? &position : nullptr);
        }
        if (n >= 0) {
            if (!elsewhere) file.real_position += n;
            file.size = std::max(file.size, position + n);
            return static_cast<std::size_t>(n);
        }
        if (errno == EFAULT && !std::exchange(grown, true) && grow_runs(runs)) continue;
        if (errno == EAGAIN) {
            pollfd wait{file.descriptor, POLLIN, 0};
            poll(&wait, 1, -1);
        } else if (errno != EINTR) {
            err = errno;
            return 0;
        }
    }
}

// As much as there is room for where the file is read on; up to the end of the last page wanted
// where somebody jumps about in it. Either ends where a page does if it can.
std::size_t portion(const File& file, std::int64_t position, std::size_t wanted) {
    const std::size_t room = file.capacity - file.data_count;
    if (!file.seekable) return room;
    if (position == file.next_fill) {
        const std::size_t beyond = (static_cast<std::uint64_t>(position) + room) % page_size;
        return room > wanted + beyond ? room - beyond : room;
    }
    const std::size_t beyond = (static_cast<std::uint64_t>(position) + wanted) % page_size;
    return std::min(room, wanted + (beyond == 0 ? 0 : page_size - beyond));
}

// Reads behind the valid bytes of the buffer, where `wanted` bytes are asked for; the number of
// bytes, 0 at the end or on failure.
std::size_t read_more(File& file, std::size_t wanted, int& err) {
    if (file.terminal) flush_console_output();
    const auto end = file.buffer_position + static_cast<std::int64_t>(file.data_count);
    const Runs room(file.buffer + file.data_count, portion(file, end, wanted));
    const std::size_t got = read_at(file, end, room, err);
    file.data_count += got;
    file.next_fill = end + static_cast<std::int64_t>(got);
    return got;
}

// What was read from a pipe can't be read again: the buffer keeps it, as far as it has room, for
// BACKSPACE and REWIND.
bool keeps_what_was_read(const File& file) {
    return !file.seekable && !file.terminal;
}

// Room for reading more behind what is still unread. Whole pages go, so that the rest of the file
// comes to lie in the buffer as in its own pages.
bool make_input_room(File& file) {
    if (file.data_count < file.capacity) return true;
    if (file.read_index >= page_size) {
        const std::size_t kept = keeps_what_was_read(file) ? file.capacity / 4 : 0;
        std::size_t dropped = file.read_index > kept ? file.read_index - kept : file.read_index;
        dropped = std::max(dropped - dropped % page_size, page_size);
        file.data_count -= dropped;
        std::memmove(file.buffer, file.buffer + dropped, file.data_count);
        file.buffer_position += static_cast<std::int64_t>(dropped);
        file.read_index -= dropped;
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
    if (file.read_index == file.data_count && !keeps_what_was_read(file)) forget_buffer(file);
    constexpr std::size_t least = 1024;
    if (!ensure_capacity(file, least)) err = ENOMEM;
}

// Of `count` bytes that are to be written at `position`, those before the last start of a block;
// all of them where there is none between, or the file isn't one of blocks.
std::size_t whole_blocks(const File& file, std::int64_t position, std::size_t count) {
    if (!file.seekable || file.append) return count;
    const std::size_t beyond = (static_cast<std::uint64_t>(position) + count) % block;
    return beyond < count ? count - beyond : count;
}

// Writes the buffer's first `count` bytes, all of which are dirty.
void write_front(File& file, std::size_t count, int& err) {
    int failure = 0;
    const std::size_t done =
        write_at(file, file.buffer_position, Runs(file.buffer, count), failure);
    file.buffer_position += static_cast<std::int64_t>(done);
    if (file.append && file.seekable) follow_end(file);
    file.data_count -= done;
    // What a full disk refused stays: a later record may find room for it again.
    if (file.data_count > 0) std::memmove(file.buffer, file.buffer + done, file.data_count);
    file.write_index = file.data_count;
    file.dirty = file.data_count > 0;
    if (failure != 0) err = failure;
}

}  // namespace

void write_out(File& file, int& err) {
    if (file.dirty) write_front(file, file.data_count, err);
}

void write_blocks(File& file, int& err) {
    if (!file.dirty) return;
    write_front(file, whole_blocks(file, file.buffer_position, file.data_count), err);
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
        if (read_more(file, 1, err) == 0) {
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
        const std::size_t missing = count - (file.data_count - file.read_index);
        if (read_more(file, missing, err) == 0) break;
    }
    begin = file.buffer + file.read_index;
    const std::size_t have = file.data_count - file.read_index;
    return have < count ? have : count;
}

void look_back(File& file) {
    constexpr std::int64_t wanted = std::int64_t{1} << 15;
    const std::int64_t end = file.logical_position;
    if (!file.seekable || file.shared || file.dirty || file.read_index > 0 || end == 0) return;
    if (!ensure_capacity(file, record_buffer_size)) return;
    forget_buffer(file);
    std::int64_t start = 0;
    if (end > wanted) start = end - wanted + static_cast<std::int64_t>(page_size) - end % page_size;
    const auto count = static_cast<std::size_t>(end - start);
    if (pread(file.descriptor, file.buffer, count, start) != end - start) return;
    file.buffer_position = start;
    file.data_count = file.read_index = count;
    file.next_fill = end;
}

namespace {

// After a write of `waiting` bytes of the buffer and others behind them, of which `done` went out.
void keep_unwritten(File& file, std::size_t waiting, std::size_t done) {
    const std::size_t from_buffer = std::min(waiting, done);
    file.buffer_position += static_cast<std::int64_t>(from_buffer);
    file.logical_position += static_cast<std::int64_t>(done - from_buffer);
    if (from_buffer == waiting) return forget_buffer(file);
    file.data_count = file.write_index = waiting - from_buffer;
    std::memmove(file.buffer, file.buffer + from_buffer, file.data_count);
}

// By pieces that leave as they fill the buffer.
void put_into_buffer(File& file, const char* bytes, std::size_t count, int& err) {
    while (count > 0 && err == 0) {
        const std::size_t some = std::min(count, record_buffer_size / 2);
        const OutputRoom at = begin_record(file, some, err);
        if (at.begin == nullptr) return;
        std::memcpy(at.begin, bytes, some);
        end_record(file, some, false, err);
        bytes += some;
        count -= some;
    }
}

}  // namespace

void put_bytes(File& file, const char* bytes, std::size_t count, int& err) {
    const auto memory = reinterpret_cast<std::uintptr_t>(bytes);
    if (!goes_past_buffer(count) ||
        copies_slowly(static_cast<std::uint64_t>(file.logical_position), memory)) {
        return put_into_buffer(file, bytes, count, err);
    }
    // What waits in the buffer leaves together with them, if they follow it.
    const std::size_t waiting =
        file.dirty && file.write_index == file.data_count ? file.data_count : 0;
    int failure = 0;
    if (waiting == 0) {
        const std::int64_t position = file.logical_position;
        write_out(file, failure);
        if (failure == 0) {
            file.logical_position = position;
            forget_buffer(file);
        }
    }
    if (failure == 0) {
        // What is behind the last start of a block waits for what follows.
        const std::size_t now = whole_blocks(file, file.buffer_position, waiting + count) - waiting;
        const std::size_t done =
            write_at(file, file.buffer_position, Runs(file.buffer, waiting, bytes, now), failure);
        keep_unwritten(file, waiting, done);
        if (file.append && file.seekable) follow_end(file);
        if (failure == 0 && now < count) put_bytes(file, bytes + now, count - now, failure);
    }
    if (failure != 0) err = failure;
}

std::size_t take_bytes(File& file, char* bytes, std::size_t count, int& err) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t left = count - done;
        std::size_t ready = file.dirty ? 0 : file.data_count - file.read_index;
        const auto memory = reinterpret_cast<std::uintptr_t>(bytes + done);
        if (ready == 0 && goes_past_buffer(left) &&
            !copies_slowly(memory, static_cast<std::uint64_t>(file.logical_position))) {
            prepare_input(file, err);
            if (err != 0) break;
            if (file.terminal) flush_console_output();
            forget_buffer(file);
            // A little of what follows comes along: a record's markers, a short item.
            const Runs runs(bytes + done, left, file.buffer, read_ahead);
            const std::size_t got = read_at(file, file.logical_position, runs, err);
            if (got == 0) break;
            const std::size_t taken = std::min(got, left);
            file.logical_position += static_cast<std::int64_t>(taken);
            file.buffer_position = file.logical_position;
            file.data_count = got - taken;
            file.next_fill = file.logical_position + static_cast<std::int64_t>(file.data_count);
            done += taken;
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
    if (!file.dirty && count <= static_cast<std::int64_t>(file.data_count - file.read_index)) {
        return consume(file, static_cast<std::size_t>(count));
    }
    if (file.seekable) {
        // Behind a short step the file is read on as if there were none.
        constexpr std::int64_t step = std::int64_t{1} << 14;
        const std::int64_t target = file.logical_position + count;
        const bool goes_on = target - file.next_fill < step && target >= file.next_fill;
        move_to(file, target, err);
        if (goes_on) file.next_fill = target;
        return;
    }
    while (count > 0 && err == 0) {
        char* from = nullptr;
        const std::size_t want = std::min<std::int64_t>(count, record_buffer_size / 2);
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
