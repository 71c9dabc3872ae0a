/* Dates, times and clocks. Texts are an address and a length, without a terminator; a longer one is
 * filled with blanks, a shorter one takes what it holds. A time value is a count of seconds since
 * 1 January 1970. Everything but lengths is passed by address. */
#ifndef TARN_DATES_H
#define TARN_DATES_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Today, in local time. A text of 10 characters or more takes the year with four digits:
 * mm/dd/yyyy (DATE), dd/mm/yyyy (EDATE). A shorter one takes two, and that is failure 411 where the
 * environment variable DATE_FAIL is YES. ---- */
void DATE_h(char* result, intptr_t length) TARN_LINK_NAME("DATE#");
void DATE(char* result, intptr_t length);
void EDATE_h(char* result, intptr_t length) TARN_LINK_NAME("EDATE#");
void EDATE(char* result, intptr_t length);
/* Wednesday, 5 January 2000 */
void FDATE_h(char* result, intptr_t length) TARN_LINK_NAME("FDATE#");
void FDATE(char* result, intptr_t length);
/* hh:mm:ss */
void TIME_h(char* result, intptr_t length) TARN_LINK_NAME("TIME#");
void TIME(char* result, intptr_t length);

/* ---- The same for a time value; dates are those of UTC, the time is local. A date before
 * 29 February 1972 is failure 428. ---- */
void TODATE_h(const int32_t* time, char* result, intptr_t length) TARN_LINK_NAME("TODATE#");
void TOEDATE_h(const int32_t* time, char* result, intptr_t length) TARN_LINK_NAME("TOEDATE#");
void TOFDATE_h(const int32_t* time, char* result, intptr_t length) TARN_LINK_NAME("TOFDATE#");
void TOTIME_h(const int32_t* time, char* result, intptr_t length) TARN_LINK_NAME("TOTIME#");
/* The fields of the date; weekday 0 is Sunday. */
void CONVDATE_h(const int32_t* time, int16_t* weekday, int16_t* day, int16_t* month, int16_t* year)
    TARN_LINK_NAME("CONVDATE#");

/* ---- Seconds since the beginning of a year, by local time. Every fourth year has a leap day, 1900
 * too. ---- */
void SECONDS_SINCE_1900_h(double* result, const int16_t* seconds, const int16_t* minutes,
                          const int16_t* hours, const int16_t* day, const int16_t* month,
                          const int16_t* year) TARN_LINK_NAME("SECONDS_SINCE_1900#");
void SECONDS_SINCE_1980_h(double* result) TARN_LINK_NAME("SECONDS_SINCE_1980#");
void SECONDS_SINCE_1970_h(double* result) TARN_LINK_NAME("SECONDS_SINCE_1970#");
/* Now since 1900, with milliseconds; `result` may be null, the value is returned as well. */
double DSECS_1900_h(double* result) TARN_LINK_NAME("DSECS_1900#");

/* ---- Clocks. ---- */

/* Seconds since the library's start. */
void DCLOCK_h(double* result) TARN_LINK_NAME("DCLOCK#");
void DCLOCK(double* result);
void CLOCK_h(float* result) TARN_LINK_NAME("CLOCK#");
void CLOCK(float* result);
/* Seconds of a clock that is never set, to the nanosecond. */
double HIGH_RES_CLOCK_h(void) TARN_LINK_NAME("HIGH_RES_CLOCK#");
/* SYSTEM_CLOCK for integers of 16, 32 and 64 bits: 1000, 10000 and 10000 counts a second. Any
 * argument may be null. */
void SYSTEM_CLOCK_hI(int16_t* count, int16_t* rate, int16_t* maximum)
    TARN_LINK_NAME("SYSTEM_CLOCK#I");
void SYSTEM_CLOCK_hJ(int32_t* count, int32_t* rate, int32_t* maximum)
    TARN_LINK_NAME("SYSTEM_CLOCK#J");
void SYSTEM_CLOCK_hW(int64_t* count, int64_t* rate, int64_t* maximum)
    TARN_LINK_NAME("SYSTEM_CLOCK#W");
/* DATE_AND_TIME for integers of 16, 32 and 64 bits: yyyymmdd, hhmmss.sss, +hhmm, and year, month,
 * day, minutes ahead of UTC, hour, minute, second, millisecond. Any argument may be null; a length
 * then doesn't matter. */
void DATE_AND_TIME_hI(char* date, char* time, char* zone, int16_t* values, intptr_t date_length,
                      intptr_t time_length, intptr_t zone_length) TARN_LINK_NAME("DATE_AND_TIME#I");
void DATE_AND_TIME_hJ(char* date, char* time, char* zone, int32_t* values, intptr_t date_length,
                      intptr_t time_length, intptr_t zone_length) TARN_LINK_NAME("DATE_AND_TIME#J");
void DATE_AND_TIME_hW(char* date, char* time, char* zone, int64_t* values, intptr_t date_length,
                      intptr_t time_length, intptr_t zone_length) TARN_LINK_NAME("DATE_AND_TIME#W");
/* Seconds that the process has used the processor. */
void CPU_TIME_R4_h(float* time) TARN_LINK_NAME("CPU_TIME_R4#");
void CPU_TIME_R8_h(double* time) TARN_LINK_NAME("CPU_TIME_R8#");
void CPU_TIME_RX_h(long double* time) TARN_LINK_NAME("CPU_TIME_RX#");

#ifdef __cplusplus
}
#endif

#endif
