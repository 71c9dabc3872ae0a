// Records built and found in place, in a file's own buffer.
//
// Output: a record grows at the buffer's write index, behind the completed records that wait
// there, so that a finished record is already where it has to be. Input: a record is handed out
// where it lies in the buffer, with its line end found by one scan. A record of any length stays
// contiguous: the buffer makes room by writing or dropping what precedes it, then by growing.
//
// `err` is an errno value, 0 when all went well. It is set only on failure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fio/file/file.h"

namespace tarn::fio {

// Where an output record stands. `limit` is the end of the room at hand.
struct OutputRoom {
    char* begin = nullptr;
    char* limit = nullptr;
};

// The place where the next record is built, with at least `need` bytes of room. A file that was
// being read is first brought to its logical position. When earlier records can't be written,
// `err` is set and the room is valid all the same.
OutputRoom make_place_for_record(File& file, std::size_t need, int& err);
inline OutputRoom begin_record(File& file, std::size_t need, int& err) {
    // The usual record follows another one that waits in the buffer.
    if (file.dirty && file.write_index == file.data_count &&
        file.capacity - file.write_index >= need) {
        return {file.buffer + file.write_index, file.buffer + file.capacity};
    }
    return make_place_for_record(file, need, err);
}

// More room for the record under construction, whose first `length` bytes are to be kept.
OutputRoom grow_record(File& file, std::size_t length, std::size_t need, int& err);

// Makes the record's first `length` bytes part of the file. When the buffer is more than half full,
// its whole blocks leave (`write_blocks`); all of it when `now` asks for it. `write_out` does that
// at any time.
void write_out(File& file, int& err);
void write_blocks(File& file, int& err);
inline void end_record(File& file, std::size_t length, bool now, int& err) {
    file.write_index += length;
    file.data_count = file.write_index;
    file.logical_position += static_cast<std::int64_t>(length);
    file.dirty = file.dirty || length > 0;
    if (now) {
        write_out(file, err);
    } else if (file.write_index > file.capacity / 2) {
        write_blocks(file, err);
    }
}

// A record lying in the buffer.
struct InputRecord {
    char* begin = nullptr;
    std::size_t length = 0;    // without the line end
    std::size_t consumed = 0;  // with it
    bool terminated = false;   // a line end was there (the last record may lack one)
};

// Finds the record at the logical position and leaves the position at its start; false at the end
// of the file. A carriage return directly before the LF belongs to the line end.
bool find_record(File& file, InputRecord& record, int& err);

// The record that `line_feed` ends.
inline InputRecord line_record(const File& file, const char* line_feed) {
    char* const begin = file.buffer + file.read_index;
    auto length = static_cast<std::size_t>(line_feed - begin);
    const std::size_t consumed = length + 1;
    if (length > 0 && begin[length - 1] == '\r') --length;
    return {begin, length, consumed, true};
}

// As `find_record`, but only if the buffer has the whole record; false: nothing has happened.
inline bool find_buffered_record(const File& file, InputRecord& record) {
    if (file.dirty || file.read_index == file.data_count) return false;
    const void* const line_feed =
        std::memchr(file.buffer + file.read_index, '\n', file.data_count - file.read_index);
    if (line_feed == nullptr) return false;
    record = line_record(file, static_cast<const char*>(line_feed));
    return true;
}

// Makes `count` bytes from the logical position on contiguous in the buffer, as far as the file
// has them; the number at hand.
std::size_t peek_bytes(File& file, std::size_t count, char*& begin, int& err);

// Puts what stands before the logical position into a buffer that has nothing of it, so that going
// back record by record needn't read for each of them. A failure is met by who needs the bytes.
void look_back(File& file);

// Moves the logical position on by `count` bytes of the buffer.
inline void consume(File& file, std::size_t count) {
    file.read_index += count;
    file.logical_position += static_cast<std::int64_t>(count);
}

// Puts the logical position anywhere, also beyond the end of the file.
void move_to(File& file, std::int64_t target, int& err);

// Bytes without lines. Many of them go straight between the file and the program's memory.
//
// Puts `count` bytes at the logical position.
void put_bytes(File& file, const char* bytes, std::size_t count, int& err);
// Takes `count` bytes from the logical position on, as far as the file has them; the number taken.
std::size_t take_bytes(File& file, char* bytes, std::size_t count, int& err);
// Moves the logical position on by `count` bytes, also beyond the end of a file with places; where
// there are none the bytes are read, and the end of the file ends the move.
void skip_bytes(File& file, std::int64_t count, int& err);
// Puts `count` bytes in place of others that have been put before the logical position.
void overwrite_bytes(File& file, std::int64_t position, const char* bytes, std::size_t count,
                     int& err);

// Gives up what was put from `position` on, as far as it got: the file ends there again.
void take_back(File& file, std::int64_t position, int& err);

// Cuts the file at its logical position, if it is longer.
void cut_here(File& file, int& err);

}  // namespace tarn::fio
