/* Array intrinsics: reductions, locations, transformations and products.
 *
 * Arrays are contiguous, first dimension fastest. An array argument is the address of its first
 * element and, beside it, the address of as many 32-bit extents as the array has dimensions, at
 * most 7. Numbers come by reference unless a declaration says otherwise; DIM counts from 1.
 *
 * An array-valued routine gets a tarn_array_result. Give it storage: set `base` to room for the
 * result, and `extent` to the extents that the result will have; the routine compares them and
 * fails with "Nonconformant arrays" (389) otherwise. (With a base of 0 the routine makes the
 * storage in its caller's stack frame, which only code compiled for it can cope with: C must not
 * ask for that.)
 *
 * A MASK that isn't there is TARN_NO_ARGUMENT. A mask element is true when its first byte is
 * exactly 1, in the routines of the newer kind (see there) when it isn't zero.
 *
 * Faults end the program: 388 DIM out of range, 389 shapes that don't conform, 390 to 392 a base
 * that is a mark, 404 a result too small for a location, 417 factors that don't conform. */
#ifndef TARN_ARRAYS_H
#define TARN_ARRAYS_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

#define TARN_NO_ARGUMENT ((const void*)0xF0F0F0F0F0F0F0F0u)

struct tarn_array_result {
    void* base;
    intptr_t element_size; /* bytes */
    intptr_t extent[7];
};

/* ---- Along a dimension ----
 *
 * The result has the array's extents without DIM. SUM and PRODUCT are computed in the element's own
 * type, in array order; integers wrap. The extremes of nothing are the type's finite extremes. */
#define TARN_ALONG(family, type)                                                          \
    void family##type##_h(const int32_t* rank, const void* array, const int32_t* extents, \
                          const void* mask, const int32_t* mask_extents,                  \
                          const int32_t* mask_element_size, const int32_t* dim,           \
                          struct tarn_array_result* result) TARN_LINK_NAME(#family #type "#");
/* The letters of the types: I1 to I8 integers of so many bytes, R4 float, R8 double, RX long
 * double, C8, CD and CX the complex numbers made of these. */
#define TARN_ORDERED_TYPES(declare, family)                                         \
    declare(family, I1) declare(family, I2) declare(family, I4) declare(family, I8) \
        declare(family, R4) declare(family, R8) declare(family, RX)
#define TARN_NUMBER_TYPES(declare, family) \
    TARN_ORDERED_TYPES(declare, family)    \
    declare(family, C8) declare(family, CD) declare(family, CX)

TARN_NUMBER_TYPES(TARN_ALONG, SUM)
TARN_NUMBER_TYPES(TARN_ALONG, PRODUCT)
TARN_ORDERED_TYPES(TARN_ALONG, MAXVAL)
TARN_ORDERED_TYPES(TARN_ALONG, MINVAL)
/* Positions, from 1, of the first extreme of each run; 0 when no element counts. Integers of the
 * result's element_size: 1, 2, 4 or 8. */
TARN_ORDERED_TYPES(TARN_ALONG, MAXLOCD)
TARN_ORDERED_TYPES(TARN_ALONG, MINLOCD)

/* The root of the sum of squares, which is taken unscaled in the element's type. Failure 453: a
 * REAL*4 result that doesn't fit. (Of a whole array: NORM2# in tarn/numbers.h.) */
#define TARN_NORM2(type)                                                                 \
    void NORM2##type##_h(const int32_t* rank, const void* array, const int32_t* extents, \
                         const int32_t* dim, struct tarn_array_result* result)           \
        TARN_LINK_NAME("NORM2" #type "#");
TARN_NORM2(R4)
TARN_NORM2(R8)
#undef TARN_NORM2

/* COUNT, ANY and ALL of logicals; integers or logicals of the result's element_size. */
void COUNT_h(const int32_t* rank, const void* mask, const int32_t* extents,
             const int32_t* mask_element_size, const int32_t* dim, struct tarn_array_result* result)
    TARN_LINK_NAME("COUNT#");
void ANY_h(const int32_t* rank, const void* mask, const int32_t* extents,
           const int32_t* mask_element_size, const int32_t* dim, struct tarn_array_result* result)
    TARN_LINK_NAME("ANY#");
void ALL_h(const int32_t* rank, const void* mask, const int32_t* extents,
           const int32_t* mask_element_size, const int32_t* dim, struct tarn_array_result* result)
    TARN_LINK_NAME("ALL#");

/* ---- Where something stands ----
 *
 * The result is a vector of `rank` subscripts, from 1, or zeros. These are of the newer kind: a
 * mask element of 1, 2, 4 or 8 bytes is true when it isn't zero. `spare` may be anything. The
 * routines with a B take BACK: with a value other than 0 the last of equals is found. */
#define TARN_PLACE(family, type)                                                          \
    void family##type##_h(const int32_t* rank, const void* array, const int32_t* extents, \
                          const void* mask, const int32_t* mask_extents,                  \
                          const int32_t* mask_element_size, const void* spare,            \
                          struct tarn_array_result* result) TARN_LINK_NAME(#family #type "#");
#define TARN_PLACE_BACK(family, type)                                                            \
    void family##type##_h(                                                                       \
        const int32_t* rank, const void* array, const int32_t* extents, const void* mask,        \
        const int32_t* mask_extents, const int32_t* mask_element_size, const void* spare_or_dim, \
        const int32_t* back, struct tarn_array_result* result) TARN_LINK_NAME(#family #type "#");
TARN_ORDERED_TYPES(TARN_PLACE, MAXLOC)
TARN_ORDERED_TYPES(TARN_PLACE, MINLOC)
TARN_ORDERED_TYPES(TARN_PLACE_BACK, MAXLOCB)
TARN_ORDERED_TYPES(TARN_PLACE_BACK, MINLOCB)
TARN_ORDERED_TYPES(TARN_PLACE_BACK, MAXLOCDB)
TARN_ORDERED_TYPES(TARN_PLACE_BACK, MINLOCDB)

/* FINDLOC; VALUE comes behind the extents. L1 to L8 are logicals, compared by truth. A result
 * without storage is a failure. */
#define TARN_FIND(family, type)                                                             \
    void family##type##_h(const int32_t* rank, const void* array, const int32_t* extents,   \
                          const void* value, const void* mask, const int32_t* mask_extents, \
                          const int32_t* mask_element_size, const void* spare_or_dim,       \
                          struct tarn_array_result* result) TARN_LINK_NAME(#family #type "#");
#define TARN_FIND_BACK(family, type)                                                        \
    void family##type##_h(const int32_t* rank, const void* array, const int32_t* extents,   \
                          const void* value, const void* mask, const int32_t* mask_extents, \
                          const int32_t* mask_element_size, const void* spare_or_dim,       \
                          const int32_t* back, struct tarn_array_result* result)            \
        TARN_LINK_NAME(#family #type "#");
#define TARN_FIND_TYPES(declare, family)                                                \
    declare(family, I1) declare(family, I2) declare(family, I4) declare(family, I8)     \
        declare(family, R4) declare(family, R8) declare(family, L1) declare(family, L2) \
            declare(family, L4) declare(family, L8)
TARN_FIND_TYPES(TARN_FIND, FINDLOC)
TARN_FIND_TYPES(TARN_FIND, FINDLOCD)
TARN_FIND_TYPES(TARN_FIND_BACK, FINDLOCB)
TARN_FIND_TYPES(TARN_FIND_BACK, FINDLOCDB)

/* The same on a vector of `count` elements, without a descriptor: the position from 1, or 0. The
 * prefix tells the type: none float, D double, H, I, J, Q integers of 1, 2, 4, 8 bytes, and for
 * FINDLOC h, i, j, q logicals. `mask` is null or has 32-bit elements, true when not 0. */
#define TARN_VECTOR_PLACE(name, type)                                        \
    int32_t name##_h(const type* array, intptr_t count, const int32_t* mask) \
        TARN_LINK_NAME(#name "#");
#define TARN_VECTOR_FIND(name, type)                                                            \
    int32_t name##_h(const type* array, intptr_t count, const type* value, const int32_t* mask) \
        TARN_LINK_NAME(#name "#");
TARN_VECTOR_PLACE(MAXLOC, float)
TARN_VECTOR_PLACE(DMAXLOC, double)
TARN_VECTOR_PLACE(HMAXLOC, int8_t)
TARN_VECTOR_PLACE(IMAXLOC, int16_t)
TARN_VECTOR_PLACE(JMAXLOC, int32_t)
TARN_VECTOR_PLACE(QMAXLOC, int64_t)
TARN_VECTOR_PLACE(MINLOC, float)
TARN_VECTOR_PLACE(DMINLOC, double)
TARN_VECTOR_PLACE(HMINLOC, int8_t)
TARN_VECTOR_PLACE(IMINLOC, int16_t)
TARN_VECTOR_PLACE(JMINLOC, int32_t)
TARN_VECTOR_PLACE(QMINLOC, int64_t)
TARN_VECTOR_FIND(FINDLOC, float)
TARN_VECTOR_FIND(DFINDLOC, double)
TARN_VECTOR_FIND(HFINDLOC, int8_t)
TARN_VECTOR_FIND(IFINDLOC, int16_t)
TARN_VECTOR_FIND(JFINDLOC, int32_t)
TARN_VECTOR_FIND(QFINDLOC, int64_t)
TARN_VECTOR_FIND(hFINDLOC, int8_t)
TARN_VECTOR_FIND(iFINDLOC, int16_t)
TARN_VECTOR_FIND(jFINDLOC, int32_t)
TARN_VECTOR_FIND(qFINDLOC, int64_t)

/* ---- Transformations: elements are so many bytes ---- */

/* SHAPE and ORDER hold integers of 1, 2 or 4 bytes. PAD and ORDER may be TARN_NO_ARGUMENT. */
void RESHAPE_h(const int32_t* source_rank, const void* source, const int32_t* extents,
               const int32_t* element_size, const int32_t* shape_rank, const void* shape,
               const int32_t* shape_extents, const int32_t* shape_integer_size,
               const int32_t* pad_rank, const void* pad, const int32_t* pad_extents,
               const int32_t* order_rank, const void* order, const int32_t* order_extents,
               const int32_t* order_integer_size, struct tarn_array_result* result)
    TARN_LINK_NAME("RESHAPE#");
/* The result's first extent becomes the number of elements that were chosen, or VECTOR's size. */
void PACK_h(const int32_t* rank, const void* array, const int32_t* extents,
            const int32_t* element_size, const int32_t* mask_rank, const void* mask,
            const int32_t* mask_extents, const int32_t* mask_element_size, const void* vector,
            const int32_t* vector_size, struct tarn_array_result* result) TARN_LINK_NAME("PACK#");
intptr_t IPACKED_SIZE_h(void) TARN_LINK_NAME("IPACKED_SIZE#"); /* the extent of the last PACK */
void UNPACK_h(const int32_t* rank, const void* vector, const int32_t* vector_size,
              const int32_t* element_size, const void* mask, const int32_t* extents,
              const int32_t* mask_element_size, const int32_t* field_rank, const void* field,
              const int32_t* field_extents, struct tarn_array_result* result)
    TARN_LINK_NAME("UNPACK#");
/* The element size is the result's. Without copies base, size and extents become 0. */
void SPREAD_h(const int32_t* rank, const void* source, const int32_t* extents,
              const int32_t* copies, const int32_t* dim, struct tarn_array_result* result)
    TARN_LINK_NAME("SPREAD#");
/* SHIFT is a scalar (rank 0) or has the array's extents without DIM; so has BOUNDARY. DIM may be
 * TARN_NO_ARGUMENT. Without BOUNDARY zeros move in, or blanks when *is_text isn't 0. */
void CSHIFT_h(const int32_t* rank, const void* array, const int32_t* extents,
              const int32_t* element_size, const int32_t* shift_rank, const void* shift,
              const int32_t* shift_extents, const int32_t* shift_integer_size, const int32_t* dim,
              struct tarn_array_result* result) TARN_LINK_NAME("CSHIFT#");
void EOSHIFT_h(const int32_t* rank, const void* array, const int32_t* extents,
               const int32_t* element_size, const int32_t* shift_rank, const void* shift,
               const int32_t* shift_extents, const int32_t* shift_integer_size,
               const int32_t* boundary_rank, const void* boundary, const int32_t* boundary_extents,
               const int32_t* dim, const int32_t* is_text, struct tarn_array_result* result)
    TARN_LINK_NAME("EOSHIFT#");
void TRANSPOSE_h(const void* matrix, const int32_t* extents, const int32_t* element_size,
                 struct tarn_array_result* result) TARN_LINK_NAME("TRANSPOSE#");

/* ---- For a debugging session ----
 *
 * What stands in the descriptor of a POINTER array, an ALLOCATABLE one, and one of any other kind,
 * on standard output. A descriptor is the base address and 32-bit words for each dimension: start,
 * size, stride, section size and offset for POINTER; start, size and section size for ALLOCATABLE;
 * start and size for others. A rank that can't be is failure 174. */
void DUMP_ARRAY1_h(const void* descriptor, const int32_t* rank) TARN_LINK_NAME("DUMP_ARRAY1#");
void DUMP_ARRAY2_h(const void* descriptor, const int32_t* rank) TARN_LINK_NAME("DUMP_ARRAY2#");
void DUMP_ARRAY3_h(const void* descriptor, const int32_t* rank) TARN_LINK_NAME("DUMP_ARRAY3#");

/* ---- MATMUL ----
 *
 * Extents come by value, one less than they are. Each element is a dot product summed with 80 bits
 * and rounded once. `result` has room for all. */
#define TARN_MATMUL(type, element)                                                                 \
    void MATMUL##type##_h(const element* a, const element* b, intptr_t a_rows, intptr_t a_columns, \
                          intptr_t b_rows, intptr_t b_columns, element* result)                    \
        TARN_LINK_NAME("MATMUL" #type "#");
TARN_MATMUL(R4, float)
TARN_MATMUL(R8, double)
TARN_MATMUL(RX, long double)
/* Complex numbers as pairs: real part, imaginary part. */
TARN_MATMUL(C8, void)
TARN_MATMUL(CD, void)
TARN_MATMUL(CX, void)

#undef TARN_ALONG
#undef TARN_PLACE
#undef TARN_PLACE_BACK
#undef TARN_FIND
#undef TARN_FIND_BACK
#undef TARN_FIND_TYPES
#undef TARN_ORDERED_TYPES
#undef TARN_NUMBER_TYPES
#undef TARN_VECTOR_PLACE
#undef TARN_VECTOR_FIND
#undef TARN_MATMUL

#ifdef __cplusplus
}
#endif

#endif
