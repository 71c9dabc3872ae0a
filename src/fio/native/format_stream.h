// The format code stream: formats as compilers lay them into a program.
//
// An instruction is a run of 16-bit words. The first holds the opcode in bits 0 to 5 and the
// number of words in bits 6 to 15; operands follow. Text is packed two characters a word, low
// byte first.
#pragma once

#include <cstdint>
#include <vector>

#include "fio/native/format.h"

namespace tarn::fio::native {

// What every stream begins with: an opening parenthesis of three words.
inline constexpr std::uint16_t stream_start = 0x00D9;

// Lays a format down as a stream, behind what `code` holds. A literal too long for the length
// field becomes several instructions. False when an operand doesn't fit its word.
bool encode_format(const Format& format, std::vector<std::uint16_t>& code);

// Takes a stream apart. `end` is null where only the stream itself tells where it ends. Nothing
// in the stream is taken on trust; the result is 0, or the number of the message that tells what
// is wrong with it. In a table that stops before its end instruction, op_stop stands there.
std::int32_t decode_format(const std::uint16_t* code, const std::uint16_t* end, Format& format);

}  // namespace tarn::fio::native
