// Records without a format on their way out.
//
// The bytes gather in the file's buffer between `begin` and `limit`. When that is full they become
// part of the file and the record goes on behind them: a record of any size passes through one
// buffer, and the marker in front of it is put right afterwards, wherever it is by then. Only a
// file that can't be gone back in (a pipe, or one that others append to) keeps the whole part in
// the buffer.
#include <algorithm>

#include "fio/file/native_frame.h"
#include "fio/file/record_buffer.h"
#include "fio/gnu/records.h"
#include "fio/gnu/unformatted.h"
#include "fio/gnu/unformatted_marker.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr Fault too_big_for_direct{130, iostat_direct_eor};
constexpr Fault too_big{130, iostat_short_record};

// Enough for most records, so that room is asked for once.
constexpr std::size_t usual_record = 512;
// Runs of bytes from here on are handed to the file as they lie in memory.
constexpr std::int64_t long_run = std::int64_t{1} << 15;
// Leaves room for both markers below 2 GiB.
constexpr std::int64_t longest_part = 2147483639;

std::int64_t used(const Statement& s) {
    return s.cursor - s.begin;
}

void close_room(Statement& s) {
    s.begin = s.cursor = s.limit = s.room_end = nullptr;
}

// The system refused something. A sequential record that can't be completed is taken back, so that
// the file stays one of whole records.
void give_up(Statement& s, int err) {
    s.raw.open = false;
    if (s.raw.marker > 0 && !s.raw.held) {
        int ignored = 0;
        take_back(s.unit->file, s.raw.record_position, ignored);
    }
    close_room(s);
    fail_system(s, err);
}

void set_limit(Statement& s) {
    const UnformattedState& raw = s.raw;
    const std::int64_t room =
        std::min<std::int64_t>(s.room_end - s.begin, std::min(raw.part_left, raw.record_left));
    s.limit = s.begin + room;
}

void count_bytes(UnformattedState& raw, std::int64_t count) {
    raw.part_done += count;
    raw.part_left -= count;
    raw.record_left -= count;
}

// What has gathered becomes part of the file.
void commit(Statement& s, bool now, int& err) {
    const std::int64_t count = used(s);
    end_record(s.unit->file, s.raw.lead + static_cast<std::size_t>(count), now, err);
    s.raw.lead = 0;
    count_bytes(s.raw, count);
    close_room(s);
}

// Room for `need` bytes behind the cursor, a marker's included.
void make_raw_room(Statement& s, std::size_t need, int& err) {
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    OutputRoom at;
    std::int64_t kept = 0;
    if (raw.held) {
        kept = used(s);
        at = grow_record(file, raw.lead + static_cast<std::size_t>(kept), need, err);
    } else {
        commit(s, false, err);
        if (err == 0) at = begin_record(file, need, err);
    }
    if (at.begin == nullptr) return;
    s.begin = at.begin + raw.lead;
    s.cursor = s.begin + kept;
    s.room_end = at.limit;
    set_limit(s);
}

void begin_part(Statement& s, int& err) {
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    const std::int64_t wanted = gnu_options().max_subrecord_length;
    raw.marker_position = file.logical_position;
    raw.part_done = 0;
    raw.guess = 0;
    raw.part_left = raw.marker == 0 ? INT64_MAX
                    : raw.native    ? longest_short_record
                    : wanted > 0    ? std::min(wanted, longest_part)
                                    : longest_part;
    const OutputRoom at = begin_record(file, usual_record, err);
    if (at.begin == nullptr) return;
    std::memset(at.begin, 0, raw.marker);
    raw.lead = raw.marker;
    s.begin = s.cursor = at.begin + raw.lead;
    s.room_end = at.limit;
    set_limit(s);
    raw.open = true;
}

// The record outgrows the short frame: its bytes, all at hand, move on for a longer one.
void lengthen_frame(Statement& s) {
    UnformattedState& raw = s.raw;
    constexpr std::size_t more = long_frame - short_frame;
    std::memmove(s.begin + more, s.begin, static_cast<std::size_t>(used(s)));
    std::memset(s.begin - short_frame, 0, long_frame);
    s.begin += more;
    s.cursor += more;
    raw.marker = raw.lead = long_frame;
    raw.part_left = longest_long_record;
    set_limit(s);
}

void store_front(const UnformattedState& raw, char* bytes, std::int64_t value) {
    if (raw.native) return store_native_front(bytes, raw.marker, value);
    store_marker(bytes, raw.marker, raw.swapped, value);
}

void store_back(const UnformattedState& raw, char* bytes, std::int64_t length) {
    if (raw.native) return store_native_back(bytes, raw.marker, length);
    store_marker(bytes, raw.marker, raw.swapped, raw.preceded ? -length : length);
}

// Both markers of a part, now that its length is known.
void end_part(Statement& s, bool goes_on, bool now, int& err) {
    UnformattedState& raw = s.raw;
    File& file = s.unit->file;
    if (s.room_end - s.cursor < static_cast<std::ptrdiff_t>(raw.marker)) {
        make_raw_room(s, raw.marker, err);
        if (err != 0 || s.cursor == nullptr) return;
    }
    const std::int64_t length = raw.part_done + used(s);
    const std::int64_t told = goes_on ? -length : length;
    store_back(raw, s.cursor, length);
    if (raw.lead > 0) {
        store_front(raw, s.begin - raw.lead, told);
        raw.guess = told;
    }
    s.cursor += raw.marker;
    commit(s, now, err);
    raw.open = false;
    raw.preceded = goes_on;
    if (raw.guess == told || err != 0) return;
    char front[8];
    store_front(raw, front, told);
    overwrite_bytes(file, raw.marker_position, front, raw.marker, err);
}

// A direct record that was filled in part has zeros behind.
void fill_direct(Statement& s, int& err) {
    for (;;) {
        const std::int64_t room = s.limit - s.cursor;
        if (room > 0) std::memset(s.cursor, 0, static_cast<std::size_t>(room));
        s.cursor = s.limit;
        const std::int64_t left = s.raw.record_left - used(s);
        if (left <= 0) return;
        make_raw_room(s, static_cast<std::size_t>(std::min(left, long_run)), err);
        if (err != 0) return;
    }
}

}  // namespace

namespace {

// The usual end: the whole record, between markers of four bytes, lies in the buffer.
bool end_at_hand(Statement& s) {
    constexpr std::size_t usual_marker = 4;
    UnformattedState& raw = s.raw;
    if (raw.lead != usual_marker || raw.preceded || raw.native || raw.swapped ||
        s.room_end - s.cursor < static_cast<std::ptrdiff_t>(usual_marker)) {
        return false;
    }
    Unit& unit = *s.unit;
    const std::int64_t length = used(s);
    store_marker(s.begin - usual_marker, usual_marker, false, length);
    store_marker(s.cursor, usual_marker, false, length);
    int err = 0;
    end_record(unit.file, static_cast<std::size_t>(length) + 2 * usual_marker, leaves_at_once(unit),
               err);
    if (err == 0) {
        ++unit.current_record;
    } else {
        give_up(s, err);
    }
    return true;
}

}  // namespace

void begin_raw_output(Statement& s) {
    UnformattedState& raw = s.raw;
    const Unit& unit = *s.unit;
    const bool sequential = !s.direct && !s.stream;
    raw.marker = !sequential ? 0 : raw.native ? short_frame : marker_size();
    raw.held = sequential && (!unit.file.seekable || unit.file.append);
    raw.record_left =
        s.direct || (sequential && unit.status.fixed_record_length) ? unit.recl : INT64_MAX;
    raw.record_position = unit.file.logical_position;
    int err = 0;
    begin_part(s, err);
    if (err != 0) give_up(s, err);
}

void put_raw_slowly(Statement& s, const char* bytes, std::size_t count) {
    UnformattedState& raw = s.raw;
    if (!raw.open) return;
    if (count > static_cast<std::uint64_t>(raw.record_left - used(s))) {
        return fail(s, s.direct ? too_big_for_direct : too_big);
    }
    int err = 0;
    if (raw.native && raw.marker == short_frame) lengthen_frame(s);
    while (count > 0 && err == 0) {
        const std::int64_t left = raw.part_left - used(s);
        const bool is_long = static_cast<std::int64_t>(count) >= long_run && left >= long_run;
        const auto piece = std::min(count, static_cast<std::size_t>(s.limit - s.cursor));
        if (piece > 0 && (raw.held || !is_long)) {
            std::memcpy(s.cursor, bytes, piece);
            s.cursor += piece;
            bytes += piece;
            count -= piece;
            continue;
        }
        if (left == 0 && raw.native) return fail(s, too_big);
        if (left == 0) {
            end_part(s, true, false, err);
            if (err == 0) begin_part(s, err);
            continue;
        }
        const std::size_t run = std::min<std::uint64_t>(count, static_cast<std::uint64_t>(left));
        if (raw.held || !is_long) {
            make_raw_room(s, run, err);
            continue;
        }
        if (raw.lead > 0) {
            // Most long records are one item: the marker that this makes is then the right one.
            const bool goes_on = count > run;
            const std::int64_t length = used(s) + static_cast<std::int64_t>(run);
            raw.guess = goes_on ? -length : length;
            store_front(raw, s.begin - raw.lead, raw.guess);
        }
        commit(s, false, err);
        if (err == 0) put_bytes(s.unit->file, bytes, run, err);
        count_bytes(raw, static_cast<std::int64_t>(run));
        bytes += run;
        count -= run;
    }
    if (err != 0) give_up(s, err);
}

void end_raw_output(Statement& s) {
    UnformattedState& raw = s.raw;
    if (!raw.open) return;
    Unit& unit = *s.unit;
    if (end_at_hand(s)) {
        if (!unit.gnu.last_was_write) cut_behind(s);
        return;
    }
    const bool now = leaves_at_once(unit);
    int err = 0;
    if (raw.marker > 0) {
        end_part(s, false, now, err);
        if (err == 0) ++unit.current_record;
    } else {
        if (s.direct && !s.failed) fill_direct(s, err);
        commit(s, now, err);
        if (s.direct) tell_record(unit, s.record_number);
    }
    if (err != 0) give_up(s, err);
    cut_behind(s);
}

}  // namespace tarn::fio
