// How compiled code calls the array routines that make results.
//
// Such a routine may have to make the storage of its result in its caller's frame, which no C++
// routine can. So each entry is a few instructions (native_entries.cpp) that keep the arguments as
// words and run the routine with a NativeCall. A routine that finds no storage says how much it
// wants and returns; the entry moves the stack pointer down and runs it again. With the result's
// storage given, the call is as any other.
#pragma once

#include <cstdint>

#include "intrinsics/arrays/view.h"

namespace tarn::arrays {

using Word = std::intptr_t;

inline constexpr int max_native_rank = 7;

// What stands for an argument that isn't there.
inline constexpr Word absent = static_cast<Word>(0xF0F0F0F0F0F0F0F0u);
// Base words of pointers that don't point.
inline constexpr Word undefined_base = static_cast<Word>(0x8000000000000000u);
inline constexpr Word disassociated_base = static_cast<Word>(0x8080808080808080u);

struct ResultDescriptor {
    Word base;  // 0: the routine makes the storage
    Word element;
    Word extent[max_native_rank];
};

// The entries know these offsets.
struct NativeCall {
    const Word* words;  // six registers, two words of the frame, the words on the stack
    std::byte* storage;
    Word wanted;  // bytes, or -1
    void (*routine)(NativeCall&);

    Word word(int i) const { return words[i < 6 ? i : i + 2]; }
    template <class T>
    const T* address(int i) const {
        return reinterpret_cast<const T*>(word(i));
    }
    bool has(int i) const { return word(i) != absent && word(i) != 0; }
    Index integer(int i) const { return *address<std::int32_t>(i); }
    ResultDescriptor& result(int i) const { return *reinterpret_cast<ResultDescriptor*>(word(i)); }
};
static_assert(sizeof(NativeCall) == 32);

using NativeRoutine = void (*)(NativeCall&);

// The failure entry of Fortran-callable routines.
[[noreturn]] void native_fail(int number);

inline constexpr int fail_rank = 174;
inline constexpr int fail_dim = 388;
inline constexpr int fail_shape = 389;

// A contiguous array of the given extents; a rank that can't be fails.
View native_view(const void* base, Index element, Index rank, const std::int32_t* extents);

// The bytes of an array of that shape; a failure where no storage is so large.
Index bytes_of(const View& shape, Index element);

bool same_extents(const View& a, const View& b);

// Fails for a base word that is a mark.
void check_base(const ResultDescriptor& result);

// The storage of a result that has the extents of `shape`, as a view of elements of `element`
// bytes. A descriptor without storage gets the extents and the base; one with storage must have the
// extents already. False: no storage yet, the routine has to return.
bool open_result(NativeCall& call, ResultDescriptor& result, const View& shape, Index element,
                 View& opened);
// The storage of `bytes` for a result that has none; null: the routine has to return.
std::byte* make_storage(NativeCall& call, Index bytes);

}  // namespace tarn::arrays
