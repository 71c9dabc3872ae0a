// SHARE= between processes: advisory locks, taken only when a program asks for them.
#pragma once

namespace tarn::fio {

inline constexpr int sharing_unspecified = -1;

// Opens a file by open(2) and takes the locks of `sharing` (0x10 nobody else,
// 0x20 others may read, 0x30 others may write, 0x40 and 0x00 both). `access`: 0 read, 1 write,
// 2 both. The descriptor, or -1 with errno set: EAGAIN when another process holds the file
// against it. The locks go with the descriptor.
int open_with_sharing(const char* path, int flags, int access, int sharing);

}  // namespace tarn::fio
