#include "fio/gnu/connection.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "fio/file/names.h"
#include "fio/file/record_buffer.h"
#include "fio/file/share.h"
#include "fio/gnu/options.h"
#include "fio/gnu/records.h"
#include "fio/unit.h"
#include "frame/state.h"

namespace tarn::fio {
namespace {

constexpr Fault negative_unit{60, iostat_bad_option};
constexpr Fault already_there{107, EEXIST};
constexpr Fault in_use{134, EAGAIN};
constexpr Fault open_elsewhere{134, iostat_open_failed};
constexpr Fault lock_of_reader{81, iostat_bad_action};

struct State {
    std::atomic<bool> up{false};
    std::once_flag once;
    std::mutex lock;          // of the numbers below
    bool* numbers = nullptr;  // those taken for NEWUNIT=, the first being -10
    std::size_t count = 0;
};

// Plain data, never destroyed: units are used until the process is gone.
constinit State the_state;

State& state() {
    return the_state;
}

constexpr bool may_read(Action action) {
    return action != Action::write;
}
constexpr bool may_write(Action action) {
    return action != Action::read;
}

std::uint32_t access_bits(Action action) {
    return (may_read(action) ? access_read : 0) | (may_write(action) ? access_write : 0);
}

// The close at the program's end: nobody is left to catch what goes wrong.
void close_for_good(Unit& unit) {
    Caller nobody;
    nobody.unit = unit.number;
    nobody.has_unit = true;
    const std::string path = unit.file.path;
    int err = 0;
    disconnect(unit, false, err);
    give_back_new_unit_number(unit.number);
    if (err != 0) raise_system_fault(nobody, err, path);
}

void set_connection(Unit& unit, const Terms& terms) {
    const std::int32_t number = unit.number;
    GnuConnection& gnu = unit.gnu;
    gnu = GnuConnection{};
    gnu.access = terms.access;
    gnu.form = terms.form;
    gnu.action = terms.action;
    gnu.modes = terms.modes;
    gnu.delim_given = terms.delim_given;
    gnu.encoding = terms.encoding;
    set_convert(unit, terms.convert);
    gnu.carriage = terms.carriage;
    gnu.read_only = terms.read_only;
    gnu.asynchronous = terms.asynchronous;
    gnu.new_unit = number <= first_new_unit_number;
    gnu.unbuffered = gnu_options().unbuffered_all;

    IOStatus& status = unit.status;
    status = IOStatus{};
    status.connected = true;
    status.formatted = terms.form == Form::formatted;
    status.direct = terms.access == Access::direct;
    status.stream = terms.access == Access::stream;
    status.transparent = status.stream;
    status.scratch = terms.status == FileStatus::scratch;
    status.blank_null = terms.modes.blank == Blank::null;
    status.may_read = may_read(terms.action);
    status.may_write = may_write(terms.action);
    status.read_only = !status.may_write;
    status.fixed_record_length = terms.recl > 0;
    status.pad_no = !terms.modes.pad;

    unit.kind = UnitKind::full;
    unit.dialect = &gnu_dialect;
    unit.current_record = unit.highest_record = 0;
    unit.recl = terms.recl > 0 && !status.stream ? terms.recl : default_record_length();
    unit.saved_length = 0;
    unit.closer = close_for_good;
}

void preconnect(std::int32_t number, int descriptor, Action action, const char* name) {
    if (number < 0) return;
    bool created = false;
    Unit* unit = acquire_or_create_unit(number, created);
    if (created || unit->file.descriptor < 0) {
        Terms terms;
        terms.action = action;
        set_connection(*unit, terms);
        file_adopt(unit->file, descriptor, access_bits(action), false);
        const GnuOptions& options = gnu_options();
        unit->gnu.preconnected = true;
        unit->gnu.unbuffered = descriptor == STDERR_FILENO || options.unbuffered_all ||
                               options.unbuffered_preconnected;
        unit->gnu.name = name;
        // Standard output may be appended to by the shell; what stands behind it isn't ours.
        unit->gnu.last_was_write = action == Action::write;
        const int flags = ::fcntl(descriptor, F_GETFL);
        unit->file.append = flags >= 0 && (flags & O_APPEND) != 0;
        console_attach(*unit);
    }
    release_unit(unit);
}

void bring_up() {
    frame::ensure_up();
    const GnuOptions& options = gnu_options();
    preconnect(options.stderr_unit, STDERR_FILENO, Action::write, "stderr");
    preconnect(options.stdout_unit, STDOUT_FILENO, Action::write, "stdout");
    preconnect(options.stdin_unit, STDIN_FILENO, Action::read, "stdin");
    state().up.store(true, std::memory_order_release);
}

int sharing_bits(Share share) {
    switch (share) {
        case Share::deny_rw:
            return 0x10;
        case Share::deny_none:
            return 0x40;
        default:
            return sharing_unspecified;
    }
}

struct Opened {
    int descriptor;
    Action action;
};

int open_for(const char* path, int flags, Action action, Share share) {
    constexpr int modes[] = {O_RDONLY, O_WRONLY, O_RDWR};
    const int mode = static_cast<int>(action);
    return open_with_sharing(path, flags | O_CLOEXEC | O_NOCTTY | modes[mode], mode,
                             sharing_bits(share));
}

bool is_refusal(int errno_value) {
    return errno_value == EACCES || errno_value == EPERM || errno_value == EROFS;
}

// A name that stands for a descriptor of this process: which; -1: it is none.
int descriptor_of_name(std::string_view path) {
    constexpr std::string_view standard[] = {"/dev/stdin", "/dev/stdout", "/dev/stderr"};
    for (int i = 0; i < 3; ++i) {
        if (path == standard[i]) return i;
    }
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        if (!path.starts_with(folder)) continue;
        const std::string_view digits = path.substr(folder.size());
        int number = -1;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), number);
        return error == std::errc() && end == digits.data() + digits.size() ? number : -1;
    }
    return -1;
}

bool is_pipe(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

// Who opens an end of a pipe for both would be a writer of what it reads, and the end would never
// come. False: it isn't an end of a pipe.
bool find_pipe_end(const char* path, Action& action) {
    const int descriptor = descriptor_of_name(path);
    if (descriptor < 0 || !is_pipe(descriptor)) return false;
    const int mode = fcntl(descriptor, F_GETFL) & O_ACCMODE;
    action = mode == O_WRONLY ? Action::write : Action::read;
    return mode != O_RDWR;
}

// Opens by name. Without an ACTION= the file decides.
Opened open_named(const Terms& terms, const char* path) {
    int flags = 0;
    switch (terms.status) {
        case FileStatus::fresh:
            flags = O_CREAT | O_EXCL;
            break;
        case FileStatus::replace:
            flags = O_CREAT | O_TRUNC;
            break;
        case FileStatus::unknown:
            // A file that is only read must be there.
            if (!terms.action_given || may_write(terms.action)) flags = O_CREAT;
            break;
        default:
            break;
    }
    if (terms.action_given) {
        return {open_for(path, flags, terms.action, terms.share), terms.action};
    }
    if (Action end{}; find_pipe_end(path, end)) return {open_for(path, 0, end, terms.share), end};
    int descriptor = open_for(path, flags, Action::readwrite, terms.share);
    if (descriptor >= 0 || !is_refusal(errno)) return {descriptor, Action::readwrite};
    const int read_flags = terms.status == FileStatus::unknown ? 0 : flags;
    descriptor = open_for(path, read_flags, Action::read, terms.share);
    // What isn't there was refused as a new file, which is what the program has to be told.
    if (descriptor >= 0 || !(is_refusal(errno) || errno == ENOENT))
        return {descriptor, Action::read};
    return {open_for(path, flags, Action::write, terms.share), Action::write};
}

// A scratch file loses its name at once, so that it is gone whatever ends the program.
Opened open_scratch(const Terms& terms) {
    const Action action = terms.action_given ? terms.action : Action::readwrite;
    const char* wanted = std::getenv("GFORTRAN_TMPDIR");
    for (const std::string& folder :
         {std::string(wanted != nullptr ? wanted : ""), temporary_folder()}) {
        if (folder.empty()) continue;
        std::string path = folder + "/";
        path.append(gnu_dialect.scratch_prefix).append("XXXXXX");
        const int descriptor = ::mkostemp(path.data(), O_CLOEXEC);
        if (descriptor < 0) continue;
        ::unlink(path.c_str());
        return {descriptor, action};
    }
    return {-1, action};
}

void report_open_failure(Caller& caller, const Terms& terms, int reason, std::string_view name) {
    std::string detail = "'";
    detail.append(name).append("'");
    if (reason == EEXIST && terms.status == FileStatus::fresh) {
        raise_fault(caller, already_there, detail);
    } else if (reason == EAGAIN) {
        raise_fault(caller, in_use, detail);
    } else {
        raise_system_fault(caller, reason, detail);
    }
}

// Two units on one file: an error before Fortran 2018.
bool is_free(Caller& caller, const Unit& unit, std::string_view name) {
    if ((gnu_options().allow_std & std_f2018) != 0) return true;
    const Unit* other = sys_findUnitFromFilename(name);
    if (other == nullptr || other == &unit) return true;
    raise_fault(caller, open_elsewhere, name);
    return false;
}

void set_position(Unit& unit, Position position, int& err) {
    File& file = unit.file;
    file.position_state = static_cast<std::int32_t>(position);
    if (position != Position::append) return;
    file_seek_to_end(file, err);
    file.position_state = static_cast<std::int32_t>(position);
    unit.gnu.end = EndState::at;
    unit.status.positioned_by_append = true;
    file.stream_read_position = file.stream_write_position = file.logical_position + 1;
    if (!file.shared || err != 0) return;
    // Records of several processes: each goes to the end as it is then, and none is cut off.
    file_set_append(file, true);
    unit.gnu.last_was_write = true;
}

}  // namespace

std::int64_t default_record_length() {
    const std::int64_t given = gnu_options().default_recl;
    return given > 0 ? given : INT64_MAX - (std::int64_t{1} << 31);
}

Convert convert_of_unit(std::int32_t unit, const Convert* given) {
    Convert convert = given != nullptr ? *given : gnu_options().convert;
    environment_convert(unit, convert);
    return convert;
}

void set_convert(Unit& unit, Convert convert) {
    const bool swaps = convert == Convert::swap || convert == Convert::big_endian;
    unit.gnu.endian = swaps ? Endian::swap : Endian::native;
    unit.gnu.native_records = convert == Convert::native_records;
}

void bring_up_units() {
    State& s = state();
    if (!s.up.load(std::memory_order_acquire)) std::call_once(s.once, bring_up);
}

std::string default_file_name(std::int32_t number) {
    return "fort." + std::to_string(number);
}

bool connect(Caller& caller, Unit& unit, const Terms& terms, std::string_view name) {
    if (terms.share == Share::deny_rw && terms.action_given && terms.action == Action::read) {
        raise_fault(caller, lock_of_reader, "SHARE='DENYRW' of a file opened for reading");
        return false;
    }
    const bool scratch = terms.status == FileStatus::scratch;
    if (!scratch && !is_free(caller, unit, name)) return false;
    const std::string path(name);
    const Opened opened = scratch ? open_scratch(terms) : open_named(terms, path.c_str());
    if (opened.descriptor < 0) {
        report_open_failure(caller, terms, errno, scratch ? temporary_folder() : name);
        return false;
    }
    Terms granted = terms;
    granted.action = opened.action;
    set_connection(unit, granted);
    File& file = unit.file;
    file.buffered = true;
    file.append = file.keep_tabs = false;
    file_adopt(file, opened.descriptor, access_bits(opened.action), true);
    file.undecided_pipe =
        !terms.action_given && opened.action == Action::readwrite && is_pipe(opened.descriptor);
    file.shared = terms.share != Share::unspecified;
    unit.share = terms.share == Share::deny_rw ? 1 : terms.share == Share::deny_none ? 4 : 0;
    if (!scratch) {
        file_set_path(file, full_path_name(name));
        unit.gnu.name = name;
    }
    if (unit.status.direct) unit.highest_record = file.size / unit.recl;
    int err = 0;
    set_position(unit, terms.position, err);
    if (err == 0) return true;
    const int reason = errno;
    disconnect(unit, false, err);
    raise_system_fault(caller, reason);
    return false;
}

void disconnect(Unit& unit, bool remove, int& err) {
    finish_open_record(unit, err);
    write_out(unit.file, err);
    console_detach(unit);
    if (remove && !unit.file.path.empty() && remove_file(unit.file.path.c_str()) != 0 && err == 0) {
        err = errno;
    }
    // What couldn't be written has been reported once.
    if (err != 0) unit.file.dirty = false;
    if (unit.file.descriptor >= 0 && file_close(unit.file) != 0 && err == 0) err = errno;
    unit.status = IOStatus{};
    file_set_path(unit.file, {});
    unit.gnu = GnuConnection{};
    unit.saved_length = 0;
    unit.closer = nullptr;
}

// A file that isn't there is made for a READ too, which then meets its end; and REC= finds a
// sequential connection.
Unit* connect_implicitly(Caller& caller, std::int32_t number, bool /*reading*/, Form form,
                         Access /*access*/) {
    bring_up_units();
    Unit* unit = acquire_unit(number);
    if (unit != nullptr && unit->status.connected) return unit;
    release_unit(unit);
    if (number < 0) {
        raise_fault(caller, negative_unit);
        return nullptr;
    }
    bool created = false;
    unit = acquire_or_create_unit(number, created);
    if (unit->status.connected) return unit;
    Terms terms;
    terms.form = form;
    terms.convert = convert_of_unit(number, nullptr);
    if (connect(caller, *unit, terms, default_file_name(number))) return unit;
    if (unit->statements == 1) UnitList_destroy(unit);
    release_unit(unit);
    return nullptr;
}

std::int32_t take_new_unit_number() {
    State& s = state();
    std::size_t i = 0;
    {
        const std::lock_guard guard(s.lock);
        while (i < s.count && s.numbers[i]) ++i;
        if (i == s.count) {
            const std::size_t count = s.count == 0 ? 16 : 2 * s.count;
            void* grown = std::realloc(s.numbers, count * sizeof(bool));
            if (grown == nullptr) return 0;
            s.numbers = static_cast<bool*>(grown);
            std::fill(s.numbers + s.count, s.numbers + count, false);
            s.count = count;
        }
        s.numbers[i] = true;
    }
    return first_new_unit_number - static_cast<std::int32_t>(i);
}

void give_back_new_unit_number(std::int32_t number) {
    if (number > first_new_unit_number) return;
    State& s = state();
    const std::lock_guard guard(s.lock);
    const auto i = static_cast<std::size_t>(first_new_unit_number - number);
    if (i < s.count) s.numbers[i] = false;
}

Unit* connect_window(std::int32_t number, void* window) {
    UnitList_destroy(number);
    bool created = false;
    Unit* unit = acquire_or_create_unit(number, created);
    set_connection(*unit, Terms{});
    // The descriptor only stands for an open file: nothing goes through it.
    file_adopt(unit->file, ::open("/dev/null", O_RDWR | O_CLOEXEC), access_read | access_write,
               true);
    unit->file.window = window;
    unit->file.seekable = false;
    unit->gnu.unbuffered = true;  // every record is seen at once
    return unit;
}

}  // namespace tarn::fio
