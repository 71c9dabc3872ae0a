// One connection of a unit number, and the list of them.
//
// Both dialects share the record: `status`, `kind`, `recl` and the file are what either needs to
// carry on a connection that the other opened. The block `gnu` holds what only a gnu statement
// looks at.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/single_threaded.h>

#include "fio/dialect.h"
#include "fio/file/file.h"
#include "fio/modes.h"
#include "platform/kernel/lock.h"

namespace tarn::fio {

// The flags of a connection, in the order in which the debugger's services pack them.
struct IOStatus {
    bool blank_null = false;
    bool formatted = false;
    bool direct = false;
    bool connected = false;
    bool end_of_file = false;
    bool scratch = false;
    bool positioned_by_append = false;
    bool reading = false;
    bool writing = false;
    bool transparent = false;
    bool after_rewind = false;
    bool after_backspace = false;
    bool line_pending = false;         // printer form: a line end is kept back
    bool read_mode = false;            // the position stands inside data that was read
    bool fixed_record_length = false;  // RECL= given on a sequential file
    bool read_only = false;
    bool pad_no = false;
    bool delim_quote = false;
    bool delim_apostrophe = false;
    bool may_read = false;
    bool may_write = false;
    bool stream = false;
};

// Where the records of a unit go.
enum class UnitKind : std::int32_t {
    driver = 0,  // a user device driver; unit -1 has this kind and reaches nothing
    console = 1,
    window = 2,   // a text window or an edit box
    device3 = 3,  // old device names of FILETYPE=; connected but not a disk file
    device4 = 4,
    device5 = 5,
    device6 = 6,
    text = 7,     // a disk file whose trailing blanks are cut from each record
    full = 8,     // a disk file whose records keep their full length
    printer = 9,  // a disk file with carriage control
    device10 = 10,
};

// Where a sequential connection stands with respect to its end.
enum class EndState : std::uint8_t { before, at, after };

// What a gnu connection keeps beyond the common record.
struct GnuConnection {
    Access access = Access::sequential;
    Form form = Form::formatted;
    Action action = Action::readwrite;
    EditModes modes;  // BLANK=, DECIMAL=, ROUND=, SIGN=, DELIM=, PAD= of the OPEN
    Encoding encoding = Encoding::standard;
    Endian endian = Endian::native;
    bool native_records = false;  // unformatted records have the frames of the native layout
    CarriageControl carriage = CarriageControl::list;
    bool returns_carriage = true;  // the record at hand ends with one, by its first character
    bool read_only = false;        // OPEN said READONLY: CLOSE doesn't remove the file either
    bool asynchronous = false;
    bool delim_given = false;   // INQUIRE tells an unset DELIM= from NONE
    bool preconnected = false;  // units 0, 5 and 6 as the program found them
    bool new_unit = false;      // the number came from NEWUNIT=
    bool unbuffered = false;    // every record leaves at once
    EndState end = EndState::before;
    bool last_was_write = false;     // a write makes the file end behind it
    bool record_open = false;        // a non-advancing statement left its record unfinished
    bool no_line_end = false;        // by $: nor does CLOSE finish it
    std::size_t open_column = 0;     // where it stood in it, in bytes from the record's start
    std::int64_t record_number = 0;  // of a direct file: last record transferred
    std::int32_t last_id = 0;        // ID= of the last asynchronous transfer
    std::int32_t share = 0;
    std::string name;  // the file's name as the program gave it
};

// A unit's number of references. While the process has one thread, it counts without locking the
// bus: that would take longer than anything else at the start of a statement.
class References {
  public:
    void add() {
        if (__libc_single_threaded != 0) {
            count_.store(count_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        } else {
            count_.fetch_add(1, std::memory_order_relaxed);
        }
    }
    // False: it was the last one.
    bool drop() {
        if (__libc_single_threaded == 0) return count_.fetch_sub(1) != 1;
        const std::int32_t left = count_.load(std::memory_order_relaxed) - 1;
        count_.store(left, std::memory_order_relaxed);
        return left != 0;
    }

  private:
    std::atomic<std::int32_t> count_{1};
};

struct Unit {
    Unit* next = nullptr;
    std::int32_t number = 0;
    std::int64_t current_record = 0;  // zero-based count of records transferred
    std::int64_t recl = 0;
    std::int64_t highest_record = 0;  // records in a direct file
    char* saved_record = nullptr;     // the record kept between non-advancing native statements
    std::size_t saved_size = 0;       // bytes allocated for it
    std::size_t saved_cursor = 0;
    std::size_t saved_last = 0;
    std::size_t saved_high_water = 0;
    std::size_t saved_length = 0;  // 0: nothing kept
    // Characters of a line that a non-advancing native WRITE has left unfinished on the file.
    std::int64_t unfinished_line = 0;
    void* driver = nullptr;  // a user driver, or the window or edit box of a window unit
    UnitKind kind = UnitKind::driver;
    std::int32_t share = 0;  // 0 COMPAT, 1 DENYRW, 2 DENYWR, 3 DENYRD, 4 DENYNONE
    IOStatus status;
    std::int32_t window_target = 0;  // 0 text window, 1 edit box
    std::int32_t handle_number = 0;
    const Dialect* dialect = &native_dialect;
    File file;
    GnuConnection gnu;
    bool native_console = false;      // units 1 and 2 as the system made them: no gnu connection
    void (*closer)(Unit&) = nullptr;  // the whole CLOSE of the dialect that made the connection
    platform::Lock lock;              // held by a gnu statement from its start to its end

    std::int32_t statements = 0;  // in progress on it, one inside the other; under the lock

    // Kept by the list. A unit lives as long as somebody refers to it: the list itself, and every
    // thread that runs a statement on it or waits for its lock.
    Unit* previous = nullptr;
    Unit* same_bucket = nullptr;
    std::atomic<bool> listed{false};
    References references;
};

// Bytes from one record of a direct file to the next: the native dialect ends formatted records
// with a line end, the gnu dialect doesn't.
inline std::int64_t direct_stride(const Unit& unit) {
    const bool has_line_ends = unit.status.formatted && unit.dialect == &native_dialect;
    return unit.recl + (has_line_ends ? 2 : 0);
}

// `buffered`: the unit gets a file buffer at once.
Unit* Unit_create(std::int32_t number, bool buffered);
void Unit_initialise(Unit& unit, std::int32_t number, bool buffered);
void Unit_close(Unit& unit);  // closes a connected unit and frees what the record owns
void Unit_free(Unit* unit);   // gives up a reference; the last one frees the record
void Unit_clear(Unit& unit);
std::uint32_t Unit_iostatus(const Unit& unit);
std::uint32_t Unit_iostatus1(const Unit& unit);
void IOStatus_clear(IOStatus& status);

// The connected units: a list, newest first, and an index by number, so that a search costs the
// same with one unit or a thousand.
Unit* UnitList_first();
Unit* UnitList_getUnit(std::int32_t number);
Unit* UnitList_getFUnit(std::int32_t handle_number);
void UnitList_insert(Unit* unit);
void UnitList_remove(Unit* unit);
void UnitList_remove(std::int32_t number);
void UnitList_destroy(Unit* unit);
void UnitList_destroy(std::int32_t number);
void UnitList_destroyAll();

// Guards the list and the index, never held while a unit's lock is waited for.
platform::Lock& unit_list_lock();

// What a gnu statement does at its start and its end. `acquire_unit` finds a unit and waits for its
// lock; null when there is none. A unit that another thread closes while this one waits counts as
// gone. `acquire_or_create_unit` puts a new, unconnected unit into the list where there is none.
// A unit acquired twice by one thread is to be released twice.
Unit* acquire_unit(std::int32_t number);
Unit* acquire_or_create_unit(std::int32_t number, bool& created);
void hold_unit(Unit& unit);  // the same for a unit at hand
void release_unit(Unit* unit);

// Writes out what the buffers of all units hold, and leaves them connected.
void flush_all_units();
// The last thing a failing program does: open records are ended too, whatever state the units are
// in. Waits for no lock for long.
void finish_all_units();

}  // namespace tarn::fio
