// The type letters of gfortran's entries. A list macro calls WORK(letters, type) for each type of a
// family; entries are made of one template and such a list.
#pragma once

#include "intrinsics/arrays/elements.h"

#define TARN_GNU_INTEGERS(WORK) \
    WORK(i1, std::int8_t)       \
    WORK(i2, std::int16_t)      \
    WORK(i4, std::int32_t)      \
    WORK(i8, std::int64_t)      \
    WORK(i16, tarn::arrays::Integer16)

#define TARN_GNU_REALS(WORK)        \
    WORK(r4, float)                 \
    WORK(r8, double)                \
    WORK(r10, tarn::arrays::Real10) \
    WORK(r16, tarn::arrays::Real16)

#define TARN_GNU_COMPLEX(WORK)                             \
    WORK(c4, tarn::arrays::Complex<float>)                 \
    WORK(c8, tarn::arrays::Complex<double>)                \
    WORK(c10, tarn::arrays::Complex<tarn::arrays::Real10>) \
    WORK(c16, tarn::arrays::Complex<tarn::arrays::Real16>)

#define TARN_GNU_ORDERED(WORK) TARN_GNU_INTEGERS(WORK) TARN_GNU_REALS(WORK)
#define TARN_GNU_NUMBERS(WORK) TARN_GNU_ORDERED(WORK) TARN_GNU_COMPLEX(WORK)
