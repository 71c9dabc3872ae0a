/* Character values of Fortran: assignment, searches, the library's own routines on texts, sorting.
 *
 * A value is an address and a length, without a terminator; lengths are passed by value behind the
 * other arguments, and one below 0 counts as 0. Everything else is passed by address, as Fortran
 * does. Positions count from 1, and 0 means that nothing was found. A result that is longer than
 * what goes into it is filled with blanks, a shorter one takes what it holds. */
#ifndef TARN_CHARACTERS_H
#define TARN_CHARACTERS_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

struct tarn_characters {
    char* address;
    intptr_t length;
};

/* ---- Assignment. The forms differ in what they do about an overlap. ---- */

/* As if all of the source were read first. */
void __CCOPY(const char* source, char* destination, intptr_t source_length,
             intptr_t destination_length);
/* The same; a byte 0x80, which marks what nothing was assigned to, is failure 405. */
void __CCOPY_U(const char* source, char* destination, intptr_t source_length,
               intptr_t destination_length);
/* Byte by byte from the start: a destination that begins inside the source smears it. */
void CCOPY_h(const char* source, char* destination, intptr_t source_length,
             intptr_t destination_length) TARN_LINK_NAME("CCOPY#");
/* Any overlap is failure 13. */
void CHECK_CCOPY_h(const char* source, char* destination, intptr_t source_length,
                   intptr_t destination_length) TARN_LINK_NAME("CHECK_CCOPY#");

/* ---- Concatenation into `destination`, from `count` pieces. ---- */

/* For each piece its address and its length (intptr_t) follow. The entries are `__CONCAT` and
 * `__CONCAT_U`; the first name is taken by a macro of the C library. */
void tarn_concat(intptr_t count, char* destination, intptr_t destination_length, ...)
    TARN_LINK_NAME("__CONCAT");
/* The same; a byte 0x80 is failure 405. */
void tarn_concat_u(intptr_t count, char* destination, intptr_t destination_length, ...)
    TARN_LINK_NAME("__CONCAT_U");
/* `values` is the destination and then the pieces. A piece that overlaps the destination is
 * failure 38; NCK_CONCAT doesn't look. */
void CONCAT_h(intptr_t count, const struct tarn_characters* values) TARN_LINK_NAME("CONCAT#");
void NCK_CONCAT_h(intptr_t count, const struct tarn_characters* values)
    TARN_LINK_NAME("NCK_CONCAT#");

/* ---- Comparison. ---- */

/* Below, at or above 0; the shorter value counts as padded with blanks. */
int32_t CCOMP_h(const char* one, const char* two, intptr_t one_length, intptr_t two_length)
    TARN_LINK_NAME("CCOMP#");
intptr_t JLEN_h(const char* text, intptr_t length) TARN_LINK_NAME("JLEN#");

/* ---- Fortran's functions. `back` (not 0: the last instead of the first) may be null. ---- */

/* The first character that is in the set (SCAN), or isn't (VERIFY); 0 for an empty one. */
int32_t SCAN_h(const char* text, const char* set, const int32_t* back, intptr_t length,
               intptr_t set_length) TARN_LINK_NAME("SCAN#");
int32_t VERIFY_h(const char* text, const char* set, const int32_t* back, intptr_t length,
                 intptr_t set_length) TARN_LINK_NAME("VERIFY#");
/* Where a part stands. An empty part is found at 1, with `back` behind the last character. */
int32_t INDEX9_h(const char* text, const char* part, const int32_t* back, intptr_t length,
                 intptr_t part_length) TARN_LINK_NAME("INDEX9#");
int32_t INDEX_h(const char* text, const char* part, intptr_t length, intptr_t part_length)
    TARN_LINK_NAME("INDEX#");
int32_t JNDEX_h(const char* text, const char* part, intptr_t length, intptr_t part_length)
    TARN_LINK_NAME("JNDEX#");
/* Blanks at one end go to the other. The result may be shorter than the text. */
void ADJUSTL_h(char* result, intptr_t result_length, const char* text, intptr_t length)
    TARN_LINK_NAME("ADJUSTL#");
void ADJUSTR_h(char* result, intptr_t result_length, const char* text, intptr_t length)
    TARN_LINK_NAME("ADJUSTR#");
/* The text `*copies` times. The caller sees to it that the result has room: `result_length` isn't
 * looked at. */
void REPEAT_h(char* result, intptr_t result_length, const char* text, const int32_t* copies,
              intptr_t length) TARN_LINK_NAME("REPEAT#");

/* ---- The library's routines, under two names each. ---- */

void UPCASE_h(char* text, intptr_t length) TARN_LINK_NAME("UPCASE#");
void UPCASE(char* text, intptr_t length);
void LCASE_h(char* text, intptr_t length) TARN_LINK_NAME("LCASE#");
void LCASE(char* text, intptr_t length);
/* Moves a text left over its leading blanks (TRIM) or right over its trailing ones (TRIMR). */
void TRIM_h(char* text, intptr_t length) TARN_LINK_NAME("TRIM#");
void TRIM(char* text, intptr_t length);
void TRIMR_h(char* text, intptr_t length) TARN_LINK_NAME("TRIMR#");
/* The source, without its trailing blanks, in the middle of a field of `*width` columns. */
void CENTRE_h(char* result, intptr_t result_length, const char* source, const int16_t* width,
              intptr_t source_length) TARN_LINK_NAME("CENTRE#");
/* Fills a text with one character. */
void CHAR_FILL_h(char* text, const char* value, intptr_t length) TARN_LINK_NAME("CHAR_FILL#");
/* Where the first character is that is no blank. */
int32_t NONBLK_h(const char* text, intptr_t length) TARN_LINK_NAME("NONBLK#");
int32_t NONBLK(const char* text, intptr_t length);
/* Adds behind the last character of the text that is no blank, as far as there is room. */
void APPEND_STRING_h(char* text, const char* addition, intptr_t length, intptr_t addition_length)
    TARN_LINK_NAME("APPEND_STRING#");
/* A number in digits, or in English words; asterisks if it doesn't fit. */
void CNUM_h(char* result, intptr_t result_length, const int32_t* value) TARN_LINK_NAME("CNUM#");
void CNUM(char* result, intptr_t result_length, const int32_t* value);
void SAYINT_h(char* result, intptr_t result_length, const int32_t* value) TARN_LINK_NAME("SAYINT#");
void SAYINT(char* result, intptr_t result_length, const int32_t* value);

/* ---- Sorting: the values stay, `index` takes their numbers (from 1) in ascending order. ---- */

void ISORT_h(int32_t* index, const int32_t* values, const int32_t* count) TARN_LINK_NAME("ISORT#");
void RSORT_h(int32_t* index, const float* values, const int32_t* count) TARN_LINK_NAME("RSORT#");
void DSORT_h(int32_t* index, const double* values, const int32_t* count) TARN_LINK_NAME("DSORT#");
/* Elements of `length` characters, ordered by their bytes. */
void CHSORT_h(int32_t* index, const char* values, const int32_t* count, intptr_t length)
    TARN_LINK_NAME("CHSORT#");
/* The same; `*status` is 0, or 4 for a count below 1. */
void CHSORT(int32_t* index, const char* values, const int32_t* count, int32_t* status,
            intptr_t length);
/* Looks a key up in an array that is in ascending order: `*position` is its number, or 0. */
void CHSEEK_h(const char* key, const char* values, const int32_t* count, int32_t* position,
              intptr_t key_length, intptr_t length) TARN_LINK_NAME("CHSEEK#");

#ifdef __cplusplus
}
#endif

#endif
