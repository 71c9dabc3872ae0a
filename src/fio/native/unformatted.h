// What the halves of the unformatted transfer share: the statement's record in the I/O buffer, and
// the records of files that a gnu statement connected.
#pragma once

#include "fio/native/io_type.h"

namespace tarn::fio::native {

inline constexpr std::int32_t corrupt_message = 110;
inline constexpr std::int32_t too_short_message = 158;
inline constexpr std::int32_t too_long_for_direct_message = 68;
inline constexpr std::int32_t too_big_message = 130;

inline bool is_driver(const Unit& unit) {
    return unit.kind == UnitKind::driver;
}
inline std::int64_t buffered_bytes(const IO_type& io) {
    return io.record_cursor - io.record_start;
}
// The buffer as a record finds it: empty.
void empty_buffer(IO_type& io);
// Makes the I/O buffer hold at least `size` bytes of record; it is asked for in growing steps, by
// what has arrived and never by what a length says.
void widen_buffer(IO_type& io, std::int64_t size);

// Bytes out of the record at hand and into it.
[[nodiscard]] bool take_bytes(IO_type& io, char* bytes, std::int64_t count);
[[nodiscard]] bool put_bytes(IO_type& io, const char* bytes, std::int64_t count);

// The record in front of the file's position, which moves behind it.
[[nodiscard]] bool RSU2__();
// One direct record, found already.
[[nodiscard]] bool RDU2__();

// A record of a gnu connection goes the way that its own statements go.
[[nodiscard]] bool begin_gnu_record(IO_type& io);
[[nodiscard]] bool move_gnu_bytes(IO_type& io, char* bytes, std::int32_t size, std::int64_t count);
[[nodiscard]] bool end_gnu_record(IO_type& io);

}  // namespace tarn::fio::native
