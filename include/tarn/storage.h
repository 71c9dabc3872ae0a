/* Storage.
 *
 * One allocator serves the whole process. It has two modes, fixed before the first request:
 *
 *  - system mode, the default: every request goes to the system's allocator;
 *  - own heap, with the environment variable ORVEX_NEW_MEMORY containing "FALSE" in any case:
 *    the library manages one range of addresses below 2 GiB itself, with 4 bytes of overhead a
 *    block, and recognises what the system does not: a pointer freed twice, a pointer that never
 *    was one, a block from `new` given to `free`. Where a program wrote beside its blocks and so
 *    over what the heap keeps there, the next request or release that comes past it fails with 30.
 *
 * The C library's names are not taken over. A program says tarn_malloc where it wants this
 * allocator, or runs with libtarnmalloc.so (linked, or preloaded), which offers the own heap under
 * the plain names.
 *
 * "Fails" below means: the numbered message is reported and the program ends with status 1.
 */
#ifndef TARN_STORAGE_H
#define TARN_STORAGE_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Fixes the mode. Start-up calls it; otherwise the first request does. Again: nothing happens. */
void __initialise_storage_allocator(void);

/* ---- The C and C++ entries. Blocks are aligned to 16 bytes. ---- */

/* A block of `size` bytes, or null. tarn_malloc(0) is a block. Null fails with 294 where the
 * exception mode says so (fault_malloc_failure). */
void* tarn_malloc(size_t size);
/* Null is ignored. Own heap: fails with 377 for what is no live block, and with 302, when the block
 * has been released, for one that came from operator new. */
void tarn_free(void* block);
/* count * size bytes of zero. Null where the product does not fit. */
void* tarn_calloc(size_t count, size_t size);
/* A block of `size` bytes that begins with what `block` held. A null block is tarn_malloc; size 0
 * releases the block and gives null. When no storage can be had: null; the own heap keeps the old
 * block, system mode has released it. */
void* tarn_realloc(void* block, size_t size);
/* operator new: 0 counts as 1. Own heap: when no storage can be had the new handler is called and
 * the request tried again; without a handler the result is null, or failure 294 where bit 5 of the
 * exception mode is set. */
void* tarn_operator_new(size_t size);
/* operator delete. Null is ignored. Own heap: fails with 376 for what is no live block, and with
 * 303, when the block has been released, for one that did not come from operator new. */
void tarn_operator_delete(void* block);

typedef void (*tarn_new_handler)(void);
/* Sets operator new's handler; the result is the one before. While a handler runs it is out of its
 * place, so that it is never entered twice. */
tarn_new_handler set_new_handler(tarn_new_handler handler);

/* ---- What happens when a request fails ---- */

/* Non-zero: a null result of malloc is failure 294. The result is the state before, 0 or 1. */
int fault_malloc_failure(int flag);
/* The exception mode is a word of bits: bit 0, a failing malloc is fatal; bits 2 to 4, failing
 * stdio calls are; bit 5, a failing operator new is. set turns the bits of the mask on, reset turns
 * them off; each gives the word before. */
uint32_t set_exception_mode(uint32_t mask);
uint32_t reset_exception_mode(uint32_t mask);
uint32_t get_exception_mode(void);

/* ---- The core ---- */

/* A block of `length` bytes, or null. In the own heap it is 4-aligned. */
void* __get_memory(intptr_t length);
/* Releases a block, or ends what the block shares. Own heap: fails with 30 for what is no live
 * block. */
void __release_memory(void* block);
/* Own heap: gives back what is above `length`; fails with 30 for what is no live block and for a
 * length above the present one. System mode: does nothing. */
void __shrink_memory(void* block, intptr_t length);
/* Own heap: the length that was asked for; fails with 30 for what is no live block. System mode:
 * the bytes that the system's block has. */
intptr_t __find_memory_size(const void* block);
/* Own heap: 1 for a live block, otherwise 0. System mode: 0. */
int __seek_memory(const void* block);

/* ---- Reports. All are 0 in system mode. ---- */

/* The sum of the lengths of live blocks. */
intptr_t __total_allocated_memory(void);
/* The sum of the free regions, less 1000. */
intptr_t __report_memory_available(void);
/* About the greatest block that can be had without new address space. */
intptr_t __report_largest_memory_block(void);
/* The hash bucket, 0 to 1023, of a block. */
int __find_hash_address(const void* block);
/* Lists on standard output: a negative bucket, all non-empty buckets; a negative length, the
 * bucket's chains; both given, the blocks of one chain. */
void print_memory_chain(int bucket, int length);

/* ---- For a debugging session (own heap) ---- */

/* A breakpoint when the next request gives, or the next release is given, this address. The result
 * is the address before; null is off. */
void* __set_break_when_allocated(void* address);
void* __set_break_when_freed(void* address);
/* Touches that address when a block that holds it is released, so that a data breakpoint fires. */
void __data_break_addr(void* address);
/* Non-zero: a line for each request and release goes to the file dumpmem.dbg; 0 closes it. */
void dump_memory_info(int flag);

/* Allocation events: with a flag other than 0, each is counted and printed. */
void SET_DEBUG_ALLOCATE_h(const int32_t* flag) TARN_LINK_NAME("SET_DEBUG_ALLOCATE#");
/* The event at which to stop in the debugger; -1, which it is at the start, for none. */
void SET_DEBUG_ALLOCATE_BREAK_NUMBER_h(const int32_t* number)
    TARN_LINK_NAME("SET_DEBUG_ALLOCATE_BREAK_NUMBER#");
/* Counts one event and prints it as printf does. */
void increment_allocate_event(const char* format, ...) __attribute__((format(printf, 1, 2)));
int32_t get_allocate_event_count(void);

/* ---- Polled critical sections ---- */

/* A section is a counter, -1 when free. Entering adds 1 atomically; a result above 0 means that it
 * is held, and scs_enter1 then waits until the caller holds it. Leaving subtracts 1. */
void scs_enter1(int32_t* counter);
void scs_leave1(int32_t* counter);

#ifdef __cplusplus
}
#endif

#endif
