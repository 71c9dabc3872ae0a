/* Fortran input and output from C: the statements of the native dialect as compiled code calls
 * them.
 *
 * A statement is a sequence of calls: one opening with all its specifiers, one call an item (or an
 * array of items), one end.
 *
 *     WRITE (6, '(A8,I6)') name, count
 *
 *     static const int16_t words = 4;
 *     static const uint16_t unit = TARN_SPECIFIER(TARN_UNIT, TARN_INTEGER4);
 *     static const uint16_t format = TARN_SPECIFIER(TARN_FORMAT_TEXT, TARN_CHARACTER);
 *     static const int32_t six = 6, one = 1;
 *     WSF1_hh(&words, &unit, &six, &format, "(A8,I6)", (intptr_t)7);
 *     CH_h_WSF(name, &one, length_of_name);
 *     I4_h_WSF(&count, &one);
 *     WSF2_h();
 *
 * The opening takes the number of words of its specifiers, two for each: the address of a
 * descriptor (TARN_SPECIFIER) and the address of the value. Behind them comes, for each specifier
 * of type TARN_CHARACTER and in their order, a length as an intptr_t. A statement without a format
 * is list-directed.
 *
 * A failure ends the program with a report, unless the statement has TARN_IOSTAT; the value of the
 * latter is an int32_t, 0 when all went well, negative at the end of the file or of the record,
 * otherwise the number of the failure. Then the items that are left do nothing.
 *
 * TARN_ERR, TARN_END and TARN_EOR are labels: their value is a jmp_buf of the caller, which the
 * statement goes to instead of returning, with 1, 2 or 3 as what setjmp gives there. The statement
 * is over then: no item and no end follows.
 *
 * The same statements in the form of one call for each specifier are in io_calls.h; what the units
 * know beside their statements is in io_units.h.
 */
#ifndef TARN_IO_H
#define TARN_IO_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

#define TARN_SPECIFIER(code, type) ((uint16_t)((code) | (type) << 8))

/* Types of specifiers' values. */
enum tarn_type {
    TARN_NO_TYPE = 0,
    TARN_INTEGER2 = 1,
    TARN_INTEGER4 = 2,
    TARN_REAL4 = 3,
    TARN_REAL8 = 4,
    TARN_LOGICAL4 = 8,
    TARN_CHARACTER = 9,
    TARN_INTEGER1 = 10,
    TARN_INTEGER8 = 15
};

/* Specifiers. Text is TARN_CHARACTER with a length; in INQUIRE most are results. */
enum tarn_specifier {
    TARN_ACCESS = 1,         /* text */
    TARN_BLANK = 2,          /* text */
    TARN_DIRECT = 3,         /* INQUIRE: a text result */
    TARN_END = 4,            /* a label: the end of the file */
    TARN_ERR = 5,            /* a label: a failure */
    TARN_EXIST = 6,          /* INQUIRE: a LOGICAL*4 result */
    TARN_FILE = 7,           /* text */
    TARN_FORMAT = 8,         /* a FORMAT statement compiled into code, behind a jump of 5 bytes */
    TARN_FORM = 9,           /* text */
    TARN_FORMATTED = 10,     /* INQUIRE: a text result */
    TARN_IOSTAT = 11,        /* an integer that receives the status */
    TARN_NAME = 12,          /* INQUIRE: a text result */
    TARN_NAMED = 13,         /* INQUIRE: a LOGICAL*4 result */
    TARN_NEXTREC = 14,       /* INQUIRE: an integer result */
    TARN_NUMBER = 15,        /* INQUIRE: an integer result */
    TARN_OPENED = 16,        /* INQUIRE: a LOGICAL*4 result */
    TARN_REC = 17,           /* the record of a direct-access statement */
    TARN_RECL = 18,          /* the length of a record */
    TARN_SEQUENTIAL = 19,    /* INQUIRE: a text result */
    TARN_STATUS = 20,        /* text */
    TARN_UNFORMATTED = 21,   /* INQUIRE: a text result */
    TARN_UNIT = 22,          /* an integer */
    TARN_FILETYPE = 23,      /* text */
    TARN_HANDLE = 24,        /* INQUIRE: a 16-bit result, the number of the unit's handle */
    TARN_NEW_NAME = 25,      /* CLOSE: text, what the file is to be called */
    TARN_STRICT = 26,        /* no value: extensions of the standard are refused */
    TARN_INTERNAL_FILE = 27, /* text: the statement works on it, as one record */
    TARN_FORMAT_TEXT = 31,   /* text: a format with its brackets */
    TARN_INTERNAL_RECORDS = 34, /* an integer: an internal file has so many records */
    TARN_DRIVER = 37,           /* OPEN: a tarn_device_driver */
    TARN_TRANSPARENT = 42,      /* INQUIRE: a text result */
    TARN_SHARE = 43,            /* text */
    TARN_POSITION = 44,         /* text */
    TARN_ACTION = 45,           /* text */
    TARN_DELIM = 46,            /* text */
    TARN_PAD = 47,              /* text */
    TARN_ADVANCE = 48,          /* text */
    TARN_SIZE = 49,             /* an integer result: characters read; INQUIRE: bytes of the file */
    TARN_EOR = 50,              /* a label: the end of the record */
    TARN_READWRITE = 51,        /* INQUIRE: a text result */
    TARN_READ = 53,             /* INQUIRE: a text result */
    TARN_WRITE = 54,            /* INQUIRE: a text result */
    TARN_STATUS_END = 57, /* io_calls.h: a 4-byte word, 0, 1 end, 2 end of record, 3 failure */
    TARN_STATUS_EOR = 58,
    TARN_STATUS_ERR = 59,
    TARN_FORMAT_TABLE = 60, /* a count of 16-bit words, and the code stream of a format */
    TARN_IOMSG = 61,        /* text that receives the message of a failure */
    TARN_POS = 62,          /* INQUIRE: an integer result */
    TARN_STREAM = 63        /* INQUIRE: a text result */
};

/* A routine of the program that stands in for a file (TARN_DRIVER). `*operation`: 1 read a record
 * into `buffer` and give its length, 2 write the record, 3 ENDFILE, 4 REWIND, 5 BACKSPACE, 6 OPEN,
 * 7 CLOSE, 8 INQUIRE; without a format 9 read, 10 write, 13 read and 14 write a direct record. A
 * status other than 0 is failure 155. */
typedef void (*tarn_device_driver)(char* buffer, int32_t* capacity, int32_t* length,
                                   int32_t* operation, int16_t* status, size_t buffer_length);

/* ---- Openings. The words of data transfers are followed by items and an end. ---- */

/* READ and WRITE, sequential: formatted, or list-directed without a format. */
void RSF1_hh(const int16_t* words, ...) TARN_LINK_NAME("RSF1##");
void WSF1_hh(const int16_t* words, ...) TARN_LINK_NAME("WSF1##");
/* The same with REC=. */
void RDF1_hh(const int16_t* words, ...) TARN_LINK_NAME("RDF1##");
void WDF1_hh(const int16_t* words, ...) TARN_LINK_NAME("WDF1##");
/* Without a format: sequential, or of a stream with TARN_REC as POS=, and with REC=. */
void RSU1_hh(const int16_t* words, ...) TARN_LINK_NAME("RSU1##");
void WSU1_hh(const int16_t* words, ...) TARN_LINK_NAME("WSU1##");
void RDU1_hh(const int16_t* words, ...) TARN_LINK_NAME("RDU1##");
void WDU1_hh(const int16_t* words, ...) TARN_LINK_NAME("WDU1##");
/* Whole statements. */
void OPEN_hh(const int16_t* words, ...) TARN_LINK_NAME("OPEN##");
void CLOS_hh(const int16_t* words, ...) TARN_LINK_NAME("CLOS##");
void INQR_hh(const int16_t* words, ...) TARN_LINK_NAME("INQR##");
void FLUSH_hh(const int16_t* words, ...) TARN_LINK_NAME("FLUSH##");
void RWIN_hh(const int16_t* words, ...) TARN_LINK_NAME("RWIN##");
void BACK_hh(const int16_t* words, ...) TARN_LINK_NAME("BACK##");
void ENDF_hh(const int16_t* words, ...) TARN_LINK_NAME("ENDF##");

/* ---- Items: the first element, and how many there are. ---- */

void I1_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("I1#WSF");
void I2_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("I2#WSF");
void I4_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("I4#WSF");
void I8_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("I8#WSF");
void L4_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("L4#WSF");
void R4_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("R4#WSF");
void D8_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("D8#WSF");
void C8_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("C8#WSF");
void CD_h_WSF(const void* item, const int32_t* count) TARN_LINK_NAME("CD#WSF");
void CH_h_WSF(const char* item, const int32_t* count, intptr_t length) TARN_LINK_NAME("CH#WSF");

void I1_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("I1#RSF");
void I2_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("I2#RSF");
void I4_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("I4#RSF");
void I8_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("I8#RSF");
void L4_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("L4#RSF");
void R4_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("R4#RSF");
void D8_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("D8#RSF");
void C8_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("C8#RSF");
void CD_h_RSF(void* item, const int32_t* count) TARN_LINK_NAME("CD#RSF");
void CH_h_RSF(char* item, const int32_t* count, intptr_t length) TARN_LINK_NAME("CH#RSF");

/* An item of an unformatted statement, `*count` elements one behind the other. `*size`: the bytes
 * of an element, with either sign; 1 stands for CHARACTER elements of `length` bytes (-1 for
 * numbers of one byte). More than the record has is failure 158, or 68 on direct access. */
void XSUX_h(void* item, const int32_t* count, const int16_t* size, intptr_t length)
    TARN_LINK_NAME("XSUX#");

/* ---- Ends. ---- */

/* Of a formatted or list-directed READ or WRITE. */
void WSF2_h(void) TARN_LINK_NAME("WSF2#");
/* Of an unformatted READ, sequential WRITE, direct WRITE. What the list leaves of a direct record
 * becomes zero. */
void END_RU_h(void) TARN_LINK_NAME("END_RU#");
void WSU2_h(void) TARN_LINK_NAME("WSU2#");
void WDU2_h(void) TARN_LINK_NAME("WDU2#");

#ifdef __cplusplus
}
#endif

#endif
