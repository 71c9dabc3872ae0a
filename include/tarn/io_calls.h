/* The statements of io.h in the form of one call for each specifier, for callers that can't build
 * the list of a packed opening.
 *
 *     REWIND (7)
 *
 *     int32_t seven = 7;
 *     _Rewind(TARN_LAST | TARN_CODE(TARN_UNIT, TARN_INTEGER4), &seven);
 *
 * The first specifier call opens the statement, the one with TARN_LAST starts it. A character
 * specifier goes to the entry with a C behind its name, which takes the length too. Formatted and
 * unformatted transfers go on with item calls and an end call.
 *
 * A failure that the statement catches (TARN_IOSTAT, a label of any value, a status word after
 * TARN_BY_STATUS) comes back as an ordinary return: the outcome is stored, the item calls that
 * follow do nothing, and the end call ends the statement. TARN_BY_STATUS in any call switches to
 * reports by status word for the rest of the process.
 *
 * All calls of this form hold one lock while they work: threads may use it side by side, one
 * statement at a time.
 */
#ifndef TARN_IO_CALLS_H
#define TARN_IO_CALLS_H

#include "tarn/io.h"

#ifdef __cplusplus
extern "C" {
#endif

#define TARN_CODE(code, type) ((uint32_t)(code) | (uint32_t)(type) << 8)
#define TARN_BY_STATUS (UINT32_C(1) << 29)
#define TARN_LAST (UINT32_C(1) << 31)

/* ---- Specifiers. ---- */

#define TARN_SPECIFIER_CALL(name) void name(uint32_t code, void* value);
#define TARN_TEXT_SPECIFIER_CALL(name) void name(uint32_t code, void* value, intptr_t length);
/* Whole statements. */
TARN_SPECIFIER_CALL(_Open)
TARN_TEXT_SPECIFIER_CALL(_OpenC)
TARN_SPECIFIER_CALL(_Close)
TARN_TEXT_SPECIFIER_CALL(_CloseC)
TARN_SPECIFIER_CALL(_Inquire)
TARN_TEXT_SPECIFIER_CALL(_InquireC)
TARN_SPECIFIER_CALL(_BackSpace)
TARN_SPECIFIER_CALL(_Rewind)
TARN_SPECIFIER_CALL(_EndFile)
/* Openings of transfers: write or read, sequential or direct, formatted or unformatted. */
TARN_SPECIFIER_CALL(_IniWrSeqFrm)
TARN_TEXT_SPECIFIER_CALL(_IniWrSeqFrmC)
TARN_SPECIFIER_CALL(_IniWrDirFrm)
TARN_TEXT_SPECIFIER_CALL(_IniWrDirFrmC)
TARN_SPECIFIER_CALL(_IniWrSeqUnf)
TARN_TEXT_SPECIFIER_CALL(_IniWrSeqUnfC)
TARN_SPECIFIER_CALL(_IniWrDirUnf)
TARN_TEXT_SPECIFIER_CALL(_IniWrDirUnfC)
TARN_SPECIFIER_CALL(_IniRdSeqFrm)
TARN_TEXT_SPECIFIER_CALL(_IniRdSeqFrmC)
TARN_SPECIFIER_CALL(_IniRdDirFrm)
TARN_TEXT_SPECIFIER_CALL(_IniRdDirFrmC)
TARN_SPECIFIER_CALL(_IniRdSeqUnf)
TARN_TEXT_SPECIFIER_CALL(_IniRdSeqUnfC)
TARN_SPECIFIER_CALL(_IniRdDirUnf)
TARN_TEXT_SPECIFIER_CALL(_IniRdDirUnfC)
/* Namelist: over when the last specifier call returns. Specifier 41 is the address of the group's
   table, packed bytes without padding: signed 32 number of items; byte L = length of the group's
   name + 1; the name, upper case; then the items. An item: byte, its whole length; byte M = length
   of its name + 1; the name, upper case; byte type; pointer to the variable; unsigned 32 length in
   bytes of a CHARACTER or structure; byte rank; for each dimension signed 32 lower and upper bound.
   Types: INTEGER*1 10, *2 1, *4 2, *8 19; REAL*4 3, *8 4, *10 21; COMPLEX*8 5, *16 6, *20 22;
   LOGICAL*1 11, *2 7, *4 8; CHARACTER 9; structure 14. A structure has in place of the pointer
   signed 16 number of components and signed 16 length of the item with them, and nothing in the
   rest; a component is an item without its first bytes and name, whose signed 16 length stands
   between rank and bounds. */
TARN_SPECIFIER_CALL(_IniWrNml)
TARN_SPECIFIER_CALL(_IniRdNml)
#undef TARN_SPECIFIER_CALL
#undef TARN_TEXT_SPECIFIER_CALL

/* ---- Items: the first element, and how many there are. ---- */

#define TARN_ITEM_CALLS(family)                                         \
    void family##CH(char* item, const int32_t* count, intptr_t length); \
    void family##I1(void* item, const int32_t* count);                  \
    void family##I2(void* item, const int32_t* count);                  \
    void family##I4(void* item, const int32_t* count);                  \
    void family##I8(void* item, const int32_t* count);                  \
    void family##L1(void* item, const int32_t* count);                  \
    void family##L2(void* item, const int32_t* count);                  \
    void family##L4(void* item, const int32_t* count);                  \
    void family##R4(void* item, const int32_t* count);                  \
    void family##D8(void* item, const int32_t* count);                  \
    void family##RX(void* item, const int32_t* count);                  \
    void family##C8(void* item, const int32_t* count);                  \
    void family##CD(void* item, const int32_t* count);                  \
    void family##CX(void* item, const int32_t* count);
TARN_ITEM_CALLS(_WrSeqFrm)
TARN_ITEM_CALLS(_WrDirFrm)
TARN_ITEM_CALLS(_RdSeqFrm)
TARN_ITEM_CALLS(_RdDirFrm)
TARN_ITEM_CALLS(_WrSeqUnf)
TARN_ITEM_CALLS(_WrDirUnf)
TARN_ITEM_CALLS(_RdSeqUnf)
TARN_ITEM_CALLS(_RdDirUnf)
#undef TARN_ITEM_CALLS

/* ---- Ends. ---- */

void _EndWrSeqFrm(void);
void _EndWrDirFrm(void);
void _EndRdSeqFrm(void);
void _EndRdDirFrm(void);
void _EndWrSeqUnf(void);
void _EndWrDirUnf(void);
void _EndRdSeqUnf(void);
void _EndRdDirUnf(void);
void _EndWrNml(void);
void _EndRdNml(void);

#ifdef __cplusplus
}
#endif

#endif
