// Fortran handles: files by a small number, for programs that want bytes or lines of text without
// I/O statements.
//
// Nothing here raises a failure but for one: no number is left. Every routine that gives an `int`
// gives a platform error number, 0 when all went well, and the handle stays usable after an error.
//
// The files are those of the file layer, with a buffer of their own size. The table has a lock, so
// that threads may each work with handles of their own; a handle has none.
#pragma once

#include <cstdint>
#include <string_view>

#include "fio/file/file.h"

namespace tarn::fio::handles {

using Number = std::int16_t;
inline constexpr Number none = -1;
inline constexpr Number first_number = 5;

inline constexpr std::size_t buffer_size = 4096;

inline constexpr int error_wrong_mode = 5;  // also a write on a handle for reading
inline constexpr int error_unknown = 6;     // also a read on a handle for writing
inline constexpr int error_wrong_parameter = 87;
inline constexpr int error_short_write = 112;  // the disk is full
inline constexpr int error_wrong_name = 123;   // with a zero byte in it
inline constexpr int error_before_start = 131;

// Bits of a mode word. The lowest that is set decides how `open` opens the file; all three say
// afterwards what the handle is for.
inline constexpr int mode_read = 1;
inline constexpr int mode_create = 2;  // for writing; the file is emptied
inline constexpr int mode_update = 4;  // for both; the file is kept
// What the entries pass: sharing, in the upper half, counts only in `open_shared`.
inline constexpr int mode_word_openr = 1;
inline constexpr int mode_word_openw = 18;
inline constexpr int mode_word_openrw = 20;

struct Handle {
    Handle* next = nullptr;  // in its bucket, or in the list of free ones
    Number number = none;
    std::int16_t mode = 0;
    File file;
};

// Opens a file by a mode word; the handle's number, or `none`. No locks are taken: a file may be
// opened as often as a program likes.
Number open(std::string_view name, int mode, int& error);
// The same with sharing. Bits 0 to 2: 0 reads, 1 writes, 2 does both; a file is never emptied. Bits
// 4 to 6: 0x10 nobody else may have the file, 0x20 others may read, 0x30 write, 0x40 both; 0 asks
// for nothing. Where others may write, nothing is held back in a buffer.
Number open_shared(std::string_view name, int mode, int& error);
// Wraps an open descriptor, which the handle owns from then on; `none` when that can't be.
Number adopt(int descriptor, int mode);
// `remove`: the file goes too, whatever became of its last bytes.
int close(Number number, bool remove);

// One read of a pipe or a terminal, otherwise as much as there is.
int read(Number number, char* bytes, std::int64_t count, std::int64_t& done);
// A line into `text`, neither padded nor terminated; its length, or -1 at the end of the file.
int read_line(Number number, char* text, std::int64_t capacity, std::int64_t& length);
int write(Number number, const char* bytes, std::int64_t count);
int write_line(Number number, const char* text, std::int64_t length);  // and CR LF

int position(Number number, std::int64_t& position);
// Moves, but not behind the end of the file; `position`: where that is.
int seek(Number number, std::int64_t target, std::int64_t& position);
// A position of 32 bits: a negative one stands for a place behind 2 GiB where the file is as long.
int seek32(Number number, std::int32_t target, std::int64_t& position);
int seek_to_end(Number number, std::int64_t& position);
int make_empty(Number number);  // what waits to be written is dropped
int truncate(Number number);    // behind the logical position
// Writes out what the buffer holds. A shared file is committed to its disk.
int flush(Number number);

int unbuffer(Number number);
int keep_tabs(Number number);
int descriptor_of(Number number);       // -1: unknown
bool is_repositionable(Number number);  // a disk file
Number find(std::string_view path);     // by path, or by being the same file; `none`
// The path of a handle, which stays until it is closed; null: unknown.
const std::string* path_of(Number number);

// Handles that are opened from now on have buffers: the start of a Fortran program.
void set_buffered_default();
// Writes out all buffers. What can't be written is lost; the first such file is told in `lost`.
struct Lost {
    int error = 0;
    std::string path;
};
void flush_all(Lost& lost);
// The same for the end of the program, and closes the files. A loss is a failure.
void finish();

}  // namespace tarn::fio::handles
