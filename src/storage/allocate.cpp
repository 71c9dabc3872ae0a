#include "storage/allocate.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <malloc.h>

#include "failure/failure.h"
#include "failure/report.h"
#include "storage/storage.h"
#include "storage/trace.h"

namespace tarn::storage {

namespace {

constexpr int deallocate_failed = 407;
constexpr int allocate_failed = 408;
constexpr int allocated_already = 432;

constexpr std::intptr_t extra_bytes = 4;
constexpr std::uintptr_t undefined_pointer = 0x8080808080808080;

constinit PendingStatement the_statement;

[[gnu::format(printf, 1, 2)]] void tell_event(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    increment_allocate_event(format, arguments);
    va_end(arguments);
}

std::uintptr_t number_of(const void* pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

// The system's allocator rounds its sizes, but a second ALLOCATE has to know whether its length is
// that of the first. A block of this file ends in a word that only its own address and length give.
std::uintptr_t length_mark(const void* block, std::intptr_t length) {
    return number_of(block) * 0x9E3779B97F4A7C15U ^ static_cast<std::uintptr_t>(length) ^
           0xABCDEF12ABCDEF12U;
}

void mark_length(void* block, std::intptr_t length) {
    const std::uintptr_t mark = length_mark(block, length);
    std::memcpy(static_cast<char*>(block) + length, &mark, sizeof mark);
}

bool has_length(void* block, std::intptr_t length) {
    if (mode() == Mode::own) return seek_memory(block) && find_memory_size(block) == length;
    if (is_mapped(block)) return false;
    constexpr std::intptr_t mark_size = sizeof(std::uintptr_t);
    if (static_cast<std::intptr_t>(malloc_usable_size(block)) < length + mark_size) return false;
    std::uintptr_t mark = 0;
    std::memcpy(&mark, static_cast<char*>(block) + length, sizeof mark);
    return mark == length_mark(block, length);
}

// The own heap puts what compiled code gets on a boundary of 16 and knows its padding by itself.
void* get_block(std::intptr_t length) {
    if (mode() == Mode::own) {
        return get_aligned_memory(static_cast<std::size_t>(length), compiled_alignment);
    }
    std::intptr_t bytes = 0;
    if (__builtin_add_overflow(length, sizeof(std::uintptr_t), &bytes)) return nullptr;
    void* block = std::malloc(static_cast<std::size_t>(bytes));
    if (block != nullptr) mark_length(block, length);
    return block;
}

// The bytes of a request; -1: there can't be so many.
std::intptr_t length_of(std::intptr_t size) {
    if (size == overflowed_size) return -1;
    std::intptr_t length = 0;
    if (__builtin_add_overflow(std::max<std::intptr_t>(size, 0), extra_bytes, &length)) return -1;
    return length;
}

// A file or a shared storage has no more bytes than the object.
std::intptr_t shared_size(std::intptr_t size) {
    return size == overflowed_size ? -1 : std::max<std::intptr_t>(size, 0);
}

void* finish_allocate(void* block, std::intptr_t size) {
    if (block != nullptr && allocate_events().allocate_debug != 0) {
        const auto address = static_cast<Address>(number_of(block));
        tell_event("***ALLOCATE Z'%016lx' size %ld (hash %u) (Event %d)\n", number_of(block), size,
                   hash_bucket(address - 4), allocate_events().allocate_events);
    }
    the_statement.errmsg = nullptr;
    return block;
}

struct Sharing {
    MappedFor purpose;
    std::int32_t status;  // of a failure
    const char* path;
};

// `r:path` maps a file for reading, `R:path` for reading and writing; any other name is one that
// processes share.
Sharing sharing_of(const char* name) {
    if (name[0] == 0 || name[1] != ':') return {MappedFor::sharing, stat_no_shared_memory, name};
    if (name[0] >= 'a' && name[0] <= 'z') {
        return {MappedFor::reading, stat_no_file_for_reading, name + 2};
    }
    return {MappedFor::read_write, stat_no_file_for_writing, name + 2};
}

}  // namespace

PendingStatement& pending_statement() {
    return the_statement;
}

void share_next_allocate(std::string_view name) {
    constexpr std::string_view white = " \t\r\n\f\v";
    const std::size_t last = name.find_last_not_of(white);
    name = name.substr(0, last == name.npos ? 0 : last + 1);
    auto& cell = state().pending_share_name;
    const std::size_t count = std::min(name.size(), sizeof cell - 1);
    std::memcpy(cell, name.data(), count);
    cell[count] = 0;
}

bool share_name_pending() {
    return state().pending_share_name[0] != 0;
}

void errmsg_next_allocate(char* buffer, std::intptr_t length) {
    if (length <= 0) return;
    the_statement.errmsg = buffer;
    the_statement.errmsg_length = length;
    std::memset(buffer, ' ', static_cast<std::size_t>(length));
}

bool report_stat_error(std::int32_t* stat, std::int32_t status, int number) {
    bool reported = false;
    if (stat != nullptr) {
        *stat = status;
        reported = true;
    }
    if (the_statement.errmsg != nullptr) {
        const std::string_view text = failure::plain_text(number);
        const auto room = static_cast<std::size_t>(the_statement.errmsg_length);
        const std::size_t count = std::min(text.size(), room);
        std::memcpy(the_statement.errmsg, text.data(), count);
        std::memset(the_statement.errmsg + count, ' ', room - count);
        the_statement.errmsg = nullptr;
        reported = true;
    }
    if (!reported && number != deallocate_failed) failure::c_fail(number);
    return reported;
}

void* allocate_object(std::intptr_t size, std::int32_t* stat) {
    const std::intptr_t length = length_of(size);
    void* block = nullptr;
    if (share_name_pending()) {
        std::int32_t ignored = 0;
        get_shared_memory(shared_size(size), block, ignored);
    } else if (length > 0) {
        block = get_block(length);
    }
    if (block == nullptr) report_stat_error(stat, stat_failed, allocate_failed);
    return finish_allocate(block, size);
}

void* allocate_undefined_object(std::intptr_t size, std::int32_t* stat) {
    void* block = allocate_object(size, stat);
    if (block != nullptr && size > 0) std::memset(block, 0x80, static_cast<std::size_t>(size));
    return block;
}

void* allocate_again(std::intptr_t size, std::int32_t* stat, void* current) {
    const std::intptr_t length = length_of(size);
    if (current != nullptr && number_of(current) != undefined_pointer) {
        if (stat != nullptr || the_statement.errmsg != nullptr) {
            report_stat_error(stat, stat_allocated_already, allocated_already);
            return nullptr;
        }
        if (length > 0 && has_length(current, length)) return current;
        deallocate_object(current, nullptr);
    }
    void* block = nullptr;
    std::int32_t status = stat_failed;
    if (get_shared_memory(shared_size(size), block, status) == Shared::no_name_pending &&
        length > 0) {
        block = get_block(length);
        if (block != nullptr) std::memset(block, 0, static_cast<std::size_t>(length));
    }
    if (block == nullptr) report_stat_error(stat, status, allocate_failed);
    return finish_allocate(block, size);
}

void deallocate_object(void* pointer, std::int32_t* stat) {
    const void* enabled = the_statement.deallocate_mapping;
    the_statement.deallocate_mapping = nullptr;
    if (pointer != nullptr && is_mapped(pointer)) {
        if (pointer == enabled) unmap(pointer);
        return;
    }
    if (allocate_events().allocate_debug != 0) {
        tell_event("***DEALLOCATE Z'%016lx' (Event %d)\n", number_of(pointer),
                   allocate_events().allocate_events);
    }
    if (pointer == nullptr) {
        report_stat_error(stat, stat_failed, deallocate_failed);
        return;
    }
    release_memory(pointer);
    the_statement.errmsg = nullptr;
}

Shared get_shared_memory(std::intptr_t size, void*& result, std::int32_t& status) {
    if (!share_name_pending()) return Shared::no_name_pending;
    char name[sizeof state().pending_share_name];
    std::memcpy(name, state().pending_share_name, sizeof name);
    state().pending_share_name[0] = 0;
    const Sharing sharing = sharing_of(name);
    result = nullptr;
    if (size >= 0) {
        result = sharing.purpose == MappedFor::sharing
                     ? create_interprocess_shared_memory(name, size)
                     : map_file(sharing.path, size, sharing.purpose);
    }
    if (result != nullptr) return Shared::done;
    status = sharing.status;
    return Shared::failed;
}

std::int32_t alloc_times(std::intptr_t first, std::intptr_t second) {
    std::intptr_t product = 0;
    if (__builtin_mul_overflow(first, second, &product)) {
        return (first < 0) == (second < 0) ? static_cast<std::int32_t>(overflowed_size) : 0;
    }
    return static_cast<std::int32_t>(
        std::clamp<std::intptr_t>(product, INT32_MIN, overflowed_size));
}

}  // namespace tarn::storage
