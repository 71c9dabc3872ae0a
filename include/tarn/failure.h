/* Run-time failures.
 *
 * A failure is a number of the catalogue. Raising one doesn't return: what files hold is written
 * out, the report goes to standard error (with the option kill_dialogbox to standard output), and
 * the process ends with status 1. No exit routine and no destructor runs.
 */
#ifndef TARN_FAILURE_H
#define TARN_FAILURE_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* "*** Error  117, Disk full". A user's handler, when one is set, is called instead. */
void C_FAIL_h(const int32_t* number) TARN_LINK_NAME("C_FAIL#");
void INTERRUPT7F_h(int32_t number) TARN_LINK_NAME("INTERRUPT7F#");
/* The same, past any handler. `routine` (or null) was called at `address` and is missing. */
void NT_FAIL_AT(const void* address, const char* routine, const int32_t* number);
/* "Error: Disk full", behind the unit when a statement is at work on one. */
void FAIL_h(const int16_t* number) TARN_LINK_NAME("FAIL#");
void RUNERR_h(const int16_t* number) TARN_LINK_NAME("RUNERR#"); /* without the unit */

/* Texts of the caller's own, 253 characters at most. */
void ERROR_h(const char* text, ptrdiff_t length) TARN_LINK_NAME("ERROR#");
void ORV2_ERROR_h(const char* text, ptrdiff_t length) TARN_LINK_NAME("ORV2_ERROR#");
void __f90_failure(const char* text);
void text_error(const char* format, ...);

/* A routine that gets the number instead of a report. When it returns the program is aborted. */
void __set_user_failure_handler(void (*handler)(int number));
/* A routine that may leave by an exception of its own; when it returns the report goes on. */
void __setup_error_handler(void (*handler)(int number, const char* text));

/* The sentence of a number; "Undefined error" outside 0 to 497. */
const char* getRuntimeErrorMessage(int32_t number);
/* The sentence, or for 10000 + n the system's text of error n, into a CHARACTER variable. */
void FORTRAN_ERROR_MESSAGE_h(const int16_t* number, char* text, ptrdiff_t length)
    TARN_LINK_NAME("FORTRAN_ERROR_MESSAGE#");
/* What stands for %1 in a sentence; 80 characters at most. */
void SET_ERRSTRG_h(const char* text, ptrdiff_t length) TARN_LINK_NAME("SET_ERRSTRG#");

/* The system's text of an error code. */
void UNIX_ERROR_MESSAGE_h(const int16_t* code, char* text, ptrdiff_t length)
    TARN_LINK_NAME("UNIX_ERROR_MESSAGE#");
void DOS_ERROR_MESSAGE_h(const int16_t* code, char* text, ptrdiff_t length)
    TARN_LINK_NAME("DOS_ERROR_MESSAGE#");
/* Prints the text, or "System error (n)", and the system's text; code 0 prints nothing. */
void PRERR_h(const int16_t* code, const char* text, ptrdiff_t length) TARN_LINK_NAME("PRERR#");
/* The same, and ends the program with status 1; with the code as its status. */
void UNIXERR_h(const int16_t* code, const char* text, ptrdiff_t length) TARN_LINK_NAME("UNIXERR#");
void DOSERR_h(const int16_t* code) TARN_LINK_NAME("DOSERR#");

#ifdef __cplusplus
}
#endif

#endif
