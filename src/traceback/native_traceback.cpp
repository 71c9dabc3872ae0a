#include "traceback/native_traceback.h"

#include <algorithm>
#include <cstring>

#include "frame/state.h"
#include "traceback/location.h"

namespace tarn::traceback {
namespace {

constexpr std::size_t longest_name = 80;
constexpr int most_records = 20, most_in_dialog = 8, usual_on_console = 10;
constexpr int most_plain = 100;
constexpr unsigned call_size = 5;  // of a near call: from a return address back to it

// A file's main program is found under the name of its C routine; callers end there.
bool ends_walk(std::uintptr_t address) {
    Location found[most_inlined + 1];
    const std::size_t count = locate(address, found);
    return found[count - 1].is_main || found[count - 1].hidden;
}

bool is_start(std::uintptr_t address) {
    Location found[most_inlined + 1];
    return found[locate(address, found) - 1].hidden;
}

int depth_limit() {
    auto& options = frame::state().traceback;
    const bool console = (options.flags & frame::tb_old_dialogbox) != 0;
    const int limit = console ? most_records : most_in_dialog;
    int depth = options.max_routines;
    if (depth > limit) depth = limit;
    if (depth < 1) depth = console ? usual_on_console : limit;
    options.max_routines = depth;
    return depth;
}

// The records of one traceback. Recursion, of one routine or of a run of them, raises counts in
// place of taking records.
class Records {
  public:
    Records(int depth, bool compress) : depth_(depth), compress_(compress) {}

    bool full() const { return count_ >= depth_; }
    int count() const { return count_; }
    const RoutineRecord& operator[](int index) const { return all_[index]; }

    void add(std::uintptr_t address) {
        RoutineRecord record;
        find_routine(address, record);
        if (pattern_ != 0) {
            if (all_[matched_].start == record.start) {
                if (++matched_ == count_) count_repetition();
                return;
            }
            give_up_pattern();
        }
        if (compress_) look_for_pattern(record.start);
        if (pattern_ == 0 && !repeated_directly_) append(record);
        repeated_directly_ = false;
    }

  private:
    void append(const RoutineRecord& record) {
        if (count_ < depth_) all_[count_++] = record;
    }
    void count_repetition() {
        for (int i = pattern_ - 1; i < count_; ++i) ++all_[i].recursion;
        pattern_ = matched_ = 0;
    }
    // What looked like a repetition broke off: its routines are calls of their own.
    void give_up_pattern() {
        for (int i = pattern_ - 1; i < matched_; ++i) {
            RoutineRecord record = all_[i];
            record.recursion = 0;
            append(record);
        }
        pattern_ = matched_ = 0;
    }
    void look_for_pattern(std::uintptr_t start) {
        for (int i = count_; i > 0; --i) {
            if (all_[i - 1].start != start) continue;
            if (i == count_) {
                ++all_[i - 1].recursion;
                repeated_directly_ = true;
            } else {
                pattern_ = matched_ = i;
            }
            return;
        }
    }

    RoutineRecord all_[most_records];
    int depth_;
    bool compress_;
    int count_ = 0;
    int pattern_ = 0;  // 1-based start of the run that seems to come again; 0: none
    int matched_ = 0;  // records of it that came again so far
    bool repeated_directly_ = false;
};

void add_record(TextBuffer& text, const RoutineRecord& record, bool first) {
    RoutineRecord shown = record;
    if (!first && shown.offset != 0)
        shown.offset = shown.offset > call_size ? shown.offset - call_size : 0;
    add_routine_line(text, shown);
}

}  // namespace

void find_routine(std::uintptr_t address, RoutineRecord& record) {
    record = {};
    Location found[most_inlined + 1];
    const std::size_t count = locate(address, found);
    const Location& routine = found[count - 1];
    TextBuffer name(record.name, longest_name);
    if (routine.routine.empty()) {
        record.start = address;
        name.add(" routine at address ").hexadecimal(address, 1);
        return;
    }
    record.start = routine.start;
    record.offset = address - routine.start;
    name.add(routine.routine);
}

bool add_source_line(TextBuffer& text, std::uintptr_t address) {
    Location found[most_inlined + 1];
    locate(address, found);
    if (found[0].line == 0) return false;
    text.add(" in file ").add(found[0].file).add(" at line ").decimal(found[0].line);
    return true;
}

void add_routine_line(TextBuffer& text, const RoutineRecord& record) {
    const std::uintptr_t address = record.start + record.offset;
    char room[600];
    TextBuffer place(room, sizeof room);
    if (add_source_line(place, address)) {
        text.add(" ").add(record.name).add(" - ").add(place.text());
    } else {
        text.add(" ").hexadecimal(record.start, 16);
        if (record.name[0] != ' ') text.add(" ");
        text.add(record.name);
    }
    text.add(" [+").hexadecimal(record.offset, 4).add("]");
    if (record.recursion > 0) {
        text.add(" [recur=");
        for (std::uint32_t least = 100; least > 1 && record.recursion < least; least /= 10)
            text.add(" ");
        text.decimal(record.recursion).add("] ");
    }
    text.add("\r\n");
}

void add_native_traceback(TextBuffer& text, Walk& walk, bool reporting) {
    const std::uint32_t flags = frame::traceback_flags();
    Records records(depth_limit(), (flags & frame::tb_compress_recursion) != 0);
    do {
        const std::uintptr_t place = walk.interrupted() ? walk.place() : walk.place() + 1;
        if (reporting && is_own_code(walk.place())) continue;
        if (is_start(walk.place())) break;
        records.add(place);
        if (records.full() || ends_walk(walk.place())) break;
    } while (walk.next());
    const int count = records.count();
    const bool outermost_first = (flags & frame::tb_outermost_first) != 0;
    for (int i = 0; i < count; ++i) {
        const int index = outermost_first ? count - 1 - i : i;
        add_record(text, records[index], index == 0);
    }
}

void add_plain_traceback(TextBuffer& text, Walk& walk) {
    std::uintptr_t places[most_plain];
    int count = 0;
    do {
        if (is_start(walk.place())) break;
        places[count++] = walk.interrupted() ? walk.place() : walk.place() + 1;
        if (ends_walk(walk.place())) break;
    } while (count < most_plain && walk.next());
    for (int i = count; i-- > 0;) {
        RoutineRecord record;
        find_routine(places[i], record);
        add_record(text, record, i == 0);
    }
}

}  // namespace tarn::traceback
