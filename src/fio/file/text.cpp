// Records of text files: found by their line ends, written with the connection's own.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/uio.h>
#include <unistd.h>

#include "fio/file/file.h"
#include "fio/unit.h"
#include "platform/kernel/error.h"

namespace tarn::fio {
namespace {

constexpr char line_feed = '\n';
constexpr char carriage_return = '\r';
constexpr char control_z = 26;
constexpr std::size_t tab_width = 8;

// A record on its way to the caller's memory: what doesn't fit is passed over.
struct Destination {
    char* bytes;
    std::size_t capacity;
    std::size_t stored = 0;

    void put(const char* from, std::size_t count) {
        const std::size_t fits = std::min(count, capacity - stored);
        std::memcpy(bytes + stored, from, fits);
        stored += fits;
    }
    void put_tab() {
        const std::size_t column = (stored / tab_width + 1) * tab_width;
        const std::size_t end = std::min(column, capacity);
        std::memset(bytes + stored, ' ', end - stored);
        stored = end;
    }
};

bool is_special(char c, const Dialect& dialect, bool keep_tabs) {
    switch (c) {
        case carriage_return:
            return dialect.drops_carriage_returns;
        case control_z:
            return dialect.drops_control_z;
        case '\t':
            return dialect.expands_tabs && !keep_tabs;
        default:
            return false;
    }
}

// The first byte that may be special. All such are control characters, and where eight bytes hold
// none, they are passed over at once.
const char* find_control(const char* from, const char* end) {
    constexpr std::uint64_t first_printing = 0x2020202020202020U;
    constexpr std::uint64_t top_bits = 0x8080808080808080U;
    for (; end - from >= 8; from += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, from, sizeof word);
        if (((word - first_printing) & ~word & top_bits) != 0) break;
    }
    while (from < end && static_cast<unsigned char>(*from) >= ' ') from++;
    return from;
}

// Stores a stretch without line feeds.
void put_stretch(Destination& out, const char* from, const char* end, const Dialect& dialect,
                 bool keep_tabs) {
    while (from < end) {
        const char* stop = find_control(from, end);
        while (stop < end && !is_special(*stop, dialect, keep_tabs)) {
            stop = find_control(stop + 1, end);
        }
        out.put(from, static_cast<std::size_t>(stop - from));
        if (stop < end && *stop == '\t') out.put_tab();
        from = stop + 1;
    }
}

void advance(File& file, std::size_t count) {
    file.read_index += count;
    file.logical_position += static_cast<std::int64_t>(count);
    file.write_index = 0;
}

bool refill(File& file, int& err) {
    const std::ptrdiff_t count = file_fill(file);
    if (count < 0) err = platform::platform_error(errno);
    return count > 0;
}

// Every byte as it stands. A stream connection gets what one buffer holds, a direct one all that
// the caller has room for.
std::ptrdiff_t read_plain(Unit& unit, Destination out, int& err) {
    File& file = unit.file;
    while (out.stored < out.capacity) {
        if (file.read_index == file.data_count && !refill(file, err)) break;
        const std::size_t count =
            std::min(file.data_count - file.read_index, out.capacity - out.stored);
        out.put(file.buffer + file.read_index, count);
        advance(file, count);
        if (unit.status.stream) break;
    }
    return out.stored > 0 ? static_cast<std::ptrdiff_t>(out.stored) : -1;
}

}  // namespace

std::ptrdiff_t file_read_line(File& file, const Dialect& dialect, char* bytes, std::size_t capacity,
                              int& err) {
    Destination out{bytes, capacity};
    bool ended = false;
    bool pending_return = false;  // a CR at the end of a buffer: part of a line end, or data
    while (!ended) {
        if (file.read_index == file.data_count && !refill(file, err)) break;
        const char* from = file.buffer + file.read_index;
        const std::size_t ready = file.data_count - file.read_index;
        const auto* feed = static_cast<const char*>(std::memchr(from, line_feed, ready));
        ended = feed != nullptr;
        const std::size_t length = ended ? static_cast<std::size_t>(feed - from) : ready;
        const char* end = from + length;
        if (!dialect.drops_carriage_returns) {
            if (pending_return && length > 0) out.put("\r", 1);
            if (length > 0) pending_return = end[-1] == carriage_return;
            if (pending_return && length > 0) end--;
        }
        put_stretch(out, from, end, dialect, file.keep_tabs);
        advance(file, length + (ended ? 1 : 0));
    }
    if (!ended && pending_return) out.put("\r", 1);
    return ended || out.stored > 0 ? static_cast<std::ptrdiff_t>(out.stored) : -1;
}

std::ptrdiff_t sys_fileReadText(Unit& unit, char* bytes, std::size_t capacity, int& err) {
    File& file = unit.file;
    err = file_flush(file);
    if (err != 0) return -1;
    if ((file.access_bits & access_read) == 0 || file.descriptor < 0) {
        const bool open = file.descriptor >= 0;
        errno = open ? EACCES : EBADF;
        err = open ? error_access_denied : error_no_handle;
        return -1;
    }
    if (file.shared) {
        std::int64_t position = 0;
        sys_getFilePos(unit, position, err);
        if (err != 0) return -1;
    }
    const bool plain = unit.status.direct || unit.status.stream;
    const std::ptrdiff_t length = plain ? read_plain(unit, Destination{bytes, capacity}, err)
                                        : file_read_line(file, *unit.dialect, bytes, capacity, err);
    // A shared file is read afresh each time: other processes may have changed it. What can't be
    // sought back is kept.
    if (file.shared && file.seekable) file_sync(file);
    return err != 0 ? -1 : length;
}

void sys_fileWriteText(Unit& unit, const char* bytes, std::size_t count, int& err) {
    File& file = unit.file;
    const std::string_view line_end = unit.dialect->line_end;
    if (!file.shared) {
        file_write(file, bytes, count, err);
        if (err == 0) file_write(file, line_end.data(), line_end.size(), err);
        return;
    }
    // One write with the line end. Where no known record stands behind the position it goes to
    // the end of the file as that is now, so that the records of several processes don't meet.
    std::string record;
    record.reserve(count + line_end.size());
    record.append(bytes, count).append(line_end);
    if (file.seekable) file_set_append(file, file.logical_position >= file.size);
    file_write(file, record.data(), record.size(), err);
}

}  // namespace tarn::fio
