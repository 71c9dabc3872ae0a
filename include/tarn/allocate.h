/* Fortran's ALLOCATE and DEALLOCATE, and the storage routines that Fortran programs call by name.
 *
 * Sizes are bytes. "Fails" means: the numbered message is reported and the program ends with
 * status 1. Where it runs, a program's allocations are those of tarn/storage.h: with the own heap
 * a block that was released already fails with 30.
 */
#ifndef TARN_ALLOCATE_H
#define TARN_ALLOCATE_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Statements ----
 *
 * `stat` is the variable of STAT=, or null. It is left alone on success; the compiled code has set
 * it to 0. Otherwise it becomes 1 (no storage; DEALLOCATE of nothing), 2 (allocated already), 1001
 * (no shared storage), 1002 and 1003 (a file that can't be mapped for reading, for writing). With
 * neither STAT= nor ERRMSG= a lack of storage fails with 408; a DEALLOCATE of nothing does nothing.
 */

/* An object of `size` bytes; 0 and less count as 0, for which there is a block too. Blocks are
 * aligned to 16 bytes. __ALLOCATE_U fills the object with the byte 0x80, which marks it as
 * undefined. */
void* __ALLOCATE(intptr_t size, int32_t* stat);
void* __ALLOCATE_U(intptr_t size, int32_t* stat);
/* The same for a variable whose pointer is `current`: null, or 0x8080808080808080, for one that
 * isn't allocated. One that is gives status 2 (message 432) where STAT= or ERRMSG= is there;
 * otherwise a block of the same size stays as it is, and any other is released first. New storage is
 * zero. */
void* __ALLOCATE1(intptr_t size, int32_t* stat, void* current);
/* A mapping (of a file, or shared) ends only if __enable_deallocate has just named it. */
void __DEALLOCATE(void* block, int32_t* stat);
void __enable_deallocate(void* mapping);

/* Ahead of an allocation. The text names what the next allocation shares, at most 80 characters,
 * blanks at its end cut: `r:path` the bytes of that file, for reading (it must have as many as the
 * object); `R:path` the same for reading and writing, and the file is made as long as the object;
 * anything else is a name, and every process of this user that allocates under it gets the same
 * bytes, zero at first, until the last of them has let go. The result is the end of the text. */
const char* __ShareNextAllocate(const char* name, intptr_t length);
/* ERRMSG=: blank now, and the catalogue's sentence if the next statement fails. */
void __ErrMsgNextAllocate(char* buffer, intptr_t length);
void end_stat_error_reporting(void);
/* Tells a failure to STAT= and ERRMSG=, or raises it. 1: it was told; 0: number 407, with nobody to
 * tell. */
int32_t report_stat_error(int32_t* stat, int32_t status, int32_t number);
/* Serves the name of __ShareNextAllocate. 0: none is pending; 1: done; 2: failed, with a status. */
int32_t get_shared_memory(intptr_t size, void** result, int32_t* status);
/* The product of two extents; 0x7FFFFFFF for any that is as large, which no allocation gives. */
int32_t __alloc_times(intptr_t first, intptr_t second);

/* ---- Mappings; null where the system refuses, which errno tells ---- */

/* `size`: how many bytes are wanted at least; 0 for as many as the file has. */
void* __map_file_for_reading(const char* path, intptr_t size);
void* __map_file_for_read_write(const char* path, intptr_t size);
/* 1, or 0 for what is no mapping. */
int32_t __unmap_file(void* mapping);
void* __create_interprocess_shared_memory(const char* name, intptr_t size);

/* ---- Storage by name ----
 *
 * A program keeps the address in an integer; -1 says that there was no storage. */

/* The compiler's temporaries. Null fails with 194, a negative address with 195. */
void* GET_STORAGE2_h(intptr_t size) TARN_LINK_NAME("GET_STORAGE2#");
void RETURN_STORAGE1_h(void* block) TARN_LINK_NAME("RETURN_STORAGE1#");

/* Pieces of large blocks of address space, which take memory where they are touched. Shrinking to
 * nothing, or to more than there is, fails with 30; what is no piece is left alone. */
void GET_STORAGE_h(intptr_t* address, const intptr_t* size) TARN_LINK_NAME("GET_STORAGE#");
void RETURN_STORAGE_h(const intptr_t* address) TARN_LINK_NAME("RETURN_STORAGE#");
void SHRINK_STORAGE_h(intptr_t* address, const intptr_t* size) TARN_LINK_NAME("SHRINK_STORAGE#");
/* The same by malloc, free and realloc; and by whole pages of their own. */
void GET_MSTORAGE_h(intptr_t* address, const intptr_t* size) TARN_LINK_NAME("GET_MSTORAGE#");
void RETURN_MSTORAGE_h(const intptr_t* address) TARN_LINK_NAME("RETURN_MSTORAGE#");
void SHRINK_MSTORAGE_h(intptr_t* address, const intptr_t* size) TARN_LINK_NAME("SHRINK_MSTORAGE#");
void GET_GSTORAGE_h(intptr_t* address, const intptr_t* size) TARN_LINK_NAME("GET_GSTORAGE#");
void RETURN_GSTORAGE_h(const intptr_t* address) TARN_LINK_NAME("RETURN_GSTORAGE#");
/* Gives the system back the large blocks of which nothing is in use; how many bytes they were. */
void GIVEBACK_ALLOCATION_BLOCKS_h(intptr_t* freed) TARN_LINK_NAME("GIVEBACK_ALLOCATION_BLOCKS#");
/* Lists the pieces in use on standard output. */
void DBG_DISPLAY_GET_STORAGE_LIST_h(void) TARN_LINK_NAME("DBG_DISPLAY_GET_STORAGE_LIST#");

/* What stands behind them, for C. __shrink_vmalloc gives null for a null block, for a size of 0 or
 * less, and for one above the present. */
void* __vmalloc(intptr_t size);
void __vfree(void* block);
void* __shrink_vmalloc(void* block, intptr_t size);
void* __global_alloc(intptr_t size);
void __global_free(void* block);
intptr_t _freeup_empty_vmalloc_blocks(void);
/* Lists the large blocks, with their pieces in use and their free pieces where that is asked. */
void _print_vheaps(int32_t allocated, int32_t free);
void _print_vheaps_file(int32_t allocated, int32_t free, const char* name);
void _print_vheaps_fp(int32_t allocated, int32_t free, FILE* stream);

#ifdef __cplusplus
}
#endif

#endif
