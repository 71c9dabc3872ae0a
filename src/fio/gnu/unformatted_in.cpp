// Records without a format on their way in.
//
// What the buffer holds of the record lies between `begin` and `limit`; longer runs go from the
// file into the items. Nothing that a marker says is believed beyond the bytes that are there.
#include <algorithm>

#include "fio/file/native_frame.h"
#include "fio/file/record_buffer.h"
#include "fio/gnu/unformatted.h"
#include "fio/gnu/unformatted_marker.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr Fault too_short{158, iostat_short_record};
constexpr Fault corrupt{110, iostat_corrupt_file};
constexpr Fault corrupt_marker{110, iostat_bad_us};

constexpr std::size_t long_run = std::size_t{1} << 15;

void fail_corrupt(Statement& s, Fault fault) {
    s.raw.open = false;
    fail(s, fault);
}

void give_up(Statement& s, int err) {
    s.raw.open = false;
    fail_system(s, err);
}

void count_bytes(UnformattedState& raw, std::size_t count) {
    raw.part_left -= static_cast<std::int64_t>(count);
    raw.record_left -= static_cast<std::int64_t>(count);
}

// What was taken from the buffer is behind the file's position.
void release_bytes(Statement& s) {
    const auto count = static_cast<std::size_t>(s.cursor - s.begin);
    consume(s.unit->file, count);
    count_bytes(s.raw, count);
    s.begin = s.cursor = s.limit = nullptr;
    s.raw.whole = false;
}

// The end of the file instead of a record. A record before it may have claimed more bytes than
// there are.
void meet_end(Statement& s) {
    File& file = s.unit->file;
    int number = 0;
    if (file.seekable) file_seek_to_end(file, number);
    fail_end_of_file(s);
}

// The bytes of the marker at the file's position; null: there is no whole one, and the statement
// has failed.
const char* find_marker(Statement& s, bool first) {
    const UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    if (!file.dirty && file.data_count - file.read_index >= raw.marker) {
        return file.buffer + file.read_index;
    }
    int err = 0;
    char* bytes = nullptr;
    const std::size_t got = peek_bytes(file, raw.marker, bytes, err);
    if (got == raw.marker && err == 0) return bytes;
    if (err != 0) {
        give_up(s, err);
    } else if (got == 0 && first) {
        meet_end(s);
    } else {
        consume(file, got);
        fail_corrupt(s, first ? corrupt_marker : corrupt);
    }
    return nullptr;
}

bool open_gnu_part(Statement& s, bool first) {
    UnformattedState& raw = s.raw;
    const char* const bytes = find_marker(s, first);
    if (bytes == nullptr) return false;
    const std::int64_t length = load_marker(bytes, raw.marker, raw.swapped);
    consume(s.unit->file, raw.marker);
    raw.continued = length < 0;
    if (length == INT64_MIN) {
        fail_corrupt(s, corrupt);
        return false;
    }
    raw.part_left = length < 0 ? -length : length;
    return true;
}

// The first byte tells how long the frame is.
bool open_native_record(Statement& s) {
    UnformattedState& raw = s.raw;
    raw.marker = short_frame;
    const char* bytes = find_marker(s, true);
    if (bytes == nullptr) return false;
    raw.marker = native_frame_size(static_cast<unsigned char>(*bytes));
    if (raw.marker > short_frame) bytes = find_marker(s, false);
    if (bytes == nullptr) return false;
    raw.part_left = raw.marker == 0 ? -1 : load_native_front(bytes, raw.marker);
    if (raw.part_left < 0) {
        fail_corrupt(s, corrupt);
        return false;
    }
    consume(s.unit->file, raw.marker);
    raw.part_done = raw.part_left;
    return true;
}

bool open_part(Statement& s, bool first) {
    UnformattedState& raw = s.raw;
    raw.open = false;
    raw.open = raw.native ? open_native_record(s) : open_gnu_part(s, first);
    return raw.open;
}

// In the native layout the frame behind the record must be as the one in front said.
bool leave_native_record(Statement& s) {
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    std::int64_t target = 0;
    if (__builtin_add_overflow(raw.part_left, file.logical_position, &target)) {
        fail_corrupt(s, corrupt);
        return false;
    }
    int err = 0;
    skip_bytes(file, raw.part_left, err);
    if (err != 0) {
        give_up(s, err);
        return false;
    }
    const char* const bytes = find_marker(s, false);
    if (bytes == nullptr) return false;
    const bool fits = load_native_back(bytes, raw.marker) == raw.part_done;
    consume(file, raw.marker);
    raw.open = false;
    if (!fits) fail_corrupt(s, corrupt);
    return fits;
}

// Steps over what is left of a part and the marker behind it. That marker isn't looked at, as
// little as gfortran does: the next record is where the one in front says.
bool leave_part(Statement& s) {
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    if (raw.native) return leave_native_record(s);
    std::int64_t count = 0;
    std::int64_t target = 0;
    if (__builtin_add_overflow(raw.part_left, static_cast<std::int64_t>(raw.marker), &count) ||
        __builtin_add_overflow(file.logical_position, count, &target)) {
        fail_corrupt(s, corrupt);
        return false;
    }
    int err = 0;
    skip_bytes(file, count, err);
    raw.open = false;
    if (err != 0) fail_system(s, err);
    return err == 0;
}

// The file ends inside the record.
void meet_gap(Statement& s) {
    if (s.stream) return fail_end_of_file(s);
    if (!s.direct) return fail_corrupt(s, corrupt);
    // The last record of a direct file may be incomplete: the items behind its end stay as they
    // are, without a fault.
    s.raw.ended = true;
}

}  // namespace

namespace {

// What the buffer has of the part is at hand for the items.
void take_buffered(Statement& s) {
    const UnformattedState& raw = s.raw;
    const File& file = s.unit->file;
    const std::size_t there = file.dirty ? 0 : file.data_count - file.read_index;
    const std::int64_t left = std::min(raw.part_left, raw.record_left);
    s.begin = s.cursor = file.buffer + file.read_index;
    s.limit = s.begin + std::min<std::uint64_t>(there, static_cast<std::uint64_t>(left));
}

// The usual record, with markers of four bytes: all of it is in the buffer.
bool open_whole_record(Statement& s) {
    constexpr std::size_t usual_marker = 4;
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    const std::size_t there = file.dirty ? 0 : file.data_count - file.read_index;
    if (raw.native || raw.swapped || raw.marker != usual_marker || there < 2 * usual_marker) {
        return false;
    }
    char* const begin = file.buffer + file.read_index + usual_marker;
    const std::int64_t length = load_marker(begin - usual_marker, usual_marker, false);
    if (length < 0 || length > static_cast<std::int64_t>(there - 2 * usual_marker)) return false;
    if (length > raw.record_left) return false;
    consume(file, usual_marker);
    raw.part_left = length;
    raw.open = raw.whole = true;
    s.begin = s.cursor = begin;
    s.limit = begin + length;
    return true;
}

}  // namespace

void begin_raw_input(Statement& s) {
    UnformattedState& raw = s.raw;
    const Unit& unit = *s.unit;
    raw.record_left = INT64_MAX;
    if (s.direct || s.stream) {
        raw.part_left = INT64_MAX;
        if (s.direct) raw.record_left = unit.recl;
        raw.open = true;
        return;
    }
    if (unit.status.fixed_record_length) raw.record_left = unit.recl;
    if (!raw.native) raw.marker = marker_size();
    if (!open_whole_record(s) && open_part(s, true)) take_buffered(s);
}

std::size_t take_raw_slowly(Statement& s, char* bytes, std::size_t count) {
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    std::size_t done = 0;
    while (done < count && raw.open && !raw.ended && !s.failed) {
        const auto ready = std::min(count - done, static_cast<std::size_t>(s.limit - s.cursor));
        if (ready > 0) {
            std::memcpy(bytes + done, s.cursor, ready);
            s.cursor += ready;
            done += ready;
            continue;
        }
        release_bytes(s);
        const std::int64_t left = std::min(raw.part_left, raw.record_left);
        if (left == 0) {
            if (raw.record_left > 0 && raw.continued) {
                if (leave_part(s)) open_part(s, false);
                continue;
            }
            fail(s, too_short);
            continue;
        }
        const std::size_t wanted =
            std::min<std::uint64_t>(count - done, static_cast<std::uint64_t>(left));
        int err = 0;
        std::size_t got = 0;
        if (wanted >= long_run) {
            got = take_bytes(file, bytes + done, wanted, err);
            count_bytes(raw, got);
            done += got;
        } else {
            got = peek_bytes(file, wanted, s.begin, err);
            // What the buffer holds beyond the item is at hand for the next ones.
            const std::size_t there = got == 0 ? 0 : file.data_count - file.read_index;
            s.cursor = s.begin;
            s.limit = s.begin + std::min<std::uint64_t>(there, static_cast<std::uint64_t>(left));
            if (got < wanted) {
                if (got > 0) std::memcpy(bytes + done, s.cursor, got);
                s.cursor = s.limit;
                done += got;
            }
        }
        if (err != 0) {
            give_up(s, err);
        } else if (got < wanted) {
            meet_gap(s);
        }
    }
    return done;
}

void end_raw_input(Statement& s) {
    UnformattedState& raw = s.raw;
    Unit& unit = *s.unit;
    if (raw.whole) {
        consume(unit.file, static_cast<std::size_t>(raw.part_left) + raw.marker);
        ++unit.current_record;
        return;
    }
    if (s.begin != nullptr) release_bytes(s);
    if (!raw.open) return;
    if (s.direct) unit.gnu.record_number = s.record_number;
    if (s.direct || s.stream) return;
    while (leave_part(s) && raw.continued && open_part(s, false)) {
    }
    ++unit.current_record;
}

}  // namespace tarn::fio
