// What ALLOCATE and DEALLOCATE compile to.
//
// A statement may state things ahead of its allocation (a share name, an ERRMSG= buffer, the
// mapping that a DEALLOCATE may end). Each waits for the next allocation, which uses it up. The
// calls of one statement come from one thread, with no other such statement between them.
#pragma once

#include <cstdint>
#include <string_view>

#include "storage/mappings.h"

namespace tarn::storage {

inline constexpr std::int32_t stat_failed = 1;
inline constexpr std::int32_t stat_allocated_already = 2;
inline constexpr std::int32_t stat_no_shared_memory = 1001;
inline constexpr std::int32_t stat_no_file_for_reading = 1002;
inline constexpr std::int32_t stat_no_file_for_writing = 1003;

// A size that overflowed; no request of it is served.
inline constexpr std::intptr_t overflowed_size = 0x7FFFFFFF;

struct PendingStatement {
    char* errmsg = nullptr;
    std::intptr_t errmsg_length = 0;
    void* deallocate_mapping = nullptr;
};
PendingStatement& pending_statement();

// The text without trailing white space, cut to what the cell holds.
void share_next_allocate(std::string_view name);
bool share_name_pending();
// ERRMSG=, which is blanked at once.
void errmsg_next_allocate(char* buffer, std::intptr_t length);

// Tells STAT= and ERRMSG= where they are given; where neither is, the number is a failure, unless
// it is that of a DEALLOCATE of nothing. True: it was told.
bool report_stat_error(std::int32_t* stat, std::int32_t status, int number);

// A negative size counts as 0, for which there is a block too. Null: STAT= or ERRMSG= has been
// told.
void* allocate_object(std::intptr_t size, std::int32_t* stat);
void* allocate_undefined_object(std::intptr_t size, std::int32_t* stat);
// The object may be allocated already; its storage is zero at first.
void* allocate_again(std::intptr_t size, std::int32_t* stat, void* current);
void deallocate_object(void* pointer, std::int32_t* stat);

// Serves the pending share name.
enum class Shared : std::int32_t { no_name_pending = 0, done = 1, failed = 2 };
Shared get_shared_memory(std::intptr_t size, void*& result, std::int32_t& status);

// Their product; `overflowed_size` for one that is as large.
std::int32_t alloc_times(std::intptr_t first, std::intptr_t second);

}  // namespace tarn::storage
