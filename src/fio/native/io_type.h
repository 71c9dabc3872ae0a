// The record of a running native statement, the record of the whole dialect, and the operations
// that the statement frame and the formatted engine ask of each other.
//
// How a statement fails. Nothing below an entry jumps. Every operation that can fail returns
// "go on": true, carry on with the next step; false, the statement is over, return false at once,
// touching nothing more. IO_error, IO_system_error, IO_end_of_file and IO_end_of_record follow the
// same rule, so that a check reads
//
//     if (width > room && !IO_error(67)) return false;
//
// and what stands behind it is reached when the message is one that the program has asked to
// ignore (IO_error alone returns true, and only for those; IO_end_of_file never does). A false
// result means that the outcome is stored (IOSTAT=, IOMSG=, the status word), that
// `statement_aborted` is set, and that the record knows the label to leave by. The outermost entry
// shell sees the false result and calls leave_statement(), which releases the record and goes to
// the label through IO_jump_to_label; where the statement has no label (a C caller with IOSTAT=
// alone, or the per-item form) it returns, and the item entries that follow do nothing until the
// next statement begins. A failure that nothing catches doesn't return at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string_view>

#include "fio/gnu/fault.h"
#include "fio/native/engine_state.h"
#include "fio/native/io_codes.h"
#include "fio/unit.h"

namespace tarn::fio {
struct Statement;
}

namespace tarn::fio::native {

// A text specifier: the characters of a keyword, or the variable that an INQUIRE fills.
struct TextWord {
    char* address = nullptr;
    std::ptrdiff_t length = 0;
    bool given = false;
    std::string_view view() const {
        return given && length > 0 ? std::string_view(address, static_cast<std::size_t>(length))
                                   : std::string_view();
    }
};

// A numeric specifier by address: null when it wasn't given.
struct ResultWord {
    void* address = nullptr;
    TypeCode type = TypeCode::none;
};

// The specifiers as setOption stored them; empty at the start of every statement.
struct SpecBlock {
    // Keywords of OPEN and CLOSE, or, in INQUIRE, the texts to fill.
    TextWord access, blank, form, status, filetype, share, position, action, delim, pad, advance;
    TextWord file;      // FILE=
    TextWord new_name;  // of CLOSE
    // Texts that only INQUIRE fills.
    TextWord direct, formatted, name, sequential, unformatted, transparent;
    TextWord readwrite, read, write, stream;
    // Values.
    std::int64_t recl = 0;
    bool recl_given = false;
    bool unit_given = false;
    void* user_driver = nullptr;  // DRIVER=
    // Results of INQUIRE.
    ResultWord exist, named, opened, number, nextrec, recl_result, pos;
    std::int16_t* handle = nullptr;
};

struct IO_type {
    // The record's own life; not copied when a control statement borrows the record below.
    const void* return_address = nullptr;  // code address of the statement, for traceback
    bool outer_ansi_mode = false;          // of the statement that this one interrupts
    std::int32_t outer_format_position = -1;
    // From here on useTempIO copies.
    std::int32_t unit_number = 0;  // -1: internal file, or a statement without a unit
    Unit* unit = nullptr;          // null: not connected
    Unit* held_unit = nullptr;     // locked and kept alive until the statement ends
    IO_type* previous = nullptr;   // the record under this one, of a nested statement
    bool busy = false;
    bool begun = false;                    // per-item form: the next call opens a new statement
    const void* namelist_table = nullptr;  // also: no leading blank on list-directed output
    ActionCode action = ActionCode::none;
    Unit* target_unit = nullptr;  // what the file layer works on; a new record while OPEN runs
    // Landing records (jmp_buf) of the caller, or null. In the per-item form any non-null value.
    void* err_label = nullptr;
    void* end_label = nullptr;
    void* eor_label = nullptr;
    bool per_item = false;           // labels mean a normal return from the failing call
    bool statement_aborted = false;  // the items that follow are ignored
    void* taken_label = nullptr;     // where leave_statement goes
    int taken_road = 0;              // 1 ERR=, 2 END=, 3 EOR=: what setjmp returns there

    // The format. Compiled: 16-bit words from format_ptr on. Run-time: a text, and format_ptr is
    // made non-null by RSF1__, so that a null format_ptr means list-directed throughout.
    const std::uint16_t* format_ptr = nullptr;
    const std::uint16_t* format_end = nullptr;  // set for a format table only
    const char* format_text = nullptr;
    std::ptrdiff_t format_text_length = 0;  // negative: zero-terminated
    bool run_time_format = false;           // the text has not been parsed yet
    std::int64_t format_elements = 1;       // of a format array; counted into the length

    // The record at hand, in the I/O buffer.
    std::int64_t record_length = 0;  // in force
    char* record_cursor = nullptr;   // next character to read or write
    char* record_start = nullptr;
    char* record_end = nullptr;   // last character that the record may hold
    char* record_last = nullptr;  // last character with data; on a write, blanked so far
    char* high_water = nullptr;   // furthest place that a write has reached
    char* output_start = nullptr;
    std::int64_t input_length = 0;  // characters of the record just read; also: a kept record
    bool items_pending = false;
    bool no_line_end = false;    // $
    bool spaced_record = false;  // lengthened by IO_spacefill_buffer
    bool non_advancing = false;
    bool blank_null = false;
    bool end_of_input = false;
    std::int64_t record_no = 0;  // REC= or POS=
    // Formatted stream input: file offset of the byte at record_start. RSF3__ sets it; the end of
    // the statement puts the file behind the line end that follows record_cursor.
    std::int64_t record_file_position = 0;
    // Bytes of the item in transfer; for a complex item, of one part. 10 is REAL*10, whose
    // elements lie sizeof(long double) apart.
    std::int32_t item_size = 0;
    EngineState edit;

    // An internal file.
    bool internal_file = false;
    char* internal_cursor = nullptr;
    char* internal_start = nullptr;
    char* internal_end = nullptr;
    std::int64_t internal_record_length = 0;
    std::int64_t internal_records_left = 1;
    bool count_given = false;
    std::int64_t internal_count = 0;  // of ENCODE and DECODE: the record length, whatever the item

    // An unformatted record.
    std::int64_t record_bytes = 0;     // data bytes; of a record being written, those in the file
    std::int64_t statement_bytes = 0;  // moved by the statement so far
    bool multi_block = false;          // it doesn't fit the I/O buffer and is moved in parts
    bool very_long = false;            // it has the longest frame
    std::int64_t next_block_position = 0;  // of the next part to read; written: the record's start
    std::int64_t record_end_position = 0;  // file position behind it
    // The same on a file that a gnu statement connected; null: it isn't one.
    Statement* gnu_record = nullptr;
    Caller gnu_caller;

    // Where the outcome goes.
    ResultWord iostat;
    const char* source_file = nullptr;  // where the statement stands, if its caller told
    std::int32_t source_line = 0;
    bool iostat_given = false;  // stays when the end-of-file road clears the address
    std::int32_t* status_word = nullptr;
    ResultWord size;
    std::int64_t size_count = 0;
    char* iomsg = nullptr;
    std::ptrdiff_t iomsg_length = 0;
    std::int32_t frame_word = 0;  // kept, no effect
    bool close_removes_unit = false;

    // The I/O buffer: `buffer_size` bytes of record from buffer_start, and 5 on each side.
    std::int64_t buffer_size = 0;
    char* buffer = nullptr;
    char* buffer_start = nullptr;  // buffer + buffer_margin
    bool dynamic_buffer = false;   // this record frees it

    SpecBlock spec_block;
};

inline constexpr std::ptrdiff_t buffer_margin = 5;

// What is there once for the process.
struct State {
    IO_type* current_io = nullptr;  // the statement at hand
    IO_type* temp_io = nullptr;     // the record of control statements
    IO_type* saved_io = nullptr;    // what current_io was before a control statement
    std::int32_t io_depth = 0;
    bool in_io = false;
    bool prev_in_io = false;
    bool reentrant_io = false;
    bool use_temp_io = false;
    bool ansi_mode = false;    // strict standard mode, for this statement
    bool status_mode = false;  // per-item form: report by status word, once asked for
    std::int32_t last_io_error = 0;
    bool initialised = false;
    bool full_sequential = false;  // __fsu: later sequential files keep full records
    std::int32_t format_position = -1;
    char mismatch_text[128] = {};            // waits for message 51; empty: none
    unsigned char* inhibit_table = nullptr;  // one byte a message
    std::int64_t io_buffer_size = 32767;
    std::recursive_mutex critical_section;  // of the per-item form
};
State& state();
inline IO_type& current() {
    return *state().current_io;
}

// ---- The frame's operations ----

// The failure road: see the top of this file.
[[nodiscard]] bool IO_error(std::int32_t message);
[[nodiscard]] bool IO_system_error(int platform_error, const char* where);
[[nodiscard]] bool IO_end_of_file();    // always false
[[nodiscard]] bool IO_end_of_record();  // true only when message 215 is ignored
[[nodiscard]] bool Data_Mismatch_Error(std::int32_t edit_code, const char* item);
// A feature that this build doesn't have: message 129 with a text of its own. Always false.
[[nodiscard]] bool IO_not_available(std::string_view feature);
void Set_Format_Position(std::int32_t value);
void leave_statement();  // last act of an entry whose body returned false

// Counts the characters of a field for SIZE=, as far as the record read has them. To be called
// while record_cursor still stands at the field's start.
void IO_update_size_count(std::int64_t characters);
void IO_set_size();

// Stores a value through an address by its type; false when it doesn't fit (nothing is stored).
bool store_integer(const ResultWord& word, std::int64_t value);

// The I/O buffer. IO_allocate_buffer keeps what the record holds and moves its positions along.
void IO_allocate_buffer(IO_type& io, std::int64_t size);
void IO_allocate_dynamic_buffers(IO_type& io);

// The record kept in the unit between non-advancing statements.
void IO_save_buffer();
void IO_restore_buffer();  // into the record at hand; discards the unit's
void IO_discard_buffer();
[[nodiscard]] bool IO_write_flush();

void static_IO_initialise();
void IO_initialise();  // static_IO_initialise, unless it has run
void newIO();
void deleteIO();
void useTempIO();
void restoreSavedIO();
void beginIO(ActionCode action);
void setOption(IOCode code, TypeCode type, void* value, std::ptrdiff_t length);
[[nodiscard]] bool doIO();
[[nodiscard]] bool WSF2__();  // ends a formatted statement

// The record length of a unit for sequential statements: its RECL; 0 becomes the I/O buffer's size
// and is stored. A connection that a gnu statement opened without RECL= takes what the buffer
// holds.
std::int64_t unit_record_length(Unit& unit);

// Keyword matching: the 1-based place of the first word of the list that `value` begins, in any
// case; -1 when there is none. Every word of the list has a blank behind it.
std::int32_t IO_find_list_entry(std::string_view value, std::string_view word_list);

// A user device driver; false is a reported message 155. `length` goes in and comes back.
[[nodiscard]] bool call_driver(Unit& unit, ActionCode operation, char* buffer,
                               std::int32_t capacity, std::int32_t& length);

// FORM='PRINTER': one record with its carriage control; the line end that was kept back.
void write_printer_record(Unit& unit, const char* text, std::size_t length, int& err);
void write_printer_line_end(Unit& unit, int& err);

// ---- The engine's operations ----

// Sets a formatted or list-directed statement up and starts its first record.
[[nodiscard]] bool RSF1__(const char* advance, bool given, std::ptrdiff_t length);
// Runs the format up to the next data edit descriptor, or to its end without pending items.
[[nodiscard]] bool IO_process_format();
[[nodiscard]] bool IO_process_format_reversion();
[[nodiscard]] bool RSF3__();  // reads one record
[[nodiscard]] bool WSF3__();  // writes one record

// Item engines; `item_size` is set by the caller. `count` of 0 or less transfers nothing.
[[nodiscard]] bool I_RSF_main(void* item, std::int64_t count);
[[nodiscard]] bool I_WSF_main(const void* item, std::int64_t count);
[[nodiscard]] bool L_RSF_main(void* item, std::int64_t count);
[[nodiscard]] bool L_WSF_main(const void* item, std::int64_t count);
[[nodiscard]] bool R_RSF_main(void* item, std::int64_t count);
[[nodiscard]] bool R_WSF_main(const void* item, std::int64_t count);
[[nodiscard]] bool C_RSF_main(void* item, std::int64_t count);
[[nodiscard]] bool C_WSF_main(const void* item, std::int64_t count);
[[nodiscard]] bool CH__RSF(char* item, std::int64_t count, std::ptrdiff_t length);
[[nodiscard]] bool CH__WSF(const char* item, std::int64_t count, std::ptrdiff_t length);

// Business editing of one value.
[[nodiscard]] bool BED__I(const std::int32_t* value);
[[nodiscard]] bool BED__DP(const double* value);
[[nodiscard]] bool BED__RX(const long double* value);

// Unformatted statements: sequential and direct openings, items (`size` 1: times `length`; the
// magnitude of any other is the element's size), and the ends.
[[nodiscard]] bool RSU1__();
[[nodiscard]] bool RDU1__();
[[nodiscard]] bool XSUX__(void* item, std::int64_t count, std::int32_t size, std::ptrdiff_t length);
[[nodiscard]] bool WSU2__();
[[nodiscard]] bool WDU2__();
[[nodiscard]] bool END_RU__();

// Seeks to the record of a direct statement, lengthening the file if need be.
[[nodiscard]] bool IO_direct_access_position();

}  // namespace tarn::fio::native
