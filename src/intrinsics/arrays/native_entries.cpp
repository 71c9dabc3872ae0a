// The link names of the native array routines.
//
// Those with a result descriptor get here: each name loads its routine and jumps to one piece of
// code, which keeps the argument registers as words, runs the routine, and if it asks for storage
// moves the caller's stack pointer down and runs it once more (native_call.h). The new pages are
// touched from above, so that the guard page meets every page on the way.
#include <bit>

#include "frame/link_name.h"
#include "intrinsics/arrays/extremes.h"
#include "intrinsics/arrays/find.h"
#include "intrinsics/arrays/fold.h"
#include "intrinsics/arrays/native_routines.h"

__asm__(R"(
        .text
        .type   tarn_native_array_call, @function
        # r11: the routine; everything else as compiled code left it.
tarn_native_array_call:
        .cfi_startproc
        pushq   %rbp
        .cfi_def_cfa_offset 16
        .cfi_offset %rbp, -16
        movq    %rsp, %rbp
        .cfi_def_cfa_register %rbp
        pushq   %r9
        pushq   %r8
        pushq   %rcx
        pushq   %rdx
        pushq   %rsi
        pushq   %rdi
        movq    %rsp, %rax
        subq    $32, %rsp
        movq    %rax, (%rsp)            # words
        movq    $0, 8(%rsp)             # storage
        movq    $-1, 16(%rsp)           # wanted
        movq    %r11, 24(%rsp)          # routine
        movq    %rsp, %rdi
        call    *%r11
        movq    16(%rsp), %rcx
        testq   %rcx, %rcx
        jns     .Ltarn_array_storage
        leave
        .cfi_remember_state
        .cfi_def_cfa %rsp, 8
        ret
        .cfi_restore_state
.Ltarn_array_storage:
        movq    %rsp, %rdi
        movq    %rsp, %rdx
        subq    %rcx, %rdx
        andq    $-16, %rdx
        subq    $16, %rdx
.Ltarn_array_page:
        movq    %rsp, %rax
        subq    %rdx, %rax
        cmpq    $4096, %rax
        jbe     .Ltarn_array_last
        subq    $4096, %rsp
        orb     $0, (%rsp)
        jmp     .Ltarn_array_page
.Ltarn_array_last:
        movq    %rdx, %rsp
        orb     $0, (%rsp)
        movq    %rdx, 8(%rdi)
        movq    $-1, 16(%rdi)
        call    *24(%rdi)
        leaq    16(%rbp), %r10
        movq    8(%rbp), %r11
        movq    (%rbp), %rbp
        .cfi_def_cfa %r10, 0
        .cfi_register %rip, %r11
        .cfi_restore %rbp
        jmp     *%r11
        .cfi_endproc
        .size   tarn_native_array_call, .-tarn_native_array_call

        .macro  TARN_ARRAY_ENTRY name, table, index
        .globl  "\name"
        .type   "\name", @function
"\name":
        .cfi_startproc
        movq    \table + 8 * \index(%rip), %r11
        jmp     tarn_native_array_call
        .cfi_endproc
        .size   "\name", .-"\name"
        .endm

        # A name for each type, in the order of the table.
        .macro  TARN_ARRAY_FAMILY family, table, types:vararg
        .set    .Ltarn_index, 0
        .irp    type, \types
        TARN_ARRAY_ENTRY "\family\type\()#", \table, .Ltarn_index
        .set    .Ltarn_index, .Ltarn_index + 1
        .endr
        .endm

        TARN_ARRAY_FAMILY SUM, tarn_native_sum, I1, I2, I4, I8, R4, R8, RX, C8, CD, CX
        TARN_ARRAY_FAMILY PRODUCT, tarn_native_product, I1, I2, I4, I8, R4, R8, RX, C8, CD, CX
        TARN_ARRAY_FAMILY MAXVAL, tarn_native_maxval, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MINVAL, tarn_native_minval, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MAXLOCD, tarn_native_maxlocd, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MINLOCD, tarn_native_minlocd, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MAXLOCDB, tarn_native_maxlocdb, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MINLOCDB, tarn_native_minlocdb, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MAXLOC, tarn_native_maxloc, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MINLOC, tarn_native_minloc, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MAXLOCB, tarn_native_maxlocb, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY MINLOCB, tarn_native_minlocb, I1, I2, I4, I8, R4, R8, RX
        TARN_ARRAY_FAMILY FINDLOC, tarn_native_findloc, I1, I2, I4, I8, R4, R8, L1, L2, L4, L8
        TARN_ARRAY_FAMILY FINDLOCB, tarn_native_findlocb, I1, I2, I4, I8, R4, R8, L1, L2, L4, L8
        TARN_ARRAY_FAMILY FINDLOCD, tarn_native_findlocd, I1, I2, I4, I8, R4, R8, L1, L2, L4, L8
        TARN_ARRAY_FAMILY FINDLOCDB, tarn_native_findlocdb, I1, I2, I4, I8, R4, R8, L1, L2, L4, L8
        TARN_ARRAY_FAMILY NORM2, tarn_native_norm2, R4, R8

        TARN_ARRAY_ENTRY "COUNT#", tarn_native_logical, 0
        TARN_ARRAY_ENTRY "ANY#", tarn_native_logical, 1
        TARN_ARRAY_ENTRY "ALL#", tarn_native_logical, 2
        TARN_ARRAY_ENTRY "RESHAPE#", tarn_native_transform, 0
        TARN_ARRAY_ENTRY "PACK#", tarn_native_transform, 1
        TARN_ARRAY_ENTRY "UNPACK#", tarn_native_transform, 2
        TARN_ARRAY_ENTRY "SPREAD#", tarn_native_transform, 3
        TARN_ARRAY_ENTRY "CSHIFT#", tarn_native_transform, 4
        TARN_ARRAY_ENTRY "EOSHIFT#", tarn_native_transform, 5
        TARN_ARRAY_ENTRY "TRANSPOSE#", tarn_native_transform, 6
)");

namespace tarn::arrays {
namespace {

View vector_of(const void* array, Index element, Index count) {
    View view;
    view.base = static_cast<std::byte*>(const_cast<void*>(array));
    view.element = element;
    view.rank = 1;
    view.dims[0] = {count > 0 ? count : 0, element};
    return view;
}

// The older routines' masks are LOGICAL*4.
struct OldMask {
    Mask mask;
    bool present;

    OldMask(const std::int32_t* at, Index count) : present(is_present(at)) {
        mask = {vector_of(at, sizeof *at, count), Truth::whole};
    }
    const Mask* get() const { return present ? &mask : nullptr; }
    static bool is_present(const void* at) {
        return at != nullptr && reinterpret_cast<Word>(at) != absent;
    }
};

bool is_set(const std::int32_t* back) {
    return OldMask::is_present(back) && *back != 0;
}

template <class T, bool largest>
constexpr T old_start() {
    if constexpr (std::is_same_v<T, double>) {
        // Not quite the extreme: 29 units short of it.
        constexpr double start = __builtin_bit_cast(double, std::uint64_t{0x7FEFFFFFFFFFFFE2});
        return largest ? -start : start;
    } else {
        return value_of_nothing<T, largest>();
    }
}

template <class T, bool largest>
std::int32_t old_place(const T* array, Word count, const std::int32_t* mask,
                       const std::int32_t* back) {
    const OldMask counted(mask, count);
    return static_cast<std::int32_t>(
        1 + place_of_extreme<T, largest>(vector_of(array, sizeof(T), count), counted.get(),
                                         old_start<T, largest>(), is_set(back)));
}

template <class Match>
std::int32_t old_find(const typename Match::Element* array, Word count,
                      const typename Match::Element* value, const std::int32_t* mask,
                      const std::int32_t* back) {
    const OldMask counted(mask, count);
    return static_cast<std::int32_t>(1 + place_of_match(Match{*value},
                                                        vector_of(array, sizeof *array, count),
                                                        counted.get(), is_set(back)));
}

// The whole complex array, its elements chosen by their masks' first bytes.
template <class Step, class T>
Complex<T> whole(const void* array, const std::int32_t* count, const void* mask,
                 const std::int32_t* mask_size) {
    Run run{static_cast<const std::byte*>(array), sizeof(Complex<T>), *count, sizeof(Complex<T>)};
    if (OldMask::is_present(mask)) {
        run.mask = static_cast<const std::byte*>(mask);
        run.mask_stride = run.mask_size = *mask_size;
        run.truth = Truth::byte_is_one;
    }
    return Fold<Step, Complex<T>>::whole(run);
}

}  // namespace
}  // namespace tarn::arrays

using namespace tarn::arrays;

// Types and parameters can't stand in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
extern "C" {

// Declares an entry with its link name and starts its definition.
#define TARN_ENTRY(result, name, link, ...)               \
    TARN_EXPORT result name(__VA_ARGS__) LINK_NAME(link); \
    result name(__VA_ARGS__)

#define TARN_PLACES(prefix, T)                                                                  \
    TARN_ENTRY(std::int32_t, prefix##MAXLOC_h, #prefix "MAXLOC#", const T* array, Word count,   \
               const std::int32_t* mask) {                                                      \
        return old_place<T, true>(array, count, mask, nullptr);                                 \
    }                                                                                           \
    TARN_ENTRY(std::int32_t, prefix##MINLOC_h, #prefix "MINLOC#", const T* array, Word count,   \
               const std::int32_t* mask) {                                                      \
        return old_place<T, false>(array, count, mask, nullptr);                                \
    }                                                                                           \
    TARN_ENTRY(std::int32_t, prefix##MAXLOCB_h, #prefix "MAXLOCB#", const T* array, Word count, \
               const std::int32_t* mask, Word, const std::int32_t* back) {                      \
        return old_place<T, true>(array, count, mask, back);                                    \
    }                                                                                           \
    TARN_ENTRY(std::int32_t, prefix##MINLOCB_h, #prefix "MINLOCB#", const T* array, Word count, \
               const std::int32_t* mask, Word, const std::int32_t* back) {                      \
        return old_place<T, false>(array, count, mask, back);                                   \
    }
#define TARN_FINDS(prefix, Match, T)                                                              \
    TARN_ENTRY(std::int32_t, prefix##FINDLOC_h, #prefix "FINDLOC#", const T* array, Word count,   \
               const T* value, const std::int32_t* mask) {                                        \
        return old_find<Match<T>>(array, count, value, mask, nullptr);                            \
    }                                                                                             \
    TARN_ENTRY(std::int32_t, prefix##FINDLOCB_h, #prefix "FINDLOCB#", const T* array, Word count, \
               const T* value, const std::int32_t* mask, Word, const std::int32_t* back) {        \
        return old_find<Match<T>>(array, count, value, mask, back);                               \
    }

#define TARN_OLD_TYPES(WORK) \
    WORK(, float)            \
    WORK(D, double)          \
    WORK(H, std::int8_t)     \
    WORK(I, std::int16_t)    \
    WORK(J, std::int32_t)    \
    WORK(Q, std::int64_t)

TARN_OLD_TYPES(TARN_PLACES)
TARN_FINDS(, Equal, float)
TARN_FINDS(D, Equal, double)
TARN_FINDS(H, Equal, std::int8_t)
TARN_FINDS(I, Equal, std::int16_t)
TARN_FINDS(J, Equal, std::int32_t)
TARN_FINDS(Q, Equal, std::int64_t)
TARN_FINDS(h, SameTruth, std::int8_t)
TARN_FINDS(i, SameTruth, std::int16_t)
TARN_FINDS(j, SameTruth, std::int32_t)
TARN_FINDS(q, SameTruth, std::int64_t)

#define TARN_COMPLEX_WHOLE(type, T)                                                          \
    TARN_ENTRY(_Complex T, QSUM##type##_h, "QSUM" #type "#", const void* array,              \
               const std::int32_t* count, const void* mask, const std::int32_t* mask_size) { \
        return std::bit_cast<_Complex T>(whole<Add, T>(array, count, mask, mask_size));      \
    }                                                                                        \
    TARN_ENTRY(_Complex T, QPRODUCT##type##_h, "QPRODUCT" #type "#", const void* array,      \
               const std::int32_t* count, const void* mask, const std::int32_t* mask_size) { \
        return std::bit_cast<_Complex T>(whole<Multiply, T>(array, count, mask, mask_size)); \
    }
TARN_COMPLEX_WHOLE(C8, float)
TARN_COMPLEX_WHOLE(CD, double)

// The padding of 80-bit parts keeps these from being reinterpreted.
#define TARN_WIDE_WHOLE(name, link, Step)                                                      \
    TARN_ENTRY(_Complex long double, name, link, const void* array, const std::int32_t* count, \
               const void* mask, const std::int32_t* mask_size) {                              \
        const Complex<Real10> value = whole<Step, Real10>(array, count, mask, mask_size);      \
        _Complex long double result;                                                           \
        __real__ result = value.re;                                                            \
        __imag__ result = value.im;                                                            \
        return result;                                                                         \
    }
TARN_WIDE_WHOLE(QSUMCX_h, "QSUMCX#", Add)
TARN_WIDE_WHOLE(QPRODUCTCX_h, "QPRODUCTCX#", Multiply)

// Stores one position and moves on to the next.
TARN_ENTRY(void, SETCORE_h, "SETCORE#", std::byte** address, Word size, Word value) {
    store_integer(*address, size, value);
    *address += size;
}

TARN_EXPORT void SET_PACKED_SIZE(Word size) {
    native_state().packed_size = size;
}
TARN_ENTRY(Word, IPACKED_SIZE_h, "IPACKED_SIZE#", void) {
    return native_state().packed_size;
}

#undef TARN_ENTRY
#undef TARN_PLACES
#undef TARN_FINDS
#undef TARN_OLD_TYPES
#undef TARN_COMPLEX_WHOLE
#undef TARN_WIDE_WHOLE
}
// NOLINTEND(bugprone-macro-parentheses)
