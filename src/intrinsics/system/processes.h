// Other programs.
//
// Whatever the program at hand has written, to units, handles and C's standard output, is on its
// way before another one starts: it may read it, and its own output comes behind. Only a unit in
// the middle of a statement keeps what it holds.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::intrinsics {

enum class Wait { for_end, no };

inline constexpr int spawn_failed = -1;
inline constexpr int nothing_to_spawn = -2;

// Blanks separate words; "..." and '...' hold words together, and a backslash before a quotation
// mark makes it a character. No shell takes part.
std::vector<std::string> split_words(std::string_view text);

// Starts a program with arguments; `program` may hold some itself, unless it is a file's name as it
// stands. It is looked for along PATH and then in the current folder. Its exit code (128 and the
// signal's number for one that a signal ended), or 0 without a wait; or one of the numbers above,
// with errno.
int spawn(Wait wait, std::string_view program, std::string_view arguments);
// Runs a command by the shell: 0, or errno where that couldn't be.
int run_command(std::string_view command);
// The same, but the shell's status as wait() gives it; -1 with errno where it couldn't be.
int run_by_shell(std::string_view command);
// Starts one by the shell and doesn't wait. False, with errno: it couldn't be.
bool start_by_shell(std::string_view command);

}  // namespace tarn::intrinsics
