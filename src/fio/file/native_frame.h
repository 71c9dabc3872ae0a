// What stands around a sequential unformatted record in the library's own layout. All numbers are
// little-endian; T is the number of data bytes.
//
//     short       1 byte T, below 240     data     1 byte T
//     long        255, 4 bytes T          data     4 bytes T, 255
//     very long   254, 8 bytes T          data     8 bytes T, 254    (read, never written)
//
// The byte next to the neighbouring record tells the form at either end, so that a file can be
// walked both ways. A long form may hold any T.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio {

inline constexpr std::int64_t longest_short_record = 239;
inline constexpr std::int64_t longest_long_record = UINT32_MAX;
inline constexpr std::size_t short_frame = 1;
inline constexpr std::size_t long_frame = 5;
inline constexpr std::size_t very_long_frame = 9;

// Bytes of the frame at each end of a record, by its first or last byte; 0: no record has it.
constexpr std::size_t native_frame_size(unsigned char marker) {
    if (marker <= longest_short_record) return short_frame;
    return marker == 255 ? long_frame : marker == 254 ? very_long_frame : 0;
}
// The form in which a record is written.
constexpr std::size_t native_frame_for(std::int64_t length) {
    return length <= longest_short_record ? short_frame : long_frame;
}

// T of the frame of `size` bytes in front of a record, and of the one behind it; -1: the bytes
// aren't such a frame.
std::int64_t load_native_front(const char* bytes, std::size_t size);
std::int64_t load_native_back(const char* bytes, std::size_t size);
void store_native_front(char* bytes, std::size_t size, std::int64_t length);
void store_native_back(char* bytes, std::size_t size, std::int64_t length);

// Where the record starts that ends at `end`, by the last `count` bytes before there (as many as a
// frame may have, or all there are); -1: no whole record ends there.
std::int64_t native_record_start(std::int64_t end, const char* bytes, std::size_t count);

}  // namespace tarn::fio
