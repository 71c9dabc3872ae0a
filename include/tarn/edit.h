/* Single steps of a formatted statement, for compiled code and for routines that stand in for it.
 *
 * A statement is opened by RSF1##, WSF1##, RDF1## or WDF1##, moves its items with entries like
 * I4#WSF, and ends with WSF2#. The steps below act on the statement at hand; where it has failed
 * already they do nothing. */
#ifndef TARN_EDIT_H
#define TARN_EDIT_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The decimal digits of a value: |value| = 0.d1d2... x 10^exponent.
 *
 * count      the number of significant digits, or, 0 or negative, of digits behind the point
 * sign       1, or -1 for a value below zero
 * digits     takes the digits, without a terminator; at most 5000. The first 20 are the value's
 *            own, zeros follow. The value is rounded at the digit asked for, halves upwards.
 *
 * A zero has zeros for digits and exponent 0; so has what isn't a number. */
void CVDL_h(long double value, int16_t* sign, char* digits, int32_t* exponent, int32_t count)
    TARN_LINK_NAME("CVDL#");

/* Business editing: puts the value over the picture that stands at the cursor of the record. */
void BED_h_I(const int32_t* value) TARN_LINK_NAME("BED#I");
void BED_h_DP(const double* value) TARN_LINK_NAME("BED#DP");
void BED_h_RX(const long double* value) TARN_LINK_NAME("BED#RX");

/* Sets a formatted statement up again, with the text of ADVANCE= where `given` isn't 0. */
void RSF1_h(const char* advance, int32_t given, ptrdiff_t length) TARN_LINK_NAME("RSF1#");
/* Reads the next record, and writes the record at hand. */
void RSF3_h(void) TARN_LINK_NAME("RSF3#");
void WSF3_h(void) TARN_LINK_NAME("WSF3#");
/* Does nothing: run-time formats are parsed where they are used. Old object code calls it. */
void RTF_h(void) TARN_LINK_NAME("RTF#");

#ifdef __cplusplus
}
#endif

#endif
