/* Fortran handles: files by a small number, for programs that want bytes or lines of text without
 * I/O statements.
 *
 *     int16_t error, handle = __fortran_open("notes.txt", TARN_HANDLE_READ, &error);
 *     char line[200];
 *     int32_t length;
 *     while (READFA_h(line, &handle, &length, &error, sizeof line), error == 0 && length >= 0)
 *         printf("%.*s\n", (int)length, line);
 *     CLOSEF_h(&handle, &error);
 *
 * Every call gives a 16-bit error: 0, or a platform error number. 2 there is no such file, 3 no
 * such path, 4 too many files are open, 5 access is denied (also: a wrong mode, a write on a handle
 * for reading, a directory), 6 no such handle (also: a read on a handle for writing), 32 the file
 * is in use, 87 a negative count, 109 nobody reads the pipe any more, 112 the disk is full, 123 a
 * name with a zero byte in it, 131 a position before the file's start, 206 a name that is too long.
 * The handle stays usable after any of them; only a close closes it all the same. The one fatal
 * case is failure 116: no number is left.
 *
 * Names are paths of the system: case counts, a backslash is a character as any other. White space
 * behind a name is cut.
 *
 * Where a program has a Fortran main program, a handle has a buffer of 4096 bytes: transfers of at
 * most that many bytes go through it and mostly need no system call. In a C program they leave at
 * once, unless __init_f95_io was called. Buffers are written out by a close, a flush and the end of
 * the program, where a file that can't be written is failure 117 (or a message with its name).
 *
 * Threads may each work with handles of their own; a handle serves one thread at a time.
 */
#ifndef TARN_HANDLES_H
#define TARN_HANDLES_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- From C, with values ---- */

/* Mode words of __fortran_open: reads a file that is there; writes a file, which is emptied or
 * made; reads and writes one, which is kept or made. The lowest bit that is set counts; none:
 * error 5. */
enum { TARN_HANDLE_READ = 1, TARN_HANDLE_WRITE = 2, TARN_HANDLE_UPDATE = 4 };
/* Opens a file; its handle, from 5 on, or -1. No lock is taken. */
int16_t __fortran_open(const char* name, int mode, int16_t* error);

/* Modes of __fortran_share_open: one of the first three, and one of the others. No file is emptied.
 * Sharing takes advisory locks, which other openings that ask for sharing respect, also those of
 * OPEN with SHARE=; 0 asks for nothing. With SHARE_NONE and SHARE_READ the handle may have a
 * buffer; otherwise others may write, and nothing is held back. */
enum {
    TARN_SHARED_READ = 0,
    TARN_SHARED_WRITE = 1,
    TARN_SHARED_UPDATE = 2,
    TARN_SHARE_NONE = 0x10,
    TARN_SHARE_READ = 0x20,
    TARN_SHARE_WRITE = 0x30,
    TARN_SHARE_ALL = 0x40
};
int16_t __fortran_share_open(const char* name, int mode, int16_t* error);

/* Closes; with `remove` the file is deleted too. The result is the error. The next file that is
 * opened may get the number again. */
int __fortran_closef(int16_t handle, int remove);
/* Makes a handle of an open descriptor, which belongs to the handle from then on; `mode` as above
 * says what it is for. -1: no such descriptor, or no number is left. */
int16_t __allocate_fortran_handle(int descriptor, int mode);
/* The descriptor of a handle, or -1. What the buffer holds isn't in the file yet. */
int __translate_fortran_handle(int16_t handle);
/* Writes the buffer out; a file that is shared is committed to its disk. The result is the error.
 */
int __flush_fortran_handle(int16_t handle);
/* Writes the buffer out and does without one from then on. The result is the error. */
int __unbuffer_handle(int16_t handle);
/* 1 for a handle of a disk file; 0 for a pipe, a terminal or an unknown handle. Seeking in those
 * and cutting them does nothing. */
int __is_repositionable(int16_t handle);
/* The handle of a file, by its path or any other name of the same file; or -1. */
int16_t __find_handle_from_path(const char* path);
/* The full path of a handle, until it is closed, and its length; or null and -1. */
const char* __find_path_from_handle(int16_t handle, int32_t* length);
/* Writes out all buffers and closes all files: the end of a program does it. */
void __flush_fortran_io(void);
/* Handles that are opened from now on have buffers. The start of a Fortran program does it. */
void __init_f95_io(void);

/* ---- As Fortran calls them: by address, lengths of texts by value behind the last ---- */

void OPENR_h(const char* name, int16_t* handle, int16_t* error, intptr_t length)
    TARN_LINK_NAME("OPENR#");
void OPENW_h(const char* name, int16_t* handle, int16_t* error, intptr_t length)
    TARN_LINK_NAME("OPENW#");
void OPENRW_h(const char* name, int16_t* handle, int16_t* error, intptr_t length)
    TARN_LINK_NAME("OPENRW#");
/* With a mode of __fortran_share_open. */
void OPENF_h(const char* name, const int16_t* mode, int16_t* handle, int16_t* error,
             intptr_t length) TARN_LINK_NAME("OPENF#");
void CLOSEF_h(const int16_t* handle, int16_t* error) TARN_LINK_NAME("CLOSEF#");
void CLOSEFD_h(const int16_t* handle, int16_t* error) TARN_LINK_NAME("CLOSEFD#"); /* and deletes */

/* Reads at most `count` bytes. Fewer, or none, are the end of the file and no error; a pipe or a
 * terminal gives what is there. */
void READF_h(void* buffer, const int16_t* handle, const int32_t* count, int32_t* bytes_read,
             int16_t* error) TARN_LINK_NAME("READF#");
/* Reads a line, which ends in a line feed. Carriage returns and Ctrl-Z are dropped wherever they
 * stand, tabs become blanks up to the next multiple of 8 columns, and what doesn't fit into `text`
 * is passed over. `text` is neither padded nor terminated: characters_read tells its length, and
 * is -1 at the end of the file. */
void READFA_h(char* text, const int16_t* handle, int32_t* characters_read, int16_t* error,
              intptr_t length) TARN_LINK_NAME("READFA#");
void READFA1_h(char* text, const int32_t* length, const int16_t* handle, int32_t* characters_read,
               int16_t* error) TARN_LINK_NAME("READFA1#");
void WRITEF_h(const void* buffer, const int16_t* handle, const int32_t* count, int16_t* error)
    TARN_LINK_NAME("WRITEF#");
/* Writes a line: the text as it stands, then CR LF. */
void WRITEFA_h(const char* text, const int16_t* handle, int16_t* error, intptr_t length)
    TARN_LINK_NAME("WRITEFA#");
void WRITEFA1_h(const char* text, const int32_t* length, const int16_t* handle, int16_t* error)
    TARN_LINK_NAME("WRITEFA1#");

/* Positions count bytes from 0. In 32 bits, a place behind 2 GiB is a negative number. */
void RFPOS_h(const int16_t* handle, int32_t* position, int16_t* error) TARN_LINK_NAME("RFPOS#");
void RFPOSLONG_h(const int16_t* handle, int64_t* position, int16_t* error)
    TARN_LINK_NAME("RFPOSLONG#");
/* Moves, but never past the end of the file: new_position is where the handle stands then. */
void FPOS_h(const int16_t* handle, const int32_t* position, int32_t* new_position, int16_t* error)
    TARN_LINK_NAME("FPOS#");
void FPOSLONG_h(const int16_t* handle, const int64_t* position, int64_t* new_position,
                int16_t* error) TARN_LINK_NAME("FPOSLONG#");
/* Moves to the end. */
void MOVE_TO_EOF_h(const int16_t* handle, int32_t* position, int16_t* error)
    TARN_LINK_NAME("MOVE_TO_EOF#");
void FPOS_EOF_h(const int16_t* handle, int32_t* position, int16_t* error)
    TARN_LINK_NAME("FPOS_EOF#");
void MOVE_TO_EOFLONG_h(const int16_t* handle, int64_t* position, int16_t* error)
    TARN_LINK_NAME("MOVE_TO_EOFLONG#");
void FPOS_EOFLONG_h(const int16_t* handle, int64_t* position, int16_t* error)
    TARN_LINK_NAME("FPOS_EOFLONG#");
/* Makes the file empty; what waits in the buffer is dropped. */
void EMPTY_h(const int16_t* handle, int16_t* error) TARN_LINK_NAME("EMPTY#");
/* Cuts the file where the handle stands. */
void FILE_TRUNCATE_h(const int16_t* handle, int16_t* error) TARN_LINK_NAME("FILE_TRUNCATE#");

/* Tabs reach the program as they are. */
void READ_TABS1_h(const int16_t* handle) TARN_LINK_NAME("READ_TABS1#");
/* The descriptor, or -1; the error. */
int32_t TRANSLATE_FORTRAN_HANDLE_h(const int16_t* handle)
    TARN_LINK_NAME("TRANSLATE_FORTRAN_HANDLE#");
int32_t FLUSH_FORTRAN_HANDLE_h(const int16_t* handle) TARN_LINK_NAME("FLUSH_FORTRAN_HANDLE#");
/* The handle of a file, or -1; the full path of a handle, blank-padded, or blanks. */
void GET_HANDLE_h(const char* path, int16_t* handle, intptr_t length) TARN_LINK_NAME("GET_HANDLE#");
void GET_PATH_h(const int16_t* handle, char* text, intptr_t length) TARN_LINK_NAME("GET_PATH#");

#ifdef __cplusplus
}
#endif

#endif
