/* Fortran units and the I/O system beside its statements. */
#ifndef TARN_IO_UNITS_H
#define TARN_IO_UNITS_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- How statements behave, for the rest of the process. ---- */

/* Whether a function in an I/O list may READ and WRITE, on other units than the statement that
 * calls it. Otherwise such a statement is failure 410. */
void EnableReentrantIO(int32_t on);
void ENABLE_REENTRANT_IO_h(const int32_t* on) TARN_LINK_NAME("ENABLE_REENTRANT_IO#");
/* The size of the buffers of records from now on; only sizes above 32767 count. */
void __SetMaximumIOBufferSize(int32_t size);
/* Ignores a failure (1 to 452) of any statement: it goes on with what it has. */
void __inhibit_iostat(int32_t message);
/* Sequential formatted files that are opened from now on keep the trailing blanks of records. */
void __fsu(void);

/* ---- Units. ---- */

/* Lines of a unit go to a window or an edit box, by its handle. */
void OPEN_TO_WINDOW_h(const int32_t* unit, const int32_t* window) TARN_LINK_NAME("OPEN_TO_WINDOW#");
void OPEN_TO_EDIT_BOX_h(const int32_t* unit, const int32_t* box)
    TARN_LINK_NAME("OPEN_TO_EDIT_BOX#");
/* Lines of a unit go to a printer, as text or as HTML. */
void OPEN_TO_PRINTER_h(const int32_t* unit) TARN_LINK_NAME("OPEN_TO_PRINTER#");
void OPEN_TO_HTML_PRINTER_h(const int32_t* unit) TARN_LINK_NAME("OPEN_TO_HTML_PRINTER#");
/* Tabs that a unit reads reach the program as they are; otherwise they become blanks. */
void READ_TABS_h(const int32_t* unit) TARN_LINK_NAME("READ_TABS#");
/* Closes all units, those that are there without an OPEN included. */
void CLOSE_ALL_FORTRAN_UNITS_h(void) TARN_LINK_NAME("CLOSE_ALL_FORTRAN_UNITS#");

/* ---- The statement at hand. ---- */

/* The unit of the last statement: -1 for an internal file, 0 before any statement. */
void GetCurrentFortranUnit(int16_t* unit);
void GET_CURRENT_FORTRAN_UNIT_h(int16_t* unit) TARN_LINK_NAME("GET_CURRENT_FORTRAN_UNIT#");
/* With the number of its record, its RECL, and the offset in the record. `flags`: 1 formatted,
 * 2 direct, 4 a stream that is written. */
void GetCurrentFortranIO(int16_t* unit, int32_t* record, int32_t* recl, int16_t* flags,
                         int32_t* position);
void GET_CURRENT_FORTRAN_IO_h(int16_t* unit, int32_t* record, int32_t* recl, int16_t* flags,
                              int32_t* position) TARN_LINK_NAME("GET_CURRENT_FORTRAN_IO#");
void GET_CURRENT_FORTRAN_IO_LF_h(int16_t* unit, int32_t* record, int32_t* recl, int16_t* flags,
                                 int32_t* position) TARN_LINK_NAME("GET_CURRENT_FORTRAN_IO_LF#");
void CURRENT_FORTRAN_IO_LF_h(int16_t* unit, int32_t* record, int32_t* recl, int16_t* flags,
                             int32_t* position) TARN_LINK_NAME("CURRENT_FORTRAN_IO_LF#");
/* The last failure that an IOSTAT= or IOMSG= heard of. */
int32_t GetLastIOError(void);
int32_t GET_LAST_IO_ERROR_h(void) TARN_LINK_NAME("GET_LAST_IO_ERROR#");
/* The buffer of the record, and how long a record it takes. */
void GET_IOBUFFER_ADDRESS_h(void** address, int32_t* size) TARN_LINK_NAME("GET_IOBUFFER_ADDRESS#");
/* The buffer belongs to the caller from now on: the library won't free it. */
void MarkIOMemoryAsFree(void);
void MARK_IO_MEMORY_AS_FREE_h(void) TARN_LINK_NAME("MARK_IO_MEMORY_AS_FREE#");

/* ---- For debugging. ---- */

/* Print on standard output: the units with their handles; what the record's buffer holds. */
void __show_unit_list(void);
void __show_io_buffer_contents(void);
/* The file of a unit; all that is known of its connection, as lines of text; its flags (two words),
 * RECL and record number. What they give lasts until the next call of the same service. */
const char* W32STREAM_INQUIRE_NAME_h(const int16_t* unit) TARN_LINK_NAME("W32STREAM_INQUIRE_NAME#");
const char* W32STREAM_INFO_h(const int16_t* unit) TARN_LINK_NAME("W32STREAM_INFO#");
const uint32_t* W32STREAM_STATUS_h(const int16_t* unit) TARN_LINK_NAME("W32STREAM_STATUS#");

#ifdef __cplusplus
}
#endif

#endif
