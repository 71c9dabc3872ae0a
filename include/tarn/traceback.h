/* Routines and lines of code addresses, tracebacks, and the run trace.
 *
 * Names and lines come from the map that tarnmap adds to a linked program (the drivers run it); a
 * program without one is known by its symbols alone. Nothing here fails: what isn't known is left
 * out. None of it is for two threads at once.
 */
#ifndef TARN_TRACEBACK_H
#define TARN_TRACEBACK_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A text that grows in the caller's storage: `size` bytes at `data`, of which `length` are used. It
 * stays terminated by a zero; what doesn't fit is left out. */
typedef struct tarn_text {
    char* data;
    intptr_t size;
    intptr_t length;
} tarn_text;

/* One routine of a traceback. `recursion` counts how often it came again. */
typedef struct traceback_routine {
    uintptr_t start;
    uint32_t recursion;
    uint32_t unused1;
    uintptr_t offset; /* of the code address from start */
    uintptr_t unused2;
    char name[100];
} traceback_routine;

typedef struct tarn_map_entry {
    uintptr_t address;
    const char* name; /* valid until the next call */
} tarn_map_entry;

/* Of a module that has registered: where it lies, and its routine table. */
typedef struct tarn_module_map {
    uintptr_t instance, start, end;
    uintptr_t count;
    uintptr_t table;
} tarn_module_map;

typedef struct tarn_function_record {
    uintptr_t address;
    char name[256];
} tarn_function_record;

/* ---- Names and lines ---- */

/* The routine that holds an address, or null. */
const tarn_map_entry* search_map_file_header(const void* address);
/* Fills the record, and gives its name: " routine at address ..." where none is known. */
const char* Find_routine_name(const void* address, traceback_routine* record);
/* The name, 80 characters at most and a zero, and the address's distance from the routine's start.
 */
void __find_function_information(const void* address, char* name, intptr_t* offset);
/* The same for the routine that called the caller. */
void __find_caller_routine(char* name, intptr_t* offset);
/* -1: found, the file's name (512 characters at most) and the line are stored. 1: not found.
 * 0: there is no map. */
int32_t where_is_location(const void* address, char* file, int32_t* line);
/* Appends " in file F at line N"; 0 where that isn't known. */
int32_t get_lineno_from_address(const void* address, tarn_text* text);
/* Closes the files that were opened for all this. */
void close_module_file(void);

/* ---- Modules ---- */

void Add_map_address_to_list(void* instance, const void* map);
const void* __Tarnick_map_address(int32_t index); /* null: no such module, or it has no map */
int32_t get_module_map_header(const char* path, tarn_module_map* header); /* 1: found */
int32_t get_function_map_record(const void* instance, uint32_t index, tarn_function_record* record);

/* ---- Tracebacks ---- */

/* The frame above one in a chain of frame pointers, or -1 (as a pointer) at what can't be read. */
void* __check_stack_at(void* frame);
/* Appends a traceback from a code address and its frame: 8 routines, or as many as setup_traceback
 * allows, recursion in one line. */
void Add_Traceback_routine(tarn_text* text, const void* address, void* frame);
void Add_routine_name(tarn_text* text, const traceback_routine* record);
/* Replaces the text by all frames from the caller's on, the outermost first. */
void __get_traceback_information(tarn_text* text);
void __Add_Traceback_information(const void* address, void* frame, tarn_text* text);

/* ---- The run trace: what code announces that it has reached ---- */

/* Holds the last `*size` routines, at most 80; 0 or less gives it up. */
void CREATECALLSTACK_h(const int32_t* size) TARN_LINK_NAME("CREATECALLSTACK#");
/* Appends the entries to a file, which the first call names (and empties). */
void EXPORTCALLSTACK_h(const char* file, ptrdiff_t length) TARN_LINK_NAME("EXPORTCALLSTACK#");
/* The capacity; -1 while there is no call stack, but 0 for the first event of all, which only begins
 * the trace. */
int32_t __runtrace(int32_t line, const char* routine, const char* file);
/* The same; without a call stack it writes the event to the console. */
void RUN_TRACE_h(const int32_t* line, const char* routine, const char* file,
                 ptrdiff_t routine_length, ptrdiff_t file_length) TARN_LINK_NAME("RUN_TRACE#");
void DEBUG_SOURCE_h(const int32_t* line) TARN_LINK_NAME("DEBUG_SOURCE#");
void ROUTINE_TRACE_h(const char* routine, ptrdiff_t length) TARN_LINK_NAME("ROUTINE_TRACE#");

#ifdef __cplusplus
}
#endif

#endif
