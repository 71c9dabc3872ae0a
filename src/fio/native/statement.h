// Opening and ending statements: the packed form (one call with all specifiers) and the per-item
// form (one call for each specifier).
#pragma once

#include <cstdarg>

#include "fio/native/state.h"

namespace tarn::fio::native {

// Opens a packed statement: `words` holds the pairs and the lengths. May leave through a label.
void IOSTART__(ActionCode action, const std::int16_t* count, va_list words,
               const void* return_address);

// One specifier call of the per-item form; `length` is -1 for what isn't CHARACTER.
void parseEntryCode(std::uint32_t code, void* value, std::ptrdiff_t length, ActionCode action);

// The end of a formatted statement, of an unformatted read, and of unformatted writes: releases
// the record, aborted or not. How the statement went.
enum class Road { none = 0, err = 1, end = 2, eor = 3 };
Road end_formatted_statement();
Road end_unformatted_read();
Road end_unformatted_write(bool direct);

// Items of an unformatted statement: `count` elements of `size` bytes; size 1 means `length` bytes.
void transfer_unformatted(void* item, std::int64_t count, std::int32_t size, std::ptrdiff_t length);

// Ends the statement at hand: an item or end call that failed leaves it, one that went well
// carries on.
inline void conclude(bool go_on) {
    if (!go_on) leave_statement();
}

// No statement is at hand, or it is over: an item call has nothing to do.
bool items_are_ignored();

}  // namespace tarn::fio::native
