/* Floating-point exceptions, precision and rounding.
 *
 * The library keeps eight control words, one for each rounding twice, and every image has a table
 * of its own. A change rewrites all tables and is in force at once in the calling thread, for both
 * floating-point units. A program starts with every exception masked, as the system has it, unless
 * its start-up object asks for the library's own masks (tarn/start.h).
 */
#ifndef TARN_FLOAT_H
#define TARN_FLOAT_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Masked exceptions give a result (0, infinity, NaN); unmasked ones end the program. Underflow goes
 * together with denormal operands. */
void __mask_underflow(void);
void __unmask_underflow(void);
void __mask_overflow(void);
void __unmask_overflow(void);
void __mask_zero_divide(void);
void __unmask_zero_divide(void);
void __mask_invalid_op(void);
void __unmask_invalid_op(void);
void __mask_all_fp_ex(void);
/* Back to the library's own words: all but the inexact exception trap. */
void __unmask_all_fp_ex(void);
/* ORs, or ANDs, the mask into every word. */
void __mask_control_word(int32_t mask);
void __unmask_control_word(int32_t mask);
/* Whole tables: underflow masked, the library's own, and back only from the former. */
void ___mask_underflow(void);
void ___unmask_underflow(void);
void ___undo_mask_underflow(void);
void __set_default_control_word(void);

/* REAL*10 arithmetic with double precision. */
void __no_extended_precision(void);
/* Non-zero unmasks all, zero masks all. */
void TRAP_FP_EXCEPTIONS_h(const int32_t* trap) TARN_LINK_NAME("TRAP_FP_EXCEPTIONS#");
/* Whether an unmasked underflow is repaired and counted, or is a failure (0, which unmasks it). */
void __set_underflow_flag(int32_t permitted);
int32_t __get_underflow_count(void);

/* The status word; _clear87 clears the exceptions that it shows. */
uint32_t _clear87(void);
uint32_t _status87(void);
/* Resets the units and loads the word in force. */
void _fpreset(void);

/* The value, or zero for a denormal one. */
float FTZ_h(const float* value) TARN_LINK_NAME("FTZ#");
double DFTZ_h(const double* value) TARN_LINK_NAME("DFTZ#");

/* The root; of a negative value 1.0e308, with -1002 in errno. */
double tarn_sqrt(double value);
long double tarn_sqrtl(long double value);

#ifdef __cplusplus
}
#endif

#endif
