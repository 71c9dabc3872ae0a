// The system file layer: the only place where units meet the operating system.
//
// A `File` is the file side of a unit: a descriptor, one buffer, and a logical position (where the
// program stands) kept apart from the real one (where the system's file pointer stands). The
// `sys_*` routines report failure by a platform error number and never raise anything; the caller
// turns a non-zero number into a message.
//
// Invariants. With a clean buffer, buffer_position + read_index = logical_position, and the real
// position stands at buffer_position + data_count. With a dirty buffer the real position may
// differ; it is put right when the buffer is written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::fio {

inline constexpr std::uint32_t access_read = 0x80000000U;
inline constexpr std::uint32_t access_write = 0x40000000U;

inline constexpr std::size_t file_buffer_size = 8192;

// What INQUIRE tells of the place in a file: as OPEN left it, or that it is to be looked at.
enum PlaceState : std::int32_t { place_asis, place_rewind, place_append, place_unknown };

struct File {
    std::string path;               // full path; empty for a unit that has no file
    int descriptor = -1;            // -1: no open file
    std::uint32_t access_bits = 0;  // access_read, access_write
    char* buffer = nullptr;         // from malloc; null until first used
    std::size_t capacity = 0;       // of the buffer
    // The least that the buffer has, and the greatest transfer that goes through it.
    std::size_t buffer_size = file_buffer_size;
    std::int64_t logical_position = 0;
    std::int64_t real_position = 0;
    std::int64_t buffer_position = 0;  // file offset of the buffer's first byte
    std::int64_t next_fill = 0;        // where reading on would fill the buffer next
    std::int64_t size = 0;             // largest end of file known
    std::size_t read_index = 0;        // next byte of the buffer to read
    std::size_t write_index = 0;       // next byte of the buffer to write
    std::size_t data_count = 0;        // valid bytes in the buffer
    bool dirty = false;                // the buffer holds bytes that are not on disk
    bool buffered = true;
    bool shared = false;  // other processes may write: no data is held back
    bool append = false;  // every write goes to the end of the file (O_APPEND)
    bool keep_tabs = false;
    bool seekable = true;  // a disk file; pipes, terminals and devices are not
    bool terminal = false;
    // A named pipe that nobody said is only read: opened for both, it would be a writer of its own,
    // and what it reads would never end. The first reading makes it a reader.
    bool undecided_pipe = false;
    bool owned = true;         // close closes the descriptor (not so for 0, 1 and 2)
    std::uint64_t device = 0;  // identity of the file, with inode; 0, 0 when unknown
    std::uint64_t inode = 0;
    void* window = nullptr;  // a text window takes the place of the descriptor
    std::int32_t position_state = place_asis;
    std::int64_t stream_read_position = 1;  // 1-based POS= of a stream unit
    std::int64_t stream_write_position = 1;
};

struct Dialect;
struct Unit;

// Error numbers that this layer sets itself; the others come from platform_error(errno).
inline constexpr int error_access_denied = 5;
inline constexpr int error_no_handle = 6;
inline constexpr int error_disk_full = 39;

// Opens a file by name. `mode`: bits 0 to 2 are the access (0 read, 1 write, 2 both), bits 4 to 6
// the sharing (0x10 none, 0x20 read, 0x30 write, 0x40 and 0x00 both). `mode_share_given` says that
// the program asked for the sharing: only then are advisory locks taken, and a file that another
// process holds against it gives error 32. A file that may not be written gives 5 or 19
// (`is_write_protected`): a caller that asked for both may try again for reading.
inline constexpr int mode_share_given = 0x80;
constexpr bool is_write_protected(int err) {
    return err == error_access_denied || err == 19;
}
void sys_fileOpen(Unit& unit, std::string_view name, int mode, int& err, bool create);
void sys_fileClose(Unit& unit, int& err);
void sys_fileSeekToEOF(Unit& unit, std::int64_t& position, int& err);
void sys_getFilePos(Unit& unit, std::int64_t& position, int& err);
void sys_fileSeek(Unit& unit, std::int64_t target, std::int64_t& position, int& err);
void sys_logicalFileSync(Unit& unit);
void sys_truncateFile(Unit& unit, bool to_zero, int& err);
Unit* sys_findUnitFromFilename(std::string_view name);
void sys_unbufferFile(Unit& unit);
int sys_flushWriteBuffer(Unit& unit);
void sys_fileWrite(Unit& unit, const char* bytes, std::size_t count, int& err);
// Writes the bytes and the line end of the connection's dialect.
void sys_fileWriteText(Unit& unit, const char* bytes, std::size_t count, int& err);
// Refills the buffer; the number of bytes, or -1 on failure.
std::ptrdiff_t sys_fillReadBuffer(Unit& unit);
// Binary read; the number of bytes read. A short read is no error.
std::size_t sys_fileRead(Unit& unit, char* bytes, std::size_t count, int& err);
// Reads one text record by the rules of the connection's dialect; its length, or -1 at the end.
std::ptrdiff_t sys_fileReadText(Unit& unit, char* bytes, std::size_t capacity, int& err);
void sys_deleteFile(std::string_view name, int& err);
void sys_renameFile(std::string_view old_name, std::string_view new_name, int& err);
std::string sys_resolvePathName(std::string_view name, int& err);
std::string sys_createTempFilename(int& err);
bool sys_fileExists(std::string_view name);
// The console: standard input and output. Where a unit is connected to the descriptor
// (`console_attach`), its buffer is used, so that bytes keep their order whichever way they come.
// Output to a terminal leaves at once.
//
// `sys_consoleRead`: one line of standard input; its length, or -1 at the end.
std::ptrdiff_t sys_consoleRead(char* bytes, std::size_t capacity);
// Both writes give a platform error number, 0 when all went well.
int sys_consoleWriteLine(std::string_view text);
int sys_consoleWrite(std::string_view text);

// Makes `unit`, whose file stands on descriptor 0 or 1, the console's way in or out; what the
// console held until now is handed over. `console_detach` must be called before such a unit is
// closed.
void console_attach(Unit& unit);
void console_detach(Unit& unit);
// Sends what waits for standard output on its way: before a terminal is read, so that a prompt is
// seen. A unit in the middle of a statement, or of another thread's, is left alone.
void flush_console_output();

// Below: the same layer for code that has a file and no unit.

// What takes the place of reading and writing for a file that is a window. Set by the room of text
// windows; null: there are none. `read` gives a line with its line feed, `settle` is called when a
// statement on such a unit is over and nothing is held: the window's messages may run then.
struct WindowStream {
    void (*write)(void* window, const char* bytes, std::size_t count) = nullptr;
    std::ptrdiff_t (*read)(void* window, char* bytes, std::size_t count) = nullptr;
    void (*settle)() = nullptr;
};
WindowStream& window_stream();
// Stands for the default text window, which is made when something is written to it first.
inline void* const console_window = reinterpret_cast<void*>(-1);
// The program went over to windows mode: units on standard input and output are the default window.
void console_to_window();

// Connects an open descriptor: its kind, identity, size and position.
void file_adopt(File& file, int descriptor, std::uint32_t access_bits, bool owned);
// Sets the full path, by which other threads may be looking for the file.
void file_set_path(File& file, std::string path);
// Gives the file a buffer of at least `capacity` bytes, with its contents kept; false: no memory.
bool file_reserve(File& file, std::size_t capacity);
// Every routine of this header that gives a non-zero error number leaves the system's value behind
// it in errno.
int file_flush(File& file);  // writes the dirty part out
void file_sync(File& file);
// Sets the logical position, also behind the end of the file, where a later write leaves a hole.
void file_seek(File& file, std::int64_t target, int& err);
// The same, but never behind the end; `file.logical_position` tells where the file stands.
void file_seek_within(File& file, std::int64_t target, int& err);
void file_seek_to_end(File& file, int& err);
// Where the file stands: an unbuffered one asks the system.
std::int64_t file_position(File& file, int& err);
void file_truncate(File& file, std::int64_t length, int& err);
void file_write(File& file, const char* bytes, std::size_t count, int& err);
std::size_t file_read(File& file, char* bytes, std::size_t count, int& err);
// What the buffer holds, or what one read gives: doesn't wait for more.
std::size_t file_read_some(File& file, char* bytes, std::size_t count, int& err);
// Reads one record of a text file, without its line end and what the dialect drops; excess
// characters are passed over. Its length, or -1 at the end.
std::ptrdiff_t file_read_line(File& file, const Dialect& dialect, char* bytes, std::size_t capacity,
                              int& err);
std::ptrdiff_t file_fill(File& file);
int file_close(File& file);
// Switches the descriptor to writing at the end whatever the position (O_APPEND).
void file_set_append(File& file, bool append);

}  // namespace tarn::fio
