/* The library's own threads. */
#ifndef TARN_THREADS_H
#define TARN_THREADS_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* How many processors the library may use for one computation: a count from 1 to the number of
 * processors that the process may run on, any other stands for all of them. Gives back the count
 * that it is now. Until it is called the library starts no thread.
 *
 * gfortran's MATMUL of large INTEGER matrices, and of REAL and COMPLEX ones of kinds 4 and 8, uses
 * them; the result is the same bit for bit. It stays on one thread where a floating-point exception
 * is unmasked, so that the trap is the caller's. */
int32_t SET_MAX_CORES_h(const int32_t* count) TARN_LINK_NAME("SET_MAX_CORES#");

#ifdef __cplusplus
}
#endif

#endif
