/* How a program stops.
 *
 * A normal end, by any of these entries, by the C library's exit or by a return from main, meets:
 * the exit routines, newest first; destructors; and as the last of the process the closing of the
 * Fortran units. Output that can't be written then is reported, and the status becomes 1.
 */
#ifndef TARN_EXIT_H
#define TARN_EXIT_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The end of a C program. */
void __exitprogram(int status);
void tarn_exit(int status);
void __exit(void); /* status 0 */
/* The end of a Fortran program. */
void __fortranexit(int16_t status);
void EXIT_h(const int16_t* status) TARN_LINK_NAME("EXIT#");
/* Writes "**** STOP: " and the text, when it isn't blank; status 0. */
void STOP_h(const char* text, ptrdiff_t length) TARN_LINK_NAME("STOP#");
/* Waits for the ENTER key, and runs the commands that are typed before it. */
void PAUSE_h(const char* text, ptrdiff_t length) TARN_LINK_NAME("PAUSE#");

/* Leave at once: what units hold is written out, no exit routine runs. Status 1, or 0 with the
 * option no_traceback. */
void tarn_abort(void);
void ABORT_h(void) TARN_LINK_NAME("ABORT#");
/* Exit routines and destructors only; the caller's run-time ends the process. */
void __dotnetexit(void);
/* Nothing at all; status 0. */
void __dbg_exitprogram(void);

/* Registers an exit routine; 0, or 1 when there is no storage for it. A routine that is added by
 * another one runs straight after it. */
int tarn_atexit(void (*routine)(void));
/* Registers a routine that runs once when a floating-point exception is going to be reported. */
void __add_cleanup_routine(void (*routine)(void));

/* Closes all Fortran units. */
void CLOSE_UNITS_h(void) TARN_LINK_NAME("CLOSE_UNITS#");
/* The same, and flushes the Fortran handles. */
void CLOSETIDY_ORVUNIT_h(void) TARN_LINK_NAME("CLOSETIDY_ORVUNIT#");

/* Keeps up to 80 characters for LIB_QUIT_HANDLER#, which writes them on a line of their own. */
void QUIT_CLEANUP_h(const char* text, ptrdiff_t length) TARN_LINK_NAME("QUIT_CLEANUP#");
void LIB_QUIT_HANDLER_h(const void* unused) TARN_LINK_NAME("LIB_QUIT_HANDLER#");

#ifdef __cplusplus
}
#endif

#endif
