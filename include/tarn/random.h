/* Random numbers. There are two generators, which have nothing to do with each other: the Mersenne
 * twister MT19937, and an older congruential one of 59 bits behind RANDOM and rand. Each is one
 * stream for the whole process, without a lock: threads that draw at the same time should each
 * have a generator of their own.
 *
 * REALs come from [0, 1); arguments are passed by address, counts, actions and the twister's seed
 * by value. */
#ifndef TARN_RANDOM_H
#define TARN_RANDOM_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The older generator: x := x * 13^13 modulo 2^59. ---- */

/* x / 2^59; the nearest double may be 1.0. */
double RANDOM_h(void) TARN_LINK_NAME("RANDOM#");
double RANDOM(void);
/* 24 bits of x. */
float RANDOM4_h(void) TARN_LINK_NAME("RANDOM4#");
void RNDR4_h(float* value) TARN_LINK_NAME("RNDR4#");
void RNDR8_h(double* value) TARN_LINK_NAME("RNDR8#");
void RANDOMR4_h(float* value) TARN_LINK_NAME("RANDOMR4#");
void RANDOMR8_h(double* value) TARN_LINK_NAME("RANDOMR8#");
void RANDOMQ8_h(double* value) TARN_LINK_NAME("RANDOMQ8#");
void RANDOMRX_h(long double* value) TARN_LINK_NAME("RANDOMRX#");
/* Elements of REAL*4 are RANDOM4's, the others RANDOM's. */
void RANDOMR4_hARRAY(float* values, intptr_t count) TARN_LINK_NAME("RANDOMR4#ARRAY");
void RANDOMR8_hARRAY(double* values, intptr_t count) TARN_LINK_NAME("RANDOMR8#ARRAY");
void RANDOMQ8_hARRAY(double* values, intptr_t count) TARN_LINK_NAME("RANDOMQ8#ARRAY");
void RANDOMRX_hARRAY(long double* values, intptr_t count) TARN_LINK_NAME("RANDOMRX#ARRAY");

/* Seeds: from a REAL*8, from the two words of x (the low one first; 0, 0 counts as 1, 0), from the
 * time of day. GET_RANDOM_SEED gives the two words. */
void SET_SEED_h(const double* seed) TARN_LINK_NAME("SET_SEED#");
void SET_RANDOM_SEED_h(const uint32_t* words) TARN_LINK_NAME("SET_RANDOM_SEED#");
void DIRECT_RANDOM_SEED_h(const uint32_t* words) TARN_LINK_NAME("DIRECT_RANDOM_SEED#");
void GET_RANDOM_SEED_h(uint32_t* words) TARN_LINK_NAME("GET_RANDOM_SEED#");
void DATE_TIME_SEED_h(void) TARN_LINK_NAME("DATE_TIME_SEED#");
/* x / 2^59 without a draw. */
double PEEK_RANDOM(void);
/* RANDOM_SEED of Fortran. Actions: 1 stores 2 (a size), 2 stores 1, 3 sets the two words, 4 gets
 * them; anything else is failure 406. The second form has words of 64 bits, of which the upper
 * halves are not looked at and become 0. */
void RANDOM_SEED_h(int32_t action, int32_t* value) TARN_LINK_NAME("RANDOM_SEED#");
void RANDOM_SEED64_h(int32_t action, int64_t* value) TARN_LINK_NAME("RANDOM_SEED64#");
/* C's functions on this generator: 0 to 2147483646. */
int tarn_rand(void);
void tarn_srand(unsigned seed);

/* ---- The twister. ---- */

uint32_t __IRANDOM32(void);
/* 24, 32, 53 and 64 bits; the last two take two words. */
float __RANDOM24(void);
double __RANDOM32(void);
double __RANDOM53(void);
long double __RANDOM64(void);
/* A seed of 0 counts as 1. GET gives the last seed, not the place in the stream. A program that
 * sets none has 54678665. */
void __SET_RANDOM_SEED(uint32_t seed);
uint32_t __GET_RANDOM_SEED(void);
void __SET_DATE_TIME_SEED(void);

void MT_RANDOMR4_h(float* value) TARN_LINK_NAME("MT_RANDOMR4#");
void MT_RANDOMQ8_h(double* value) TARN_LINK_NAME("MT_RANDOMQ8#");
void MT_RANDOMR8_h(double* value) TARN_LINK_NAME("MT_RANDOMR8#");
void MT_RANDOMRX_h(long double* value) TARN_LINK_NAME("MT_RANDOMRX#");
void MT_RANDOMI4_h(uint32_t* value) TARN_LINK_NAME("MT_RANDOMI4#");
void MT_RANDOMI8_h(uint64_t* value) TARN_LINK_NAME("MT_RANDOMI8#");
void MT_RANDOMR4_hARRAY(float* values, intptr_t count) TARN_LINK_NAME("MT_RANDOMR4#ARRAY");
void MT_RANDOMQ8_hARRAY(double* values, intptr_t count) TARN_LINK_NAME("MT_RANDOMQ8#ARRAY");
void MT_RANDOMR8_hARRAY(double* values, intptr_t count) TARN_LINK_NAME("MT_RANDOMR8#ARRAY");
void MT_RANDOMRX_hARRAY(long double* values, intptr_t count) TARN_LINK_NAME("MT_RANDOMRX#ARRAY");
void MT_RANDOMI4_hARRAY(uint32_t* values, intptr_t count) TARN_LINK_NAME("MT_RANDOMI4#ARRAY");
void MT_RANDOMI8_hARRAY(uint64_t* values, intptr_t count) TARN_LINK_NAME("MT_RANDOMI8#ARRAY");
/* As RANDOM_SEED; the seed is one word. */
void MT_RANDOM_SEED_h(int32_t action, int32_t* value) TARN_LINK_NAME("MT_RANDOM_SEED#");
void MT_RANDOM_SEED64_h(int32_t action, int64_t* value) TARN_LINK_NAME("MT_RANDOM_SEED64#");

#ifdef __cplusplus
}
#endif

#endif
